// AVX2 shifts, masks and clipping: 256-bit vectors; the loops are in
// bitops_loops.inc.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "elementwise/bitops_kernels.h"

namespace elementwise::avx2 {

namespace {
constexpr size_t kVectorBytes = 32;
}

#include "elementwise/bitops_loops.inc"

ZOLVEX_M_SHIFT_TYPES(ZOLVEX_M_DEFINE_SHIFT_KERNELS)
ZOLVEX_M_MASK_TYPES(ZOLVEX_M_DEFINE_MASK_KERNELS)
ZOLVEX_M_CLIP_TYPES(ZOLVEX_M_DEFINE_CLIP_KERNEL)

} // namespace elementwise::avx2
