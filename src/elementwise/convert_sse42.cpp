// SSE4.2 conversions of u8/u16 samples to f32/f64. Zero-extending to int32
// and using the signed int32 conversion is exact for these ranges, so the
// results equal the scalar cast bit for bit. pmovzx reads its four samples
// straight from memory, which costs one shuffle per output vector instead of
// a wide load followed by byte shifts.

#include <immintrin.h>

#include "elementwise/convert_kernels.h"

namespace elementwise::sse42 {

namespace {

// Reads exactly four samples: never more than the caller owns.
inline __m128i widen4(const uint8_t* x) { return _mm_cvtepu8_epi32(_mm_loadu_si32(x)); }
inline __m128i widen4(const uint16_t* x) {
    return _mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(x)));
}

inline void store4(float* out, __m128i v) { _mm_storeu_ps(out, _mm_cvtepi32_ps(v)); }
inline void store4(double* out, __m128i v) {
    _mm_storeu_pd(out, _mm_cvtepi32_pd(v));
    _mm_storeu_pd(out + 2, _mm_cvtepi32_pd(_mm_unpackhi_epi64(v, v)));
}

template <class In, class Out>
inline void convert4(const In* x, Out* out) {
    store4(out, widen4(x));
}

// Eight independent chains per iteration keep both load ports and the
// store port busy.
template <class In, class Out>
inline void convert32(const In* x, Out* out) {
    convert4(x, out);
    convert4(x + 4, out + 4);
    convert4(x + 8, out + 8);
    convert4(x + 12, out + 12);
    convert4(x + 16, out + 16);
    convert4(x + 20, out + 20);
    convert4(x + 24, out + 24);
    convert4(x + 28, out + 28);
}

template <class In, class Out>
void convert(const In* x, Out* out, uint32_t n) {
    uint32_t i = 0;
    for (; i + 32 <= n; i += 32) convert32(x + i, out + i);
    for (; i + 4 <= n; i += 4) convert4(x + i, out + i);
    for (; i < n; ++i) out[i] = static_cast<Out>(x[i]);
}

} // namespace

void convert_u8f32(const uint8_t* x, float* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u16f32(const uint16_t* x, float* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u8f64(const uint8_t* x, double* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u16f64(const uint16_t* x, double* out, uint32_t n) noexcept { convert(x, out, n); }

} // namespace elementwise::sse42
