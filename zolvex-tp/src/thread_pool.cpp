// C entry points: translate between handles and tasks and keep every
// exception on this side of the boundary.
#include <cstring>
#include <memory>
#include <new>

#include "task.h"
#include "worker_pool.h"
#include "zolvex/zolvex_tp.h"

struct zolvex_tp_task {
    std::shared_ptr<zolvex::tp::Task> task;
};

namespace {

using zolvex::tp::Task;
using zolvex::tp::WorkerPool;

void run_inline(Task& task) {
    task.try_claim();
    task.execute();
    task.mark_done();
}

}  // namespace

extern "C" {

int32_t zolvex_tp_init(void) {
    try {
        return WorkerPool::instance().acquire() ? 0 : -1;
    } catch (...) {
        return -1;
    }
}

int32_t zolvex_tp_fini(void) {
    try {
        return WorkerPool::instance().release() ? 0 : -1;
    } catch (...) {
        return -1;
    }
}

int32_t zolvex_tp_get_status(void* record, uint32_t size) {
    if (record == nullptr || size < sizeof(zolvex_tp_status)) {
        return -1;
    }
    try {
        const zolvex_tp_status status = WorkerPool::instance().status();
        std::memcpy(record, &status, sizeof status);
        return 0;
    } catch (...) {
        // Only reachable if creating the pool singleton itself runs out of memory.
        return -1;
    }
}

zolvex_tp_task* zolvex_tp_context_new_task(void* /*context*/, zolvex_tp_work_fn work, void* argument) {
    if (work == nullptr) {
        return nullptr;
    }
    try {
        auto handle = std::make_unique<zolvex_tp_task>();
        handle->task = std::make_shared<Task>(work, argument);
        if (!WorkerPool::instance().submit(handle->task)) {
            run_inline(*handle->task);
        }
        return handle.release();
    } catch (...) {
        return nullptr;
    }
}

int32_t zolvex_tp_wait(zolvex_tp_task* task, uint32_t timeout_ms) {
    if (task == nullptr) {
        return -1;
    }
    try {
        return WorkerPool::instance().wait(*task->task, timeout_ms) ? 0 : 1;
    } catch (...) {
        return -1;
    }
}

int32_t zolvex_tp_task_delete(zolvex_tp_task* task) {
    if (task == nullptr) {
        return 0;
    }
    // If the wait fails the queue or a worker still co-owns the task, so
    // releasing the handle remains safe.
    const int32_t result = zolvex_tp_wait(task, ZOLVEX_TP_WAIT_INFINITE) == 0 ? 0 : -1;
    delete task;
    return result;
}

}  // extern "C"
