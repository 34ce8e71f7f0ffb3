#pragma once
// Linear histograms: the bin rule and the bin kernels for 16-bit samples.
//
// The bin of an in-range sample x is k = d / w truncated toward zero to a
// signed 64-bit integer, low 32 bits taken, clamped to bin_count - 1, with
// d = x - range_min and w = (range_max - range_min) / bin_count, both in
// double. That costs one division per sample. For the integer sample types d
// is a whole number below 2^16, which allows an exact shortcut: multiply by
// 1/w instead, and fall back to the division only where the product is too
// close to a whole number to be sure of the truncation (see
// IntegerBinning). The bin kernels find the bins of a chunk of samples that
// way; the caller increments the counters.
//
// Included by the per-instruction-set files: the helpers are defined with
// internal linkage (an anonymous namespace), so no level's code can be merged
// by name into another level's.

#include <cmath>
#include <cstdint>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace search {

// The fixed part of the rule for one call with an integer sample type, for
// range_min <= range_max and 1 <= bin_count <= kMaxFastBins.
//
// With q' = d * reciprocal (two roundings away from the exact d / w), the
// literal truncation of the rounded quotient is found as follows:
//  - w = P * 2^e with P odd and below 2^21 ("short" widths: every width whose
//    bin_count is a power of two, and all whole-number widths): a quotient
//    that is not a whole number stays at least 2^-21 away from one, so the
//    rounding of the division cannot carry it over, and q' is within 2^-24
//    of it for quotients below 2^28. Adding `bias` = 2^-22 before truncating
//    lifts a q' just under a whole-number quotient back to it and can move
//    no other q' over a whole number.
//  - any other width: the quotient is never a whole number (for d > 0), but
//    it can come as close to one as the roundings go. q' is trusted unless
//    it lies within `margin` (2^-50, several roundings) of a whole number,
//    relative to its size; those few samples take the division.
// The quotient is first limited to `cap` = last + 0.5: anything beyond lands
// in the last bin either way.
struct IntegerBinning {
    int32_t low;  // range_min, range_max as 32-bit integers
    int32_t high;
    double width;
    double reciprocal;  // 1 / width; 0 when the width is 0 (every d is then 0)
    double cap;
    double bias;    // 2^-22 for short widths, else 0
    double margin;  // 2^-50 when the division may have to decide, else 0
    uint32_t last;  // bin_count - 1
};

// Beyond this the quotients leave the range where the shortcut is proven
// (and where 32-bit lanes hold them); such calls take the per-sample loop.
constexpr uint32_t kMaxFastBins = uint32_t(1) << 27;

// What a bin kernel found in one chunk: `binned` bin numbers were written
// (in sample order, in-range samples only), and how many samples were below
// and above the range.
struct ChunkCounts {
    uint32_t binned;
    uint32_t below;
    uint32_t above;
};

template <class T>
using BinKernel = ChunkCounts (*)(const T* x, uint32_t n, const IntegerBinning& binning, uint32_t* bin_numbers) noexcept;

#define ZOLVEX_M_DECLARE_BIN_KERNELS                                                               \
    ChunkCounts bin_numbers_i16(const int16_t* x, uint32_t n, const IntegerBinning& binning,        \
                                uint32_t* bin_numbers) noexcept;                                   \
    ChunkCounts bin_numbers_u16(const uint16_t* x, uint32_t n, const IntegerBinning& binning,       \
                                uint32_t* bin_numbers) noexcept;

namespace generic {
ZOLVEX_M_DECLARE_BIN_KERNELS
}
namespace avx2 {
ZOLVEX_M_DECLARE_BIN_KERNELS
}
namespace avx512 {
ZOLVEX_M_DECLARE_BIN_KERNELS
}
#undef ZOLVEX_M_DECLARE_BIN_KERNELS

namespace {

// A double truncated toward zero to a signed 64-bit integer as the processor
// does it: a NaN or a value outside the int64 range gives the
// integer-indefinite 0x8000000000000000 (whose low 32 bits, bin 0, are what
// a NaN quotient counts into). A C++ cast would be undefined there.
inline int64_t truncate_to_int64(double q) noexcept {
#if defined(__x86_64__)
    return _mm_cvttsd_si64(_mm_set_sd(q));
#else
    if (q >= -0x1p63 && q < 0x1p63) return static_cast<int64_t>(q);
    return INT64_MIN;
#endif
}

// The bin of a quotient d / w by the literal rule: low 32 bits, clamped.
inline uint32_t bin_of_quotient(double q, uint32_t last) noexcept {
    uint32_t k = static_cast<uint32_t>(truncate_to_int64(q));
    return k > last ? last : k;
}

// The width is short when its significand, trailing zero bits dropped, is
// below 2^21.
inline bool is_short_width(double width) noexcept {
    int exponent = 0;
    uint64_t significand = static_cast<uint64_t>(std::ldexp(std::frexp(width, &exponent), 53));
    while ((significand & 1) == 0) significand >>= 1;
    return significand < (uint64_t(1) << 21);
}

// The binning of one call: range_min <= range_max, 1 <= bin_count <=
// kMaxFastBins, width as the rule computes it.
inline IntegerBinning integer_binning(int32_t low, int32_t high, uint32_t bin_count, double width) noexcept {
    IntegerBinning b = {low, high, width, 0.0, 0.0, 0.0, 0.0, bin_count - 1};
    b.cap = b.last + 0.5;
    if (width > 0.0) {
        b.reciprocal = 1.0 / width;
        if (is_short_width(width))
            b.bias = 0x1p-22;
        else
            b.margin = 0x1p-50;
    }
    return b;
}

// The literal rule for an in-range integer sample at distance d from
// range_min.
inline uint32_t divided_bin(uint32_t d, const IntegerBinning& b) noexcept {
    return bin_of_quotient(static_cast<double>(d) / b.width, b.last);
}

// The same bin through the multiplication (see IntegerBinning).
inline uint32_t multiplied_bin(uint32_t d, const IntegerBinning& b) noexcept {
    double q = static_cast<double>(d) * b.reciprocal;
    q = (q < b.cap ? q : b.cap) + b.bias;
    uint32_t k = static_cast<uint32_t>(static_cast<int32_t>(q));
    double fraction = q - static_cast<double>(k);
    double near = b.margin * q;
    if (fraction < near || 1.0 - fraction < near) return divided_bin(d, b);
    return k;
}

// Bins of x[i..n) one sample at a time, appended at bin_numbers[counts.binned];
// the tail of every kernel.
template <class T>
inline void bin_numbers_one_by_one(const T* x, uint32_t i, uint32_t n, const IntegerBinning& b,
                                   uint32_t* bin_numbers, ChunkCounts& counts) noexcept {
    for (; i < n; ++i) {
        int32_t v = x[i];
        if (v < b.low)
            ++counts.below;
        else if (v > b.high)
            ++counts.above;
        else
            bin_numbers[counts.binned++] = multiplied_bin(static_cast<uint32_t>(v - b.low), b);
    }
}

} // namespace

} // namespace search
