// The fifteen edge triggers against the sample-by-sample model of
// trigger_model.h, in the generic, SSE4.2 and AVX2+FMA3 kernel regimes:
// single calls from random positions and states, whole streams cut into
// random blocks (the triggers and the final state must not depend on the
// cut), each state's first hit placed around the 64-sample groups of the
// vector scans, and state words that belong to no state.
//
// Every library call is also checked against the model called with the same
// block, position and state word, so a failure names the call that went
// wrong.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iomanip>
#include <iostream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/regimes.h"
#include "trigger/scan.h"
#include "trigger/trigger_model.h"
#include "zolvex_m.h"

namespace {

using trigger_model::Outcome;

enum class Kind { rising, falling, any };

template <class T>
struct Functions;

#define ZOLVEX_M_EDGE_FUNCTIONS(T, suffix)                                         \
    template <>                                                                    \
    struct Functions<T> {                                                          \
        static constexpr const char* name = #suffix;                               \
        static constexpr auto rising = &zolvex_m_trigger_edge_rising_##suffix;     \
        static constexpr auto falling = &zolvex_m_trigger_edge_falling_##suffix;   \
        static constexpr auto any = &zolvex_m_trigger_edge_any_##suffix;           \
    };
ZOLVEX_M_EDGE_FUNCTIONS(uint8_t, u8)
ZOLVEX_M_EDGE_FUNCTIONS(int16_t, i16)
ZOLVEX_M_EDGE_FUNCTIONS(uint16_t, u16)
ZOLVEX_M_EDGE_FUNCTIONS(float, f32)
ZOLVEX_M_EDGE_FUNCTIONS(double, f64)
#undef ZOLVEX_M_EDGE_FUNCTIONS

// The level arguments in call order: rising and falling take (arm, trigger),
// any takes (arm high, arm low, trigger).
template <class T>
struct Levels {
    T first, second, third;
};

template <class T, Kind K>
struct Edge {
    using Sample = T;
    static constexpr Kind kind = K;
    static constexpr uint32_t state_count = K == Kind::any ? 5 : 3;

    static std::string name() {
        const char* kinds[] = {"rising", "falling", "any"};
        return std::string(kinds[static_cast<int>(K)]) + "_" + Functions<T>::name;
    }

    static int32_t call(const Levels<T>& l, const T* data, uint32_t length, uint32_t* position, void** state) {
        if constexpr (K == Kind::rising) return Functions<T>::rising(data, length, l.first, l.second, position, state);
        else if constexpr (K == Kind::falling)
            return Functions<T>::falling(data, length, l.first, l.second, position, state);
        else return Functions<T>::any(data, length, l.first, l.second, l.third, position, state);
    }

    static auto machine(const Levels<T>& l) {
        if constexpr (K == Kind::rising) return trigger_model::EdgeRising<T>{l.first, l.second};
        else if constexpr (K == Kind::falling) return trigger_model::EdgeFalling<T>{l.first, l.second};
        else return trigger_model::EdgeAny<T>{l.first, l.second, l.third};
    }
};

template <class T>
std::string show(T x) {
    if constexpr (std::is_integral_v<T>) {
        return std::to_string(static_cast<int64_t>(x));
    } else {
        std::ostringstream out;
        out << std::setprecision(std::numeric_limits<T>::max_digits10) << x;
        return out.str();
    }
}

// ---------------------------------------------------------------------------
// Random levels and signals that cross them often.

template <class T>
class SignalMaker {
public:
    explicit SignalMaker(uint64_t seed) : rng_(seed) {}

    bool chance(int one_in) { return std::uniform_int_distribution<int>(0, one_in - 1)(rng_) == 0; }
    int64_t between(int64_t lo, int64_t hi) { return std::uniform_int_distribution<int64_t>(lo, hi)(rng_); }
    double real(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng_); }
    template <class V>
    V pick(const std::vector<V>& values) { return values[between(0, static_cast<int64_t>(values.size()) - 1)]; }

