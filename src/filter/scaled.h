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

    Scaled& normalise() {
        double largest = std::max(std::abs(m.real()), std::abs(m.imag()));
        if (largest == 0.0 || !std::isfinite(largest)) return *this;
        int shift;
        std::frexp(largest, &shift);
        m = {std::ldexp(m.real(), -shift), std::ldexp(m.imag(), -shift)};
        e += shift;
        return *this;
    }
    Scaled& operator*=(FilterState::IIR::Complex f) { return m *= f, normalise(); }
    Scaled& operator*=(const Scaled& f) { return m *= f.m, e += f.e, normalise(); }
    Scaled operator/(const Scaled& d) const { return Scaled{m / d.m, e - d.e}.normalise(); }
    Scaled real_part() const { return {m.real(), e}; }
    // The value, as close as doubles allow (0 or infinity beyond them).
    FilterState::IIR::Complex value() const {
        int clamped = int(std::clamp(e, -4000L, 4000L));
        return {std::ldexp(m.real(), clamped), std::ldexp(m.imag(), clamped)};
    }
};

} // namespace iir
