// Filter execution: the steady-state start against scipy's
// sosfilt(sos, x, zi=sosfilt_zi(sos) * x[0]), every kernel against the
// generic one bit for bit, blocks in pieces and in place, and the starts
// the delay-line flag chooses.

#include <gtest/gtest.h>

#include <cstring>

#include "filter_support.h"
#include "support/differential.h"

namespace filter_test {
namespace {

TEST(FilterExecution, SteadyStateStartAsScipySosfilt) {
    for (const Case& c : reference()) {
        if (!c.values.count("sosfilt")) continue;
        SCOPED_TRACE(::testing::PrintToString(c.head));
        Designed d;
        ASSERT_EQ(design(c, &d.state), 0);
        const std::vector<double>& want = c.values.at("sosfilt");
        std::vector<double> x(want.size()), y(want.size());
        for (size_t k = 0; k < x.size(); ++k) x[k] = double((k * 7919) % 1000) / 500.0 - 1.0;  // as the script's
        zolvex_m_filter_reset_delay_line(d.state, true);
        ASSERT_EQ(zolvex_m_filter_execute_f64(x.data(), y.data(), uint32_t(y.size()), d.state), 0);
        for (size_t k = 0; k < y.size(); ++k) ASSERT_NEAR(y[k], want[k], 1e-12) << "sample " << k;  // |y| < 2
    }
}

// Cascades of 1 to 70 sections cover one and several vectors per group and
// several groups per block on every level. Each block is filtered whole,
// and again in place in three pieces (some empty) cut where the shape's seed
// says, on a second state: the same bits.
template <class T>
void expect_kernels_and_pieces_agree() {
    for (unsigned sections : {1u, 3u, 9u, 17u, 70u}) {
        SCOPED_TRACE(sections);
        Designed whole, pieces;
        for (Designed* d : {&whole, &pieces})
            ASSERT_EQ(zolvex_m_filter_iir_chebyshev1(3, uint8_t(sections), 1000, 100, 300, 0.5, &d->state), 0);
        testing_support::expect_regimes_agree([&](const testing_support::Shape& s) {
            auto x = testing_support::shaped_input<T>(s);
            testing_support::GuardedOutput<T> y(s);
            for (Designed* d : {&whole, &pieces}) zolvex_m_filter_reset_delay_line(d->state, s.seed % 2 == 0);
            EXPECT_EQ(execute(x.data(), y.data(), s.length, whole.state), 0);
            std::vector<T> values = y.values();
            uint32_t cut = s.seed % (s.length + 1), second = cut + s.seed / 7 % (s.length - cut + 1);
            for (auto [begin, end] : {std::pair{0u, cut}, {cut, second}, {second, s.length}})
                EXPECT_EQ(execute(x.data() + begin, x.data() + begin, end - begin, pieces.state), 0);
            EXPECT_TRUE(s.length == 0 || !std::memcmp(x.data(), values.data(), s.length * sizeof(T))) << "in pieces";
            for (T& v : values) v = v == v ? v : T(NAN);  // a NaN's sign and payload are the kernel's
            return values;
        });
    }
}

TEST(FilterExecution, EveryKernelGivesTheGenericBitsWholeOrInPiecesInPlace) {
    expect_kernels_and_pieces_agree<float>();
    expect_kernels_and_pieces_agree<double>();
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
    // A state built for f64 refuses f32; none refuses; a design with
    // infinite poles (rp = 0) has no sections.
    float xf[1] = {1};
    EXPECT_EQ(zolvex_m_filter_execute_f32(xf, xf, 1, d.state), -1);
    EXPECT_EQ(zolvex_m_filter_execute_f64(y.data(), y.data(), 1, nullptr), -1);
    Designed no_sections;
    ASSERT_EQ(zolvex_m_filter_iir_chebyshev1(0, 4, 1000, 100, 0, 0.0, &no_sections.state), 0);
    y[0] = 9;
    EXPECT_EQ(zolvex_m_filter_execute_f64(level.data(), y.data(), 1, no_sections.state), -1);
    EXPECT_EQ(y[0], 9.0);
}

} // namespace
} // namespace filter_test
