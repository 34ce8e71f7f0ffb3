// The runt-pulse triggers against the reference model (model_suite.h), and
// worked examples.

#include "trigger/model_suite.h"

namespace trigger_testing {
namespace {

using trigger_model::RuntBlock;

template <class T>
struct RuntFunctions;
#define ZOLVEX_M_RUNT_FUNCTIONS(T, suffix)                                                         \
    template <>                                                                                    \
    struct RuntFunctions<T> {                                                                      \
        static constexpr const char* name = #suffix;                                               \
        static constexpr decltype(&zolvex_m_trigger_runt_pulse_positive_##suffix) kinds[] = {      \
            &zolvex_m_trigger_runt_pulse_positive_##suffix, &zolvex_m_trigger_runt_pulse_negative_##suffix, \
            &zolvex_m_trigger_runt_pulse_any_##suffix};                                            \
    };
ZOLVEX_M_RUNT_FUNCTIONS(uint8_t, u8)
ZOLVEX_M_RUNT_FUNCTIONS(int16_t, i16)
ZOLVEX_M_RUNT_FUNCTIONS(uint16_t, u16)
ZOLVEX_M_RUNT_FUNCTIONS(float, f32)
ZOLVEX_M_RUNT_FUNCTIONS(double, f64)
#undef ZOLVEX_M_RUNT_FUNCTIONS

// (high, low, mode, time_min, time_max); Kind 0 positive, 1 negative, 2 any.
template <class T, uint32_t Kind>
struct RuntCase {
    using Sample = T;
    using Model = trigger_model::Runt<T>;
    using Block = RuntBlock;
    static constexpr uint32_t state_count = 4;
    static constexpr bool split_invariant = true;

