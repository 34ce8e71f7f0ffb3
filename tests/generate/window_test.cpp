// Window functions against long-double evaluations of their formulas, with
// the accuracy the header states; symmetry, splits, in-place use, regimes.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "core/parallel.h"
#include "generate/window.h"
#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using Window64 = int32_t (*)(const double*, double*, uint32_t, uint8_t);
using Window32 = int32_t (*)(const float*, float*, uint32_t, uint8_t);
const long double kPi = 3.141592653589793238462643383279502884L;

struct Case {
    const char* name;
    Window64 f64;
    Window32 f32;
    const generate::CosineSum* sum;  // null: the w() below
    long double (*w)(long double x, long double y);  // x = |i - h| / h, y = 1 - x
    long double factor;
    double ulps;  // the header's bound for f64 (0: absolute, 2^-48 * factor)
};

#define WINDOW(name) zolvex_m_window_##name##_f64, zolvex_m_window_##name##_f32
const Case kCases[] = {
    {"hanning", WINDOW(hanning), &generate::kHann, nullptr, 2, 5},
    {"hamming", WINDOW(hamming), &generate::kHamming, nullptr, 1 / 0.54, 5},
    {"blackman", WINDOW(blackman), &generate::kBlackman, nullptr, 1 / 0.42, 9},
    {"nuttall", WINDOW(nuttall), &generate::kNuttall, nullptr, 1 / 0.355768, 13},
    {"blackmanharris", WINDOW(blackmanharris), &generate::kBlackmanHarris, nullptr, 1 / 0.35875, 13},
    {"blackmannuttall", WINDOW(blackmannuttall), &generate::kBlackmanNuttall, nullptr, 1 / 0.3635819, 13},
    {"flattop", WINDOW(flattop), &generate::kFlatTop, nullptr, 4.638671818375588, 0},
    {"bartlett", WINDOW(bartlett), nullptr, [](long double, long double y) { return y; }, 2, 1},
    {"parzen", WINDOW(parzen), nullptr,
     [](long double x, long double y) { return x <= 0.5L ? 1 - 6 * x * x + 6 * x * x * x : 2 * y * y * y; }, 8.0L / 3, 1},
    {"gaussian", WINDOW(gaussian), nullptr, [](long double x, long double) { return std::exp(-0.5L * x * x / 0.16L); },
     1 / (0.4L * std::sqrt(kPi / 2) * std::erf(1 / (0.4L * std::sqrt(2.0L)))), 1},
    {"welch", WINDOW(welch), nullptr, [](long double x, long double) { return 1 - x * x; }, 1.5L, 0},
};

// w(i) by its formula in long double: the cosine sums as (-1)^k a_k cos(2 pi
// k t) with t = j / D folded (exact in long double for these n).
long double reference(const Case& c, uint32_t i, uint32_t n) {
    const long double last = n - 1, j = std::min<long double>(i, last - i), half = last / 2;
    if (!c.sum) return c.w((half - j) / half, j / half);
    long double w = 0;
    for (int k = 0; k < 5; ++k) w += (k % 2 ? -1 : 1) * (long double)c.sum->a[k] * std::cos(2 * kPi * k * j / last);
    return w;
}

double ulp(double v) { return std::nextafter(std::fabs(v), INFINITY) - std::fabs(v); }
double ulp(float v) { return std::nextafter(std::fabs(v), INFINITY) - std::fabs(v); }

