#pragma once
// Level scans: the first index i with start <= i < length whose sample
// satisfies a level condition, or length when no sample does (also when
// start >= length). They are the hot path of every trigger search and of the
// index searches, so each condition has its own kernel:
//
//   ge       x >= level          le       x <= level
//   gt       x >  level          lt       x <  level
//   outside  x > high || x < low  (both strict: the levels belong to the band)
//   inside   low <= x && x <= high (the levels included; none with high < low)
//
// A NaN sample satisfies none of them: every condition is written as the
// comparison itself, never as the negation of its opposite.
//
// The vector kernels (u8 and u16 only) give the generic kernel's index in
// every case. Included by the per-instruction-set files, so it declares only.

#include <cstdint>

namespace trigger {

template <class T>
using ScanKernel = uint32_t (*)(const T* x, uint32_t start, uint32_t length, T level) noexcept;
template <class T>
using BandScanKernel = uint32_t (*)(const T* x, uint32_t start, uint32_t length, T high, T low) noexcept;

#define ZOLVEX_M_DECLARE_SCAN_KERNELS(T, suffix)                                                   \
    uint32_t scan_ge_##suffix(const T* x, uint32_t start, uint32_t length, T level) noexcept;     \
    uint32_t scan_le_##suffix(const T* x, uint32_t start, uint32_t length, T level) noexcept;     \
    uint32_t scan_gt_##suffix(const T* x, uint32_t start, uint32_t length, T level) noexcept;     \
    uint32_t scan_lt_##suffix(const T* x, uint32_t start, uint32_t length, T level) noexcept;     \
    uint32_t scan_outside_##suffix(const T* x, uint32_t start, uint32_t length, T high, T low) noexcept; \
    uint32_t scan_inside_##suffix(const T* x, uint32_t start, uint32_t length, T high, T low) noexcept;

namespace generic {
ZOLVEX_M_DECLARE_SCAN_KERNELS(uint8_t, u8)
ZOLVEX_M_DECLARE_SCAN_KERNELS(int16_t, i16)
ZOLVEX_M_DECLARE_SCAN_KERNELS(uint16_t, u16)
ZOLVEX_M_DECLARE_SCAN_KERNELS(float, f32)
ZOLVEX_M_DECLARE_SCAN_KERNELS(double, f64)
} // namespace generic

namespace sse42 {
ZOLVEX_M_DECLARE_SCAN_KERNELS(uint8_t, u8)
ZOLVEX_M_DECLARE_SCAN_KERNELS(uint16_t, u16)
} // namespace sse42

// 256-bit kernels: every scan of both types.
namespace avx2 {
ZOLVEX_M_DECLARE_SCAN_KERNELS(uint8_t, u8)
ZOLVEX_M_DECLARE_SCAN_KERNELS(uint16_t, u16)
} // namespace avx2

#undef ZOLVEX_M_DECLARE_SCAN_KERNELS

// The kernels one search uses, one per condition.
template <class T>
struct ScanSet {
    ScanKernel<T> ge;
    ScanKernel<T> le;
    ScanKernel<T> gt;
    ScanKernel<T> lt;
    BandScanKernel<T> outside;
    BandScanKernel<T> inside;
};

// Chosen per call from the option flags (a search never caches them, so a
// setopt between two blocks takes effect on the next block):
//  - u8 and u16: every condition on AVX2 when the AVX2 and FMA3 options are
//    both on, else SSE4.2 when that option is on, else generic;
//  - i16, f32, f64: generic.
template <class T>
ScanSet<T> choose_scans() noexcept;

template <>
ScanSet<uint8_t> choose_scans<uint8_t>() noexcept;
template <>
ScanSet<int16_t> choose_scans<int16_t>() noexcept;
template <>
ScanSet<uint16_t> choose_scans<uint16_t>() noexcept;
template <>
ScanSet<float> choose_scans<float>() noexcept;
template <>
ScanSet<double> choose_scans<double>() noexcept;

} // namespace trigger
