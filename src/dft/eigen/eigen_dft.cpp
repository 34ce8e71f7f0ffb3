#include "dft/eigen/eigen_dft.h"

#include <cmath>

#include "core/status_error.h"
#include "zolvex_m.h"

namespace lib::eigen {

namespace {

// The cost model, in passes of Eigen's radix-2 butterfly over one element.
// Eigen's FFT of a real length n runs a complex FFT of n/2 points when 4
// divides n, else of n. Its factors 2, 3, 4 and 5 have their own
// butterflies, costing about log2(p) passes; every larger prime factor p
// goes through its generic butterfly, about 2p passes (measured: 7 ns per
// sample and unit of p, against 3.5 to 7 ns per radix-2 pass). Chirp-z runs
// two complex FFTs of the power-of-two length M plus the chirp and filter
// products: about 2 log2(M) + 4 passes over M points.
//
// Measured on x86-64 (f64, times of the two engines at the same length):
// chirp-z is faster for prime lengths from 17 to 23 on (2.7 times at 37, 7
// at 131, 77 at 2039) and slower at 1024 p up to p = 97 (1.4 times at 97,
// 5 at 7). The model takes chirp-z for prime lengths from 17 on (and 11),
// and for 1024 p from p = 71 to 101 on, depending on where M jumps.
double direct_cost(uint32_t n) noexcept {
    uint32_t points = n % 4 == 0 ? n / 2 : n, rest = points;
    double passes = 0;
    for (uint32_t p = 2; uint64_t(p) * p <= rest; ++p)
        for (; rest % p == 0; rest /= p) passes += p <= 5 ? std::log2(double(p)) : 2.0 * p;
    if (rest > 1) passes += rest <= 5 ? std::log2(double(rest)) : 2.0 * rest;
    return double(points) * passes;
}

double chirp_z_cost(uint32_t n) noexcept {
    double m = double(ChirpZ<double>::convolution_length(n, n / 2 + 1));
    return m * (2 * std::log2(m) + 4);
}

} // namespace

Engine engine_for(uint32_t n) noexcept {
    return n >= 2 && direct_cost(n) > chirp_z_cost(n) ? Engine::chirp_z : Engine::direct;
}

template <class T>
RealTransform<T>::RealTransform(uint32_t n, bool inverse, Engine engine) : n_(n) {
    if (n > kMaxLength) throw StatusError(ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    fft_.SetFlag(Eigen::FFT<T>::HalfSpectrum);
    if (inverse) fft_.SetFlag(Eigen::FFT<T>::Unscaled);
    const uint32_t bins = n / 2 + 1;  // the complex side, input of the inverse
    if (engine == Engine::chirp_z && n > 1)
        chirp_z_ = std::make_unique<ChirpZ<T>>(fft_, n, inverse ? bins : n, inverse ? n : bins);
}

template <class T>
void RealTransform<T>::forward(const T* in, Complex* out) {
    if (n_ < 2) {
        out[0] = Complex(n_ == 1 ? in[0] : T(0));  // the sum of nothing is 0
    } else if (chirp_z_) {
        chirp_z_->run(fft_, [in](uint32_t j) { return Complex(in[j]); },
                      [out](uint32_t k, Complex y) { out[k] = y; });
    } else {
        fft_.fwd(out, in, n_);
    }
}

// The inverse takes the half spectrum as Hermitian: the imaginary parts of
// bin 0 and (for even n) bin n/2 do not count, as with every backend. On the
// chirp-z engine, x[j] = 2 Re(sum_k conj(X'[k]) e^(-2 pi i jk/n)) with
// X'[k] = X[k], except that those two bins count half their real part.
template <class T>
void RealTransform<T>::inverse(const Complex* in, T* out) {
    if (n_ < 2) {
        if (n_ == 1) out[0] = in[0].real();
    } else if (chirp_z_) {
        const uint32_t last = n_ / 2;
        const bool has_nyquist = n_ % 2 == 0;
        chirp_z_->run(
            fft_,
            [in, last, has_nyquist](uint32_t k) {
                return (k == 0 || (k == last && has_nyquist)) ? Complex(in[k].real() * T(0.5))
                                                              : std::conj(in[k]);
            },
            [out](uint32_t j, Complex y) { out[j] = T(2) * y.real(); });
    } else {
        fft_.inv(out, in, n_);
    }
}

template class RealTransform<float>;
template class RealTransform<double>;

} // namespace lib::eigen
