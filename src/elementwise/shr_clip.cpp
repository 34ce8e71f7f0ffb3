// Shift right and clip: generic kernels, the dispatch table and the exported
// entry points.

#include "elementwise/shr_clip.h"

#include "core/options.h"
#include "zolvex_m.h"

namespace elementwise {

namespace generic {

// Shifting by the element width or more is undefined in C++; it is defined
// here as giving 0, which is also what the vector shift instructions do.
template <class T>
static void shr_clip_loop(const T* x, T* out, uint32_t n, uint32_t shift, T low, T high) noexcept {
    constexpr uint32_t kBits = sizeof(T) * 8;
    for (uint32_t i = 0; i < n; ++i) {
        T v = shift < kBits ? static_cast<T>(x[i] >> shift) : T(0);
        v = v < low ? low : v;
        out[i] = v > high ? high : v;
    }
}

void shr_clip_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint32_t shift, uint8_t low, uint8_t high) noexcept {
    shr_clip_loop(x, out, n, shift, low, high);
}
void shr_clip_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint32_t shift, uint16_t low,
                  uint16_t high) noexcept {
    shr_clip_loop(x, out, n, shift, low, high);
}

} // namespace generic

// Valid before the first init: the generic kernels need nothing.
ShrClipKernels g_shr_clip_kernels = {{generic::shr_clip_u8}, {generic::shr_clip_u16}};

void choose_shr_clip_kernels() noexcept {
    ShrClipKernel<uint8_t> u8 = generic::shr_clip_u8;
    ShrClipKernel<uint16_t> u16 = generic::shr_clip_u16;
    if (core::option_on(ZOLVEX_M_OPT_SSE42)) {
        u8 = sse42::shr_clip_u8;
        u16 = sse42::shr_clip_u16;
    }
    if (core::avx2_fma3_on()) {
        u8 = avx2::shr_clip_u8;
        u16 = avx2::shr_clip_u16;
    }
    g_shr_clip_kernels.u8.store(u8, std::memory_order_relaxed);
    g_shr_clip_kernels.u16.store(u16, std::memory_order_relaxed);
}

} // namespace elementwise

extern "C" {

int32_t zolvex_m_shr_clip_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint32_t shift, uint8_t low,
                             uint8_t high) {
    elementwise::g_shr_clip_kernels.u8.load(std::memory_order_relaxed)(x, out, n, shift, low, high);
    return 0;
}

int32_t zolvex_m_shr_clip_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint32_t shift, uint16_t low,
                              uint16_t high) {
    elementwise::g_shr_clip_kernels.u16.load(std::memory_order_relaxed)(x, out, n, shift, low, high);
    return 0;
}

} // extern "C"
