#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "elementwise/dispatch_tables.h"
#include "support/regimes.h"
#include "zolvex/zolvex_core.h"
#include "zolvex_m.h"

namespace {

using testing_support::OptionsSnapshot;

uint32_t get(int32_t id) {
    uint32_t value = 7;
    EXPECT_EQ(zolvex_m_getopt(id, &value), 0) << id;
    return value;
}

TEST(Options, ListHasSeventeenRowsInItsOwnOrder) {
    struct Row {
        int32_t id;
        const char* text;
    };
    const std::vector<Row> expected = {
        {1, "Use SSE"},        {2, "Use SSE2"},      {3, "Use SSE3"},       {4, "Use SSSE3"},
        {5, "Use SSE4.1"},     {6, "Use SSE4.2"},    {7, "Use AVX"},        {8, "Use AVX2"},
        {15, "Use AVX-512F"},  {18, "Use AVX-512CD"}, {16, "Use AVX-512BW"}, {17, "Use AVX-512DQ"},
        {14, "Use FMA3"},      {9, "Use NEON"},      {10, "Use IPP"},       {11, "Use FFTW3"},
        {12, "Use FFTW3F"},
    };
    const OptionEntry* row = zolvex_m_getopt_list();
    ASSERT_EQ(row, zolvex_m_getopt_list());
    size_t i = 0;
    for (; row->id != 0; ++row, ++i) {
        ASSERT_LT(i, expected.size());
        EXPECT_EQ(row->id, expected[i].id);
        EXPECT_STREQ(row->description, expected[i].text);
    }
    EXPECT_EQ(i, expected.size());
    EXPECT_EQ(row->description, nullptr);
}

TEST(Options, UnknownIdsAreRejectedWithoutSideEffects) {
    OptionsSnapshot restore;
    for (int32_t id : {0, 13, 19, -1, 1000, INT32_MIN}) {
        uint32_t value = 0xABCD;
        EXPECT_EQ(zolvex_m_getopt(id, &value), -1) << id;
        EXPECT_EQ(value, 0xABCDu);
    }
    for (uint32_t id : {0u, 13u, 19u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zolvex_m_setopt(id, 1), -1) << id;
        EXPECT_EQ(zolvex_m_setopt(id, 0), -1) << id;
    }
}

TEST(Options, InitReadsEveryProcessorFeature) {
    struct Feature {
        int32_t id;
        uint8_t (*has)();
    };
    const Feature features[] = {
        {ZOLVEX_M_OPT_SSE, zolvex_core_cpu_has_sse},         {ZOLVEX_M_OPT_SSE2, zolvex_core_cpu_has_sse2},
        {ZOLVEX_M_OPT_SSE3, zolvex_core_cpu_has_sse3},       {ZOLVEX_M_OPT_SSSE3, zolvex_core_cpu_has_ssse3},
        {ZOLVEX_M_OPT_SSE41, zolvex_core_cpu_has_sse41},     {ZOLVEX_M_OPT_SSE42, zolvex_core_cpu_has_sse42},
        {ZOLVEX_M_OPT_AVX, zolvex_core_cpu_has_avx},         {ZOLVEX_M_OPT_AVX2, zolvex_core_cpu_has_avx2},
        {ZOLVEX_M_OPT_NEON, zolvex_core_cpu_has_neon},       {ZOLVEX_M_OPT_FMA3, zolvex_core_cpu_has_fma3},
        {ZOLVEX_M_OPT_AVX512F, zolvex_core_cpu_has_avx512f}, {ZOLVEX_M_OPT_AVX512BW, zolvex_core_cpu_has_avx512bw},
        {ZOLVEX_M_OPT_AVX512DQ, zolvex_core_cpu_has_avx512dq}, {ZOLVEX_M_OPT_AVX512CD, zolvex_core_cpu_has_avx512cd},
    };
    OptionsSnapshot restore;
    // A fresh init cycle re-reads the processor after options were changed.
    zolvex_m_fini();
    testing_support::only_options({});
    zolvex_m_init();
    for (const Feature& f : features) EXPECT_EQ(get(f.id), f.has() ? 1u : 0u) << f.id;
}

TEST(Options, ProcessorOptionsFollowTheProcessor) {
    OptionsSnapshot restore;
    // x86 has no NEON: asking for it fails and leaves it off.
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_NEON, 1), -1);
    EXPECT_EQ(get(ZOLVEX_M_OPT_NEON), 0u);
    for (uint32_t id : {ZOLVEX_M_OPT_AVX512F, ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_SSE42}) {
        bool has = id == ZOLVEX_M_OPT_AVX512F ? zolvex_core_cpu_has_avx512f()
                 : id == ZOLVEX_M_OPT_AVX2    ? zolvex_core_cpu_has_avx2()
                                              : zolvex_core_cpu_has_sse42();
        EXPECT_EQ(zolvex_m_setopt(id, 0), 0);
        EXPECT_EQ(get(id), 0u);
        EXPECT_EQ(zolvex_m_setopt(id, 1), has ? 0 : -1);
        EXPECT_EQ(get(id), has ? 1u : 0u);
    }
}

TEST(Options, AcceleratorOptionsStayOffWithoutTheirLibraries) {
    OptionsSnapshot restore;
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0), 0);
    for (uint32_t id : {ZOLVEX_M_OPT_IPP, ZOLVEX_M_OPT_FFTW3, ZOLVEX_M_OPT_FFTW3F}) {
        EXPECT_EQ(zolvex_m_setopt(id, 0), 0) << id;
        EXPECT_EQ(get(static_cast<int32_t>(id)), 0u);
    }
}

// The element-wise family's process-wide tables are re-chosen after every
// successful setopt (the differential tests would not notice tables that
// kept one kernel in every regime).
TEST(Dispatch, TablesFollowEverySuccessfulSetopt) {
    OptionsSnapshot restore;
    ASSERT_TRUE(testing_support::apply_regime(core::Isa::avx512));
    EXPECT_EQ(elementwise::g_convert.u16f64.get(), &elementwise::avx512::convert_u16f64);
    EXPECT_EQ(elementwise::g_shr_clip.u8.get(), &elementwise::avx2::shr_clip_u8);
    EXPECT_EQ(elementwise::g_abs.f64.get(), &elementwise::avx::abs_f64);
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_AVX512CD, 0), 0);
    EXPECT_EQ(elementwise::g_convert.u16f64.get(), &elementwise::avx2::convert_u16f64);
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_FMA3, 0), 0);
    EXPECT_EQ(elementwise::g_shr_clip.u8.get(), &elementwise::sse42::shr_clip_u8);
    EXPECT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_AVX, 0), 0);
    EXPECT_EQ(elementwise::g_abs.f64.get(), &elementwise::generic::abs_f64);
}

} // namespace
