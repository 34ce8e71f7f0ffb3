// Level scans: the generic kernels for every sample type and the per-call
// choice of kernels from the option flags.

#include "trigger/scan.h"

#include "core/options.h"
#include "zolvex_m.h"

namespace trigger {

namespace generic {

namespace {

// Each condition is the plain comparison, so a NaN sample (or level) never
// satisfies it; f32 is compared as f32, which orders exactly like the
// widened doubles would.
template <class T, class Condition>
uint32_t scan_loop(const T* x, uint32_t start, uint32_t length, Condition satisfied) noexcept {
    for (uint32_t i = start; i < length; ++i)
        if (satisfied(x[i])) return i;
    return length;
}

} // namespace

#define ZOLVEX_M_DEFINE_GENERIC_SCANS(T, suffix)                                                   \
    uint32_t scan_ge_##suffix(const T* x, uint32_t start, uint32_t length, T level) noexcept {    \
        return scan_loop(x, start, length, [level](T v) { return v >= level; });                   \
    }                                                                                              \
    uint32_t scan_le_##suffix(const T* x, uint32_t start, uint32_t length, T level) noexcept {    \
        return scan_loop(x, start, length, [level](T v) { return v <= level; });                   \
    }                                                                                              \
    uint32_t scan_gt_##suffix(const T* x, uint32_t start, uint32_t length, T level) noexcept {    \
        return scan_loop(x, start, length, [level](T v) { return v > level; });                    \
    }                                                                                              \
    uint32_t scan_lt_##suffix(const T* x, uint32_t start, uint32_t length, T level) noexcept {    \
        return scan_loop(x, start, length, [level](T v) { return v < level; });                    \
    }                                                                                              \
    uint32_t scan_outside_##suffix(const T* x, uint32_t start, uint32_t length, T high, T low) noexcept { \
        return scan_loop(x, start, length, [high, low](T v) { return v > high || v < low; });      \
    }                                                                                              \
    uint32_t scan_inside_##suffix(const T* x, uint32_t start, uint32_t length, T high, T low) noexcept { \
        return scan_loop(x, start, length, [high, low](T v) { return v >= low && v <= high; });    \
    }

ZOLVEX_M_DEFINE_GENERIC_SCANS(uint8_t, u8)
ZOLVEX_M_DEFINE_GENERIC_SCANS(int16_t, i16)
ZOLVEX_M_DEFINE_GENERIC_SCANS(uint16_t, u16)
ZOLVEX_M_DEFINE_GENERIC_SCANS(float, f32)
ZOLVEX_M_DEFINE_GENERIC_SCANS(double, f64)
#undef ZOLVEX_M_DEFINE_GENERIC_SCANS

} // namespace generic

template <>
ScanSet<uint8_t> choose_scans<uint8_t>() noexcept {
    // The 256-bit kernels halve the instructions per byte; the SSE4.2 ones
    // stay the choice whenever AVX2 or FMA3 is off.
    if (core::avx2_fma3_on())
        return {avx2::scan_ge_u8, avx2::scan_le_u8, avx2::scan_gt_u8, avx2::scan_lt_u8, avx2::scan_outside_u8,
                avx2::scan_inside_u8};
    if (core::option_on(ZOLVEX_M_OPT_SSE42))
        return {sse42::scan_ge_u8, sse42::scan_le_u8, sse42::scan_gt_u8, sse42::scan_lt_u8, sse42::scan_outside_u8,
                sse42::scan_inside_u8};
    return {generic::scan_ge_u8, generic::scan_le_u8, generic::scan_gt_u8, generic::scan_lt_u8,
            generic::scan_outside_u8, generic::scan_inside_u8};
}

template <>
ScanSet<uint16_t> choose_scans<uint16_t>() noexcept {
    ScanSet<uint16_t> scans = {generic::scan_ge_u16, generic::scan_le_u16, generic::scan_gt_u16,
                               generic::scan_lt_u16, generic::scan_outside_u16, generic::scan_inside_u16};
    if (core::option_on(ZOLVEX_M_OPT_SSE42))
        scans = {sse42::scan_ge_u16, sse42::scan_le_u16, sse42::scan_gt_u16, sse42::scan_lt_u16,
                 sse42::scan_outside_u16, sse42::scan_inside_u16};
    // Independent of the SSE4.2 option: with AVX2 and FMA3 on but SSE4.2
    // off, only this one scan is vectorised.
    if (core::avx2_fma3_on()) scans.ge = avx2::scan_ge_u16;
    return scans;
}

template <>
ScanSet<int16_t> choose_scans<int16_t>() noexcept {
    return {generic::scan_ge_i16, generic::scan_le_i16, generic::scan_gt_i16, generic::scan_lt_i16,
            generic::scan_outside_i16, generic::scan_inside_i16};
}

template <>
ScanSet<float> choose_scans<float>() noexcept {
    return {generic::scan_ge_f32, generic::scan_le_f32, generic::scan_gt_f32, generic::scan_lt_f32,
            generic::scan_outside_f32, generic::scan_inside_f32};
}

template <>
ScanSet<double> choose_scans<double>() noexcept {
    return {generic::scan_ge_f64, generic::scan_le_f64, generic::scan_gt_f64, generic::scan_lt_f64,
            generic::scan_outside_f64, generic::scan_inside_f64};
}

} // namespace trigger
