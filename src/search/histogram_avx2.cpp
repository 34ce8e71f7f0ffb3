// AVX2 bin kernels for i16/u16 samples: eight samples per step, widened to
// 32-bit lanes for the range test, their distances multiplied in two groups
// of four doubles (see IntegerBinning for why that gives the division's
// bins). The bin numbers of the in-range lanes are moved to the front of the
// vector and stored; a chunk's below and above counts add up in 32-bit lanes.

#include <immintrin.h>

#include <array>

#include "search/histogram.h"

namespace search::avx2 {

namespace {

inline __m256i widen(const uint16_t* x) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x)));
}
inline __m256i widen(const int16_t* x) {
    return _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x)));
}

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

inline __m256i to_front(__m256i v, uint32_t mask) {
    __m256i order = _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(kFrontLanes[mask])));
    return _mm256_permutevar8x32_epi32(v, order);
}

inline uint32_t lane_sum(__m256i v) {
    __m128i s = _mm_add_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
    s = _mm_add_epi32(s, _mm_shuffle_epi32(s, _MM_SHUFFLE(1, 0, 3, 2)));
    s = _mm_add_epi32(s, _mm_shuffle_epi32(s, _MM_SHUFFLE(2, 3, 0, 1)));
    return static_cast<uint32_t>(_mm_cvtsi128_si32(s));
}

struct Multiplier {
    __m256d reciprocal, cap, bias, margin, one;
    explicit Multiplier(const IntegerBinning& b)
        : reciprocal(_mm256_set1_pd(b.reciprocal)), cap(_mm256_set1_pd(b.cap)), bias(_mm256_set1_pd(b.bias)),
          margin(_mm256_set1_pd(b.margin)), one(_mm256_set1_pd(1.0)) {}

    __m256d quotient(__m128i d) const {
        __m256d q = _mm256_mul_pd(_mm256_cvtepi32_pd(d), reciprocal);
        return _mm256_add_pd(_mm256_min_pd(q, cap), bias);
    }
    // Lanes whose quotient lies too close to a whole number to trust the
    // truncation k.
    uint32_t unsure(__m256d q, __m128i k) const {
        __m256d fraction = _mm256_sub_pd(q, _mm256_cvtepi32_pd(k));
        __m256d near = _mm256_mul_pd(q, margin);
        __m256d close = _mm256_or_pd(_mm256_cmp_pd(fraction, near, _CMP_LT_OQ),
                                     _mm256_cmp_pd(_mm256_sub_pd(one, fraction), near, _CMP_LT_OQ));
        return static_cast<uint32_t>(_mm256_movemask_pd(close));
    }
};

// The division decides the bins of the lanes in `lanes`.
inline __m256i divide_lanes(__m256i k, __m256i d, uint32_t lanes, const IntegerBinning& b) {
    alignas(32) uint32_t bins[8];
    alignas(32) uint32_t distances[8];
    _mm256_store_si256(reinterpret_cast<__m256i*>(bins), k);
    _mm256_store_si256(reinterpret_cast<__m256i*>(distances), d);
    for (; lanes != 0; lanes &= lanes - 1) {
        uint32_t lane = static_cast<uint32_t>(__builtin_ctz(lanes));
        bins[lane] = divided_bin(distances[lane], b);
    }
    return _mm256_load_si256(reinterpret_cast<const __m256i*>(bins));
}

template <class T>
ChunkCounts bin_numbers(const T* x, uint32_t n, const IntegerBinning& b, uint32_t* out) noexcept {
    const __m256i low = _mm256_set1_epi32(b.low);
    const __m256i high = _mm256_set1_epi32(b.high);
    const Multiplier multiplier(b);
    const bool may_be_unsure = b.margin != 0.0;
    __m256i below = _mm256_setzero_si256();
    __m256i above = _mm256_setzero_si256();
    uint32_t binned = 0;
    uint32_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m256i v = widen(x + i);
        __m256i is_below = _mm256_cmpgt_epi32(low, v);
        // With the limits reversed a sample can be both: below wins.
        __m256i is_above = _mm256_andnot_si256(is_below, _mm256_cmpgt_epi32(v, high));
        below = _mm256_sub_epi32(below, is_below);
        above = _mm256_sub_epi32(above, is_above);
        uint32_t inside =
            ~static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(_mm256_or_si256(is_below, is_above)))) & 0xFF;
        if (inside == 0) continue;
        __m256i d = _mm256_sub_epi32(v, low);
        __m256d q0 = multiplier.quotient(_mm256_castsi256_si128(d));
        __m256d q1 = multiplier.quotient(_mm256_extracti128_si256(d, 1));
        __m128i k0 = _mm256_cvttpd_epi32(q0);
        __m128i k1 = _mm256_cvttpd_epi32(q1);
        __m256i k = _mm256_set_m128i(k1, k0);
        if (may_be_unsure) {
            uint32_t unsure = (multiplier.unsure(q0, k0) | multiplier.unsure(q1, k1) << 4) & inside;
            if (unsure != 0) k = divide_lanes(k, d, unsure, b);
        }
        if (inside != 0xFF) k = to_front(k, inside);
        // Room for all eight: out has a place for each of the first i + 8 samples.
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + binned), k);
        binned += static_cast<uint32_t>(__builtin_popcount(inside));
    }
    ChunkCounts counts = {binned, lane_sum(below), lane_sum(above)};
    bin_numbers_one_by_one(x, i, n, b, out, counts);
    return counts;
}

} // namespace

ChunkCounts bin_numbers_i16(const int16_t* x, uint32_t n, const IntegerBinning& b, uint32_t* out) noexcept {
    return bin_numbers(x, n, b, out);
}
ChunkCounts bin_numbers_u16(const uint16_t* x, uint32_t n, const IntegerBinning& b, uint32_t* out) noexcept {
    return bin_numbers(x, n, b, out);
}

} // namespace search::avx2
