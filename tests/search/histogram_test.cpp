// Linear histograms: all fifteen functions against a per-sample reference
// written from the bin rule, under every kernel regime, on random blocks
// (random, reversed, equal and extreme limits; bin counts from 1 to far
// beyond the range; lengths across the fast-path thresholds; unaligned
// starts; counters pre-filled near wrap-around; missing below/above
// counters; sentinels after the bins) and on runs of equal samples. Then the exactness of the
// multiply-instead-of-divide shortcut over every distance of many ranges, for
// every vector kernel; the worked behaviours; and the
// choice for a histogram without bins.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "search/histogram.h"
#include "support/random_data.h"
#include "support/regimes.h"
#include "zolvex_m.h"

namespace {

using testing_support::all_regimes;
using testing_support::apply_regime;
using testing_support::OptionsSnapshot;

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

template <class T, class C>
uint32_t histogram(const T* x, uint32_t n, T lo, T hi, C* bins, uint32_t bin_count, C* below, C* above) {
    return Api<T, C>::call(x, n, lo, hi, bins, bin_count, below, above);
}

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
// One call with all its buffers, run through the library and the reference
// from the same starting counters.

constexpr uint32_t kSentinels = 4;
constexpr uint64_t kSentinel = 0xA5A5A5A5A5A5A5A5ull;

template <class T, class C>
struct Call {
    std::vector<T> storage;  // the block starts at `offset`
    uint32_t offset = 0;
    uint32_t length = 0;
    T lo{}, hi{};
    uint32_t bin_count = 0;
    std::vector<C> bins;  // bin_count counters, then the sentinels
    C below = 0, above = 0;
    bool with_below = true, with_above = true;

    const T* data() const { return storage.data() + offset; }

    struct Outcome {
        uint32_t returned;
        std::vector<C> bins;
        C below, above;
    };

    template <class F>
    Outcome run(F f) const {
        Outcome o{0, bins, below, above};
        o.returned = f(data(), length, lo, hi, o.bins.data(), bin_count, with_below ? &o.below : nullptr,
                       with_above ? &o.above : nullptr);
        return o;
    }
    Outcome library() const { return run(Api<T, C>::call); }
    Outcome expected() const { return run(reference<T, C>); }

    std::string describe() const {
        return "length=" + std::to_string(length) + " offset=" + std::to_string(offset) +
               " lo=" + std::to_string(lo) + " hi=" + std::to_string(hi) + " bins=" + std::to_string(bin_count) +
               " below=" + std::to_string(with_below) + " above=" + std::to_string(with_above);
    }
};

template <class T, class C>
void expect_same(const Call<T, C>& call, const std::string& where) {
    auto got = call.library();
    auto want = call.expected();
    ASSERT_EQ(got.returned, want.returned) << where << " " << call.describe();
    ASSERT_EQ(got.below, want.below) << where << " " << call.describe();
    ASSERT_EQ(got.above, want.above) << where << " " << call.describe();
    for (uint32_t k = 0; k < call.bin_count; ++k)
        ASSERT_EQ(got.bins[k], want.bins[k]) << where << " bin " << k << " " << call.describe();
    for (uint32_t s = 0; s < kSentinels; ++s)
        ASSERT_EQ(got.bins[call.bin_count + s], static_cast<C>(kSentinel)) << where << " sentinel " << s;
}

// ---------------------------------------------------------------------------
// Random calls.

template <class T>
T clamp_to(double v) {
    if constexpr (std::is_integral_v<T>) {
        v = std::clamp(std::round(v), double(std::numeric_limits<T>::min()), double(std::numeric_limits<T>::max()));
    }
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
        switch (rng() % 16) {
        case 0: return kMax;
        case 1: return -kMax;
        case 2: return std::numeric_limits<T>::infinity();
        case 3: return -std::numeric_limits<T>::infinity();
        case 4: return std::numeric_limits<T>::denorm_min();
        case 5: return T(0);
        case 6: return std::numeric_limits<T>::quiet_NaN();
        default: return static_cast<T>(std::uniform_real_distribution<double>(-1e3, 1e3)(rng));
        }
    }
}

// Mostly ordered limits; sometimes reversed or equal.
template <class T>
void random_range(std::mt19937_64& rng, T& lo, T& hi) {
    lo = random_limit<T>(rng);
    hi = random_limit<T>(rng);
    uint32_t shape = rng() % 10;
    if (shape == 0)
        hi = lo;
    else if (shape > 1 && hi < lo)
        std::swap(lo, hi);
}

