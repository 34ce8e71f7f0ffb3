// AVX-512 (F and CD) counting kernels for i16/u16 samples: sixteen samples
// per step, widened to 32-bit lanes. Exact binnings multiply in 32-bit lanes
// (two 32 x 32 -> 64-bit products per pair of lanes); the others multiply
// in two groups of eight doubles and let the division decide near whole
// quotients (see IntegerBinning). The loop is in histogram_loops.inc.

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

struct Lanes {
    static constexpr uint32_t kCount = 16;
    static constexpr uint32_t kAll = 0xFFFF;
    using Samples = __m512i;
    using Bins = __m512i;

    explicit Lanes(const IntegerBinning& b)
        : low(_mm512_set1_epi32(b.low)), high(_mm512_set1_epi32(b.high)),
          last(_mm512_set1_epi32(static_cast<int32_t>(b.last))),
          multiplier_low(_mm512_set1_epi32(static_cast<int32_t>(b.multiplier_low))),
          multiplier_high(_mm512_set1_epi32(static_cast<int32_t>(b.multiplier_high))),
          reciprocal(_mm512_set1_pd(b.reciprocal)), cap(_mm512_set1_pd(b.cap)), margin(_mm512_set1_pd(b.margin)),
          one(_mm512_set1_pd(1.0)), binning(b), exact(b.exact), wide(b.multiplier_high != 0) {}

    static Samples load(const uint16_t* x) {
        return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(x)));
    }
    static Samples load(const int16_t* x) {
        return _mm512_cvtepi16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(x)));
    }
    uint32_t below(Samples v) const { return _mm512_cmplt_epi32_mask(v, low); }
    // With the limits reversed a sample can be both: below wins.
    uint32_t above(Samples v, uint32_t is_below) const {
        return _mm512_mask_cmpgt_epi32_mask(static_cast<__mmask16>(~is_below), v, high);
    }

    Bins bins(Samples v, uint32_t inside) const {
        __m512i d = _mm512_sub_epi32(v, low);
        return exact ? exact_bins(d) : checked_bins(d, inside);
    }

    static void store_lanes(uint32_t* out, Bins k, uint32_t lanes) {
        _mm512_store_si512(out, lanes == kAll ? k : _mm512_maskz_compress_epi32(static_cast<__mmask16>(lanes), k));
    }
    static uint32_t first(Bins k) { return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm512_castsi512_si128(k))); }
    static bool within_window(Bins k, uint32_t start) {
        __m512i offset = _mm512_sub_epi32(k, _mm512_set1_epi32(static_cast<int32_t>(start)));
        return _mm512_cmpgt_epu32_mask(offset, _mm512_set1_epi32(kWindowBins - 1)) == 0;
    }
    static void add_window_counts(Bins k, uint32_t start, uint32_t* counts) {
        __m512i offset = _mm512_sub_epi32(k, _mm512_set1_epi32(static_cast<int32_t>(start)));
        for (uint32_t j = 0; j < kWindowBins; ++j)
            counts[j] += static_cast<uint32_t>(
                __builtin_popcount(_mm512_cmpeq_epi32_mask(offset, _mm512_set1_epi32(static_cast<int32_t>(j)))));
    }

private:
    // min(d * M_high + (d * M_low) / 2^32, last); the odd lanes' products
    // have their upper halves in the odd lanes already.
    __m512i exact_bins(__m512i d) const {
        __m512i even = _mm512_srli_epi64(_mm512_mul_epu32(d, multiplier_low), 32);
        __m512i odd = _mm512_mul_epu32(_mm512_srli_epi64(d, 32), multiplier_low);
        __m512i k = _mm512_mask_blend_epi32(0xAAAA, even, odd);
        if (wide) k = _mm512_add_epi32(k, _mm512_mullo_epi32(d, multiplier_high));
        return _mm512_min_epu32(k, last);
    }

    __m512i checked_bins(__m512i d, uint32_t inside) const {
        __m512d q0 = capped_quotient(_mm512_castsi512_si256(d));
        __m512d q1 = capped_quotient(_mm512_extracti64x4_epi64(d, 1));
        __m256i k0 = _mm512_cvttpd_epi32(q0), k1 = _mm512_cvttpd_epi32(q1);
        __m512i k = _mm512_inserti64x4(_mm512_castsi256_si512(k0), k1, 1);
        uint32_t unsure = (unsure_lanes(q0, k0) | unsure_lanes(q1, k1) << 8) & inside;
        return unsure == 0 ? k : divide_lanes(k, d, unsure, binning);
    }
    __m512d capped_quotient(__m256i d) const {
        return _mm512_min_pd(_mm512_mul_pd(_mm512_cvtepi32_pd(d), reciprocal), cap);
    }
    // Lanes whose quotient lies too close to a whole number to trust the
    // truncation k.
    uint32_t unsure_lanes(__m512d q, __m256i k) const {
        __m512d fraction = _mm512_sub_pd(q, _mm512_cvtepi32_pd(k));
        __m512d near = _mm512_mul_pd(q, margin);
        return static_cast<uint32_t>(_mm512_cmp_pd_mask(fraction, near, _CMP_LT_OQ) |
                                     _mm512_cmp_pd_mask(_mm512_sub_pd(one, fraction), near, _CMP_LT_OQ));
    }

    __m512i low, high, last, multiplier_low, multiplier_high;
    __m512d reciprocal, cap, margin, one;
    const IntegerBinning& binning;
    // Copies: counters written through the loop could otherwise alias them.
    bool exact, wide;
};

} // namespace

#include "search/histogram_loops.inc"

} // namespace search::avx512
