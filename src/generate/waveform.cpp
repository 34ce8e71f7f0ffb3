// Periodic waveforms: cosine, square and triangle, for every sample type.
// The phase of sample k (= start + i) is taken from its absolute index in
// exact fixed-point arithmetic, so consecutive blocks join without a seam
// and no error grows with the index: position(k) = frac(phase +
// frequency * k) in cycles, as a 128-bit binary fraction.

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "generate/split.h"
#include "zolvex_m.h"

namespace generate {

namespace {

using Fraction = unsigned __int128;  // cycles times 2^128, modulo one cycle

// x modulo 1 as a 128-bit fraction: x = mantissa * 2^exponent exactly, and
// the bits of x below 2^-128 are dropped (an error below 2^-64 of a cycle
// after 2^64 samples).
Fraction fraction_of(double x) noexcept {
    int exponent = 0;
    const double normal = std::frexp(x, &exponent);
    const auto mantissa = static_cast<__int128>(std::ldexp(normal, 53));  // exact, |m| < 2^53
    const int shift = exponent - 53 + 128;  // x * 2^128 = mantissa * 2^shift
    if (shift >= 128) return 0;             // x is a whole number of cycles
    if (shift >= 0) return static_cast<Fraction>(mantissa) << shift;
    if (shift > -128) return static_cast<Fraction>(mantissa >> -shift);
    return mantissa < 0 ? ~Fraction{0} : 0;
}

// The top 53 bits of a fraction as a double in [0, 1), exactly.
double cycles(Fraction f) noexcept { return static_cast<double>(static_cast<uint64_t>(f >> 75)) * 0x1p-53; }

// cos(2 pi t) = -sin(2 pi (t' - 1/4)) with t' = min(t, 1 - t): both steps
// exact, and the sine's argument stays within [-pi/2, pi/2], where it is
// accurate in relative terms near the zero crossings too.
double cosine_at(double t) noexcept {
    constexpr double kTwoPi = 6.283185307179586476925286766559;
    const double folded = t <= 0.5 ? t : 1.0 - t;
    return -std::sin(kTwoPi * (folded - 0.25));
}

// +1 at phase 0, -1 at half a period, straight lines between (exact).
double triangle_at(double t) noexcept { return std::fabs(4.0 * t - 2.0) - 1.0; }

// Integers: clipped to the type's range, then rounded half away from zero.
template <class T>
T sample(double v) noexcept {
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(v);
    } else {
        constexpr double low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
        return static_cast<T>(std::llround(v < low ? low : (v > high ? high : v)));
    }
}

// Blocks below these lengths stay on the calling thread.
constexpr uint32_t kCosineSplit = 1u << 12;
constexpr uint32_t kLinearSplit = 1u << 16;

template <class T, class Shape>
int32_t generate_wave(T* out, uint32_t count, double amplitude, double offset, double frequency, double phase,
                      uint64_t start, uint32_t min_split, Shape shape) noexcept {
    if (count == 0) return 0;
    if (!std::isfinite(amplitude) || !std::isfinite(offset) || !std::isfinite(frequency) || !std::isfinite(phase))
        return ZOLVEX_M_STATUS_FAILED;
    const Fraction step = fraction_of(frequency), origin = fraction_of(phase);
    split_work(count, min_split, [&](uint32_t begin, uint32_t end) {
        // Adding the step is exact, so this equals origin + step * k for
        // every k of the piece.
        Fraction position = origin + step * static_cast<uint64_t>(start + begin);
        for (uint32_t i = begin; i < end; ++i, position += step) out[i] = sample<T>(offset + amplitude * shape(cycles(position)));
    });
    return 0;
}

template <class T>
int32_t cosine(T* out, uint32_t count, double amplitude, double offset, double frequency, double phase,
               uint64_t start) noexcept {
    return generate_wave(out, count, amplitude, offset, frequency, phase, start, kCosineSplit, cosine_at);
}

template <class T>
int32_t triangle(T* out, uint32_t count, double amplitude, double offset, double frequency, double phase,
                 uint64_t start) noexcept {
    return generate_wave(out, count, amplitude, offset, frequency, phase, start, kLinearSplit, triangle_at);
}

// High (offset + amplitude) for the phases [0, duty) of each period, low
// (offset - amplitude) for the rest.
template <class T>
int32_t square(T* out, uint32_t count, double amplitude, double offset, double frequency, double phase, double duty,
               uint64_t start) noexcept {
    if (count != 0 && !(duty >= 0.0 && duty <= 1.0)) return ZOLVEX_M_STATUS_FAILED;
    return generate_wave(out, count, amplitude, offset, frequency, phase, start, kLinearSplit,
                         [duty](double t) { return t < duty ? 1.0 : -1.0; });
}

} // namespace

} // namespace generate

#define ZOLVEX_M_EXPORT_WAVEFORMS(T, suffix)                                                       \
    int32_t zolvex_m_waveform_cosine_##suffix(T* out, uint32_t count, double amplitude, double offset, \
                                              double frequency, double phase, uint64_t start) {    \
        return generate::cosine(out, count, amplitude, offset, frequency, phase, start);           \
    }                                                                                              \
    int32_t zolvex_m_waveform_square_##suffix(T* out, uint32_t count, double amplitude, double offset, \
                                              double frequency, double phase, double duty, uint64_t start) { \
        return generate::square(out, count, amplitude, offset, frequency, phase, duty, start);     \
    }                                                                                              \
    int32_t zolvex_m_waveform_triangle_##suffix(T* out, uint32_t count, double amplitude, double offset, \
                                                double frequency, double phase, uint64_t start) {  \
        return generate::triangle(out, count, amplitude, offset, frequency, phase, start);         \
    }

extern "C" {
ZOLVEX_M_EXPORT_WAVEFORMS(uint8_t, u8)
ZOLVEX_M_EXPORT_WAVEFORMS(int16_t, i16)
ZOLVEX_M_EXPORT_WAVEFORMS(uint16_t, u16)
ZOLVEX_M_EXPORT_WAVEFORMS(float, f32)
ZOLVEX_M_EXPORT_WAVEFORMS(double, f64)
}
