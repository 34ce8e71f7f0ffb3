#pragma once
// The fixed de-interleaving functions by channel count, for tests and
// benchmarks that walk every count: d holds n destinations.

#include <cstdint>

#include "zolvex_m.h"

namespace testing_support {

#define ZOLVEX_M_SPLIT_CASES(suffix)                                                               \
    switch (n) {                                                                                   \
    case 2: return zolvex_m_deinterleave2_##suffix(source, total, d[0], d[1]);                     \
    case 3: return zolvex_m_deinterleave3_##suffix(source, total, d[0], d[1], d[2]);               \
    case 4: return zolvex_m_deinterleave4_##suffix(source, total, d[0], d[1], d[2], d[3]);         \
    case 5: return zolvex_m_deinterleave5_##suffix(source, total, d[0], d[1], d[2], d[3], d[4]);   \
    case 6: return zolvex_m_deinterleave6_##suffix(source, total, d[0], d[1], d[2], d[3], d[4], d[5]); \
    }                                                                                              \
    return -100;
inline int32_t split(unsigned n, const uint8_t* source, int32_t total, uint8_t* const* d) { ZOLVEX_M_SPLIT_CASES(u8) }
inline int32_t split(unsigned n, const uint16_t* source, int32_t total, uint16_t* const* d) { ZOLVEX_M_SPLIT_CASES(u16) }
#undef ZOLVEX_M_SPLIT_CASES

} // namespace testing_support
