#pragma once
// The built-in plans, on Eigen's FFT module (its kissfft back end). Each
// plan picks its engine once, at creation: Eigen's FFT at length n, or
// Bluestein's chirp-z on Eigen's FFT at a power-of-two length when n has a
// prime factor large enough to make the first slow (see engine_for).

#include <complex>
#include <cstdint>
#include <memory>

#include <unsupported/Eigen/FFT>

#include "dft/abstract_dft.h"
#include "dft/eigen/chirp_z.h"

namespace lib::eigen {

enum class Engine : uint8_t { direct, chirp_z };

// The faster engine for real length n by the cost model in eigen_dft.cpp.
Engine engine_for(uint32_t n) noexcept;

// The longest length the built-in plans take: Eigen's FFT counts in int and
// keys its tables by twice the length, which leaves room for 2^28 samples
// (2 GiB of doubles) on either engine. Longer lengths are refused at
// creation with -2.
constexpr uint32_t kMaxLength = uint32_t(1) << 28;

// A real transform of length n in one direction, with its Eigen FFT object:
// forward plans set Eigen's HalfSpectrum flag (bins 0..n/2 only), inverse
// plans HalfSpectrum and Unscaled. Lengths 0 and 1, which Eigen's FFT
// cannot take, are done here.
template <class T>
class RealTransform {
public:
    using Complex = std::complex<T>;
    RealTransform(uint32_t n, bool inverse, Engine engine);
    void forward(const T* in, Complex* out);
    void inverse(const Complex* in, T* out);
    Engine engine() const noexcept { return chirp_z_ ? Engine::chirp_z : Engine::direct; }

private:
    uint32_t n_;
    Eigen::FFT<T> fft_;
    std::unique_ptr<ChirpZ<T>> chirp_z_;
};

template <class T>
class DFTR2C1D final : public dft::AbstractDFTR2C1D<T> {
public:
    explicit DFTR2C1D(uint32_t n) : DFTR2C1D(n, engine_for(n)) {}
    DFTR2C1D(uint32_t n, Engine engine) : dft::AbstractDFTR2C1D<T>(n, 0, 0), transform_(n, false, engine) {}
    int execute(const void* in, uint32_t, void* out, uint32_t) override {
        transform_.forward(static_cast<const T*>(in), static_cast<std::complex<T>*>(out));
        return 0;
    }
    Engine engine() const noexcept { return transform_.engine(); }

private:
    RealTransform<T> transform_;
};

template <class T>
class IDFTC2R1D final : public dft::AbstractIDFTC2R1D<T> {
public:
    explicit IDFTC2R1D(uint32_t n) : IDFTC2R1D(n, engine_for(n)) {}
    IDFTC2R1D(uint32_t n, Engine engine) : dft::AbstractIDFTC2R1D<T>(n, 0, 0), transform_(n, true, engine) {}
    int execute(const void* in, uint32_t, void* out, uint32_t) override {
        transform_.inverse(static_cast<const std::complex<T>*>(in), static_cast<T*>(out));
        return 0;
    }
    Engine engine() const noexcept { return transform_.engine(); }

private:
    RealTransform<T> transform_;
};

extern template class RealTransform<float>;
extern template class RealTransform<double>;

} // namespace lib::eigen
