// The optional libraries as the process finds them. The same tests run in
// several processes (see tests/CMakeLists.txt), each told through
// ZOLVEX_M_TEST_ACCELERATOR what its loader search path holds:
//   present  the real accelerator (Intel IPP from the project's .venv)
//   absent   no accelerator at all
//   partial  stand-ins found first: an accelerator and a double-precision
//            FFTW that each lack one name
//   broken   the real accelerator's dispatcher without its per-processor
//            libraries (loading it would end the process)

#include <gtest/gtest.h>
#include <link.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/init.h"
#include "core/libraries.h"
#include "support/random_data.h"
#include "support/regimes.h"
#include "zolvex_m.h"

namespace {

std::string scenario() {
    const char* value = std::getenv("ZOLVEX_M_TEST_ACCELERATOR");
    return value ? value : "absent";
}

bool accelerator_expected() { return scenario() == "present"; }
bool fftw3_expected() { return scenario() != "partial"; }

bool mapped(const char* name_part) {
    struct Search {
        const char* part;
        bool found;
    } search{name_part, false};
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* data) {
            auto* s = static_cast<Search*>(data);
            if (info->dlpi_name && std::strstr(info->dlpi_name, s->part)) s->found = true;
            return 0;
        },
        &search);
    return search.found;
}

uint32_t get(int32_t id) {
    uint32_t value = 7;
    EXPECT_EQ(zolvex_m_getopt(id, &value), 0);
    return value;
}

// The run holds one init (test_main.cpp); the lifecycle tests release it.
class AcceleratorLifecycle : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(core::init_count(), 1u); }
    void TearDown() override {
        while (core::init_count() > 1) zolvex_m_fini();
        if (core::init_count() == 0) zolvex_m_init();
    }
};

TEST_F(AcceleratorLifecycle, InitLoadsOnlyAWholeAccelerator) {
    SCOPED_TRACE(scenario());
    bool expected = accelerator_expected();
    zolvex_m_fini();  // a fresh outermost init, whatever earlier tests switched
    zolvex_m_init();
    EXPECT_EQ(get(ZOLVEX_M_OPT_IPP), expected ? 1u : 0u);
    EXPECT_EQ(lib::ipp::base_loaded(), expected);
    EXPECT_EQ(lib::ipp::table_loaded(), expected);
    EXPECT_EQ(mapped("libipps"), expected) << "an incomplete or broken accelerator stays unloaded";
}

TEST_F(AcceleratorLifecycle, IppOptionInEveryState) {
    bool expected = accelerator_expected();
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0), 0);
    EXPECT_EQ(get(ZOLVEX_M_OPT_IPP), 0u);
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), expected ? 0 : -1);
    EXPECT_EQ(get(ZOLVEX_M_OPT_IPP), expected ? 1u : 0u);

    // Nested: an inner fini unloads nothing; the last one unloads, and the
    // option cannot come back until an init loads the library again.
    zolvex_m_init();
    zolvex_m_fini();
    EXPECT_EQ(lib::ipp::table_loaded(), expected);
    zolvex_m_fini();
    EXPECT_FALSE(lib::ipp::base_loaded());
    EXPECT_FALSE(lib::ipp::table_loaded());
    EXPECT_FALSE(mapped("libipps"));
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), -1);
    EXPECT_EQ(get(ZOLVEX_M_OPT_IPP), 0u);
    zolvex_m_init();
    EXPECT_EQ(get(ZOLVEX_M_OPT_IPP), expected ? 1u : 0u);
}

TEST_F(AcceleratorLifecycle, FftwLoadsOnRequestAndStaysUntilTheLastFini) {
    for (uint32_t id : {ZOLVEX_M_OPT_FFTW3, ZOLVEX_M_OPT_FFTW3F}) {
        bool is_double = id == ZOLVEX_M_OPT_FFTW3;
        auto loaded = is_double ? lib::fftw3::loaded : lib::fftw3f::loaded;
        auto function = is_double ? lib::fftw3::function : lib::fftw3f::function;
        bool expected = !is_double || fftw3_expected();
        SCOPED_TRACE(is_double ? "fftw3" : "fftw3f");

        EXPECT_EQ(get(static_cast<int32_t>(id)), 0u) << "not loaded by init";
        EXPECT_FALSE(loaded());
        EXPECT_EQ(zolvex_m_setopt(id, 1), expected ? 0 : -1);
        EXPECT_EQ(get(static_cast<int32_t>(id)), expected ? 1u : 0u);
        EXPECT_EQ(loaded(), expected);
        if (!expected) continue;

        // The record is complete: its first function answers as FFTW does.
        using AlignmentOf = int (*)(const void*);
        alignas(64) static double buffer[8];
        auto alignment_of = reinterpret_cast<AlignmentOf>(function(lib::FftwFn::alignment_of));
        EXPECT_EQ(alignment_of(buffer), 0);
        EXPECT_NE(alignment_of(reinterpret_cast<const char*>(buffer) + 4), 0);

        // Switched off it stays loaded; switched on again it reuses the
        // same module.
        EXPECT_EQ(zolvex_m_setopt(id, 0), 0);
        EXPECT_EQ(get(static_cast<int32_t>(id)), 0u);
        EXPECT_TRUE(loaded());
        EXPECT_EQ(zolvex_m_setopt(id, 1), 0);
        EXPECT_EQ(reinterpret_cast<AlignmentOf>(function(lib::FftwFn::alignment_of)), alignment_of);

        zolvex_m_init();
        zolvex_m_fini();
        EXPECT_TRUE(loaded()) << "an inner fini unloads nothing";
        zolvex_m_fini();
        EXPECT_FALSE(loaded());
        zolvex_m_init();
        EXPECT_EQ(get(static_cast<int32_t>(id)), 0u) << "init does not load FFTW";
    }
}

