// AVX abs kernels: and-not with the sign mask, four vectors per iteration so
// that loads, the logic op and stores overlap; a masked tail avoids a scalar
// loop and never touches memory past n.

#include <immintrin.h>

#include "elementwise/abs_kernels.h"

namespace elementwise::avx {

namespace {

// Lanes below `remaining` set, for _mm256_maskload/maskstore.
__m256i tail_mask_32(uint32_t remaining) {
    const __m256i lane = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    return _mm256_castps_si256(
        _mm256_cmp_ps(_mm256_cvtepi32_ps(lane), _mm256_set1_ps(static_cast<float>(remaining)), _CMP_LT_OQ));
}

__m256i tail_mask_64(uint32_t remaining) {
    const __m256d lane = _mm256_setr_pd(0, 1, 2, 3);
    return _mm256_castpd_si256(_mm256_cmp_pd(lane, _mm256_set1_pd(remaining), _CMP_LT_OQ));
}

} // namespace

void abs_f32(const float* x, float* out, uint32_t n) noexcept {
    const __m256 sign = _mm256_set1_ps(-0.0f);
    uint32_t i = 0;
    for (; i + 32 <= n; i += 32) {
        __m256 a = _mm256_loadu_ps(x + i), b = _mm256_loadu_ps(x + i + 8);
        __m256 c = _mm256_loadu_ps(x + i + 16), d = _mm256_loadu_ps(x + i + 24);
        _mm256_storeu_ps(out + i, _mm256_andnot_ps(sign, a));
        _mm256_storeu_ps(out + i + 8, _mm256_andnot_ps(sign, b));
        _mm256_storeu_ps(out + i + 16, _mm256_andnot_ps(sign, c));
        _mm256_storeu_ps(out + i + 24, _mm256_andnot_ps(sign, d));
    }
    for (; i + 8 <= n; i += 8) _mm256_storeu_ps(out + i, _mm256_andnot_ps(sign, _mm256_loadu_ps(x + i)));
    if (i < n) {
        __m256i mask = tail_mask_32(n - i);
        _mm256_maskstore_ps(out + i, mask, _mm256_andnot_ps(sign, _mm256_maskload_ps(x + i, mask)));
    }
}

void abs_f64(const double* x, double* out, uint32_t n) noexcept {
    const __m256d sign = _mm256_set1_pd(-0.0);
    uint32_t i = 0;
    for (; i + 16 <= n; i += 16) {
        __m256d a = _mm256_loadu_pd(x + i), b = _mm256_loadu_pd(x + i + 4);
        __m256d c = _mm256_loadu_pd(x + i + 8), d = _mm256_loadu_pd(x + i + 12);
        _mm256_storeu_pd(out + i, _mm256_andnot_pd(sign, a));
        _mm256_storeu_pd(out + i + 4, _mm256_andnot_pd(sign, b));
        _mm256_storeu_pd(out + i + 8, _mm256_andnot_pd(sign, c));
        _mm256_storeu_pd(out + i + 12, _mm256_andnot_pd(sign, d));
    }
    for (; i + 4 <= n; i += 4) _mm256_storeu_pd(out + i, _mm256_andnot_pd(sign, _mm256_loadu_pd(x + i)));
    if (i < n) {
        __m256i mask = tail_mask_64(n - i);
        _mm256_maskstore_pd(out + i, mask, _mm256_andnot_pd(sign, _mm256_maskload_pd(x + i, mask)));
    }
}

} // namespace elementwise::avx
