// Hann, Hamming, Blackman and Bartlett on the accelerator (the process whose
// loader finds the real IPP, ZOLVEX_M_TEST_ACCELERATOR=present) against the
// built-in windows, within the tolerance the header states.

#include <gtest/gtest.h>

#include <cmath>
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/random_data.h"
#include "support/regimes.h"
#include "zolvex_m.h"

namespace {

bool accelerator_present() {
    const char* scenario = std::getenv("ZOLVEX_M_TEST_ACCELERATOR");
    return scenario && std::string(scenario) == "present";
}

template <class T>
using Window = int32_t (*)(const T*, T*, uint32_t, uint8_t);

template <class T>
void expect_close_to_built_in(const char* name, Window<T> window, double tolerance, double growth) {
    for (uint32_t n : {3u, 4u, 17u, 1000u, 65537u}) {
        SCOPED_TRACE(std::string(name) + " n=" + std::to_string(n));
        std::vector<T> in = testing_support::random_vector<T>(n, n), ours(n), theirs(n), in_place;
        for (T& x : in) x = std::isnormal(x) ? x : T(1);  // subnormal products round to the last bit
        for (uint8_t scale : {0, 1}) {
            ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0), 0);
            ASSERT_EQ(window(in.data(), ours.data(), n, scale), 0);
            ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), 0);
            ASSERT_EQ(window(in.data(), theirs.data(), n, scale), 0);
            in_place = in;
            ASSERT_EQ(window(in_place.data(), in_place.data(), n, scale), 0);
            // IPP's in-place form is its own code: both within the tolerance.
            const double relative = std::max(tolerance, growth * n * n) * (scale ? 2.5 : 1);
            for (uint32_t i = 0; i < n; ++i) {
                ASSERT_LE(std::fabs(double(theirs[i]) - double(ours[i])), relative * std::fabs(double(in[i]))) << i;
                ASSERT_LE(std::fabs(double(in_place[i]) - double(ours[i])), relative * std::fabs(double(in[i]))) << i;
            }
        }
    }
    T x[2] = {1, 1};
    EXPECT_EQ(window(x, x, 2, 0), ZOLVEX_M_STATUS_FAILED) << "IPP takes 3 samples and more";
    EXPECT_EQ(window(x, x, 0, 0), 0);
}

TEST(AcceleratedWindows, CloseToTheBuiltInWindows) {
    if (!accelerator_present()) GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
#define CHECK(name)                                                                                \
    expect_close_to_built_in<double>(#name, zolvex_m_window_##name##_f64, 0x1p-40, 0x1p-61);       \
    expect_close_to_built_in<float>(#name, zolvex_m_window_##name##_f32, 0x1p-21, 0x1p-59);
    CHECK(hanning) CHECK(hamming) CHECK(blackman) CHECK(bartlett)
#undef CHECK
}

} // namespace
