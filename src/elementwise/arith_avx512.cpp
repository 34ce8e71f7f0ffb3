// The element-wise loops compiled for the AVX512 level.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "elementwise/arith_kernels.h"

namespace elementwise::avx512 {

constexpr unsigned kVectorBytes = 64;
#include "elementwise/arith_loops.inc"
} // namespace elementwise::avx512
