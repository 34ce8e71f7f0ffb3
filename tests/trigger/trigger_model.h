#pragma once
// A reference model of the trigger searches, one sample at a time, written
// from their state tables and independent of the library's kernels.
//
// A machine says, for its state block and a sample, whether the block keeps
// waiting (the next sample comes), has moved on to another state (which then
// tests the same sample again), or triggers at the sample; it changes the
// block itself. run() wraps a machine in the common calling convention of
// the trigger functions; feed_blocks() is the caller's loop over a stream
// delivered block by block.
//
// The model's blocks have the layout the header documents, field for field,
// so a test can compare them with the library's blocks.

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace trigger_model {

enum class Step { wait, move, trigger };

// Where the machine is: the sample's index, and whether it is the first
// sample of the call (the window-exit trigger's idle state looks at that
// one sample differently).
struct Where {
    uint32_t index;
    bool first;
};

// The outcome of one call: status and the position written.
struct Outcome {
    int32_t status;
    uint32_t position;
    friend bool operator==(const Outcome&, const Outcome&) = default;
};

template <class Machine, class Block>
void block_end(const Machine& machine, Block& block, uint32_t length) {
    if constexpr (requires { machine.block_end(block, length); }) machine.block_end(block, length);
}

// One call of a trigger function on data[0..length) from `position`,
// changing `block` as the library changes its state block.
template <class Machine, class T>
Outcome run(const Machine& machine, const T* data, uint32_t length, uint32_t position,
            typename Machine::Block& block) {
    if (position >= length) {
        block_end(machine, block, length);
        return {0, position};
    }
    if (!Machine::valid(block)) return {-1, position};
    for (uint32_t i = position; i < length; ++i) {
        for (int moves = 0;; ++moves) {
            if (moves > 16) throw std::logic_error("trigger model: a state cycle on one sample");
            Step step = machine.step(block, data[i], Where{i, i == position});
            if (step == Step::wait) break;
            if (step == Step::trigger) return {0, i};
        }
    }
    block_end(machine, block, length);
    return {0, length};
}

// Durations: mode against the limits, unsigned 32-bit.
inline bool accepts(int32_t mode, uint32_t d, uint32_t time_min, uint32_t time_max) {
    switch (mode) {
    case 0: return true;
    case 1: return d < time_min;
    case 2: return d > time_min;
    case 3: return d >= time_min && d <= time_max;
    case 4: return d < time_min || d > time_max;
    default: return false;
    }
}

inline uint32_t since(uint32_t index, int64_t start) { return index - static_cast<uint32_t>(start); }

// ---------------------------------------------------------------------------
// State blocks.

struct Word {
    uint32_t state;
    friend bool operator==(const Word&, const Word&) = default;
};

struct PulseBlock {
    uint32_t state;
    uint32_t phase;
    int64_t start;
    friend bool operator==(const PulseBlock&, const PulseBlock&) = default;
};

struct RuntBlock {
    uint32_t entered_from;
    uint32_t state;
    uint32_t inner_state;
    int64_t start;
    friend bool operator==(const RuntBlock&, const RuntBlock&) = default;
};

template <uint32_t States>
struct WordMachine {
    using Block = Word;
    static constexpr uint32_t state_count = States;
    static bool valid(const Block& b) { return b.state < States; }
};

inline Step go(uint32_t& state, uint32_t next) {
    state = next;
    return Step::move;
}
inline Step fire(uint32_t& state) {
    state = 0;
    return Step::trigger;
}

// ---------------------------------------------------------------------------
// Edge triggers.

// Rising: arm strictly below arm_level, rise to it, trigger at or above
// trigger_level; armed never disarms.
template <class T>
struct EdgeRising : WordMachine<3> {
    T arm_level, trigger_level;
    template <class B>
    Step step(B& b, T x, Where) const {
        switch (b.state) {
        case 0: return x < arm_level ? go(b.state, 1) : Step::wait;
        case 1: return x >= arm_level ? go(b.state, 2) : Step::wait;
        default: return x >= trigger_level ? fire(b.state) : Step::wait;
        }
    }
};

// Falling, the mirror image.
template <class T>
struct EdgeFalling : WordMachine<3> {
    T arm_level, trigger_level;
    template <class B>
    Step step(B& b, T x, Where) const {
        switch (b.state) {
        case 0: return x > arm_level ? go(b.state, 1) : Step::wait;
        case 1: return x <= arm_level ? go(b.state, 2) : Step::wait;
        default: return x <= trigger_level ? fire(b.state) : Step::wait;
        }
    }
};

// Any: 0 idle, 1 armed high, 2 armed low, 3 falling through, 4 rising
// through. A sample above the high level and below the low one takes the
// high branch.
template <class T>
struct EdgeAny : WordMachine<5> {
    T arm_level_high, arm_level_low, trigger_level;
    Step step(Word& b, T x, Where) const {
        switch (b.state) {
        case 0:
            if (x > arm_level_high) return go(b.state, 1);
            if (x < arm_level_low) return go(b.state, 2);
            return Step::wait;
        case 1: return x <= arm_level_high ? go(b.state, 3) : Step::wait;
        case 2: return x >= arm_level_low ? go(b.state, 4) : Step::wait;
        case 3: return x <= trigger_level ? fire(b.state) : Step::wait;
        default: return x >= trigger_level ? fire(b.state) : Step::wait;
        }
    }
};

// ---------------------------------------------------------------------------
// Window triggers.

// Inside: 0 looks at the sample: above H goes to 1, below L to 2, else (NaN
// included: "not L > x") fires. 1 fires at x <= H, 2 at x >= L.
template <class T>
struct WindowInside : WordMachine<3> {
    T high, low;
    Step step(uint32_t& state, T x) const {
        switch (state) {
        case 0:
            if (x > high) return go(state, 1);
            if (!(low > x)) return fire(state);
            return go(state, 2);
        case 1: return x <= high ? fire(state) : Step::wait;
        default: return x >= low ? fire(state) : Step::wait;
        }
    }
    Step step(Word& b, T x, Where) const { return step(b.state, x); }
};

// Enter: 0 arms above AH (1) or below AL (3); 1 -> 2 at x <= AH, 2 fires at
// x <= H; 3 -> 4 at x >= AL, 4 fires at x >= L.
template <class T>
struct WindowEnter : WordMachine<5> {
    T arm_high, high, arm_low, low;
    Step step(Word& b, T x, Where) const {
        switch (b.state) {
        case 0:
            if (x > arm_high) return go(b.state, 1);
            if (x < arm_low) return go(b.state, 3);
            return Step::wait;
        case 1: return x <= arm_high ? go(b.state, 2) : Step::wait;
        case 2: return x <= high ? fire(b.state) : Step::wait;
        case 3: return x >= arm_low ? go(b.state, 4) : Step::wait;
        default: return x >= low ? fire(b.state) : Step::wait;
        }
    }
};

// Exit: 0 arms (3) on the call's first sample if AL <= x <= AH, else waits
// for x > H (1) or x < L (2); 1 -> 3 at x <= AH; 2 -> 3 at x >= AL; 3 fires
// at x < L or x > H.
template <class T>
struct WindowExit : WordMachine<4> {
    T arm_high, high, arm_low, low;
    Step step(Word& b, T x, Where where) const {
        switch (b.state) {
        case 0:
            if (where.first && arm_low <= x && x <= arm_high) return go(b.state, 3);
            if (x > high) return go(b.state, 1);
            if (x < low) return go(b.state, 2);
            return Step::wait;
        case 1: return x <= arm_high ? go(b.state, 3) : Step::wait;
        case 2: return x >= arm_low ? go(b.state, 3) : Step::wait;
        default: return x < low || x > high ? fire(b.state) : Step::wait;
        }
    }
};

// ---------------------------------------------------------------------------
// Pulse-width and interval triggers.

struct Duration {
    int32_t mode;
    uint32_t time_min, time_max;
    bool accepts(uint32_t d) const { return trigger_model::accepts(mode, d, time_min, time_max); }
};

struct RelativeStart {
    static void block_end(PulseBlock& b, uint32_t length) { b.start -= length; }
};

// Positive: 0 waits for x <= L, 1 for x >= H (the pulse starts), 2 for
// x <= L (it ends: state 1, fire if the mode accepts the width). Negative
// swaps the conditions. A rejected pulse of width 0 passes the sample.
template <class T, bool Positive>
struct PulseWidth : RelativeStart {
    using Block = PulseBlock;
    static constexpr uint32_t state_count = 3;
    static bool valid(const Block& b) { return b.state < 3; }
    T high, low;
    Duration duration;

    bool rest(T x) const { return Positive ? x <= low : x >= high; }
    bool away(T x) const { return Positive ? x >= high : x <= low; }

    Step step(Block& b, T x, Where where) const {
        switch (b.state) {
        case 0: return rest(x) ? go(b.state, 1) : Step::wait;
        case 1:
            if (!away(x)) return Step::wait;
            b.start = where.index;
            return go(b.state, 2);
        default: {
            if (!rest(x)) return Step::wait;
            b.state = 1;
            const uint32_t d = since(where.index, b.start);
            if (duration.accepts(d)) return Step::trigger;
            return d == 0 ? Step::wait : Step::move;
        }
        }
    }
};

// Interval: the edge machine on the block's state word; the first edge
// starts the measurement, each later one measures from the previous edge.
template <class Edge>
struct Interval : RelativeStart {
    using Block = PulseBlock;
    static constexpr uint32_t state_count = 3;
    static bool valid(const Block& b) { return b.state < 3 && b.phase < 2; }
    Edge edge;
    Duration duration;

    template <class T>
    Step step(Block& b, T x, Where where) const {
        Step s = edge.step(b, x, where);
        if (s != Step::trigger) return s;
        if (b.phase == 0) {
            b.phase = 1;
            b.start = where.index;
            return Step::move;
        }
        const uint32_t d = since(where.index, b.start);
        b.start = where.index;
        return duration.accepts(d) ? Step::trigger : Step::move;
    }
};

// ---------------------------------------------------------------------------
// Runt-pulse triggers: 0 idle, 1 inside, 2 above, 3 below; the way back in
// is the window-inside machine on inner_state. Kind 0 positive, 1 negative,
// 2 any. A NaN reported inside by the inner machine is passed over.
template <class T>
struct Runt {
    using Block = RuntBlock;
    static constexpr uint32_t state_count = 4;
    static bool valid(const Block& b) { return b.state < 4 && b.inner_state < 3; }
    static void block_end(Block& b, uint32_t length) { b.start -= length; }
    T high, low;
    uint32_t kind;
    Duration duration;

    Step step(Block& b, T x, Where where) const {
        switch (b.state) {
        case 0:
            if (!(x > high || x < low)) return Step::wait;
            b.entered_from = 0;
            b.start = where.index;
            b.state = x < low ? 3 : 2;
            return Step::move;
        case 1: {
            if (!(x > high || x < low)) return Step::wait;
            const bool top = x > high;
            b.state = top ? 2 : 3;
            if (b.entered_from == b.state && duration.accepts(since(where.index, b.start))) {
                b.entered_from = 1;
                if (kind == 2 || kind == (top ? 1u : 0u)) return Step::trigger;
            }
            return Step::move;
        }
        default: {
            const Step inner = WindowInside<T>{{}, high, low}.step(b.inner_state, x);
            if (inner != Step::trigger) return inner;
            if (!(x >= low) && !(x <= high)) return Step::wait;
            if (b.state == 2) {
                b.entered_from = 2;
                if (x >= low) {
                    b.state = 1;
                    b.start = where.index;
                } else {
                    b.state = 3;
                }
            } else {
                b.entered_from = 3;
                if (x <= high) {
                    b.state = 1;
                    b.start = where.index;
                } else {
                    b.state = 2;
                }
            }
            return Step::move;
        }
        }
    }
};

// ---------------------------------------------------------------------------

// What a caller sees over a whole stream.
struct StreamResult {
    std::vector<uint64_t> triggers;  // absolute sample indexes
    int32_t status = 0;              // the first nonzero status, which ends the stream
};

// The caller's loop: each block starts at position 0; a position below the
// block's length is a trigger, after which the search goes on from the next
// sample; otherwise the next block follows. `call(block, length, position)`
// calls the trigger function (the call keeps the state) and returns its
// status. A call that moves the position backwards ends the stream with
// status 1, so a broken function cannot loop forever.
template <class T, class Call>
StreamResult feed_blocks(Call&& call, const T* stream, const std::vector<uint32_t>& block_lengths) {
    StreamResult result;
    uint64_t offset = 0;
    for (uint32_t length : block_lengths) {
        uint32_t position = 0;
        for (;;) {
            uint32_t start = position;
            int32_t status = call(stream + offset, length, position);
            if (status != 0) {
                result.status = status;
                return result;
            }
            if (position < start) {
                result.status = 1;
                return result;
            }
            if (position >= length) break;
            result.triggers.push_back(offset + position);
            position += 1;
        }
        offset += length;
    }
    return result;
}

} // namespace trigger_model
