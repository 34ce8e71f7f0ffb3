// The elementary functions for SSE4.2: SLEEF's family without fused multiply-
// add (cinz), four floats or two doubles a call.

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

namespace elementwise::elementary::sse42 {

constexpr unsigned kVectorBytes = 16;
#define ZOLVEX_M_SLEEF_F32(fn, ulp) Sleef_cinz_##fn##f4_##ulp##sse4
#define ZOLVEX_M_SLEEF_F64(fn, ulp) Sleef_cinz_##fn##d2_##ulp##sse4
#define ZOLVEX_M_SQRT_F32 _mm_sqrt_ps
#define ZOLVEX_M_SQRT_F64 _mm_sqrt_pd
#include "elementwise/elementary_loops.inc"

} // namespace elementwise::elementary::sse42
