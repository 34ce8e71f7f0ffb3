// The noise kernels compiled for AVX-512F: sixteen state words, eight
// samples per vector.

#include <immintrin.h>

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "generate/noise.h"

namespace generate::avx512 {

constexpr unsigned kVectorBytes = 64;
#include "generate/noise_loops.inc"

namespace {
// The zero-masked form: the plain one trips a false "uninitialized" warning
// in GCC 12's header.
U64 multiply_low_words(U64 a, U64 b) noexcept { return (U64)_mm512_maskz_mul_epu32(0xff, (__m512i)a, (__m512i)b); }
bool any_lane(I64 mask) noexcept { return _mm512_test_epi64_mask((__m512i)mask, (__m512i)mask) != 0; }
} // namespace

} // namespace generate::avx512
