#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "zolvex/zolvex_tp.h"

namespace zolvex::tp {

enum class TaskState : std::uint8_t { queued, running, done };

// One unit of work shared between the caller's handle, the queue and
// whichever thread runs it; lifetime is managed by std::shared_ptr so none of
// them can observe a freed task.
class Task {
public:
    Task(zolvex_tp_work_fn work, void* argument) noexcept;

    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;

    // Exactly one caller wins, which is what keeps a task from running twice
    // when a worker and a waiter race for it.
    bool try_claim() noexcept;

    // Only for the thread whose try_claim() succeeded.
    void execute() noexcept;
    void mark_done();

    // Returns false on time-out.
    bool wait_done(std::uint32_t timeout_ms);

private:
    bool is_done() const noexcept;

    zolvex_tp_work_fn work_;
    void* argument_;
    std::atomic<TaskState> state_{TaskState::queued};
    std::mutex done_mutex_;
    std::condition_variable done_cv_;
};

}  // namespace zolvex::tp
