#pragma once
// How the generators cut an index range over threads: one piece per
// processor the standard library reports, capped at the length, each piece
// made of consecutive elements (core::piece_of); blocks shorter than
// `min_length` stay on the calling thread, where waking the pool would cost
// more than it saves. Every element depends only on its own index, so the
// values never depend on the split.

#include <cstdint>

#include "core/parallel.h"

namespace generate {

inline uint32_t pieces_for(uint32_t n, uint32_t min_length) noexcept {
    return n < min_length ? 1u : core::hardware_threads();
}

template <class Work>
void split_work(uint32_t n, uint32_t min_length, const Work& work) noexcept {
    core::run_pieces(n, pieces_for(n, min_length), work);
}

} // namespace generate
