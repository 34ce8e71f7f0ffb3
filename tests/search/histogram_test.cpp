// Linear histograms: all fifteen functions on every shape of the
// differential driver against a per-sample reference written from the bin
// rule, in every regime (random, reversed, equal and extreme limits; bin
// counts from 1 to far beyond the range, and none; counters pre-filled near
// wrap-around; missing below/above counters; sentinels after the bins;
// blocks of runs of equal samples); the exactness of the
// multiply-instead-of-divide shortcut over every distance of many ranges,
// for every counting kernel; bin counts beyond the shortcut; a worked
// example.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "search/histogram.h"
#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using namespace testing_support;

template <class T, class C>
struct Api;
#define ZOLVEX_M_TEST_HISTOGRAM_API(T, C, suffix)                                                  \
    template <>                                                                                    \
    struct Api<T, C> {                                                                             \
        static constexpr auto call = zolvex_m_histogram_lin_1d_##suffix;                           \
    };
ZOLVEX_M_TEST_HISTOGRAM_API(int16_t, uint16_t, i16u16)
ZOLVEX_M_TEST_HISTOGRAM_API(int16_t, uint32_t, i16u32)
ZOLVEX_M_TEST_HISTOGRAM_API(int16_t, uint64_t, i16u64)
ZOLVEX_M_TEST_HISTOGRAM_API(uint8_t, uint16_t, u8u16)
ZOLVEX_M_TEST_HISTOGRAM_API(uint8_t, uint32_t, u8u32)
ZOLVEX_M_TEST_HISTOGRAM_API(uint8_t, uint64_t, u8u64)
ZOLVEX_M_TEST_HISTOGRAM_API(uint16_t, uint16_t, u16u16)
ZOLVEX_M_TEST_HISTOGRAM_API(uint16_t, uint32_t, u16u32)
ZOLVEX_M_TEST_HISTOGRAM_API(uint16_t, uint64_t, u16u64)
ZOLVEX_M_TEST_HISTOGRAM_API(float, uint16_t, f32u16)
ZOLVEX_M_TEST_HISTOGRAM_API(float, uint32_t, f32u32)
ZOLVEX_M_TEST_HISTOGRAM_API(float, uint64_t, f32u64)
ZOLVEX_M_TEST_HISTOGRAM_API(double, uint16_t, f64u16)
ZOLVEX_M_TEST_HISTOGRAM_API(double, uint32_t, f64u32)
ZOLVEX_M_TEST_HISTOGRAM_API(double, uint64_t, f64u64)
#undef ZOLVEX_M_TEST_HISTOGRAM_API

// ---------------------------------------------------------------------------
// The reference: the rule read literally, one sample at a time.

// Truncation toward zero as the processor converts: out of the int64 range
// or NaN gives 0x8000000000000000.
int64_t truncate_like_processor(double q) {
    if (q >= -0x1p63 && q < 0x1p63) return static_cast<int64_t>(q);
    return std::numeric_limits<int64_t>::min();
}

template <class T>
double distance(T x, T from) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<double>(static_cast<int32_t>(x) - static_cast<int32_t>(from));
    else
        return static_cast<double>(x) - static_cast<double>(from);
}

// bin_count 0: the samples in range go nowhere (the library's choice).
template <class T, class C>
uint32_t reference(const T* x, uint32_t n, T lo, T hi, C* bins, uint32_t bin_count, C* below, C* above) {
    const double w = distance(hi, lo) / static_cast<double>(static_cast<uint64_t>(bin_count));
    uint32_t counted = 0;
    for (uint32_t i = 0; i < n; ++i) {
        if (x[i] < lo) {
            if (below) ++*below, ++counted;
        } else if (x[i] > hi) {
            if (above) ++*above, ++counted;
        } else if (bin_count != 0) {
            uint32_t k = static_cast<uint32_t>(truncate_like_processor(distance(x[i], lo) / w));
            ++bins[std::min(k, bin_count - 1)];
            ++counted;
        }
    }
    return counted;
}

// ---------------------------------------------------------------------------
// One call's arguments, run through the library and the reference from the
// same starting counters.

constexpr uint32_t kSentinels = 4;
constexpr uint16_t kSentinel = 0xA5A5;

template <class T, class C>
struct Call {
    T lo{}, hi{};
    uint32_t bin_count = 0;
    std::vector<C> bins;  // bin_count counters, then the sentinels
    C below = 0, above = 0;
    bool with_below = true, with_above = true;

