// The elementary functions for AVX-512 (F with CD): SLEEF's fused family
// (finz), sixteen floats or eight doubles a call.

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

namespace elementwise::elementary::avx512 {

constexpr unsigned kVectorBytes = 64;
#define ZOLVEX_M_SLEEF_F32(fn, ulp) Sleef_finz_##fn##f16_##ulp##avx512f
#define ZOLVEX_M_SLEEF_F64(fn, ulp) Sleef_finz_##fn##d8_##ulp##avx512f
// The masked forms with every lane on: the plain ones start from an
// undefined register, which GCC 12 reports as maybe uninitialised.
#define ZOLVEX_M_SQRT_F32(v) _mm512_mask_sqrt_ps(v, 0xFFFF, v)
#define ZOLVEX_M_SQRT_F64(v) _mm512_mask_sqrt_pd(v, 0xFF, v)
#include "elementwise/elementary_loops.inc"

} // namespace elementwise::elementary::avx512
