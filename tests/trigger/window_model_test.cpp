// The window triggers against the reference model (model_suite.h), and the
// stateless outside trigger against a plain loop.

#include "trigger/model_suite.h"

namespace trigger_testing {
namespace {

template <class T>
struct WindowFunctions;
#define ZOLVEX_M_WINDOW_FUNCTIONS(T, suffix)                                                       \
    template <>                                                                                    \
    struct WindowFunctions<T> {                                                                    \
        static constexpr const char* name = #suffix;                                               \
        static constexpr auto inside = &zolvex_m_trigger_window_inside_##suffix;                   \
        static constexpr auto outside = &zolvex_m_trigger_window_outside_##suffix;                 \
        static constexpr auto enter = &zolvex_m_trigger_window_enter_##suffix;                     \
        static constexpr auto exit = &zolvex_m_trigger_window_exit_##suffix;                       \
    };
ZOLVEX_M_WINDOW_FUNCTIONS(uint8_t, u8)
ZOLVEX_M_WINDOW_FUNCTIONS(int16_t, i16)
ZOLVEX_M_WINDOW_FUNCTIONS(uint16_t, u16)
ZOLVEX_M_WINDOW_FUNCTIONS(float, f32)
ZOLVEX_M_WINDOW_FUNCTIONS(double, f64)
#undef ZOLVEX_M_WINDOW_FUNCTIONS

template <class T, class M>
struct WordCase {
    using Sample = T;
    using Model = M;
    using Block = trigger_model::Word;
    using F = WindowFunctions<T>;
    static constexpr uint32_t state_count = M::state_count;
    static Block block_in(uint32_t state, SignalMaker<T>&) { return {state}; }
    static std::vector<Block> invalid_blocks() { return {{state_count}, {state_count + 7}, {0xFFFFFFFFu}}; }
};

// (high, low)
template <class T>
struct Inside : WordCase<T, trigger_model::WindowInside<T>> {
    static constexpr bool split_invariant = true;
    static std::string name() { return std::string("inside_") + WindowFunctions<T>::name; }
    static Params<T> params(SignalMaker<T>& maker) { return random_levels(maker, {0, 1}); }
    static int32_t call(const Params<T>& p, const T* data, uint32_t length, uint32_t* position, void** state) {
        return WindowFunctions<T>::inside(data, length, p.levels[0], p.levels[1], position, state);
    }
    static auto model(const Params<T>& p) { return trigger_model::WindowInside<T>{{}, p.levels[0], p.levels[1]}; }
};

// (arm high, high, arm low, low); the arm levels outside the window.
template <class T>
struct Enter : WordCase<T, trigger_model::WindowEnter<T>> {
    static constexpr bool split_invariant = true;
    static std::string name() { return std::string("enter_") + WindowFunctions<T>::name; }
    static Params<T> params(SignalMaker<T>& maker) { return random_levels(maker, {0, 1, 3, 2}); }
    static int32_t call(const Params<T>& p, const T* data, uint32_t length, uint32_t* position, void** state) {
        const auto& l = p.levels;
        return WindowFunctions<T>::enter(data, length, l[0], l[1], l[2], l[3], position, state);
    }
    static auto model(const Params<T>& p) {
        const auto& l = p.levels;
        return trigger_model::WindowEnter<T>{{}, l[0], l[1], l[2], l[3]};
    }
};

// (arm high, high, arm low, low); the arm levels inside the window.
template <class T>
struct Exit : WordCase<T, trigger_model::WindowExit<T>> {
    static constexpr bool split_invariant = false;
    static std::string name() { return std::string("exit_") + WindowFunctions<T>::name; }
    static Params<T> params(SignalMaker<T>& maker) { return random_levels(maker, {1, 0, 2, 3}); }
    static int32_t call(const Params<T>& p, const T* data, uint32_t length, uint32_t* position, void** state) {
        const auto& l = p.levels;
        return WindowFunctions<T>::exit(data, length, l[0], l[1], l[2], l[3], position, state);
    }
    static auto model(const Params<T>& p) {
        const auto& l = p.levels;
        return trigger_model::WindowExit<T>{{}, l[0], l[1], l[2], l[3]};
    }
};

using WindowCases = ::testing::Types<Inside<uint8_t>, Inside<int16_t>, Inside<uint16_t>, Inside<float>, Inside<double>,
                                     Enter<uint8_t>, Enter<int16_t>, Enter<uint16_t>, Enter<float>, Enter<double>,
                                     Exit<uint8_t>, Exit<int16_t>, Exit<uint16_t>, Exit<float>, Exit<double>>;
INSTANTIATE_TYPED_TEST_SUITE_P(Window, TriggerModel, WindowCases, CaseNames);

// ---------------------------------------------------------------------------
// Outside: no state; the first sample strictly outside [low, high] from the
// position, or length, written also when the position starts at or past the
// end.

template <class T>
class WindowOutside : public ::testing::Test {};
using SampleTypes = ::testing::Types<uint8_t, int16_t, uint16_t, float, double>;
TYPED_TEST_SUITE(WindowOutside, SampleTypes);

TYPED_TEST(WindowOutside, MatchesAPlainLoopInEveryRegime) {
    using T = TypeParam;
    in_each_regime([](core::Isa) {
        SignalMaker<T> maker(seed_of(std::string("outside_") + WindowFunctions<T>::name, 1));
        for (int round = 0; round < 400; ++round) {
            const Params<T> p = random_levels(maker, {0, 1});
            const T high = p.levels[0], low = p.levels[1];
            const uint32_t length = static_cast<uint32_t>(maker.between(0, 600));
            const std::vector<T> data = maker.stream(length, p.levels);
            const uint32_t start = static_cast<uint32_t>(maker.chance(10) ? maker.between(length, length + 3)
                                                                           : maker.between(0, length));
            uint32_t want = length;
            for (uint32_t i = start; i < length; ++i)
                if (data[i] > high || data[i] < low) {
                    want = i;
                    break;
                }
            uint32_t position = start;
            ASSERT_EQ(WindowFunctions<T>::outside(data.data(), length, high, low, &position), 0);
            ASSERT_EQ(position, want) << describe(p) << ", length " << length << ", start " << start
                                      << describe_samples(data.data(), length, {start, position, want});
        }
    });
}

} // namespace
} // namespace trigger_testing
