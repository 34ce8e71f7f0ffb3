#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "task.h"
#include "zolvex/zolvex_tp.h"

namespace zolvex::tp {

class WorkerPool {
public:
    static WorkerPool& instance();

    // Both return false, changing nothing, when called from a pool task while
    // the pool is stopping, or (release) when that task would drop the last
    // reference, because a worker cannot join itself.
    bool acquire();
    bool release();

    // Returns false when the pool is stopped; the caller must run the task.
    bool submit(const std::shared_ptr<Task>& task);

    // Runs the task in the calling thread if it has not started, otherwise
    // waits for it. Returns false on time-out.
    bool wait(Task& task, std::uint32_t timeout_ms);

    zolvex_tp_status status() const noexcept;

private:
    WorkerPool() = default;

    bool wait_until_not_stopping(std::unique_lock<std::mutex>& lock);
    void start_workers(std::unique_lock<std::mutex>& lock, unsigned count);
    void stop_workers(std::unique_lock<std::mutex>& lock);
    void set_accepting(bool accepting);
    void worker_loop();
    std::shared_ptr<Task> next_claimed_task();
    bool claim(Task& task) noexcept;
    void run_claimed(Task& task);

    std::mutex lifecycle_mutex_;
    std::condition_variable lifecycle_cv_;
    unsigned references_ = 0;
    bool stopping_ = false;
    std::vector<std::thread> workers_;

    std::mutex queue_mutex_;
    std::condition_variable queue_cv_;
    // Tasks claimed by a waiter stay here until a worker pops and skips them.
    std::deque<std::shared_ptr<Task>> queue_;
    bool accepting_ = false;

    std::atomic<std::uint16_t> threads_{0};
    std::atomic<std::uint32_t> queued_{0};
    std::atomic<std::uint32_t> running_{0};
};

}  // namespace zolvex::tp
