// AVX2 counting kernels for i16/u16 samples: sixteen samples per step,
// widened to 32-bit lanes. Exact binnings multiply in 32-bit lanes (two
// 32 x 32 -> 64-bit products per pair of lanes); the others multiply in two
// groups of four doubles and let the division decide near whole quotients
// (see IntegerBinning). The loop is in histogram_loops.inc.

#include <immintrin.h>

#include <array>

#include "search/histogram.h"

namespace search::avx2 {

namespace {

// For each 8-bit lane mask, the lanes that are set, in order, one byte each.
constexpr std::array<uint64_t, 256> kFrontLanes = [] {
    std::array<uint64_t, 256> table{};
    for (uint32_t mask = 0; mask < 256; ++mask) {
        uint32_t placed = 0;
        for (uint32_t lane = 0; lane < 8; ++lane)
            if (mask & (1u << lane)) table[mask] |= uint64_t(lane) << (8 * placed++);
    }
    return table;
}();

// Sixteen samples per step, in two halves of eight 32-bit lanes: a step's
// fixed work (masks, counts, the delayed increments' bookkeeping) is then
// spread over as many samples as at the AVX-512 level.
struct Lanes {
    static constexpr uint32_t kCount = 16;
    static constexpr uint32_t kAll = 0xFFFF;
    struct Samples {
        __m256i low, high;
    };
    using Bins = Samples;

    explicit Lanes(const IntegerBinning& b)
        : low(_mm256_set1_epi32(b.low)), high(_mm256_set1_epi32(b.high)),
          last(_mm256_set1_epi32(static_cast<int32_t>(b.last))),
          multiplier_low(_mm256_set1_epi32(static_cast<int32_t>(b.multiplier_low))),
          multiplier_high(_mm256_set1_epi32(static_cast<int32_t>(b.multiplier_high))),
          reciprocal(_mm256_set1_pd(b.reciprocal)), cap(_mm256_set1_pd(b.cap)), margin(_mm256_set1_pd(b.margin)),
          one(_mm256_set1_pd(1.0)), binning(b), exact(b.exact), wide(b.multiplier_high != 0) {}

    static Samples load(const uint16_t* x) {
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(x));
        return {_mm256_cvtepu16_epi32(_mm256_castsi256_si128(v)), _mm256_cvtepu16_epi32(_mm256_extracti128_si256(v, 1))};
    }
    static Samples load(const int16_t* x) {
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(x));
        return {_mm256_cvtepi16_epi32(_mm256_castsi256_si128(v)), _mm256_cvtepi16_epi32(_mm256_extracti128_si256(v, 1))};
    }
    uint32_t below(Samples v) const {
        return lane_mask(_mm256_cmpgt_epi32(low, v.low)) | lane_mask(_mm256_cmpgt_epi32(low, v.high)) << 8;
    }
    // With the limits reversed a sample can be both: below wins.
    uint32_t above(Samples v, uint32_t is_below) const {
        uint32_t over = lane_mask(_mm256_cmpgt_epi32(v.low, high)) | lane_mask(_mm256_cmpgt_epi32(v.high, high)) << 8;
        return over & ~is_below;
    }

    Bins bins(Samples v, uint32_t inside) const { return {half_bins(v.low, inside & 0xFF), half_bins(v.high, inside >> 8)}; }

