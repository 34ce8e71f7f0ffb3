// Pure decoding of processor feature words, kept free of any CPUID access so
// it can be exercised with synthetic register values.
#pragma once

#include <cstdint>

namespace zolvex::core {

// A word the caller could not read (leaf beyond the maximum, XGETBV not
// permitted) must be passed as 0, which reads as "nothing supported".
struct CpuidWords {
    std::uint32_t leaf1_ecx = 0;
    std::uint32_t leaf1_edx = 0;
    std::uint32_t leaf7_ebx = 0;
    std::uint64_t xcr0 = 0;
};

struct CpuFeatures {
    bool sse = false;
    bool sse2 = false;
    bool sse3 = false;
    bool ssse3 = false;
    bool sse41 = false;
    bool sse42 = false;
    bool avx = false;
    bool avx2 = false;
    bool avx512f = false;
    bool avx512cd = false;
    bool avx512bw = false;
    bool avx512dq = false;
    bool fma3 = false;
    bool neon = false;

    bool operator==(const CpuFeatures&) const = default;
};

namespace cpuid_bit {
// CPUID.1:EDX
inline constexpr int sse = 25;
inline constexpr int sse2 = 26;
// CPUID.1:ECX
inline constexpr int sse3 = 0;
inline constexpr int ssse3 = 9;
inline constexpr int fma = 12;
inline constexpr int sse41 = 19;
inline constexpr int sse42 = 20;
inline constexpr int osxsave = 27;
inline constexpr int avx = 28;
// CPUID.(7,0):EBX
inline constexpr int avx2 = 5;
inline constexpr int avx512f = 16;
inline constexpr int avx512dq = 17;
inline constexpr int avx512cd = 28;
inline constexpr int avx512bw = 30;
}  // namespace cpuid_bit

namespace xcr0_bit {
inline constexpr std::uint64_t sse_state = 1u << 1;
inline constexpr std::uint64_t avx_state = 1u << 2;
inline constexpr std::uint64_t opmask_state = 1u << 5;
inline constexpr std::uint64_t zmm_hi256_state = 1u << 6;
inline constexpr std::uint64_t hi16_zmm_state = 1u << 7;
}  // namespace xcr0_bit

constexpr bool bit_set(std::uint64_t word, int bit) noexcept {
    return ((word >> bit) & 1u) != 0;
}

constexpr bool xcr0_has_all(const CpuidWords& w, std::uint64_t mask) noexcept {
    // Without OSXSAVE the OS has not enabled XSAVE, so any XCR0 value is
    // meaningless and wider register state must be assumed unsaved.
    return bit_set(w.leaf1_ecx, cpuid_bit::osxsave) && (w.xcr0 & mask) == mask;
}

constexpr bool os_saves_avx_state(const CpuidWords& w) noexcept {
    return xcr0_has_all(w, xcr0_bit::sse_state | xcr0_bit::avx_state);
}

constexpr bool os_saves_avx512_state(const CpuidWords& w) noexcept {
    return xcr0_has_all(w, xcr0_bit::sse_state | xcr0_bit::avx_state | xcr0_bit::opmask_state |
                               xcr0_bit::zmm_hi256_state | xcr0_bit::hi16_zmm_state);
}

constexpr CpuFeatures decode_cpu_features(const CpuidWords& w) noexcept {
    using namespace cpuid_bit;
    const bool avx_os = os_saves_avx_state(w);
    const bool avx512_os = os_saves_avx512_state(w);
    CpuFeatures f;
    f.sse = bit_set(w.leaf1_edx, sse);
    f.sse2 = bit_set(w.leaf1_edx, sse2);
    f.sse3 = bit_set(w.leaf1_ecx, sse3);
    f.ssse3 = bit_set(w.leaf1_ecx, ssse3);
    f.sse41 = bit_set(w.leaf1_ecx, sse41);
    f.sse42 = bit_set(w.leaf1_ecx, sse42);
    f.avx = avx_os && bit_set(w.leaf1_ecx, avx);
    f.fma3 = avx_os && bit_set(w.leaf1_ecx, fma);
    f.avx2 = avx_os && bit_set(w.leaf7_ebx, avx2);
    f.avx512f = avx512_os && bit_set(w.leaf7_ebx, avx512f);
    f.avx512dq = avx512_os && bit_set(w.leaf7_ebx, avx512dq);
    f.avx512cd = avx512_os && bit_set(w.leaf7_ebx, avx512cd);
    f.avx512bw = avx512_os && bit_set(w.leaf7_ebx, avx512bw);
    return f;
}

}  // namespace zolvex::core
