#pragma once
// De-interleaving kernels: each splits whole steps of frames (one sample of
// every channel) into the channels' arrays and returns how many frames it
// did; the caller's plain loop does the frames after them and the rest of an
// incomplete frame. Included by the per-instruction-set files, so it
// declares only.
//
// A kernel writes channels[c][f] = source[f * N + c] for f < the frames it
// returns (a multiple of its step), exactly as the plain loop does, and
// reads nothing beyond source[frames * N).

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/kernel_table.h"

namespace util {

// Sixteen bytes of a shuffle control or mask, repeated in every 128-bit lane.
using Bytes16 = std::array<uint8_t, 16>;

template <class T>
using DeinterleaveKernel = size_t (*)(const T* source, T* const* channels, size_t frames) noexcept;

#define ZOLVEX_M_DECLARE_DEINTERLEAVE(N)                                                           \
    size_t deinterleave##N##_u8(const uint8_t* source, uint8_t* const* channels, size_t frames) noexcept; \
    size_t deinterleave##N##_u16(const uint16_t* source, uint16_t* const* channels, size_t frames) noexcept;

// The byte shuffles of 128-bit vectors serve 2, 3 and 4 channels; the wider
// levels serve every channel count.
#define ZOLVEX_M_DEINTERLEAVE_NARROW(X) X(2) X(3) X(4)
#define ZOLVEX_M_DEINTERLEAVE_ALL(X) ZOLVEX_M_DEINTERLEAVE_NARROW(X) X(5) X(6)
namespace sse42 {
ZOLVEX_M_DEINTERLEAVE_NARROW(ZOLVEX_M_DECLARE_DEINTERLEAVE)
}
namespace avx2 {
ZOLVEX_M_DEINTERLEAVE_ALL(ZOLVEX_M_DECLARE_DEINTERLEAVE)
}
namespace avx512bw {
ZOLVEX_M_DEINTERLEAVE_ALL(ZOLVEX_M_DECLARE_DEINTERLEAVE)
}

#undef ZOLVEX_M_DECLARE_DEINTERLEAVE

// The kernels of N channels of T by level; no generic entry: without a
// vector level the plain loop does everything.
template <class T, unsigned N>
const core::KernelTable<DeinterleaveKernel<T>>& deinterleave_kernels() noexcept;

} // namespace util
