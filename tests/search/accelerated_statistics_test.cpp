// Min/max and the f64 sums with the accelerator on, in the process whose
// loader finds the real one (ZOLVEX_M_TEST_ACCELERATOR=present, see
// tests/CMakeLists.txt): its extremes equal the built-in ones on NaN-free
// data, its sums are close to the exact ones, it judges the length itself,
// and a failure leaves the results untouched. In the other processes the
// option cannot be switched on and the built-in code answers.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "support/random_data.h"
#include "support/regimes.h"
#include "zolvex_m.h"

namespace {

using testing_support::random_vector;

bool accelerator_present() {
    const char* scenario = std::getenv("ZOLVEX_M_TEST_ACCELERATOR");
    return scenario && std::string(scenario) == "present";
}

#define ACCELERATED_MINMAX(X) X(uint8_t, u8) X(int16_t, i16) X(uint16_t, u16) X(float, f32) X(double, f64)

#define MINMAX_OVERLOAD(T, suffix)                                                                 \
    int32_t minmax(const T* x, uint32_t n, T* min, T* max) { return zolvex_m_minmax_##suffix(x, n, min, max); }
ACCELERATED_MINMAX(MINMAX_OVERLOAD)
#undef MINMAX_OVERLOAD

template <class T>
void expect_same_extremes_as_built_in() {
    SCOPED_TRACE(sizeof(T));
    for (uint32_t n : {1u, 2u, 15u, 16u, 17u, 255u, 1000u, 4097u, 65537u}) {
        std::vector<T> data = random_vector<T>(n + 1, n);
        for (T& v : data)
            if (v != v) v = T(-7);  // NaN
        const T* x = data.data() + 1;
        T want_min{}, want_max{}, got_min{}, got_max{}, only_min{}, only_max{};
        ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0), 0);
        ASSERT_EQ(minmax(x, n, &want_min, &want_max), 0);
        ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), 0);
        ASSERT_EQ(minmax(x, n, &got_min, &got_max), 0);
        ASSERT_EQ(minmax(x, n, &only_min, nullptr), 0);
        ASSERT_EQ(minmax(x, n, nullptr, &only_max), 0);
        // Values: which zero the accelerator returns is its own affair.
        EXPECT_EQ(got_min, want_min) << "n=" << n;
        EXPECT_EQ(got_max, want_max) << "n=" << n;
        EXPECT_EQ(only_min, want_min) << "n=" << n;
        EXPECT_EQ(only_max, want_max) << "n=" << n;
    }
}

TEST(AcceleratedMinMax, SameExtremesAsTheBuiltInKernels) {
    if (!accelerator_present()) GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
#define CHECK_TYPE(T, suffix) expect_same_extremes_as_built_in<T>();
    ACCELERATED_MINMAX(CHECK_TYPE)
#undef CHECK_TYPE
}

TEST(AcceleratedMinMax, TheAcceleratorJudgesTheLength) {
    if (!accelerator_present()) GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
    ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), 0);
    const float x[4] = {1, 2, 3, 4};
    float min = 9, max = 9;
    EXPECT_EQ(zolvex_m_minmax_f32(x, 0, &min, &max), ZOLVEX_M_STATUS_FAILED);
    // A count above INT32_MAX reaches the accelerator as a negative length.
    EXPECT_EQ(zolvex_m_minmax_f32(x, 0x80000000u, &min, &max), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(zolvex_m_minmax_f32(x, 0, nullptr, nullptr), ZOLVEX_M_STATUS_FAILED) << "asked before the pointers";
    EXPECT_EQ(min, 9.0f);
    EXPECT_EQ(max, 9.0f);
    const uint8_t bytes[3] = {7, 200, 3};
    uint8_t umax = 0;
    EXPECT_EQ(zolvex_m_minmax_u8(bytes, 3, nullptr, &umax), 0);
    EXPECT_EQ(umax, 200);
}

// Mixed signs over a wide range of magnitudes, so that the order of the
// additions matters.
std::vector<double> wide_range(size_t n, uint32_t seed) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-20, 20);
    std::vector<double> v(n);
    for (double& x : v) x = std::ldexp(mantissa(rng), exponent(rng));
    return v;
}

TEST(AcceleratedSums, CloseToTheExactSumAndAddedToTheStoredValue) {
    if (!accelerator_present()) GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
    ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), 0);
    for (uint32_t n : {1u, 3u, 64u, 1001u, 65537u}) {
        auto data = wide_range(n, n);
        long double exact = 0.25L, exact_squares = 0.25L, magnitude = 0.25L, magnitude_squares = 0.25L;
        for (double v : data) {
            exact += v;
            magnitude += std::fabs(v);
            exact_squares += static_cast<long double>(v) * v;
            magnitude_squares += static_cast<long double>(v) * v;
        }
        double sum = 0.25, squares = 0.25;
        // In two blocks: each call adds to the stored value.
        uint32_t first = n / 3;
        ASSERT_EQ(zolvex_m_sum_f64(data.data(), first > 0 ? first : n, &sum), 0);
        if (first > 0) ASSERT_EQ(zolvex_m_sum_f64(data.data() + first, n - first, &sum), 0);
        ASSERT_EQ(zolvex_m_square_sum_f64(data.data(), n, &squares), 0);
        // A few roundings per sample at most, relative to the sum of the
        // magnitudes (which bounds every partial sum).
        EXPECT_LE(std::fabs(static_cast<long double>(sum) - exact), 1e-13L * magnitude) << "n=" << n;
        EXPECT_LE(std::fabs(static_cast<long double>(squares) - exact_squares), 1e-13L * magnitude_squares)
            << "n=" << n;
    }
}

TEST(AcceleratedSums, AFailureLeavesTheSumUntouched) {
    if (!accelerator_present()) GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
    ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), 0);
    const double x[2] = {1, 2};
    double sum = 5, squares = 6;
    EXPECT_EQ(zolvex_m_sum_f64(x, 0, &sum), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(zolvex_m_square_sum_f64(x, 0, &squares), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(zolvex_m_sum_f64(x, 0x80000000u, &sum), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(sum, 5.0);
    EXPECT_EQ(squares, 6.0);
    // Without the accelerator length 0 adds 0.0.
    ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0), 0);
    EXPECT_EQ(zolvex_m_sum_f64(x, 0, &sum), 0);
    EXPECT_EQ(sum, 5.0);
}

TEST(AcceleratedStatistics, BuiltInCodeAnswersWithoutTheAccelerator) {
    if (accelerator_present()) GTEST_SKIP() << "accelerator present in this process";
    uint32_t ipp = 1;
    ASSERT_EQ(zolvex_m_getopt(ZOLVEX_M_OPT_IPP, &ipp), 0);
    EXPECT_EQ(ipp, 0u);
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), -1);
    const double x[3] = {2, -1, 4};
    double min = 0, max = 0, sum = 1;
    EXPECT_EQ(zolvex_m_minmax_f64(x, 3, &min, &max), 0);
    EXPECT_EQ(min, -1.0);
    EXPECT_EQ(max, 4.0);
    EXPECT_EQ(zolvex_m_minmax_f64(x, 0, &min, &max), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    EXPECT_EQ(zolvex_m_square_sum_f64(x, 3, &sum), 0);
    EXPECT_EQ(sum, 22.0);
}

} // namespace
