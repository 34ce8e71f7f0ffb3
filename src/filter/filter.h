#pragma once
// The runtime filters that process samples. A filter state builds one from
// its second-order sections the first time it filters a block and keeps
// it, with its delay line, so that consecutive blocks are filtered as one
// signal.
//
//   Filter::AbstractFilter
//     Filter::IIR::AbstractFilterIIR<T>         blocks of T (float, double)
//       Filter::IIR::AbstractFilterIIRSOS<T>    a cascade of biquads
//         def::FitlerIIRSOS<T>                  built in (def/)
//         lib::ipp::FitlerIIRSOS<T, S>          on the accelerator (ipp/)

#include <cstdint>
#include <vector>

#include "filter/descriptions.h"

namespace Filter {

class AbstractFilter {
public:
    virtual ~AbstractFilter() = default;
    // false: the delay line becomes zero now; true: the next non-empty
    // block starts from the steady state for its first sample.
    virtual void reset(bool steady_state) = 0;
};

namespace IIR {

template <class T>
class AbstractFilterIIR : public AbstractFilter {
public:
    // output may equal input. Returns a status.
    virtual int32_t execute(const T* input, T* output, uint32_t count) = 0;
};

template <class T>
class AbstractFilterIIRSOS : public AbstractFilterIIR<T> {
public:
    explicit AbstractFilterIIRSOS(const FilterState::IIR::SOS& sos);
    uint32_t section_count() const { return section_count_; }
    void reset(bool steady_state) final;
    // The delay line: d0, d1 per section, of the transposed direct form II.
    virtual std::vector<T> delay_line() const = 0;

protected:
    // Loads zi scaled by a block's first sample when a prime is pending.
    int32_t prime_if_pending(T first);
    virtual int32_t set_delay_line(const T* values) = 0;

private:
    uint32_t section_count_;
    // Each section's delay line in steady state for a unit step at the
    // cascade's input (the section's own input level then being the
    // product of the DC gains of the sections before it).
    std::vector<T> zi_;
    std::vector<T> scratch_;  // zi scaled, so that priming allocates nothing
    bool pending_prime_ = false;
};

extern template class AbstractFilterIIRSOS<float>;
extern template class AbstractFilterIIRSOS<double>;

} // namespace IIR

} // namespace Filter