    // Levels near each other (including equal ones), in any order, sometimes
    // at the ends of the range or spread over it.
    Levels<T> levels() {
        T l[3];
        if constexpr (std::is_integral_v<T>) {
            int64_t center;
            if (chance(4)) center = between(kMin, kMax);
            else if constexpr (std::is_same_v<T, int16_t>) center = between(-400, 400);
            else if constexpr (std::is_same_v<T, uint16_t>) center = chance(2) ? between(32600, 32900) : between(0, 1000);
            else center = between(0, 255);
            int64_t spread = pick(std::vector<int64_t>{0, 1, 2, 5, 30, 200});
            for (T& level : l) level = chance(8) ? clamp(between(kMin, kMax)) : clamp(center + between(-spread, spread));
            for (T& level : l)
                if (chance(14)) level = chance(2) ? T(kMin) : T(kMax);
        } else {
            double center = chance(3) ? 0.0 : real(-100, 100);
            double spread = pick(std::vector<double>{0.0, 1e-5, 0.5, 10.0, 1000.0});
            for (T& level : l) level = static_cast<T>(center + real(-spread, spread));
            for (T& level : l) {
                switch (between(0, 19)) {
                case 0: level = std::numeric_limits<T>::infinity(); break;
                case 1: level = -std::numeric_limits<T>::infinity(); break;
                case 2: level = chance(2) ? T(0) : -T(0); break;
                case 3: level = std::numeric_limits<T>::denorm_min(); break;
                default: break;
                }
            }
        }
        if (chance(5)) l[1] = l[0];
        if (chance(8)) l[2] = l[0];
        if (chance(8)) l[2] = l[1];
        return {l[0], l[1], l[2]};
    }

    // Values at, next to and around the levels, the ends of the range, the
    // middle of an unsigned range, and for floating types zeros, infinities
    // and NaN.
    std::vector<T> pool(const Levels<T>& levels) {
        std::vector<T> values;
        const T l[3] = {levels.first, levels.second, levels.third};
        if constexpr (std::is_integral_v<T>) {
            for (T level : l)
                for (int d = -2; d <= 2; ++d) values.push_back(clamp(int64_t(level) + d));
            for (int64_t v : {kMin, kMax, int64_t(0), int64_t(1), int64_t(-1), kMid - 1, kMid, kMid + 1})
                values.push_back(clamp(v));
            for (int i = 0; i < 4; ++i) values.push_back(clamp(between(kMin, kMax)));
        } else {
            const T inf = std::numeric_limits<T>::infinity();
            for (T level : l) {
                values.push_back(level);
                values.push_back(std::nextafter(level, inf));
                values.push_back(std::nextafter(level, -inf));
                values.push_back(static_cast<T>(level + real(-1, 1)));
            }
            for (T v : {inf, -inf, T(0), -T(0), std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest(),
                        std::numeric_limits<T>::quiet_NaN()})
                values.push_back(v);
        }
        return values;
    }

    // A stream of n samples made of segments: flat runs (often longer than
    // 64 samples, often exactly at a level), random walks and square waves
    // across the levels, draws from the pool, values from the whole range
    // and, for floating types, runs of NaN.
    std::vector<T> stream(size_t n, const Levels<T>& levels) {
        const std::vector<T> values = pool(levels);
        std::vector<T> out;
        out.reserve(n + 300);
        while (out.size() < n) {
            switch (between(0, 5)) {
            case 0: {  // flat run
                T v = pick(values);
                out.insert(out.end(), chance(3) ? between(65, 200) : between(1, 10), v);
                break;
            }
            case 1: walk(out, between(10, 300), levels, values); break;
            case 2: {  // square wave between two pool values
                T a = pick(values), b = pick(values);
                int64_t half = chance(3) ? pick(std::vector<int64_t>{32, 63, 64, 65}) : between(1, 70);
                int64_t length = between(1, 300);
                for (int64_t i = 0; i < length; ++i) out.push_back((i / half) % 2 ? b : a);
                break;
            }
            case 3:
                for (int64_t i = between(1, 100); i > 0; --i) out.push_back(pick(values));
                break;
            case 4:
                for (int64_t i = between(1, 50); i > 0; --i) out.push_back(whole_range());
                break;
            default:
                if constexpr (std::is_floating_point_v<T>)
                    out.insert(out.end(), between(1, 80), std::numeric_limits<T>::quiet_NaN());
                else
                    walk(out, between(10, 300), levels, values);
                break;
            }
        }
        out.resize(n);
        return out;
    }

