// AVX2+FMA3 mulc_addc: one fused multiply-add per element (a single
// rounding), the scalar tail fused the same way.

#include <immintrin.h>

#include "elementwise/mulc_addc_kernels.h"

namespace elementwise::avx2 {

void mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a) noexcept {
    const __m256 vm = _mm256_set1_ps(m), va = _mm256_set1_ps(a);
    uint32_t i = 0;
    for (; i + 16 <= n; i += 16) {
        __m256 lo = _mm256_loadu_ps(x + i), hi = _mm256_loadu_ps(x + i + 8);
        _mm256_storeu_ps(out + i, _mm256_fmadd_ps(lo, vm, va));
        _mm256_storeu_ps(out + i + 8, _mm256_fmadd_ps(hi, vm, va));
    }
    for (; i < n; ++i) out[i] = __builtin_fmaf(x[i], m, a);
}

void mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a) noexcept {
    const __m256d vm = _mm256_set1_pd(m), va = _mm256_set1_pd(a);
    uint32_t i = 0;
    for (; i + 8 <= n; i += 8) {
        __m256d lo = _mm256_loadu_pd(x + i), hi = _mm256_loadu_pd(x + i + 4);
        _mm256_storeu_pd(out + i, _mm256_fmadd_pd(lo, vm, va));
        _mm256_storeu_pd(out + i + 4, _mm256_fmadd_pd(hi, vm, va));
    }
    for (; i < n; ++i) out[i] = __builtin_fma(x[i], m, a);
}

} // namespace elementwise::avx2
