// SSE4.2 shift right and clip. The shift count sits in a register, where
// psrlw turns any count of 16 or more into all-zero lanes: the "shift of
// the element width or more gives 0" rule for u16 comes for free. x86 has
// no byte shift, so u8 shifts 16-bit lanes and then masks off the bits the
// upper byte pushed into the lower one (0xFF >> shift, or 0 from 8 on).
// The clamp is max then min, as in the scalar loop, so low > high gives high.

#include <immintrin.h>

#include "elementwise/shr_clip_kernels.h"

namespace elementwise::sse42 {

namespace {

// The 64-bit count is the zero-extended shift, so huge shifts clear too.
inline __m128i shift_count(uint32_t shift) { return _mm_cvtsi64_si128(static_cast<long long>(shift)); }

struct ClipU8 {
    __m128i count, keep, low, high;
    ClipU8(uint32_t shift, uint8_t lo, uint8_t hi)
        : count(shift_count(shift)), keep(_mm_set1_epi8(static_cast<char>(shift < 8 ? 0xFF >> shift : 0))),
          low(_mm_set1_epi8(static_cast<char>(lo))), high(_mm_set1_epi8(static_cast<char>(hi))) {}
    __m128i operator()(__m128i v) const {
        __m128i shifted = _mm_and_si128(_mm_srl_epi16(v, count), keep);
        return _mm_min_epu8(_mm_max_epu8(shifted, low), high);
    }
};

struct ClipU16 {
    __m128i count, low, high;
    ClipU16(uint32_t shift, uint16_t lo, uint16_t hi)
        : count(shift_count(shift)), low(_mm_set1_epi16(static_cast<short>(lo))),
          high(_mm_set1_epi16(static_cast<short>(hi))) {}
    __m128i operator()(__m128i v) const { return _mm_min_epu16(_mm_max_epu16(_mm_srl_epi16(v, count), low), high); }
};

template <class T>
inline __m128i load(const T* x) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(x)); }
template <class T>
inline void store(T* out, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v); }

template <class T>
void scalar_tail(const T* x, T* out, uint32_t i, uint32_t n, uint32_t shift, T low, T high) {
    constexpr uint32_t kBits = sizeof(T) * 8;
    for (; i < n; ++i) {
        T v = shift < kBits ? static_cast<T>(x[i] >> shift) : T(0);
        v = v < low ? low : v;
        out[i] = v > high ? high : v;
    }
}

// Four vectors per iteration; all loads precede the stores of the same
// elements, so out == x works.
template <class T, class Clip>
void shr_clip(const T* x, T* out, uint32_t n, uint32_t shift, T low, T high) {
    constexpr uint32_t kLanes = 16 / sizeof(T);
    const Clip clip(shift, low, high);
    uint32_t i = 0;
    for (; i + 4 * kLanes <= n; i += 4 * kLanes) {
        __m128i a = load(x + i), b = load(x + i + kLanes);
        __m128i c = load(x + i + 2 * kLanes), d = load(x + i + 3 * kLanes);
        store(out + i, clip(a));
        store(out + i + kLanes, clip(b));
        store(out + i + 2 * kLanes, clip(c));
        store(out + i + 3 * kLanes, clip(d));
    }
    for (; i + kLanes <= n; i += kLanes) store(out + i, clip(load(x + i)));
    scalar_tail(x, out, i, n, shift, low, high);
}

} // namespace

void shr_clip_u8(const uint8_t* x, uint8_t* out, uint32_t n, uint32_t shift, uint8_t low, uint8_t high) noexcept {
    shr_clip<uint8_t, ClipU8>(x, out, n, shift, low, high);
}

void shr_clip_u16(const uint16_t* x, uint16_t* out, uint32_t n, uint32_t shift, uint16_t low,
                  uint16_t high) noexcept {
    shr_clip<uint16_t, ClipU16>(x, out, n, shift, low, high);
}

} // namespace elementwise::sse42
