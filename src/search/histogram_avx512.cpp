// AVX-512 (F and CD) bin kernels for i16/u16 samples: sixteen samples per
// step, widened to 32-bit lanes for the range test, their distances
// multiplied in two groups of eight doubles (see IntegerBinning for why that
// gives the division's bins). The bin numbers of the in-range lanes are
// compressed to the front of the vector and stored.

// GCC 12 warns about the deliberately undefined pass-through operand inside
// its own AVX-512 intrinsics (a compiler regression): the warning points
// into the header, not at anything this file does.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop

#include "search/histogram.h"

namespace search::avx512 {

namespace {

inline __m512i widen(const uint16_t* x) {
    return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(x)));
}
inline __m512i widen(const int16_t* x) {
    return _mm512_cvtepi16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(x)));
}

struct Multiplier {
    __m512d reciprocal, cap, bias, margin, one;
    explicit Multiplier(const IntegerBinning& b)
        : reciprocal(_mm512_set1_pd(b.reciprocal)), cap(_mm512_set1_pd(b.cap)), bias(_mm512_set1_pd(b.bias)),
          margin(_mm512_set1_pd(b.margin)), one(_mm512_set1_pd(1.0)) {}

    __m512d quotient(__m256i d) const {
        __m512d q = _mm512_mul_pd(_mm512_cvtepi32_pd(d), reciprocal);
        return _mm512_add_pd(_mm512_min_pd(q, cap), bias);
    }
    // Lanes whose quotient lies too close to a whole number to trust the
    // truncation k.
    uint32_t unsure(__m512d q, __m256i k) const {
        __m512d fraction = _mm512_sub_pd(q, _mm512_cvtepi32_pd(k));
        __m512d near = _mm512_mul_pd(q, margin);
        return static_cast<uint32_t>(_mm512_cmp_pd_mask(fraction, near, _CMP_LT_OQ) |
                                     _mm512_cmp_pd_mask(_mm512_sub_pd(one, fraction), near, _CMP_LT_OQ));
    }
};

// The division decides the bins of the lanes in `lanes`.
inline __m512i divide_lanes(__m512i k, __m512i d, uint32_t lanes, const IntegerBinning& b) {
    alignas(64) uint32_t bins[16];
    alignas(64) uint32_t distances[16];
    _mm512_store_si512(bins, k);
    _mm512_store_si512(distances, d);
    for (; lanes != 0; lanes &= lanes - 1) {
        uint32_t lane = static_cast<uint32_t>(__builtin_ctz(lanes));
        bins[lane] = divided_bin(distances[lane], b);
    }
    return _mm512_load_si512(bins);
}

template <class T>
ChunkCounts bin_numbers(const T* x, uint32_t n, const IntegerBinning& b, uint32_t* out) noexcept {
    const __m512i low = _mm512_set1_epi32(b.low);
    const __m512i high = _mm512_set1_epi32(b.high);
    const Multiplier multiplier(b);
    const bool may_be_unsure = b.margin != 0.0;
    ChunkCounts counts = {0, 0, 0};
    uint32_t i = 0;
    for (; i + 16 <= n; i += 16) {
        __m512i v = widen(x + i);
        __mmask16 is_below = _mm512_cmplt_epi32_mask(v, low);
        // With the limits reversed a sample can be both: below wins.
        __mmask16 is_above = _mm512_mask_cmpgt_epi32_mask(static_cast<__mmask16>(~is_below), v, high);
        counts.below += static_cast<uint32_t>(__builtin_popcount(is_below));
        counts.above += static_cast<uint32_t>(__builtin_popcount(is_above));
        uint32_t inside = ~static_cast<uint32_t>(is_below | is_above) & 0xFFFF;
        if (inside == 0) continue;
        __m512i d = _mm512_sub_epi32(v, low);
        __m512d q0 = multiplier.quotient(_mm512_castsi512_si256(d));
        __m512d q1 = multiplier.quotient(_mm512_extracti64x4_epi64(d, 1));
        __m256i k0 = _mm512_cvttpd_epi32(q0);
        __m256i k1 = _mm512_cvttpd_epi32(q1);
        __m512i k = _mm512_inserti64x4(_mm512_castsi256_si512(k0), k1, 1);
        if (may_be_unsure) {
            uint32_t unsure = (multiplier.unsure(q0, k0) | multiplier.unsure(q1, k1) << 8) & inside;
            if (unsure != 0) k = divide_lanes(k, d, unsure, b);
        }
        // Room for all sixteen: out has a place for each of the first i + 16
        // samples.
        _mm512_storeu_si512(out + counts.binned, _mm512_maskz_compress_epi32(static_cast<__mmask16>(inside), k));
        counts.binned += static_cast<uint32_t>(__builtin_popcount(inside));
    }
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

} // namespace search::avx512
