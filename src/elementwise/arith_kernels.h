#pragma once
// Element-wise arithmetic kernels. The same loops (arith_loops.inc) are
// compiled once per instruction-set level, each copy in its own namespace:
// the compiler vectorises them with that level's widest registers, and the
// results are those of the scalar loop because every operation is a single
// IEEE operation rounded to the element type (no contraction is allowed).
// Included by the per-instruction-set files, so it declares only.

#include <cstdint>

// out[i] = x[i] op y[i]
#define ZOLVEX_M_BINARY_OPS(X) X(add) X(sub) X(mul) X(div)
// out[i] = x[i] op c (csub and cdiv put the constant on the left)
#define ZOLVEX_M_CONSTANT_OPS(X) X(addc) X(subc) X(csub) X(mulc) X(divc) X(cdiv)

namespace elementwise {

template <class T>
using BinaryKernel = void (*)(const T* x, const T* y, T* out, uint32_t n) noexcept;
template <class T>
using ConstantKernel = void (*)(const T* x, T* out, uint32_t n, T c) noexcept;
template <class T>
using AbsKernel = void (*)(const T* x, T* out, uint32_t n) noexcept;

#define ZOLVEX_M_DECLARE_BINARY(op)                                                                \
    void op##_f32(const float* x, const float* y, float* out, uint32_t n) noexcept;                \
    void op##_f64(const double* x, const double* y, double* out, uint32_t n) noexcept;
#define ZOLVEX_M_DECLARE_CONSTANT(op)                                                              \
    void op##_f32(const float* x, float* out, uint32_t n, float c) noexcept;                       \
    void op##_f64(const double* x, double* out, uint32_t n, double c) noexcept;
#define ZOLVEX_M_DECLARE_ARITH_KERNELS                                                             \
    ZOLVEX_M_BINARY_OPS(ZOLVEX_M_DECLARE_BINARY)                                                   \
    ZOLVEX_M_CONSTANT_OPS(ZOLVEX_M_DECLARE_CONSTANT)
// abs has generic and AVX kernels only.
#define ZOLVEX_M_DECLARE_ABS_KERNELS                                                               \
    void abs_f32(const float* x, float* out, uint32_t n) noexcept;                                 \
    void abs_f64(const double* x, double* out, uint32_t n) noexcept;

namespace generic {
ZOLVEX_M_DECLARE_ARITH_KERNELS
ZOLVEX_M_DECLARE_ABS_KERNELS
}
namespace avx {
ZOLVEX_M_DECLARE_ARITH_KERNELS
ZOLVEX_M_DECLARE_ABS_KERNELS
}
namespace avx512 {
ZOLVEX_M_DECLARE_ARITH_KERNELS
}

} // namespace elementwise
