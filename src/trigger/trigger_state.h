#pragma once
// The calling convention every trigger search shares, in one place.
//
// A search follows a signal that arrives block by block, so whatever it has
// learnt so far lives in a state block that the library allocates on the
// first call and the caller hands back with every further block. A call:
//  1. allocates the zero-filled block when *state is null, before anything
//     else (the caller then owns it and frees it with zolvex_m_state_free);
//  2. returns 0 at once when *position is not below length, leaving the
//     position as it is (kinds that keep indices relative to the current
//     block still shift them by length, as at every block end);
//  3. returns -1, writing nothing, when a field of the block holds a value
//     the kind never stores (a block from another kind, or memory gone
//     astray);
//  4. walks the kind's states from *position: each state scans for the first
//     sample that satisfies its condition, and the next state usually starts
//     at that very sample, so one sample may pass several states;
//  5. on a trigger writes its index to *position, leaving the block as the
//     kind leaves it after a trigger; when the block runs out writes length
//     to *position and keeps the state reached, so the next block (position
//     0, same state block) goes on from there.
//
// A kind is a Machine:
//
//   struct Machine {
//       using Sample = ...;                  // sample and level type
//       using Block = ...;                   // zero-filled state block
//       static bool valid(const Block&);     // every field in its range
//       // First index in [from, length) that the block's current state
//       // waits for, or length.
//       uint32_t find(const Block&, const Sample* x, uint32_t from, uint32_t length) const;
//       // Moves the block on for the sample x at `index` that was found, and
//       // says where the walk goes from there.
//       Next hit(Block&, uint32_t index, Sample x) const;
//       // Optional: called once before the walk, for a kind whose first
//       // state looks at the sample at the start position before it scans.
//       void begin(Block&, const Sample* x, uint32_t from) const;
//       // Optional: called whenever a call returns 0 without a trigger (the
//       // early return included), for blocks that keep indices relative to
//       // the current block.
//       void block_end(Block&, uint32_t length) const;
//   };
//
// A Machine must not let one sample lead round a cycle of states with
// Next::same_sample: the walk would never end. Where a kind's states could
// do that, the Machine answers Next::next_sample to break the cycle.

#include <cstddef>
#include <cstdint>

#include "zolvex_m.h"

namespace trigger {

// The state block of the edge and window triggers: the state number only.
struct TriggerState {
    uint32_t state;
};

// The state block of the pulse-width and interval triggers. start is the
// index where the measured duration began, relative to the first sample of
// the block being searched (negative once that lies in an earlier block).
struct PulseState {
    uint32_t state;
    uint32_t phase;  // interval: 1 once the first edge was seen
    int64_t start;
};

// What follows a hit.
enum class Next {
    same_sample,  // the next state tests the same sample
    next_sample,  // the walk goes on after this sample
    trigger,      // the search ends here
};

// The block behind *state, allocated zero-filled (and stored) when *state is
// null. nullptr when the allocation fails; *state is then left as it was.
void* acquire_state(void** state, size_t bytes) noexcept;

// Outcome of walking one block: the trigger index, or length.
template <class Machine>
uint32_t walk_states(const Machine& machine, typename Machine::Block& block, const typename Machine::Sample* x,
                     uint32_t from, uint32_t length) {
    uint32_t i = from;
    for (;;) {
        i = machine.find(block, x, i, length);
        if (i >= length) return length;
        switch (machine.hit(block, i, x[i])) {
        case Next::trigger: return i;
        case Next::next_sample: ++i; break;
        case Next::same_sample: break;
        }
    }
}

template <class Machine>
int32_t run_trigger(const typename Machine::Sample* x, uint32_t length, uint32_t* position, void** state,
                    const Machine& machine) {
    using Block = typename Machine::Block;
    auto* block = static_cast<Block*>(acquire_state(state, sizeof(Block)));
    if (block == nullptr) return ZOLVEX_M_STATUS_OUT_OF_MEMORY;
    auto block_end = [&] {
        if constexpr (requires(const Machine& m, Block& b, uint32_t n) { m.block_end(b, n); })
            machine.block_end(*block, length);
    };
    if (*position >= length) {
        block_end();
        return ZOLVEX_M_STATUS_SUCCESS;
    }
    if (!Machine::valid(*block)) return ZOLVEX_M_STATUS_FAILED;
    if constexpr (requires(const Machine& m, Block& b) { m.begin(b, x, *position); })
        machine.begin(*block, x, *position);
    uint32_t found = walk_states(machine, *block, x, *position, length);
    if (found >= length) block_end();
    *position = found;
    return ZOLVEX_M_STATUS_SUCCESS;
}

// Shifts a block-relative start index to the next block. The subtraction
// wraps (in unsigned arithmetic: a caller's block may hold any start, and
// only its low 32 bits matter to a duration).
inline void shift_to_next_block(int64_t& start, uint32_t length) {
    start = static_cast<int64_t>(static_cast<uint64_t>(start) - length);
}

// Whether a measured duration d (in samples) satisfies the mode of a
// pulse-width, interval or runt search. All comparisons are unsigned 32-bit;
// modes 1 and 2 use time_min only; any other mode, a negative one read as
// unsigned included, never fires.
inline bool duration_accepted(int32_t mode, uint32_t d, uint32_t time_min, uint32_t time_max) {
    switch (static_cast<uint32_t>(mode)) {
    case 0: return true;
    case 1: return d < time_min;
    case 2: return d > time_min;
    case 3: return time_min <= d && d <= time_max;
    case 4: return d < time_min || d > time_max;
    default: return false;
    }
}

// A duration from a block-relative start to index: index minus the low 32
// bits of start, wrapping above 2^32 - 1 samples.
inline uint32_t duration_to(uint32_t index, int64_t start) {
    return index - static_cast<uint32_t>(static_cast<uint64_t>(start));
}

} // namespace trigger
