// Conversions between the sample types: generic kernels, the dispatch table
// and the exported entry points, all stamped from one list.

#include "elementwise/convert.h"

#include "core/options.h"
#include "zolvex_m.h"

namespace elementwise {

namespace generic {

// A plain C++ conversion rounds to nearest, ties to even, in the default
// floating-point environment; every conversion in the list is defined for
// every input value (no float-to-integer direction exists).
template <class In, class Out>
static void convert_loop(const In* x, Out* out, uint32_t n) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = static_cast<Out>(x[i]);
}

#define ZOLVEX_M_DEFINE_GENERIC_CONVERT(is, In, os, Out)                                           \
    void convert_##is##os(const In* x, Out* out, uint32_t n) noexcept { convert_loop(x, out, n); }
ZOLVEX_M_CONVERSIONS(ZOLVEX_M_DEFINE_GENERIC_CONVERT)
#undef ZOLVEX_M_DEFINE_GENERIC_CONVERT

} // namespace generic

// Valid before the first init: the generic kernels need nothing.
ConvertKernels g_convert_kernels = {
#define ZOLVEX_M_GENERIC_SLOT(is, In, os, Out) {generic::convert_##is##os},
    ZOLVEX_M_CONVERSIONS(ZOLVEX_M_GENERIC_SLOT)
#undef ZOLVEX_M_GENERIC_SLOT
};

void choose_convert_kernels() noexcept {
#define ZOLVEX_M_STORE(ns, is, os) g_convert_kernels.is##os.store(ns::convert_##is##os, std::memory_order_relaxed);
#define ZOLVEX_M_STORE_GENERIC(is, In, os, Out) ZOLVEX_M_STORE(generic, is, os)
#define ZOLVEX_M_STORE_SSE42(is, In, os, Out) ZOLVEX_M_STORE(sse42, is, os)
#define ZOLVEX_M_STORE_AVX(is, In, os, Out) ZOLVEX_M_STORE(avx, is, os)
#define ZOLVEX_M_STORE_AVX2(is, In, os, Out) ZOLVEX_M_STORE(avx2, is, os)
#define ZOLVEX_M_STORE_AVX512(is, In, os, Out) ZOLVEX_M_STORE(avx512, is, os)
    // Later rules override earlier ones, so the widest allowed level wins.
    ZOLVEX_M_CONVERSIONS(ZOLVEX_M_STORE_GENERIC)
    if (core::option_on(ZOLVEX_M_OPT_SSE42)) { ZOLVEX_M_VECTOR_CONVERSIONS(ZOLVEX_M_STORE_SSE42) }
    if (core::option_on(ZOLVEX_M_OPT_AVX)) { ZOLVEX_M_VECTOR_CONVERSIONS(ZOLVEX_M_STORE_AVX) }
    if (core::avx2_fma3_on()) { ZOLVEX_M_VECTOR_CONVERSIONS(ZOLVEX_M_STORE_AVX2) }
    if (core::avx512f_cd_on()) { ZOLVEX_M_VECTOR_CONVERSIONS(ZOLVEX_M_STORE_AVX512) }
#undef ZOLVEX_M_STORE_AVX512
#undef ZOLVEX_M_STORE_AVX2
#undef ZOLVEX_M_STORE_AVX
#undef ZOLVEX_M_STORE_SSE42
#undef ZOLVEX_M_STORE_GENERIC
#undef ZOLVEX_M_STORE
}

} // namespace elementwise

extern "C" {

#define ZOLVEX_M_EXPORT_CONVERT(is, In, os, Out)                                                   \
    int32_t zolvex_m_convert_##is##os(const In* x, Out* out, uint32_t n) {                         \
        elementwise::g_convert_kernels.is##os.load(std::memory_order_relaxed)(x, out, n);          \
        return 0;                                                                                  \
    }
ZOLVEX_M_CONVERSIONS(ZOLVEX_M_EXPORT_CONVERT)
#undef ZOLVEX_M_EXPORT_CONVERT

} // extern "C"
