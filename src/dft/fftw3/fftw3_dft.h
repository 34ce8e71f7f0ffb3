#pragma once
// Double-precision FFTW (libfftw3) plans.

#include <mutex>

#include "core/libraries.h"
#include "dft/fftw_plan.h"

namespace lib::fftw3 {
// Serialises FFTW's double-precision planner and plan destruction.
std::mutex& planner_mutex() noexcept;
} // namespace lib::fftw3

template <>
struct dft::FftwLibrary<double> {
    static void* function(lib::FftwFn f) noexcept { return lib::fftw3::function(f); }
    static std::mutex& planner_mutex() noexcept { return lib::fftw3::planner_mutex(); }
};

namespace lib::fftw3 {
class DFTR2C1DFFTW final : public dft::FftwPlan<dft::AbstractDFTR2C1D<double>> {
    using FftwPlan::FftwPlan;
};
class IDFTC2R1DFFTW final : public dft::FftwPlan<dft::AbstractIDFTC2R1D<double>> {
    using FftwPlan::FftwPlan;
};
} // namespace lib::fftw3