// Bin counts that matter: 1, a few, as many as the range has values (and one
// either side), twice as many, powers of two, and large ones.
uint32_t random_bin_count(std::mt19937_64& rng, double span) {
    uint32_t whole = span >= 1 && span < 1e6 ? static_cast<uint32_t>(span) : 1000;
    switch (rng() % 12) {
    case 0: return 1;
    case 1: return 2 + rng() % 7;
    case 2: return whole;
    case 3: return whole + 1;
    case 4: return std::max<uint32_t>(whole, 2) - 1;
    case 5: return 2 * whole;
    case 6: return uint32_t(1) << (rng() % 17);
    case 7: return 1 + static_cast<uint32_t>(rng() % 200000);
    default: return 1 + static_cast<uint32_t>(rng() % 300);
    }
}

uint32_t random_length(std::mt19937_64& rng) {
    static const uint32_t kLong[] = {15, 16, 17, 31, 255, 256, 257, 1023, 1024, 1025, 2049, 4099, 65537};
    if (rng() % 3 == 0) return kLong[rng() % std::size(kLong)];
    return static_cast<uint32_t>(rng() % 100);
}

// Samples around the range (a tenth of its width either side), the limits
// themselves and their neighbours, and some from anywhere.
template <class T>
std::vector<T> random_samples(std::mt19937_64& rng, uint32_t n, T lo, T hi) {
    std::vector<T> anywhere = testing_support::random_vector<T>(n, static_cast<uint32_t>(rng()));
    double a = static_cast<double>(lo), b = static_cast<double>(hi);
    if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(b - a)) return anywhere;
    double margin = std::abs(b - a) / 10 + 1;
    std::uniform_real_distribution<double> around(std::min(a, b) - margin, std::max(a, b) + margin);
    std::vector<T> v(n);
    for (uint32_t i = 0; i < n; ++i) {
        switch (rng() % 16) {
        case 0: v[i] = lo; break;
        case 1: v[i] = hi; break;
        case 2: v[i] = anywhere[i]; break;
        case 3: v[i] = clamp_to<T>(a - 1); break;
        case 4: v[i] = clamp_to<T>(b + 1); break;
        default: v[i] = clamp_to<T>(around(rng)); break;
        }
    }
    return v;
}

// Pre-filled counters: random, or just below wrap-around.
template <class C>
C random_counter(std::mt19937_64& rng) {
    constexpr C kMax = std::numeric_limits<C>::max();
    switch (rng() % 4) {
    case 0: return kMax;
    case 1: return kMax - static_cast<C>(rng() % 3);
    case 2: return 0;
    default: return static_cast<C>(rng());
    }
}

template <class T, class C>
Call<T, C> random_call(std::mt19937_64& rng) {
    Call<T, C> c;
    random_range(rng, c.lo, c.hi);
    c.bin_count = rng() % 40 == 0 ? 0 : random_bin_count(rng, distance(c.hi, c.lo));
    c.length = random_length(rng);
    c.offset = static_cast<uint32_t>(rng() % 4);
    std::vector<T> samples = random_samples(rng, c.length, c.lo, c.hi);
    c.storage.assign(c.offset, T{});
    c.storage.insert(c.storage.end(), samples.begin(), samples.end());
    c.bins.resize(c.bin_count + kSentinels, static_cast<C>(kSentinel));
    for (uint32_t k = 0; k < c.bin_count; ++k) c.bins[k] = random_counter<C>(rng);
    c.with_below = rng() % 4 != 0;
    c.with_above = rng() % 4 != 0;
    c.below = random_counter<C>(rng);
    c.above = random_counter<C>(rng);
    return c;
}

template <class T, class C>
struct Combo {
    using Sample = T;
    using Counter = C;
};

template <class P>
class Histogram : public ::testing::Test {};
using Combos = ::testing::Types<Combo<int16_t, uint16_t>, Combo<int16_t, uint32_t>, Combo<int16_t, uint64_t>,
                                Combo<uint8_t, uint16_t>, Combo<uint8_t, uint32_t>, Combo<uint8_t, uint64_t>,
                                Combo<uint16_t, uint16_t>, Combo<uint16_t, uint32_t>, Combo<uint16_t, uint64_t>,
                                Combo<float, uint16_t>, Combo<float, uint32_t>, Combo<float, uint64_t>,
                                Combo<double, uint16_t>, Combo<double, uint32_t>, Combo<double, uint64_t>>;
TYPED_TEST_SUITE(Histogram, Combos);

