#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

#include "zolvex/zolvex_tp.h"

namespace zolvex_tp_test {

struct TaskDeleter {
    void operator()(zolvex_tp_task* task) const { zolvex_tp_task_delete(task); }
};
using TaskHandle = std::unique_ptr<zolvex_tp_task, TaskDeleter>;

template <class Callable>
void invoke_callable(void* callable) {
    (*static_cast<Callable*>(callable))();
}

// The callable is borrowed, not copied: it must outlive the task.
template <class Callable>
TaskHandle submit(Callable& callable) {
    return TaskHandle(zolvex_tp_context_new_task(nullptr, &invoke_callable<Callable>, &callable));
}

inline zolvex_tp_status pool_status() {
    zolvex_tp_status status{};
    EXPECT_EQ(zolvex_tp_get_status(&status, sizeof status), 0);
    return status;
}

inline unsigned expected_worker_count() {
    return std::max(1u, std::thread::hardware_concurrency());
}

// A hung pool would otherwise hang the whole test binary; aborting turns a
// deadlock into a visible failure.
template <class Body>
void run_bounded(Body&& body, std::chrono::seconds limit = std::chrono::seconds(30)) {
    std::promise<void> finished;
    std::future<void> done = finished.get_future();
    std::thread runner([&] {
        body();
        finished.set_value();
    });
    if (done.wait_for(limit) != std::future_status::ready) {
        std::fprintf(stderr, "test body did not finish within %llds: deadlock suspected\n",
                     static_cast<long long>(limit.count()));
        std::abort();
    }
    runner.join();
}

// Occupies every worker with a task that blocks until release(), so tasks
// submitted afterwards stay queued and the test controls who runs them.
class BlockedWorkers {
public:
    explicit BlockedWorkers(unsigned workers) : started_(workers) {
        for (unsigned i = 0; i < workers; ++i) {
            handles_.push_back(submit(blocker_));
        }
        started_.wait();
    }

    BlockedWorkers(const BlockedWorkers&) = delete;
    BlockedWorkers& operator=(const BlockedWorkers&) = delete;

    ~BlockedWorkers() { release(); }

    void release() {
        if (!released_) {
            released_ = true;
            release_.count_down();
        }
    }

private:
    std::latch started_;
    std::latch release_{1};
    bool released_ = false;
    std::function<void()> blocker_ = [this] {
        started_.count_down();
        release_.wait();
    };
    // Declared last so the handles are deleted (waiting for the blockers)
    // before the latches they use are destroyed.
    std::vector<TaskHandle> handles_;
};

class RunningPool : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(zolvex_tp_init(), 0); }
    void TearDown() override { EXPECT_EQ(zolvex_tp_fini(), 0); }
};

class StoppedPool : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(pool_status().threads, 0) << "an earlier test leaked a reference"; }
    void TearDown() override { EXPECT_EQ(pool_status().threads, 0); }
};

}  // namespace zolvex_tp_test
