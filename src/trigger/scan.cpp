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

#define ZOLVEX_M_SCAN_SET(ns, suffix)                                                              \
    {ns::scan_ge_##suffix, ns::scan_le_##suffix, ns::scan_gt_##suffix, ns::scan_lt_##suffix,       \
     ns::scan_outside_##suffix, ns::scan_inside_##suffix}

// The 256-bit kernels halve the instructions per sample; the SSE4.2 ones
// stay the choice whenever AVX2 or FMA3 is off.
#define ZOLVEX_M_CHOOSE_VECTOR_SCANS(T, suffix)                                                    \
    template <>                                                                                    \
    ScanSet<T> choose_scans<T>() noexcept {                                                        \
        if (core::avx2_fma3_on()) return ZOLVEX_M_SCAN_SET(avx2, suffix);                          \
        if (core::option_on(ZOLVEX_M_OPT_SSE42)) return ZOLVEX_M_SCAN_SET(sse42, suffix);          \
        return ZOLVEX_M_SCAN_SET(generic, suffix);                                                 \
    }
ZOLVEX_M_CHOOSE_VECTOR_SCANS(uint8_t, u8)
ZOLVEX_M_CHOOSE_VECTOR_SCANS(uint16_t, u16)
#undef ZOLVEX_M_CHOOSE_VECTOR_SCANS

#define ZOLVEX_M_CHOOSE_GENERIC_SCANS(T, suffix)                                                   \
    template <>                                                                                    \
    ScanSet<T> choose_scans<T>() noexcept {                                                        \
        return ZOLVEX_M_SCAN_SET(generic, suffix);                                                 \
    }
ZOLVEX_M_CHOOSE_GENERIC_SCANS(int16_t, i16)
ZOLVEX_M_CHOOSE_GENERIC_SCANS(float, f32)
ZOLVEX_M_CHOOSE_GENERIC_SCANS(double, f64)
#undef ZOLVEX_M_CHOOSE_GENERIC_SCANS
#undef ZOLVEX_M_SCAN_SET

} // namespace trigger
