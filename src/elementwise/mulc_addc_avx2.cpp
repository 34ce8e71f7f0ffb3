// AVX2+FMA3 mulc_addc: one fused multiply-add per element (a single
// rounding), the scalar head and tail fused the same way.

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "elementwise/mulc_addc_kernels.h"

namespace elementwise::avx2 {

constexpr unsigned kVectorBytes = 32;
#include "elementwise/vector_loops.inc"

namespace {

inline float fused(float x, float m, float a) noexcept { return __builtin_fmaf(x, m, a); }
inline double fused(double x, double m, double a) noexcept { return __builtin_fma(x, m, a); }
inline Vector<float> fused(Vector<float> x, Vector<float> m, Vector<float> a) noexcept {
    return _mm256_fmadd_ps(x, m, a);
}
inline Vector<double> fused(Vector<double> x, Vector<double> m, Vector<double> a) noexcept {
    return _mm256_fmadd_pd(x, m, a);
}

template <class T>
void mulc_addc(const T* x, T* out, uint32_t n, T m, T a) noexcept {
    const Vector<T> vm = broadcast(m), va = broadcast(a);
    element_wise(out, n, [=](size_t i, auto shape) {
        if constexpr (sizeof(shape) == sizeof(T))
            return fused(read(x, i, shape), m, a);
        else
            return fused(read(x, i, shape), vm, va);
    });
}

} // namespace

void mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a) noexcept { mulc_addc(x, out, n, m, a); }
void mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a) noexcept {
    mulc_addc(x, out, n, m, a);
}

} // namespace elementwise::avx2
