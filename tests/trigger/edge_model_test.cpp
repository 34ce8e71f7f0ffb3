// The fifteen edge triggers against the reference model (model_suite.h),
// and a worked example of the calling convention.

#include "trigger/model_suite.h"

namespace trigger_testing {
namespace {

enum class Edge { rising, falling, any };

#define ZOLVEX_M_EDGE_FUNCTIONS(T, suffix)                                                         \
    template <>                                                                                    \
    struct EdgeFunctions<T> {                                                                      \
        static constexpr const char* name = #suffix;                                               \
        static constexpr auto rising = &zolvex_m_trigger_edge_rising_##suffix;                     \
        static constexpr auto falling = &zolvex_m_trigger_edge_falling_##suffix;                   \
        static constexpr auto any = &zolvex_m_trigger_edge_any_##suffix;                          \
    };
template <class T>
struct EdgeFunctions;
ZOLVEX_M_EDGE_FUNCTIONS(uint8_t, u8)
ZOLVEX_M_EDGE_FUNCTIONS(int16_t, i16)
ZOLVEX_M_EDGE_FUNCTIONS(uint16_t, u16)
ZOLVEX_M_EDGE_FUNCTIONS(float, f32)
ZOLVEX_M_EDGE_FUNCTIONS(double, f64)
#undef ZOLVEX_M_EDGE_FUNCTIONS

// Levels in call order: rising and falling (arm, trigger), any (arm high,
// arm low, trigger).
template <class T, Edge K>
struct EdgeCase {
    using Sample = T;
    using Model = std::conditional_t<K == Edge::rising, trigger_model::EdgeRising<T>,
                                     std::conditional_t<K == Edge::falling, trigger_model::EdgeFalling<T>,
                                                        trigger_model::EdgeAny<T>>>;
    using Block = trigger_model::Word;
    static constexpr uint32_t state_count = Model::state_count;
    static constexpr bool split_invariant = true;
    using F = EdgeFunctions<T>;

    static std::string name() {
        const char* kinds[] = {"rising", "falling", "any"};
        return std::string(kinds[static_cast<int>(K)]) + "_" + F::name;
    }
    static Params<T> params(SignalMaker<T>& maker) {
        if constexpr (K == Edge::rising) return random_levels(maker, {1, 0});
        else if constexpr (K == Edge::falling) return random_levels(maker, {0, 1});
        else return random_levels(maker, {0, 2, 1});
    }
    static int32_t call(const Params<T>& p, const T* data, uint32_t length, uint32_t* position, void** state) {
        const auto& l = p.levels;
        if constexpr (K == Edge::rising) return F::rising(data, length, l[0], l[1], position, state);
        else if constexpr (K == Edge::falling) return F::falling(data, length, l[0], l[1], position, state);
        else return F::any(data, length, l[0], l[1], l[2], position, state);
    }
    static Model model(const Params<T>& p) {
        if constexpr (K == Edge::any) return Model{{}, p.levels[0], p.levels[1], p.levels[2]};
        else return Model{{}, p.levels[0], p.levels[1]};
    }
    static Block block_in(uint32_t state, SignalMaker<T>&) { return {state}; }
    static std::vector<Block> invalid_blocks() {
        return {{state_count}, {state_count + 1}, {1000}, {0x80000000u}, {0xFFFFFFFFu}};
    }
};

using EdgeCases = ::testing::Types<
    EdgeCase<uint8_t, Edge::rising>, EdgeCase<uint8_t, Edge::falling>, EdgeCase<uint8_t, Edge::any>,
    EdgeCase<int16_t, Edge::rising>, EdgeCase<int16_t, Edge::falling>, EdgeCase<int16_t, Edge::any>,
    EdgeCase<uint16_t, Edge::rising>, EdgeCase<uint16_t, Edge::falling>, EdgeCase<uint16_t, Edge::any>,
    EdgeCase<float, Edge::rising>, EdgeCase<float, Edge::falling>, EdgeCase<float, Edge::any>,
    EdgeCase<double, Edge::rising>, EdgeCase<double, Edge::falling>, EdgeCase<double, Edge::any>>;
INSTANTIATE_TYPED_TEST_SUITE_P(Edge, TriggerModel, EdgeCases, CaseNames);

// The first call allocates the state block; a rising edge arms strictly
// below the arm level (10 itself does not arm) and, once above it, stays
// armed over the block end; the next block fires at the first sample at or
// above the trigger level, and the search starts over.
TEST(EdgeExample, ARisingEdgeOverTwoBlocks) {
    const int16_t first[] = {10, 12, 9, 15}, second[] = {19, 20, 25};
    void* state = nullptr;
    uint32_t position = 0;
    EXPECT_EQ(zolvex_m_trigger_edge_rising_i16(first, 4, 10, 20, &position, &state), 0);
    EXPECT_EQ(position, 4u);
    EXPECT_EQ(*static_cast<const uint32_t*>(state), 2u);
    position = 0;
    EXPECT_EQ(zolvex_m_trigger_edge_rising_i16(second, 3, 10, 20, &position, &state), 0);
    EXPECT_EQ(position, 1u);
    EXPECT_EQ(*static_cast<const uint32_t*>(state), 0u);
    zolvex_m_state_free(&state);
}

} // namespace
} // namespace trigger_testing
