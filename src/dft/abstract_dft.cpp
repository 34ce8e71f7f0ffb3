#include "dft/abstract_dft.h"

namespace dft {

// The scaling runs in T, as the caller's data does: a float plan forms n as a
// float. Bin 0 is divided by n in both forms and the one-sided bins by n/2
// (exact: n is a normal number), so each part is one correctly rounded
// quotient, subnormal ones included (halving a subnormal first would round),
// and an infinite part stays infinite.
template <class T>
int AbstractDFTR2C1D<T>::execute_divn(const T* in, uint32_t in_length, T* out, uint32_t out_length,
                                      bool one_sided) {
    int status = execute(in, in_length, out, out_length);
    if (status != 0) return status;
    const T n = static_cast<T>(input_length);
    const T d = one_sided ? n * T(0.5) : n;
    out[0] /= n;
    out[1] /= n;
    for (uint64_t i = 2; i < 2 * uint64_t(out_length); ++i) out[i] /= d;
    return 0;
}

template class AbstractDFTR2C1D<float>;
template class AbstractDFTR2C1D<double>;

} // namespace dft
