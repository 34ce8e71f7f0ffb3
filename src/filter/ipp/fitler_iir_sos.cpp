// The biquad cascade on the accelerator. Its delay line holds the same two
// values per section as the built-in transposed direct form II, so priming
// from zi and resets work alike; its arithmetic is its own.

#include "filter/ipp/fitler_iir_sos.h"

#include <algorithm>
#include <climits>

#include "core/ipp.h"
#include "core/status_error.h"

namespace lib::ipp {

namespace {

// IPP's own signatures (Ipp8u = uint8_t, lengths and counts int).
using Malloc = uint8_t* (*)(int length);
using FreeFn = void (*)(void* pointer);
using GetStateSize = IppStatus (*)(int sections, int* size);
template <class T, class S>
using Init = IppStatus (*)(S** state, const T* taps, int sections, const T* delay_line, uint8_t* buffer);
template <class T, class S>
using Run = IppStatus (*)(const T* input, T* output, int length, S* state);
template <class T, class S>
using RunInPlace = IppStatus (*)(T* samples, int length, S* state);
template <class T, class S>
using GetDelayLine = IppStatus (*)(const S* state, T* delay_line);
template <class T, class S>
using SetDelayLine = IppStatus (*)(S* state, const T* delay_line);

template <class T>
struct Names;
template <>
struct Names<float> {
    static constexpr Fn size = Fn::ippsIIRGetStateSize_BiQuad_32f, init = Fn::ippsIIRInit_BiQuad_32f,
                        run = Fn::ippsIIR_32f, run_in_place = Fn::ippsIIR_32f_I, get = Fn::ippsIIRGetDlyLine_32f,
                        set = Fn::ippsIIRSetDlyLine_32f;
};
template <>
struct Names<double> {
    static constexpr Fn size = Fn::ippsIIRGetStateSize_BiQuad_64f, init = Fn::ippsIIRInit_BiQuad_64f,
                        run = Fn::ippsIIR_64f, run_in_place = Fn::ippsIIR_64f_I, get = Fn::ippsIIRGetDlyLine_64f,
                        set = Fn::ippsIIRSetDlyLine_64f;
};

void check(IppStatus status) {
    if (status != 0) throw StatusError(core::map_accelerator_status(status));
}

} // namespace

template <class T, class S>
void FitlerIIRSOS<T, S>::Free::operator()(uint8_t* buffer) const noexcept {
    reinterpret_cast<FreeFn>(base_function(BaseFn::ippFree))(buffer);
}

template <class T, class S>
FitlerIIRSOS<T, S>::FitlerIIRSOS(const FilterState::IIR::SOS& sos) : Filter::IIR::AbstractFilterIIRSOS<T>(sos) {
    const int sections = int(this->section_count());
    int size = 0;
    check(table<GetStateSize>(Names<T>::size)(sections, &size));
    buffer_.reset(table<Malloc>(Fn::ippsMalloc_8u)(size));
    if (!buffer_) throw StatusError(ZOLVEX_M_STATUS_OUT_OF_MEMORY);
    std::vector<T> taps;
    for (const std::vector<double>& section : sos.sections)
        for (double c : section) taps.push_back(T(c));
    check(table<Init<T, S>>(Names<T>::init)(&state_, taps.data(), sections, nullptr, buffer_.get()));
}

template <class T, class S>
int32_t FitlerIIRSOS<T, S>::execute(const T* input, T* output, uint32_t count) {
    if (count == 0) return ZOLVEX_M_STATUS_SUCCESS;
    if (int32_t status = this->prime_if_pending(input[0])) return status;
    // IPP counts in int: longer blocks go in pieces.
    for (uint32_t done = 0; done < count;) {
        int length = int(std::min<uint32_t>(count - done, INT_MAX));
        IppStatus status = input == output
                               ? table<RunInPlace<T, S>>(Names<T>::run_in_place)(output + done, length, state_)
                               : table<Run<T, S>>(Names<T>::run)(input + done, output + done, length, state_);
        if (status != 0) return core::map_accelerator_status(status);
        done += uint32_t(length);
    }
    return ZOLVEX_M_STATUS_SUCCESS;
}

template <class T, class S>
std::vector<T> FitlerIIRSOS<T, S>::delay_line() const {
    std::vector<T> values(2 * size_t(this->section_count()));
    check(table<GetDelayLine<T, S>>(Names<T>::get)(state_, values.data()));
    return values;
}

template <class T, class S>
int32_t FitlerIIRSOS<T, S>::set_delay_line(const T* values) {
    return core::map_accelerator_status(table<SetDelayLine<T, S>>(Names<T>::set)(state_, values));
}

template class FitlerIIRSOS<float, IIRState_32f>;
template class FitlerIIRSOS<double, IIRState_64f>;

} // namespace lib::ipp
