// The noise kernels compiled for AVX2: eight state words, four samples per
// vector.

#include <immintrin.h>

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "generate/noise.h"

namespace generate::avx2 {

constexpr unsigned kVectorBytes = 32;
#include "generate/noise_loops.inc"

namespace {
U64 multiply_low_words(U64 a, U64 b) noexcept { return (U64)_mm256_mul_epu32((__m256i)a, (__m256i)b); }
bool any_lane(I64 mask) noexcept { return _mm256_movemask_pd((__m256d)mask) != 0; }
} // namespace

} // namespace generate::avx2
