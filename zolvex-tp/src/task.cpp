#include "task.h"

#include <chrono>

namespace zolvex::tp {

Task::Task(zolvex_tp_work_fn work, void* argument) noexcept : work_(work), argument_(argument) {}

bool Task::try_claim() noexcept {
    TaskState expected = TaskState::queued;
    return state_.compare_exchange_strong(expected, TaskState::running, std::memory_order_acq_rel);
}

void Task::execute() noexcept {
    // An exception unwinding into a worker loop or through the C caller of
    // zolvex_tp_wait would terminate the process or be undefined, so it is
    // dropped here as the header documents.
    try {
        work_(argument_);
    } catch (...) {
    }
}

void Task::mark_done() {
    {
        // Publishing under the mutex closes the gap between a waiter's check
        // and its sleep, so the notification cannot be lost.
        std::lock_guard lock(done_mutex_);
        state_.store(TaskState::done, std::memory_order_release);
    }
    done_cv_.notify_all();
}

bool Task::is_done() const noexcept {
    return state_.load(std::memory_order_acquire) == TaskState::done;
}

bool Task::wait_done(std::uint32_t timeout_ms) {
    if (is_done()) {
        return true;
    }
    std::unique_lock lock(done_mutex_);
    if (timeout_ms == ZOLVEX_TP_WAIT_INFINITE) {
        done_cv_.wait(lock, [this] { return is_done(); });
        return true;
    }
    return done_cv_.wait_for(lock, std::chrono::milliseconds(timeout_ms), [this] { return is_done(); });
}

}  // namespace zolvex::tp
