// Shifts, bit masks and clipping: every kernel regime against the generic
// regime (the plain loops) through the public functions, out of place and
// in place, with random arguments (shifts past the width, bounds crossed or
// NaN); then the rules themselves on hand-picked values in every regime.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using testing_support::GuardedOutput;
using testing_support::Shape;

// Runs call(x, out) out of place and in place on shape s; both must agree.
template <class T, class Call>
std::vector<T> out_of_place_and_in_place(const Shape& s, Call call) {
    auto x = testing_support::shaped_input<T>(s);
    GuardedOutput<T> out(s), in_place(s);
    std::copy_n(x.data(), s.length, in_place.data());
    EXPECT_EQ(call(x.data(), out.data()), 0);
    EXPECT_EQ(call(in_place.data(), in_place.data()), 0);
    std::vector<T> result = out.values(), again = in_place.values();
    std::string where;
    EXPECT_TRUE(testing_support::same_results(result, again, where)) << "in place: " << where;
    return result;
}

// A shift drawn from the shape's seed: mostly below the width, sometimes at
// it or far beyond.
uint32_t shift_of(const Shape& s, uint32_t bits) {
    constexpr uint32_t kFar[] = {31, 32, 255, 0x80000000u, 0xFFFFFFFFu};
    return s.seed % 7 == 0 ? kFar[s.seed / 7 % 5] : s.seed % (bits + 2);
}

