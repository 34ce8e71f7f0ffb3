// Lazy allocation of the trigger state blocks.

#include "trigger/trigger_state.h"

#include <cstdlib>

namespace trigger {

// calloc, not new: the caller releases the block with zolvex_m_state_free,
// which calls free.
void* acquire_state(void** state, size_t bytes) noexcept {
    if (*state == nullptr) {
        void* block = std::calloc(1, bytes);
        if (block == nullptr) return nullptr;
        *state = block;
    }
    return *state;
}

} // namespace trigger
