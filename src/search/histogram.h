#pragma once
// Linear histograms: the bin rule and the kernels for the integer sample
// types.
//
// The bin of an in-range sample x is k = d / w truncated toward zero to a
// signed 64-bit integer, low 32 bits taken, clamped to bin_count - 1, with
// d = x - range_min and w = (range_max - range_min) / bin_count, both in
// double. That costs one division per sample. For the integer sample types d
// is a whole number below 2^16, and in almost every case the rule's bin is
// the whole part of the exact quotient d * bin_count / span, which integer
// multiplication finds (see IntegerBinning). The kernels count with it.
//
// Included by the per-instruction-set files: the helpers are defined with
// internal linkage (an anonymous namespace), so no level's code can be merged
// by name into another level's.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <numeric>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace search {

// The fixed part of the rule for one call with an integer sample type, for
// range_min <= range_max and 1 <= bin_count <= kMaxFastBins.
//
// Let R = d * bin_count / span be the exact quotient (span = range_max -
// range_min), Q = d / w the one the rule divides out (w is span / bin_count
// rounded to double, so Q lies within R * 2^-53 of R), and fl(Q) its
// rounding; with R <= 2^27, fl(Q) is within 2^-25 of R.
//  - If R is not a whole number it is at least 1/span > 2^-16 away from
//    one, so fl(Q) truncates to the whole part of R.
//  - If R is a whole number j (d a multiple of span / gcd(span, bin_count)),
//    fl(Q) truncates to j when Q >= j, that is whenever w was rounded down
//    or is exact (every bin count that is a power of two, for one), and
//    otherwise to j or j - 1 depending on j. In that case the few such d (at
//    most 64) are tried once per call.
// When every whole quotient truncates to itself ("exact"), the bin is
// min(floor(R), last) for every d. floor(R) is d * M / 2^32 rounded down,
// M = ceil(2^32 * bin_count / span): the product exceeds R by less than
// d / 2^32 < 2^-16, too little to reach the next whole number. M has up to
// 59 bits, so d * M / 2^32 = d * M_high + (d * M_low) / 2^32, with the
// halves M_high and M_low of M.
//
// Otherwise (a few per cent of the ranges and bin counts) the bin is found
// in double: q' = d * reciprocal, limited to `cap` = last + 0.5 (anything
// beyond lands in the last bin either way), is within three roundings of Q
// and truncates like it unless it lies within `margin` (2^-50) of a whole
// number, relative to its size; those few samples take the division.
struct IntegerBinning {
    int32_t low;  // range_min, range_max as 32-bit integers
    int32_t high;
    uint32_t last;  // bin_count - 1
    bool exact;
    uint32_t multiplier_high;  // exact: M / 2^32
    uint32_t multiplier_low;   // exact: M mod 2^32
    double width;        // the rule's w
    double reciprocal;   // not exact: 1 / w
    double cap;          // not exact: last + 0.5
    double margin;       // not exact: 2^-50
};

// Beyond this the quotients leave the range where the shortcut is proven
// (and where 32-bit lanes hold them); such calls take the per-sample loop.
constexpr uint32_t kMaxFastBins = uint32_t(1) << 27;

// The counting kernels' window for flat signals: when all bins of a step lie
// within this many bins of the step's first, they count the samples per bin
// and write each counter once.
constexpr uint32_t kWindowReach = 3;
constexpr uint32_t kWindowBins = 2 * kWindowReach + 1;

// What a kernel found in a block: how many samples it put into bins, and
// how many were below and above the range.
struct BlockCounts {
    uint32_t binned;
    uint32_t below;
    uint32_t above;
};

// Increments bins[k] for the bin k of every in-range sample.
template <class T, class C>
using CountKernel = BlockCounts (*)(const T* x, uint32_t n, const IntegerBinning& binning, C* bins) noexcept;

