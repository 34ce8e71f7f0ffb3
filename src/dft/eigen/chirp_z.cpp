#include "dft/eigen/chirp_z.h"

#include <cmath>
#include <numbers>

namespace lib::eigen {

template <class T>
uint64_t ChirpZ<T>::convolution_length(uint32_t in_length, uint32_t out_length) noexcept {
    uint64_t needed = uint64_t(in_length) + out_length - 1;
    uint64_t m = 2;  // Eigen's FFT has no length 1
    while (m < needed) m <<= 1;
    return m;
}

template <class T>
ChirpZ<T>::ChirpZ(Eigen::FFT<T>& fft, uint32_t n, uint32_t in_length, uint32_t out_length)
    : in_length_(in_length), out_length_(out_length) {
    const uint64_t m = convolution_length(in_length, out_length);
    // c[j] = e^(-i pi (j^2 mod 2n) / n): the exact integer residue keeps the
    // angle small, and long double keeps its rounding below T's.
    chirp_.resize(std::max(in_length, out_length));
    const uint64_t period = 2 * uint64_t(n);
    uint64_t residue = 0;  // j^2 mod 2n
    for (uint64_t j = 0; j < chirp_.size(); ++j) {
        long double angle = std::numbers::pi_v<long double> * static_cast<long double>(residue) / n;
        chirp_[j] = Complex(static_cast<T>(std::cos(angle)), static_cast<T>(-std::sin(angle)));
        residue += 2 * j + 1;  // (j + 1)^2 = j^2 + 2j + 1, and 2j + 1 < 2n
        if (residue >= period) residue -= period;
    }
    // conj(c[k - j]) for k - j from -(in_length - 1) to out_length - 1, the
    // negative offsets wrapped to the end; M >= in_length + out_length - 1
    // keeps the two ends apart.
    work_.assign(m, Complex(0));
    spectrum_.resize(m);
    filter_.resize(m);
    for (uint32_t k = 0; k < out_length; ++k) work_[k] = std::conj(chirp_[k]);
    for (uint32_t j = 1; j < in_length; ++j) work_[m - j] = std::conj(chirp_[j]);
    fft.fwd(filter_.data(), work_.data(), static_cast<Eigen::Index>(m));
    const T scale = T(1) / static_cast<T>(m);  // exact: M is a power of two
    for (Complex& f : filter_) f *= scale;
}

template class ChirpZ<float>;
template class ChirpZ<double>;

} // namespace lib::eigen
