// AVX2 conversions of u8/u16 samples to f32/f64. One pmovzx from memory
// zero-extends eight samples to int32 for the f32 results; the f64 results
// take four at a time, since eight int32 would become two registers of
// doubles anyway and a 128-bit pmovzx saves the lane-crossing extract.
// Zero-extended u8/u16 values convert exactly, so the results equal the
// scalar cast bit for bit.

#include <immintrin.h>

#include "elementwise/convert_kernels.h"

namespace elementwise::avx2 {

namespace {

// Each reads exactly the samples it converts: never more than the caller owns.
inline __m256i widen8(const uint8_t* x) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(x)));
}
inline __m256i widen8(const uint16_t* x) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x)));
}
inline __m128i widen4(const uint8_t* x) { return _mm_cvtepu8_epi32(_mm_loadu_si32(x)); }
inline __m128i widen4(const uint16_t* x) {
    return _mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(x)));
}

template <class In>
inline void convert8(const In* x, float* out) {
    _mm256_storeu_ps(out, _mm256_cvtepi32_ps(widen8(x)));
}
template <class In>
inline void convert8(const In* x, double* out) {
    _mm256_storeu_pd(out, _mm256_cvtepi32_pd(widen4(x)));
    _mm256_storeu_pd(out + 4, _mm256_cvtepi32_pd(widen4(x + 4)));
}

// Eight independent blocks per iteration keep the load and store ports busy.
template <class In, class Out>
inline void convert64(const In* x, Out* out) {
    convert8(x, out);
    convert8(x + 8, out + 8);
    convert8(x + 16, out + 16);
    convert8(x + 24, out + 24);
    convert8(x + 32, out + 32);
    convert8(x + 40, out + 40);
    convert8(x + 48, out + 48);
    convert8(x + 56, out + 56);
}

template <class In, class Out>
void convert(const In* x, Out* out, uint32_t n) {
    uint32_t i = 0;
    for (; i + 64 <= n; i += 64) convert64(x + i, out + i);
    for (; i + 8 <= n; i += 8) convert8(x + i, out + i);
    for (; i < n; ++i) out[i] = static_cast<Out>(x[i]);
}

} // namespace

void convert_u8f32(const uint8_t* x, float* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u16f32(const uint16_t* x, float* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u8f64(const uint8_t* x, double* out, uint32_t n) noexcept { convert(x, out, n); }
void convert_u16f64(const uint16_t* x, double* out, uint32_t n) noexcept { convert(x, out, n); }

} // namespace elementwise::avx2
