#pragma once
// The kernel levels of the block statistics (min/max and the integer sums)
// and the per-call choice among them. A family keeps one kernel per level
// in a KernelSet and runs the widest one the option flags allow.

#include <cstddef>

#include "core/options.h"
#include "zolvex_m.h"

namespace search {

// The widest level allowed for a kernel on samples of `sample_bytes` bytes:
// AVX-512 (F and CD, and BW for 8- and 16-bit lanes, which only BW can
// compare and add), then AVX2 with FMA3 as everywhere else in the library,
// then SSE4.2, then generic. Each wider level is an addition: with its
// options off the narrower choice holds.
template <class Kernel>
struct KernelSet {
    Kernel generic, sse42, avx2, avx512;

    Kernel widest_allowed(size_t sample_bytes) const noexcept {
        bool byte_lanes_allowed = sample_bytes > 2 || core::option_on(ZOLVEX_M_OPT_AVX512BW);
        if (core::avx512f_cd_on() && byte_lanes_allowed) return avx512;
        if (core::avx2_fma3_on()) return avx2;
        if (core::option_on(ZOLVEX_M_OPT_SSE42)) return sse42;
        return generic;
    }
};

} // namespace search
