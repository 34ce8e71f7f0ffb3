// Conversions on every shape of the differential driver: in every regime
// each element equals the C++ cast (NaN payloads aside), on random inputs
// with the type's extremes, the limits of a float's significand and rounding
// ties spread through them, and every regime gives the generic regime's
// results bit for bit.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "elementwise/convert_kernels.h"
#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using namespace testing_support;

// The ends of the range, the limits of float's significand and rounding
// ties of f32 and f64, for integer and floating inputs alike.
template <class T>
std::vector<T> extreme_values() {
    using L = std::numeric_limits<T>;
    std::vector<T> v = {L::min(), L::max(), L::lowest(), T(0), T(1)};
    if constexpr (std::is_floating_point_v<T>) {
        v.insert(v.end(), {-T(0), L::infinity(), -L::infinity(), L::quiet_NaN(), L::denorm_min(), -L::denorm_min(),
                           T(1) + L::epsilon() / 2});
        if constexpr (std::is_same_v<T, double>)
            v.insert(v.end(), {1e300, -1e300, 0x1.ffffffp127, 0x1.fffffefffffffp127, 0x1p-150, 0x1.8p-150,
                               1 + 0x1p-24, 1 + 0x1.8p-23});
    } else {
        if constexpr (std::is_signed_v<T>) v.push_back(T(-1));
        // In 64 bits so that no shift overflows a narrow type; p >> 24 and
        // p >> 53 are half a step of f32 and f64 near p.
        using Wide = std::conditional_t<std::is_signed_v<T>, int64_t, uint64_t>;
        for (int bits : {24, 31, 53, 63})
            if (bits < L::digits) {
                const Wide p = Wide{1} << bits;
                for (Wide w : {p - 1, p + 1, p + 3, p + (p >> 24), p + (p >> 24) + 1, p + (p >> 53), p + (p >> 53) + 1})
                    v.push_back(static_cast<T>(w));
                if constexpr (std::is_signed_v<T>)
                    for (Wide w : {-p - 1, -p - 3}) v.push_back(static_cast<T>(w));
            }
    }
    return v;
}

template <class In, class Out>
void check_conversion(int32_t (*convert)(const In*, Out*, uint32_t)) {
    const std::vector<In> extremes = extreme_values<In>();
    expect_regimes_agree([&](const Shape& s) {
        auto x = shaped_input<In>(s);
        for (size_t k = 0; s.length > 0 && k < extremes.size(); ++k) x.data()[(k * 37 + s.seed) % s.length] = extremes[k];
        GuardedOutput<Out> out(s);
        EXPECT_EQ(convert(x.data(), out.data(), s.length), 0);
        std::vector<Out> got = out.values();
        for (uint32_t i = 0; i < s.length; ++i) {
            const Out want = static_cast<Out>(x.data()[i]);
            if (!same_bits(got[i], want) && !(std::isnan(got[i]) && std::isnan(want))) {
                ADD_FAILURE() << "input " << show(x.data()[i]) << ": " << show(got[i]) << ", the cast gives " << show(want);
                break;
            }
        }
        return got;
    });
}

TEST(Convert, EveryConversionEqualsTheCastInEveryRegime) {
#define ZOLVEX_M_CHECK_CONVERSION(is, In, os, Out) \
    {                                               \
        SCOPED_TRACE(#is #os);                      \
        check_conversion<In, Out>(zolvex_m_convert_##is##os); \
    }
    ZOLVEX_M_CONVERSIONS(ZOLVEX_M_CHECK_CONVERSION)
#undef ZOLVEX_M_CHECK_CONVERSION
}

// A worked example of the rounding: near 2^63 an f32 step is 2^40; an exact
// tie goes to the even neighbour and one unit more rounds up (a conversion
// that halves the value first gets the second one wrong).
TEST(Convert, WideIntegersRoundToNearestEven) {
    const uint64_t x[] = {0x8000008000000000u, 0x8000008000000001u, 0x8000018000000000u, UINT64_MAX};
    float out[4];
    ASSERT_EQ(zolvex_m_convert_u64f32(x, out, 4), 0);
    EXPECT_EQ(out[0], 0x1p63f);
    EXPECT_EQ(out[1], 0x1.000002p63f);
    EXPECT_EQ(out[2], 0x1.000004p63f);
    EXPECT_EQ(out[3], 0x1p64f);
}

} // namespace
