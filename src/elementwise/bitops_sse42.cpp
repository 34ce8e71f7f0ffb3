// SSE4.2 shifts, and clipping of u16 and u32 (SSE4.1's unsigned minimum and
// maximum): 128-bit vectors; the loops are in bitops_loops.inc.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "elementwise/bitops_kernels.h"

namespace elementwise::sse42 {

namespace {
constexpr size_t kVectorBytes = 16;
}

#include "elementwise/bitops_loops.inc"

ZOLVEX_M_SHIFT_TYPES(ZOLVEX_M_DEFINE_SHIFT_KERNELS)
ZOLVEX_M_SSE42_CLIP_TYPES(ZOLVEX_M_DEFINE_CLIP_KERNEL)

} // namespace elementwise::sse42
