// Periodic waveforms against long-double evaluations, across block cuts and
// far along the index, with integer clipping and invalid constants.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "zolvex_m.h"

namespace {

const long double kPi = 3.141592653589793238462643383279502884L;

struct Wave {
    double amplitude, offset, frequency, phase, duty;
};

#define WAVE_TYPES(X) X(uint8_t, u8) X(int16_t, i16) X(uint16_t, u16) X(float, f32) X(double, f64)
#define OVERLOADS(T, suffix)                                                                       \
    int32_t generate(int kind, T* out, uint32_t n, const Wave& w, uint64_t start) {                \
        if (kind == 0) return zolvex_m_waveform_cosine_##suffix(out, n, w.amplitude, w.offset, w.frequency, w.phase, start); \
        if (kind == 1) return zolvex_m_waveform_square_##suffix(out, n, w.amplitude, w.offset, w.frequency, w.phase, w.duty, start); \
        return zolvex_m_waveform_triangle_##suffix(out, n, w.amplitude, w.offset, w.frequency, w.phase, start); \
    }
WAVE_TYPES(OVERLOADS)
#undef OVERLOADS

long double fraction(long double x) { return x - std::floor(x); }

// The shape at sample k in long double, its phase summed from products
// that are exact there (64-bit mantissa) for the frequencies used.
long double shape(int kind, const Wave& w, uint64_t k) {
    const long double f = w.frequency;
    const long double t = fraction(fraction(w.phase) + fraction(f * (k >> 9) * 512) + fraction(f * (k & 511)));
    if (kind == 0) return std::cos(2 * kPi * t);
    if (kind == 1) return t < w.duty ? 1 : -1;
    return std::fabs(4 * t - 2) - 1;
}

template <class T>
void expect_reference_and_continuity(const Wave& w, uint64_t start) {
    constexpr uint32_t n = 70000;  // above the split size: several pieces
    for (int kind = 0; kind < 3; ++kind) {
        SCOPED_TRACE("kind " + std::to_string(kind) + " type size " + std::to_string(sizeof(T)));
        std::vector<T> whole(n), blocks(n);
        ASSERT_EQ(generate(kind, whole.data(), n, w, start), 0);
        for (uint32_t at = 0, size = 1; at < n; at += size, size = size * 3 + 1)
            ASSERT_EQ(generate(kind, blocks.data() + at, std::min(size, n - at), w, start + at), 0);
        ASSERT_EQ(whole, blocks) << "blocks join without a seam";
        for (uint32_t i = 0; i < n; ++i) {
            const long double v = w.offset + w.amplitude * shape(kind, w, start + i);
            if constexpr (std::is_integral_v<T>) {
                const long double clipped = std::clamp<long double>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
                ASSERT_LE(std::fabs(whole[i] - clipped), 0.5L + 1e-9L) << i;
            } else {
                const double tolerance = 4 * std::ldexp(std::fabs(w.amplitude), -53) * (sizeof(T) == 8 ? 1 : 1 << 29) +
                                         std::fabs(double(v)) * (sizeof(T) == 8 ? 0x1p-53 : 0x1p-24);
                ASSERT_LE(std::fabs(whole[i] - v), tolerance) << i;
            }
        }
    }
}

TEST(Waveforms, MatchLongDoubleAcrossCutsAndFarAlong) {
    // 3/1024 and 1/7 cycles per sample; from sample 0, and from 2^32 and
    // 2^40 on, where a phase accumulated sample by sample would have drifted.
    for (uint64_t start : {uint64_t{0}, uint64_t{1} << 32, (uint64_t{1} << 40) + 5}) {
        SCOPED_TRACE("start " + std::to_string(start));
        const Wave fine = {0.9, 0.05, 3.0 / 1024, 0.125, 0.3}, clipped = {40000, 100, -3.0 / 1024, 0.5, 0.5};
#define CHECK(T, suffix) expect_reference_and_continuity<T>(fine, start), expect_reference_and_continuity<T>(clipped, start);
        WAVE_TYPES(CHECK)
#undef CHECK
    }
    // A non-dyadic frequency from sample 0 (long double holds f * k there).
    expect_reference_and_continuity<double>({2.0, -1.0, 1.0 / 7, 0.0, 0.25}, 0);
}

TEST(Waveforms, ShapesRoundingAndInvalidConstants) {
    double d[4], untouched[2] = {7, 7};
    uint8_t b[4];
    ASSERT_EQ(zolvex_m_waveform_square_f64(d, 4, 2, 1, 0.25, 0, 0.5, 0), 0);
    EXPECT_EQ(std::vector<double>(d, d + 4), (std::vector<double>{3, 3, -1, -1}));
    ASSERT_EQ(zolvex_m_waveform_triangle_u8(b, 4, 1.5, 1.0, 0.25, 0, 0), 0);
    EXPECT_EQ(std::vector<uint8_t>(b, b + 4), (std::vector<uint8_t>{3, 1, 0, 1})) << "2.5 rounds to 3, -0.5 clips to 0";
    for (double duty : {1.5, std::nan("")})
        EXPECT_EQ(zolvex_m_waveform_square_f64(untouched, 2, 1, 0, 0.1, 0, duty, 0), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(zolvex_m_waveform_cosine_f64(untouched, 2, 1, 0, std::nan(""), 0, 0), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(zolvex_m_waveform_triangle_f64(untouched, 2, INFINITY, 0, 0.1, 0, 0), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(untouched[0], 7);
    EXPECT_EQ(zolvex_m_waveform_cosine_f64(nullptr, 0, 1, 0, std::nan(""), 0, 0), 0) << "count 0 returns at once";
}

} // namespace
