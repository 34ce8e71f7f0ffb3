// Phase unwrapping with numpy.unwrap's arithmetic (period 2*pi, jumps of at
// least pi corrected), operation for operation in the element type, so that
// its results are numpy's bit for bit. A record may arrive in blocks: the
// state carries the last sample and the correction summed so far, so the
// blocks give the bits of the whole record unwrapped at once.
//
// For each difference d = x[i] - x[i-1] with |d| >= pi (numpy's rule):
//   m = mod(d + pi, 2*pi) - pi        (mod with the divisor's sign, as Python)
//   m = pi if m == -pi and d > 0      (a jump of exactly +pi stays +pi)
//   correction += m - d
// and out[i] = x[i] + correction; smaller differences add nothing. The first
// sample of a record is copied.

#include <cmath>
#include <cstdint>
#include <numbers>

#include "zolvex_m.h"

namespace elementwise::elementary {
namespace {

// Python's (and numpy's) float modulo for a positive divisor: fmod, moved
// into [0, divisor) when negative; a zero remainder is +0.
template <class T>
T floor_mod(T a, T divisor) {
    T r = std::fmod(a, divisor);
    if (r < T(0)) return r + divisor;
    return r == T(0) ? T(0) : r;
}

template <class T>
int32_t unwrap(const T* x, T* out, uint32_t n, ZolvexMUnwrapState* state) {
    if (n == 0) return 0;
    // numpy rounds its constants to the element type.
    constexpr T half_period = T(std::numbers::pi);
    constexpr T period = T(2 * std::numbers::pi);
    bool started = state && state->started;
    T previous = started ? T(state->previous) : x[0];
    T correction = started ? T(state->correction) : T(0);
    uint32_t i = 0;
    if (!started) out[i++] = previous;
    for (; i < n; ++i) {
        T sample = x[i];
        T d = sample - previous;
        if (!(std::fabs(d) < half_period)) {
            T m = floor_mod(d + half_period, period) - half_period;
            if (m == -half_period && d > T(0)) m = half_period;
            correction += m - d;
        }
        out[i] = sample + correction;
        previous = sample;
    }
    if (state) *state = ZolvexMUnwrapState{previous, correction, 1};
    return 0;
}

} // namespace
} // namespace elementwise::elementary

extern "C" {

int32_t zolvex_m_unwrap_f32(const float* x, float* out, uint32_t n, ZolvexMUnwrapState* state) {
    return elementwise::elementary::unwrap(x, out, n, state);
}
int32_t zolvex_m_unwrap_f64(const double* x, double* out, uint32_t n, ZolvexMUnwrapState* state) {
    return elementwise::elementary::unwrap(x, out, n, state);
}

} // extern "C"
