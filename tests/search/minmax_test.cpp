// Min/max on every shape of the differential driver, for all ten sample
// types: in every regime each result equals a plain loop of the rule (the
// running minimum becomes x unless x > m, the maximum unless M > x) bit for
// bit, with both result pointers and with each alone. A shape's samples are
// random, random without NaN, the type's extremes at moving places among
// ones, NaN of distinct payloads and signs at a few places (the last sample
// among them), or zeros of both signs among values of one sign.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>

#include "search/minmax.h"
#include "search/sum.h"
#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using namespace testing_support;

template <class T>
T nan_with_payload(uint64_t payload, bool negative) {
    using Bits = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
    T q = std::numeric_limits<T>::quiet_NaN();
    Bits bits;
    std::memcpy(&bits, &q, sizeof bits);
    bits |= static_cast<Bits>(payload) & ((Bits(1) << (std::numeric_limits<T>::digits - 2)) - 1);
    if (negative) bits |= Bits(1) << (sizeof(T) * 8 - 1);
    std::memcpy(&q, &bits, sizeof q);
    return q;
}

template <class T>
void fill_kind(T* x, uint32_t n, uint32_t seed) {
    using L = std::numeric_limits<T>;
    std::mt19937 rng(seed);
    const uint32_t kinds = std::is_floating_point_v<T> ? 5 : 3;
    switch (seed % kinds) {
    case 0: return;  // random (for floating types with NaN, infinities, zeros, subnormals)
    case 1:
        for (uint32_t i = 0; i < n; ++i) x[i] = T(1);
        x[seed * 7 % n] = L::lowest();
        x[seed * 13 % n] = L::max();
        return;
    case 2: break;
    case 3: {
        const uint32_t firsts[] = {0, n - 1, n / 2, n > 1 ? n - 2 : 0, static_cast<uint32_t>(rng() % n)};
        for (uint32_t i = 0; i < n; ++i)
            if (x[i] != x[i]) x[i] = T(-2.5);
        x[firsts[rng() % 5]] = nan_with_payload<T>(1, rng() % 2);
        for (uint32_t k = rng() % 3; k > 0; --k) x[rng() % n] = nan_with_payload<T>(k + 1, rng() % 2);
        return;
    }
    default: {
        const uint32_t zeros = std::array{900u, 20u, 1000u, 1000u, 3u}[rng() % 5], minus = rng() % 1000;
        const T sign = rng() % 2 ? T(1) : T(-1);
        for (uint32_t i = 0; i < n; ++i)
            x[i] = rng() % 1000 >= zeros ? sign * T(1 + rng() % 1000) : rng() % 1000 < minus ? -T(0) : T(0);
        return;
    }
    }
    if constexpr (std::is_floating_point_v<T>)  // random without NaN
        for (uint32_t i = 0; i < n; ++i)
            if (x[i] != x[i]) x[i] = T(-2.5);
}

template <class T>
void check_type(int32_t (*minmax)(const T*, uint32_t, T*, T*)) {
    expect_regimes_agree([&](const Shape& s) {
        auto x = shaped_input<T>(s);
        const T sentinel = T(3);
        std::array<T, 4> got = {sentinel, sentinel, sentinel, sentinel};  // min, max, min alone, max alone
        if (s.length == 0) {
            EXPECT_EQ(minmax(x.data(), 0, &got[0], &got[1]), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
            return got;
        }
        fill_kind(x.data(), s.length, s.seed);
        EXPECT_EQ(minmax(x.data(), s.length, &got[0], &got[1]), 0);
        EXPECT_EQ(minmax(x.data(), s.length, &got[2], nullptr), 0);
        EXPECT_EQ(minmax(x.data(), s.length, nullptr, &got[3]), 0);
        T m = x.data()[0], M = m;
        for (uint32_t i = 1; i < s.length; ++i) {
            const T v = x.data()[i];
            if (!(v > m)) m = v;
            if (!(M > v)) M = v;
        }
        for (int k = 0; k < 4; ++k)
            EXPECT_TRUE(same_bits(got[k], k % 2 ? M : m))
                << "kind " << s.seed % 5 << " result " << k << ": " << show(got[k]) << ", the rule gives "
                << show(k % 2 ? M : m);
        return got;
    });
}

TEST(MinMax, EveryTypeFollowsTheRuleInEveryRegime) {
#define ZOLVEX_M_CHECK_MINMAX(T, suffix) check_type<T>(zolvex_m_minmax_##suffix);
    ZOLVEX_M_CHECK_MINMAX(int8_t, i8) ZOLVEX_M_CHECK_MINMAX(int16_t, i16) ZOLVEX_M_CHECK_MINMAX(int32_t, i32)
    ZOLVEX_M_CHECK_MINMAX(int64_t, i64) ZOLVEX_M_CHECK_MINMAX(uint8_t, u8) ZOLVEX_M_CHECK_MINMAX(uint16_t, u16)
    ZOLVEX_M_CHECK_MINMAX(uint32_t, u32) ZOLVEX_M_CHECK_MINMAX(uint64_t, u64) ZOLVEX_M_CHECK_MINMAX(float, f32)
    ZOLVEX_M_CHECK_MINMAX(double, f64)
#undef ZOLVEX_M_CHECK_MINMAX
}

TEST(MinMax, NothingIsReadWithoutResultsOrSamples) {
    EXPECT_EQ(zolvex_m_minmax_f64(nullptr, 1000, nullptr, nullptr), 0);  // a read would crash
    double min = 7, max = 8;
    EXPECT_EQ(zolvex_m_minmax_f64(nullptr, 0, &min, &max), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    EXPECT_EQ(min + max, 15.0);
}

// The 8- and 16-bit AVX-512 kernels of min/max and sums need BW as well as
// F and CD. On this processor a table that put one at the F+CD level would
// give right results; on one without BW it would fault.
TEST(SearchKernels, ByteAndWordKernelsWaitForAvx512Bw) {
    EXPECT_FALSE(search::minmax_kernels<uint8_t>().avx512);
    EXPECT_FALSE(search::minmax_kernels<int16_t>().avx512);
    EXPECT_FALSE(search::minmax_kernels<uint16_t>().avx512);
    EXPECT_FALSE(search::sum_kernels<uint8_t>().avx512);
    EXPECT_FALSE(search::sum_kernels<int16_t>().avx512);
    EXPECT_FALSE(search::sum_kernels<uint16_t>().avx512);
}

} // namespace
