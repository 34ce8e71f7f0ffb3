#pragma once
// The trigger functions against the sample-by-sample model of
// trigger_model.h, as one typed test suite that every trigger kind
// instantiates with its cases, in every kernel regime: single calls from random positions and states, whole streams cut
// into random blocks (the triggers and the final state must not depend on
// the cut), each state's first hit placed around the 64-sample groups of the
// vector scans, and state blocks holding values the kind never stores.
//
// Every library call is checked against the model called with the same
// block, position and state block, so a failure names the call that went
// wrong.
//
// A case describes one trigger function:
//
//   struct Case {
//       using Sample = ...;
//       using Model = ...;                   // a trigger_model machine
//       using Block = typename Model::Block;
//       static constexpr uint32_t state_count = ...;
//       static constexpr bool split_invariant = ...;  // see BlockSplits...
//       static std::string name();
//       static Params<Sample> params(SignalMaker<Sample>&);
//       static int32_t call(const Params<Sample>&, const Sample*, uint32_t length, uint32_t* position, void** state);
//       static Model model(const Params<Sample>&);
//       static Block block_in(uint32_t state, SignalMaker<Sample>&);  // a valid block in that state
//       static std::vector<Block> invalid_blocks();
//   };

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/regimes.h"
#include "support/signal_maker.h"
#include "trigger/trigger_model.h"
#include "zolvex_m.h"

namespace trigger_testing {

using testing_support::in_each_regime;
using testing_support::Levels;
using testing_support::show;
using testing_support::SignalMaker;
using trigger_model::Outcome;

// The arguments of one search: the levels in call order, and for the
// duration triggers the mode and limits.
template <class T>
struct Params {
    Levels<T> levels{};
    int level_count = 0;
    bool timed = false;
    int32_t mode = 0;
    uint32_t time_min = 0, time_max = 0;
};

template <class T>
std::string describe(const Params<T>& p) {
    std::string s = "levels (";
    for (int i = 0; i < p.level_count; ++i) s += (i ? ", " : "") + show(p.levels[i]);
    s += ")";
    if (p.timed)
        s += " mode " + std::to_string(p.mode) + " time_min " + std::to_string(p.time_min) + " time_max " +
             std::to_string(p.time_max);
    return s;
}

// Levels for a kind, as many as `ranks` has: half the time in the order the
// kind is meant for, so that the triggers fire often (ranks[i] is the rank
// of the i-th level from the highest, 0), otherwise in any order.
template <class T>
Params<T> random_levels(SignalMaker<T>& maker, std::vector<int> ranks) {
    Params<T> p;
    p.levels = maker.levels();
    p.level_count = static_cast<int>(ranks.size());
    if (maker.chance(2)) {
        Levels<T> sorted = p.levels;
        std::sort(sorted.begin(), sorted.begin() + p.level_count, [](T a, T b) { return a > b; });
        for (int i = 0; i < p.level_count; ++i) p.levels[i] = sorted[ranks[i]];
    }
    return p;
}

// A mode and limits: mostly the five real modes with short limits that the
// pulses in the signals straddle, sometimes modes that never fire, limits in
// the wrong order or at the ends of the range.
template <class T>
void random_duration(SignalMaker<T>& maker, Params<T>& p) {
    p.timed = true;
    p.mode = maker.chance(8) ? maker.pick(std::vector<int32_t>{5, 7, -1, INT32_MIN}) : int32_t(maker.between(0, 4));
    p.time_min = static_cast<uint32_t>(maker.between(0, 80));
    p.time_max = static_cast<uint32_t>(p.time_min + maker.between(0, 150));
    if (maker.chance(6)) std::swap(p.time_min, p.time_max);
    if (maker.chance(10)) p.time_max = UINT32_MAX;
    if (maker.chance(12)) p.time_min = 0;
}

// A block-relative start index: just before the block, long ago, or a whole
// number of 2^32 samples back (durations wrap).
template <class T>
int64_t random_start(SignalMaker<T>& maker) {
    switch (maker.between(0, 3)) {
    case 0: return -maker.between(0, 100);
    case 1: return -maker.between(0, int64_t(1) << 40);
    case 2: return -(int64_t(1) << 32) - maker.between(-3, 3);
    default: return maker.between(0, 50);
    }
}

// The samples around the positions the call started from and each side
// wrote.
template <class T>
std::string describe_samples(const T* data, uint32_t length, std::initializer_list<uint32_t> positions) {
    std::string out = "\n  samples:";
    for (uint32_t p : positions) {
        out += " ...";
        for (uint64_t i = p >= 3 ? p - 3 : 0; i < uint64_t(p) + 4 && i < length; ++i)
            out += " [" + std::to_string(i) + "]=" + show(data[i]);
    }
    return out;
}

template <class Block>
std::string describe_block(const Block& b) {
    std::ostringstream out;
    if constexpr (std::is_same_v<Block, trigger_model::Word>) out << "{state " << b.state << "}";
    else if constexpr (std::is_same_v<Block, trigger_model::PulseBlock>)
        out << "{state " << b.state << ", phase " << b.phase << ", start " << b.start << "}";
    else
        out << "{entered_from " << b.entered_from << ", state " << b.state << ", inner_state " << b.inner_state
            << ", start " << b.start << "}";
    return out.str();
}

// The library's state block read field by field through the model's layout.
template <class Block>
Block read_block(const void* state) {
    Block b;
    std::memcpy(&b, state, sizeof b);
    return b;
}
template <class Block>
void write_block(void* state, const Block& b) {
    std::memcpy(state, &b, sizeof b);
}

// A state block handed out by the library: a call with a null state pointer
// and nothing to scan allocates one, zero-filled, and changes nothing else.
template <class C>
void* fresh_state(const Params<typename C::Sample>& p) {
    void* state = nullptr;
    uint32_t position = 7;
    EXPECT_EQ(C::call(p, nullptr, 0, &position, &state), 0);
    EXPECT_EQ(position, 7u);
    EXPECT_NE(state, nullptr);
    if (state != nullptr) {
        EXPECT_TRUE(read_block<typename C::Block>(state) == typename C::Block{});
    }
    return state;
}

// One search through the library whose every call is compared with the
// model's call on the same block, position and state block. The state block
// is allocated by the first call and must stay the same block.
template <class C>
class CheckedSearch {
public:
    using T = typename C::Sample;
    using Block = typename C::Block;

