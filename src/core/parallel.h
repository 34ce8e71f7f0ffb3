#pragma once
// Work split over the sibling thread pool, for the families that divide an
// index range among threads (window functions, waveforms, frequency
// responses). The range [0, n) is cut into `pieces` consecutive pieces of
// n / pieces elements, the n % pieces left over going one each to the first
// pieces. Every piece but the last runs as a pool task and the last on the
// calling thread, which then waits for the others: the call returns when all
// of the work is done. The work must not throw, and its results must depend
// only on the element index, never on the split.

#include <cstdint>

namespace core {

struct IndexRange {
    uint32_t begin, end;
};

// Piece k of [0, n) cut into `pieces` (1 <= pieces, k < pieces).
IndexRange piece_of(uint32_t n, uint32_t pieces, uint32_t k) noexcept;

using PieceWork = void (*)(void* context, IndexRange range) noexcept;

// Runs work(context, piece) for every piece of [0, n); `pieces` is clamped
// to 1 .. max(n, 1). A task the pool cannot take (out of memory) runs on the
// calling thread instead.
void run_pieces(uint32_t n, uint32_t pieces, PieceWork work, void* context) noexcept;

// The same with any callable taking (uint32_t begin, uint32_t end).
template <class Work>
void run_pieces(uint32_t n, uint32_t pieces, const Work& work) noexcept {
    run_pieces(
        n, pieces,
        [](void* context, IndexRange range) noexcept { (*static_cast<const Work*>(context))(range.begin, range.end); },
        const_cast<Work*>(&work));
}

// The processor count the standard library reports (asked once), at least 1.
uint32_t hardware_threads() noexcept;

} // namespace core
