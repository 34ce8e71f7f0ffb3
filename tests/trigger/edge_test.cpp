// Edge triggers: the calling convention (lazy state allocation, early return,
// unknown state words, block ends), the worked behaviours of each kind, the
// choice of scan kernels from the option flags, and every vector scan kernel
// against the generic scan: every start position over lengths 0..300 and a
// few thousand, hits on and around the 64-sample group boundaries, long flat
// runs, levels at both ends of the range.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/random_data.h"
#include "support/regimes.h"
#include "trigger/scan.h"
#include "zolvex_m.h"

namespace {

using testing_support::only_options;
using testing_support::OptionsSnapshot;

// A state block the test owns, freed through the public function.
class State {
public:
    State() = default;
    explicit State(uint32_t word) {
        ptr_ = std::calloc(1, sizeof(uint32_t));
        *static_cast<uint32_t*>(ptr_) = word;
    }
    ~State() { zolvex_m_state_free(&ptr_); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    void** slot() { return &ptr_; }
    void* get() const { return ptr_; }
    uint32_t word() const { return *static_cast<const uint32_t*>(ptr_); }

private:
    void* ptr_ = nullptr;
};

struct Result {
    int32_t status;
    uint32_t position;
};

template <class T>
Result rising(const std::vector<T>& d, T arm, T level, uint32_t position, State& s);
template <class T>
Result falling(const std::vector<T>& d, T arm, T level, uint32_t position, State& s);
template <class T>
Result any(const std::vector<T>& d, T high, T low, T level, uint32_t position, State& s);

#define ZOLVEX_M_TEST_EDGE_CALLS(T, suffix)                                                        \
    template <>                                                                                    \
    Result rising<T>(const std::vector<T>& d, T arm, T level, uint32_t position, State& s) {        \
        int32_t status = zolvex_m_trigger_edge_rising_##suffix(d.data(), static_cast<uint32_t>(d.size()), arm, \
                                                              level, &position, s.slot());               \
        return {status, position};                                                                 \
    }                                                                                              \
    template <>                                                                                    \
    Result falling<T>(const std::vector<T>& d, T arm, T level, uint32_t position, State& s) {       \
        int32_t status = zolvex_m_trigger_edge_falling_##suffix(d.data(), static_cast<uint32_t>(d.size()), arm, \
                                                               level, &position, s.slot());              \
        return {status, position};                                                                 \
    }                                                                                              \
    template <>                                                                                    \
    Result any<T>(const std::vector<T>& d, T high, T low, T level, uint32_t position, State& s) {   \
        int32_t status = zolvex_m_trigger_edge_any_##suffix(d.data(), static_cast<uint32_t>(d.size()), high, \
                                                           low, level, &position, s.slot());             \
        return {status, position};                                                                 \
    }
ZOLVEX_M_TEST_EDGE_CALLS(uint8_t, u8)
ZOLVEX_M_TEST_EDGE_CALLS(int16_t, i16)
ZOLVEX_M_TEST_EDGE_CALLS(uint16_t, u16)
ZOLVEX_M_TEST_EDGE_CALLS(float, f32)
ZOLVEX_M_TEST_EDGE_CALLS(double, f64)
#undef ZOLVEX_M_TEST_EDGE_CALLS

// ---------------------------------------------------------------------------
// Calling convention and worked behaviours, for every sample type (levels
// small enough for u8).

template <class T>
class TriggerEdge : public ::testing::Test {};
using SampleTypes = ::testing::Types<uint8_t, int16_t, uint16_t, float, double>;
TYPED_TEST_SUITE(TriggerEdge, SampleTypes);

template <class T>
std::vector<T> samples(std::initializer_list<double> values) {
    std::vector<T> v;
    for (double x : values) v.push_back(static_cast<T>(x));
    return v;
}