    static std::string name() {
        const char* kinds[] = {"positive_", "negative_", "any_"};
        return kinds[Kind] + std::string(RuntFunctions<T>::name);
    }
    static Params<T> params(SignalMaker<T>& maker) {
        Params<T> p = random_levels(maker, {0, 1});
        random_duration(maker, p);
        return p;
    }
    static int32_t call(const Params<T>& p, const T* data, uint32_t length, uint32_t* position, void** state) {
        return RuntFunctions<T>::kinds[Kind](data, length, p.levels[0], p.levels[1], p.mode, p.time_min, p.time_max,
                                             position, state);
    }
    static Model model(const Params<T>& p) {
        return Model{p.levels[0], p.levels[1], Kind, {p.mode, p.time_min, p.time_max}};
    }
    // The inner search has a state of its own only outside the window.
    static Block block_in(uint32_t state, SignalMaker<T>& maker) {
        const uint32_t inner = state >= 2 ? static_cast<uint32_t>(maker.between(0, 2)) : 0;
        return {static_cast<uint32_t>(maker.between(0, 3)), state, inner, random_start(maker)};
    }
    static std::vector<Block> invalid_blocks() {
        return {{0, 4, 0, -2}, {2, 0xFFFFFFFFu, 0, 0}, {3, 2, 3, -2}, {0, 0, 0xFFFFFFFFu, 0}};
    }
};

template <class T>
using Cases = ::testing::Types<RuntCase<T, 0>, RuntCase<T, 1>, RuntCase<T, 2>>;
INSTANTIATE_TYPED_TEST_SUITE_P(RuntU8, TriggerModel, Cases<uint8_t>, CaseNames);
INSTANTIATE_TYPED_TEST_SUITE_P(RuntI16, TriggerModel, Cases<int16_t>, CaseNames);
INSTANTIATE_TYPED_TEST_SUITE_P(RuntU16, TriggerModel, Cases<uint16_t>, CaseNames);
INSTANTIATE_TYPED_TEST_SUITE_P(RuntF32, TriggerModel, Cases<float>, CaseNames);
INSTANTIATE_TYPED_TEST_SUITE_P(RuntF64, TriggerModel, Cases<double>, CaseNames);

// ---------------------------------------------------------------------------
// Worked examples (i16, window [0, 100]).

struct Search {
    void* state = nullptr;
    uint32_t position = 0;
    ~Search() { zolvex_m_state_free(&state); }
    RuntBlock block() const { return read_block<RuntBlock>(state); }
};

using RuntFn = int32_t (*)(const int16_t*, uint32_t, int16_t, int16_t, int32_t, uint32_t, uint32_t, uint32_t*, void**);
constexpr RuntFn positive = zolvex_m_trigger_runt_pulse_positive_i16;
constexpr RuntFn negative = zolvex_m_trigger_runt_pulse_negative_i16;
constexpr RuntFn any = zolvex_m_trigger_runt_pulse_any_i16;

TEST(RuntExamples, APositiveRuntFiresWhereItFallsBackOut) {
    const int16_t data[] = {-10, 50, -10};
    for (RuntFn f : {positive, any}) {
        Search s;
        EXPECT_EQ(f(data, 3, 100, 0, 0, 0, 0, &s.position, &s.state), 0);
        EXPECT_EQ(s.position, 2u);
        EXPECT_EQ(s.block().state, 3u);
        EXPECT_EQ(s.block().entered_from, 1u);
        EXPECT_EQ(s.block().start, 1);
    }
    Search s;
    EXPECT_EQ(negative(data, 3, 100, 0, 0, 0, 0, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 3u);
    EXPECT_EQ(s.block().state, 3u);
}

TEST(RuntExamples, AFullTransitionNeverFires) {
    const int16_t data[] = {-10, 150, -10, 50, 150};
    for (RuntFn f : {positive, negative, any}) {
        Search s;
        EXPECT_EQ(f(data, 5, 100, 0, 0, 0, 0, &s.position, &s.state), 0);
        EXPECT_EQ(s.position, 5u);
    }
}

TEST(RuntExamples, ARuntSpanningTwoBlocksIsMeasuredAcrossThem) {
    const int16_t first[] = {-10, 50}, second[] = {-10};
    Search s;
    EXPECT_EQ(positive(first, 2, 100, 0, 3, 1, 1, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 2u);
    EXPECT_EQ(s.block().state, 1u);
    EXPECT_EQ(s.block().start, -1);
    s.position = 0;
    EXPECT_EQ(positive(second, 1, 100, 0, 3, 1, 1, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 0u);
}

TEST(RuntExamples, TheLevelsBelongToTheWindowAndTheModeQualifiesTheWidth) {
    const int16_t up[] = {-1, 0, 100, 0, -1};
    Search s;
    EXPECT_EQ(any(up, 5, 100, 0, 0, 0, 0, &s.position, &s.state), 0);
    EXPECT_EQ(s.position, 4u);  // in at 1 (0 is inside), out at 4
    const int16_t down[] = {110, 100, 50, 101};
    Search t;
    EXPECT_EQ(any(down, 4, 100, 0, 0, 0, 0, &t.position, &t.state), 0);
    EXPECT_EQ(t.position, 3u);  // in at 1 (100 is inside), out at 3
    EXPECT_EQ(t.block().start, 1);

    const int16_t runt[] = {-10, 50, -10};
    Search narrow;
    EXPECT_EQ(positive(runt, 3, 100, 0, 3, 2, 5, &narrow.position, &narrow.state), 0);
    EXPECT_EQ(narrow.position, 3u);
}

// A NaN where the search looks for the way back into the window lies on
// neither side of it: the search passes over it and looks at the next
// sample.
TEST(RuntExamples, ANanOnTheWayBackInIsPassedOver) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double data[] = {-10, 50, -10, nan, nan, 50, -20};
    void* state = nullptr;
    uint32_t position = 0;
    EXPECT_EQ(zolvex_m_trigger_runt_pulse_positive_f64(data, 7, 100, 0, 0, 0, 0, &position, &state), 0);
    EXPECT_EQ(position, 2u);
    position = 3;  // the caller goes on after the trigger, onto the NaN
    EXPECT_EQ(zolvex_m_trigger_runt_pulse_positive_f64(data, 7, 100, 0, 0, 0, 0, &position, &state), 0);
    EXPECT_EQ(position, 6u);
    zolvex_m_state_free(&state);
}

} // namespace
} // namespace trigger_testing
