// Shifts, bit masks and clipping: every kernel regime against the generic
// regime (the plain loops) through the public functions, out of place and
// in place, with arguments drawn per shape (shifts past the width, zero
// masks, crossed, NaN and signed-zero bounds); then the rules themselves on
// hand-picked values in every regime.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using testing_support::Shape;

// call(x, out) out of place and in place on shape s; both must agree.
template <class T, class Call>
std::vector<T> both_ways(const Shape& s, Call call) {
    auto x = testing_support::shaped_input<T>(s);
    testing_support::GuardedOutput<T> out(s), in_place(s);
    std::copy_n(x.data(), s.length, in_place.data());
    EXPECT_EQ(call(x.data(), out.data(), s.length), 0);
    EXPECT_EQ(call(in_place.data(), in_place.data(), s.length), 0);
    std::vector<T> result = out.values();
    std::string where;
    EXPECT_TRUE(testing_support::same_results(result, in_place.values(), where)) << "in place: " << where;
    return result;
}

// Bounds drawn from the seed: ordered or crossed, and for floating types
// sometimes NaN or a zero of either sign.
template <class T>
std::pair<T, T> bounds_of(uint32_t seed) {
    std::mt19937 rng(seed);
    T a = static_cast<T>(rng()), b = static_cast<T>(rng());
    if constexpr (std::is_floating_point_v<T>) {
        a = T(int(rng() % 1400) - 700), b = T(int(rng() % 1400) - 700);
        const T specials[] = {std::numeric_limits<T>::quiet_NaN(), T(0), -T(0), b};
        (seed % 2 ? a : b) = specials[seed / 2 % 4];
    }
    return seed % 3 == 0 ? std::pair{std::max(a, b), std::min(a, b)} : std::pair{a, b};
}

#define AGREE(T, call)                                                                             \
    testing_support::expect_regimes_agree([](const Shape& s) {                                     \
        const uint32_t shift = s.seed % 7 ? s.seed % 19 : 0xFFFFFFFFu >> s.seed % 32;              \
        const T mask = s.seed % 5 ? static_cast<T>(s.seed * 2654435761u) : T(0);                   \
        const std::pair<T, T> bounds = bounds_of<T>(s.seed);                                       \
        const T low = bounds.first, high = bounds.second;                                          \
        (void)shift, (void)mask, (void)low, (void)high;                                            \
        return both_ways<T>(s, [&](const T* x, T* out, uint32_t n) { return call; });              \
    });

TEST(BitOps, EveryKernelMatchesThePlainLoop) {
    AGREE(uint8_t, zolvex_m_shl_u8(x, out, n, shift))
    AGREE(uint8_t, zolvex_m_shr_u8(x, out, n, shift))
    AGREE(uint16_t, zolvex_m_shl_u16(x, out, n, shift))
    AGREE(uint16_t, zolvex_m_shr_u16(x, out, n, shift))
#define MASKS(T, suffix)                                                                           \
    AGREE(T, zolvex_m_andc_##suffix(x, out, n, mask))                                              \
    AGREE(T, zolvex_m_bit_mask_set_##suffix(x, out, n, mask))                                      \
    AGREE(T, zolvex_m_bit_mask_test_##suffix(x, out, n, mask))
    MASKS(uint8_t, u8) MASKS(int16_t, i16) MASKS(uint16_t, u16) MASKS(uint32_t, u32)
#define CLIP(T, suffix) AGREE(T, zolvex_m_clip_##suffix(x, out, n, low, high))
    CLIP(uint8_t, u8) CLIP(int16_t, i16) CLIP(uint16_t, u16) CLIP(uint32_t, u32) CLIP(float, f32) CLIP(double, f64)
}

// 40 copies of `in` through call(x, out, n) must give 40 copies of `want`.
template <class T, class Call>
void expect_gives(std::vector<T> in, std::vector<T> want, Call call) {
    std::vector<T> x, expected, out(40 * in.size());
    for (int k = 0; k < 40; ++k) x.insert(x.end(), in.begin(), in.end()), expected.insert(expected.end(), want.begin(), want.end());
    ASSERT_EQ(call(x.data(), out.data(), static_cast<uint32_t>(x.size())), 0);
    std::string where;
    EXPECT_TRUE(testing_support::same_results(out, expected, where)) << where;
}

#define CALL(T, expr) [&](const T* x, T* out, uint32_t n) { return expr; }

TEST(BitOps, TheDocumentedRules) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    testing_support::in_each_regime([&](core::Isa) {
        for (uint32_t shift : {16u, 32u, 0xFFFFFFFFu}) {  // the width or more: 0
            expect_gives<uint8_t>({0x81}, {0}, CALL(uint8_t, zolvex_m_shl_u8(x, out, n, shift / 2)));
            expect_gives<uint16_t>({0x8001}, {0}, CALL(uint16_t, zolvex_m_shr_u16(x, out, n, shift)));
        }
        expect_gives<uint8_t>({0x81, 0xFF}, {0x02, 0xFE}, CALL(uint8_t, zolvex_m_shl_u8(x, out, n, 1)));
        expect_gives<uint8_t>({0x81, 0xFF}, {0x01, 0x01}, CALL(uint8_t, zolvex_m_shr_u8(x, out, n, 7)));
        expect_gives<uint16_t>({0x8001, 3}, {0x8000, 0x8000}, CALL(uint16_t, zolvex_m_shl_u16(x, out, n, 15)));
        expect_gives<uint16_t>({0xF00F, 0x0FF0}, {0x000F, 0x00F0}, CALL(uint16_t, zolvex_m_andc_u16(x, out, n, 0x00FF)));
        expect_gives<int16_t>({-1, 4}, {-1, -32764}, CALL(int16_t, zolvex_m_bit_mask_set_i16(x, out, n, INT16_MIN)));
        expect_gives<uint8_t>({0x80, 0x01, 0x41}, {1, 0, 1}, CALL(uint8_t, zolvex_m_bit_mask_test_u8(x, out, n, 0xC0)));
        expect_gives<uint32_t>({0xFFFFFFFF}, {0}, CALL(uint32_t, zolvex_m_bit_mask_test_u32(x, out, n, 0)));
        expect_gives<double>({-5, 0.5, 5, nan}, {-1, 0.5, 1, nan}, CALL(double, zolvex_m_clip_f64(x, out, n, -1, 1)));
        // low > high gives high; a NaN bound bounds nothing; zeros compare equal.
        expect_gives<double>({-5, 0.5, 5}, {-1, -1, -1}, CALL(double, zolvex_m_clip_f64(x, out, n, 1, -1)));
        expect_gives<double>({-5, 0.5, 5}, {-5, 0.5, 1}, CALL(double, zolvex_m_clip_f64(x, out, n, nan, 1)));
        expect_gives<double>({-5, 5}, {-1, 5}, CALL(double, zolvex_m_clip_f64(x, out, n, -1, nan)));
        expect_gives<double>({-0.0, 0.0, -1}, {-0.0, 0.0, 0.0}, CALL(double, zolvex_m_clip_f64(x, out, n, 0.0, 1)));
        expect_gives<int16_t>({-32768, 5}, {-3, -3}, CALL(int16_t, zolvex_m_clip_i16(x, out, n, 4, -3)));
    });
    // A count of 0 touches no pointer.
    EXPECT_EQ(zolvex_m_shl_u8(nullptr, nullptr, 0, 3) + zolvex_m_andc_u32(nullptr, nullptr, 0, 1) +
                  zolvex_m_clip_f32(nullptr, nullptr, 0, 0, 1),
              0);
}

} // namespace
