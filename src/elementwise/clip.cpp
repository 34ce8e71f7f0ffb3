// Clipping to [low, high]: the plain loop, the choice among the vector
// kernels and the exported entry points.

#include <cstdint>

#include "core/kernel_table.h"
#include "elementwise/bitops_kernels.h"
#include "zolvex_m.h"

namespace elementwise {

namespace generic {

// Two comparisons in this order: low > high gives high, and a NaN (sample
// or bound) compares false, so a NaN sample stays NaN and a NaN bound
// bounds nothing.
#define ZOLVEX_M_DEFINE_CLIP_LOOP(T, suffix)                                                       \
    void clip_##suffix(const T* x, T* out, uint32_t n, T low, T high) noexcept {                  \
        for (uint32_t i = 0; i < n; ++i) {                                                         \
            T v = x[i] < low ? low : x[i];                                                         \
            out[i] = v > high ? high : v;                                                          \
        }                                                                                          \
    }
ZOLVEX_M_CLIP_TYPES(ZOLVEX_M_DEFINE_CLIP_LOOP)
#undef ZOLVEX_M_DEFINE_CLIP_LOOP

} // namespace generic

} // namespace elementwise

#define ZOLVEX_M_EXPORT_CLIP(T, suffix)                                                            \
    int32_t zolvex_m_clip_##suffix(const T* x, T* out, uint32_t n, T low, T high) {               \
        static constexpr core::KernelTable<elementwise::ClipKernel<T>> kKernels = {                \
            .generic = elementwise::generic::clip_##suffix, .sse42 = elementwise::sse42::clip_##suffix, \
            .avx2 = elementwise::avx2::clip_##suffix, .avx512bw = elementwise::avx512bw::clip_##suffix}; \
        kKernels.choose()(x, out, n, low, high);                                                   \
        return 0;                                                                                  \
    }

extern "C" {

ZOLVEX_M_CLIP_TYPES(ZOLVEX_M_EXPORT_CLIP)

} // extern "C"
