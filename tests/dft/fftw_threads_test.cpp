// FFTW plans of distinct lengths made, run and destroyed from several
// threads at once: FFTW's planner and plan destruction are not thread-safe,
// so they must run under the library's planner lock of each precision. The
// ZOLVEX_M_TSAN build runs this under ThreadSanitizer (see the README).

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "dft/dft_checks.h"
#include "support/regimes.h"

namespace {

using namespace dft_checks;

// One round: a plan pair planned at its first execute, a one-shot
// transform, the round trip checked, the plans destroyed.
template <class T>
bool round_trip(uint32_t n) {
    std::vector<double> signal = random_signal(n, n);
    std::vector<T> x(signal.begin(), signal.end()), spectrum(2 * (n / 2 + 1)), once(spectrum.size()), back(n);
    void *forward = nullptr, *inverse = nullptr;
    bool ok = Api<T>::create(x.data(), n, spectrum.data(), n / 2 + 1, &forward) == 0 &&
              Api<T>::icreate(spectrum.data(), n / 2 + 1, back.data(), n, &inverse) == 0 &&
              Api<T>::execute(forward, x.data(), n, spectrum.data(), n / 2 + 1) == 0 &&
              Api<T>::once(x.data(), n, once.data(), n / 2 + 1) == 0 && once == spectrum &&
              Api<T>::iexecute(inverse, spectrum.data(), n / 2 + 1, back.data(), n) == 0;
    for (uint32_t j = 0; j < n; ++j) ok = ok && std::fabs(back[j] - T(n) * x[j]) < 1e-3 * n;
    zolvex_m_dft_plan_destroy(forward);
    zolvex_m_idft_plan_destroy(inverse);
    return ok;
}

TEST(DftThreads, FftwPlansFromManyThreadsAtOnce) {
    testing_support::OptionsSnapshot restore;
    if (!use<double>(Backend::fftw) || zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3F, 1) != 0) GTEST_SKIP() << "FFTW not found";
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < 4; ++t)
        threads.emplace_back([t, &failures] {
            for (uint32_t round = 0; round < 40; ++round) {
                uint32_t n = 100 + 4 * (t + 4 * round);  // distinct in every thread and round
                failures += !round_trip<double>(n) + !round_trip<float>(n + 1);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures.load(), 0);
}

} // namespace
