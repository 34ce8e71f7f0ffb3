#pragma once
// Elementary-function kernels (sin ... erf, pow, atan2, hypot, sqrt,
// sincos, magnitude, logn). The loops (elementary_loops.inc) are compiled
// once per instruction-set level, each copy calling the SLEEF vector entry
// points of its own width. Included by the per-level files, so it declares
// only.
//
// The levels use SLEEF's deterministic families, whose results do not depend
// on the vector width: generic (SSE2), SSE4.2 and AVX call the family
// without fused multiply-add ("cinz") and give identical bits; AVX2+FMA3 and
// AVX-512 call the fused family ("finz") and give identical bits to each
// other, which may differ from the first group's in the last bit. Both
// families are within 1 ulp of the exact result.

#include <cstdint>

// One-input functions and the SLEEF accuracy class each one calls (u10:
// within 1.0 ulp).
#define ZOLVEX_M_ELEMENTARY_UNARY(X)                                                               \
    X(sin, u10) X(cos, u10) X(tan, u10) X(asin, u10) X(acos, u10) X(atan, u10) X(sinh, u10)        \
    X(cosh, u10) X(tanh, u10) X(asinh, u10) X(acosh, u10) X(atanh, u10) X(exp, u10)             \
    X(exp2, u10) X(log, u10) X(log2, u10) X(log10, u10) X(cbrt, u10) X(erf, u10)
// Two-input functions, f(x[i], y[i]) (u05: within 0.5001 ulp).
#define ZOLVEX_M_ELEMENTARY_BINARY(X) X(pow, u10) X(atan2, u10) X(hypot, u05)

namespace elementwise::elementary {

template <class T>
using UnaryKernel = void (*)(const T* x, T* out, uint32_t n) noexcept;
template <class T>
using BinaryKernel = void (*)(const T* x, const T* y, T* out, uint32_t n) noexcept;
template <class T>
using SincosKernel = void (*)(const T* x, T* sin_out, T* cos_out, uint32_t n) noexcept;
template <class T>
using LognKernel = void (*)(const T* x, T* out, uint32_t n, T base) noexcept;

#define ZOLVEX_M_DECLARE_ELEMENTARY_UNARY(fn, ulp)                                                 \
    void fn##_f32(const float* x, float* out, uint32_t n) noexcept;                                \
    void fn##_f64(const double* x, double* out, uint32_t n) noexcept;
#define ZOLVEX_M_DECLARE_ELEMENTARY_BINARY(fn, ulp)                                                \
    void fn##_f32(const float* x, const float* y, float* out, uint32_t n) noexcept;                \
    void fn##_f64(const double* x, const double* y, double* out, uint32_t n) noexcept;
// Every level's kernels; magnitude reads n interleaved complex values, logn
// has a per-level kernel for f32 only (f64 works in extended precision, one
// element at a time, with one kernel for every level).
#define ZOLVEX_M_DECLARE_ELEMENTARY_KERNELS                                                        \
    ZOLVEX_M_ELEMENTARY_UNARY(ZOLVEX_M_DECLARE_ELEMENTARY_UNARY)                                   \
    ZOLVEX_M_ELEMENTARY_BINARY(ZOLVEX_M_DECLARE_ELEMENTARY_BINARY)                                 \
    ZOLVEX_M_DECLARE_ELEMENTARY_UNARY(sqrt, exact)                                                 \
    ZOLVEX_M_DECLARE_ELEMENTARY_UNARY(magnitude, u05)                                              \
    void sincos_f32(const float* x, float* sin_out, float* cos_out, uint32_t n) noexcept;          \
    void sincos_f64(const double* x, double* sin_out, double* cos_out, uint32_t n) noexcept;       \
    void logn_f32(const float* x, float* out, uint32_t n, float base) noexcept;

namespace generic {
ZOLVEX_M_DECLARE_ELEMENTARY_KERNELS
void logn_f64(const double* x, double* out, uint32_t n, double base) noexcept;
}
namespace sse42 {
ZOLVEX_M_DECLARE_ELEMENTARY_KERNELS
}
namespace avx {
ZOLVEX_M_DECLARE_ELEMENTARY_KERNELS
}
namespace avx2 {
ZOLVEX_M_DECLARE_ELEMENTARY_KERNELS
}
namespace avx512 {
ZOLVEX_M_DECLARE_ELEMENTARY_KERNELS
}

} // namespace elementwise::elementary