TEST(Windows, MatchTheirFormulasToTheStatedAccuracy) {
    for (const Case& c : kCases) {
        for (uint32_t n : {2u, 3u, 4u, 7u, 64u, 65u, 1000u, 4097u, 70001u}) {
            SCOPED_TRACE(std::string(c.name) + " n=" + std::to_string(n));
            std::vector<double> in = testing_support::random_vector<double>(n, n), out(n);
            std::vector<float> in32(in.begin(), in.end()), out32(n);
            for (uint8_t scale : {0, 1}) {
                ASSERT_EQ(c.f64(in.data(), out.data(), n, scale), 0);
                ASSERT_EQ(c.f32(in32.data(), out32.data(), n, scale), 0);
                for (uint32_t i = 0; i < n; ++i) {
                    if (!std::isnormal(in[i])) continue;  // subnormal products round to the last bit
                    const long double factor = scale ? c.factor : 1, want = in[i] * reference(c, i, n) * factor;
                    // Long double cosines carry 2^-64 of the terms: the
                    // cosine sums are checked relative to that near zero.
                    const double slack = c.sum ? 4e-19 * std::fabs(in[i]) * factor : 0;
                    // The header's ulps are relative: N * 2^-52 * |value|.
                    const double bound = std::ldexp(c.ulps ? c.ulps * std::fabs(double(want)) : std::fabs(in[i]) * factor,
                                                    c.ulps ? -52 : -48);
                    ASSERT_LE(std::fabs(out[i] - want), bound + slack) << "f64 i=" << i;
                    const long double want32 = in32[i] * reference(c, i, n) * (scale ? (long double)(float)c.factor : 1);
                    const double absolute32 = c.ulps ? 0 : std::ldexp(std::fabs(in[i]) * factor, -48);
                    ASSERT_LE(std::fabs(out32[i] - want32), 0.5001 * ulp(float(want32)) + slack + absolute32) << "f32 i=" << i;
                }
            }
        }
    }
}

TEST(Windows, EdgesAndInPlace) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        double one = 5, untouched = 5;
        EXPECT_EQ(c.f64(&untouched, &untouched, 0, 1), 0);
        EXPECT_EQ(untouched, 5);
        ASSERT_EQ(c.f64(&one, &one, 1, 0), 0);
        EXPECT_TRUE(std::isnan(one)) << "the window of one sample is 0 / 0";
        for (uint32_t n : {2u, 3u, 1000u, 4097u}) {
            std::vector<double> w(n, 1.0);
            ASSERT_EQ(c.f64(w.data(), w.data(), n, 1), 0);
            for (uint32_t i = 0; i < n; ++i) ASSERT_EQ(w[i], w[n - 1 - i]) << "symmetric, n=" << n << " i=" << i;
        }
        std::vector<float> in = testing_support::random_vector<float>(5001, 9), out(5001), same = in;
        ASSERT_EQ(c.f32(in.data(), out.data(), 5001, 1), 0);
        ASSERT_EQ(c.f32(same.data(), same.data(), 5001, 1), 0);
        std::string where;
        EXPECT_TRUE(testing_support::same_results(out, same, where)) << where;
    }
}

// Any cut into pieces gives the same bits (the exported call cuts by the
// processor count, so the kernel is cut here directly).
TEST(Windows, CosineSumsDoNotDependOnTheSplit) {
    for (uint32_t n : {2u, 3u, 129u, 1000u, 99999u}) {
        const generate::CosineSumPlan plan = generate::plan_for(n, generate::kBlackmanHarris, 1.0L);
        std::vector<double> in = testing_support::random_vector<double>(n, 5), whole(n), cut(n);
        auto kernel = generate::kWindowKernels.choose()->f64;
        kernel(in.data(), whole.data(), 0, n, plan);
        for (uint32_t pieces : {2u, 3u, 7u, 64u}) {
            core::run_pieces(n, pieces, [&](uint32_t b, uint32_t e) { kernel(in.data(), cut.data(), b, e, plan); });
            std::string where;
            EXPECT_TRUE(testing_support::same_results(whole, cut, where)) << n << " in " << pieces << ": " << where;
        }
    }
}

TEST(Windows, EveryRegimeGivesTheGenericBits) {
    testing_support::expect_regimes_agree([](const testing_support::Shape& s) {
        auto in = testing_support::shaped_input<double>(s);
        auto in32 = testing_support::shaped_input<float>(s);
        testing_support::GuardedOutput<double> hann(s), flattop(s);
        testing_support::GuardedOutput<float> nuttall(s);
        zolvex_m_window_hanning_f64(in.data(), hann.data(), s.length, 1);
        zolvex_m_window_flattop_f64(in.data(), flattop.data(), s.length, 0);
        zolvex_m_window_nuttall_f32(in32.data(), nuttall.data(), s.length, 1);
        return std::make_tuple(hann.values(), flattop.values(), nuttall.values());
    });
}

} // namespace
