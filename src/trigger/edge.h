#pragma once
// The edge triggers' state machines, one per kind, over the sample type.
// Levels are compared exactly as written below (strict only where a state
// arms), so a NaN sample satisfies no state and is passed over.

#include <cstdint>

#include "trigger/scan.h"
#include "trigger/trigger_state.h"

namespace trigger {

// Rising: 0 idle, waits for x < arm (strictly below, so that a signal resting
// on the arm level does not arm); 1 armed below, waits for x >= arm; 2 above
// the arm level, waits for x >= trigger_level and triggers there. Once in 2
// it never falls back: crossing the arm level again does not disarm.
template <class T>
struct EdgeRising {
    using Sample = T;
    using Block = TriggerState;
    static constexpr uint32_t kStates = 3;
    static uint32_t& state_word(Block& block) { return block.state; }

    uint32_t find(uint32_t state, const T* x, uint32_t from, uint32_t length) const {
        switch (state) {
        case 0: return scans.lt(x, from, length, arm);
        case 1: return scans.ge(x, from, length, arm);
        default: return scans.ge(x, from, length, level);
        }
    }
    Step hit(Block&, uint32_t state, uint32_t, T) const { return state == 2 ? Step{0, true} : Step{state + 1, false}; }

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
    static constexpr uint32_t kStates = 3;
    static uint32_t& state_word(Block& block) { return block.state; }

    uint32_t find(uint32_t state, const T* x, uint32_t from, uint32_t length) const {
        switch (state) {
        case 0: return scans.gt(x, from, length, arm);
        case 1: return scans.le(x, from, length, arm);
        default: return scans.le(x, from, length, level);
        }
    }
    Step hit(Block&, uint32_t state, uint32_t, T) const { return state == 2 ? Step{0, true} : Step{state + 1, false}; }

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
    static constexpr uint32_t kStates = 5;
    static uint32_t& state_word(Block& block) { return block.state; }

    uint32_t find(uint32_t state, const T* x, uint32_t from, uint32_t length) const {
        switch (state) {
        case 0: return scans.outside(x, from, length, arm_high, arm_low);
        case 1: return scans.le(x, from, length, arm_high);
        case 2: return scans.ge(x, from, length, arm_low);
        default: return state == 3 ? scans.le(x, from, length, level) : scans.ge(x, from, length, level);
        }
    }
    Step hit(Block&, uint32_t state, uint32_t, T x) const {
        switch (state) {
        case 0: return Step{x > arm_high ? 1u : 2u, false};
        case 1: return Step{3, false};
        case 2: return Step{4, false};
        default: return Step{0, true};
        }
    }

    ScanSet<T> scans;
    T arm_high;
    T arm_low;
    T level;
};

} // namespace trigger