    T whole_range() {
        if constexpr (std::is_integral_v<T>) {
            return static_cast<T>(rng_());
        } else {
            if (chance(16)) return std::numeric_limits<T>::quiet_NaN();
            return static_cast<T>(real(-1e3, 1e3));
        }
    }

private:
    static constexpr int64_t kMin = std::is_integral_v<T> ? int64_t(std::numeric_limits<T>::min()) : 0;
    static constexpr int64_t kMax = std::is_integral_v<T> ? int64_t(std::numeric_limits<T>::max()) : 0;
    static constexpr int64_t kMid = std::is_signed_v<T> ? 0 : (kMax + 1) / 2;

    static T clamp(int64_t v) { return static_cast<T>(std::clamp(v, kMin, kMax)); }

    void walk(std::vector<T>& out, int64_t length, const Levels<T>& levels, const std::vector<T>& values) {
        const T l[3] = {levels.first, levels.second, levels.third};
        if constexpr (std::is_integral_v<T>) {
            int64_t lo = *std::min_element(l, l + 3), hi = *std::max_element(l, l + 3);
            int64_t step = std::max<int64_t>(2, (hi - lo) / 3);
            int64_t x = pick(std::vector<T>(l, l + 3));
            for (int64_t i = 0; i < length; ++i) {
                x = std::clamp(x + between(-step, step), kMin, kMax);
                if (chance(10)) x = pick(std::vector<T>(l, l + 3));
                out.push_back(static_cast<T>(x));
            }
        } else {
            double lo = 0, hi = 0;
            bool any_finite = false;
            for (T level : l)
                if (std::isfinite(level)) {
                    lo = any_finite ? std::min(lo, double(level)) : double(level);
                    hi = any_finite ? std::max(hi, double(level)) : double(level);
                    any_finite = true;
                }
            double step = std::max((hi - lo) / 3, 1e-3 * std::max(1.0, std::fabs(lo)));
            double x = lo;
            for (int64_t i = 0; i < length; ++i) {
                x += real(-step, step);
                if (chance(10)) {
                    T snap = pick(values);
                    if (std::isfinite(snap)) x = snap;
                }
                out.push_back(chance(20) ? std::numeric_limits<T>::quiet_NaN() : static_cast<T>(x));
            }
        }
    }

    std::mt19937_64 rng_;
};

// ---------------------------------------------------------------------------
// Calling the library and checking each call against the model.

template <class E>
std::string describe_levels(const Levels<typename E::Sample>& l) {
    std::string s = E::name() + " levels (" + show(l.first) + ", " + show(l.second);
    if (E::kind == Kind::any) s += ", " + show(l.third);
    return s + ")";
}

// The call and the samples that decide it: the first few from the start and
// those around the position each side wrote.
template <class E>
std::string describe_call(const Levels<typename E::Sample>& levels, const typename E::Sample* data, uint32_t length,
                          uint32_t position, uint32_t state, const Outcome& got, const Outcome& want) {
    std::ostringstream out;
    out << describe_levels<E>(levels) << ", length " << length << ", start position " << position << ", state "
        << state << ": got status " << got.status << " position " << got.position << " state " << got.state
        << ", model status " << want.status << " position " << want.position << " state " << want.state
        << "\n  samples:";
    std::vector<uint32_t> shown;
    auto around = [&](uint64_t center, uint32_t before, uint32_t after) {
        for (uint64_t i = center >= before ? center - before : 0; i < center + after && i < length; ++i)
            shown.push_back(static_cast<uint32_t>(i));
    };
    around(position, 0, 4);
    around(got.position, 4, 3);
    around(want.position, 4, 3);
    std::sort(shown.begin(), shown.end());
    shown.erase(std::unique(shown.begin(), shown.end()), shown.end());
    for (size_t k = 0; k < shown.size(); ++k) {
        if (k > 0 && shown[k] != shown[k - 1] + 1) out << " ...";
        out << " [" << shown[k] << "]=" << show(data[shown[k]]);
    }
    return out.str();
}

// A state block handed out by the library: a call with a null state pointer
// and nothing to scan allocates one in state 0 and changes nothing else.
template <class E>
void* fresh_state(const Levels<typename E::Sample>& levels) {
    void* state = nullptr;
    uint32_t position = 7;
    EXPECT_EQ(E::call(levels, nullptr, 0, &position, &state), 0);
    EXPECT_EQ(position, 7u);
    EXPECT_NE(state, nullptr);
    if (state != nullptr) {
        EXPECT_EQ(*static_cast<uint32_t*>(state), 0u);
    }
    return state;
}

uint32_t& word(void* state) { return *static_cast<uint32_t*>(state); }

