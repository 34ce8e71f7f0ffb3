// Clipping to [low, high]: the plain loop, the choice among the vector
// kernels and the exported entry points.

#include <cstdint>

#include "core/kernel_report.h"
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

namespace {

template <class T>
struct ClipKernels;

#define ZOLVEX_M_CLIP_KERNELS(T, suffix, narrowest)                                                \
    template <>                                                                                    \
    struct ClipKernels<T> {                                                                        \
        static constexpr core::KernelTable<ClipKernel<T>> kTable = {                               \
            .generic = generic::clip_##suffix, .sse42 = narrowest, .avx2 = avx2::clip_##suffix,   \
            .avx512bw = avx512bw::clip_##suffix};                                                  \
    };
ZOLVEX_M_CLIP_KERNELS(uint8_t, u8, nullptr)
ZOLVEX_M_CLIP_KERNELS(int16_t, i16, nullptr)
ZOLVEX_M_CLIP_KERNELS(uint16_t, u16, sse42::clip_u16)
ZOLVEX_M_CLIP_KERNELS(uint32_t, u32, sse42::clip_u32)
ZOLVEX_M_CLIP_KERNELS(float, f32, nullptr)
ZOLVEX_M_CLIP_KERNELS(double, f64, nullptr)
#undef ZOLVEX_M_CLIP_KERNELS

#define ZOLVEX_M_REPORT(T, suffix) core::KernelReportRegistration({"clip", #suffix, core::level_of<ClipKernels<T>::kTable>})
const core::KernelReportRegistration kReports[] = {
    ZOLVEX_M_REPORT(uint8_t, u8),   ZOLVEX_M_REPORT(int16_t, i16), ZOLVEX_M_REPORT(uint16_t, u16),
    ZOLVEX_M_REPORT(uint32_t, u32), ZOLVEX_M_REPORT(float, f32),   ZOLVEX_M_REPORT(double, f64),
};
#undef ZOLVEX_M_REPORT

} // namespace

} // namespace elementwise

#define ZOLVEX_M_EXPORT_CLIP(T, suffix)                                                            \
    int32_t zolvex_m_clip_##suffix(const T* x, T* out, uint32_t n, T low, T high) {               \
        elementwise::ClipKernels<T>::kTable.choose()(x, out, n, low, high);                        \
        return 0;                                                                                  \
    }

extern "C" {

ZOLVEX_M_CLIP_TYPES(ZOLVEX_M_EXPORT_CLIP)

} // extern "C"
