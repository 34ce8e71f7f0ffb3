// SSE4.2 mulc_addc: multiply, round, add, round, exactly as the scalar loop.

#include <immintrin.h>

#include "elementwise/mulc_addc_kernels.h"

namespace elementwise::sse42 {

void mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a) noexcept {
    const __m128 vm = _mm_set1_ps(m), va = _mm_set1_ps(a);
    uint32_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m128 lo = _mm_loadu_ps(x + i), hi = _mm_loadu_ps(x + i + 4);
        _mm_storeu_ps(out + i, _mm_add_ps(_mm_mul_ps(lo, vm), va));
        _mm_storeu_ps(out + i + 4, _mm_add_ps(_mm_mul_ps(hi, vm), va));
    }
    for (; i < n; ++i) out[i] = x[i] * m + a;
}

void mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a) noexcept {
    const __m128d vm = _mm_set1_pd(m), va = _mm_set1_pd(a);
    uint32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        __m128d lo = _mm_loadu_pd(x + i), hi = _mm_loadu_pd(x + i + 2);
        _mm_storeu_pd(out + i, _mm_add_pd(_mm_mul_pd(lo, vm), va));
        _mm_storeu_pd(out + i + 2, _mm_add_pd(_mm_mul_pd(hi, vm), va));
    }
    for (; i < n; ++i) out[i] = x[i] * m + a;
}

} // namespace elementwise::sse42
