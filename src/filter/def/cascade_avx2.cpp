// AVX2 biquad cascade: four f64 or eight f32 sections per vector. The same
// bits as the generic kernel.

#include <immintrin.h>

#include <algorithm>
#include <cstdint>

#include "filter/def/cascade.h"

namespace def::avx2 {

namespace {

struct F64 {
    using T = double;
    using V = __m256d;
    using M = __m256d;
    static constexpr uint32_t kLanes = 4;
    static V zero() { return _mm256_setzero_pd(); }
    static V set1(T x) { return _mm256_set1_pd(x); }
    static V load(const T* p) { return _mm256_loadu_pd(p); }
    static void store(T* p, V v) { _mm256_storeu_pd(p, v); }
    static V add(V a, V b) { return _mm256_add_pd(a, b); }
    static V sub(V a, V b) { return _mm256_sub_pd(a, b); }
    static V mul(V a, V b) { return _mm256_mul_pd(a, b); }
    static V shift_in(V y, V carry) {
        V halves = _mm256_permute2f128_pd(carry, y, 0x21);  // carry[2] carry[3] y[0] y[1]
        return _mm256_shuffle_pd(halves, y, 0b0101);        // carry[3] y[0] y[1] y[2]
    }
    static M between(V index, T lo, T hi) {
        return _mm256_and_pd(_mm256_cmp_pd(index, set1(lo), _CMP_GE_OQ), _mm256_cmp_pd(index, set1(hi), _CMP_LE_OQ));
    }
    static V select(M mask, V on, V off) { return _mm256_blendv_pd(off, on, mask); }
};

struct F32 {
    using T = float;
    using V = __m256;
    using M = __m256;
    static constexpr uint32_t kLanes = 8;
    static V zero() { return _mm256_setzero_ps(); }
    static V set1(T x) { return _mm256_set1_ps(x); }
    static V load(const T* p) { return _mm256_loadu_ps(p); }
    static void store(T* p, V v) { _mm256_storeu_ps(p, v); }
    static V add(V a, V b) { return _mm256_add_ps(a, b); }
    static V sub(V a, V b) { return _mm256_sub_ps(a, b); }
    static V mul(V a, V b) { return _mm256_mul_ps(a, b); }
    static V shift_in(V y, V carry) {
        __m256i halves = _mm256_castps_si256(_mm256_permute2f128_ps(carry, y, 0x21));  // carry[4..7] y[0..3]
        // Per 128-bit half: {carry[7], y[0..2]} and {y[3], y[4..6]}.
        return _mm256_castsi256_ps(_mm256_alignr_epi8(_mm256_castps_si256(y), halves, 12));
    }
    static M between(V index, T lo, T hi) {
        return _mm256_and_ps(_mm256_cmp_ps(index, set1(lo), _CMP_GE_OQ), _mm256_cmp_ps(index, set1(hi), _CMP_LE_OQ));
    }
    static V select(M mask, V on, V off) { return _mm256_blendv_ps(off, on, mask); }
};

} // namespace

#include "filter/def/cascade_loops.inc"

ZOLVEX_M_DEFINE_CASCADE_KERNELS(F32, F64)

} // namespace def::avx2