// One search through the library whose every call is compared with the
// model's call on the same block, position and state word. The state block
// is allocated by the first call and must stay the same block.
template <class E>
class CheckedSearch {
public:
    using T = typename E::Sample;

    explicit CheckedSearch(const Levels<T>& levels) : levels_(levels), machine_(E::machine(levels)) {}
    ~CheckedSearch() {
        if (state_ != nullptr) zolvex_m_state_free(&state_);
    }
    CheckedSearch(const CheckedSearch&) = delete;
    CheckedSearch& operator=(const CheckedSearch&) = delete;

    // Starts the next call in this state (allocating the block first).
    void set_state(uint32_t state) {
        if (state_ == nullptr) state_ = fresh_state<E>(levels_);
        if (state_ != nullptr) word(state_) = state;
    }

    uint32_t state() const { return state_ == nullptr ? 0 : word(state_); }

    // The call; a disagreement with the model is reported and returns a
    // status no trigger function gives, which ends a stream.
    int32_t operator()(const T* data, uint32_t length, uint32_t& position) {
        const uint32_t start_state = state();
        const Outcome want = trigger_model::run(machine_, data, length, position, start_state);
        void* const block = state_;
        uint32_t written = position;
        const int32_t status = E::call(levels_, data, length, &written, &state_);
        if (state_ == nullptr) {
            ADD_FAILURE() << describe_levels<E>(levels_) << ": no state block allocated";
            return kMismatch;
        }
        if (block != nullptr && state_ != block) {
            ADD_FAILURE() << describe_levels<E>(levels_) << ": the state block was replaced";
            return kMismatch;
        }
        const Outcome got{status, written, word(state_)};
        if (got != want) {
            ADD_FAILURE() << describe_call<E>(levels_, data, length, position, start_state, got, want);
            return kMismatch;
        }
        position = written;
        return status;
    }

    static constexpr int32_t kMismatch = -1000;

private:
    Levels<T> levels_;
    decltype(E::machine(std::declval<Levels<T>>())) machine_;
    void* state_ = nullptr;
};

// The kernel regimes of the edge triggers: scalar, the SSE4.2 scans, and the
// AVX2+FMA3 scans (with the 256-bit u16 "at or above" scan). Each regime is
// checked to run what it is meant to: generic scans only, or vector scans for
// u8 and u16.
struct EdgeRegime {
    testing_support::Regime options;
    bool vector_scans;
    bool wide_u16_ge;
};

const std::vector<EdgeRegime>& edge_regimes() {
    static const std::vector<EdgeRegime> regimes = {
        {{"generic", {}}, false, false},
        {{"sse42", {ZOLVEX_M_OPT_SSE42}}, true, false},
        {{"avx2_fma3", {ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3}}, true, true},
    };
    return regimes;
}

void expect_scans_of(const EdgeRegime& regime) {
    const auto u8 = trigger::choose_scans<uint8_t>();
    const auto u16 = trigger::choose_scans<uint16_t>();
    EXPECT_EQ(u8.ge != &trigger::generic::scan_ge_u8, regime.vector_scans);
    EXPECT_EQ(u8.lt != &trigger::generic::scan_lt_u8, regime.vector_scans);
    EXPECT_EQ(u16.le != &trigger::generic::scan_le_u16, regime.vector_scans);
    EXPECT_EQ(u16.outside != &trigger::generic::scan_outside_u16, regime.vector_scans);
    EXPECT_EQ(u16.ge == &trigger::avx2::scan_ge_u16, regime.wide_u16_ge);
}

template <class F>
void in_every_regime(F&& check) {
    testing_support::OptionsSnapshot restore;
    for (const auto& regime : edge_regimes()) {
        if (!testing_support::apply_regime(regime.options)) {
            std::cout << "[   NOTE   ] this processor lacks regime " << regime.options.name << "; not tested\n";
            continue;
        }
        SCOPED_TRACE("regime " + regime.options.name);
        expect_scans_of(regime);
        check();
        if (::testing::Test::HasFailure()) return;
    }
}

// ---------------------------------------------------------------------------

template <class E>
class EdgeModel : public ::testing::Test {};

