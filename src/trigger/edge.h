#pragma once
// The edge triggers' state machines, one per kind, over the sample type.
// Levels are compared exactly as written below (strict only where a state
// arms), so a NaN sample satisfies no state and is passed over.
//
// find() and hit() take any block whose `state` field is the edge state, so
// that the interval triggers can run an edge search on their own block.

#include <cstdint>

#include "trigger/scan.h"
#include "trigger/trigger_state.h"

namespace trigger {

// Advances an edge state that has found its sample: the last state triggers
// and starts over at 0, any other arms the next one.
template <class Block>
Next advance_edge(Block& block, uint32_t last_state) {
    if (block.state == last_state) {
        block.state = 0;
        return Next::trigger;
    }
    block.state += 1;
    return Next::same_sample;
}

// Rising: 0 idle, waits for x < arm (strictly below, so that a signal resting
// on the arm level does not arm); 1 armed below, waits for x >= arm; 2 above
// the arm level, waits for x >= trigger_level and triggers there. Once in 2
// it never falls back: crossing the arm level again does not disarm.
template <class T>
struct EdgeRising {
    using Sample = T;
    using Block = TriggerState;
    static bool valid(const Block& block) { return block.state <= 2; }

    template <class B>
    uint32_t find(const B& block, const T* x, uint32_t from, uint32_t length) const {
        switch (block.state) {
        case 0: return scans.lt(x, from, length, arm);
        case 1: return scans.ge(x, from, length, arm);
        default: return scans.ge(x, from, length, level);
        }
    }
    template <class B>
    Next hit(B& block, uint32_t, T) const { return advance_edge(block, 2); }

    ScanSet<T> scans;
    T arm;
    T level;
};

// Falling: the mirror image (0 waits for x > arm, 1 for x <= arm, 2 for
// x <= trigger_level).
template <class T>
struct EdgeFalling {
    using Sample = T;
    using Block = TriggerState;
    static bool valid(const Block& block) { return block.state <= 2; }

    template <class B>
    uint32_t find(const B& block, const T* x, uint32_t from, uint32_t length) const {
        switch (block.state) {
        case 0: return scans.gt(x, from, length, arm);
        case 1: return scans.le(x, from, length, arm);
        default: return scans.le(x, from, length, level);
        }
    }
    template <class B>
    Next hit(B& block, uint32_t, T) const { return advance_edge(block, 2); }

    ScanSet<T> scans;
    T arm;
    T level;
};

// Any: 0 idle, waits for the signal to leave the band [arm_low, arm_high];
// above it arms high (1), below it arms low (2); a sample that is both (only
// with arm_high below arm_low) arms high. 1 waits for x <= arm_high, then 3
// for x <= trigger_level; 2 waits for x >= arm_low, then 4 for
// x >= trigger_level.
template <class T>
struct EdgeAny {
    using Sample = T;
    using Block = TriggerState;
    static bool valid(const Block& block) { return block.state <= 4; }

    uint32_t find(const Block& block, const T* x, uint32_t from, uint32_t length) const {
        switch (block.state) {
        case 0: return scans.outside(x, from, length, arm_high, arm_low);
        case 1: return scans.le(x, from, length, arm_high);
        case 2: return scans.ge(x, from, length, arm_low);
        case 3: return scans.le(x, from, length, level);
        default: return scans.ge(x, from, length, level);
        }
    }
    Next hit(Block& block, uint32_t, T x) const {
        switch (block.state) {
        case 0: block.state = x > arm_high ? 1 : 2; return Next::same_sample;
        case 1: block.state = 3; return Next::same_sample;
        case 2: block.state = 4; return Next::same_sample;
        default: block.state = 0; return Next::trigger;
        }
    }

    ScanSet<T> scans;
    T arm_high;
    T arm_low;
    T level;
};

} // namespace trigger
