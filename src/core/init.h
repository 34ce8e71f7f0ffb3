#pragma once
// Read-only views of the initialisation state, for the library's own use.

#include <cstdint>

namespace core {

uint32_t init_count() noexcept;
// Pool threads reported by the thread pool at the first init (at least 1).
uint16_t pool_thread_count() noexcept;

} // namespace core
