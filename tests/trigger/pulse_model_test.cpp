// The pulse-width and interval triggers against the reference model
// (model_suite.h), and worked examples.

#include "trigger/model_suite.h"

namespace trigger_testing {
namespace {

using trigger_model::PulseBlock;

template <class T>
struct PulseFunctions;
#define ZOLVEX_M_PULSE_FUNCTIONS(T, suffix)                                                        \
    template <>                                                                                    \
    struct PulseFunctions<T> {                                                                     \
        static constexpr const char* name = #suffix;                                               \
        static constexpr auto width_positive = &zolvex_m_trigger_pulse_width_positive_##suffix;    \
        static constexpr auto width_negative = &zolvex_m_trigger_pulse_width_negative_##suffix;    \
        static constexpr auto interval_positive = &zolvex_m_trigger_interval_positive_##suffix;    \
        static constexpr auto interval_negative = &zolvex_m_trigger_interval_negative_##suffix;    \
    };
ZOLVEX_M_PULSE_FUNCTIONS(uint8_t, u8)
ZOLVEX_M_PULSE_FUNCTIONS(int16_t, i16)
ZOLVEX_M_PULSE_FUNCTIONS(uint16_t, u16)
ZOLVEX_M_PULSE_FUNCTIONS(float, f32)
ZOLVEX_M_PULSE_FUNCTIONS(double, f64)
#undef ZOLVEX_M_PULSE_FUNCTIONS

enum class Measure { width, interval };

// (high, low, mode, time_min, time_max)
template <class T, Measure M, bool Positive>
struct DurationCase {
    using Sample = T;
    using F = PulseFunctions<T>;
    using Edge = std::conditional_t<Positive, trigger_model::EdgeRising<T>, trigger_model::EdgeFalling<T>>;
    using Model = std::conditional_t<M == Measure::width, trigger_model::PulseWidth<T, Positive>,
                                     trigger_model::Interval<Edge>>;
    using Block = PulseBlock;
    static constexpr uint32_t state_count = 3;
    static constexpr bool split_invariant = true;

