// Exponential fit: the worked example, the failure that writes nothing,
// fewer than two samples, and the optional outputs. The fit itself is
// checked against numpy on noisy decays, and past the wrap of i^2, by
// fit_exp_reference.py.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "zolvex_m.h"

namespace {

TEST(FitExp, DoublingSeriesGivesOneAndLnTwo) {
    const double data[4] = {1, 2, 4, 8};
    double a = 0, b = 0;
    ASSERT_EQ(zolvex_m_fit_exp_f64(data, 4, &a, &b), 0);
    EXPECT_NEAR(a, 1.0, 1e-15);
    EXPECT_NEAR(b, std::log(2.0), 1e-15);
}

TEST(FitExp, ASampleOfZeroOrBelowFailsAndWritesNothing) {
    const double bad[] = {0.0, -0.0, -1.0, -std::numeric_limits<double>::infinity()};
    for (size_t at : {0u, 500u, 999u})
        for (double v : bad) {
            std::vector<double> data(1000, 3.0);
            data[at] = v;
            double a = 5, b = 6;
            EXPECT_EQ(zolvex_m_fit_exp_f64(data.data(), 1000, &a, &b), ZOLVEX_M_STATUS_FAILED) << at << " " << v;
            EXPECT_EQ(a, 5.0);
            EXPECT_EQ(b, 6.0);
        }
}

TEST(FitExp, FewerThanTwoSamplesGiveNaN) {
    const double one = 2.5;
    for (uint32_t count : {0u, 1u}) {
        double a = 0, b = 0;
        EXPECT_EQ(zolvex_m_fit_exp_f64(count ? &one : nullptr, count, &a, &b), 0);
        EXPECT_TRUE(std::isnan(a) && std::isnan(b)) << count;
    }
}

TEST(FitExp, OnlyTheRequestedResultsAreWritten) {
    const double data[3] = {2, 1, 0.5};
    double a = 7, b = 7;
    ASSERT_EQ(zolvex_m_fit_exp_f64(data, 3, nullptr, &b), 0);
    EXPECT_EQ(a, 7.0);
    EXPECT_NEAR(b, -std::log(2.0), 1e-15);
    ASSERT_EQ(zolvex_m_fit_exp_f64(data, 3, &a, nullptr), 0);
    EXPECT_NEAR(a, 2.0, 1e-15);
    EXPECT_EQ(zolvex_m_fit_exp_f64(data, 3, nullptr, nullptr), 0);
}

} // namespace