TYPED_TEST(TriggerEdge, NullStateIsAllocatedFirstEvenWhenNothingElseHappens) {
    using T = TypeParam;
    const std::vector<T> empty;
    const std::vector<T> three = samples<T>({5, 25, 5});
    {
        State s;
        uint32_t position = 0;
        EXPECT_EQ(zolvex_m_trigger_edge_rising_u8(nullptr, 0, 1, 2, &position, s.slot()), 0);
        ASSERT_NE(s.get(), nullptr);
        EXPECT_EQ(s.word(), 0u);
        EXPECT_EQ(position, 0u);
    }
    // Position at or beyond length: nothing but the allocation.
    for (uint32_t start : {3u, 4u, 0xFFFFFFFFu}) {
        State r, f, a;
        EXPECT_EQ(rising<T>(three, T(10), T(20), start, r).status, 0);
        EXPECT_EQ(rising<T>(three, T(10), T(20), start, r).position, start);
        EXPECT_EQ(falling<T>(three, T(20), T(10), start, f).position, start);
        EXPECT_EQ(any<T>(three, T(60), T(40), T(50), start, a).position, start);
        ASSERT_NE(r.get(), nullptr);
        ASSERT_NE(f.get(), nullptr);
        ASSERT_NE(a.get(), nullptr);
        EXPECT_EQ(r.word(), 0u);
    }
    // An armed state survives an early return, and an unknown one is not
    // even looked at.
    State armed(2), bogus(7);
    EXPECT_EQ(rising<T>(three, T(10), T(20), 3, armed).position, 3u);
    EXPECT_EQ(armed.word(), 2u);
    EXPECT_EQ(rising<T>(empty, T(10), T(20), 0, bogus).status, 0);
    EXPECT_EQ(bogus.word(), 7u);
}

TYPED_TEST(TriggerEdge, UnknownStateWordsFailWithoutWriting) {
    using T = TypeParam;
    const std::vector<T> d = samples<T>({5, 25, 5, 25, 60, 0});
    for (uint32_t word : {3u, 4u, 5u, 0x80000000u, 0xFFFFFFFFu}) {
        State r(word), f(word);
        void* block = r.get();
        Result got = rising<T>(d, T(10), T(20), 1, r);
        EXPECT_EQ(got.status, ZOLVEX_M_STATUS_FAILED);
        EXPECT_EQ(got.position, 1u);
        EXPECT_EQ(r.get(), block);
        EXPECT_EQ(r.word(), word);
        got = falling<T>(d, T(20), T(10), 0, f);
        EXPECT_EQ(got.status, ZOLVEX_M_STATUS_FAILED);
        EXPECT_EQ(got.position, 0u);
        EXPECT_EQ(f.word(), word);
    }
    for (uint32_t word : {5u, 6u, 0xFFFFFFFFu}) {
        State a(word);
        Result got = any<T>(d, T(60), T(40), T(50), 2, a);
        EXPECT_EQ(got.status, ZOLVEX_M_STATUS_FAILED);
        EXPECT_EQ(got.position, 2u);
        EXPECT_EQ(a.word(), word);
    }
    // The highest valid states are accepted.
    State r2(2), a4(4);
    EXPECT_EQ(rising<T>(d, T(10), T(20), 0, r2).position, 1u);
    EXPECT_EQ(any<T>(d, T(60), T(40), T(50), 0, a4).position, 4u);
}

TYPED_TEST(TriggerEdge, RisingArmsStrictlyBelowAndFiresAtOrAboveTheLevel) {
    using T = TypeParam;
    {
        State s;
        EXPECT_EQ(rising<T>(samples<T>({5, 25}), T(10), T(20), 0, s).position, 1u);
        EXPECT_EQ(s.word(), 0u);
    }
    {
        // 10 is not below the arm level 10.
        State s;
        Result got = rising<T>(samples<T>({10, 25}), T(10), T(20), 0, s);
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(got.position, 2u);
        EXPECT_EQ(s.word(), 0u);
    }
    {
        // Armed, then back at or above the arm level but short of the
        // trigger level: state 2, kept over the block end.
        State s;
        EXPECT_EQ(rising<T>(samples<T>({30, 5, 15}), T(10), T(20), 0, s).position, 3u);
        EXPECT_EQ(s.word(), 2u);
    }
    {
        // Equal to the trigger level fires; a later sample above it is not
        // reached.
        State s;
        EXPECT_EQ(rising<T>(samples<T>({5, 20, 30}), T(10), T(20), 0, s).position, 1u);
    }
    {
        // Never disarmed: the dips back below the arm level change nothing.
        State s;
        EXPECT_EQ(rising<T>(samples<T>({5, 15, 5, 15, 0, 19, 21}), T(10), T(20), 0, s).position, 6u);
    }
    {
        // The arm level above the trigger level: the first sample at or above
        // the arm level after arming fires, as it satisfies both states.
        State s;
        EXPECT_EQ(rising<T>(samples<T>({30, 10, 25, 35}), T(30), T(20), 0, s).position, 3u);
    }
    {
        // Equal levels: fires on the first sample at or above after one below.
        State s;
        EXPECT_EQ(rising<T>(samples<T>({20, 19, 20}), T(20), T(20), 0, s).position, 2u);
    }
}

