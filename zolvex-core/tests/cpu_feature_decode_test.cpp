#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "cpu_feature_decode.h"

namespace {

using zolvex::core::CpuFeatures;
using zolvex::core::CpuidWords;
using zolvex::core::decode_cpu_features;

enum class Word { leaf1_ecx, leaf1_edx, leaf7_ebx };
enum class OsState { none, avx, avx512 };

// Bit positions written out independently from the decoder, so a typo in
// either place makes the two disagree.
struct FeatureBit {
    const char* name;
    Word word;
    int bit;
    OsState needs;
    bool CpuFeatures::*member;
};

const std::vector<FeatureBit>& feature_bits() {
    static const std::vector<FeatureBit> table = {
        {"sse", Word::leaf1_edx, 25, OsState::none, &CpuFeatures::sse},
        {"sse2", Word::leaf1_edx, 26, OsState::none, &CpuFeatures::sse2},
        {"sse3", Word::leaf1_ecx, 0, OsState::none, &CpuFeatures::sse3},
        {"ssse3", Word::leaf1_ecx, 9, OsState::none, &CpuFeatures::ssse3},
        {"sse4.1", Word::leaf1_ecx, 19, OsState::none, &CpuFeatures::sse41},
        {"sse4.2", Word::leaf1_ecx, 20, OsState::none, &CpuFeatures::sse42},
        {"avx", Word::leaf1_ecx, 28, OsState::avx, &CpuFeatures::avx},
        {"fma3", Word::leaf1_ecx, 12, OsState::avx, &CpuFeatures::fma3},
        {"avx2", Word::leaf7_ebx, 5, OsState::avx, &CpuFeatures::avx2},
        {"avx512f", Word::leaf7_ebx, 16, OsState::avx512, &CpuFeatures::avx512f},
        {"avx512dq", Word::leaf7_ebx, 17, OsState::avx512, &CpuFeatures::avx512dq},
        {"avx512cd", Word::leaf7_ebx, 28, OsState::avx512, &CpuFeatures::avx512cd},
        {"avx512bw", Word::leaf7_ebx, 30, OsState::avx512, &CpuFeatures::avx512bw},
    };
    return table;
}

constexpr std::uint32_t kOsxsave = 1u << 27;
constexpr std::uint64_t kXcr0Avx = 0x6;      // SSE + AVX state
constexpr std::uint64_t kXcr0Avx512 = 0xE6;  // plus opmask, ZMM_Hi256, Hi16_ZMM

std::uint32_t& word_of(CpuidWords& words, Word word) {
    switch (word) {
        case Word::leaf1_ecx: return words.leaf1_ecx;
        case Word::leaf1_edx: return words.leaf1_edx;
        case Word::leaf7_ebx: return words.leaf7_ebx;
    }
    return words.leaf1_ecx;
}

bool word_bit(const CpuidWords& words, const FeatureBit& feature) {
    CpuidWords copy = words;
    return ((word_of(copy, feature.word) >> feature.bit) & 1u) != 0;
}

bool os_allows(const CpuidWords& words, OsState needs) {
    const bool xsave_enabled = (words.leaf1_ecx & kOsxsave) != 0;
    switch (needs) {
        case OsState::none: return true;
        case OsState::avx: return xsave_enabled && (words.xcr0 & kXcr0Avx) == kXcr0Avx;
        case OsState::avx512: return xsave_enabled && (words.xcr0 & kXcr0Avx512) == kXcr0Avx512;
    }
    return false;
}

CpuFeatures reference_decode(const CpuidWords& words) {
    CpuFeatures expected;
    for (const FeatureBit& feature : feature_bits()) {
        expected.*feature.member = word_bit(words, feature) && os_allows(words, feature.needs);
    }
    return expected;
}

CpuidWords all_feature_bits(std::uint64_t xcr0) {
    CpuidWords words;
    for (const FeatureBit& feature : feature_bits()) {
        word_of(words, feature.word) |= 1u << feature.bit;
    }
    words.leaf1_ecx |= kOsxsave;
    words.xcr0 = xcr0;
    return words;
}

bool any_avx_family(const CpuFeatures& f) {
    return f.avx || f.avx2 || f.fma3 || f.avx512f || f.avx512cd || f.avx512bw || f.avx512dq;
}

bool any_avx512(const CpuFeatures& f) {
    return f.avx512f || f.avx512cd || f.avx512bw || f.avx512dq;
}

bool all_sse_family(const CpuFeatures& f) {
    return f.sse && f.sse2 && f.sse3 && f.ssse3 && f.sse41 && f.sse42;
}

TEST(CpuFeatureDecode, EachCpuidBitEnablesOnlyItsOwnFeature) {
    for (const FeatureBit& feature : feature_bits()) {
        CpuidWords words;
        words.leaf1_ecx = kOsxsave;
        words.xcr0 = kXcr0Avx512;
        word_of(words, feature.word) |= 1u << feature.bit;

        CpuFeatures expected;
        expected.*feature.member = true;
        EXPECT_EQ(decode_cpu_features(words), expected) << feature.name;
    }
}

TEST(CpuFeatureDecode, OsStateGatesWideVectorFeatures) {
    const CpuFeatures full = decode_cpu_features(all_feature_bits(kXcr0Avx512));
    EXPECT_TRUE(all_sse_family(full) && full.avx && full.avx2 && full.fma3 && any_avx512(full));
    EXPECT_FALSE(full.neon);

    // OS saves only SSE state: AVX-encoded instructions would fault.
    const CpuFeatures sse_only = decode_cpu_features(all_feature_bits(0x2));
    EXPECT_TRUE(all_sse_family(sse_only));
    EXPECT_FALSE(any_avx_family(sse_only));

    // AVX state without SSE state is not a usable configuration either.
    EXPECT_FALSE(any_avx_family(decode_cpu_features(all_feature_bits(0x4 | 0xE0))));

    // XCR0 contents must be ignored when the OS has not enabled XSAVE.
    CpuidWords no_osxsave = all_feature_bits(kXcr0Avx512);
    no_osxsave.leaf1_ecx &= ~kOsxsave;
    const CpuFeatures without_xsave = decode_cpu_features(no_osxsave);
    EXPECT_TRUE(all_sse_family(without_xsave));
    EXPECT_FALSE(any_avx_family(without_xsave));
}

TEST(CpuFeatureDecode, EachMissingAvx512StateBitDisablesOnlyAvx512) {
    for (std::uint64_t missing : {1u << 5, 1u << 6, 1u << 7}) {
        const CpuFeatures f = decode_cpu_features(all_feature_bits(kXcr0Avx512 & ~missing));
        EXPECT_TRUE(f.avx && f.avx2 && f.fma3) << "missing xcr0 bit " << missing;
        EXPECT_FALSE(any_avx512(f)) << "missing xcr0 bit " << missing;
    }
}

// Plain random XCR0 values would almost never carry all AVX-512 state bits,
// so most draws are steered onto or just next to the interesting masks.
std::uint64_t random_xcr0(std::mt19937& rng) {
    std::uint64_t xcr0 = std::uniform_int_distribution<std::uint64_t>{}(rng);
    switch (rng() % 3) {
        case 0: return xcr0 | kXcr0Avx512;
        case 1: return (xcr0 | kXcr0Avx512) & ~(1ull << (1 + rng() % 7));
        default: return xcr0;
    }
}

TEST(CpuFeatureDecode, RandomWordsMatchTableDrivenReference) {
    const std::uint32_t seed = std::random_device{}();
    std::mt19937 rng(seed);
    for (int i = 0; i < 20000; ++i) {
        CpuidWords words;
        words.leaf1_ecx = static_cast<std::uint32_t>(rng());
        words.leaf1_edx = static_cast<std::uint32_t>(rng());
        words.leaf7_ebx = static_cast<std::uint32_t>(rng());
        words.xcr0 = random_xcr0(rng);
        ASSERT_EQ(decode_cpu_features(words), reference_decode(words))
            << "seed " << seed << " ecx1=" << words.leaf1_ecx << " edx1=" << words.leaf1_edx
            << " ebx7=" << words.leaf7_ebx << " xcr0=" << words.xcr0;
    }
}

}  // namespace
