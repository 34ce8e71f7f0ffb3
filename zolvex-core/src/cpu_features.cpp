#include "zolvex/zolvex_core.h"

#include <atomic>

#include "cpu_feature_decode.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace {

using zolvex::core::CpuFeatures;

#if defined(__x86_64__) || defined(__i386__)

using zolvex::core::CpuidWords;

std::uint64_t read_xcr0() noexcept {
    // Raw opcode access keeps the library buildable without -mxsave.
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (static_cast<std::uint64_t>(high) << 32) | low;
}

CpuidWords read_cpuid_words() noexcept {
    CpuidWords words;
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    if (__get_cpuid(1, &eax, &ebx, &ecx, &edx)) {
        words.leaf1_ecx = ecx;
        words.leaf1_edx = edx;
    }
    // __get_cpuid_count checks the maximum leaf, so old processors yield 0.
    if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) {
        words.leaf7_ebx = ebx;
    }
    // XGETBV raises #UD unless the OS has enabled XSAVE.
    if (zolvex::core::bit_set(words.leaf1_ecx, zolvex::core::cpuid_bit::osxsave)) {
        words.xcr0 = read_xcr0();
    }
    return words;
}

CpuFeatures detect_features() noexcept {
    return zolvex::core::decode_cpu_features(read_cpuid_words());
}

#else

CpuFeatures detect_features() noexcept {
    CpuFeatures features;
#if defined(__aarch64__) || defined(__ARM_NEON)
    features.neon = true;
#endif
    return features;
}

#endif

const CpuFeatures& features() noexcept {
    // Function-local static initialisation is thread-safe and runs once.
    static const CpuFeatures detected = detect_features();
    return detected;
}

std::atomic<std::int32_t> g_references{0};

std::uint8_t as_flag(bool present) noexcept {
    return present ? 1 : 0;
}

}  // namespace

extern "C" {

int32_t zolvex_core_init(void) {
    features();
    g_references.fetch_add(1, std::memory_order_relaxed);
    return 0;
}

int32_t zolvex_core_fini(void) {
    // Saturate at zero so an unmatched fini cannot unbalance later pairs.
    std::int32_t current = g_references.load(std::memory_order_relaxed);
    while (current > 0 &&
           !g_references.compare_exchange_weak(current, current - 1, std::memory_order_relaxed)) {
    }
    return 0;
}

uint8_t zolvex_core_cpu_has_sse(void) { return as_flag(features().sse); }
uint8_t zolvex_core_cpu_has_sse2(void) { return as_flag(features().sse2); }
uint8_t zolvex_core_cpu_has_sse3(void) { return as_flag(features().sse3); }
uint8_t zolvex_core_cpu_has_ssse3(void) { return as_flag(features().ssse3); }
uint8_t zolvex_core_cpu_has_sse41(void) { return as_flag(features().sse41); }
uint8_t zolvex_core_cpu_has_sse42(void) { return as_flag(features().sse42); }
uint8_t zolvex_core_cpu_has_avx(void) { return as_flag(features().avx); }
uint8_t zolvex_core_cpu_has_avx2(void) { return as_flag(features().avx2); }
uint8_t zolvex_core_cpu_has_avx512f(void) { return as_flag(features().avx512f); }
uint8_t zolvex_core_cpu_has_avx512cd(void) { return as_flag(features().avx512cd); }
uint8_t zolvex_core_cpu_has_avx512bw(void) { return as_flag(features().avx512bw); }
uint8_t zolvex_core_cpu_has_avx512dq(void) { return as_flag(features().avx512dq); }
uint8_t zolvex_core_cpu_has_fma3(void) { return as_flag(features().fma3); }
uint8_t zolvex_core_cpu_has_neon(void) { return as_flag(features().neon); }

}  // extern "C"