    using Outcome = std::tuple<uint32_t, std::vector<C>, C, C>;  // returned, bins, below, above
    template <class F>
    Outcome run(F f, const T* x, uint32_t n) const {
        Outcome o{0, bins, below, above};
        std::get<0>(o) = f(x, n, lo, hi, std::get<1>(o).data(), bin_count, with_below ? &std::get<2>(o) : nullptr,
                           with_above ? &std::get<3>(o) : nullptr);
        return o;
    }
    std::string describe() const {
        return "lo=" + show(lo) + " hi=" + show(hi) + " bins=" + std::to_string(bin_count) +
               " below=" + std::to_string(with_below) + " above=" + std::to_string(with_above);
    }
};

// The library's outcome, which must equal the reference's, sentinels
// included.
template <class T, class C>
typename Call<T, C>::Outcome expect_same(const Call<T, C>& call, const T* x, uint32_t n) {
    auto got = call.run(Api<T, C>::call, x, n);
    std::string where;
    if (!same_results(got, call.run(reference<T, C>, x, n), where))
        ADD_FAILURE() << "length " << n << " " << call.describe() << ": " << where;
    return got;
}

// ---------------------------------------------------------------------------
// Random calls.

template <class T>
T clamp_to(double v) {
    if constexpr (std::is_integral_v<T>)
        v = std::clamp(std::round(v), double(std::numeric_limits<T>::min()), double(std::numeric_limits<T>::max()));
    return static_cast<T>(v);
}

template <class T>
T random_limit(std::mt19937_64& rng) {
    if constexpr (std::is_integral_v<T>) {
        switch (rng() % 6) {
        case 0: return std::numeric_limits<T>::min();
        case 1: return std::numeric_limits<T>::max();
        case 2: return static_cast<T>(rng() % 16);
        default: return static_cast<T>(rng());
        }
    } else {
        constexpr T kMax = std::numeric_limits<T>::max();
        const T specials[] = {kMax, -kMax, std::numeric_limits<T>::infinity(), -std::numeric_limits<T>::infinity(),
                              std::numeric_limits<T>::denorm_min(), T(0), std::numeric_limits<T>::quiet_NaN()};
        const uint64_t k = rng() % 16;
        return k < 7 ? specials[k] : static_cast<T>(std::uniform_real_distribution<double>(-1e3, 1e3)(rng));
    }
}

// Bin counts that matter: 1, a few, as many as the range has values (and one
// either side), twice as many, powers of two, and large ones.
uint32_t random_bin_count(std::mt19937_64& rng, double span) {
    const uint32_t whole = span >= 1 && span < 1e6 ? static_cast<uint32_t>(span) : 1000;
    const uint32_t counts[] = {1, uint32_t(2 + rng() % 7), whole, whole + 1, std::max<uint32_t>(whole, 2) - 1,
                               2 * whole, uint32_t(1) << (rng() % 17), uint32_t(1 + rng() % 200000)};
    const uint64_t k = rng() % 12;
    return k < 8 ? counts[k] : uint32_t(1 + rng() % 300);
}

// Pre-filled counters: random, or just below wrap-around.
template <class C>
C random_counter(std::mt19937_64& rng) {
    const C near_max[] = {std::numeric_limits<C>::max(), C(std::numeric_limits<C>::max() - rng() % 3), 0};
    const uint64_t k = rng() % 4;
    return k < 3 ? near_max[k] : static_cast<C>(rng());
}

// Limits mostly in order, sometimes reversed or equal.
template <class T, class C>
Call<T, C> random_call(std::mt19937_64& rng) {
    Call<T, C> c;
    c.lo = random_limit<T>(rng);
    c.hi = random_limit<T>(rng);
    const uint64_t shape = rng() % 10;
    if (shape == 0) c.hi = c.lo;
    else if (shape > 1 && c.hi < c.lo) std::swap(c.lo, c.hi);
    c.bin_count = rng() % 40 == 0 ? 0 : random_bin_count(rng, distance(c.hi, c.lo));
    c.bins.resize(c.bin_count + kSentinels, static_cast<C>(kSentinel));
    for (uint32_t k = 0; k < c.bin_count; ++k) c.bins[k] = random_counter<C>(rng);
    c.with_below = rng() % 4 != 0;
    c.with_above = rng() % 4 != 0;
    c.below = random_counter<C>(rng);
    c.above = random_counter<C>(rng);
    return c;
}

