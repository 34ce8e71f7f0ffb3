#pragma once
// Absolute-value kernels: out[i] = |x[i]|, by clearing the sign bit, so that
// -0.0 gives +0.0 and a NaN keeps its payload. Each handles n = 0 itself.
// Included by the per-instruction-set files, so it declares only.

#include <cstdint>

namespace elementwise {

template <class T>
using AbsKernel = void (*)(const T* x, T* out, uint32_t n) noexcept;

#define ZOLVEX_M_DECLARE_ABS_KERNELS                                                               \
    void abs_f32(const float* x, float* out, uint32_t n) noexcept;                                 \
    void abs_f64(const double* x, double* out, uint32_t n) noexcept;

namespace generic {
ZOLVEX_M_DECLARE_ABS_KERNELS
}
namespace avx {
ZOLVEX_M_DECLARE_ABS_KERNELS
}

} // namespace elementwise
