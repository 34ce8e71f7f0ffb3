#pragma once
// Dispatch table of shift-right-and-clip, re-chosen from the option flags at
// init and after every successful setopt.

#include <atomic>

#include "elementwise/shr_clip_kernels.h"

namespace elementwise {

struct ShrClipKernels {
    std::atomic<ShrClipKernel<uint8_t>> u8;
    std::atomic<ShrClipKernel<uint16_t>> u16;
};

extern ShrClipKernels g_shr_clip_kernels;

void choose_shr_clip_kernels() noexcept;

} // namespace elementwise
