#pragma once
// A reference model of the trigger searches, one sample at a time, written
// from their state tables and independent of the library's kernels.
//
// A machine says, for a state and a sample, whether that state keeps
// waiting, moves on to another state (which then tests the same sample
// again), or triggers at the sample. run() wraps a machine in the common
// calling convention of the trigger functions; feed_blocks() is the caller's
// loop over a stream delivered block by block. Later trigger kinds (window,
// pulse, runt) only need a machine of their own.

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace trigger_model {

// What one state does with one sample.
struct Step {
    enum Kind { wait, move, trigger };
    Kind kind;
    uint32_t next;  // the state after a move or a trigger
};

constexpr Step keep_waiting() { return {Step::wait, 0}; }
constexpr Step move_to(uint32_t state) { return {Step::move, state}; }
constexpr Step trigger_then(uint32_t state) { return {Step::trigger, state}; }

// The outcome of one call: status, the position written, the state word.
struct Outcome {
    int32_t status;
    uint32_t position;
    uint32_t state;
    friend bool operator==(const Outcome&, const Outcome&) = default;
};

// One call of a trigger function on data[0..length) from `position` in
// `state`. Plain comparisons on the sample type: a NaN sample satisfies no
// condition.
template <class Machine, class T>
Outcome run(const Machine& machine, const T* data, uint32_t length, uint32_t position, uint32_t state) {
    if (position >= length) return {0, position, state};
    if (state >= Machine::state_count) return {-1, position, state};
    for (uint32_t i = position; i < length; ++i) {
        // A sample may pass through several states, but never back: the
        // tables move forward within one sample.
        for (uint32_t moves = 0;; ++moves) {
            if (moves > Machine::state_count) throw std::logic_error("trigger model: a state cycle on one sample");
            Step step = machine.step(state, data[i]);
            if (step.kind == Step::wait) break;
            if (step.kind == Step::trigger) return {0, i, step.next};
            state = step.next;
        }
    }
    return {0, length, state};
}

// Edge rising: arm strictly below arm_level, rise to it, trigger at or above
// trigger_level; armed never disarms.
template <class T>
struct EdgeRising {
    static constexpr uint32_t state_count = 3;
    T arm_level, trigger_level;
    Step step(uint32_t state, T x) const {
        switch (state) {
        case 0: return x < arm_level ? move_to(1) : keep_waiting();
        case 1: return x >= arm_level ? move_to(2) : keep_waiting();
        default: return x >= trigger_level ? trigger_then(0) : keep_waiting();
        }
    }
};

// Edge falling, the mirror image.
template <class T>
struct EdgeFalling {
    static constexpr uint32_t state_count = 3;
    T arm_level, trigger_level;
    Step step(uint32_t state, T x) const {
        switch (state) {
        case 0: return x > arm_level ? move_to(1) : keep_waiting();
        case 1: return x <= arm_level ? move_to(2) : keep_waiting();
        default: return x <= trigger_level ? trigger_then(0) : keep_waiting();
        }
    }
};

// Edge any: 0 idle, 1 armed high, 2 armed low, 3 falling through, 4 rising
// through. A sample above the high level and below the low one takes the
// high branch.
template <class T>
struct EdgeAny {
    static constexpr uint32_t state_count = 5;
    T arm_level_high, arm_level_low, trigger_level;
    Step step(uint32_t state, T x) const {
        switch (state) {
        case 0:
            if (x > arm_level_high) return move_to(1);
            if (x < arm_level_low) return move_to(2);
            return keep_waiting();
        case 1: return x <= arm_level_high ? move_to(3) : keep_waiting();
        case 2: return x >= arm_level_low ? move_to(4) : keep_waiting();
        case 3: return x <= trigger_level ? trigger_then(0) : keep_waiting();
        default: return x >= trigger_level ? trigger_then(0) : keep_waiting();
        }
    }
};

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
