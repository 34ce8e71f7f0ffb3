// SSE4.2 mulc_addc: multiply, round, add, round, exactly as the scalar loop.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "elementwise/mulc_addc_kernels.h"

namespace elementwise::sse42 {

constexpr unsigned kVectorBytes = 16;
#include "elementwise/vector_loops.inc"

namespace {

template <class T>
void mulc_addc(const T* x, T* out, uint32_t n, T m, T a) noexcept {
    const Vector<T> vm = broadcast(m), va = broadcast(a);
    element_wise(out, n, [=](size_t i, auto shape) {
        if constexpr (sizeof(shape) == sizeof(T))
            return read(x, i, shape) * m + a;
        else
            return read(x, i, shape) * vm + va;
    });
}

} // namespace

void mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a) noexcept { mulc_addc(x, out, n, m, a); }
void mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a) noexcept {
    mulc_addc(x, out, n, m, a);
}

} // namespace elementwise::sse42
