// AVX-512BW shifts, masks and clipping: 512-bit vectors (BW for the 8- and 16-bit lanes); the loops are in
// bitops_loops.inc.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "elementwise/bitops_kernels.h"

namespace elementwise::avx512bw {

namespace {
constexpr size_t kVectorBytes = 64;
}

#include "elementwise/bitops_loops.inc"

ZOLVEX_M_SHIFT_TYPES(ZOLVEX_M_DEFINE_SHIFT_KERNELS)
ZOLVEX_M_MASK_TYPES(ZOLVEX_M_DEFINE_MASK_KERNELS)
ZOLVEX_M_CLIP_TYPES(ZOLVEX_M_DEFINE_CLIP_KERNEL)

} // namespace elementwise::avx512bw
