// The element-wise loops compiled for the AVX level.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "elementwise/arith_kernels.h"

namespace elementwise::avx {

constexpr unsigned kVectorBytes = 32;
#include "elementwise/arith_loops.inc"

void abs_f32(const float* x, float* out, uint32_t n) noexcept { abs_kernel(x, out, n); }
void abs_f64(const double* x, double* out, uint32_t n) noexcept { abs_kernel(x, out, n); }
} // namespace elementwise::avx
