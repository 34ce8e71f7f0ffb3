#pragma once
// Integer and bit operation kernels: shifts, masks and clipping. Included
// by the per-instruction-set files, so it declares only.
//
//   shl/shr:       out[i] = x[i] << shift, x[i] >> shift (logical); the
//                  kernels take shift < the element width only
//   andc:          out[i] = x[i] & mask
//   bit_mask_set:  out[i] = x[i] | mask
//   bit_mask_test: out[i] = (x[i] & mask) != 0 ? 1 : 0
//   clip:          v = x[i] < low ? low : x[i]; out[i] = v > high ? high : v

#include <cstdint>

namespace elementwise {

template <class T>
using ShiftKernel = void (*)(const T* x, T* out, uint32_t n, uint32_t shift) noexcept;
template <class T>
using MaskKernel = void (*)(const T* x, T* out, uint32_t n, T mask) noexcept;
template <class T>
using ClipKernel = void (*)(const T* x, T* out, uint32_t n, T low, T high) noexcept;

#define ZOLVEX_M_SHIFT_TYPES(X) X(uint8_t, u8) X(uint16_t, u16)
#define ZOLVEX_M_MASK_TYPES(X) X(uint8_t, u8) X(int16_t, i16) X(uint16_t, u16) X(uint32_t, u32)
#define ZOLVEX_M_CLIP_TYPES(X) ZOLVEX_M_MASK_TYPES(X) X(float, f32) X(double, f64)

#define ZOLVEX_M_DECLARE_SHIFT_KERNELS(T, suffix)                                                  \
    void shl_##suffix(const T* x, T* out, uint32_t n, uint32_t shift) noexcept;                   \
    void shr_##suffix(const T* x, T* out, uint32_t n, uint32_t shift) noexcept;
#define ZOLVEX_M_DECLARE_MASK_KERNELS(T, suffix)                                                   \
    void andc_##suffix(const T* x, T* out, uint32_t n, T mask) noexcept;                          \
    void bit_mask_set_##suffix(const T* x, T* out, uint32_t n, T mask) noexcept;                  \
    void bit_mask_test_##suffix(const T* x, T* out, uint32_t n, T mask) noexcept;
#define ZOLVEX_M_DECLARE_CLIP_KERNEL(T, suffix)                                                    \
    void clip_##suffix(const T* x, T* out, uint32_t n, T low, T high) noexcept;
#define ZOLVEX_M_DECLARE_BITOPS_KERNELS                                                            \
    ZOLVEX_M_SHIFT_TYPES(ZOLVEX_M_DECLARE_SHIFT_KERNELS)                                          \
    ZOLVEX_M_MASK_TYPES(ZOLVEX_M_DECLARE_MASK_KERNELS)                                            \
    ZOLVEX_M_CLIP_TYPES(ZOLVEX_M_DECLARE_CLIP_KERNEL)

// The plain loops (generic) and the vector kernels of each level. SSE4.2
// has what SSE2 lacks: byte and variable shifts, and the unsigned 16- and
// 32-bit minimum and maximum; the other plain loops already become SSE2 code
// as fast as an SSE4.2 kernel.
#define ZOLVEX_M_SSE42_CLIP_TYPES(X) X(uint16_t, u16) X(uint32_t, u32)
namespace generic {
ZOLVEX_M_DECLARE_BITOPS_KERNELS
}
namespace sse42 {
ZOLVEX_M_SHIFT_TYPES(ZOLVEX_M_DECLARE_SHIFT_KERNELS)
ZOLVEX_M_SSE42_CLIP_TYPES(ZOLVEX_M_DECLARE_CLIP_KERNEL)
} // namespace sse42
namespace avx2 {
ZOLVEX_M_DECLARE_BITOPS_KERNELS
}
namespace avx512bw {
ZOLVEX_M_DECLARE_BITOPS_KERNELS
}

#undef ZOLVEX_M_DECLARE_BITOPS_KERNELS

} // namespace elementwise