    explicit CheckedSearch(const Params<T>& params) : params_(params), model_(C::model(params)) {}
    ~CheckedSearch() {
        if (state_ != nullptr) zolvex_m_state_free(&state_);
    }
    CheckedSearch(const CheckedSearch&) = delete;
    CheckedSearch& operator=(const CheckedSearch&) = delete;

    // Starts the next call from this block (allocating it first).
    void set_block(const Block& block) {
        if (state_ == nullptr) state_ = fresh_state<C>(params_);
        if (state_ != nullptr) write_block(state_, block);
    }

    Block block() const { return state_ == nullptr ? Block{} : read_block<Block>(state_); }

    // The call; a disagreement with the model is reported and returns a
    // status no trigger function gives, which ends a stream.
    int32_t operator()(const T* data, uint32_t length, uint32_t& position) {
        const Block before = block();
        Block want_block = before;
        const Outcome want = trigger_model::run(model_, data, length, position, want_block);
        void* const held = state_;
        uint32_t written = position;
        const int32_t status = C::call(params_, data, length, &written, &state_);
        if (state_ == nullptr || (held != nullptr && state_ != held)) {
            ADD_FAILURE() << C::name() << " " << describe(params_) << ": state block missing or replaced";
            return kMismatch;
        }
        const Outcome got{status, written};
        const Block got_block = block();
        if (got != want || !(got_block == want_block)) {
            ADD_FAILURE() << C::name() << " " << describe(params_) << ", length " << length << ", start position "
                          << position << ", block " << describe_block(before) << ": got status " << got.status
                          << " position " << got.position << " block " << describe_block(got_block)
                          << ", model status " << want.status << " position " << want.position << " block "
                          << describe_block(want_block) << describe_samples(data, length, {position, got.position, want.position});
            return kMismatch;
        }
        position = written;
        return status;
    }

