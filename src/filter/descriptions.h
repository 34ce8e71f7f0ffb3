#pragma once
// The three equivalent descriptions of an IIR filter and the filter state
// that holds them. A state is designed once and never changes: each form is
// derived from another the first time it is asked for and stored
// atomically, so any number of threads may read the forms of one state at
// the same time and all of them see the same stored objects.

#include <atomic>
#include <complex>
#include <cstdint>
#include <memory>
#include <vector>

#include "zolvex_m.h"

namespace Filter {
class AbstractFilter;
} // namespace Filter

namespace FilterState::IIR {

using Complex = std::complex<double>;

// H(z) = gain * prod(1 - z_i z^-1) / prod(1 - p_i z^-1).
struct ZPK {
    std::vector<Complex> zeros;
    std::vector<Complex> poles;
    double gain = 1.0;
};

// H(z) = (b[0] + b[1] z^-1 + ...) / (a[0] + a[1] z^-1 + ...).
struct TF {
    std::vector<double> b;
    std::vector<double> a;
};

// Second-order sections b0 b1 b2 a0 a1 a2 (a0 = 1), applied in order.
struct SOS {
    std::vector<std::vector<double>> sections;
    // What the accessor hands out: one pointer per section, into `sections`.
    std::vector<const double*> section_pointers;
};

// The conversions; each builds a whole new form or throws.
TF to_tf(const ZPK& zpk);
ZPK to_zpk(const TF& tf);  // polynomial roots, src/filter/roots.cpp
std::shared_ptr<SOS> to_sos(const ZPK& zpk);

} // namespace FilterState::IIR

// The caller's handle. Members are destroyed in reverse order: the runtime
// filter first, then the sections, the transfer function and the zeros and
// poles.
struct zolvex_m_filter_state {
    std::atomic<std::shared_ptr<FilterState::IIR::ZPK>> zpk;
    std::atomic<std::shared_ptr<FilterState::IIR::TF>> tf;
    std::atomic<std::shared_ptr<FilterState::IIR::SOS>> sos;
    std::unique_ptr<Filter::AbstractFilter> runtime;  // built by the first execution
    bool steady_state = false;                        // the last reset_delay_line flag

    zolvex_m_filter_state();  // out of line: the runtime filter is complete there
    ~zolvex_m_filter_state();
};

namespace iir {

// The state's forms, derived and stored when missing; null when the state
// holds nothing they can be derived from.
std::shared_ptr<const FilterState::IIR::ZPK> zpk_of(zolvex_m_filter_state& state);
std::shared_ptr<const FilterState::IIR::TF> tf_of(zolvex_m_filter_state& state);
std::shared_ptr<const FilterState::IIR::SOS> sos_of(zolvex_m_filter_state& state);

// The filter functions' boundary: whatever fails inside, an allocation
// included, is ZOLVEX_M_STATUS_FAILED. (The runtime filter's construction
// reports its own statuses without throwing, see execute.cpp.)
template <class Work>
int32_t guarded(Work&& work) noexcept {
    try {
        return work();
    } catch (...) {
        return ZOLVEX_M_STATUS_FAILED;
    }
}

} // namespace iir
