#pragma once
// The built-in runtime filter: a cascade of biquads in the sample type T,
// computed by the widest cascade kernel the options allow (def/cascade.h).

#include <cstdint>
#include <vector>

#include "filter/filter.h"

namespace def {

template <class T>
class FitlerIIRSOS final : public Filter::IIR::AbstractFilterIIRSOS<T> {
public:
    explicit FitlerIIRSOS(const FilterState::IIR::SOS& sos);
    int32_t execute(const T* input, T* output, uint32_t count) override;
    std::vector<T> delay_line() const override { return delay_line_; }

protected:
    int32_t set_delay_line(const T* values) override;

private:
    std::vector<T> delay_line_;    // d0 d1 per section
    std::vector<T> coefficients_;  // b0 b1 b2 a0 a1 a2 per section
};

extern template class FitlerIIRSOS<float>;
extern template class FitlerIIRSOS<double>;

} // namespace def