// The (sample type, counter type) pairs of the counting kernels.
#define ZOLVEX_M_COUNT_KERNEL_TYPES(X)                                                             \
    X(int16_t, uint16_t, i16u16)                                                                   \
    X(int16_t, uint32_t, i16u32)                                                                   \
    X(int16_t, uint64_t, i16u64)                                                                   \
    X(uint16_t, uint16_t, u16u16)                                                                  \
    X(uint16_t, uint32_t, u16u32)                                                                  \
    X(uint16_t, uint64_t, u16u64)

#define ZOLVEX_M_DECLARE_COUNT_KERNEL(T, C, suffix)                                                \
    BlockCounts count_##suffix(const T* x, uint32_t n, const IntegerBinning& binning, C* bins) noexcept;

namespace avx2 {
ZOLVEX_M_COUNT_KERNEL_TYPES(ZOLVEX_M_DECLARE_COUNT_KERNEL)
}
namespace avx512 {
ZOLVEX_M_COUNT_KERNEL_TYPES(ZOLVEX_M_DECLARE_COUNT_KERNEL)
}
#undef ZOLVEX_M_DECLARE_COUNT_KERNEL

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

// The literal rule for an in-range integer sample at distance d from
// range_min.
inline uint32_t divided_bin(uint32_t d, const IntegerBinning& b) noexcept {
    return bin_of_quotient(static_cast<double>(d) / b.width, b.last);
}

// The bin of an exact binning: min(floor(d * bin_count / span), last).
inline uint32_t exact_bin(uint32_t d, const IntegerBinning& b) noexcept {
    uint32_t k = d * b.multiplier_high + static_cast<uint32_t>((uint64_t(d) * b.multiplier_low) >> 32);
    return k > b.last ? b.last : k;
}

// The division decides the bins of the chosen lanes of a vector of bin
// numbers k, from the lanes' distances d (both 32-bit lanes).
template <class Vector>
inline Vector divide_lanes(Vector k, Vector d, uint32_t lanes, const IntegerBinning& b) noexcept {
    constexpr uint32_t kLanes = sizeof(Vector) / sizeof(uint32_t);
    uint32_t bins[kLanes], distances[kLanes];
    std::memcpy(bins, &k, sizeof k);
    std::memcpy(distances, &d, sizeof d);
    for (; lanes != 0; lanes &= lanes - 1) {
        uint32_t lane = static_cast<uint32_t>(__builtin_ctz(lanes));
        bins[lane] = divided_bin(distances[lane], b);
    }
    std::memcpy(&k, bins, sizeof k);
    return k;
}

// Whether every d whose exact quotient is a whole number below bin_count
// gets that number by the rule.
inline bool whole_quotients_agree(const IntegerBinning& b, uint32_t span) noexcept {
    const uint32_t bin_count = b.last + 1;
    // w * bin_count <= span exactly: w was rounded down, or is exact.
    if (std::fma(b.width, static_cast<double>(bin_count), -static_cast<double>(span)) <= 0.0) return true;
    const uint32_t whole = std::gcd(span, bin_count);
    if (whole > 65) return false;
    const uint32_t step = span / whole;
    for (uint32_t m = 1; m < whole; ++m)
        if (exact_bin(m * step, b) != divided_bin(m * step, b)) return false;
    return true;
}

// The binning of one call: range_min <= range_max, 1 <= bin_count <=
// kMaxFastBins, width as the rule computes it.
inline IntegerBinning integer_binning(int32_t low, int32_t high, uint32_t bin_count, double width) noexcept {
    IntegerBinning b = {low, high, bin_count - 1, true, 0, 0, width, 0.0, 0.0, 0.0};
    const uint32_t span = static_cast<uint32_t>(high - low);
    if (span == 0) return b;  // every d is 0, and so is its bin (0 / 0 is NaN: bin 0)
    const uint64_t multiplier = ((uint64_t(bin_count) << 32) + span - 1) / span;
    b.multiplier_high = static_cast<uint32_t>(multiplier >> 32);
    b.multiplier_low = static_cast<uint32_t>(multiplier);
    b.exact = whole_quotients_agree(b, span);
    if (!b.exact) {
        b.reciprocal = 1.0 / width;
        b.cap = b.last + 0.5;
        b.margin = 0x1p-50;
    }
    return b;
}

} // namespace

} // namespace search
