#include "dft/ipp/ipp_dft.h"

#include "core/ipp.h"
#include "core/status_error.h"
#include "zolvex_m.h"

namespace lib::ipp {
namespace {

// IPP's signatures (its IppsDFTSpec_R is opaque, its Ipp8u unsigned char).
using DFTGetSize = IppStatus (*)(int length, int flag, int hint, int* spec_size, int* init_size, int* work_size);
using DFTInit = IppStatus (*)(int length, int flag, int hint, uint8_t* spec, uint8_t* init_buffer);
using DFTRun = IppStatus (*)(const void* src, void* dst, const uint8_t* spec, uint8_t* work);
using Malloc = uint8_t* (*)(int size);
using IppFree = void (*)(void* p);

constexpr int kNoDivision = 8;  // IPP_FFT_NODIV_BY_ANY
constexpr int kNoHint = 0;      // ippAlgHintNone

template <class T>
struct Functions;
template <>
struct Functions<float> {
    static constexpr Fn get_size = Fn::ippsDFTGetSize_R_32f, init = Fn::ippsDFTInit_R_32f,
                        forward = Fn::ippsDFTFwd_RToCCS_32f, inverse = Fn::ippsDFTInv_CCSToR_32f;
};
template <>
struct Functions<double> {
    static constexpr Fn get_size = Fn::ippsDFTGetSize_R_64f, init = Fn::ippsDFTInit_R_64f,
                        forward = Fn::ippsDFTFwd_RToCCS_64f, inverse = Fn::ippsDFTInv_CCSToR_64f;
};

void throw_on_failure(IppStatus status) {
    if (status != 0) throw StatusError(core::map_accelerator_status(status));
}

} // namespace

template <class T>
void DFTSpec<T>::Free::operator()(uint8_t* p) const noexcept {
    reinterpret_cast<IppFree>(base_function(BaseFn::ippFree))(p);
}

// The length is handed over as IPP's int, so lengths above INT_MAX arrive
// negative and IPP rejects them, as it rejects 0.
template <class T>
DFTSpec<T>::DFTSpec(uint32_t n) {
    int length = static_cast<int>(n), spec_size = 0, init_size = 0, work_size = 0;
    throw_on_failure(table<DFTGetSize>(Functions<T>::get_size)(length, kNoDivision, kNoHint, &spec_size,
                                                               &init_size, &work_size));
    auto allocate = table<Malloc>(Fn::ippsMalloc_8u);
    spec_.reset(allocate(spec_size));
    Buffer init(allocate(init_size));
    work_.reset(allocate(work_size));
    if (!spec_ || (init_size > 0 && !init) || (work_size > 0 && !work_))
        throw StatusError(ZOLVEX_M_STATUS_OUT_OF_MEMORY);
    throw_on_failure(table<DFTInit>(Functions<T>::init)(length, kNoDivision, kNoHint, spec_.get(), init.get()));
}

template <class T>
int DFTSpec<T>::forward(const T* in, T* out) const noexcept {
    return core::map_accelerator_status(table<DFTRun>(Functions<T>::forward)(in, out, spec_.get(), work_.get()));
}

template <class T>
int DFTSpec<T>::inverse(const T* in, T* out) const noexcept {
    return core::map_accelerator_status(table<DFTRun>(Functions<T>::inverse)(in, out, spec_.get(), work_.get()));
}

template class DFTSpec<float>;
template class DFTSpec<double>;

} // namespace lib::ipp