    static void store_lanes(uint32_t* out, Bins k, uint32_t lanes) {
        if (lanes == kAll) {
            store(out, k.low);
            store(out + 8, k.high);
            return;
        }
        store(out, _mm256_permutevar8x32_epi32(k.low, front_lanes(lanes & 0xFF)));
        store(out + __builtin_popcount(lanes & 0xFF), _mm256_permutevar8x32_epi32(k.high, front_lanes(lanes >> 8)));
    }
    static uint32_t first(Bins k) { return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm256_castsi256_si128(k.low))); }
    static bool within_window(Bins k, uint32_t start) {
        const __m256i first = _mm256_set1_epi32(static_cast<int32_t>(start));
        const __m256i end = _mm256_set1_epi32(kWindowBins - 1);
        __m256i low_offset = _mm256_sub_epi32(k.low, first), high_offset = _mm256_sub_epi32(k.high, first);
        // Beyond the end exactly where the unsigned maximum with it is not it.
        __m256i outside = _mm256_or_si256(_mm256_xor_si256(_mm256_max_epu32(low_offset, end), end),
                                          _mm256_xor_si256(_mm256_max_epu32(high_offset, end), end));
        return _mm256_testz_si256(outside, outside) != 0;
    }
    static void add_window_counts(Bins k, uint32_t start, uint32_t* counts) {
        const __m256i first = _mm256_set1_epi32(static_cast<int32_t>(start));
        __m256i low_offset = _mm256_sub_epi32(k.low, first), high_offset = _mm256_sub_epi32(k.high, first);
        for (uint32_t j = 0; j < kWindowBins; ++j) {
            __m256i bin = _mm256_set1_epi32(static_cast<int32_t>(j));
            counts[j] += static_cast<uint32_t>(__builtin_popcount(lane_mask(_mm256_cmpeq_epi32(low_offset, bin)) |
                                                                  lane_mask(_mm256_cmpeq_epi32(high_offset, bin)) << 8));
        }
    }

private:
    static void store(uint32_t* out, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), v); }
    __m256i half_bins(__m256i v, uint32_t inside) const {
        __m256i d = _mm256_sub_epi32(v, low);
        return exact ? exact_bins(d) : checked_bins(d, inside);
    }
    // The lanes set in the mask, in order, then zeros.
    static __m256i front_lanes(uint32_t mask) {
        return _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(kFrontLanes[mask])));
    }
    static uint32_t lane_mask(__m256i v) { return static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(v))); }

    // min(d * M_high + (d * M_low) / 2^32, last); the odd lanes' products
    // have their upper halves in the odd lanes already.
    __m256i exact_bins(__m256i d) const {
        __m256i even = _mm256_srli_epi64(_mm256_mul_epu32(d, multiplier_low), 32);
        __m256i odd = _mm256_mul_epu32(_mm256_srli_epi64(d, 32), multiplier_low);
        __m256i k = _mm256_blend_epi32(even, odd, 0xAA);
        if (wide) k = _mm256_add_epi32(k, _mm256_mullo_epi32(d, multiplier_high));
        return _mm256_min_epu32(k, last);
    }

    __m256i checked_bins(__m256i d, uint32_t inside) const {
        __m256d q0 = capped_quotient(_mm256_castsi256_si128(d));
        __m256d q1 = capped_quotient(_mm256_extracti128_si256(d, 1));
        __m128i k0 = _mm256_cvttpd_epi32(q0), k1 = _mm256_cvttpd_epi32(q1);
        __m256i k = _mm256_set_m128i(k1, k0);
        uint32_t unsure = (unsure_lanes(q0, k0) | unsure_lanes(q1, k1) << 4) & inside;
        return unsure == 0 ? k : divide_lanes(k, d, unsure, binning);
    }
    __m256d capped_quotient(__m128i d) const {
        return _mm256_min_pd(_mm256_mul_pd(_mm256_cvtepi32_pd(d), reciprocal), cap);
    }
    // Lanes whose quotient lies too close to a whole number to trust the
    // truncation k.
    uint32_t unsure_lanes(__m256d q, __m128i k) const {
        __m256d fraction = _mm256_sub_pd(q, _mm256_cvtepi32_pd(k));
        __m256d near = _mm256_mul_pd(q, margin);
        __m256d close = _mm256_or_pd(_mm256_cmp_pd(fraction, near, _CMP_LT_OQ),
                                     _mm256_cmp_pd(_mm256_sub_pd(one, fraction), near, _CMP_LT_OQ));
        return static_cast<uint32_t>(_mm256_movemask_pd(close));
    }

    __m256i low, high, last, multiplier_low, multiplier_high;
    __m256d reciprocal, cap, margin, one;
    const IntegerBinning& binning;
    // Copies: counters written through the loop could otherwise alias them.
    bool exact, wide;
};

} // namespace

#include "search/histogram_loops.inc"

} // namespace search::avx2
