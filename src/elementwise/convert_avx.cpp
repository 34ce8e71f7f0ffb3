// PLACEHOLDER: to be replaced by the real avx kernels.
#include "elementwise/convert_kernels.h"
namespace elementwise::avx {
#define ZOLVEX_M_PLACEHOLDER(is, In, os, Out) \
    void convert_##is##os(const In* x, Out* out, uint32_t n) noexcept { for (uint32_t i = 0; i < n; ++i) out[i] = static_cast<Out>(x[i]); }
ZOLVEX_M_VECTOR_CONVERSIONS(ZOLVEX_M_PLACEHOLDER)
}
