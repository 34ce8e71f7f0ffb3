#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "test_support.h"

namespace zolvex_tp_test {
namespace {

struct Slot {
    std::uint64_t index = 0;
    std::uint64_t value = 0;  // deliberately non-atomic: wait() must publish it
    std::atomic<int> runs{0};
};

void fill_slot(void* argument) {
    Slot& slot = *static_cast<Slot*>(argument);
    slot.value += slot.index * slot.index + 1;
    slot.runs.fetch_add(1, std::memory_order_relaxed);
}

void expect_each_slot_filled_once(const std::vector<Slot>& slots) {
    for (const Slot& slot : slots) {
        ASSERT_EQ(slot.runs.load(), 1) << "slot " << slot.index;
        ASSERT_EQ(slot.value, slot.index * slot.index + 1) << "slot " << slot.index;
    }
}

std::vector<Slot> make_slots(std::size_t count) {
    std::vector<Slot> slots(count);
    for (std::size_t i = 0; i < count; ++i) {
        slots[i].index = i;
    }
    return slots;
}

using TaskExecution = RunningPool;

TEST_F(TaskExecution, ManyTasksFromManySubmittersEachRunExactlyOnce) {
    constexpr std::size_t kSubmitters = 4;
    constexpr std::size_t kPerSubmitter = 2500;
    std::vector<Slot> slots = make_slots(kSubmitters * kPerSubmitter);
    run_bounded([&] {
        std::vector<std::thread> submitters;
        for (std::size_t s = 0; s < kSubmitters; ++s) {
            submitters.emplace_back([&, s] {
                std::vector<zolvex_tp_task*> tasks;
                for (std::size_t i = s * kPerSubmitter; i < (s + 1) * kPerSubmitter; ++i) {
                    tasks.push_back(zolvex_tp_context_new_task(nullptr, fill_slot, &slots[i]));
                }
                for (zolvex_tp_task* task : tasks) {
                    EXPECT_EQ(zolvex_tp_wait(task, ZOLVEX_TP_WAIT_INFINITE), 0);
                    EXPECT_EQ(zolvex_tp_task_delete(task), 0);
                }
            });
        }
        for (std::thread& submitter : submitters) {
            submitter.join();
        }
    });
    expect_each_slot_filled_once(slots);
    const zolvex_tp_status status = pool_status();
    EXPECT_EQ(status.queued, 0u);
    EXPECT_EQ(status.running, 0u);
}

// Handles travel from one creating thread to several waiting threads, some
// of which poll with short time-outs instead of waiting for ever.
TEST_F(TaskExecution, TasksCanBeWaitedAndDeletedByOtherThreads) {
    constexpr std::size_t kTasks = 3000;
    std::vector<Slot> slots = make_slots(kTasks);
    std::mutex mutex;
    std::condition_variable ready;
    std::deque<std::pair<zolvex_tp_task*, Slot*>> handed_over;
    bool creator_done = false;

    auto waiter = [&](bool polling) {
        for (;;) {
            std::unique_lock lock(mutex);
            ready.wait(lock, [&] { return !handed_over.empty() || creator_done; });
            if (handed_over.empty()) {
                return;
            }
            auto [task, slot] = handed_over.front();
            handed_over.pop_front();
            lock.unlock();
            if (polling) {
                while (zolvex_tp_wait(task, 1) == 1) {
                }
            } else {
                EXPECT_EQ(zolvex_tp_wait(task, ZOLVEX_TP_WAIT_INFINITE), 0);
            }
            EXPECT_EQ(slot->runs.load(), 1);
            EXPECT_EQ(slot->value, slot->index * slot->index + 1);
            zolvex_tp_task_delete(task);
        }
    };

    run_bounded([&] {
        std::vector<std::thread> waiters;
        for (int i = 0; i < 3; ++i) {
            waiters.emplace_back(waiter, i == 0);
        }
        std::thread creator([&] {
            for (Slot& slot : slots) {
                zolvex_tp_task* task = zolvex_tp_context_new_task(nullptr, fill_slot, &slot);
                std::lock_guard lock(mutex);
                handed_over.emplace_back(task, &slot);
                ready.notify_one();
            }
            std::lock_guard lock(mutex);
            creator_done = true;
            ready.notify_all();
        });
        creator.join();
        for (std::thread& waiter_thread : waiters) {
            waiter_thread.join();
        }
    });
    expect_each_slot_filled_once(slots);
}

TEST_F(TaskExecution, ConcurrentWaitersOnOneTaskAllSeeItDoneOnce) {
    for (int round = 0; round < 200; ++round) {
        Slot slot;
        slot.index = static_cast<std::uint64_t>(round);
        zolvex_tp_task* task = zolvex_tp_context_new_task(nullptr, fill_slot, &slot);
        std::vector<std::thread> waiters;
        for (int i = 0; i < 4; ++i) {
            waiters.emplace_back([&] {
                EXPECT_EQ(zolvex_tp_wait(task, ZOLVEX_TP_WAIT_INFINITE), 0);
                EXPECT_EQ(slot.value, slot.index * slot.index + 1);
            });
        }
        for (std::thread& waiter : waiters) {
            waiter.join();
        }
        zolvex_tp_task_delete(task);
        ASSERT_EQ(slot.runs.load(), 1) << "round " << round;
    }
}

TEST_F(TaskExecution, WaiterRunsQueuedTaskItselfWhenAllWorkersAreBusy) {
    run_bounded([] {
        const unsigned workers = pool_status().threads;
        BlockedWorkers blocked(workers);
        std::atomic<int> runs{0};
        std::atomic<std::thread::id> ran_on;
        auto record = [&] {
            ran_on.store(std::this_thread::get_id());
            runs.fetch_add(1);
        };
        TaskHandle infinite_wait = submit(record);
        TaskHandle polling_wait = submit(record);

        zolvex_tp_status status = pool_status();
        EXPECT_EQ(status.queued, 2u);
        EXPECT_EQ(status.running, status.threads);

        // Even a zero time-out claims a task that has not started.
        ASSERT_EQ(zolvex_tp_wait(polling_wait.get(), 0), 0);
        EXPECT_EQ(ran_on.load(), std::this_thread::get_id());
        ASSERT_EQ(zolvex_tp_wait(infinite_wait.get(), ZOLVEX_TP_WAIT_INFINITE), 0);
        EXPECT_EQ(ran_on.load(), std::this_thread::get_id());
        EXPECT_EQ(pool_status().queued, 0u);

        // Probes queued behind the claimed tasks and awaited through a latch
        // (not zolvex_tp_wait, which would claim them) can only finish once
        // workers have popped the stale entries, which must be skipped.
        std::latch probes_ran{workers};
        auto probe = [&] { probes_ran.count_down(); };
        std::vector<TaskHandle> probes;
        for (unsigned i = 0; i < workers; ++i) {
            probes.push_back(submit(probe));
        }
        blocked.release();
        probes_ran.wait();
        EXPECT_EQ(runs.load(), 2);
    });
}

struct TreeNode {
    int depth = 0;
    std::uint64_t leaves = 0;
};

void count_leaves(void* argument) {
    TreeNode& node = *static_cast<TreeNode*>(argument);
    if (node.depth == 0) {
        node.leaves = 1;
        return;
    }
    TreeNode left{node.depth - 1};
    TreeNode right{node.depth - 1};
    zolvex_tp_task* left_task = zolvex_tp_context_new_task(nullptr, count_leaves, &left);
    zolvex_tp_task* right_task = zolvex_tp_context_new_task(nullptr, count_leaves, &right);
    if (left_task == nullptr || right_task == nullptr) {
        std::abort();
    }
    // Waiting on the later task first means waiters meet both queued tasks
    // (which they claim) and tasks already running elsewhere.
    zolvex_tp_wait(right_task, ZOLVEX_TP_WAIT_INFINITE);
    zolvex_tp_task_delete(left_task);
    zolvex_tp_task_delete(right_task);
    node.leaves = left.leaves + right.leaves;
}

// More blocking roots than workers: without waiters claiming queued
// sub-tasks every worker would sit in a wait and nothing would progress.
TEST_F(TaskExecution, TasksWaitingOnTheirOwnSubtasksNeverDeadlock) {
    constexpr int kDepth = 9;
    const unsigned roots = pool_status().threads * 4;
    std::vector<TreeNode> trees(roots, TreeNode{kDepth});
    run_bounded([&] {
        std::vector<TaskHandle> handles;
        for (TreeNode& tree : trees) {
            handles.emplace_back(zolvex_tp_context_new_task(nullptr, count_leaves, &tree));
        }
        handles.clear();
    });
    for (const TreeNode& tree : trees) {
        EXPECT_EQ(tree.leaves, 1u << kDepth);
    }
}

TEST_F(TaskExecution, TimedWaitReportsTimeoutUntilTaskFinishes) {
    std::latch started{1};
    std::latch release{1};
    auto blocked = [&] {
        started.count_down();
        release.wait();
    };
    run_bounded([&] {
        TaskHandle task = submit(blocked);
        // Only a task already running on a worker can time out; a queued one
        // would be claimed and run by the waiter.
        started.wait();
        EXPECT_EQ(zolvex_tp_wait(task.get(), 0), 1);
        EXPECT_EQ(zolvex_tp_wait(task.get(), 20), 1);
        release.count_down();
        EXPECT_EQ(zolvex_tp_wait(task.get(), ZOLVEX_TP_WAIT_INFINITE), 0);
        EXPECT_EQ(zolvex_tp_wait(task.get(), 0), 0) << "a finished task stays finished";
        EXPECT_EQ(zolvex_tp_wait(task.get(), 20), 0);
    });
}

TEST_F(TaskExecution, DeletingARunningTaskWaitsForItToFinish) {
    for (int round = 0; round < 20; ++round) {
        std::latch started{1};
        std::latch release{1};
        std::atomic<bool> finished{false};
        auto slow = [&] {
            started.count_down();
            release.wait();
            finished.store(true, std::memory_order_relaxed);
        };
        run_bounded([&] {
            zolvex_tp_task* task = submit(slow).release();
            started.wait();
            // The delay only makes it likely that delete is already blocked
            // when the task is released; correctness does not depend on it.
            std::thread releaser([&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                release.count_down();
            });
            EXPECT_EQ(zolvex_tp_task_delete(task), 0);
            EXPECT_TRUE(finished.load(std::memory_order_relaxed)) << "round " << round;
            releaser.join();
        });
    }
}

TEST_F(TaskExecution, InvalidArgumentsAreRejected) {
    EXPECT_EQ(zolvex_tp_context_new_task(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(zolvex_tp_wait(nullptr, 0), -1);
    EXPECT_EQ(zolvex_tp_wait(nullptr, ZOLVEX_TP_WAIT_INFINITE), -1);
    EXPECT_EQ(zolvex_tp_task_delete(nullptr), 0);
}

void throw_from_work(void* argument) {
    static_cast<std::atomic<int>*>(argument)->fetch_add(1);
    throw std::runtime_error("work failed");
}

TEST_F(TaskExecution, ExceptionEscapingWorkIsContainedAndPoolKeepsWorking) {
    std::atomic<int> thrown{0};
    run_bounded([&] {
        std::vector<TaskHandle> tasks;
        for (int i = 0; i < 50; ++i) {
            tasks.emplace_back(zolvex_tp_context_new_task(nullptr, throw_from_work, &thrown));
        }
        for (TaskHandle& task : tasks) {
            EXPECT_EQ(zolvex_tp_wait(task.get(), ZOLVEX_TP_WAIT_INFINITE), 0);
        }
    });
    EXPECT_EQ(thrown.load(), 50);
    Slot after;
    zolvex_tp_task_delete(zolvex_tp_context_new_task(nullptr, fill_slot, &after));
    EXPECT_EQ(after.runs.load(), 1);
}

}  // namespace
}  // namespace zolvex_tp_test
