#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

#include "zolvex/zolvex_core.h"

namespace {

using FeatureQuery = uint8_t (*)();

struct LiveFeature {
    const char* name;
    FeatureQuery query;
    bool (*compiler_view)();
};

// __builtin_cpu_supports only accepts string literals, hence one lambda each.
#define ZOLVEX_LIVE_FEATURE(query, gcc_name) \
    LiveFeature { gcc_name, query, [] { return __builtin_cpu_supports(gcc_name) != 0; } }

std::vector<LiveFeature> live_features() {
    return {
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_sse, "sse"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_sse2, "sse2"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_sse3, "sse3"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_ssse3, "ssse3"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_sse41, "sse4.1"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_sse42, "sse4.2"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_avx, "avx"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_avx2, "avx2"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_fma3, "fma"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_avx512f, "avx512f"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_avx512cd, "avx512cd"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_avx512bw, "avx512bw"),
        ZOLVEX_LIVE_FEATURE(zolvex_core_cpu_has_avx512dq, "avx512dq"),
    };
}

#undef ZOLVEX_LIVE_FEATURE

std::vector<uint8_t> snapshot() {
    std::vector<uint8_t> answers;
    for (const LiveFeature& feature : live_features()) {
        answers.push_back(feature.query());
    }
    answers.push_back(zolvex_core_cpu_has_neon());
    return answers;
}

TEST(CpuFeaturesLive, MatchesCompilerRuntimeDetectionWithoutInit) {
    __builtin_cpu_init();
    for (const LiveFeature& feature : live_features()) {
        const uint8_t answer = feature.query();
        EXPECT_EQ(answer, feature.compiler_view() ? 1 : 0) << feature.name;
        RecordProperty(feature.name, answer);
    }
    EXPECT_EQ(zolvex_core_cpu_has_neon(), 0) << "x86 never has NEON";
}

TEST(CpuFeaturesLive, InitFiniNestAndUnmatchedFiniIsHarmless) {
    const std::vector<uint8_t> before = snapshot();
    for (int cycle = 0; cycle < 3; ++cycle) {
        for (int depth = 0; depth < 4; ++depth) {
            ASSERT_EQ(zolvex_core_init(), 0);
        }
        EXPECT_EQ(snapshot(), before);
        for (int depth = 0; depth < 4; ++depth) {
            ASSERT_EQ(zolvex_core_fini(), 0);
        }
        EXPECT_EQ(zolvex_core_fini(), 0);
        EXPECT_EQ(snapshot(), before);
    }
}

TEST(CpuFeaturesLive, ConcurrentQueriesAgree) {
    const std::vector<uint8_t> expected = snapshot();
    std::vector<std::vector<uint8_t>> seen(8);
    std::vector<std::thread> threads;
    for (auto& answers : seen) {
        threads.emplace_back([&answers] {
            for (int i = 0; i < 200; ++i) {
                zolvex_core_init();
                answers = snapshot();
                zolvex_core_fini();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (const auto& answers : seen) {
        EXPECT_EQ(answers, expected);
    }
}

}  // namespace
