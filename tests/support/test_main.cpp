// The library is initialised once for the whole test run, as an application
// would; tests that exercise init/fini themselves keep the count balanced.

#include <gtest/gtest.h>

#include "zolvex_m.h"

namespace {

class LibraryEnvironment : public ::testing::Environment {
public:
    // The accelerator, when a test process finds one, is tested on its own
    // (accelerator_test.cpp): everywhere else the built-in kernels run.
    void SetUp() override {
        zolvex_m_init();
        zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
    }
    void TearDown() override { zolvex_m_fini(); }
};

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new LibraryEnvironment);
    return RUN_ALL_TESTS();
}
