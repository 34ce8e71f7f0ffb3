// Noise against std::mt19937 with libstdc++'s distributions, in every
// kernel regime: the same samples bit for bit.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using testing_support::in_each_regime;

#define NOISE_TYPES(X) X(uint8_t, u8) X(int16_t, i16) X(uint16_t, u16) X(float, f32) X(double, f64)
#define OVERLOADS(T, suffix)                                                                       \
    auto noise(T*) { return zolvex_m_waveform_noise_##suffix; }                                    \
    auto add_noise(T*) { return zolvex_m_add_noise_##suffix; }
NOISE_TYPES(OVERLOADS)
#undef OVERLOADS

// What the library must produce: libstdc++'s distributions on std::mt19937.
// Integer bounds are widened to 32 bits and the range taken modulo 2^32, so
// reversed bounds are an offset draw over that range.
template <class T>
std::vector<T> expected_noise(uint32_t n, T lo, T hi, uint32_t seed) {
    std::mt19937 engine(seed);
    std::vector<T> v(n);
    if constexpr (std::is_floating_point_v<T>) {
        std::uniform_real_distribution<double> u(lo, hi);
        for (T& x : v) x = static_cast<T>(u(engine));
    } else {
        const uint32_t min = static_cast<uint32_t>(int32_t{lo});
        std::uniform_int_distribution<uint32_t> u(0, static_cast<uint32_t>(int32_t{hi}) - min);
        for (T& x : v) x = static_cast<T>(min + u(engine));
    }
    return v;
}

template <class T>
std::vector<T> expected_added(std::vector<T> v, T a, T lo, T hi, uint32_t seed) {
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> u(-double(a), double(a));
    for (T& x : v) {
        const double y = std::clamp(double(x) + u(engine), double(lo), double(hi));
        x = std::is_integral_v<T> ? static_cast<T>(std::llround(y)) : static_cast<T>(y);
    }
    return v;
}

template <class T>
void expect_standard_sequences(uint32_t random_seed) {
    using L = std::numeric_limits<T>;
    const T full_lo = std::is_integral_v<T> ? L::min() : T(-1e3), full_hi = std::is_integral_v<T> ? L::max() : T(1e3);
    for (uint32_t seed : {0u, 5489u, 0xFFFFFFFFu, random_seed}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        // Full, one-value, reversed and (integers) reversed-by-one ranges.
        const std::pair<T, T> ranges[] = {
            {full_lo, full_hi}, {T(7), T(7)}, {T(90), T(20)}, {T(21), T(20)}, {T(3), T(100)}};
        for (auto [lo, hi] : ranges) {
            const uint32_t n = lo == full_lo ? 1000000 : 20011;
            std::vector<T> got(n);
            ASSERT_EQ(noise(got.data())(got.data(), n, lo, hi, &seed), 0);
            ASSERT_EQ(got, expected_noise<T>(n, lo, hi, seed)) << "range " << +lo << ".." << +hi;
        }
        std::vector<T> data = testing_support::random_vector<T>(20011, seed), original = data;
        if constexpr (std::is_floating_point_v<T>) {
            for (T& x : data) x = std::isfinite(x) ? x : T(1);
            original = data;
        }
        const T a = 60, lo = std::is_integral_v<T> ? full_lo : T(-200), hi = std::is_integral_v<T> ? full_hi : T(200);
        ASSERT_EQ(add_noise(data.data())(data.data(), uint32_t(data.size()), a, lo, hi, &seed), 0);
        EXPECT_EQ(data, expected_added(original, a, lo, hi, seed)) << "add_noise";
    }
}

TEST(Noise, StandardSequencesOfEveryTypeInEveryRegime) {
    const uint32_t random_seed = std::random_device{}();
    SCOPED_TRACE("random seed " + std::to_string(random_seed));
    in_each_regime([&](core::Isa) {
#define CHECK(T, suffix) expect_standard_sequences<T>(random_seed);
        NOISE_TYPES(CHECK)
#undef CHECK
    });
}

TEST(Noise, WorkedValueNullSeedAndEdges) {
    double first = 0;
    const uint32_t seed = 5489;
    ASSERT_EQ(zolvex_m_waveform_noise_f64(&first, 1, 0.0, 1.0, &seed), 0);
    EXPECT_EQ(first, 0.1354770042967805);
    std::vector<uint16_t> a(64), b(64);
    ASSERT_EQ(zolvex_m_waveform_noise_u16(a.data(), 64, 0, 65535, nullptr) + zolvex_m_waveform_noise_u16(b.data(), 64, 0, 65535, nullptr), 0);
    EXPECT_NE(a, b) << "a null seed draws a fresh one each call";
    EXPECT_EQ(zolvex_m_waveform_noise_f64(nullptr, 0, 0.0, 1.0, nullptr), 0);
    EXPECT_EQ(zolvex_m_add_noise_i16(nullptr, 0, 1, 0, 1, &seed), 0);
}

TEST(Noise, AddNoiseClipsToTheCallersBounds) {
    const uint32_t seed = 1;
    std::vector<uint16_t> data = testing_support::random_vector<uint16_t>(5000, 3), original = data;
    ASSERT_EQ(zolvex_m_add_noise_u16(data.data(), 5000, 0, 0, 65535, &seed), 0);
    EXPECT_EQ(data, original) << "amplitude 0";
    ASSERT_EQ(zolvex_m_add_noise_u16(data.data(), 5000, 30, 100, 200, &seed), 0);
    for (uint16_t x : data) ASSERT_TRUE(x >= 100 && x <= 200) << x;
    std::vector<uint8_t> bytes(5000, 250);
    ASSERT_EQ(zolvex_m_add_noise_u8(bytes.data(), 5000, 20, 0, 250, &seed), 0);
    EXPECT_GT(std::count(bytes.begin(), bytes.end(), 250), 2000) << "the half above 250 clipped";
}

// No write outside the block, whatever its length and alignment.
TEST(Noise, EveryShapeStaysInItsBlock) {
    testing_support::expect_regimes_agree([](const testing_support::Shape& s) {
        testing_support::GuardedOutput<int16_t> ints(s);
        testing_support::GuardedOutput<float> reals(s);
        auto data = testing_support::shaped_input<uint8_t>(s);
        zolvex_m_waveform_noise_i16(ints.data(), s.length, -300, 300, &s.seed);
        zolvex_m_waveform_noise_f32(reals.data(), s.length, -1.0f, 1.0f, &s.seed);
        zolvex_m_add_noise_u8(data.data(), s.length, 9, 0, 255, &s.seed);
        return std::make_tuple(ints.values(), reals.values(), std::vector<uint8_t>(data.data(), data.data() + s.length));
    });
}

} // namespace
