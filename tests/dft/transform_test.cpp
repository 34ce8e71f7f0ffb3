// The built-in and FFTW backends (Debian's FFTW, which this process finds):
// accuracy at every length, the calling contract, and the built-in plan's
// two engines and its choice between them.

#include <gtest/gtest.h>

#include "dft/dft_checks.h"
#include "dft/eigen/eigen_dft.h"
#include "dft/fftw3/fftw3_dft.h"
#include "dft/fftw3f/fftw3f_dft.h"
#include "support/regimes.h"

namespace {

using namespace dft_checks;
using lib::eigen::Engine;

template <class T>
void on_backend(Backend backend, void (*check)()) {
    testing_support::OptionsSnapshot restore;
    if (!use<T>(backend)) GTEST_SKIP() << "FFTW not found";
    check();
}

TEST(DftBuiltIn, AccurateF32) { on_backend<float>(Backend::built_in, expect_accurate_everywhere<float>); }
TEST(DftBuiltIn, AccurateF64) { on_backend<double>(Backend::built_in, expect_accurate_everywhere<double>); }
TEST(DftFftw, AccurateF32) { on_backend<float>(Backend::fftw, expect_accurate_everywhere<float>); }
TEST(DftFftw, AccurateF64) { on_backend<double>(Backend::fftw, expect_accurate_everywhere<double>); }

TEST(DftBuiltIn, Contract) {
    on_backend<float>(Backend::built_in, [] { expect_contract<float>({0, 0, false}); });
    on_backend<double>(Backend::built_in, [] {
        expect_contract<double>({0, 0, false});
        double x[2], out[2];
        void* plan = nullptr;
        EXPECT_EQ(zolvex_m_dft_plan_create_r2c_1d_f64(x, 0xFFFFFFFEu, out, 0x80000000u, &plan), -2) << "above 2^28";
        EXPECT_EQ(plan, nullptr);
    });
}

// FFTW plans on the first execute; it cannot plan n = 0 or lengths beyond
// int, and such plans fail at every execute without reaching its planner.
TEST(DftFftw, Contract) {
    on_backend<float>(Backend::fftw, [] { expect_contract<float>({0, -1, true}); });
    on_backend<double>(Backend::fftw, [] {
        expect_contract<double>({0, -1, true});
        alignas(16) double x[8] = {1}, out[10];
        void* plan = nullptr;
        ASSERT_EQ(zolvex_m_dft_plan_create_r2c_1d_f64(x, 8, out, 5, &plan), 0);
        auto* fftw = dynamic_cast<lib::fftw3::DFTR2C1DFFTW*>(static_cast<dft::AbstractDFT*>(plan));
        ASSERT_NE(fftw, nullptr);
        EXPECT_FALSE(fftw->planned());
        EXPECT_EQ(zolvex_m_dft_plan_execute_r2c_1d_f64(plan, x, 8, out, 5), 0);
        EXPECT_TRUE(fftw->planned());
        zolvex_m_dft_plan_destroy(plan);
        ASSERT_EQ(zolvex_m_dft_plan_create_r2c_1d_f64(x, 0xFFFFFFFEu, out, 0x80000000u, &plan), 0);
        EXPECT_EQ(zolvex_m_dft_plan_execute_r2c_1d_f64(plan, x, 0xFFFFFFFEu, out, 0x80000000u), -1);
        zolvex_m_dft_plan_destroy(plan);
    });
}

// Both engines against the direct sum at every length up to 300, whichever
// the plan would choose.
template <class T>
void expect_engines_accurate() {
    for (Engine engine : {Engine::direct, Engine::chirp_z})
        for (uint32_t n = 2; n <= 300 && !::testing::Test::HasFailure(); ++n)
            expect_accurate<T>(n, static_cast<dft::AbstractDFT*>(new lib::eigen::DFTR2C1D<T>(n, engine)),
                               static_cast<dft::AbstractDFT*>(new lib::eigen::IDFTC2R1D<T>(n, engine)));
}
TEST(DftBuiltIn, BothEnginesAccurate) {
    expect_engines_accurate<float>();
    expect_engines_accurate<double>();
}

// Eigen's FFT for smooth lengths; chirp-z for large prime factors, so that
// Eigen's FFT runs only where a prime factor p costs no more than
// O(log n) per sample (the cost model's limit is 6 log2(n) + 22).
TEST(DftBuiltIn, EngineChoice) {
    for (uint32_t n : {2u, 7u, 13u, 1024u, 65536u, 100000u, 1u << 20, 3u * 5 * 7 * 11 * 13 * 1024})
        EXPECT_EQ(lib::eigen::engine_for(n), Engine::direct) << n;
    for (uint32_t n : {17u, 65537u, 100003u, 2u * 65537, 1021u * 1021, 4294967291u})
        EXPECT_EQ(lib::eigen::engine_for(n), Engine::chirp_z) << n;
    for (uint32_t n = 2; n < 20000; ++n) {
        uint32_t largest = 1, rest = n;
        for (uint32_t p = 2; p <= rest; ++p)
            for (; rest % p == 0; rest /= p) largest = p;
        if (lib::eigen::engine_for(n) == Engine::direct) ASSERT_LE(largest, 6 * std::log2(n) + 22) << n;
    }
}

} // namespace
