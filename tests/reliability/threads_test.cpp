// The library from eight threads at once, each on its own objects: index
// searches, histograms, trigger searches, filter executions and transform
// plans give in every thread what they give on one; nested init and fini
// from several threads; the filter accessors on one shared state.
// `tools/run-tests --tsan` runs the tests named *Threads* under
// ThreadSanitizer.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

#include "zolvex_m.h"

namespace {

constexpr int kThreads = 8;

template <class Work>
void on_threads(int count, Work work) {
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t)
        threads.emplace_back([&, t] {
            for (ready.fetch_add(1); ready.load() < count;) {}
            work(t);
        });
    for (std::thread& thread : threads) thread.join();
}

// Everything one thread computes from its signal, in one record.
struct Results {
    uint32_t index = 0, counted = 0, trigger = 0;
    std::vector<uint32_t> bins = std::vector<uint32_t>(64);
    std::vector<double> filtered, spectrum;
};

// The same, but for the last bits of the spectrum: FFTW's codelets depend
// on the buffers' alignment.
bool same(const Results& a, const Results& b) {
    bool close = a.spectrum.size() == b.spectrum.size();
    for (size_t i = 0; close && i < a.spectrum.size(); ++i) close = std::fabs(a.spectrum[i] - b.spectrum[i]) < 1e-9;
    return close && a.index == b.index && a.counted == b.counted && a.trigger == b.trigger && a.bins == b.bins &&
           a.filtered == b.filtered;
}

Results compute(const std::vector<int16_t>& signal, const std::vector<double>& x) {
    Results r;
    const uint32_t n = uint32_t(signal.size());
    zolvex_m_index_gt_i16(signal.data(), n, 900, &r.index);
    r.counted = zolvex_m_histogram_lin_1d_i16u32(signal.data(), n, -1000, 1000, r.bins.data(), 64, nullptr, nullptr);
    void* state = nullptr;
    zolvex_m_trigger_edge_rising_i16(signal.data(), n, -500, 500, &r.trigger, &state);
    zolvex_m_state_free(&state);

    zolvex_m_filter_state* filter = nullptr;
    r.filtered.resize(x.size());
    EXPECT_EQ(zolvex_m_filter_iir_butterworth(ZOLVEX_M_FILTER_LOWPASS, 4, 1000, 100, 0, &filter), 0);
    EXPECT_EQ(zolvex_m_filter_execute_f64(x.data(), r.filtered.data(), uint32_t(x.size()), filter), 0);
    zolvex_m_filter_state_destroy(filter);

    void* plan = nullptr;
    const uint32_t len = uint32_t(x.size()), bins = len / 2 + 1;
    r.spectrum.resize(2 * bins);
    EXPECT_EQ(zolvex_m_dft_plan_create_r2c_1d_f64(x.data(), len, r.spectrum.data(), bins, &plan), 0);
    EXPECT_EQ(zolvex_m_dft_plan_execute_r2c_1d_f64(plan, x.data(), len, r.spectrum.data(), bins), 0);
    zolvex_m_dft_plan_destroy(plan);
    return r;
}

TEST(LibraryThreads, IndependentObjectsFromEightThreads) {
    std::vector<std::vector<int16_t>> signals(kThreads);
    std::vector<std::vector<double>> xs(kThreads);
    std::vector<Results> alone(kThreads), together(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        for (int i = 0; i < 3000 + 97 * t; ++i) {
            signals[t].push_back(int16_t(1000 * std::sin(0.01 * i * (t + 1))));
            xs[t].push_back(std::cos(0.1 * i * (t + 1)) + 0.001 * i);
        }
        alone[t] = compute(signals[t], xs[t]);
    }
    on_threads(kThreads, [&](int t) {
        for (int round = 0; round < 3; ++round) together[t] = compute(signals[t], xs[t]);
    });
    for (int t = 0; t < kThreads; ++t) EXPECT_TRUE(same(together[t], alone[t])) << "thread " << t;
}

// The test run holds one init: the threads' pairs only count, then, with
// that one released, they really start and stop the library in turn.
TEST(LibraryThreads, NestedInitAndFiniFromSeveralThreads) {
    const uint8_t data[] = {3, 1, 4, 1, 5};
    auto cycles = [&](int) {
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(zolvex_m_init(), 0);
            EXPECT_EQ(zolvex_m_init(), 0);
            uint8_t low = 0, high = 0;
            EXPECT_EQ(zolvex_m_minmax_u8(data, 5, &low, &high), 0);
            EXPECT_TRUE(low == 1 && high == 5);
            EXPECT_EQ(zolvex_m_fini(), 0);
            EXPECT_EQ(zolvex_m_fini(), 0);
        }
    };
    on_threads(4, cycles);
    zolvex_m_fini();
    on_threads(4, cycles);
    zolvex_m_init();
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
}

// One state, eight threads: accessors, responses and isstable at once see
// one set of stored forms.
TEST(LibraryThreads, FilterAccessorsOnOneSharedState) {
    zolvex_m_filter_state* state = nullptr;
    ASSERT_EQ(zolvex_m_filter_iir_chebyshev2(ZOLVEX_M_FILTER_BANDPASS, 6, 1000, 100, 200, 40, &state), 0);
    std::vector<std::array<const void*, 4>> seen(kThreads);
    std::vector<std::vector<double>> responses(kThreads, std::vector<double>(2 * 32));
    on_threads(kThreads, [&](int t) {
        const double *z, *p, *b, *a, *const *rows;
        uint32_t n;
        double k;
        bool stable = false;
        std::vector<double> f(32);
        const bool ok = zolvex_m_filter_iir_get_sos(state, &rows, &n) == 0 &&
                        zolvex_m_filter_iir_freqz(state, 32, 1000, false, false, f.data(), responses[t].data()) == 0 &&
                        zolvex_m_filter_iir_get_tf(state, &b, &a, &n) == 0 &&
                        zolvex_m_filter_iir_get_zpk(state, &z, &n, &p, &n, &k) == 0 &&
                        zolvex_m_filter_iir_isstable(state, &stable) == 0 && stable;
        seen[t] = {ok ? z : nullptr, p, b, rows};
    });
    for (int t = 0; t < kThreads; ++t) {
        EXPECT_EQ(seen[t], seen[0]);
        EXPECT_EQ(responses[t], responses[0]);
    }
    EXPECT_NE(seen[0][0], nullptr);
    zolvex_m_filter_state_destroy(state);
}

} // namespace
