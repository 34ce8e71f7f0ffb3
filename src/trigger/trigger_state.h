#pragma once
// The calling convention every trigger search shares, in one place.
//
// A search follows a signal that arrives block by block, so whatever it has
// learnt so far lives in a state block that the library allocates on the
// first call and the caller hands back with every further block. A call:
//  1. allocates the zero-filled block when *state is null, before anything
//     else (the caller then owns it and frees it with zolvex_m_state_free);
//  2. returns 0 at once when *position is not below length, touching
//     neither the position nor the state word;
//  3. returns -1, writing nothing, when the state word is not one of the
//     kind's states (a block from another kind, or memory gone astray);
//  4. walks the kind's states from *position: each state scans for the first
//     sample that satisfies its condition, and the next state starts at that
//     very sample, so one sample may pass several states;
//  5. on a trigger writes its index to *position and the state the kind
//     takes after a trigger; when the block runs out writes length to
//     *position and keeps the state reached, so the next block (position 0,
//     same state block) goes on from there.
//
// A kind is a Machine:
//
//   struct Machine {
//       using Sample = ...;                        // sample and level type
//       using Block = ...;                         // zero-filled state block
//       static constexpr uint32_t kStates = ...;   // valid: 0 .. kStates - 1
//       static uint32_t& state_word(Block&);
//       // First index in [from, length) that satisfies `state`'s condition,
//       // or length.
//       uint32_t find(uint32_t state, const Sample* x, uint32_t from, uint32_t length) const;
//       // What the sample x at `index` that satisfied `state` leads to.
//       Step hit(Block&, uint32_t state, uint32_t index, Sample x) const;
//       // Optional: called whenever a call returns 0 without a trigger (the
//       // early return included), for blocks that keep indices relative to
//       // the current block.
//       void block_end(Block&, uint32_t length) const;
//   };
//
// A Machine must not let one sample lead round a cycle of states without a
// trigger: the walk continues at the same sample after every hit, so such a
// cycle would never end.

#include <cstddef>
#include <cstdint>

#include "zolvex_m.h"

namespace trigger {

// The state block of the edge and window triggers: the state number only.
struct TriggerState {
    uint32_t state;
};

// What a hit leads to: the next state and whether the search ends here.
struct Step {
    uint32_t next;
    bool trigger;
};

// The block behind *state, allocated zero-filled (and stored) when *state is
// null. nullptr when the allocation fails; *state is then left as it was.
void* acquire_state(void** state, size_t bytes) noexcept;

// Outcome of walking one block: the trigger index, or length.
template <class Machine>
uint32_t walk_states(const Machine& machine, typename Machine::Block& block, uint32_t& state,
                     const typename Machine::Sample* x, uint32_t from, uint32_t length) {
    uint32_t i = from;
    for (;;) {
        i = machine.find(state, x, i, length);
        if (i >= length) return length;
        Step step = machine.hit(block, state, i, x[i]);
        state = step.next;
        if (step.trigger) return i;
    }
}

template <class Machine>
int32_t run_trigger(const typename Machine::Sample* x, uint32_t length, uint32_t* position, void** state,
                    const Machine& machine) {
    using Block = typename Machine::Block;
    auto* block = static_cast<Block*>(acquire_state(state, sizeof(Block)));
    if (block == nullptr) return ZOLVEX_M_STATUS_OUT_OF_MEMORY;
    constexpr bool kHasBlockEnd = requires(const Machine& m, Block& b, uint32_t n) { m.block_end(b, n); };
    if (*position >= length) {
        if constexpr (kHasBlockEnd) machine.block_end(*block, length);
        return ZOLVEX_M_STATUS_SUCCESS;
    }
    uint32_t& word = Machine::state_word(*block);
    if (word >= Machine::kStates) return ZOLVEX_M_STATUS_FAILED;
    uint32_t current = word;
    uint32_t found = walk_states(machine, *block, current, x, *position, length);
    word = current;
    if (found >= length) {
        if constexpr (kHasBlockEnd) machine.block_end(*block, length);
        *position = length;
    } else {
        *position = found;
    }
    return ZOLVEX_M_STATUS_SUCCESS;
}

} // namespace trigger
