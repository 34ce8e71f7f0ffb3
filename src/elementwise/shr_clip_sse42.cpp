// PLACEHOLDER: to be replaced by the real sse42 kernels.
#include "elementwise/shr_clip_kernels.h"
namespace elementwise::sse42 {
void shr_clip_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint32_t shift, uint8_t low, uint8_t high) noexcept { generic::shr_clip_u8(x, out, n, shift, low, high); }
void shr_clip_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint32_t shift, uint16_t low, uint16_t high) noexcept { generic::shr_clip_u16(x, out, n, shift, low, high); }
}
