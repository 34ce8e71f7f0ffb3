// The runt-pulse triggers against the reference model (model_suite.h).

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

} // namespace
} // namespace trigger_testing
