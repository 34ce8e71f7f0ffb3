#include "elementwise/abs.h"

#include "core/options.h"
#include "zolvex_m.h"

namespace elementwise {

// Valid before the first init: the generic kernels need nothing.
AbsKernels g_abs_kernels = {{generic::abs_f32}, {generic::abs_f64}};

void choose_abs_kernels() noexcept {
    bool use_avx = core::option_on(ZOLVEX_M_OPT_AVX);
    g_abs_kernels.f32.store(use_avx ? avx::abs_f32 : generic::abs_f32, std::memory_order_relaxed);
    g_abs_kernels.f64.store(use_avx ? avx::abs_f64 : generic::abs_f64, std::memory_order_relaxed);
}

} // namespace elementwise

extern "C" {

int32_t zolvex_m_abs_f32(const float* x, float* out, uint32_t n) {
    elementwise::g_abs_kernels.f32.load(std::memory_order_relaxed)(x, out, n);
    return 0;
}

int32_t zolvex_m_abs_f64(const double* x, double* out, uint32_t n) {
    elementwise::g_abs_kernels.f64.load(std::memory_order_relaxed)(x, out, n);
    return 0;
}

} // extern "C"
