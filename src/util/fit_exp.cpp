// Exponential fit y = A exp(B i): the least-squares straight line through
// the points (i, ln y[i]), from the normal equations of a line fit (Press,
// Teukolsky, Vetterling and Flannery, Numerical Recipes, 3rd ed., 15.2):
//   D = n Sxx - Sx^2,  ln A = (Sxx Sy - Sx Sxy) / D,  B = (n Sxy - Sy Sx) / D.
// One pass over the data, with no storage that grows with the count: the
// outputs are written only after the last sample passed its test, so a
// failing call writes nothing.

#include <cmath>
#include <cstdint>

#include "zolvex_m.h"

namespace util {

namespace {

// In extended precision (x87 long double on x86-64).
struct LineSums {
    long double x = 0, xx = 0, y = 0, xy = 0;
};

// False at the first sample that is not positive. A NaN sample is not
// refused: its logarithm makes the results NaN.
bool add_samples(const double* data, uint32_t count, LineSums& sums) noexcept {
    for (uint32_t i = 0; i < count; ++i) {
        if (data[i] <= 0.0) return false;
        const long double x = i, ln_y = std::log(data[i]);
        sums.x += x;
        // The square is taken in 32-bit unsigned arithmetic and wraps from
        // i = 65536 on: results of long series keep this rule.
        sums.xx += static_cast<uint32_t>(i * i);
        sums.y += ln_y;
        sums.xy += x * ln_y;
    }
    return true;
}

} // namespace

} // namespace util

extern "C" {

// With fewer than two samples D is 0 and both results are NaN (0 / 0).
int32_t zolvex_m_fit_exp_f64(const double* data, uint32_t count, double* a, double* b) {
    util::LineSums sums;
    if (!util::add_samples(data, count, sums)) return ZOLVEX_M_STATUS_FAILED;
    const long double n = count, d = n * sums.xx - sums.x * sums.x;
    if (a) *a = static_cast<double>(std::exp((sums.xx * sums.y - sums.x * sums.xy) / d));
    if (b) *b = static_cast<double>((n * sums.xy - sums.y * sums.x) / d);
    return 0;
}

} // extern "C"
