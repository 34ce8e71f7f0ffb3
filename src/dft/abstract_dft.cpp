#include "dft/abstract_dft.h"

namespace dft {

// The scaling runs in T, as the caller's data does: a float plan forms n as a
// float. Bin 0 is halved before the division by n/2, which leaves it X[0]/n
// (both steps are exact in binary floating point). Each part is divided by
// the real d on its own, so an infinite part stays infinite.
template <class T>
int AbstractDFTR2C1D<T>::execute_divn(const T* in, uint32_t in_length, T* out, uint32_t out_length,
                                      bool one_sided) {
    int status = execute(in, in_length, out, out_length);
    if (status != 0) return status;
    T d = static_cast<T>(input_length);
    if (one_sided) {
        out[0] *= T(0.5);
        out[1] *= T(0.5);
        d = d * T(0.5);
    }
    for (uint64_t i = 0; i < 2 * uint64_t(out_length); ++i) out[i] /= d;
    return 0;
}

template class AbstractDFTR2C1D<float>;
template class AbstractDFTR2C1D<double>;

} // namespace dft
