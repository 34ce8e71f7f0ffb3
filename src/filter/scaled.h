#pragma once
// Products over hundreds of roots (gains and responses of high-order
// filters) kept as mantissa * 2^exponent, so that they neither overflow
// nor underflow on the way; only the final value is rounded to the range
// of doubles. Rescaling by powers of two is exact, so where the plain
// product stays in range the result has the same bits.

#include <algorithm>
#include <cmath>

#include "filter/descriptions.h"

namespace iir {

struct Scaled {
    FilterState::IIR::Complex m = 1.0;
    long e = 0;

    static double largest(FilterState::IIR::Complex c) { return std::max(std::abs(c.real()), std::abs(c.imag())); }
    // Magnitudes whose products stay far from both ends of the range.
    static bool moderate(double magnitude) { return magnitude >= 0x1p-400 && magnitude <= 0x1p400; }

    Scaled& normalise() {
        double magnitude = largest(m);
        if (magnitude == 0.0 || !std::isfinite(magnitude)) return *this;
        int shift;
        std::frexp(magnitude, &shift);
        m = {std::ldexp(m.real(), -shift), std::ldexp(m.imag(), -shift)};
        e += shift;
        return *this;
    }
    // Plain multiplication while mantissa and factor are moderate (the
    // common case, at the cost of two comparisons); rescaled otherwise.
    Scaled& operator*=(FilterState::IIR::Complex f) {
        if (!moderate(largest(f)) && f != 0.0) return *this *= Scaled{f}.normalise();
        m *= f;
        if (!moderate(largest(m))) normalise();
        return *this;
    }
    Scaled& operator*=(const Scaled& f) { return m *= f.m, e += f.e, normalise(); }  // f normalised
    Scaled operator/(const Scaled& d) const { return Scaled{m / d.m, e - d.e}.normalise(); }
    Scaled real_part() const { return {m.real(), e}; }
    // The value, as close as doubles allow (0 or infinity beyond them).
    FilterState::IIR::Complex value() const {
        int clamped = int(std::clamp(e, -4000L, 4000L));
        return {std::ldexp(m.real(), clamped), std::ldexp(m.imag(), clamped)};
    }
};

} // namespace iir
