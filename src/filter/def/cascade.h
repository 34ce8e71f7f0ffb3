#pragma once
// The built-in biquad cascade's kernels. Every kernel computes each
// section's transposed direct form II exactly as written, in the sample
// type, one sample after the other:
//   y = b0 x + d0;  d0 = b1 x + d1 - a1 y;  d1 = b2 x - a2 y;  x = y
// so all give the same bits; they differ only in how the sections'
// recurrences overlap in time. The generic kernel runs up to four sections
// per pass over the block with their delay lines in registers. The vector
// kernels run the sections as a pipeline across vector lanes: lane s holds
// section s and works on sample k - s while lane s + 1 works on sample
// k - s - 1, so one step of a few vector operations advances every
// section by one sample.
//
// coefficients: b0 b1 b2 a0 a1 a2 per section (a0 is not read);
// delay_line: d0 d1 per section, read and written back. output may equal
// input.

#include <cstdint>

#include "core/kernel_table.h"

namespace def {

template <class T>
using CascadeKernel = void (*)(const T* coefficients, T* delay_line, uint32_t sections, const T* input, T* output,
                               uint32_t count) noexcept;

template <class T>
const core::KernelTable<CascadeKernel<T>>& cascade_kernels() noexcept;

#define ZOLVEX_M_CASCADE_KERNELS(level)                                                            \
    namespace level {                                                                              \
    void cascade_f32(const float* coefficients, float* delay_line, uint32_t sections, const float* input, \
                     float* output, uint32_t count) noexcept;                                      \
    void cascade_f64(const double* coefficients, double* delay_line, uint32_t sections,            \
                     const double* input, double* output, uint32_t count) noexcept;                \
    }
ZOLVEX_M_CASCADE_KERNELS(generic)
ZOLVEX_M_CASCADE_KERNELS(avx2)
ZOLVEX_M_CASCADE_KERNELS(avx512)
#undef ZOLVEX_M_CASCADE_KERNELS

} // namespace def
