#pragma once
// The runtime filter on the accelerator: Intel IPP's biquad cascade
// (ippsIIR*_BiQuad), with its state in a buffer from the accelerator's own
// allocator. Built only while the IPP option is on.

#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "filter/filter.h"

namespace lib::ipp {

// The accelerator's opaque filter states (IppsIIRState_32f, _64f).
struct IIRState_32f;
struct IIRState_64f;

template <class T, class S>
class FitlerIIRSOS final : public Filter::IIR::AbstractFilterIIRSOS<T> {
public:
    // Throws StatusError: -3 when the accelerator has no memory for the
    // state, -1 when it reports an error.
    explicit FitlerIIRSOS(const FilterState::IIR::SOS& sos);
    int32_t execute(const T* input, T* output, uint32_t count) override;
    std::vector<T> delay_line() const override;

protected:
    int32_t set_delay_line(const T* values) override;

private:
    struct Free {
        void operator()(uint8_t* buffer) const noexcept;
    };
    std::unique_ptr<uint8_t, Free> buffer_;
    S* state_ = nullptr;  // inside buffer_
};

extern template class FitlerIIRSOS<float, IIRState_32f>;
extern template class FitlerIIRSOS<double, IIRState_64f>;

template <class T>
using FitlerIIRSOSOf = std::conditional_t<std::is_same_v<T, float>, FitlerIIRSOS<float, IIRState_32f>,
                                          FitlerIIRSOS<double, IIRState_64f>>;

} // namespace lib::ipp
