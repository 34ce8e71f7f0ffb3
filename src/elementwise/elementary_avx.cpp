// The elementary functions for AVX: SLEEF's family without fused multiply-add
// (cinz), eight floats or four doubles a call.

#include <immintrin.h>
#include <sleef.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "elementwise/elementary_kernels.h"

namespace elementwise::elementary::avx {

constexpr unsigned kVectorBytes = 32;
#define ZOLVEX_M_SLEEF_F32(fn, ulp) Sleef_cinz_##fn##f8_##ulp##avx
#define ZOLVEX_M_SLEEF_F64(fn, ulp) Sleef_cinz_##fn##d4_##ulp##avx
#define ZOLVEX_M_SQRT_F32 _mm256_sqrt_ps
#define ZOLVEX_M_SQRT_F64 _mm256_sqrt_pd
#include "elementwise/elementary_loops.inc"

} // namespace elementwise::elementary::avx
