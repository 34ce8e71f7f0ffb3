#pragma once
// Dispatch table of abs, re-chosen from the option flags at init and after
// every successful setopt.

#include <atomic>

#include "elementwise/arith_kernels.h"

namespace elementwise {

struct AbsKernels {
    std::atomic<AbsKernel<float>> f32;
    std::atomic<AbsKernel<double>> f64;
};

extern AbsKernels g_abs_kernels;

void choose_abs_kernels() noexcept;

} // namespace elementwise
