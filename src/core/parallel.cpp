#include "core/parallel.h"

#include <thread>
#include <vector>

#include "zolvex/zolvex_tp.h"

namespace core {

namespace {

struct PieceTask {
    PieceWork work;
    void* context;
    IndexRange range;
    static void run(void* argument) noexcept {
        auto* task = static_cast<PieceTask*>(argument);
        task->work(task->context, task->range);
    }
};

} // namespace

IndexRange piece_of(uint32_t n, uint32_t pieces, uint32_t k) noexcept {
    const uint32_t size = n / pieces, extra = n % pieces;
    const uint32_t begin = k * size + (k < extra ? k : extra);
    return {begin, begin + size + (k < extra ? 1u : 0u)};
}

void run_pieces(uint32_t n, uint32_t pieces, PieceWork work, void* context) noexcept {
    if (pieces > n) pieces = n;
    if (pieces <= 1) {
        work(context, {0, n});
        return;
    }
    std::vector<PieceTask> tasks;
    std::vector<zolvex_tp_task*> handles;
    try {
        tasks.reserve(pieces);
        handles.reserve(pieces - 1);
    } catch (...) {
        work(context, {0, n});  // no memory for the bookkeeping: one piece
        return;
    }
    for (uint32_t k = 0; k < pieces; ++k) tasks.push_back({work, context, piece_of(n, pieces, k)});
    for (uint32_t k = 0; k + 1 < pieces; ++k) {
        zolvex_tp_task* handle = zolvex_tp_context_new_task(nullptr, PieceTask::run, &tasks[k]);
        if (handle == nullptr)
            PieceTask::run(&tasks[k]);
        else
            handles.push_back(handle);
    }
    PieceTask::run(&tasks.back());
    for (zolvex_tp_task* handle : handles) zolvex_tp_task_delete(handle);
}

// Asked once: the query is a system call, too slow for every short block.
uint32_t hardware_threads() noexcept {
    static const uint32_t count = [] {
        unsigned reported = std::thread::hardware_concurrency();
        return reported == 0 ? 1u : reported;
    }();
    return count;
}

} // namespace core