// Samples around the range (a tenth of its width either side), the limits
// themselves and their neighbours, and some from anywhere; every third block
// in runs of 1 to 40 equal samples, so that runs start and end anywhere in a
// vector step.
template <class T>
void fill_samples(std::mt19937_64& rng, T* x, uint32_t n, T lo, T hi) {
    const double a = static_cast<double>(lo), b = static_cast<double>(hi);
    if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(b - a)) return;  // keeps random_vector's mix
    const double margin = std::abs(b - a) / 10 + 1;
    std::uniform_real_distribution<double> around(std::min(a, b) - margin, std::max(a, b) + margin);
    const bool runs = rng() % 3 == 0;
    for (uint32_t i = 0; i < n;) {
        const T choices[] = {lo, hi, x[i], clamp_to<T>(a - 1), clamp_to<T>(b + 1)};
        const uint64_t k = rng() % 16;
        const T v = k < 5 ? choices[k] : clamp_to<T>(around(rng));
        for (uint64_t run = runs ? 1 + rng() % 40 : 1; run > 0 && i < n; --run) x[i++] = v;
    }
}

template <class P>
class Histogram : public ::testing::Test {};
template <class T, class C>
struct Combo {
    using Sample = T;
    using Counter = C;
};
using Combos = ::testing::Types<Combo<int16_t, uint16_t>, Combo<int16_t, uint32_t>, Combo<int16_t, uint64_t>,
                                Combo<uint8_t, uint16_t>, Combo<uint8_t, uint32_t>, Combo<uint8_t, uint64_t>,
                                Combo<uint16_t, uint16_t>, Combo<uint16_t, uint32_t>, Combo<uint16_t, uint64_t>,
                                Combo<float, uint16_t>, Combo<float, uint32_t>, Combo<float, uint64_t>,
                                Combo<double, uint16_t>, Combo<double, uint32_t>, Combo<double, uint64_t>>;
TYPED_TEST_SUITE(Histogram, Combos);

TYPED_TEST(Histogram, RandomBlocksGiveTheRuleSampleBySampleInEveryRegime) {
    using T = typename TypeParam::Sample;
    using C = typename TypeParam::Counter;
    expect_regimes_agree([](const Shape& s) {
        std::mt19937_64 rng(s.seed * 31 + sizeof(T) * 7 + sizeof(C));
        const Call<T, C> call = random_call<T, C>(rng);
        auto x = shaped_input<T>(s);
        fill_samples(rng, x.data(), s.length, call.lo, call.hi);
        return expect_same(call, x.data(), s.length);
    });
}

// ---------------------------------------------------------------------------
// A worked example: both limits are inside (range_max in the last bin, its
// quotient bin_count clamped); without a below counter those samples are
// not counted; a NaN sample counts in bin 0.
TEST(HistogramExample, SignedSamplesInFiveBins) {
    const int16_t x[] = {-1, 0, 5, 10, 11};
    uint32_t bins[5] = {}, below = 0, above = 0;
    EXPECT_EQ(zolvex_m_histogram_lin_1d_i16u32(x, 5, 0, 10, bins, 5, &below, &above), 5u);
    EXPECT_EQ(below + 10 * above, 11u);
    EXPECT_EQ(std::vector<uint32_t>(bins, bins + 5), (std::vector<uint32_t>{1, 0, 1, 0, 1}));
    EXPECT_EQ(zolvex_m_histogram_lin_1d_i16u32(x, 5, 0, 10, bins, 5, nullptr, &above), 4u);
    const float y[] = {std::numeric_limits<float>::quiet_NaN(), 9.0f};
    uint64_t wide[3] = {};
    EXPECT_EQ(zolvex_m_histogram_lin_1d_f32u64(y, 2, 0.0f, 9.0f, wide, 3, nullptr, nullptr), 2u);
    EXPECT_EQ(std::vector<uint64_t>(wide, wide + 3), (std::vector<uint64_t>{1, 0, 1}));
}

// ---------------------------------------------------------------------------
// The shortcuts: integer multiplication, or multiplication in double with
// the division near whole quotients, give the division's bin for every
// distance d in the range. Ranges and bin counts that make many quotients
// whole numbers, or bring them within a rounding of one.

struct Binning {
    int32_t span;
    uint32_t bin_count;
};

std::vector<Binning> shortcut_binnings() {
    std::vector<Binning> list;
    for (int32_t span : {0, 1, 2, 3, 7, 100, 255, 256, 1000, 4095, 65535})
        for (uint32_t bins = 1; bins <= 64; ++bins) list.push_back({span, bins});
    for (int32_t span : {200, 255, 1000, 4095, 65535, 65534, 40000})
        for (uint32_t bins : {50u, 100u, 200u, 255u, 256u, 500u, 999u, 1000u, 1001u, 1024u, 3000u, 65535u, 65536u, 65537u, 131071u,
                              1000000u, 16777215u, search::kMaxFastBins - 1, search::kMaxFastBins})
            list.push_back({span, bins});
    std::mt19937_64 rng(5);
    for (int i = 0; i < 120; ++i) {
        int32_t span = static_cast<int32_t>(rng() % 65536);
        uint32_t bins = 1 + static_cast<uint32_t>(rng() % (rng() % 2 ? 5000 : search::kMaxFastBins));
        list.push_back({span, bins});
    }
    return list;
}

