#include "worker_pool.h"

#include <algorithm>
#include <limits>

namespace zolvex::tp {

namespace {

thread_local bool t_is_pool_worker = false;

unsigned default_worker_count() {
    const unsigned hardware = std::thread::hardware_concurrency();
    return std::clamp(hardware, 1u, unsigned{std::numeric_limits<std::uint16_t>::max()});
}

}  // namespace

WorkerPool& WorkerPool::instance() {
    // Deliberately never destroyed: workers of a pool nobody stopped are still
    // blocked on its mutex while static destructors run at exit.
    static WorkerPool* const pool = new WorkerPool;
    return *pool;
}

bool WorkerPool::acquire() {
    std::unique_lock lock(lifecycle_mutex_);
    if (!wait_until_not_stopping(lock)) {
        return false;
    }
    if (references_ == 0) {
        start_workers(lock, default_worker_count());
    }
    ++references_;
    return true;
}

bool WorkerPool::release() {
    std::unique_lock lock(lifecycle_mutex_);
    if (!wait_until_not_stopping(lock)) {
        return false;
    }
    if (references_ == 0) {
        return true;
    }
    if (references_ == 1 && t_is_pool_worker) {
        return false;
    }
    if (--references_ == 0) {
        stop_workers(lock);
    }
    return true;
}

bool WorkerPool::wait_until_not_stopping(std::unique_lock<std::mutex>& lock) {
    // A worker draining the queue for a stop is one of the threads being
    // joined, so making it wait for the stop would deadlock.
    if (t_is_pool_worker) {
        return !stopping_;
    }
    lifecycle_cv_.wait(lock, [this] { return !stopping_; });
    return true;
}

void WorkerPool::start_workers(std::unique_lock<std::mutex>& lock, unsigned count) {
    set_accepting(true);
    try {
        workers_.reserve(count);
        for (unsigned i = 0; i < count; ++i) {
            workers_.emplace_back([this] { worker_loop(); });
        }
    } catch (...) {
        stop_workers(lock);
        throw;
    }
    threads_.store(static_cast<std::uint16_t>(workers_.size()), std::memory_order_relaxed);
}

void WorkerPool::stop_workers(std::unique_lock<std::mutex>& lock) {
    stopping_ = true;
    set_accepting(false);
    std::vector<std::thread> stopping_workers = std::move(workers_);
    workers_.clear();
    // Joining without the lock lets draining tasks call init/fini (they get
    // -1) instead of blocking on a mutex held by the thread joining them.
    lock.unlock();
    for (std::thread& worker : stopping_workers) {
        worker.join();
    }
    lock.lock();
    threads_.store(0, std::memory_order_relaxed);
    stopping_ = false;
    lifecycle_cv_.notify_all();
}

void WorkerPool::set_accepting(bool accepting) {
    {
        std::lock_guard lock(queue_mutex_);
        accepting_ = accepting;
    }
    queue_cv_.notify_all();
}

bool WorkerPool::submit(const std::shared_ptr<Task>& task) {
    {
        std::lock_guard lock(queue_mutex_);
        if (!accepting_) {
            return false;
        }
        queue_.push_back(task);
        queued_.fetch_add(1, std::memory_order_relaxed);
    }
    queue_cv_.notify_one();
    return true;
}

void WorkerPool::worker_loop() {
    t_is_pool_worker = true;
    while (const std::shared_ptr<Task> task = next_claimed_task()) {
        run_claimed(*task);
    }
}

std::shared_ptr<Task> WorkerPool::next_claimed_task() {
    std::unique_lock lock(queue_mutex_);
    for (;;) {
        // Workers leave only once the queue is empty, which is how the last
        // fini lets already queued tasks finish.
        queue_cv_.wait(lock, [this] { return !queue_.empty() || !accepting_; });
        if (queue_.empty()) {
            return nullptr;
        }
        std::shared_ptr<Task> task = std::move(queue_.front());
        queue_.pop_front();
        if (claim(*task)) {
            return task;
        }
    }
}

bool WorkerPool::claim(Task& task) noexcept {
    if (!task.try_claim()) {
        return false;
    }
    queued_.fetch_sub(1, std::memory_order_relaxed);
    running_.fetch_add(1, std::memory_order_relaxed);
    return true;
}

void WorkerPool::run_claimed(Task& task) {
    task.execute();
    // Decrement before waking waiters so a status read right after a
    // successful wait no longer counts this task.
    running_.fetch_sub(1, std::memory_order_relaxed);
    task.mark_done();
}

bool WorkerPool::wait(Task& task, std::uint32_t timeout_ms) {
    // Only pool-submitted tasks can still be queued here: inline tasks are
    // finished before their handle is handed out.
    if (claim(task)) {
        run_claimed(task);
        return true;
    }
    return task.wait_done(timeout_ms);
}

zolvex_tp_status WorkerPool::status() const noexcept {
    zolvex_tp_status status{};
    status.threads = threads_.load(std::memory_order_relaxed);
    status.queued = queued_.load(std::memory_order_relaxed);
    status.running = running_.load(std::memory_order_relaxed);
    return status;
}

}  // namespace zolvex::tp
