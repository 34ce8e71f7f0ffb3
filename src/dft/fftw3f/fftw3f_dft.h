#pragma once
// Single-precision FFTW (libfftw3f) plans.

#include <mutex>

#include "core/libraries.h"
#include "dft/fftw_plan.h"

namespace lib::fftw3f {
// Serialises FFTW's single-precision planner and plan destruction.
std::mutex& planner_mutex() noexcept;
} // namespace lib::fftw3f

template <>
struct dft::FftwLibrary<float> {
    static void* function(lib::FftwFn f) noexcept { return lib::fftw3f::function(f); }
    static std::mutex& planner_mutex() noexcept { return lib::fftw3f::planner_mutex(); }
};

namespace lib::fftw3f {
class DFTR2C1DFFTWF final : public dft::FftwPlan<dft::AbstractDFTR2C1D<float>> {
    using FftwPlan::FftwPlan;
};
class IDFTC2R1DFFTW final : public dft::FftwPlan<dft::AbstractIDFTC2R1D<float>> {
    using FftwPlan::FftwPlan;
};
} // namespace lib::fftw3f
