#pragma once
// Generic element-wise loops, templated on the element type and the
// operation. They are written so the compiler vectorises them for the
// baseline instruction set; element i is read before it is written, so the
// output may be an input.

#include <cstdint>

namespace elementwise {

template <class T, class Op>
int32_t binary(const T* x, const T* y, T* out, uint32_t n, Op op) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = op(x[i], y[i]);
    return 0;
}

template <class T, class Op>
int32_t with_constant(const T* x, T* out, uint32_t n, T c, Op op) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = op(x[i], c);
    return 0;
}

template <class T>
int32_t fill(T* out, uint32_t n, T value) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = value;
    return 0;
}

} // namespace elementwise
