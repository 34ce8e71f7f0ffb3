#pragma once
// Dispatch table of the conversions: one pointer per conversion, re-chosen
// from the option flags at init and after every successful setopt.

#include <atomic>

#include "elementwise/convert_kernels.h"

namespace elementwise {

struct ConvertKernels {
#define ZOLVEX_M_CONVERT_SLOT(is, In, os, Out) std::atomic<ConvertKernel<In, Out>> is##os;
    ZOLVEX_M_CONVERSIONS(ZOLVEX_M_CONVERT_SLOT)
#undef ZOLVEX_M_CONVERT_SLOT
};

extern ConvertKernels g_convert_kernels;

void choose_convert_kernels() noexcept;

} // namespace elementwise
