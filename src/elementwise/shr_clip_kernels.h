#pragma once
// Shift-right-and-clip kernels: out[i] = min(max(x[i] >> shift, low), high),
// a shift of the element width or more giving 0 before the clamp.
// Included by the per-instruction-set files, so it declares only.

#include <cstdint>

namespace elementwise {

template <class T>
using ShrClipKernel = void (*)(const T* x, T* out, uint32_t n, uint32_t shift, T low, T high) noexcept;

#define ZOLVEX_M_DECLARE_SHR_CLIP_KERNELS                                                          \
    void shr_clip_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint32_t shift, uint8_t low,      \
                     uint8_t high) noexcept;                                                       \
    void shr_clip_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint32_t shift, uint16_t low,  \
                      uint16_t high) noexcept;

namespace generic {
ZOLVEX_M_DECLARE_SHR_CLIP_KERNELS
}
namespace sse42 {
ZOLVEX_M_DECLARE_SHR_CLIP_KERNELS
}
namespace avx2 {
ZOLVEX_M_DECLARE_SHR_CLIP_KERNELS
}

} // namespace elementwise
