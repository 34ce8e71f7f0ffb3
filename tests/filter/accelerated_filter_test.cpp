// Filter execution on the accelerator (the process whose loader finds the
// real Intel IPP runtime, ZOLVEX_M_TEST_ACCELERATOR=present): IPP's biquad
// cascade is as accurate as the built-in one (the bound the header
// states), whole or in pieces, in place or not, from rest or from the
// steady state, and keeps the same delay line.

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "filter/filter.h"
#include "filter_support.h"
#include "support/regimes.h"

namespace filter_test {
namespace {

// Filters x on a new state with the accelerator on or off, in pieces of
// up to `piece` samples, in place or not; returns the output and then the
// delay line left, in doubles.
template <class T>
std::vector<double> run(bool accelerator, uint8_t order, bool steady, const std::vector<double>& input, size_t piece,
                        bool in_place) {
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, accelerator), 0);
    Designed d;
    EXPECT_EQ(zolvex_m_filter_iir_chebyshev2(2, order, 1000, 100, 250, 60, &d.state), 0);
    zolvex_m_filter_reset_delay_line(d.state, steady);
    std::vector<T> x(input.begin(), input.end()), y = x;
    for (size_t at = 0; at < x.size(); at += piece)
        EXPECT_EQ(execute(in_place ? y.data() + at : x.data() + at, y.data() + at,
                          uint32_t(std::min(piece, x.size() - at)), d.state), 0);
    std::vector<T> delay = dynamic_cast<Filter::IIR::AbstractFilterIIRSOS<T>&>(*d.state->runtime).delay_line();
    y.insert(y.end(), delay.begin(), delay.end());
    return {y.begin(), y.end()};
}

// The largest difference from the exact values, relative to their largest
// magnitude.
double error(const std::vector<double>& got, const std::vector<double>& exact) {
    double scale = 0, difference = 0;
    for (size_t i = 0; i < got.size(); ++i)
        scale = std::max(scale, std::abs(exact[i])), difference = std::max(difference, std::abs(got[i] - exact[i]));
    return difference / scale;
}

// The accelerator's output and delay line are no further from the exact
// ones (the built-in f64 run) than four times the built-in cascade's in
// the same type, plus 1e-12 (so for f64 within 1e-12 of the built-in bits).
template <class T>
void expect_as_accurate_as_built_in() {
    std::mt19937 rng(3);
    std::vector<double> x(20000);
    for (double& v : x) v = T(std::uniform_real_distribution<double>(-1, 1)(rng));
    for (uint8_t order : {1, 4, 8})
        for (bool steady : {false, true}) {
            SCOPED_TRACE(testing::Message() << sizeof(T) << " bytes, order " << int(order) << ", steady " << steady);
            std::vector<double> exact = run<double>(false, order, steady, x, x.size(), false);
            double built_in = error(run<T>(false, order, steady, x, x.size(), false), exact);
            for (auto [piece, in_place] : {std::pair{x.size(), false}, {777, true}, {1, false}})
                EXPECT_LE(error(run<T>(true, order, steady, x, piece, in_place), exact), 4 * built_in + 1e-12) << piece;
        }
}

TEST(AcceleratedFilter, AgreesWithTheBuiltInCascade) {
    testing_support::OptionsSnapshot restore;
    if (zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1) != 0) GTEST_SKIP() << "no accelerator in this process";
    expect_as_accurate_as_built_in<double>();
    expect_as_accurate_as_built_in<float>();
}

} // namespace
} // namespace filter_test
