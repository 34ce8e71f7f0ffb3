// The built-in runtime filter and the generic cascade kernel.

#include "filter/def/fitler_iir_sos.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "filter/def/cascade.h"
#include "core/kernel_report.h"

namespace def {

namespace generic {

#include "filter/def/cascade_loops.inc"

void cascade_f32(const float* c, float* d, uint32_t sections, const float* input, float* output,
                 uint32_t count) noexcept {
    scalar_cascade(c, d, sections, input, output, count);
}
void cascade_f64(const double* c, double* d, uint32_t sections, const double* input, double* output,
                 uint32_t count) noexcept {
    scalar_cascade(c, d, sections, input, output, count);
}

} // namespace generic

template <class T>
const core::KernelTable<CascadeKernel<T>>& cascade_kernels() noexcept {
    if constexpr (std::is_same_v<T, float>) {
        static constexpr core::KernelTable<CascadeKernel<float>> kKernels = {
            .generic = generic::cascade_f32, .avx2 = avx2::cascade_f32, .avx512 = avx512::cascade_f32};
        return kKernels;
    } else {
        static constexpr core::KernelTable<CascadeKernel<double>> kKernels = {
            .generic = generic::cascade_f64, .avx2 = avx2::cascade_f64, .avx512 = avx512::cascade_f64};
        return kKernels;
    }
}
template const core::KernelTable<CascadeKernel<float>>& cascade_kernels<float>() noexcept;
template const core::KernelTable<CascadeKernel<double>>& cascade_kernels<double>() noexcept;

namespace {

// A state's runtime filter is made at its first execute, on the accelerator
// when its option is on then.
const core::KernelReportRegistration kReports[] = {
    core::KernelReportRegistration({"filter_execute (new states)", "f32",
                                    []() noexcept { return cascade_kernels<float>().chosen_isa(); }, core::ipp_when_on}),
    core::KernelReportRegistration({"filter_execute (new states)", "f64",
                                    []() noexcept { return cascade_kernels<double>().chosen_isa(); }, core::ipp_when_on}),
};

} // namespace

template <class T>
FitlerIIRSOS<T>::FitlerIIRSOS(const FilterState::IIR::SOS& sos)
    : Filter::IIR::AbstractFilterIIRSOS<T>(sos), delay_line_(2 * sos.sections.size(), T(0)) {
    for (const std::vector<double>& section : sos.sections)
        for (double c : section) coefficients_.push_back(T(c));
}

template <class T>
int32_t FitlerIIRSOS<T>::execute(const T* input, T* output, uint32_t count) {
    if (count == 0) return ZOLVEX_M_STATUS_SUCCESS;  // a pending prime waits for samples
    this->prime_if_pending(input[0]);
    cascade_kernels<T>().choose()(coefficients_.data(), delay_line_.data(), this->section_count(), input, output,
                                  count);
    return ZOLVEX_M_STATUS_SUCCESS;
}

template <class T>
int32_t FitlerIIRSOS<T>::set_delay_line(const T* values) {
    std::copy(values, values + delay_line_.size(), delay_line_.begin());
    return ZOLVEX_M_STATUS_SUCCESS;
}

template class FitlerIIRSOS<float>;
template class FitlerIIRSOS<double>;

} // namespace def