// mulc and divc with the accelerator on against the built-in kernels.
template <class T>
void compare_with_built_in(int32_t (*function)(const T*, T*, uint32_t, T), const char* name, T c,
                           uint32_t max_ulps) {
    SCOPED_TRACE(name);
    testing_support::OptionsSnapshot restore;
    for (uint32_t n : {1u, 3u, 17u, 256u, 1000u, 65537u}) {
        auto x = testing_support::random_vector<T>(n, n);
        std::vector<T> built_in(n), accelerated(n + 4, T(-3)), in_place = x;
        ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0), 0);
        ASSERT_EQ(function(x.data(), built_in.data(), n, c), 0);
        ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), 0);
        ASSERT_EQ(function(x.data(), accelerated.data(), n, c), 0);
        ASSERT_EQ(function(in_place.data(), in_place.data(), n, c), 0);
        EXPECT_EQ(accelerated[n], T(-3)) << "wrote past n";
        for (uint32_t i = 0; i < n; ++i) {
            for (T got : {accelerated[i], in_place[i]}) {
                if (std::isnan(built_in[i])) {
                    ASSERT_TRUE(std::isnan(got)) << i;
                } else if (std::isinf(built_in[i]) || built_in[i] == 0) {
                    ASSERT_EQ(got, built_in[i]) << i;
                } else {
                    T ulp = std::nextafter(std::fabs(built_in[i]), std::numeric_limits<T>::infinity()) -
                            std::fabs(built_in[i]);
                    ASSERT_LE(std::fabs(got - built_in[i]), max_ulps * ulp)
                        << "n=" << n << " i=" << i << " x=" << x[i] << " got " << got << " want " << built_in[i];
                }
            }
        }
    }
}

TEST(AcceleratedArithmetic, MatchesTheBuiltInKernels) {
    if (!accelerator_expected()) GTEST_SKIP() << "no accelerator in this process";
    // Multiplication is one IEEE operation either way: identical results.
    // The accelerator divides by multiplying with the reciprocal, which can
    // be one unit in the last place off the correctly rounded quotient.
    compare_with_built_in<float>(zolvex_m_mulc_f32, "mulc_f32", 1.7f, 0);
    compare_with_built_in<double>(zolvex_m_mulc_f64, "mulc_f64", -3.3, 0);
    compare_with_built_in<float>(zolvex_m_divc_f32, "divc_f32", 3.0f, 1);
    compare_with_built_in<double>(zolvex_m_divc_f64, "divc_f64", -7.0, 1);
}

TEST(AcceleratedArithmetic, TheAcceleratorJudgesTheLength) {
    if (!accelerator_expected()) GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
    ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), 0);
    float x[4] = {1, 2, 3, 4}, out[4] = {9, 9, 9, 9};
    EXPECT_EQ(zolvex_m_mulc_f32(x, out, 0, 2.0f), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(zolvex_m_divc_f32(x, out, 0, 2.0f), ZOLVEX_M_STATUS_FAILED);
    // A count above INT32_MAX reaches the accelerator as a negative length.
    EXPECT_EQ(zolvex_m_mulc_f32(x, out, 0x80000000u, 2.0f), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(out[0], 9.0f);
    ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0), 0);
    EXPECT_EQ(zolvex_m_mulc_f32(x, out, 0, 2.0f), 0);
}

TEST(AcceleratedArithmetic, EveryFunctionFallsBackWithoutTheAccelerator) {
    if (accelerator_expected()) GTEST_SKIP() << "accelerator present in this process";
    EXPECT_EQ(get(ZOLVEX_M_OPT_IPP), 0u);
    double x[3] = {1, -2, 4}, out[3];
    EXPECT_EQ(zolvex_m_mulc_f64(x, out, 3, 0.5), 0);
    EXPECT_EQ(out[1], -1.0);
    EXPECT_EQ(zolvex_m_divc_f64(x, out, 3, 2.0), 0);
    EXPECT_EQ(out[2], 2.0);
    EXPECT_EQ(zolvex_m_divc_f64(x, out, 0, 2.0), 0);
}

} // namespace
