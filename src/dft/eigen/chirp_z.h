#pragma once
// Bluestein's chirp-z algorithm: a DFT of any length n as a convolution,
// which power-of-two FFTs compute in O(n log n) whatever the factors of n.
// The built-in plans use it where Eigen's FFT at length n would be slow:
// that FFT works through each prime factor p of n in O(p^2) per element,
// so a prime length costs O(n^2).
//
// L. I. Bluestein, "A linear filtering approach to the computation of the
// discrete Fourier transform", IEEE Trans. Audio Electroacoust. 18(4), 1970;
// L. R. Rabiner, R. W. Schafer, C. M. Rader, "The chirp z-transform
// algorithm", same journal, 17(2), 1969.
//
// With jk = (j^2 + k^2 - (k - j)^2) / 2 and the chirp c[m] = e^(-i pi m^2/n):
//   Y[k] = sum_j a[j] e^(-2 pi i jk/n) = c[k] sum_j (a[j] c[j]) conj(c[k - j]),
// a linear convolution of a[j] c[j] with conj(c). Only in_length inputs and
// out_length outputs take part, so a cyclic convolution of length
// M >= in_length + out_length - 1 gives it without wrap-around; M is the
// next power of two. The real transforms need half a spectrum (or take
// one), so in_length + out_length is about 1.5 n, not 2 n.

#include <complex>
#include <cstdint>
#include <vector>

#include <unsupported/Eigen/FFT>

namespace lib::eigen {

template <class T>
class ChirpZ {
public:
    using Complex = std::complex<T>;

    // Plans Y[k] = sum_{j < in_length} a[j] e^(-2 pi i jk/n) for
    // k < out_length (both at most n); runs one FFT of length M on `fft`.
    ChirpZ(Eigen::FFT<T>& fft, uint32_t n, uint32_t in_length, uint32_t out_length);

    // The power-of-two length of the cyclic convolution.
    static uint64_t convolution_length(uint32_t in_length, uint32_t out_length) noexcept;

    // load(j) gives a[j]; store(k, Y[k]) takes the result.
    template <class Load, class Store>
    void run(Eigen::FFT<T>& fft, Load&& load, Store&& store) {
        const size_t m = filter_.size();
        for (uint32_t j = 0; j < in_length_; ++j) work_[j] = multiply(load(j), chirp_[j]);
        std::fill(work_.begin() + in_length_, work_.end(), Complex(0));
        fft.fwd(spectrum_.data(), work_.data(), static_cast<Eigen::Index>(m));
        // The inverse FFT as conj(FFT(conj(.))): one FFT plan serves both
        // ways; the filter carries the 1/M.
        for (size_t k = 0; k < m; ++k) spectrum_[k] = std::conj(multiply(spectrum_[k], filter_[k]));
        fft.fwd(work_.data(), spectrum_.data(), static_cast<Eigen::Index>(m));
        for (uint32_t k = 0; k < out_length_; ++k) store(k, multiply(std::conj(work_[k]), chirp_[k]));
    }

private:
    // Without the NaN and infinity recovery of the C complex product, which
    // would not let this loop vectorise (and a transform does not recover
    // from them anyway).
    static Complex multiply(Complex a, Complex b) noexcept {
        return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
    }

    uint32_t in_length_, out_length_;
    std::vector<Complex> chirp_;   // c[m], m < max(in_length, out_length)
    std::vector<Complex> filter_;  // FFT of conj(c) laid out cyclically, divided by M
    std::vector<Complex> work_, spectrum_;
};

extern template class ChirpZ<float>;
extern template class ChirpZ<double>;

} // namespace lib::eigen
