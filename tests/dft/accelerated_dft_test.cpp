// The accelerator backend (Intel IPP's real DFT) in the process whose loader
// finds the real runtime: the accuracy and contract every backend meets.
// IPP rejects n = 0 when the plan is made. Elsewhere the option stays off
// and these tests skip.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "dft/dft_checks.h"
#include "support/regimes.h"

namespace {

using namespace dft_checks;

bool accelerator_present() {
    const char* scenario = std::getenv("ZOLVEX_M_TEST_ACCELERATOR");
    return scenario && std::string(scenario) == "present";
}

template <class T>
void on_accelerator(void (*check)()) {
    if (!accelerator_present()) GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
    ASSERT_TRUE(use<T>(Backend::ipp));
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3, 1);  // the accelerator still comes first
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3F, 1);
    check();
}

TEST(AcceleratedDft, AccurateF32) { on_accelerator<float>(expect_accurate_everywhere<float>); }
TEST(AcceleratedDft, AccurateF64) { on_accelerator<double>(expect_accurate_everywhere<double>); }
TEST(AcceleratedDft, Contract) {
    on_accelerator<float>([] { expect_contract<float>({-1, 0, false}); });
    on_accelerator<double>([] { expect_contract<double>({-1, 0, false}); });
}

} // namespace
