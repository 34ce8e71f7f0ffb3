// The accelerator backend (Intel IPP's real DFT) in the process whose loader
// finds the real runtime: the accuracy and contract every backend meets.
// IPP refuses n = 0 and lengths beyond int when the plan is made; it comes
// before FFTW. Elsewhere the option stays off and these tests skip.

#include "dft/dft_checks.h"

using namespace dft_checks;

TEST(AcceleratedDft, AccurateF32) { on_backend<float>(Backend::ipp, expect_accurate_everywhere<float>); }
TEST(AcceleratedDft, AccurateF64) { on_backend<double>(Backend::ipp, expect_accurate_everywhere<double>); }
TEST(AcceleratedDft, Contract) { expect_contract(Backend::ipp, {{-1, 0}, {-1, 0}, false}); }
