// Bit masks of integer samples: and with a constant, setting and testing the
// bits of a mask; the plain loops, the choice among the vector kernels and
// the exported entry points.

#include <cstdint>

#include "core/kernel_report.h"
#include "core/kernel_table.h"
#include "elementwise/bitops_kernels.h"
#include "zolvex_m.h"

namespace elementwise {

namespace generic {

namespace {
template <class T, class Op>
void mask_loop(const T* x, T* out, uint32_t n, Op op) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = static_cast<T>(op(x[i]));
}
} // namespace

#define ZOLVEX_M_DEFINE_MASK_LOOPS(T, suffix)                                                      \
    void andc_##suffix(const T* x, T* out, uint32_t n, T mask) noexcept {                         \
        mask_loop(x, out, n, [mask](T v) { return v & mask; });                                   \
    }                                                                                              \
    void bit_mask_set_##suffix(const T* x, T* out, uint32_t n, T mask) noexcept {                 \
        mask_loop(x, out, n, [mask](T v) { return v | mask; });                                   \
    }                                                                                              \
    void bit_mask_test_##suffix(const T* x, T* out, uint32_t n, T mask) noexcept {                \
        mask_loop(x, out, n, [mask](T v) { return (v & mask) != 0 ? 1 : 0; });                    \
    }
ZOLVEX_M_MASK_TYPES(ZOLVEX_M_DEFINE_MASK_LOOPS)
#undef ZOLVEX_M_DEFINE_MASK_LOOPS

} // namespace generic

namespace {

#define ZOLVEX_M_MASK_TABLE(op, suffix)                                                            \
    {.generic = generic::op##_##suffix, .avx2 = avx2::op##_##suffix, .avx512bw = avx512bw::op##_##suffix}

template <class T>
struct MaskPaths;

#define ZOLVEX_M_MASK_PATHS(T, suffix)                                                             \
    template <>                                                                                    \
    struct MaskPaths<T> {                                                                          \
        static constexpr core::KernelTable<MaskKernel<T>> kAndc = ZOLVEX_M_MASK_TABLE(andc, suffix); \
        static constexpr core::KernelTable<MaskKernel<T>> kSet = ZOLVEX_M_MASK_TABLE(bit_mask_set, suffix); \
        static constexpr core::KernelTable<MaskKernel<T>> kTest = ZOLVEX_M_MASK_TABLE(bit_mask_test, suffix); \
    };
ZOLVEX_M_MASK_TYPES(ZOLVEX_M_MASK_PATHS)
#undef ZOLVEX_M_MASK_PATHS
#undef ZOLVEX_M_MASK_TABLE

#define ZOLVEX_M_REPORT(T, suffix)                                                                 \
    core::KernelReportRegistration({"andc bit_mask_set bit_mask_test", #suffix, core::level_of<MaskPaths<T>::kAndc>}),
const core::KernelReportRegistration kReports[] = {ZOLVEX_M_MASK_TYPES(ZOLVEX_M_REPORT)};
#undef ZOLVEX_M_REPORT

} // namespace

} // namespace elementwise

#define ZOLVEX_M_EXPORT_MASKS(T, suffix)                                                           \
    int32_t zolvex_m_andc_##suffix(const T* x, T* out, uint32_t n, T mask) {                      \
        elementwise::MaskPaths<T>::kAndc.choose()(x, out, n, mask);                               \
        return 0;                                                                                  \
    }                                                                                              \
    int32_t zolvex_m_bit_mask_set_##suffix(const T* x, T* out, uint32_t n, T mask) {              \
        elementwise::MaskPaths<T>::kSet.choose()(x, out, n, mask);                                \
        return 0;                                                                                  \
    }                                                                                              \
    int32_t zolvex_m_bit_mask_test_##suffix(const T* x, T* out, uint32_t n, T mask) {             \
        elementwise::MaskPaths<T>::kTest.choose()(x, out, n, mask);                               \
        return 0;                                                                                  \
    }

extern "C" {

ZOLVEX_M_MASK_TYPES(ZOLVEX_M_EXPORT_MASKS)

} // extern "C"
