// Frequency response and stability of a designed filter.

#include "filter/response.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/parallel.h"
#include "filter/scaled.h"

namespace iir {

using FilterState::IIR::Complex;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;

// b[0] + b[1] x + ... by Horner's rule from the last coefficient.
Complex polynomial(const std::vector<double>& c, Complex x) {
    if (c.empty()) return 0.0;
    Complex sum = c.back();
    for (size_t i = c.size() - 1; i-- > 0;) sum = c[i] + sum * x;
    return sum;
}

// Points per task that make the pool worth its start-up.
constexpr uint64_t kCoefficientsPerTask = 1 << 16;

} // namespace

double Grid::angle(uint32_t i) const {
    double upper = whole ? kTwoPi : kPi;
    if (!logarithmic) return i * (upper / n);
    double lowest = kTwoPi / fs;  // frequency 1 in the unit of fs
    if (i == 0) return lowest;
    return std::pow(10.0, std::log10(lowest) + i * (std::log10(upper) - std::log10(lowest)) / n);
}

double Grid::frequency(uint32_t i, double angle) const {
    // fs w / (2 pi), without the detour through pi where it can be avoided:
    // exact multiples of fs / n on the linear grid, exactly 1 at the start
    // of the logarithmic one.
    if (!logarithmic) return i * ((whole ? fs : fs / 2) / n);
    return angle / (kTwoPi / fs);
}

void tf_response(const FilterState::IIR::TF& tf, const Grid& grid, double* frequencies, double* response,
                 uint32_t pieces) {
    core::run_pieces(grid.n, pieces, [&](uint32_t begin, uint32_t end) noexcept {
        for (uint32_t i = begin; i < end; ++i) {
            double w = grid.angle(i);
            Complex z_inverse = std::exp(Complex(0.0, -w));
            Complex h = polynomial(tf.b, z_inverse) / polynomial(tf.a, z_inverse);
            frequencies[i] = grid.frequency(i, w);
            response[2 * i] = h.real(), response[2 * i + 1] = h.imag();
        }
    });
}

namespace {

// k prod(e - z) / prod(e - p) at e = exp(j w), the products scaled so that
// hundreds of factors near 0 or above 1 do not underflow or overflow.
void zpk_response(const FilterState::IIR::ZPK& zpk, const Grid& grid, double* frequencies, double* response) {
    for (uint32_t i = 0; i < grid.n; ++i) {
        double w = grid.angle(i);
        Complex e = std::exp(Complex(0.0, w));
        Scaled numerator, denominator;
        for (Complex z : zpk.zeros) numerator *= e - z;
        for (Complex p : zpk.poles) denominator *= e - p;
        numerator.m *= zpk.gain;
        Complex h = (numerator / denominator).value();
        frequencies[i] = grid.frequency(i, w);
        response[2 * i] = h.real(), response[2 * i + 1] = h.imag();
    }
}

uint32_t pieces_for(const FilterState::IIR::TF& tf, uint32_t n) {
    uint64_t work = uint64_t(n) * (tf.b.size() + tf.a.size());
    return uint32_t(std::clamp<uint64_t>(work / kCoefficientsPerTask, 1, core::hardware_threads()));
}

} // namespace

} // namespace iir

extern "C" {

int32_t zolvex_m_filter_iir_freqz_zpk(zolvex_m_filter_state* state, uint32_t n, double fs, bool whole,
                                      bool logarithmic, double* frequencies, double* response) {
    return iir::guarded([&] {
        auto zpk = state ? iir::zpk_of(*state) : nullptr;
        if (!zpk) return ZOLVEX_M_STATUS_FAILED;
        iir::zpk_response(*zpk, {n, fs, whole, logarithmic}, frequencies, response);
        return ZOLVEX_M_STATUS_SUCCESS;
    });
}

int32_t zolvex_m_filter_iir_freqz(zolvex_m_filter_state* state, uint32_t n, double fs, bool whole, bool logarithmic,
                                  double* frequencies, double* response) {
    return iir::guarded([&] {
        auto tf = state ? iir::tf_of(*state) : nullptr;
        if (!tf) return ZOLVEX_M_STATUS_FAILED;
        iir::tf_response(*tf, {n, fs, whole, logarithmic}, frequencies, response, iir::pieces_for(*tf, n));
        return ZOLVEX_M_STATUS_SUCCESS;
    });
}

int32_t zolvex_m_filter_iir_isstable(zolvex_m_filter_state* state, bool* stable) {
    return iir::guarded([&] {
        auto zpk = state ? iir::zpk_of(*state) : nullptr;
        if (!zpk || zpk->poles.empty()) return ZOLVEX_M_STATUS_FAILED;
        double largest = 0.0;
        for (FilterState::IIR::Complex p : zpk->poles)
            if (!(std::abs(p) <= largest)) largest = std::abs(p);  // a NaN pole counts as the largest
        *stable = largest < 1.0;
        return ZOLVEX_M_STATUS_SUCCESS;
    });
}

} // extern "C"
