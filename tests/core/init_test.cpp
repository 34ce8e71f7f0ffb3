#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "core/init.h"
#include "support/regimes.h"
#include "zolvex_m.h"
#include "zolvex/zolvex_tp.h"

namespace {

// The test run holds one init throughout (see test_main.cpp); these tests
// first release it so they can watch the outermost init and fini.
class InitCycle : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(core::init_count(), 1u);
        zolvex_m_fini();
    }
    void TearDown() override {
        while (core::init_count() != 0) zolvex_m_fini();
        zolvex_m_init();
    }

    static uint16_t pool_threads() {
        zolvex_tp_status status{};
        zolvex_tp_get_status(&status, sizeof status);
        return status.threads;
    }
};

TEST_F(InitCycle, NestedCallsOnlyCount) {
    EXPECT_EQ(pool_threads(), 0) << "the last fini stops the thread pool";
    EXPECT_EQ(zolvex_m_init(), 0);
    uint16_t threads = pool_threads();
    EXPECT_GE(threads, 1);
    EXPECT_EQ(core::pool_thread_count(), threads);
    EXPECT_EQ(zolvex_m_init(), 0);
    EXPECT_EQ(core::init_count(), 2u);
    EXPECT_EQ(zolvex_m_fini(), 0);
    EXPECT_EQ(pool_threads(), threads) << "an inner fini stops nothing";
    EXPECT_EQ(zolvex_m_fini(), 0);
    EXPECT_EQ(pool_threads(), 0);
    EXPECT_EQ(core::init_count(), 0u);
}

TEST_F(InitCycle, FlagsSurviveTheLastFini) {
    testing_support::OptionsSnapshot restore;
    zolvex_m_init();
    ASSERT_TRUE(testing_support::only_options({ZOLVEX_M_OPT_SSE2, ZOLVEX_M_OPT_AVX}));
    zolvex_m_fini();
    uint32_t avx = 0, sse42 = 1;
    EXPECT_EQ(zolvex_m_getopt(ZOLVEX_M_OPT_AVX, &avx), 0);
    EXPECT_EQ(zolvex_m_getopt(ZOLVEX_M_OPT_SSE42, &sse42), 0);
    EXPECT_EQ(avx, 1u);
    EXPECT_EQ(sse42, 0u);
}

TEST_F(InitCycle, FiniWithoutInitWrapsTheCount) {
    EXPECT_EQ(zolvex_m_fini(), 0);
    EXPECT_EQ(core::init_count(), 0xFFFFFFFFu);
    // The next init only brings the count back to zero: nothing starts.
    EXPECT_EQ(zolvex_m_init(), 0);
    EXPECT_EQ(core::init_count(), 0u);
    EXPECT_EQ(pool_threads(), 0);
}

TEST_F(InitCycle, ConcurrentInitAndFiniStayBalanced) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 50; ++i) {
                zolvex_m_init();
                zolvex_m_fini();
            }
        });
    for (auto& t : threads) t.join();
    EXPECT_EQ(core::init_count(), 0u);
    EXPECT_EQ(pool_threads(), 0);
}

} // namespace
