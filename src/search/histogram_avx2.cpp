// AVX2 counting kernels for i16/u16 samples: eight samples per step,
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

struct Lanes {
    static constexpr uint32_t kCount = 8;
    static constexpr uint32_t kAll = 0xFF;
    using Samples = __m256i;
    using Bins = __m256i;

    explicit Lanes(const IntegerBinning& b)
        : low(_mm256_set1_epi32(b.low)), high(_mm256_set1_epi32(b.high)),
          last(_mm256_set1_epi32(static_cast<int32_t>(b.last))),
          multiplier_low(_mm256_set1_epi32(static_cast<int32_t>(b.multiplier_low))),
          multiplier_high(_mm256_set1_epi32(static_cast<int32_t>(b.multiplier_high))),
          reciprocal(_mm256_set1_pd(b.reciprocal)), cap(_mm256_set1_pd(b.cap)), margin(_mm256_set1_pd(b.margin)),
          one(_mm256_set1_pd(1.0)), binning(b), exact(b.exact), wide(b.multiplier_high != 0) {}

    static Samples load(const uint16_t* x) {
        return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x)));
    }
    static Samples load(const int16_t* x) {
        return _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x)));
    }
    uint32_t below(Samples v) const { return lane_mask(_mm256_cmpgt_epi32(low, v)); }
    // With the limits reversed a sample can be both: below wins.
    uint32_t above(Samples v, uint32_t is_below) const { return lane_mask(_mm256_cmpgt_epi32(v, high)) & ~is_below; }

    Bins bins(Samples v, uint32_t inside) const {
        __m256i d = _mm256_sub_epi32(v, low);
        return exact ? exact_bins(d) : checked_bins(d, inside);
    }

    static void store(uint32_t* out, Bins k) { _mm256_store_si256(reinterpret_cast<__m256i*>(out), k); }
    static Bins to_front(Bins k, uint32_t lanes) {
        __m256i order = _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(kFrontLanes[lanes])));
        return _mm256_permutevar8x32_epi32(k, order);
    }

private:
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
        return unsure == 0 ? k : divide_lanes(k, d, unsure);
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
    // The division decides the bins of these lanes.
    __m256i divide_lanes(__m256i k, __m256i d, uint32_t lanes) const {
        alignas(32) uint32_t bins[8];
        alignas(32) uint32_t distances[8];
        _mm256_store_si256(reinterpret_cast<__m256i*>(bins), k);
        _mm256_store_si256(reinterpret_cast<__m256i*>(distances), d);
        for (; lanes != 0; lanes &= lanes - 1) {
            uint32_t lane = static_cast<uint32_t>(__builtin_ctz(lanes));
            bins[lane] = divided_bin(distances[lane], binning);
        }
        return _mm256_load_si256(reinterpret_cast<const __m256i*>(bins));
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