using EdgeCases = ::testing::Types<
    Edge<uint8_t, Kind::rising>, Edge<uint8_t, Kind::falling>, Edge<uint8_t, Kind::any>,
    Edge<int16_t, Kind::rising>, Edge<int16_t, Kind::falling>, Edge<int16_t, Kind::any>,
    Edge<uint16_t, Kind::rising>, Edge<uint16_t, Kind::falling>, Edge<uint16_t, Kind::any>,
    Edge<float, Kind::rising>, Edge<float, Kind::falling>, Edge<float, Kind::any>,
    Edge<double, Kind::rising>, Edge<double, Kind::falling>, Edge<double, Kind::any>>;

struct EdgeCaseNames {
    template <class E>
    static std::string GetName(int) { return E::name(); }
};
TYPED_TEST_SUITE(EdgeModel, EdgeCases, EdgeCaseNames);

uint64_t seed_of(const std::string& name, uint64_t salt) { return std::hash<std::string>{}(name) ^ (salt * 0x9E3779B97F4A7C15ull); }

// One call from a random position (also at and past the end) in a random
// state, on random blocks of every size up to a few groups.
TYPED_TEST(EdgeModel, SingleCallsFromRandomPositionsAndStates) {
    using E = TypeParam;
    using T = typename E::Sample;
    in_every_regime([] {
        SignalMaker<T> maker(seed_of(E::name(), 1));
        for (int round = 0; round < 250; ++round) {
            const Levels<T> levels = maker.levels();
            const uint32_t length = static_cast<uint32_t>(maker.chance(5) ? maker.between(0, 8) : maker.between(1, 700));
            const std::vector<T> block = maker.stream(length, levels);
            uint32_t position = static_cast<uint32_t>(maker.between(0, length + 2));
            if (maker.chance(3)) position = 0;
            CheckedSearch<E> search(levels);
            search.set_state(static_cast<uint32_t>(maker.between(0, E::state_count - 1)));
            ASSERT_EQ(search(block.data(), length, position), 0) << "round " << round;
        }
    });
}

// A stream fed whole and cut into blocks in several ways: the caller sees
// the same absolute triggers and ends in the same state as the model run
// over the stream in one piece.
TYPED_TEST(EdgeModel, BlockSplitsFindTheTriggersOfTheWholeStream) {
    using E = TypeParam;
    using T = typename E::Sample;
    size_t triggers_seen = 0;
    in_every_regime([&] {
        SignalMaker<T> maker(seed_of(E::name(), 2));
        for (int round = 0; round < 8; ++round) {
            const Levels<T> levels = maker.levels();
            const uint32_t total = static_cast<uint32_t>(maker.between(1500, 5000));
            const std::vector<T> stream = maker.stream(total, levels);

            const auto machine = E::machine(levels);
            uint32_t model_state = 0;
            auto model_call = [&](const T* data, uint32_t length, uint32_t& position) {
                Outcome o = trigger_model::run(machine, data, length, position, model_state);
                position = o.position;
                model_state = o.state;
                return o.status;
            };
            const auto expected = trigger_model::feed_blocks(model_call, stream.data(), {total});
            ASSERT_EQ(expected.status, 0);
            triggers_seen += expected.triggers.size();

            for (int split = 0; split < 5; ++split) {
                std::vector<uint32_t> blocks;
                for (uint32_t used = 0; used < total;) {
                    uint32_t b;
                    switch (split) {
                    case 0: b = total; break;
                    case 1: b = static_cast<uint32_t>(maker.chance(10) ? 0 : maker.between(1, 300)); break;
                    case 2: b = static_cast<uint32_t>(maker.between(1, 4)); break;
                    case 3: b = static_cast<uint32_t>(maker.pick(std::vector<int64_t>{63, 64, 65, 127, 128, 129})); break;
                    default: b = static_cast<uint32_t>(maker.between(0, 2000)); break;
                    }
                    b = std::min(b, total - used);
                    blocks.push_back(b);
                    used += b;
                }
                SCOPED_TRACE("round " + std::to_string(round) + " split " + std::to_string(split));
                CheckedSearch<E> search(levels);
                const auto got = trigger_model::feed_blocks(search, stream.data(), blocks);
                ASSERT_EQ(got.status, 0);
                ASSERT_EQ(got.triggers, expected.triggers) << describe_levels<E>(levels);
                ASSERT_EQ(search.state(), model_state) << describe_levels<E>(levels);
            }
        }
    });
    // The streams must really exercise the triggers.
    if (!this->HasFailure()) {
        EXPECT_GT(triggers_seen, 500u);
    }
}