TYPED_TEST(TriggerEdge, FallingIsTheMirrorImage) {
    using T = TypeParam;
    {
        State s;
        EXPECT_EQ(falling<T>(samples<T>({25, 5}), T(20), T(10), 0, s).position, 1u);
        EXPECT_EQ(s.word(), 0u);
    }
    {
        State s;
        EXPECT_EQ(falling<T>(samples<T>({20, 5}), T(20), T(10), 0, s).position, 2u);
        EXPECT_EQ(s.word(), 0u);
    }
    {
        State s;
        EXPECT_EQ(falling<T>(samples<T>({5, 25, 15}), T(20), T(10), 0, s).position, 3u);
        EXPECT_EQ(s.word(), 2u);
    }
    {
        State s;
        EXPECT_EQ(falling<T>(samples<T>({25, 10, 0}), T(20), T(10), 0, s).position, 1u);
    }
    {
        State s;
        EXPECT_EQ(falling<T>(samples<T>({25, 15, 25, 15, 30, 11, 9}), T(20), T(10), 0, s).position, 6u);
    }
}

TYPED_TEST(TriggerEdge, AnyArmsOnEitherSideAndFiresOnTheWayBack) {
    using T = TypeParam;
    {
        // Below the low arm level: states 2 and 4 pass on the same sample.
        State s;
        EXPECT_EQ(any<T>(samples<T>({0, 100}), T(60), T(40), T(50), 0, s).position, 1u);
        EXPECT_EQ(s.word(), 0u);
    }
    {
        // Above the high arm level, then down through the level.
        State s;
        EXPECT_EQ(any<T>(samples<T>({50, 70, 55, 50}), T(60), T(40), T(50), 0, s).position, 3u);
    }
    {
        // Arm levels themselves are inside the band: nothing arms.
        State s;
        EXPECT_EQ(any<T>(samples<T>({60, 40, 60, 40}), T(60), T(40), T(50), 0, s).position, 4u);
        EXPECT_EQ(s.word(), 0u);
    }
    {
        // Each intermediate state is kept at the block end.
        State s1, s2, s3, s4;
        EXPECT_EQ(any<T>(samples<T>({50, 70, 65}), T(60), T(40), T(50), 0, s1).position, 3u);
        EXPECT_EQ(s1.word(), 1u);
        EXPECT_EQ(any<T>(samples<T>({50, 30, 35}), T(60), T(40), T(50), 0, s2).position, 3u);
        EXPECT_EQ(s2.word(), 2u);
        EXPECT_EQ(any<T>(samples<T>({70, 55}), T(60), T(40), T(50), 0, s3).position, 2u);
        EXPECT_EQ(s3.word(), 3u);
        EXPECT_EQ(any<T>(samples<T>({30, 45}), T(60), T(40), T(50), 0, s4).position, 2u);
        EXPECT_EQ(s4.word(), 4u);
    }
    {
        // High arm level below the low one: a sample beyond both arms high,
        // so it then waits for x <= 30 and x <= level.
        State s;
        EXPECT_EQ(any<T>(samples<T>({35, 80, 31, 20}), T(30), T(40), T(20), 0, s).position, 3u);
        EXPECT_EQ(s.word(), 0u);
        State t;
        EXPECT_EQ(any<T>(samples<T>({35}), T(30), T(40), T(20), 0, t).position, 1u);
        EXPECT_EQ(t.word(), 1u);
    }
}

TYPED_TEST(TriggerEdge, SearchesGoOnAcrossBlocksAndAfterATrigger) {
    using T = TypeParam;
    State s;
    Result got = rising<T>(samples<T>({5}), T(10), T(20), 0, s);
    EXPECT_EQ(got.position, 1u);
    EXPECT_EQ(s.word(), 1u);
    // The next block: states 1 and 2 pass on 25.
    got = rising<T>(samples<T>({25, 5, 30}), T(10), T(20), 0, s);
    EXPECT_EQ(got.position, 0u);
    EXPECT_EQ(s.word(), 0u);
    // The caller advances past the trigger; the same block serves again.
    got = rising<T>(samples<T>({25, 5, 30}), T(10), T(20), got.position + 1, s);
    EXPECT_EQ(got.position, 2u);
    // Restarting at the trigger sample itself cannot fire on it again.
    got = rising<T>(samples<T>({25, 5, 30}), T(10), T(20), 2, s);
    EXPECT_EQ(got.position, 3u);
    EXPECT_EQ(s.word(), 0u);
}

