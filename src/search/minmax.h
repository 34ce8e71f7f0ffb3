#pragma once
// Min/max kernels: the smallest and largest of x[0..n), n >= 1, by the
// rule of extremes_rule.h, written to the result pointers that are not null
// (at least one is not; only the requested extremes are computed). Every
// kernel gives the generic kernel's results bit for bit, NaN and signed
// zeros included. Included by the per-instruction-set files, so it declares
// only.

#include <cstdint>

namespace search {

template <class T>
using MinMaxKernel = void (*)(const T* x, uint32_t n, T* min, T* max) noexcept;

#define ZOLVEX_M_DECLARE_MINMAX_KERNELS                                                            \
    void minmax_u8(const uint8_t* x, uint32_t n, uint8_t* min, uint8_t* max) noexcept;             \
    void minmax_i16(const int16_t* x, uint32_t n, int16_t* min, int16_t* max) noexcept;            \
    void minmax_u16(const uint16_t* x, uint32_t n, uint16_t* min, uint16_t* max) noexcept;         \
    void minmax_f32(const float* x, uint32_t n, float* min, float* max) noexcept;                  \
    void minmax_f64(const double* x, uint32_t n, double* min, double* max) noexcept;

namespace generic {
ZOLVEX_M_DECLARE_MINMAX_KERNELS
}
namespace sse42 {
ZOLVEX_M_DECLARE_MINMAX_KERNELS
}
namespace avx2 {
ZOLVEX_M_DECLARE_MINMAX_KERNELS
}
namespace avx512 {
ZOLVEX_M_DECLARE_MINMAX_KERNELS
}

#undef ZOLVEX_M_DECLARE_MINMAX_KERNELS

// The kernel the option flags allow now (read on every call), for u8, i16,
// u16, f32 and f64: see KernelSet::widest_allowed.
template <class T>
MinMaxKernel<T> choose_minmax_kernel() noexcept;

} // namespace search