#define EXPECT_SHIFTS_AGREE(T, suffix)                                                             \
    testing_support::expect_regimes_agree([](const Shape& s) {                                     \
        const uint32_t shift = shift_of(s, sizeof(T) * 8);                                         \
        return std::make_pair(                                                                     \
            out_of_place_and_in_place<T>(s, [&](const T* x, T* out) { return zolvex_m_shl_##suffix(x, out, s.length, shift); }), \
            out_of_place_and_in_place<T>(s, [&](const T* x, T* out) { return zolvex_m_shr_##suffix(x, out, s.length, shift); })); \
    });

TEST(BitOps, ShiftKernelsMatchThePlainLoops) {
    EXPECT_SHIFTS_AGREE(uint8_t, u8)
    EXPECT_SHIFTS_AGREE(uint16_t, u16)
}

#define EXPECT_MASKS_AGREE(T, suffix)                                                              \
    testing_support::expect_regimes_agree([](const Shape& s) {                                     \
        const T mask = s.seed % 5 == 0 ? T(0) : static_cast<T>(std::mt19937(s.seed)());            \
        return std::make_tuple(                                                                    \
            out_of_place_and_in_place<T>(s, [&](const T* x, T* out) { return zolvex_m_andc_##suffix(x, out, s.length, mask); }), \
            out_of_place_and_in_place<T>(s, [&](const T* x, T* out) { return zolvex_m_bit_mask_set_##suffix(x, out, s.length, mask); }), \
            out_of_place_and_in_place<T>(s, [&](const T* x, T* out) { return zolvex_m_bit_mask_test_##suffix(x, out, s.length, mask); })); \
    });

TEST(BitOps, MaskKernelsMatchThePlainLoops) {
    EXPECT_MASKS_AGREE(uint8_t, u8)
    EXPECT_MASKS_AGREE(int16_t, i16)
    EXPECT_MASKS_AGREE(uint16_t, u16)
    EXPECT_MASKS_AGREE(uint32_t, u32)
}

// Bounds from the shape's seed: ordered, crossed, equal, and for floating
// types NaN or zeros of either sign on either side.
template <class T>
std::pair<T, T> bounds_of(const Shape& s) {
    std::mt19937 rng(s.seed);
    T a, b;
    if constexpr (std::is_floating_point_v<T>) {
        std::uniform_real_distribution<T> value(-700, 700);
        a = value(rng), b = value(rng);
        const T specials[] = {std::numeric_limits<T>::quiet_NaN(), T(0), -T(0)};
        if (s.seed % 4 == 1) a = specials[s.seed / 4 % 3];
        if (s.seed % 4 == 2) b = specials[s.seed / 4 % 3];
    } else {
        a = static_cast<T>(rng()), b = static_cast<T>(rng());
        if (s.seed % 4 == 3) b = a;
    }
    return s.seed % 3 == 0 ? std::pair{std::max(a, b), std::min(a, b)} : std::pair{std::min(a, b), std::max(a, b)};
}

#define EXPECT_CLIP_AGREES(T, suffix)                                                              \
    testing_support::expect_regimes_agree([](const Shape& s) {                                     \
        const auto [low, high] = bounds_of<T>(s);                                                  \
        return out_of_place_and_in_place<T>(s, [&](const T* x, T* out) { return zolvex_m_clip_##suffix(x, out, s.length, low, high); }); \
    });

TEST(BitOps, ClipKernelsMatchThePlainLoop) {
    EXPECT_CLIP_AGREES(uint8_t, u8)
    EXPECT_CLIP_AGREES(int16_t, i16)
    EXPECT_CLIP_AGREES(uint16_t, u16)
    EXPECT_CLIP_AGREES(uint32_t, u32)
    EXPECT_CLIP_AGREES(float, f32)
    EXPECT_CLIP_AGREES(double, f64)
}

// 40 copies of `values`: every kernel's vector body and its tail.
template <class T>
std::vector<T> repeated(std::initializer_list<T> values) {
    std::vector<T> v;
    for (int k = 0; k < 40; ++k) v.insert(v.end(), values);
    return v;
}

template <class T, class Call>
void expect_gives(std::initializer_list<T> in, std::initializer_list<T> want, Call call) {
    const std::vector<T> x = repeated(in), expected = repeated(want);
    std::vector<T> out(x.size());
    ASSERT_EQ(call(x.data(), out.data(), static_cast<uint32_t>(x.size())), 0);
    for (size_t i = 0; i < x.size(); ++i)
        ASSERT_TRUE(testing_support::same_bits(out[i], expected[i]))
            << "element " << i << ": " << testing_support::show(out[i]) << ", want " << testing_support::show(expected[i]);
}

TEST(BitOps, ShiftsOfTheWidthOrMoreGiveZero) {
    testing_support::in_each_regime([](core::Isa) {
        for (uint32_t shift : {8u, 9u, 32u, 0xFFFFFFFFu}) {
            expect_gives<uint8_t>({0x81, 0xFF}, {0, 0}, [&](auto x, auto o, uint32_t n) { return zolvex_m_shl_u8(x, o, n, shift); });
            expect_gives<uint8_t>({0x81, 0xFF}, {0, 0}, [&](auto x, auto o, uint32_t n) { return zolvex_m_shr_u8(x, o, n, shift); });
        }
        expect_gives<uint8_t>({0x81, 0xFF}, {0x02, 0xFE}, [](auto x, auto o, uint32_t n) { return zolvex_m_shl_u8(x, o, n, 1); });
        expect_gives<uint8_t>({0x81, 0xFF}, {0x01, 0x01}, [](auto x, auto o, uint32_t n) { return zolvex_m_shr_u8(x, o, n, 7); });
        expect_gives<uint16_t>({0x8001, 3}, {0x8000, 0x8000}, [](auto x, auto o, uint32_t n) { return zolvex_m_shl_u16(x, o, n, 15); });
        expect_gives<uint16_t>({0x8001, 3}, {0, 0}, [](auto x, auto o, uint32_t n) { return zolvex_m_shl_u16(x, o, n, 16); });
        expect_gives<uint16_t>({0x8001, 0xFFFF}, {1, 1}, [](auto x, auto o, uint32_t n) { return zolvex_m_shr_u16(x, o, n, 15); });
        expect_gives<uint16_t>({0x8001, 0xFFFF}, {0, 0}, [](auto x, auto o, uint32_t n) { return zolvex_m_shr_u16(x, o, n, 17); });
    });
}

TEST(BitOps, MasksKeepSetAndTestBits) {
    testing_support::in_each_regime([](core::Isa) {
        expect_gives<uint16_t>({0xF00F, 0x0FF0}, {0x000F, 0x00F0}, [](auto x, auto o, uint32_t n) { return zolvex_m_andc_u16(x, o, n, 0x00FF); });
        expect_gives<int16_t>({-1, 4}, {-1, -32764}, [](auto x, auto o, uint32_t n) { return zolvex_m_bit_mask_set_i16(x, o, n, INT16_MIN); });
        expect_gives<uint8_t>({0x80, 0x01, 0x41, 0}, {1, 0, 1, 0}, [](auto x, auto o, uint32_t n) { return zolvex_m_bit_mask_test_u8(x, o, n, 0xC0); });
        expect_gives<uint32_t>({0xFFFFFFFF}, {0}, [](auto x, auto o, uint32_t n) { return zolvex_m_bit_mask_test_u32(x, o, n, 0); });
        expect_gives<int16_t>({-32768, 1}, {1, 0}, [](auto x, auto o, uint32_t n) { return zolvex_m_bit_mask_test_i16(x, o, n, INT16_MIN); });
    });
}

TEST(BitOps, ClipRules) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    testing_support::in_each_regime([&](core::Isa) {
        auto clip = [](double low, double high) {
            return [=](const double* x, double* o, uint32_t n) { return zolvex_m_clip_f64(x, o, n, low, high); };
        };
        expect_gives<double>({-5, 0.5, 5, nan}, {-1, 0.5, 1, nan}, clip(-1, 1));
        expect_gives<double>({-5, 0.5, 5}, {-1, -1, -1}, clip(1, -1));          // low > high: high
        expect_gives<double>({-5, 0.5, 5}, {-5, 0.5, 1}, clip(nan, 1));         // a NaN bound bounds nothing
        expect_gives<double>({-5, 0.5, 5}, {-1, 0.5, 5}, clip(-1, nan));
        expect_gives<double>({-5, -0.0, 5}, {-5, -0.0, 5}, clip(nan, nan));
        expect_gives<double>({-0.0, 0.0, -1}, {-0.0, 0.0, 0.0}, clip(0.0, 1));  // zeros compare equal
        expect_gives<uint16_t>({0, 700, 65535}, {10, 700, 1000}, [](auto x, auto o, uint32_t n) { return zolvex_m_clip_u16(x, o, n, 10, 1000); });
        expect_gives<int16_t>({-32768, 5, 32767}, {-3, -3, -3}, [](auto x, auto o, uint32_t n) { return zolvex_m_clip_i16(x, o, n, 4, -3); });
    });
}

TEST(BitOps, CountZeroTouchesNothing) {
    EXPECT_EQ(zolvex_m_shl_u8(nullptr, nullptr, 0, 3), 0);
    EXPECT_EQ(zolvex_m_shr_u16(nullptr, nullptr, 0, 99), 0);
    EXPECT_EQ(zolvex_m_andc_u32(nullptr, nullptr, 0, 1), 0);
    EXPECT_EQ(zolvex_m_bit_mask_set_i16(nullptr, nullptr, 0, 1), 0);
    EXPECT_EQ(zolvex_m_bit_mask_test_u8(nullptr, nullptr, 0, 1), 0);
    EXPECT_EQ(zolvex_m_clip_f32(nullptr, nullptr, 0, 0.0f, 1.0f), 0);
}

} // namespace