template <class T>
class TriggerEdgeFloat : public ::testing::Test {};
using FloatTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE(TriggerEdgeFloat, FloatTypes);

TYPED_TEST(TriggerEdgeFloat, NanNeverArmsNorFires) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    {
        State s;
        EXPECT_EQ(rising<T>({nan, 25, nan}, T(10), T(20), 0, s).position, 3u);
        EXPECT_EQ(s.word(), 0u);
    }
    {
        // Armed by 5, NaN neither completes state 1 nor fires in state 2.
        State s;
        EXPECT_EQ(rising<T>({5, nan}, T(10), T(20), 0, s).position, 2u);
        EXPECT_EQ(s.word(), 1u);
        EXPECT_EQ(rising<T>({15, nan, nan, 20}, T(10), T(20), 0, s).position, 3u);
    }
    {
        State s;
        EXPECT_EQ(falling<T>({nan, 5, 25, nan, 15, nan, 10}, T(20), T(10), 0, s).position, 6u);
    }
    {
        State s;
        EXPECT_EQ(any<T>({nan, 50, nan, 100, nan, 55, nan, 50}, T(60), T(40), T(50), 0, s).position, 7u);
        State t;
        EXPECT_EQ(any<T>({nan, nan}, T(60), T(40), T(50), 0, t).position, 2u);
        EXPECT_EQ(t.word(), 0u);
    }
    {
        // A NaN level is never reached either.
        State s;
        EXPECT_EQ(rising<T>({5, 25, 1e30}, T(10), nan, 0, s).position, 3u);
        EXPECT_EQ(s.word(), 2u);
    }
}

// ---------------------------------------------------------------------------
// Kernel choice.

struct ChooserCase {
    const char* name;
    std::function<bool()> apply;  // through only_options: all others off
    enum Level { generic, sse42, avx2 };
    Level level;  // every u8 and u16 scan
};

template <class T>
bool all_are(const trigger::ScanSet<T>& s, trigger::ScanKernel<T> ge, trigger::ScanKernel<T> le,
             trigger::ScanKernel<T> gt, trigger::ScanKernel<T> lt, trigger::BandScanKernel<T> outside) {
    return s.ge == ge && s.le == le && s.gt == gt && s.lt == lt && s.outside == outside;
}

