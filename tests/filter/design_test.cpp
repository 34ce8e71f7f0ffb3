// Filter design, descriptions and frequency response against scipy.signal
// (butter/cheby1/cheby2 with output='zpk' and fs, zpk2sos, iirnotch,
// iirpeak, freqz, freqz_zpk: scipy_reference.py), the argument checks, edge
// values at every order, and the forms read from many threads at once.

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

#include "filter/descriptions.h"
#include "filter/response.h"
#include "filter_support.h"

namespace filter_test {
namespace {

// Every reference root has its own root of ours within tolerance * max(1, |r|).
void expect_same_roots(Roots ours, const Roots& theirs, double tolerance) {
    ASSERT_EQ(ours.size(), theirs.size());
    for (Complex r : theirs) {
        auto best = std::min_element(ours.begin(), ours.end(),
                                     [&](Complex a, Complex b) { return std::abs(a - r) < std::abs(b - r); });
        ASSERT_LE(std::abs(*best - r), tolerance * std::max(1.0, std::abs(r))) << r;
        ours.erase(best);
    }
}

// The library's response (from the ZPK or the TF) at n points, fs = 1000.
Roots response(zolvex_m_filter_state* state, bool from_zpk, uint32_t n, bool whole, bool log,
               std::vector<double>* frequencies = nullptr) {
    std::vector<double> f(n), h(2 * n);
    EXPECT_EQ((from_zpk ? zolvex_m_filter_iir_freqz_zpk : zolvex_m_filter_iir_freqz)(state, n, 1000.0, whole, log,
                                                                                     f.data(), h.data()), 0);
    if (frequencies) *frequencies = f;
    return as_complex(h.data(), n);
}

// Within tolerance times the largest reference magnitude.
void expect_close(const Roots& ours, const Roots& theirs, double tolerance) {
    ASSERT_EQ(ours.size(), theirs.size());
    double scale = 0;
    for (Complex h : theirs) scale = std::max(scale, std::abs(h));
    for (size_t i = 0; i < ours.size(); ++i) ASSERT_LE(std::abs(ours[i] - theirs[i]), tolerance * scale) << i;
}

void expect_notch_or_peak_as_scipy(const Case& c) {
    Designed d;
    ASSERT_EQ((c.head[0] == "notch" ? zolvex_m_filter_iir_notch : zolvex_m_filter_iir_peak)(
                  c.number(1), c.number(2), c.number(3), &d.state), 0);
    const double *b, *a;
    uint32_t n = 0;
    ASSERT_TRUE(zolvex_m_filter_iir_get_tf(d.state, &b, &a, &n) == 0 && n == 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(b[i], c.values.at("b")[i], 1e-14);
        EXPECT_NEAR(a[i], c.values.at("a")[i], 1e-14);
    }
    // The ZPK derived from the TF (its roots) has the TF's response.
    expect_close(response(d.state, true, 64, false, false), response(d.state, false, 64, false, false), 1e-9);
}

TEST(FilterDesign, DesignsSectionsAndResponsesAsScipy) {
    for (const Case& c : reference()) {
        SCOPED_TRACE(::testing::PrintToString(c.head));
        if (c.head[0] != "design") {
            expect_notch_or_peak_as_scipy(c);
            continue;
        }
        Designed d;
        ASSERT_EQ(design(c, &d.state), 0);
        const double *zeros, *poles;
        uint32_t zero_count, pole_count;
        double gain;
        ASSERT_EQ(zolvex_m_filter_iir_get_zpk(d.state, &zeros, &zero_count, &poles, &pole_count, &gain), 0);
        expect_same_roots(as_complex(zeros, zero_count), c.roots("zeros"), 1e-10);
        expect_same_roots(as_complex(poles, pole_count), c.roots("poles"), 1e-10);
        // Where scipy's doubles overflow (order 255), its gain recomputed in
        // extended precision; below the range of doubles that is 0.
        double want = std::isfinite(c.values.at("gain")[0]) ? c.values.at("gain")[0] : c.values.at("extended_gain")[0];
        EXPECT_NEAR(gain, want, 1e-10 * std::abs(want));
        bool stable = false;
        EXPECT_TRUE(zolvex_m_filter_iir_isstable(d.state, &stable) == 0 && stable);
        // Sections: biquads paired as zpk2sos(pairing='nearest'), together
        // the ZPK's response.
        std::vector<std::vector<double>> sos = get_sos(d.state);
        const std::vector<double>& theirs = c.values.at("sos");
        ASSERT_EQ(6 * sos.size(), theirs.size());
        for (size_t i = 0; i < theirs.size(); ++i)
            if (std::isfinite(theirs[i])) ASSERT_NEAR(sos[i / 6][i % 6], theirs[i], 1e-9 * std::max(1.0, std::abs(theirs[i])));
        std::vector<double> grid;
        Roots zpk_response = response(d.state, true, 64, true, false, &grid), cascade;
        for (double f : grid) {
            Complex w = std::exp(Complex(0, -2 * M_PI * f / 1000.0)), h = 1.0;
            for (const std::vector<double>& s : sos) h *= (s[0] + w * (s[1] + w * s[2])) / (s[3] + w * (s[4] + w * s[5]));
            cascade.push_back(h);
        }
        expect_close(cascade, zpk_response, 1e-9);
        if (!c.values.count("freqz0")) continue;
        for (bool whole : {false, true}) {
            expect_close(response(d.state, true, 128, whole, false, &grid), c.roots(whole ? "freqz_zpk1" : "freqz_zpk0"), 1e-10);
            EXPECT_EQ(grid[4], 4 * (whole ? 1000.0 : 500.0) / 128);
            // The TF of order 8 with a cut-off at 3% of fs has lost digits
            // (on both sides, differently).
            expect_close(response(d.state, false, 128, whole, false), c.roots(whole ? "freqz1" : "freqz0"), 1e-6);
        }
        expect_close(response(d.state, true, 128, false, true, &grid), c.roots("freqz_log"), 1e-10);
        EXPECT_EQ(grid[0], 1.0);
    }
}

TEST(FilterResponse, TransferFunctionPointsDoNotDependOnTheSplit) {
    FilterState::IIR::TF tf{{0.1, 0.3, 0.3, 0.1}, {1.0, -0.5, 0.25, -0.125}};
    iir::Grid grid{5000, 1000.0, true, true};
    std::vector<double> one(3 * grid.n), seven(3 * grid.n);  // frequencies, then the response
    iir::tf_response(tf, grid, one.data(), one.data() + grid.n, 1);
    iir::tf_response(tf, grid, seven.data(), seven.data() + grid.n, 7);
    EXPECT_EQ(one, seven);
}

// The status of a design call; a failure leaves the handle as it was.
template <class Call>
int32_t attempt(Call call) {
    zolvex_m_filter_state *const untouched = reinterpret_cast<zolvex_m_filter_state*>(uintptr_t(0x1234)), *state = untouched;
    int32_t status = call(&state);
    EXPECT_EQ(status != 0, state == untouched);
    if (status == 0) zolvex_m_filter_state_destroy(state);
    return status;
}

TEST(FilterDesign, ChecksExactlyAsDocumented) {
    const double nan = NAN, below_half = std::nextafter(500.0, 0.0);
    struct Check { int family; uint32_t type; double fs, f1, f2, parameter; int32_t status; };
    for (Check k : std::initializer_list<Check>{
             {0, 0, 0.0, 10, 0, 0, -1}, {0, 0, -1, 10, 0, 0, -1}, {0, 0, nan, 10, 0, 0, -1},  // NaN fails at the edges
             {0, 0, 1000, 0, 0, 0, -1}, {0, 0, 1000, 500, 0, 0, -1}, {0, 0, 1000, 1e-300, 0, 0, 0},
             {0, 0, 1000, below_half, 0, 0, 0}, {0, 0, 1000, 10, -1, 0, -1} /* f2 checked though unused */,
             {0, 2, 1000, 200, 100, 0, 0} /* negative bandwidth */, {0, 2, 1000, 100, 500, 0, -1},
             {0, 4, 1000, 100, 200, 0, -1}, {1, 0, 1000, 10, 0, 0.0, 0}, {1, 0, 1000, 10, 0, -1e-300, -1},
             {2, 0, 1000, 10, 0, 0.0, 0}, {2, 0, 1000, 10, 0, -1, -1}}) {
        EXPECT_EQ(attempt([&](auto s) { return design(k.family, k.type, 4, k.fs, k.f1, k.f2, k.parameter, s); }), k.status)
            << k.family << " " << k.type << " " << k.fs << " " << k.f1 << " " << k.f2 << " " << k.parameter;
    }
    for (auto make : {zolvex_m_filter_iir_notch, zolvex_m_filter_iir_peak})
        for (auto [f0, status] : {std::pair{0.0, 0}, {500.0, 0}, {std::nextafter(500.0, 1e9), -1}})
            EXPECT_EQ(attempt([&](auto s) { return make(1000, f0, 10, s); }), status) << f0;
}

// Every order with the edge values the checks let through: every call
// completes with 0 or -1 (-1 only where a form cannot be had).
TEST(FilterDesign, EdgeValuesAtEveryOrderComplete) {
    for (unsigned order : {0, 1, 2, 3, 128, 255})
        for (uint32_t type = 0; type < 4; ++type)
            for (double parameter : {0.0, 3.0, double(INFINITY), double(NAN)})
                for (int family = 0; family < 3; ++family) {
                    Designed d;  // edges next to 0 and to fs / 2
                    ASSERT_EQ(design(family, type, order, 1000, family ? 1e-9 : 499.999999, 499.99999999999,
                                     parameter, &d.state), 0) << order << " " << type << " " << parameter;
                    std::vector<double> f(33), h(66), block(100, 1.0);
                    bool stable;
                    for (int32_t status : {zolvex_m_filter_iir_freqz(d.state, 33, 1000, true, true, f.data(), h.data()),
                                           zolvex_m_filter_iir_freqz_zpk(d.state, 33, 1000, false, false, f.data(), h.data()),
                                           zolvex_m_filter_iir_isstable(d.state, &stable),
                                           zolvex_m_filter_execute_f64(block.data(), block.data(), 100, d.state)})
                        EXPECT_TRUE(status == 0 || status == -1);
                }
}

// Eight threads ask one fresh state for all three forms at once: one form
// of each is stored and every thread gets the same arrays.
TEST(FilterDescriptions, OneStoredFormPerStateFromEightThreads) {
    for (bool from_tf : {false, true}) {
        Designed d;
        ASSERT_EQ(from_tf ? zolvex_m_filter_iir_notch(1000, 50, 5, &d.state)
                          : zolvex_m_filter_iir_chebyshev1(2, 12, 1000, 100, 200, 1, &d.state), 0);
        std::atomic<int> ready{0};
        std::vector<std::array<const void*, 4>> seen(8);
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t)
            threads.emplace_back([&, t] {
                for (ready.fetch_add(1); ready.load() < 8;) {}
                const double *z, *p, *b, *a, *const *rows;
                uint32_t n;
                double k;
                bool ok = !zolvex_m_filter_iir_get_sos(d.state, &rows, &n) && !zolvex_m_filter_iir_get_tf(d.state, &b, &a, &n) &&
                          !zolvex_m_filter_iir_get_zpk(d.state, &z, &n, &p, &n, &k);
                seen[t] = {ok ? z : nullptr, p, b, rows};
            });
        for (std::thread& t : threads) t.join();
        for (const auto& s : seen) EXPECT_EQ(s, seen[0]);
        EXPECT_NE(seen[0][0], nullptr);
    }
}

// The asymmetry of isstable (no poles: -1) and its bound (a pole on the
// unit circle is unstable); a section of other than six coefficients.
TEST(FilterDescriptions, StabilityAndSectionsOfStoredForms) {
    auto stability = [](zolvex_m_filter_state* state) {
        bool stable = false;
        return zolvex_m_filter_iir_isstable(state, &stable) == 0 ? int(stable) : -1;
    };
    Designed order0, notch, d;
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 0, 1000, 100, 0, &order0.state), 0);
    ASSERT_EQ(zolvex_m_filter_iir_notch(1000, 0.0, 0.0, &notch.state), 0);  // NaN coefficients: no ZPK
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 2, 1000, 100, 0, &d.state), 0);
    EXPECT_EQ(stability(order0.state), -1);
    EXPECT_EQ(stability(notch.state), -1);
    d.state->zpk = std::make_shared<FilterState::IIR::ZPK>(FilterState::IIR::ZPK{{}, {0.5, -1.0}, 1.0});
    EXPECT_EQ(stability(d.state), 0);
    d.state->sos = std::make_shared<FilterState::IIR::SOS>(FilterState::IIR::SOS{{{1, 0, 0, 1, 0, 0}, {1, 0, 0, 1, 0}}, {}});
    const double* const* rows = nullptr;
    uint32_t count = 77;
    EXPECT_EQ(zolvex_m_filter_iir_get_sos(d.state, &rows, &count), -1);
    EXPECT_TRUE(rows == nullptr && count == 77u);
    zolvex_m_filter_state_destroy(nullptr);
}

} // namespace
} // namespace filter_test
