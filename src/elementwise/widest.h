#pragma once
// Kernel choice for the families that pick per call: the widest level the
// option flags allow, AVX-512 (F with CD) first, then AVX, then generic.

#include "core/options.h"

namespace elementwise {

template <class Kernel>
Kernel widest(Kernel generic_kernel, Kernel avx_kernel, Kernel avx512_kernel) noexcept {
    if (core::avx512f_cd_on()) return avx512_kernel;
    if (core::option_on(ZOLVEX_M_OPT_AVX)) return avx_kernel;
    return generic_kernel;
}

} // namespace elementwise