TEST(TriggerScanChooser, FollowsTheOptionFlagsPerCall) {
    OptionsSnapshot restore;
    const ChooserCase cases[] = {
        {"none", [] { return only_options({}); }, ChooserCase::generic},
        {"sse42", [] { return only_options({ZOLVEX_M_OPT_SSE42}); }, ChooserCase::sse42},
        {"avx2", [] { return only_options({ZOLVEX_M_OPT_AVX2}); }, ChooserCase::generic},
        {"fma3", [] { return only_options({ZOLVEX_M_OPT_FMA3}); }, ChooserCase::generic},
        {"avx2 fma3", [] { return only_options({ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3}); }, ChooserCase::avx2},
        {"sse42 avx2", [] { return only_options({ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX2}); }, ChooserCase::sse42},
        {"sse42 avx2 fma3", [] { return only_options({ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3}); },
         ChooserCase::avx2},
        {"all", [] {
             return only_options({ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX, ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3,
                                  ZOLVEX_M_OPT_AVX512F, ZOLVEX_M_OPT_AVX512CD, ZOLVEX_M_OPT_AVX512BW,
                                  ZOLVEX_M_OPT_AVX512DQ});
         },
         ChooserCase::avx2},
    };
    namespace g = trigger::generic;
    namespace s = trigger::sse42;
    for (const ChooserCase& c : cases) {
        SCOPED_TRACE(std::string("options on: ") + c.name);
        if (!c.apply()) {
            ADD_FAILURE() << "processor lacks an option of " << c.name << " (skipped)";
            continue;
        }

        namespace a = trigger::avx2;
        auto u8 = trigger::choose_scans<uint8_t>();
        auto u16 = trigger::choose_scans<uint16_t>();
        if (c.level == ChooserCase::avx2) {
            EXPECT_TRUE(all_are(u8, a::scan_ge_u8, a::scan_le_u8, a::scan_gt_u8, a::scan_lt_u8, a::scan_outside_u8));
            EXPECT_TRUE(all_are(u16, a::scan_ge_u16, a::scan_le_u16, a::scan_gt_u16, a::scan_lt_u16, a::scan_outside_u16));
        } else if (c.level == ChooserCase::sse42) {
            EXPECT_TRUE(all_are(u8, s::scan_ge_u8, s::scan_le_u8, s::scan_gt_u8, s::scan_lt_u8, s::scan_outside_u8));
            EXPECT_TRUE(all_are(u16, s::scan_ge_u16, s::scan_le_u16, s::scan_gt_u16, s::scan_lt_u16, s::scan_outside_u16));
        } else {
            EXPECT_TRUE(all_are(u8, g::scan_ge_u8, g::scan_le_u8, g::scan_gt_u8, g::scan_lt_u8, g::scan_outside_u8));
            EXPECT_TRUE(all_are(u16, g::scan_ge_u16, g::scan_le_u16, g::scan_gt_u16, g::scan_lt_u16, g::scan_outside_u16));
        }

        // "inside" (used by the index searches only) follows the same rule
        // as the other scans of its type.
        EXPECT_EQ(u8.inside, c.level == ChooserCase::avx2    ? a::scan_inside_u8
                             : c.level == ChooserCase::sse42 ? s::scan_inside_u8
                                                             : g::scan_inside_u8);
        EXPECT_EQ(u16.inside, c.level == ChooserCase::avx2    ? a::scan_inside_u16
                              : c.level == ChooserCase::sse42 ? s::scan_inside_u16
                                                              : g::scan_inside_u16);
        EXPECT_EQ(trigger::choose_scans<int16_t>().inside, g::scan_inside_i16);
        EXPECT_EQ(trigger::choose_scans<float>().inside, g::scan_inside_f32);
        EXPECT_EQ(trigger::choose_scans<double>().inside, g::scan_inside_f64);

        // The other types have no vector scans at all.
        EXPECT_TRUE(all_are(trigger::choose_scans<int16_t>(), g::scan_ge_i16, g::scan_le_i16, g::scan_gt_i16,
                                g::scan_lt_i16, g::scan_outside_i16));
        EXPECT_TRUE(all_are(trigger::choose_scans<float>(), g::scan_ge_f32, g::scan_le_f32, g::scan_gt_f32,
                                g::scan_lt_f32, g::scan_outside_f32));
        EXPECT_TRUE(all_are(trigger::choose_scans<double>(), g::scan_ge_f64, g::scan_le_f64, g::scan_gt_f64,
                                g::scan_lt_f64, g::scan_outside_f64));
    }
}

// ---------------------------------------------------------------------------
// Vector scan kernels against the generic scan.

enum class Condition { ge, le, gt, lt, outside, inside };

const char* condition_name(Condition c) {
    static const char* names[] = {"ge", "le", "gt", "lt", "outside", "inside"};
    return names[static_cast<int>(c)];
}

template <class T>
struct Levels {
    T level;  // ge/le/gt/lt
    T high;   // outside, inside
    T low;
};

template <class T>
bool satisfies(Condition c, T x, const Levels<T>& l) {
    switch (c) {
    case Condition::ge: return x >= l.level;
    case Condition::le: return x <= l.level;
    case Condition::gt: return x > l.level;
    case Condition::lt: return x < l.level;
    case Condition::inside: return x >= l.low && x <= l.high;
    default: return x > l.high || x < l.low;
    }
}

// A kernel under test and the generic kernel of the same condition.
template <class T>
struct KernelPair {
    std::string name;
    Condition condition;
    trigger::ScanKernel<T> kernel = nullptr, reference = nullptr;
    trigger::BandScanKernel<T> band = nullptr, band_reference = nullptr;

    uint32_t run(bool vector, const T* x, uint32_t start, uint32_t length, const Levels<T>& l) const {
        if (condition == Condition::outside || condition == Condition::inside)
            return (vector ? band : band_reference)(x, start, length, l.high, l.low);
        return (vector ? kernel : reference)(x, start, length, l.level);
    }
};

template <class T>
std::vector<KernelPair<T>> vector_kernels();

