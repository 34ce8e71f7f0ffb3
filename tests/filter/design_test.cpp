// Filter design, descriptions and frequency response against scipy.signal
// (butter/cheby1/cheby2 with output='zpk' and fs, zpk2sos, iirnotch,
// iirpeak, freqz, freqz_zpk: scipy_reference.py), the argument checks, edge
// values at every order, and the forms read from many threads at once.

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <thread>

#include "filter/descriptions.h"
#include "filter/response.h"
#include "filter_support.h"

namespace filter_test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Every reference root has its own root of ours within tolerance * max(1, |r|).
void expect_same_roots(Roots ours, const Roots& theirs, double tolerance, const char* what) {
    ASSERT_EQ(ours.size(), theirs.size()) << what;
    for (Complex r : theirs) {
        size_t best = 0;
        for (size_t i = 1; i < ours.size(); ++i)
            if (std::abs(ours[i] - r) < std::abs(ours[best] - r)) best = i;
        ASSERT_LE(std::abs(ours[best] - r), tolerance * std::max(1.0, std::abs(r))) << what << " " << r;
        ours.erase(ours.begin() + std::ptrdiff_t(best));
    }
}

Complex section_response(const std::vector<double>& s, Complex e) {
    Complex w = 1.0 / e;
    return (s[0] + w * (s[1] + w * s[2])) / (s[3] + w * (s[4] + w * s[5]));
}

// The library's response on the grid (ZPK or TF), as complex values.
std::vector<Complex> response(zolvex_m_filter_state* state, bool from_zpk, uint32_t n, bool whole, bool log,
                              std::vector<double>* frequencies = nullptr) {
    std::vector<double> f(n), h(2 * n);
    int32_t status = (from_zpk ? zolvex_m_filter_iir_freqz_zpk : zolvex_m_filter_iir_freqz)(
        state, n, 1000.0, whole, log, f.data(), h.data());
    EXPECT_EQ(status, 0);
    if (frequencies) *frequencies = f;
    std::vector<Complex> out;
    for (uint32_t i = 0; i < n; ++i) out.emplace_back(h[2 * i], h[2 * i + 1]);
    return out;
}

void expect_close(const std::vector<Complex>& ours, const std::vector<double>& theirs, double tolerance) {
    ASSERT_EQ(2 * ours.size(), theirs.size());
    double scale = largest_magnitude(theirs);
    for (size_t i = 0; i < ours.size(); ++i)
        ASSERT_LE(std::abs(ours[i] - Complex(theirs[2 * i], theirs[2 * i + 1])), tolerance * scale) << "point " << i;
}

TEST(FilterDesign, ZerosPolesAndGainAsScipy) {
    for (const Case& c : reference()) {
        if (c.head[0] != "design") continue;
        SCOPED_TRACE(::testing::PrintToString(c.head));
        Designed d;
        design(c, d);
        ASSERT_EQ(d.status, 0);
        Zpk zpk;
        ASSERT_EQ(get_zpk(d.state, zpk), 0);
        expect_same_roots(zpk.zeros, c.roots("zeros"), 1e-10, "zeros");
        expect_same_roots(zpk.poles, c.roots("poles"), 1e-10, "poles");
        // Where scipy's doubles overflow (order 255), its gain recomputed in
        // extended precision; below the range of doubles that is 0.
        double gain = c.values.at("gain")[0];
        double want = std::isfinite(gain) ? gain : c.values.at("extended_gain")[0];
        EXPECT_NEAR(zpk.gain, want, 1e-10 * std::abs(want));
    }
}

TEST(FilterDesign, SectionsAreBiquadsOfTheZpkPairedAsScipy) {
    for (const Case& c : reference()) {
        if (c.head[0] != "design") continue;
        SCOPED_TRACE(::testing::PrintToString(c.head));
        Designed d;
        design(c, d);
        std::vector<std::vector<double>> sos = get_sos(d.state);
        const std::vector<double>& theirs = c.values.at("sos");
        ASSERT_EQ(6 * sos.size(), theirs.size());
        for (size_t i = 0; i < sos.size(); ++i) {
            EXPECT_EQ(sos[i][3], 1.0);
            for (size_t j = 0; j < 6; ++j) {
                double want = theirs[6 * i + j];
                if (std::isfinite(want)) EXPECT_NEAR(sos[i][j], want, 1e-9 * std::max(1.0, std::abs(want))) << i;
            }
        }
        std::vector<double> grid;
        std::vector<Complex> zpk = response(d.state, true, 64, true, false, &grid);
        double scale = 0;
        for (Complex h : zpk) scale = std::max(scale, std::abs(h));
        for (size_t k = 0; k < grid.size(); ++k) {
            Complex e = std::exp(Complex(0, 2 * M_PI * grid[k] / 1000.0)), h = 1.0;
            for (const std::vector<double>& s : sos) h *= section_response(s, e);
            ASSERT_LE(std::abs(h - zpk[k]), 1e-9 * scale) << "point " << k;
        }
    }
}