// `count` calls from make_call(rng) through the library and the reference,
// under every regime, each regime from the same seed.
template <class T, class C, class MakeCall>
void expect_same_in_every_regime(uint64_t seed, int count, MakeCall make_call) {
    OptionsSnapshot snapshot;
    for (const auto& regime : all_regimes()) {
        if (!apply_regime(regime)) continue;
        std::mt19937_64 rng(seed);
        for (int i = 0; i < count; ++i) {
            Call<T, C> call = make_call(rng);
            expect_same(call, regime.name + " call " + std::to_string(i));
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

TYPED_TEST(Histogram, RandomBlocksGiveTheRuleSampleBySampleInEveryRegime) {
    using T = typename TypeParam::Sample;
    using C = typename TypeParam::Counter;
    expect_same_in_every_regime<T, C>(20240611 + sizeof(T) * 7 + sizeof(C), 150, random_call<T, C>);
}

// Flat and slowly changing signals: runs of equal samples (in range, or out
// of it) of every length from 1 to 40, so runs start and end anywhere in a
// vector step and cross from one step to the next; counters near wrap.
TYPED_TEST(Histogram, RunsOfEqualSamplesCountLikeSingleOnes) {
    using T = typename TypeParam::Sample;
    using C = typename TypeParam::Counter;
    expect_same_in_every_regime<T, C>(99, 20, [](std::mt19937_64& rng) {
        Call<T, C> call = random_call<T, C>(rng);
        std::vector<T> levels = random_samples(rng, 64, call.lo, call.hi);
        call.storage.assign(call.offset, T{});
        while (call.storage.size() < 3000) call.storage.insert(call.storage.end(), 1 + rng() % 40, levels[rng() % 64]);
        call.length = static_cast<uint32_t>(call.storage.size()) - call.offset;
        return call;
    });
}

// Blocks added one after the other give the counts of the whole.
TYPED_TEST(Histogram, ConsecutiveBlocksAccumulate) {
    using T = typename TypeParam::Sample;
    using C = typename TypeParam::Counter;
    std::mt19937_64 rng(77);
    for (int i = 0; i < 20; ++i) {
        Call<T, C> whole = random_call<T, C>(rng);
        whole.length = 3000 + static_cast<uint32_t>(rng() % 100);
        whole.offset = 0;
        whole.storage = random_samples(rng, whole.length, whole.lo, whole.hi);
        auto want = whole.expected();
        auto pieces = whole.run([&](const T* x, uint32_t n, T lo, T hi, C* bins, uint32_t count, C* below, C* above) {
            uint32_t cut1 = n / 3, cut2 = n / 3 + 700;
            return histogram(x, cut1, lo, hi, bins, count, below, above) +
                   histogram(x + cut1, cut2 - cut1, lo, hi, bins, count, below, above) +
                   histogram(x + cut2, n - cut2, lo, hi, bins, count, below, above);
        });
        EXPECT_EQ(pieces.returned, want.returned) << whole.describe();
        EXPECT_EQ(pieces.bins, want.bins) << whole.describe();
        EXPECT_EQ(pieces.below, want.below);
        EXPECT_EQ(pieces.above, want.above);
    }
}

// Both limits are inside: range_min in the first bin, range_max in the last
// (its quotient is bin_count, clamped), on the per-sample path and on the
// long-block paths.
TYPED_TEST(Histogram, LimitsLandInTheFirstAndLastBins) {
    using T = typename TypeParam::Sample;
    using C = typename TypeParam::Counter;
    for (uint32_t n : {2u, 4000u}) {
        std::vector<T> x(n);
        for (uint32_t i = 0; i < n; ++i) x[i] = i % 2 ? T(100) : T(20);
        std::vector<C> bins(5, 0);
        C below = 0, above = 0;
        EXPECT_EQ(histogram(x.data(), n, T(20), T(100), bins.data(), 4, &below, &above), n);
        EXPECT_EQ(bins, (std::vector<C>{C(n / 2), 0, 0, C(n / 2), 0})) << n;
        EXPECT_EQ(below + above, 0u);
    }
}

// Counts that pass the counter's maximum wrap around, on every path: 65539
// samples in one bin and 65537 below, into u16 counters at 65535.
TYPED_TEST(Histogram, CountersWrapAround) {
    using T = typename TypeParam::Sample;
    using C = typename TypeParam::Counter;
    if constexpr (sizeof(C) == 2) {
        std::vector<T> x(65539, T(50));
        x.insert(x.end(), 65537, T(3));
        std::vector<C> bins = {65535, 65535};
        C below = 65535;
        EXPECT_EQ(histogram(x.data(), static_cast<uint32_t>(x.size()), T(10), T(90), bins.data(), 2, &below,
                            static_cast<C*>(nullptr)),
                  x.size());
        EXPECT_EQ(bins, (std::vector<C>{65535, 2}));
        EXPECT_EQ(below, 0);
    }
}

// A histogram without bins: nothing is written to the bins, the samples in
// range are not counted, the others are.
TYPED_TEST(Histogram, NoBinsCountsOnlyOutsideSamples) {
    using T = typename TypeParam::Sample;
    using C = typename TypeParam::Counter;
    for (uint32_t n : {7u, 700u}) {
        std::vector<T> x(n);
        for (uint32_t i = 0; i < n; ++i) x[i] = T(i % 7 * 10);  // 0 below, 10..50 in, 60 above
        C below = 1, above = 2;
        uint32_t outside = 2 * ((n + 6) / 7);
        EXPECT_EQ(histogram(x.data(), n, T(10), T(50), static_cast<C*>(nullptr), 0, &below, &above), outside) << n;
        EXPECT_EQ(below, C(1 + (n + 6) / 7));
        EXPECT_EQ(above, C(2 + (n + 6) / 7));
        EXPECT_EQ(histogram(x.data(), n, T(10), T(50), static_cast<C*>(nullptr), 0, static_cast<C*>(nullptr), static_cast<C*>(nullptr)), 0u);
    }
}

TYPED_TEST(Histogram, EmptyBlockReturnsZeroAndWritesNothing) {
    using T = typename TypeParam::Sample;
    using C = typename TypeParam::Counter;
    std::vector<C> bins = {7, 8};
    C below = 9, above = 10;
    EXPECT_EQ(histogram(static_cast<const T*>(nullptr), 0, T(0), T(10), bins.data(), 2, &below, &above), 0u);
    EXPECT_EQ(bins, (std::vector<C>{7, 8}));
    EXPECT_EQ(below, 9);
    EXPECT_EQ(above, 10);
}

// ---------------------------------------------------------------------------
// Worked behaviours.

TEST(HistogramExample, SignedSamplesInFiveBins) {
    const int16_t x[] = {-1, 0, 5, 10, 11};
    uint32_t bins[5] = {}, below = 0, above = 0;
    EXPECT_EQ(zolvex_m_histogram_lin_1d_i16u32(x, 5, 0, 10, bins, 5, &below, &above), 5u);
    EXPECT_EQ(below, 1u);
    EXPECT_EQ(above, 1u);
    EXPECT_EQ(std::vector<uint32_t>(bins, bins + 5), (std::vector<uint32_t>{1, 0, 1, 0, 1}));
    EXPECT_EQ(zolvex_m_histogram_lin_1d_i16u32(x, 5, 0, 10, bins, 5, nullptr, &above), 4u);
}

TEST(HistogramExample, NaNSampleCountsInBinZero) {
    const float x[] = {std::numeric_limits<float>::quiet_NaN(), 9.0f};
    uint64_t bins[3] = {}, below = 0, above = 0;
    EXPECT_EQ(zolvex_m_histogram_lin_1d_f32u64(x, 2, 0.0f, 9.0f, bins, 3, &below, &above), 2u);
    EXPECT_EQ(std::vector<uint64_t>(bins, bins + 3), (std::vector<uint64_t>{1, 0, 1}));
}

// w = 0 and an infinite width: quotients 0/0 and inf/inf are NaN, so bin 0.
TEST(HistogramExample, EqualLimitsAndInfiniteWidthUseBinZero) {
    const double dmax = std::numeric_limits<double>::max();
    const double x[] = {-dmax, 0.0, dmax, 5.0};
    uint32_t bins[4] = {};
    EXPECT_EQ(zolvex_m_histogram_lin_1d_f64u32(x, 4, -dmax, dmax, bins, 4, nullptr, nullptr), 4u);
    EXPECT_EQ(bins[0], 4u);
    uint32_t equal[2] = {};
    EXPECT_EQ(zolvex_m_histogram_lin_1d_f64u32(x, 4, 5.0, 5.0, equal, 2, nullptr, nullptr), 1u);
    EXPECT_EQ(equal[0], 1u);
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
// for a sample of the same ranges, under every regime.
template <class T>
void expect_all_values_follow_rule() {
    std::vector<T> all(65536 + 3);
    for (uint32_t i = 0; i < all.size(); ++i) all[i] = static_cast<T>(i * 40503u);
    constexpr int32_t kMin = std::numeric_limits<T>::min();
    OptionsSnapshot snapshot;
    for (const auto& regime : all_regimes()) {
        if (!apply_regime(regime)) continue;
        std::mt19937_64 rng(12);
        std::vector<Binning> binnings = shortcut_binnings();
        for (size_t i = 0; i < binnings.size(); i += 5) {
            const Binning& b = binnings[i];
            if (b.bin_count > (1u << 20)) continue;  // keeps the counters small
            Call<T, uint32_t> call;
            call.storage = all;
            call.length = static_cast<uint32_t>(all.size());
            call.lo = static_cast<T>(kMin + static_cast<int32_t>(rng() % (65536 - b.span)));
            call.hi = static_cast<T>(call.lo + b.span);
            call.bin_count = b.bin_count;
            call.bins.assign(b.bin_count + kSentinels, static_cast<uint32_t>(kSentinel));
            std::fill_n(call.bins.begin(), b.bin_count, 0u);
            expect_same(call, regime.name);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
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