#define ZOLVEX_M_TEST_SCAN_PAIRS(ns, T, suffix)                                                    \
    {#ns "::scan_ge_" #suffix, Condition::ge, trigger::ns::scan_ge_##suffix, trigger::generic::scan_ge_##suffix}, \
    {#ns "::scan_le_" #suffix, Condition::le, trigger::ns::scan_le_##suffix, trigger::generic::scan_le_##suffix}, \
    {#ns "::scan_gt_" #suffix, Condition::gt, trigger::ns::scan_gt_##suffix, trigger::generic::scan_gt_##suffix}, \
    {#ns "::scan_lt_" #suffix, Condition::lt, trigger::ns::scan_lt_##suffix, trigger::generic::scan_lt_##suffix}, \
    {#ns "::scan_outside_" #suffix, Condition::outside, nullptr, nullptr,                          \
     trigger::ns::scan_outside_##suffix, trigger::generic::scan_outside_##suffix},                  \
    {#ns "::scan_inside_" #suffix, Condition::inside, nullptr, nullptr,                            \
     trigger::ns::scan_inside_##suffix, trigger::generic::scan_inside_##suffix}

template <>
std::vector<KernelPair<uint8_t>> vector_kernels<uint8_t>() {
    return {ZOLVEX_M_TEST_SCAN_PAIRS(sse42, uint8_t, u8), ZOLVEX_M_TEST_SCAN_PAIRS(avx2, uint8_t, u8)};
}

template <>
std::vector<KernelPair<uint16_t>> vector_kernels<uint16_t>() {
    return {ZOLVEX_M_TEST_SCAN_PAIRS(sse42, uint16_t, u16), ZOLVEX_M_TEST_SCAN_PAIRS(avx2, uint16_t, u16)};
}
#undef ZOLVEX_M_TEST_SCAN_PAIRS

bool kernel_runs_here(const std::string& name) {
    if (name.rfind("avx2::", 0) == 0) return __builtin_cpu_supports("avx2");
    return __builtin_cpu_supports("sse4.2");
}

// Level sets per condition: next to the middle, and at both ends of the
// range (where a condition holds for every sample or for none).
template <class T>
std::vector<Levels<T>> level_sets(Condition c, std::mt19937& rng) {
    constexpr T kMax = std::numeric_limits<T>::max();
    T mid = static_cast<T>(kMax / 2 + 3);
    T r = static_cast<T>(rng());
    if (c == Condition::outside || c == Condition::inside)
        return {{0, static_cast<T>(mid + 9), static_cast<T>(mid - 9)}, {0, mid, mid},  {0, kMax, 0},
                {0, static_cast<T>(kMax - 1), 1},                     {0, 0, kMax},    {0, static_cast<T>(mid - 4), static_cast<T>(mid + 4)},
                {0, r, static_cast<T>(r / 2)}};
    return {{mid, 0, 0}, {0, 0, 0}, {1, 0, 0}, {kMax, 0, 0}, {static_cast<T>(kMax - 1), 0, 0}, {r, 0, 0}};
}

// Samples that do and do not satisfy the condition, weighted towards the
// values next to the levels (where an off-by-one would show).
template <class T>
struct Pools {
    std::vector<T> hit, miss;
};

template <class T>
Pools<T> pools(Condition c, const Levels<T>& l, std::mt19937& rng) {
    constexpr T kMax = std::numeric_limits<T>::max();
    std::vector<T> candidates = {0, 1, 2, kMax, static_cast<T>(kMax - 1), static_cast<T>(kMax / 2),
                                 static_cast<T>(kMax / 2 + 1)};
    for (T base : {l.level, l.high, l.low})
        for (int d = -2; d <= 2; ++d) candidates.push_back(static_cast<T>(base + d));
    for (int i = 0; i < 8; ++i) candidates.push_back(static_cast<T>(rng()));
    Pools<T> p;
    for (T v : candidates) (satisfies(c, v, l) ? p.hit : p.miss).push_back(v);
    return p;
}

template <class T>
T pick(const std::vector<T>& pool, std::mt19937& rng) {
    return pool[rng() % pool.size()];
}

// Flat runs of non-hits with hits at the given indices (when any sample can
// be a hit); with no misses possible, every sample is a hit.
template <class T>
std::vector<T> layout(size_t n, const std::vector<size_t>& hits, const Pools<T>& p, std::mt19937& rng) {
    std::vector<T> v(n);
    for (auto& x : v) x = p.miss.empty() ? pick(p.hit, rng) : pick(p.miss, rng);
    if (!p.hit.empty())
        for (size_t h : hits)
            if (h < n) v[h] = pick(p.hit, rng);
    return v;
}

template <class T>
class TriggerScanKernels : public ::testing::Test {};
using VectorTypes = ::testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(TriggerScanKernels, VectorTypes);

// Every length 0..300 and every start 0..length+1 over one buffer whose hits
// sit at and beside multiples of 64 with long hit-free stretches between,
// so that cutting the length and moving the start put the first hit at
// every offset within and across groups.
TYPED_TEST(TriggerScanKernels, EveryStartAndLengthUpTo300) {
    using T = TypeParam;
    std::mt19937 rng(1234);
    const std::vector<size_t> hits = {63, 64, 65, 127, 191, 192, 257, 299};
    for (const KernelPair<T>& k : vector_kernels<T>()) {
        if (!kernel_runs_here(k.name)) continue;
        for (const Levels<T>& l : level_sets<T>(k.condition, rng)) {
            Pools<T> p = pools(k.condition, l, rng);
            std::vector<T> data = layout<T>(300, hits, p, rng);
            for (uint32_t length = 0; length <= 300; ++length)
                for (uint32_t start = 0; start <= length + 1; ++start) {
                    uint32_t want = k.run(false, data.data(), start, length, l);
                    uint32_t got = k.run(true, data.data(), start, length, l);
                    if (got != want) {
                        ADD_FAILURE() << k.name << " level=" << +l.level << " high=" << +l.high << " low=" << +l.low
                                      << " start=" << start << " length=" << length << ": " << got << " != " << want;
                        goto next_levels;
                    }
                }
        next_levels:;
        }
    }
}

// Thousands of samples: one hit after a long flat run, reached from every
// start before it (every alignment of the hit within its group), with the
// block ending before, on and after it; then no hit at all.
TYPED_TEST(TriggerScanKernels, LongFlatRunsFromEveryStart) {
    using T = TypeParam;
    std::mt19937 rng(99);
    constexpr size_t kLength = 4099;
    constexpr size_t kHit = 3001;
    for (const KernelPair<T>& k : vector_kernels<T>()) {
        if (!kernel_runs_here(k.name)) continue;
        for (const Levels<T>& l : level_sets<T>(k.condition, rng)) {
            Pools<T> p = pools(k.condition, l, rng);
            std::vector<T> one = layout<T>(kLength, {kHit}, p, rng);
            std::vector<T> none = layout<T>(kLength, {}, p, rng);
            int failures = 0;
            for (uint32_t length : {uint32_t(kHit), uint32_t(kHit + 1), uint32_t(kLength)})
                for (uint32_t start = 0; start <= length && failures < 3; ++start)
                    for (const std::vector<T>* data : {&one, &none}) {
                        uint32_t want = k.run(false, data->data(), start, length, l);
                        uint32_t got = k.run(true, data->data(), start, length, l);
                        if (got != want) {
                            ++failures;
                            ADD_FAILURE() << k.name << " " << condition_name(k.condition) << " level=" << +l.level
                                          << " start=" << start << " length=" << length << ": " << got
                                          << " != " << want;
                        }
                    }
        }
    }
}

// Random samples and random levels (hits close together) from random starts.
TYPED_TEST(TriggerScanKernels, RandomSamplesAndLevels) {
    using T = TypeParam;
    std::mt19937 rng(7);
    std::vector<T> data = testing_support::random_vector<T>(65537, 5);
    for (const KernelPair<T>& k : vector_kernels<T>()) {
        if (!kernel_runs_here(k.name)) continue;
        for (int trial = 0; trial < 20000; ++trial) {
            Levels<T> l = {static_cast<T>(rng()), static_cast<T>(rng()), static_cast<T>(rng())};
            uint32_t length = static_cast<uint32_t>(rng() % (data.size() + 1));
            uint32_t start = static_cast<uint32_t>(rng() % (length + 2));
            ASSERT_EQ(k.run(true, data.data(), start, length, l), k.run(false, data.data(), start, length, l))
                << k.name << " level=" << +l.level << " start=" << start << " length=" << length;
        }
    }
}

// ---------------------------------------------------------------------------
// The public functions under every option combination that changes a
// kernel, against the same functions with every option off: a long signal
// cut into random blocks, every trigger found by advancing past the last
// one (alternately by one and not at all), for each kind and type.

struct Event {
    uint64_t index;  // in the whole stream; the block end when not a trigger
    uint32_t state;  // state word after the call
    int32_t status;
    bool trigger;
    bool operator==(const Event&) const = default;
};

template <class T>
std::vector<T> test_signal(size_t n, uint32_t seed) {
    // Slow ramps and plateaus with noise and occasional spikes to both ends
    // of the range: long runs that vector scans skip, with crossings between.
    std::mt19937 rng(seed);
    constexpr double kMax = std::numeric_limits<T>::max();
    std::vector<T> v(n);
    double level = kMax / 2;
    double target = level;
    for (size_t i = 0; i < n; ++i) {
        if (rng() % 300 == 0) target = double(rng() % (uint32_t(kMax) + 1));
        level += (target - level) * 0.02;
        double noise = double(int(rng() % 7) - 3);
        double x = level + noise;
        if (rng() % 997 == 0) x = (rng() & 1) ? kMax : 0;
        v[i] = static_cast<T>(std::fmin(std::fmax(x, 0.0), kMax));
    }
    return v;
}

template <class T>
std::vector<Event> run_stream(const std::vector<T>& signal, const std::function<Result(const std::vector<T>&, uint32_t, State&)>& call,
                              uint32_t seed) {
    std::mt19937 rng(seed);
    std::vector<Event> events;
    State s;
    size_t offset = 0;
    bool advance = true;
    while (offset < signal.size()) {
        size_t n = std::min<size_t>(signal.size() - offset, rng() % 3 == 0 ? rng() % 8 : rng() % 700);
        std::vector<T> block(signal.begin() + offset, signal.begin() + offset + n);
        uint32_t position = 0;
        for (;;) {
            Result r = call(block, position, s);
            events.push_back({offset + r.position, s.word(), r.status, r.position < n});
            if (r.status != 0 || r.position >= n) break;
            position = r.position + (advance ? 1 : 0);
            advance = !advance;
        }
        offset += n;
    }
    return events;
}

template <class T>
class TriggerEdgeVectorPaths : public ::testing::Test {};
TYPED_TEST_SUITE(TriggerEdgeVectorPaths, VectorTypes);

TYPED_TEST(TriggerEdgeVectorPaths, EveryOptionCombinationFindsTheGenericTriggers) {
    using T = TypeParam;
    OptionsSnapshot restore;
    constexpr T kMax = std::numeric_limits<T>::max();
    const T q = static_cast<T>(kMax / 4);
    const std::vector<T> signal = test_signal<T>(200000, 11);

    using Call = std::function<Result(const std::vector<T>&, uint32_t, State&)>;
    struct Kind {
        std::string name;
        Call call;
    };
    std::vector<Kind> kinds;
    for (auto [arm, level] : std::vector<std::pair<T, T>>{{T(2 * q - 5), T(2 * q + 5)}, {T(2 * q), T(2 * q)},
                                                            {T(3 * q), q}, {0, kMax}, {kMax, 0}, {1, T(kMax - 1)}}) {
        std::string levels = std::to_string(+arm) + "/" + std::to_string(+level);
        kinds.push_back({"rising " + levels, [arm, level](const std::vector<T>& d, uint32_t p, State& s) {
                             return rising<T>(d, arm, level, p, s);
                         }});
        kinds.push_back({"falling " + levels, [arm, level](const std::vector<T>& d, uint32_t p, State& s) {
                             return falling<T>(d, arm, level, p, s);
                         }});
    }
    for (auto [high, low, level] : std::vector<std::tuple<T, T, T>>{
             {T(3 * q), q, T(2 * q)}, {T(2 * q + 3), T(2 * q - 3), T(2 * q)}, {q, T(3 * q), T(2 * q)},
             {kMax, 0, T(2 * q)}, {T(kMax - 1), 1, 0}, {0, kMax, kMax}}) {
        std::string levels = std::to_string(+high) + "/" + std::to_string(+low) + "/" + std::to_string(+level);
        kinds.push_back({"any " + levels, [high, low, level](const std::vector<T>& d, uint32_t p, State& s) {
                             return any<T>(d, high, low, level, p, s);
                         }});
    }

    const std::vector<std::pair<const char*, std::function<bool()>>> combinations = {
        {"sse42", [] { return only_options({ZOLVEX_M_OPT_SSE42}); }},
        {"avx2 fma3", [] { return only_options({ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3}); }},
        {"sse42 avx2 fma3", [] { return only_options({ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3}); }},
    };
    size_t triggers = 0;
    for (const Kind& kind : kinds) {
        ASSERT_TRUE(only_options({}));
        std::vector<Event> want = run_stream<T>(signal, kind.call, 3);
        for (const Event& e : want) triggers += e.trigger ? 1 : 0;
        for (const auto& [name, apply] : combinations) {
            if (!apply()) continue;
            std::vector<Event> got = run_stream<T>(signal, kind.call, 3);
            EXPECT_TRUE(got == want) << kind.name << " with " << name << ": " << got.size() << " events, generic "
                                     << want.size();
        }
    }
    // Not a vacuous comparison: the signal crosses the levels many times.
    EXPECT_GT(triggers, 1000u);
}

} // namespace