    static constexpr int32_t kMismatch = -1000;

private:
    Params<T> params_;
    typename C::Model model_;
    void* state_ = nullptr;
};

inline uint64_t seed_of(const std::string& name, uint64_t salt) {
    return std::hash<std::string>{}(name) ^ (salt * 0x9E3779B97F4A7C15ull);
}

template <class C>
typename C::Block random_block(SignalMaker<typename C::Sample>& maker) {
    return C::block_in(static_cast<uint32_t>(maker.between(0, C::state_count - 1)), maker);
}

// Cuts `total` samples into blocks in one of five ways: whole, random sizes
// with empty blocks, tiny blocks, sizes around the vector groups, large.
template <class T>
std::vector<uint32_t> cut(SignalMaker<T>& maker, uint32_t total, int way) {
    std::vector<uint32_t> blocks;
    for (uint32_t used = 0; used < total;) {
        uint32_t b;
        switch (way) {
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
    return blocks;
}

template <class C>
class TriggerModel : public ::testing::Test {};
TYPED_TEST_SUITE_P(TriggerModel);

// One call from a random position (also at and past the end) from a random
// state block, on random blocks of every size up to a few groups.
TYPED_TEST_P(TriggerModel, SingleCallsFromRandomPositionsAndStates) {
    using C = TypeParam;
    using T = typename C::Sample;
    in_each_regime([](core::Isa) {
        SignalMaker<T> maker(seed_of(C::name(), 1));
        for (int round = 0; round < 250; ++round) {
            const Params<T> params = C::params(maker);
            const uint32_t length = static_cast<uint32_t>(maker.chance(5) ? maker.between(0, 8) : maker.between(1, 700));
            const std::vector<T> block = maker.stream(length, params.levels);
            uint32_t position = static_cast<uint32_t>(maker.between(0, length + 2));
            if (maker.chance(3)) position = 0;
            CheckedSearch<C> search(params);
            search.set_block(random_block<C>(maker));
            ASSERT_EQ(search(block.data(), length, position), 0) << "round " << round;
        }
    });
}

// A stream fed whole and cut into blocks in several ways. Every call agrees
// with the model; for kinds whose triggers do not depend on where the blocks
// begin, the caller also sees the same absolute triggers and ends with the
// same state block as when the stream comes in one piece. (The window-exit
// trigger looks at the first sample of each call in its idle state, so its
// triggers do depend on the cut; it is checked against the model fed the
// same cut.)
TYPED_TEST_P(TriggerModel, BlockSplitsFindTheTriggersOfTheWholeStream) {
    using C = TypeParam;
    using T = typename C::Sample;
    size_t triggers_seen = 0;
    in_each_regime([&](core::Isa) {
        SignalMaker<T> maker(seed_of(C::name(), 2));
        for (int round = 0; round < 8; ++round) {
            const Params<T> params = C::params(maker);
            const uint32_t total = static_cast<uint32_t>(maker.between(1500, 5000));
            const std::vector<T> stream = maker.stream(total, params.levels);
            const auto model = C::model(params);
            auto model_feed = [&](const std::vector<uint32_t>& blocks, typename C::Block& block) {
                auto call = [&](const T* data, uint32_t length, uint32_t& position) {
                    Outcome o = trigger_model::run(model, data, length, position, block);
                    position = o.position;
                    return o.status;
                };
                return trigger_model::feed_blocks(call, stream.data(), blocks);
            };
            typename C::Block whole_block{};
            const auto whole = model_feed({total}, whole_block);
            ASSERT_EQ(whole.status, 0);
            triggers_seen += whole.triggers.size();

            for (int way = 0; way < 5; ++way) {
                const std::vector<uint32_t> blocks = cut(maker, total, way);
                SCOPED_TRACE("round " + std::to_string(round) + " cut " + std::to_string(way));
                typename C::Block expected_block = whole_block;
                auto expected = whole;
                if (!C::split_invariant) {
                    expected_block = {};
                    expected = model_feed(blocks, expected_block);
                }
                CheckedSearch<C> search(params);
                const auto got = trigger_model::feed_blocks(search, stream.data(), blocks);
                ASSERT_EQ(got.status, 0);
                ASSERT_EQ(got.triggers, expected.triggers) << describe(params);
                ASSERT_TRUE(search.block() == expected_block)
                    << describe(params) << ": " << describe_block(search.block()) << " instead of "
                    << describe_block(expected_block);
            }
        }
    });
    // The streams must really exercise the triggers.
    if (!this->HasFailure()) {
        EXPECT_GT(triggers_seen, 150u);
    }
}

// Each state's scan from positions at and off the start of the block, with
// the first sample that moves the state on placed at every offset around the
// 64-sample groups (or nowhere): the samples before it leave the state
// waiting, those after it are random.
TYPED_TEST_P(TriggerModel, EachStateFindsItsFirstHitAroundGroupBoundaries) {
    using C = TypeParam;
    using T = typename C::Sample;
    const std::vector<int64_t> hit_offsets = {0,   1,   2,   31,  32,  33,  62,  63,  64,  65,  66, 127,
                                              128, 129, 191, 192, 193, 255, 256, 257, 300, -1};
    in_each_regime([&](core::Isa) {
        SignalMaker<T> maker(seed_of(C::name(), 3));
        for (int set = 0; set < 4; ++set) {
            const Params<T> params = C::params(maker);
            const auto model = C::model(params);
            const std::vector<T> values = maker.pool(params.levels);
            for (uint32_t state = 0; state < C::state_count; ++state) {
                const typename C::Block start_block = C::block_in(state, maker);
                // Draws until the state waits on the sample (or not); a level
                // at the end of the range can leave a condition no value
                // satisfies.
                auto draw = [&](bool moves) -> std::pair<bool, T> {
                    for (int attempt = 0; attempt < 200; ++attempt) {
                        T x = maker.chance(2) ? maker.pick(values) : maker.whole_range();
                        typename C::Block b = start_block;
                        if ((model.step(b, x, trigger_model::Where{1, false}) != trigger_model::Step::wait) == moves)
                            return {true, x};
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
                        CheckedSearch<C> search(params);
                        search.set_block(start_block);
                        uint32_t position = start;
                        ASSERT_EQ(search(block.data(), static_cast<uint32_t>(block.size()), position), 0);
                    }
                }
            }
        }
    });
}

// A block holding a value the kind never stores fails with -1 and writes
// neither the position nor the block; with nothing to scan the position test
// comes first and the call returns 0 (the model says what the block then
// holds).
TYPED_TEST_P(TriggerModel, InvalidStateBlocksFailWithoutWriting) {
    using C = TypeParam;
    using T = typename C::Sample;
    in_each_regime([](core::Isa) {
        SignalMaker<T> maker(seed_of(C::name(), 4));
        for (const auto& bad : C::invalid_blocks()) {
            const Params<T> params = C::params(maker);
            const uint32_t length = static_cast<uint32_t>(maker.between(1, 300));
            const std::vector<T> data = maker.stream(length, params.levels);
            for (uint32_t start : {0u, static_cast<uint32_t>(maker.between(0, length - 1)), length - 1, length,
                                   length + 1, 0xFFFFFFFFu}) {
                SCOPED_TRACE("block " + describe_block(bad) + " start " + std::to_string(start));
                CheckedSearch<C> search(params);
                search.set_block(bad);
                uint32_t position = start;
                const int32_t status = search(data.data(), length, position);
                ASSERT_EQ(status, start < length ? -1 : 0);
            }
        }
    });
}

REGISTER_TYPED_TEST_SUITE_P(TriggerModel, SingleCallsFromRandomPositionsAndStates,
                            BlockSplitsFindTheTriggersOfTheWholeStream, EachStateFindsItsFirstHitAroundGroupBoundaries,
                            InvalidStateBlocksFailWithoutWriting);

struct CaseNames {
    template <class C>
    static std::string GetName(int) { return C::name(); }
};

} // namespace trigger_testing