// Each state's scan from positions at and off the start of the block, with
// the first sample satisfying that state's condition placed at every offset
// around the 64-sample groups (or nowhere): the samples before it satisfy
// nothing for that state, those after it are random.
TYPED_TEST(EdgeModel, EachStateFindsItsFirstHitAroundGroupBoundaries) {
    using E = TypeParam;
    using T = typename E::Sample;
    const std::vector<int64_t> hit_offsets = {0,   1,   2,   31,  32,  33,  62,  63,  64,  65,  66, 127,
                                              128, 129, 191, 192, 193, 255, 256, 257, 300, -1};
    in_every_regime([&] {
        SignalMaker<T> maker(seed_of(E::name(), 3));
        for (int set = 0; set < 4; ++set) {
            const Levels<T> levels = maker.levels();
            const auto machine = E::machine(levels);
            const std::vector<T> values = maker.pool(levels);
            for (uint32_t state = 0; state < E::state_count; ++state) {
                // Draws until the condition holds (or not); a level at the end
                // of the range can leave a condition no value satisfies.
                auto draw = [&](bool satisfies) -> std::pair<bool, T> {
                    for (int attempt = 0; attempt < 200; ++attempt) {
                        T x = maker.chance(2) ? maker.pick(values) : maker.whole_range();
                        if ((machine.step(state, x).kind != trigger_model::Step::wait) == satisfies) return {true, x};
                    }
                    return {false, T{}};
                };
                for (uint32_t start : {0u, 1u, 7u, 64u}) {
                    for (int64_t hit : hit_offsets) {
                        std::vector<T> block;
                        for (uint32_t i = 0; i < start; ++i) block.push_back(maker.pick(values));
                        const int64_t misses = hit >= 0 ? hit : maker.between(1, 300);
                        bool possible = true;
                        for (int64_t i = 0; i < misses && possible; ++i) {
                            auto [ok, x] = draw(false);
                            possible = ok;
                            block.push_back(x);
                        }
                        if (hit >= 0 && possible) {
                            auto [ok, x] = draw(true);
                            possible = ok;
                            block.push_back(x);
                            const int64_t tail = maker.chance(4) ? 0 : maker.between(1, 70);
                            for (int64_t i = 0; i < tail; ++i) block.push_back(maker.pick(values));
                        }
                        if (!possible) continue;
                        SCOPED_TRACE("state " + std::to_string(state) + " start " + std::to_string(start) + " hit " +
                                     std::to_string(hit));
                        CheckedSearch<E> search(levels);
                        search.set_state(state);
                        uint32_t position = start;
                        ASSERT_EQ(search(block.data(), static_cast<uint32_t>(block.size()), position), 0);
                    }
                }
            }
        }
    });
}

// A state word that is none of the kind's states fails with -1 and writes
// neither the position nor the state; with nothing to scan the position
// test comes first and the call returns 0.
TYPED_TEST(EdgeModel, UnknownStateWordsFailWithoutWriting) {
    using E = TypeParam;
    using T = typename E::Sample;
    in_every_regime([] {
        SignalMaker<T> maker(seed_of(E::name(), 4));
        for (uint32_t bad : {E::state_count, E::state_count + 1, 1000u, 0x80000000u, 0xFFFFFFFFu}) {
            const Levels<T> levels = maker.levels();
            const uint32_t length = static_cast<uint32_t>(maker.between(1, 300));
            const std::vector<T> block = maker.stream(length, levels);
            void* state = fresh_state<E>(levels);
            ASSERT_NE(state, nullptr);
            word(state) = bad;
            void* const held = state;
            for (uint32_t start : {0u, static_cast<uint32_t>(maker.between(0, length - 1)), length - 1}) {
                uint32_t position = start;
                EXPECT_EQ(E::call(levels, block.data(), length, &position, &state), -1) << "state word " << bad;
                EXPECT_EQ(position, start) << "state word " << bad;
                EXPECT_EQ(state, held);
                EXPECT_EQ(word(state), bad);
            }
            for (uint32_t start : {length, length + 1, 0xFFFFFFFFu}) {
                uint32_t position = start;
                EXPECT_EQ(E::call(levels, block.data(), length, &position, &state), 0) << "state word " << bad;
                EXPECT_EQ(position, start);
                EXPECT_EQ(state, held);
                EXPECT_EQ(word(state), bad);
            }
            zolvex_m_state_free(&state);
        }
    });
}

} // namespace
