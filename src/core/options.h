#pragma once
// Process-wide option flags. They are read on every call by the kernel
// choosers and written by zolvex_m_init / zolvex_m_setopt without a lock:
// relaxed atomic bytes keep that race well defined at no cost.

#include <atomic>
#include <cstdint>

#include "zolvex_m.h"

namespace core {

// Indexed by option id; slots 0 and 13 exist but are never used.
constexpr uint32_t kOptionSlots = 19;
extern std::atomic<uint8_t> g_option_flags[kOptionSlots];

inline bool option_on(uint32_t id) noexcept {
    return g_option_flags[id].load(std::memory_order_relaxed) != 0;
}

inline void set_option_flag(uint32_t id, bool on) noexcept {
    g_option_flags[id].store(on ? 1 : 0, std::memory_order_relaxed);
}

// The kernel regimes that need two flags together.
inline bool avx2_fma3_on() noexcept {
    return option_on(ZOLVEX_M_OPT_AVX2) && option_on(ZOLVEX_M_OPT_FMA3);
}
inline bool avx512f_cd_on() noexcept {
    return option_on(ZOLVEX_M_OPT_AVX512F) && option_on(ZOLVEX_M_OPT_AVX512CD);
}

// Sets every processor option to what the processor (and OS) supports.
void read_processor_options() noexcept;

// Re-chooses the kernel dispatch tables (abs, convert, shr_clip, in that
// order) from the current flags.
void choose_dispatch_tables() noexcept;

} // namespace core
