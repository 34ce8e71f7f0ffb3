// AVX conversions of u8/u16 samples to f32/f64. AVX has no 256-bit integer
// instructions, so samples are zero-extended to int32 in 128-bit halves
// (pmovzx straight from memory) and only the int32 conversion runs at full
// width. Zero-extended u8/u16 values convert exactly, so the results equal
// the scalar cast bit for bit.

#include <immintrin.h>

#include "elementwise/convert_kernels.h"

namespace elementwise::avx {

namespace {

// Reads exactly four samples: never more than the caller owns.
inline __m128i widen4(const uint8_t* x) { return _mm_cvtepu8_epi32(_mm_loadu_si32(x)); }
inline __m128i widen4(const uint16_t* x) {
    return _mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(x)));
}

// f32: two halves joined into one register give one full-width store.
template <class In>
inline void convert8(const In* x, float* out) {
    __m256i v = _mm256_insertf128_si256(_mm256_castsi128_si256(widen4(x)), widen4(x + 4), 1);
    _mm256_storeu_ps(out, _mm256_cvtepi32_ps(v));
}

// f64: four int32 already fill a 256-bit register of doubles.
template <class In>
inline void convert8(const In* x, double* out) {
    _mm256_storeu_pd(out, _mm256_cvtepi32_pd(widen4(x)));
    _mm256_storeu_pd(out + 4, _mm256_cvtepi32_pd(widen4(x + 4)));
}

// Four independent blocks per iteration keep the load and store ports busy.
template <class In, class Out>
inline void convert32(const In* x, Out* out) {
    convert8(x, out);
    convert8(x + 8, out + 8);
    convert8(x + 16, out + 16);
    convert8(x + 24, out + 24);
}

template <class In, class Out>
void convert(const In* x, Out* out, uint32_t n) {
    uint32_t i = 0;
    for (; i + 32 <= n; i += 32) convert32(x + i, out + i);
    for (; i + 8 <= n; i += 8) convert8(x + i, out + i);
    for (; i < n; ++i) out[i] = static_cast<Out>(x[i]);
}

} // namespace

void convert_u8f32(const uint8_t* x, float* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u16f32(const uint16_t* x, float* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u8f64(const uint8_t* x, double* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u16f64(const uint16_t* x, double* out, uint32_t n) noexcept { convert(x, out, n); }

} // namespace elementwise::avx
