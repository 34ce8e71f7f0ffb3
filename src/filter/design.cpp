// Filter design, in the steps of scipy.signal (scipy 1.10,
// signal/_filter_design.py: buttap/cheb1ap/cheb2ap -> lp2lp_zpk, lp2hp_zpk,
// lp2bp_zpk, lp2bs_zpk -> bilinear_zpk; iirnotch/iirpeak):
//  - an analog low-pass prototype with cut-off 1 rad/s;
//  - moved to the response type and pre-warped edges in the s-plane;
//  - mapped to the z-plane by the bilinear transform with sample rate 2.
// Background: A. V. Oppenheim, R. W. Schafer, Discrete-Time Signal
// Processing, 3rd ed., 7.2-7.3 (bilinear transform, pre-warping); T. W.
// Parks, C. S. Burrus, Digital Filter Design, 1987, ch. 7 (prototypes and
// frequency transformations); S. J. Orfanidis, Introduction to Signal
// Processing, 1996, 11.3 (notch and peak filters).
//
// Gains are carried as Scaled values (filter/scaled.h): at high orders the
// products over hundreds of roots would overflow or underflow long before
// the final gain is formed.

#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "filter/descriptions.h"
#include "filter/scaled.h"

namespace iir {

namespace {

using FilterState::IIR::Complex;
using FilterState::IIR::TF;
using FilterState::IIR::ZPK;
using Roots = std::vector<Complex>;

constexpr double kPi = 3.141592653589793;

enum class Family : uint32_t { butterworth, chebyshev1, chebyshev2 };
enum class Response : uint32_t { lowpass, highpass, bandpass, bandstop };

// x^n as m * 2^e: x = f * 2^g gives f^n * 2^(g n), f^n >= 2^-512.
Scaled power(double x, long n) {
    int g;
    double f = std::frexp(x, &g);
    return Scaled{std::pow(f, double(n)), long(g) * n}.normalise();
}

// prod(c - r) over the roots, and prod(-r) for c = 0.
Scaled product_of_differences(Complex c, const Roots& roots) {
    Scaled p;
    for (Complex r : roots) p *= c - r;
    return p;
}

// An analog or digital system during the design.
struct System {
    Roots zeros, poles;
    Scaled gain;
    long degree() const { return long(poles.size()) - long(zeros.size()); }
};

// m = 1 - N, 3 - N, ..., N - 1, and the angle pi m / (2N) of each.
std::vector<double> prototype_angles(unsigned order) {
    std::vector<double> theta;
    for (long m = 1 - long(order); m < long(order); m += 2) theta.push_back(kPi * double(m) / (2.0 * order));
    return theta;
}

// --- Analog prototypes, cut-off 1 rad/s -------------------------------

// Butterworth: N poles evenly on the left half of the unit circle,
// p = -exp(j pi m / (2N)); no zeros, gain 1.
System butterworth_prototype(unsigned order) {
    System s;
    for (double theta : prototype_angles(order)) s.poles.push_back(-std::exp(Complex(0.0, theta)));
    return s;
}

// Chebyshev type I with pass-band ripple rp dB: poles on an ellipse,
// p = -sinh(mu + j pi m / (2N)) with eps = sqrt(10^(rp/10) - 1) and
// mu = asinh(1/eps) / N; gain prod(-p), lowered by the ripple for even N
// (whose response at 0 is at the bottom of the ripple).
System chebyshev1_prototype(unsigned order, double rp) {
    System s;
    if (order == 0) return s.gain = Scaled{std::pow(10.0, -rp / 20)}, s;
    double eps = std::sqrt(std::pow(10.0, 0.1 * rp) - 1.0);
    double mu = std::asinh(1 / eps) / order;
    for (double theta : prototype_angles(order)) s.poles.push_back(-std::sinh(Complex(mu, theta)));
    s.gain = product_of_differences(0.0, s.poles).real_part();
    if (order % 2 == 0) s.gain *= 1 / std::sqrt(1 + eps * eps);
    return s;
}

// Chebyshev type II with stop-band attenuation rs dB: zeros on the
// imaginary axis at j / sin(pi m / (2N)) (m = 0 left out), poles the
// reciprocals of Butterworth poles squeezed onto an ellipse,
// 1 / (sinh(mu) Re p + j cosh(mu) Im p) with eps = 1 / sqrt(10^(rs/10) - 1)
// and mu = asinh(1/eps) / N; gain prod(-p) / prod(-z), 1 at s = 0.
System chebyshev2_prototype(unsigned order, double rs) {
    System s;
    double eps = 1 / std::sqrt(std::pow(10.0, 0.1 * rs) - 1);
    double mu = std::asinh(1 / eps) / order;
    for (double theta : prototype_angles(order)) {
        if (theta != 0.0) s.zeros.push_back(Complex(0.0, 1.0 / std::sin(theta)));
        Complex p = -std::exp(Complex(0.0, theta));
        s.poles.push_back(1.0 / Complex(std::sinh(mu) * p.real(), std::cosh(mu) * p.imag()));
    }
    s.gain = (product_of_differences(0.0, s.poles) / product_of_differences(0.0, s.zeros)).real_part();
    return s;
}

// --- Frequency transformations in the s-plane --------------------------

Roots mapped(const Roots& roots, auto map) {
    Roots out;
    for (Complex r : roots) out.push_back(map(r));
    return out;
}

// s -> s / wo: the cut-off moves to wo; the gain keeps the response at
// high frequencies.
System lowpass_to_lowpass(const System& s, double wo) {
    auto scale = [&](Complex r) { return wo * r; };
    System t{mapped(s.zeros, scale), mapped(s.poles, scale), s.gain};
    t.gain *= power(wo, s.degree());
    return t;
}

// s -> wo / s: the response mirrored about wo; the zeros at infinity come
// to the origin, and the gain keeps the response at s -> infinity equal to
// the prototype's at 0.
System lowpass_to_highpass(const System& s, double wo) {
    auto invert = [&](Complex r) { return wo / r; };
    System t{mapped(s.zeros, invert), mapped(s.poles, invert), s.gain};
    t.zeros.resize(t.zeros.size() + size_t(s.degree()), 0.0);
    t.gain *= (product_of_differences(0.0, s.zeros) / product_of_differences(0.0, s.poles)).real_part();
    return t;
}

// Each root r' (r scaled to r bw / 2, or for the band-stop (bw / 2) / r)
// splits into the two roots of s^2 - 2 r' s + wo^2, r' +- sqrt(r'^2 - wo^2):
// the substitution s -> (s^2 + wo^2) / (bw s) and its inverse.
Roots split_about(const Roots& shifted, double wo) {
    Roots out;
    for (int sign : {1, -1})
        for (Complex r : shifted) out.push_back(r + double(sign) * std::sqrt(r * r - wo * wo));
    return out;
}

// Pass-band centred on wo = sqrt(w1 w2) with width bw = w2 - w1; the
// zeros at infinity go half to the origin.
System lowpass_to_bandpass(const System& s, double wo, double bw) {
    auto scale = [&](Complex r) { return r * bw / 2.0; };
    System t{split_about(mapped(s.zeros, scale), wo), split_about(mapped(s.poles, scale), wo), s.gain};
    t.zeros.resize(t.zeros.size() + size_t(s.degree()), 0.0);
    t.gain *= power(bw, s.degree());
    return t;
}

// Stop-band centred on wo with width bw: the zeros at infinity go to +-j wo.
System lowpass_to_bandstop(const System& s, double wo, double bw) {
    auto invert = [&](Complex r) { return (bw / 2.0) / r; };
    System t{split_about(mapped(s.zeros, invert), wo), split_about(mapped(s.poles, invert), wo), s.gain};
    t.zeros.insert(t.zeros.end(), size_t(s.degree()), Complex(0.0, wo));
    t.zeros.insert(t.zeros.end(), size_t(s.degree()), Complex(0.0, -wo));
    t.gain *= (product_of_differences(0.0, s.zeros) / product_of_differences(0.0, s.poles)).real_part();
    return t;
}

// --- To the z-plane ----------------------------------------------------

// Bilinear transform with sample rate 2 (2 fs = 4): s = 4 (z - 1) / (z + 1),
// so a root s goes to (4 + s) / (4 - s) and the zeros at infinity to
// z = -1 (the Nyquist frequency); the gain follows from
// prod(4 - z) / prod(4 - p).
System bilinear(const System& s) {
    if (s.degree() < 0) throw std::invalid_argument("");
    auto map = [](Complex r) { return (4.0 + r) / (4.0 - r); };
    System t{mapped(s.zeros, map), mapped(s.poles, map), s.gain};
    t.zeros.resize(t.zeros.size() + size_t(s.degree()), -1.0);
    t.gain *= (product_of_differences(4.0, s.zeros) / product_of_differences(4.0, s.poles)).real_part();
    return t;
}

struct Design {
    Family family;
    uint32_t type;
    unsigned order;
    std::optional<double> fs, rp, rs;
    double f1, f2;
};

System prototype(const Design& d) {
    switch (d.family) {
    case Family::butterworth: return butterworth_prototype(d.order);
    case Family::chebyshev1:
        if (!d.rp) break;
        return chebyshev1_prototype(d.order, *d.rp);
    case Family::chebyshev2:
        if (!d.rs) break;
        return chebyshev2_prototype(d.order, *d.rs);
    }
    throw std::invalid_argument("");
}

bool strictly_inside_unit(double wn) { return 0 < wn && wn < 1; }

ZPK design(const Design& d) {
    if ((d.fs && *d.fs <= 0) || d.f1 < 0 || d.f2 < 0 || (d.rp && *d.rp < 0) || (d.rs && *d.rs < 0))
        throw std::invalid_argument("");  // a NaN fs passes here
    // Edges as fractions of half the sample rate.
    double wn1 = d.fs ? 2 * d.f1 / *d.fs : d.f1, wn2 = d.fs ? 2 * d.f2 / *d.fs : d.f2;
    bool band = d.type == uint32_t(Response::bandpass) || d.type == uint32_t(Response::bandstop);
    if (!strictly_inside_unit(wn1) || (band && !strictly_inside_unit(wn2))) throw std::invalid_argument("");
    // Pre-warped so that the bilinear transform puts the edges back where
    // they were asked for: w = 2 fs tan(pi wn / fs) with fs = 2.
    double w1 = 4 * std::tan(kPi * wn1 / 2), w2 = 4 * std::tan(kPi * wn2 / 2);
    System analog = prototype(d);
    double wo = std::sqrt(w1 * w2), bw = w2 - w1;
    switch (Response(d.type)) {
    case Response::lowpass: analog = lowpass_to_lowpass(analog, w1); break;
    case Response::highpass: analog = lowpass_to_highpass(analog, w1); break;
    case Response::bandpass: analog = lowpass_to_bandpass(analog, wo, bw); break;
    case Response::bandstop: analog = lowpass_to_bandstop(analog, wo, bw); break;
    default: throw std::invalid_argument("");
    }
    System digital = bilinear(analog);
    return {std::move(digital.zeros), std::move(digital.poles), digital.gain.value().real()};
}

// Second-order notch or peak at w0 = 2 f0 / fs with quality f0 / bandwidth
// (Orfanidis 11.3.4-11.3.21): with t = tan(pi w0 / (2 Q)) and the -3 dB
// gain gb = 1/sqrt(2), beta = sqrt(1 - gb^2) / gb * t for the notch and
// gb / sqrt(1 - gb^2) * t for the peak, g = 1 / (1 + beta).
TF notch_or_peak(bool notch, double fs, double f0, double bandwidth) {
    double q = f0 / bandwidth;
    double w0 = 2 * f0 / fs;
    if (!(0 <= w0 && w0 <= 1)) throw std::invalid_argument("");
    double t = std::tan(w0 / q * kPi * 0.5);
    // The two factors as they come out of the formulas in doubles, unrounded.
    double g = notch ? 1 / (1.0000000000000002 * t + 1) : 1 / (0.9999999999999999 * t + 1);
    double c = std::cos(kPi * w0);
    TF tf;
    tf.b = notch ? std::vector<double>{g, g * (-2 * c), g} : std::vector<double>{1 - g, 0.0, -(1 - g)};
    tf.a = {1.0, -2 * g * c, 2 * g - 1};
    return tf;
}

// Makes a state, fills it, and hands it out only when it was filled whole.
template <class Fill>
int32_t create(zolvex_m_filter_state** handle, Fill&& fill) {
    return guarded([&] {
        auto state = std::make_unique<zolvex_m_filter_state>();
        fill(*state);
        *handle = state.release();
        return ZOLVEX_M_STATUS_SUCCESS;
    });
}

int32_t create_designed(zolvex_m_filter_state** handle, const Design& d) {
    return create(handle, [&](zolvex_m_filter_state& state) { state.zpk = std::make_shared<ZPK>(design(d)); });
}

int32_t create_notch_or_peak(zolvex_m_filter_state** handle, bool notch, double fs, double f0, double bandwidth) {
    return create(handle, [&](zolvex_m_filter_state& state) {
        state.tf = std::make_shared<TF>(notch_or_peak(notch, fs, f0, bandwidth));
    });
}

} // namespace

} // namespace iir