TEST(FilterDesign, NotchAndPeakAsScipy) {
    for (const Case& c : reference()) {
        if (c.head[0] != "notch" && c.head[0] != "peak") continue;
        SCOPED_TRACE(::testing::PrintToString(c.head));
        Designed d;
        d.status = (c.head[0] == "notch" ? zolvex_m_filter_iir_notch : zolvex_m_filter_iir_peak)(
            c.number(1), c.number(2), c.number(3), &d.state);
        ASSERT_EQ(d.status, 0);
        const double *b, *a;
        uint32_t n = 0;
        ASSERT_EQ(zolvex_m_filter_iir_get_tf(d.state, &b, &a, &n), 0);
        ASSERT_EQ(n, 3u);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(b[i], c.values.at("b")[i], 1e-14);
            EXPECT_NEAR(a[i], c.values.at("a")[i], 1e-14);
        }
        // The ZPK is derived from the TF (roots), its response the TF's.
        std::vector<double> flat;
        for (Complex h : response(d.state, false, 64, false, false)) flat.insert(flat.end(), {h.real(), h.imag()});
        expect_close(response(d.state, true, 64, false, false), flat, 1e-9);
    }
}

TEST(FilterResponse, FreqzAndFreqzZpkAsScipyOnBothGrids) {
    for (const Case& c : reference()) {
        if (!c.values.count("freqz0")) continue;
        SCOPED_TRACE(::testing::PrintToString(c.head));
        Designed d;
        design(c, d);
        for (bool whole : {false, true}) {
            std::vector<double> f;
            expect_close(response(d.state, true, 128, whole, false, &f), c.values.at(whole ? "freqz_zpk1" : "freqz_zpk0"), 1e-10);
            // The TF of order 8 with a cut-off at 3% of fs has lost digits
            // (on both sides, differently).
            expect_close(response(d.state, false, 128, whole, false), c.values.at(whole ? "freqz1" : "freqz0"), 1e-6);
            EXPECT_EQ(f[4], 4 * (whole ? 1000.0 : 500.0) / 128);
        }
        std::vector<double> f;
        expect_close(response(d.state, true, 128, false, true, &f), c.values.at("freqz_log"), 1e-10);
        EXPECT_EQ(f[0], 1.0);
    }
}

TEST(FilterResponse, TransferFunctionPointsDoNotDependOnTheSplit) {
    FilterState::IIR::TF tf{{0.1, 0.3, 0.3, 0.1}, {1.0, -0.5, 0.25, -0.125}};
    iir::Grid grid{5000, 1000.0, true, true};
    std::vector<double> f1(grid.n), h1(2 * grid.n), f7(grid.n), h7(2 * grid.n);
    iir::tf_response(tf, grid, f1.data(), h1.data(), 1);
    iir::tf_response(tf, grid, f7.data(), h7.data(), 7);
    EXPECT_EQ(0, std::memcmp(h1.data(), h7.data(), h1.size() * sizeof(double)));
    EXPECT_EQ(f1, f7);
}

// status of a design call; a failure must leave the handle as it was.
int32_t attempt(auto&& call) {
    zolvex_m_filter_state* state = reinterpret_cast<zolvex_m_filter_state*>(uintptr_t(0x1234));
    int32_t status = call(&state);
    if (status != 0) EXPECT_EQ(state, reinterpret_cast<zolvex_m_filter_state*>(uintptr_t(0x1234)));
    else zolvex_m_filter_state_destroy(state);
    return status;
}

TEST(FilterDesign, ChecksExactlyAsDocumented) {
    auto butter = [](uint32_t type, double fs, double f1, double f2) {
        return attempt([&](auto s) { return zolvex_m_filter_iir_butterworth(type, 4, fs, f1, f2, s); });
    };
    EXPECT_EQ(butter(0, 0.0, 10, 0), -1);
    EXPECT_EQ(butter(0, -1.0, 10, 0), -1);
    EXPECT_EQ(butter(0, kNaN, 10, 0), -1);  // passes the fs check, not the edge check
    EXPECT_EQ(butter(0, 1000, 0, 0), -1);
    EXPECT_EQ(butter(0, 1000, 500, 0), -1);
    EXPECT_EQ(butter(0, 1000, 1e-300, 0), 0);
    EXPECT_EQ(butter(0, 1000, std::nextafter(500.0, 0.0), 0), 0);
    EXPECT_EQ(butter(0, 1000, 10, -1), -1);  // f2 checked though unused
    EXPECT_EQ(butter(2, 1000, 200, 100), 0);  // f2 below f1: a negative bandwidth
    EXPECT_EQ(butter(2, 1000, 100, 500), -1);
    EXPECT_EQ(butter(4, 1000, 100, 200), -1);
    for (double bad : {-1e-300, -1.0}) {
        EXPECT_EQ(attempt([&](auto s) { return zolvex_m_filter_iir_chebyshev1(0, 3, 1000, 10, 0, bad, s); }), -1);
        EXPECT_EQ(attempt([&](auto s) { return zolvex_m_filter_iir_chebyshev2(0, 3, 1000, 10, 0, bad, s); }), -1);
    }
    EXPECT_EQ(attempt([&](auto s) { return zolvex_m_filter_iir_chebyshev1(0, 3, 1000, 10, 0, 0.0, s); }), 0);
    EXPECT_EQ(attempt([&](auto s) { return zolvex_m_filter_iir_chebyshev2(0, 3, 1000, 10, 0, 0.0, s); }), 0);
    for (auto make : {zolvex_m_filter_iir_notch, zolvex_m_filter_iir_peak}) {
        EXPECT_EQ(attempt([&](auto s) { return make(1000, 0.0, 10, s); }), 0);
        EXPECT_EQ(attempt([&](auto s) { return make(1000, 500.0, 10, s); }), 0);
        EXPECT_EQ(attempt([&](auto s) { return make(1000, std::nextafter(500.0, 1e9), 10, s); }), -1);
    }
}

