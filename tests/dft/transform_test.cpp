// The built-in and FFTW backends (Debian's FFTW, which this process finds):
// accuracy at every length, the calling contract, the built-in plan's two
// engines and its choice between them, and FFTW plans from many threads.

#include <thread>

#include "dft/dft_checks.h"
#include "dft/eigen/eigen_dft.h"

namespace {

using namespace dft_checks;
using lib::eigen::Engine;

TEST(DftBuiltIn, AccurateF32) { on_backend<float>(Backend::built_in, expect_accurate_everywhere<float>); }
TEST(DftBuiltIn, AccurateF64) { on_backend<double>(Backend::built_in, expect_accurate_everywhere<double>); }
TEST(DftFftw, AccurateF32) { on_backend<float>(Backend::fftw, expect_accurate_everywhere<float>); }
TEST(DftFftw, AccurateF64) { on_backend<double>(Backend::fftw, expect_accurate_everywhere<double>); }

// The built-in plan refuses lengths above 2^28 when it is made. FFTW plans
// on the first execute; it cannot plan n = 0 or lengths beyond int, so such
// plans fail at every execute, without reaching its planner.
TEST(DftBuiltIn, Contract) { expect_contract(Backend::built_in, {{0, 0}, {-2, 0}, false}); }
TEST(DftFftw, Contract) { expect_contract(Backend::fftw, {{0, -1}, {0, -1}, true}); }

// Both engines against the direct sum at every length up to 300, whichever
// the plan would choose.
template <class T>
void expect_engine_accurate(uint32_t n, Engine engine) {
    expect_accurate<T>(n, static_cast<dft::AbstractDFT*>(new lib::eigen::DFTR2C1D<T>(n, engine)),
                       static_cast<dft::AbstractDFT*>(new lib::eigen::IDFTC2R1D<T>(n, engine)));
}
TEST(DftBuiltIn, BothEnginesAccurate) {
    for (Engine engine : {Engine::direct, Engine::chirp_z})
        for (uint32_t n = 2; n <= 300 && !HasFailure(); ++n)
            expect_engine_accurate<float>(n, engine), expect_engine_accurate<double>(n, engine);
}

// Eigen's FFT for smooth lengths, chirp-z for large prime factors: Eigen's
// FFT only runs where each prime factor p costs O(log n) per sample (the
// cost model's limit is 6 log2(n) + 22), so no length takes O(n^2).
TEST(DftBuiltIn, EngineChoice) {
    for (uint32_t n : {2u, 7u, 13u, 1024u, 65536u, 100000u, 1u << 20, 3u * 5 * 7 * 11 * 13 * 1024})
        EXPECT_EQ(lib::eigen::engine_for(n), Engine::direct) << n;
    for (uint32_t n : {17u, 65537u, 100003u, 2u * 65537, 1021u * 1021, 4294967291u})
        EXPECT_EQ(lib::eigen::engine_for(n), Engine::chirp_z) << n;
    for (uint32_t n = 2, largest = 1, rest = n; n < 20000; rest = ++n, largest = 1) {
        for (uint32_t p = 2; p <= rest; ++p)
            for (; rest % p == 0; rest /= p) largest = p;
        ASSERT_TRUE(lib::eigen::engine_for(n) == Engine::chirp_z || largest <= 6 * std::log2(n) + 22) << n;
    }
}

// FFTW plans of distinct lengths made, run and destroyed from several
// threads at once: FFTW's planner and plan destruction are not thread-safe,
// so they must run under the library's planner lock of each precision.
// `tools/run-tests --tsan` runs this under ThreadSanitizer.
TEST(DftThreads, FftwPlansFromManyThreadsAtOnce) {
    on_backend<double>(Backend::fftw, [] {
        zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3F, 1);
        std::vector<std::thread> threads;
        for (uint32_t t = 0; t < 4; ++t)
            threads.emplace_back([t] {
                for (uint32_t n = 100 + 4 * t; n < 740; n += 16)  // distinct in every thread and round
                    expect_accurate<double>(n), expect_accurate<float>(n + 1);
            });
        for (std::thread& thread : threads) thread.join();
    });
}

} // namespace
