// Filter execution: the steady-state start against scipy's
// sosfilt(sos, x, zi=sosfilt_zi(sos) * x[0]), every kernel against the
// generic one bit for bit, blocks in pieces and in place, and the starts
// the delay-line flag chooses.

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "filter_support.h"
#include "support/differential.h"

namespace filter_test {
namespace {

template <class T>
int32_t execute(const T* in, T* out, uint32_t n, zolvex_m_filter_state* s) {
    if constexpr (sizeof(T) == 4) return zolvex_m_filter_execute_f32(in, out, n, s);
    else return zolvex_m_filter_execute_f64(in, out, n, s);
}

TEST(FilterExecution, SteadyStateStartAsScipySosfilt) {
    for (const Case& c : reference()) {
        if (!c.values.count("sosfilt")) continue;
        SCOPED_TRACE(::testing::PrintToString(c.head));
        Designed d;
        design(c, d);
        const std::vector<double>& want = c.values.at("sosfilt");
        std::vector<double> x = test_signal(want.size()), y(want.size());
        zolvex_m_filter_reset_delay_line(d.state, true);
        ASSERT_EQ(zolvex_m_filter_execute_f64(x.data(), y.data(), uint32_t(y.size()), d.state), 0);
        double scale = std::max(1.0, largest_magnitude(want));
        for (size_t k = 0; k < y.size(); ++k) ASSERT_NEAR(y[k], want[k], 1e-12 * scale) << "sample " << k;
    }
}

// Cascades of 1 to 70 sections cover one and several vectors per group and
// several groups per block on every level.
template <class T>
void expect_kernels_agree() {
    for (unsigned sections : {1u, 2u, 3u, 5u, 8u, 9u, 17u, 33u, 70u}) {
        SCOPED_TRACE(sections);
        Designed d;
        ASSERT_EQ(zolvex_m_filter_iir_chebyshev1(3, uint8_t(sections), 1000, 100, 300, 0.5, &d.state), 0);
        testing_support::expect_regimes_agree([&](const testing_support::Shape& s) {
            auto x = testing_support::shaped_input<T>(s);
            testing_support::GuardedOutput<T> y(s);
            zolvex_m_filter_reset_delay_line(d.state, s.seed % 2 == 0);
            EXPECT_EQ(execute(x.data(), y.data(), s.length, d.state), 0);
            std::vector<T> values = y.values();
            for (T& v : values) v = v == v ? v : T(NAN);  // a NaN's sign and payload are the kernel's
            return values;
        });
    }
}

TEST(FilterExecution, EveryKernelGivesTheGenericBits) {
    expect_kernels_agree<float>();
    expect_kernels_agree<double>();
}

template <class T>
void expect_pieces_and_in_place_as_whole() {
    std::mt19937 rng(7);
    std::vector<T> x(6000);
    for (T& v : x) v = T(std::uniform_real_distribution<double>(-1, 1)(rng));
    for (bool steady : {false, true}) {
        Designed whole, pieces;
        for (Designed* d : {&whole, &pieces}) {
            ASSERT_EQ(zolvex_m_filter_iir_butterworth(3, 12, 1000, 100, 300, &d->state), 0);
            zolvex_m_filter_reset_delay_line(d->state, steady);
        }
        std::vector<T> want(x.size()), got = x;
        ASSERT_EQ(execute(x.data(), want.data(), uint32_t(x.size()), whole.state), 0);
        for (size_t at = 0; at < got.size();) {
            size_t n = std::min(got.size() - at, size_t(rng() % 700));
            ASSERT_EQ(execute(got.data() + at, got.data() + at, uint32_t(n), pieces.state), 0);  // in place
            at += n;
        }
        EXPECT_EQ(0, std::memcmp(got.data(), want.data(), x.size() * sizeof(T))) << "steady " << steady;
    }
}

TEST(FilterExecution, PiecesInPlaceGiveTheWholeBlocksBits) {
    testing_support::in_each_regime([](core::Isa) {
        expect_pieces_and_in_place_as_whole<float>();
        expect_pieces_and_in_place_as_whole<double>();
    });
}

TEST(FilterExecution, StartsAsTheDelayLineFlagSays) {
    Designed d;
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 6, 1000, 50, 0, &d.state), 0);
    std::vector<double> level(300, 0.75), y(300);
    // Steady: a constant passes the low-pass (DC gain 1) from its first
    // sample on; an empty block keeps the prime pending.
    zolvex_m_filter_reset_delay_line(d.state, true);
    ASSERT_EQ(zolvex_m_filter_execute_f64(level.data(), y.data(), 0, d.state), 0);
    ASSERT_EQ(zolvex_m_filter_execute_f64(level.data(), y.data(), 300, d.state), 0);
    for (double v : y) ASSERT_NEAR(v, 0.75, 1e-13);
    // At rest: the first output is the first input times every b0.
    zolvex_m_filter_reset_delay_line(d.state, false);
    ASSERT_EQ(zolvex_m_filter_execute_f64(level.data(), y.data(), 1, d.state), 0);
    double expected = 0.75;
    for (const std::vector<double>& s : get_sos(d.state)) expected = s[0] * expected;
    EXPECT_EQ(y[0], expected);
    // The flag set before the first block decides how it starts.
    Designed later;
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 6, 1000, 50, 0, &later.state), 0);
    zolvex_m_filter_reset_delay_line(later.state, true);
    ASSERT_EQ(zolvex_m_filter_execute_f64(level.data(), y.data(), 300, later.state), 0);
    EXPECT_NEAR(y[0], 0.75, 1e-13);
}

TEST(FilterExecution, StatesWithoutSectionsOrOfTheOtherTypeFail) {
    Designed nan_design, f64_state;
    ASSERT_EQ(zolvex_m_filter_iir_chebyshev1(0, 4, 1000, 100, 0, 0.0, &nan_design.state), 0);  // infinite poles
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 4, 1000, 100, 0, &f64_state.state), 0);
    double x[4] = {1, 2, 3, 4}, y[4] = {9, 9, 9, 9};
    float xf[4] = {1, 2, 3, 4}, yf[4] = {};
    EXPECT_EQ(zolvex_m_filter_execute_f64(x, y, 4, nan_design.state), -1);
    EXPECT_EQ(y[0], 9.0);
    EXPECT_EQ(zolvex_m_filter_execute_f64(x, y, 4, f64_state.state), 0);
    EXPECT_EQ(zolvex_m_filter_execute_f32(xf, yf, 4, f64_state.state), -1);
    EXPECT_EQ(zolvex_m_filter_execute_f64(x, y, 4, nullptr), -1);
}

} // namespace
} // namespace filter_test
