// AVX-512 biquad cascade: eight f64 or sixteen f32 sections per vector. The
// same bits as the generic kernel.

#include <immintrin.h>

#include <algorithm>
#include <cstdint>

#include "filter/def/cascade.h"

namespace def::avx512 {

namespace {

struct F64 {
    using T = double;
    using V = __m512d;
    using M = __mmask8;
    static constexpr uint32_t kLanes = 8;
    static V zero() { return _mm512_setzero_pd(); }
    static V set1(T x) { return _mm512_set1_pd(x); }
    static V load(const T* p) { return _mm512_loadu_pd(p); }
    static void store(T* p, V v) { _mm512_storeu_pd(p, v); }
    static V add(V a, V b) { return _mm512_add_pd(a, b); }
    static V sub(V a, V b) { return _mm512_sub_pd(a, b); }
    static V mul(V a, V b) { return _mm512_mul_pd(a, b); }
    static V shift_in(V y, V carry) {
        // The zero-masked form with every lane set is the same instruction,
        // without the undefined source GCC 12 warns about.
        return _mm512_castsi512_pd(_mm512_maskz_alignr_epi64(0xFF, _mm512_castpd_si512(y), _mm512_castpd_si512(carry), 7));
    }
    static M between(V index, T lo, T hi) {
        return _mm512_cmp_pd_mask(index, set1(lo), _CMP_GE_OQ) & _mm512_cmp_pd_mask(index, set1(hi), _CMP_LE_OQ);
    }
    static V select(M mask, V on, V off) { return _mm512_mask_blend_pd(mask, off, on); }
};

struct F32 {
    using T = float;
    using V = __m512;
    using M = __mmask16;
    static constexpr uint32_t kLanes = 16;
    static V zero() { return _mm512_setzero_ps(); }
    static V set1(T x) { return _mm512_set1_ps(x); }
    static V load(const T* p) { return _mm512_loadu_ps(p); }
    static void store(T* p, V v) { _mm512_storeu_ps(p, v); }
    static V add(V a, V b) { return _mm512_add_ps(a, b); }
    static V sub(V a, V b) { return _mm512_sub_ps(a, b); }
    static V mul(V a, V b) { return _mm512_mul_ps(a, b); }
    static V shift_in(V y, V carry) {
        return _mm512_castsi512_ps(
            _mm512_maskz_alignr_epi32(0xFFFF, _mm512_castps_si512(y), _mm512_castps_si512(carry), 15));
    }
    static M between(V index, T lo, T hi) {
        return _mm512_cmp_ps_mask(index, set1(lo), _CMP_GE_OQ) & _mm512_cmp_ps_mask(index, set1(hi), _CMP_LE_OQ);
    }
    static V select(M mask, V on, V off) { return _mm512_mask_blend_ps(mask, off, on); }
};

} // namespace

#include "filter/def/cascade_loops.inc"

ZOLVEX_M_DEFINE_CASCADE_KERNELS(F32, F64)

} // namespace def::avx512
