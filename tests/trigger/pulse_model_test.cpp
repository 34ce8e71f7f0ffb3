// The pulse-width and interval triggers against the reference model
// (model_suite.h).

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

} // namespace
} // namespace trigger_testing
