// Shift right and clip on every shape of the differential driver, out of
// place and in place: in every regime each element equals the rule of the
// header, and every regime gives the generic regime's results. Each shape
// has its own shift (0..20, the element width and far beyond) and bounds
// (the whole type, the range the shifted values reach so that the clamp
// bites on both sides, or low > high).

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using namespace testing_support;

template <class T>
struct Args {
    uint32_t shift;
    T low, high;
};

template <class T>
Args<T> args_of(const Shape& s) {
    static constexpr uint32_t kHugeShifts[] = {31, 32, 33, 63, 64, 255, 256, 0x80000000u, 0xFFFFFFFFu};
    constexpr T kMax = std::numeric_limits<T>::max();
    std::mt19937 rng(s.seed);
    const uint32_t shift = rng() % 4 == 0 ? kHugeShifts[rng() % std::size(kHugeShifts)] : rng() % 21;
    const uint32_t reach = shift < sizeof(T) * 8 ? kMax >> shift : 0;
    const uint32_t span = (rng() % 4 == 0 ? kMax : reach) + 1u;
    const T a = static_cast<T>(rng() % span), b = static_cast<T>(rng() % span);
    switch (rng() % 4) {
    case 0: return {shift, 0, kMax};
    case 1: return {shift, std::max(a, b), std::min(a, b)};
    default: return {shift, std::min(a, b), std::max(a, b)};
    }
}

template <class T>
T rule(T x, const Args<T>& a) {
    const T shifted = a.shift < sizeof(T) * 8 ? static_cast<T>(x >> a.shift) : T(0);
    return a.low > a.high ? a.high : std::clamp(shifted, a.low, a.high);
}

template <class T>
void check_type(int32_t (*shr_clip)(const T*, T*, uint32_t, uint32_t, T, T)) {
    expect_regimes_agree([&](const Shape& s) {
        const Args<T> a = args_of<T>(s);
        auto x = shaped_input<T>(s);
        GuardedOutput<T> out(s);
        EXPECT_EQ(shr_clip(x.data(), out.data(), s.length, a.shift, a.low, a.high), 0);
        auto in_place = x;
        EXPECT_EQ(shr_clip(in_place.data(), in_place.data(), s.length, a.shift, a.low, a.high), 0);
        std::vector<T> got = out.values();
        for (uint32_t i = 0; i < s.length; ++i)
            if (got[i] != rule(x.data()[i], a) || in_place.data()[i] != got[i]) {
                ADD_FAILURE() << "x " << show(x.data()[i]) << " shift " << a.shift << " low " << show(a.low)
                              << " high " << show(a.high) << ": " << show(got[i]) << ", in place "
                              << show(in_place.data()[i]) << ", want " << show(rule(x.data()[i], a));
                break;
            }
        return got;
    });
}

TEST(ShrClip, EveryRegimeFollowsTheRuleOutOfPlaceAndInPlace) {
    check_type<uint8_t>(zolvex_m_shr_clip_u8);
    check_type<uint16_t>(zolvex_m_shr_clip_u16);
}

} // namespace
