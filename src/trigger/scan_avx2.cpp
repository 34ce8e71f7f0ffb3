// AVX2 level scans: every condition for u8 samples, "at or above" for u16
// samples. Same index as the generic scans in every case.

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "trigger/scan.h"

namespace trigger::avx2 {

namespace {

using V = __m256i;

struct U8 {
    using T = uint8_t;
    static constexpr uint32_t kLanes = 32;
    static constexpr uint32_t kShift = 0;
    static constexpr uint32_t kAllBytes = 0xFFFFFFFFu;
    static V load(const T* p) { return _mm256_loadu_si256(reinterpret_cast<const V*>(p)); }
    static V set1(T v) { return _mm256_set1_epi8(static_cast<char>(v)); }
    static V max(V a, V b) { return _mm256_max_epu8(a, b); }
    static V min(V a, V b) { return _mm256_min_epu8(a, b); }
    static V subs(V a, V b) { return _mm256_subs_epu8(a, b); }
    static V sub(V a, V b) { return _mm256_sub_epi8(a, b); }
    static uint32_t zero_bytes(V a) {
        return static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(a, _mm256_setzero_si256())));
    }
};

struct U16 {
    using T = uint16_t;
    static constexpr uint32_t kLanes = 16;
    static constexpr uint32_t kShift = 1;
    static constexpr uint32_t kAllBytes = 0xFFFFFFFFu;
    static V load(const T* p) { return _mm256_loadu_si256(reinterpret_cast<const V*>(p)); }
    static V set1(T v) { return _mm256_set1_epi16(static_cast<short>(v)); }
    static V max(V a, V b) { return _mm256_max_epu16(a, b); }
    static V min(V a, V b) { return _mm256_min_epu16(a, b); }
    static V subs(V a, V b) { return _mm256_subs_epu16(a, b); }
    static V sub(V a, V b) { return _mm256_sub_epi16(a, b); }
    static uint32_t zero_bytes(V a) {
        return static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi16(a, _mm256_setzero_si256())));
    }
};

} // namespace

#include "trigger/scan_loops.inc"

uint32_t scan_ge_u8(const uint8_t* x, uint32_t start, uint32_t length, uint8_t level) noexcept {
    return scan<U8>(x, start, length, Ge<U8>(level));
}
uint32_t scan_le_u8(const uint8_t* x, uint32_t start, uint32_t length, uint8_t level) noexcept {
    return scan<U8>(x, start, length, Le<U8>(level));
}
uint32_t scan_gt_u8(const uint8_t* x, uint32_t start, uint32_t length, uint8_t level) noexcept {
    return scan<U8>(x, start, length, Gt<U8>(level));
}
uint32_t scan_lt_u8(const uint8_t* x, uint32_t start, uint32_t length, uint8_t level) noexcept {
    return scan<U8>(x, start, length, Lt<U8>(level));
}
uint32_t scan_outside_u8(const uint8_t* x, uint32_t start, uint32_t length, uint8_t high, uint8_t low) noexcept {
    return scan_outside<U8>(x, start, length, high, low);
}
uint32_t scan_inside_u8(const uint8_t* x, uint32_t start, uint32_t length, uint8_t high, uint8_t low) noexcept {
    return scan_inside<U8>(x, start, length, high, low);
}

uint32_t scan_ge_u16(const uint16_t* x, uint32_t start, uint32_t length, uint16_t level) noexcept {
    return scan<U16>(x, start, length, Ge<U16>(level));
}

} // namespace trigger::avx2