    static std::string name() {
        return std::string(M == Measure::width ? "width_" : "interval_") + (Positive ? "positive_" : "negative_") +
               F::name;
    }
    static Params<T> params(SignalMaker<T>& maker) {
        Params<T> p = random_levels(maker, {0, 1});
        random_duration(maker, p);
        return p;
    }
    static int32_t call(const Params<T>& p, const T* data, uint32_t length, uint32_t* position, void** state) {
        auto f = M == Measure::width ? (Positive ? F::width_positive : F::width_negative)
                                     : (Positive ? F::interval_positive : F::interval_negative);
        return f(data, length, p.levels[0], p.levels[1], p.mode, p.time_min, p.time_max, position, state);
    }
    static Model model(const Params<T>& p) {
        const T high = p.levels[0], low = p.levels[1];
        const trigger_model::Duration duration{p.mode, p.time_min, p.time_max};
        if constexpr (M == Measure::width) return Model{{}, high, low, duration};
        else return Model{{}, Positive ? Edge{{}, low, high} : Edge{{}, high, low}, duration};
    }
    static Block block_in(uint32_t state, SignalMaker<T>& maker) {
        const uint32_t phase = M == Measure::interval ? static_cast<uint32_t>(maker.between(0, 1)) : 0;
        return {state, phase, random_start(maker)};
    }
    static std::vector<Block> invalid_blocks() {
        std::vector<Block> bad = {{3, 0, -4}, {0xFFFFFFFFu, 0, 0}};
        if (M == Measure::interval) bad.insert(bad.end(), {{0, 2, -4}, {1, 0xFFFFFFFFu, 0}});
        return bad;
    }
};

template <class T>
using Cases = ::testing::Types<DurationCase<T, Measure::width, true>, DurationCase<T, Measure::width, false>,
                               DurationCase<T, Measure::interval, true>, DurationCase<T, Measure::interval, false>>;
INSTANTIATE_TYPED_TEST_SUITE_P(PulseU8, TriggerModel, Cases<uint8_t>, CaseNames);
INSTANTIATE_TYPED_TEST_SUITE_P(PulseI16, TriggerModel, Cases<int16_t>, CaseNames);
INSTANTIATE_TYPED_TEST_SUITE_P(PulseU16, TriggerModel, Cases<uint16_t>, CaseNames);
INSTANTIATE_TYPED_TEST_SUITE_P(PulseF32, TriggerModel, Cases<float>, CaseNames);
INSTANTIATE_TYPED_TEST_SUITE_P(PulseF64, TriggerModel, Cases<double>, CaseNames);

// ---------------------------------------------------------------------------
// Worked examples.

struct Search {
    void* state = nullptr;
    uint32_t position = 0;
    ~Search() { zolvex_m_state_free(&state); }
    PulseBlock block() const { return read_block<PulseBlock>(state); }
};

TEST(PulseExamples, APositivePulseFiresAtItsEndAndStaysArmed) {
    const int16_t data[] = {0, 20, 20, 0};
    Search s;
    EXPECT_EQ(zolvex_m_trigger_pulse_width_positive_i16(data, 4, 10, 0, 0, 0, 0, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 3u);
    EXPECT_EQ(s.block().state, 1u);
    EXPECT_EQ(s.block().start, 1);

    // Width 2 is not below 2: no trigger, and start moves to the next block.
    Search t;
    EXPECT_EQ(zolvex_m_trigger_pulse_width_positive_i16(data, 4, 10, 0, 1, 2, 0, &t.position, &t.state), 0);
    EXPECT_EQ(t.position, 4u);
    EXPECT_EQ(t.block().start, 1 - 4);
}

TEST(PulseExamples, APulseSpanningTwoBlocksIsMeasuredAcrossThem) {
    std::vector<int16_t> first(100, 0), second(10, 0);
    first[98] = first[99] = 20;
    second[0] = second[1] = second[2] = 20;
    Search s;
    // Mode 3 with [5, 5]: only a width of exactly 5 fires.
    EXPECT_EQ(zolvex_m_trigger_pulse_width_positive_i16(first.data(), 100, 10, 0, 3, 5, 5, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 100u);
    EXPECT_EQ(s.block().start, -2);
    s.position = 0;
    EXPECT_EQ(zolvex_m_trigger_pulse_width_positive_i16(second.data(), 10, 10, 0, 3, 5, 5, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 3u);
}

TEST(PulseExamples, ModesOutsideTheTableNeverFire) {
    const uint8_t data[] = {0, 20, 0, 20, 0};
    for (int32_t mode : {5, 7, -1}) {
        Search s;
        EXPECT_EQ(zolvex_m_trigger_pulse_width_positive_u8(data, 5, 10, 0, mode, 0, 100, &s.position, &s.state), 0);
        EXPECT_EQ(s.position, 5u) << "mode " << mode;
    }
}

// With high at or below low every sample in [high, low] starts and ends a
// pulse of width 0. Rejected, the search moves on instead of measuring that
// pulse again and again; accepted, it fires there.
TEST(PulseExamples, ARejectedWidthZeroPulseMovesOn) {
    const uint16_t data[] = {5, 5, 5, 5};
    for (auto width : {zolvex_m_trigger_pulse_width_positive_u16, zolvex_m_trigger_pulse_width_negative_u16}) {
        Search never;
        EXPECT_EQ(width(data, 4, 3, 7, 2, 0, 0, &never.position, &never.state), 0);  // d > 0 only
        EXPECT_EQ(never.position, 4u);
        Search zero;
        EXPECT_EQ(width(data, 4, 3, 7, 1, 1, 0, &zero.position, &zero.state), 0);  // d < 1
        EXPECT_EQ(zero.position, 0u);
        EXPECT_EQ(zero.block().state, 1u);
    }
}

TEST(PulseExamples, AnIntervalIsMeasuredFromThePreviousEdgeWhetherOrNotItFired) {
    std::vector<int16_t> data(30, -5);  // armed strictly below level_low, 0
    for (int edge : {10, 13, 20}) data[edge] = 20;
    Search s;
    EXPECT_EQ(zolvex_m_trigger_interval_positive_i16(data.data(), 30, 10, 0, 2, 5, 0, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 20u);
    EXPECT_EQ(s.block().phase, 1u);
    EXPECT_EQ(s.block().start, 20);
    EXPECT_EQ(s.block().state, 0u);
}

TEST(PulseExamples, TheEarlyReturnStillMovesStartToTheNextBlock) {
    const float data[] = {1, 2, 3};
    Search s;
    EXPECT_EQ(zolvex_m_trigger_interval_negative_f32(data, 0, 10, 0, 0, 0, 0, &s.position, &s.state), 0);
    s.position = 3;
    EXPECT_EQ(zolvex_m_trigger_interval_negative_f32(data, 3, 10, 0, 0, 0, 0, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 3u);
    EXPECT_EQ(s.block().start, -3);
}

} // namespace
} // namespace trigger_testing