search::IntegerBinning binning_of(const Binning& b, int32_t low = 0) {
    double width = static_cast<double>(b.span) / static_cast<double>(static_cast<uint64_t>(b.bin_count));
    return search::integer_binning(low, low + b.span, b.bin_count, width);
}

// Exact binnings: the integer formula gives the division's bin for every
// distance. Both kinds of binning occur among the ranges tried, so the
// kernels' other path is exercised below too.
TEST(HistogramShortcut, ExactBinningsGiveTheDivisionsBinForEveryDistance) {
    uint32_t exact = 0, checked = 0;
    for (const Binning& b : shortcut_binnings()) {
        search::IntegerBinning binning = binning_of(b);
        if (!binning.exact) {
            ++checked;
            continue;
        }
        ++exact;
        for (int32_t d = 0; d <= b.span; ++d) {
            uint32_t want = static_cast<uint32_t>(truncate_like_processor(d / binning.width));
            want = std::min(want, b.bin_count - 1);
            ASSERT_EQ(search::exact_bin(static_cast<uint32_t>(d), binning), want)
                << "span " << b.span << " bins " << b.bin_count << " d " << d;
        }
    }
    EXPECT_GT(exact, 10 * checked);
    EXPECT_GT(checked, 5u);
}

// The counting kernels: every sample value of the type once, in one block,
// for a sample of the same ranges, in every regime.
template <class T>
void expect_all_values_follow_rule() {
    std::vector<T> all(65536 + 3);
    for (uint32_t i = 0; i < all.size(); ++i) all[i] = static_cast<T>(i * 40503u);
    const std::vector<Binning> binnings = shortcut_binnings();
    in_each_regime([&](core::Isa) {
        std::mt19937_64 rng(12);
        for (size_t i = 0; i < binnings.size(); i += 5) {
            const Binning& b = binnings[i];
            if (b.bin_count > (1u << 20)) continue;  // keeps the counters small
            Call<T, uint32_t> call;
            call.lo = static_cast<T>(std::numeric_limits<T>::min() + int32_t(rng() % (65536 - b.span)));
            call.hi = static_cast<T>(call.lo + b.span);
            call.bin_count = b.bin_count;
            call.bins.assign(b.bin_count + kSentinels, kSentinel);
            std::fill_n(call.bins.begin(), b.bin_count, 0u);
            expect_same(call, all.data(), uint32_t(all.size()));
            if (::testing::Test::HasFailure()) return;
        }
    });
}

TEST(HistogramShortcut, CountingKernelsGiveTheRulesBinForEveryValue) {
    expect_all_values_follow_rule<int16_t>();
    expect_all_values_follow_rule<uint16_t>();
}

// Bin counts beyond the shortcut's range take the per-sample loop; the
// counters are checked sparsely (the array is mostly untouched zero pages).
TEST(HistogramShortcut, BinCountsBeyondTheShortcutStillFollowTheRule) {
    std::vector<uint16_t> x(4096);
    std::mt19937_64 rng(3);
    for (auto& v : x) v = static_cast<uint16_t>(rng());
    for (uint32_t bin_count : {search::kMaxFastBins, search::kMaxFastBins + 1}) {
        auto* bins = static_cast<uint16_t*>(std::calloc(bin_count, sizeof(uint16_t)));
        ASSERT_NE(bins, nullptr);
        EXPECT_EQ(zolvex_m_histogram_lin_1d_u16u16(x.data(), 4096, 0, 65535, bins, bin_count, nullptr, nullptr), 4096u);
        double w = 65535.0 / bin_count;
        std::map<uint32_t, uint16_t> expected;
        for (uint16_t v : x)
            ++expected[std::min<uint32_t>(static_cast<uint32_t>(truncate_like_processor(v / w)), bin_count - 1)];
        for (auto [k, count] : expected) EXPECT_EQ(bins[k], count) << bin_count << " bin " << k;
        uint64_t total = 0;  // with the bins above: no other bin was touched
        for (uint32_t k = 0; k < bin_count; ++k) total += bins[k];
        EXPECT_EQ(total, 4096u);
        std::free(bins);
    }
}

} // namespace