// Every order with the edge values the checks let through: every call
// completes with 0 or -1 (-1 only where a form cannot be had).
TEST(FilterDesign, EdgeValuesAtEveryOrderComplete) {
    for (unsigned order = 0; order <= 255; order += (order < 4 || order > 250) ? 1 : 31)
        for (uint32_t type = 0; type < 4; ++type)
            for (double parameter : {0.0, 1e-12, 3.0, 400.0, kInf, kNaN})
                for (int family = 0; family < 3; ++family) {
                    // Edges next to 0 and to fs / 2.
                    Designed d;
                    design(family, type, order, 1000, family ? 1e-9 : 499.999999, 499.99999999999, parameter, d);
                    ASSERT_EQ(d.status, 0) << order << " " << type << " " << parameter;
                    Zpk zpk;
                    get_zpk(d.state, zpk);
                    EXPECT_EQ(zpk.poles.size(), type < 2 ? order : 2 * order);
                    std::vector<double> f(33), h(66), block(100, 1.0);
                    bool stable;
                    for (int32_t status : {zolvex_m_filter_iir_freqz(d.state, 33, 1000, true, true, f.data(), h.data()),
                                           zolvex_m_filter_iir_freqz_zpk(d.state, 33, 1000, false, false, f.data(), h.data()),
                                           zolvex_m_filter_iir_isstable(d.state, &stable),
                                           zolvex_m_filter_execute_f64(block.data(), block.data(), 100, d.state)})
                        EXPECT_TRUE(status == 0 || status == -1);
                }
}

TEST(FilterDesign, StabilityAndItsNoPoleAsymmetry) {
    Designed butter, order0, notch;
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 8, 1000, 100, 0, &butter.state), 0);
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 0, 1000, 100, 0, &order0.state), 0);
    ASSERT_EQ(zolvex_m_filter_iir_notch(1000, 0.0, 0.0, &notch.state), 0);  // NaN coefficients
    bool stable = false;
    EXPECT_EQ(zolvex_m_filter_iir_isstable(butter.state, &stable), 0);
    EXPECT_TRUE(stable);
    EXPECT_EQ(zolvex_m_filter_iir_isstable(order0.state, &stable), -1);
    EXPECT_EQ(zolvex_m_filter_iir_isstable(notch.state, &stable), -1);  // no ZPK from NaN coefficients
    Designed on_circle;
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 2, 1000, 100, 0, &on_circle.state), 0);
    on_circle.state->zpk = std::make_shared<FilterState::IIR::ZPK>(FilterState::IIR::ZPK{{}, {0.5, -1.0}, 1.0});
    EXPECT_EQ(zolvex_m_filter_iir_isstable(on_circle.state, &stable), 0);
    EXPECT_FALSE(stable);
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
                const double *z, *p, *b, *a;
                const double* const* rows;
                uint32_t n1, n2, n3, n4;
                double k;
                int32_t s = zolvex_m_filter_iir_get_sos(d.state, &rows, &n3) | zolvex_m_filter_iir_get_tf(d.state, &b, &a, &n4) |
                            zolvex_m_filter_iir_get_zpk(d.state, &z, &n1, &p, &n2, &k);
                seen[t] = {s == 0 ? z : nullptr, p, b, rows};
            });
        for (std::thread& t : threads) t.join();
        for (const auto& s : seen) EXPECT_EQ(s, seen[0]);
        EXPECT_NE(seen[0][0], nullptr);
    }
}

TEST(FilterDescriptions, ASectionOfOtherThanSixCoefficientsIsRefused) {
    Designed d;
    ASSERT_EQ(zolvex_m_filter_iir_butterworth(0, 4, 1000, 100, 0, &d.state), 0);
    auto sos = std::make_shared<FilterState::IIR::SOS>();
    sos->sections = {{1, 0, 0, 1, 0, 0}, {1, 0, 0, 1, 0}};
    for (auto& s : sos->sections) sos->section_pointers.push_back(s.data());
    d.state->sos = sos;
    const double* const* rows = nullptr;
    uint32_t count = 77;
    EXPECT_EQ(zolvex_m_filter_iir_get_sos(d.state, &rows, &count), -1);
    EXPECT_EQ(rows, nullptr);
    EXPECT_EQ(count, 77u);
    zolvex_m_filter_state_destroy(nullptr);
}

} // namespace
} // namespace filter_test