extern "C" {

int32_t zolvex_m_filter_iir_butterworth(uint32_t type, uint8_t order, double fs, double f1, double f2,
                                        zolvex_m_filter_state** state) {
    return iir::create_designed(state, {iir::Family::butterworth, type, order, fs, {}, {}, f1, f2});
}

int32_t zolvex_m_filter_iir_chebyshev1(uint32_t type, uint8_t order, double fs, double f1, double f2, double rp,
                                       zolvex_m_filter_state** state) {
    return iir::create_designed(state, {iir::Family::chebyshev1, type, order, fs, rp, {}, f1, f2});
}

int32_t zolvex_m_filter_iir_chebyshev2(uint32_t type, uint8_t order, double fs, double f1, double f2, double rs,
                                       zolvex_m_filter_state** state) {
    return iir::create_designed(state, {iir::Family::chebyshev2, type, order, fs, {}, rs, f1, f2});
}

int32_t zolvex_m_filter_iir_notch(double fs, double f0, double bandwidth, zolvex_m_filter_state** state) {
    return iir::create_notch_or_peak(state, true, fs, f0, bandwidth);
}

int32_t zolvex_m_filter_iir_peak(double fs, double f0, double bandwidth, zolvex_m_filter_state** state) {
    return iir::create_notch_or_peak(state, false, fs, f0, bandwidth);
}

} // extern "C"
