// Filter execution: the runtime filter each state builds from its sections
// on the first block, its steady-state start, and the exported functions.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <new>

#include "core/options.h"
#include "core/status_error.h"
#include "filter/def/fitler_iir_sos.h"
#include "filter/descriptions.h"
#include "filter/filter.h"
#include "filter/ipp/fitler_iir_sos.h"

namespace Filter::IIR {

namespace {

// Each section's delay line in steady state for a unit step at the
// cascade's input, section by section as scipy.signal.sosfilt_zi: a
// section with input level u holds y = u H(1), H(1) = (b0 + b1 + b2) /
// (1 + a1 + a2), and its transposed direct form II then holds
// d1 = b2 u - a2 y and d0 = b1 u + d1 - a1 y; its output level is the next
// section's input. A section without a finite steady state (a pole at
// z = 1) starts at rest, and so do the sections after it.
template <class T>
std::vector<T> steady_state(const FilterState::IIR::SOS& sos) {
    std::vector<T> zi;
    double level = 1.0;
    bool at_rest = false;
    for (const std::vector<double>& c : sos.sections) {
        double y = level * ((c[0] + c[1] + c[2]) / (1 + c[4] + c[5]));
        double d1 = c[2] * level - c[5] * y;
        double d0 = c[1] * level + d1 - c[4] * y;
        at_rest = at_rest || !std::isfinite(y) || !std::isfinite(d0) || !std::isfinite(d1);
        zi.push_back(at_rest ? T(0) : T(d0));
        zi.push_back(at_rest ? T(0) : T(d1));
        level = y;
    }
    return zi;
}

} // namespace

template <class T>
AbstractFilterIIRSOS<T>::AbstractFilterIIRSOS(const FilterState::IIR::SOS& sos)
    : section_count_(static_cast<uint32_t>(sos.sections.size())), zi_(steady_state<T>(sos)), scratch_(zi_.size()) {}

template <class T>
void AbstractFilterIIRSOS<T>::reset(bool steady_state) {
    pending_prime_ = steady_state;
    if (!steady_state) {
        std::fill(scratch_.begin(), scratch_.end(), T(0));
        set_delay_line(scratch_.data());
    }
}

template <class T>
int32_t AbstractFilterIIRSOS<T>::prime_if_pending(T first) {
    if (!pending_prime_) return ZOLVEX_M_STATUS_SUCCESS;
    pending_prime_ = false;
    for (size_t i = 0; i < zi_.size(); ++i) scratch_[i] = first * zi_[i];
    return set_delay_line(scratch_.data());
}

template class AbstractFilterIIRSOS<float>;
template class AbstractFilterIIRSOS<double>;

} // namespace Filter::IIR

namespace iir {

namespace {

// The runtime filter for samples of type T, from the state's sections, on
// the accelerator when its option is on; started as the last
// reset_delay_line asked.
template <class T>
int32_t build_runtime(zolvex_m_filter_state& state) {
    std::shared_ptr<const FilterState::IIR::SOS> sos = sos_of(state);
    if (!sos) return ZOLVEX_M_STATUS_FAILED;
    std::unique_ptr<Filter::AbstractFilter> filter;
    try {
        if (core::option_on(ZOLVEX_M_OPT_IPP))
            filter = std::make_unique<lib::ipp::FitlerIIRSOSOf<T>>(*sos);
        else
            filter = std::make_unique<def::FitlerIIRSOS<T>>(*sos);
    } catch (const StatusError& error) {
        return error.status;
    } catch (const std::bad_alloc&) {
        return ZOLVEX_M_STATUS_OUT_OF_MEMORY;
    }
    filter->reset(state.steady_state);
    state.runtime = std::move(filter);
    return ZOLVEX_M_STATUS_SUCCESS;
}

template <class T>
int32_t execute(const T* input, T* output, uint32_t count, zolvex_m_filter_state* state) {
    return guarded([&] {
        if (state == nullptr) return ZOLVEX_M_STATUS_FAILED;
        if (!state->runtime)
            if (int32_t status = build_runtime<T>(*state)) return status;
        auto* filter = dynamic_cast<Filter::IIR::AbstractFilterIIR<T>*>(state->runtime.get());
        return filter ? filter->execute(input, output, count) : ZOLVEX_M_STATUS_FAILED;
    });
}

} // namespace

} // namespace iir

extern "C" {

int32_t zolvex_m_filter_execute_f32(const float* input, float* output, uint32_t count, zolvex_m_filter_state* state) {
    return iir::execute(input, output, count, state);
}

int32_t zolvex_m_filter_execute_f64(const double* input, double* output, uint32_t count,
                                    zolvex_m_filter_state* state) {
    return iir::execute(input, output, count, state);
}

void zolvex_m_filter_reset_delay_line(zolvex_m_filter_state* state, bool steady_state) {
    if (state == nullptr) return;
    state->steady_state = steady_state;
    if (state->runtime) state->runtime->reset(steady_state);
}

} // extern "C"
