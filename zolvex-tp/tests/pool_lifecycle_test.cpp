#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "test_support.h"

namespace zolvex_tp_test {
namespace {

void count_run(void* argument) {
    static_cast<std::atomic<int>*>(argument)->fetch_add(1, std::memory_order_relaxed);
}

using PoolLifecycle = StoppedPool;

TEST_F(PoolLifecycle, WithoutInitTasksRunInlineOnTheCallingThread) {
    std::thread::id ran_on;
    auto record = [&] { ran_on = std::this_thread::get_id(); };
    TaskHandle task = submit(record);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(ran_on, std::this_thread::get_id()) << "must have run before new_task returned";
    EXPECT_EQ(zolvex_tp_wait(task.get(), 0), 0);
    const zolvex_tp_status status = pool_status();
    EXPECT_EQ(status.queued, 0u);
    EXPECT_EQ(status.running, 0u);
}

TEST_F(PoolLifecycle, ReferencesNestAndUnmatchedFiniIsIgnored) {
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(zolvex_tp_init(), 0);
    }
    EXPECT_EQ(pool_status().threads, expected_worker_count());
    EXPECT_EQ(zolvex_tp_fini(), 0);
    EXPECT_EQ(zolvex_tp_fini(), 0);
    EXPECT_EQ(pool_status().threads, expected_worker_count()) << "one reference is still held";
    EXPECT_EQ(zolvex_tp_fini(), 0);
    EXPECT_EQ(pool_status().threads, 0);

    EXPECT_EQ(zolvex_tp_fini(), 0);
    EXPECT_EQ(zolvex_tp_fini(), 0);
    // Had the extra finis driven the count negative, this init would not
    // start the pool.
    ASSERT_EQ(zolvex_tp_init(), 0);
    EXPECT_EQ(pool_status().threads, expected_worker_count());
    EXPECT_EQ(zolvex_tp_fini(), 0);
}

TEST_F(PoolLifecycle, EachInitAfterFiniStartsFreshWorkers) {
    run_bounded([] {
        for (int cycle = 0; cycle < 20; ++cycle) {
            ASSERT_EQ(zolvex_tp_init(), 0);
            const unsigned workers = pool_status().threads;
            ASSERT_EQ(workers, expected_worker_count());
            {
                // Constructing this only returns once every worker is running
                // one of its tasks concurrently.
                BlockedWorkers all_busy(workers);
            }
            ASSERT_EQ(zolvex_tp_fini(), 0);
            ASSERT_EQ(pool_status().threads, 0);
        }
    });
}

TEST_F(PoolLifecycle, LastFiniRunsEveryQueuedTaskBeforeReturning) {
    constexpr int kTasks = 300;
    std::atomic<int> runs{0};
    std::vector<TaskHandle> tasks;
    run_bounded([&] {
        ASSERT_EQ(zolvex_tp_init(), 0);
        BlockedWorkers blocked(pool_status().threads);
        for (int i = 0; i < kTasks; ++i) {
            tasks.emplace_back(zolvex_tp_context_new_task(nullptr, count_run, &runs));
        }
        EXPECT_EQ(pool_status().queued, static_cast<std::uint32_t>(kTasks));
        blocked.release();
        ASSERT_EQ(zolvex_tp_fini(), 0);
        EXPECT_EQ(runs.load(), kTasks) << "fini returned before the queue drained";
    });
    const zolvex_tp_status status = pool_status();
    EXPECT_EQ(status.queued, 0u);
    EXPECT_EQ(status.running, 0u);
}

struct LifecycleCallResults {
    std::atomic<int> init_result{99};
    std::atomic<int> fini_result{99};
};

TEST_F(PoolLifecycle, TaskMayNestInitAndFiniButNotDropTheLastReference) {
    run_bounded([] {
        ASSERT_EQ(zolvex_tp_init(), 0);
        LifecycleCallResults nested;
        std::latch nested_done{1};
        auto nest = [&] {
            nested.init_result = zolvex_tp_init();
            nested.fini_result = zolvex_tp_fini();
            nested_done.count_down();
        };
        // Latches instead of zolvex_tp_wait: a wait could claim the task and
        // run it on this thread, which is not a pool worker.
        TaskHandle nest_task = submit(nest);
        nested_done.wait();
        EXPECT_EQ(nested.init_result, 0);
        EXPECT_EQ(nested.fini_result, 0);

        std::atomic<int> last_fini_result{99};
        std::latch last_done{1};
        auto drop_last = [&] {
            last_fini_result = zolvex_tp_fini();
            last_done.count_down();
        };
        TaskHandle drop_task = submit(drop_last);
        last_done.wait();
        EXPECT_EQ(last_fini_result, -1) << "a worker cannot join itself";
        EXPECT_EQ(pool_status().threads, expected_worker_count());

        nest_task.reset();
        drop_task.reset();
        EXPECT_EQ(zolvex_tp_fini(), 0);
    });
}

// A task still queued when the last fini starts runs while its own worker is
// being joined; init/fini from there must fail fast rather than deadlock.
TEST_F(PoolLifecycle, InitAndFiniFromTaskDrainedByLastFiniFailFast) {
    run_bounded([] {
        ASSERT_EQ(zolvex_tp_init(), 0);
        LifecycleCallResults drained;
        auto call_lifecycle = [&] {
            drained.init_result = zolvex_tp_init();
            drained.fini_result = zolvex_tp_fini();
        };
        std::vector<TaskHandle> queued_probes;
        std::atomic<bool> probe_ran{false};
        auto probe = [&] { probe_ran = true; };
        TaskHandle drained_task;
        {
            BlockedWorkers blocked(pool_status().threads);
            drained_task = submit(call_lifecycle);
            std::thread finisher([] { EXPECT_EQ(zolvex_tp_fini(), 0); });
            // While workers are blocked a probe can only have run before
            // new_task returned if the pool stopped accepting, i.e. the fini
            // is under way.
            for (;;) {
                probe_ran = false;
                TaskHandle handle = submit(probe);
                if (probe_ran) {
                    break;
                }
                queued_probes.push_back(std::move(handle));
                std::this_thread::yield();
            }
            blocked.release();
            finisher.join();
        }
        EXPECT_EQ(drained.init_result, -1);
        EXPECT_EQ(drained.fini_result, -1);
        EXPECT_EQ(pool_status().threads, 0);
    });
}

TEST_F(PoolLifecycle, ConcurrentLifecycleAndSubmissionRunEveryTaskOnce) {
    constexpr int kLifecycleThreads = 3;
    constexpr int kCycles = 30;
    constexpr int kTasksPerCycle = 20;
    constexpr int kSubmitterThreads = 2;
    constexpr int kTasksPerSubmitter = 600;
    std::vector<std::atomic<int>> runs(kLifecycleThreads * kCycles * kTasksPerCycle +
                                       kSubmitterThreads * kTasksPerSubmitter);

    auto cycle_pool = [&](int thread_index) {
        int next = thread_index * kCycles * kTasksPerCycle;
        for (int cycle = 0; cycle < kCycles; ++cycle) {
            EXPECT_EQ(zolvex_tp_init(), 0);
            std::vector<TaskHandle> tasks;
            for (int i = 0; i < kTasksPerCycle; ++i) {
                tasks.emplace_back(zolvex_tp_context_new_task(nullptr, count_run, &runs[next++]));
            }
            // Finishing before deleting leaves some tasks to the drain of
            // whichever fini turns out to be last.
            EXPECT_EQ(zolvex_tp_fini(), 0);
        }
    };
    auto submit_many = [&](int thread_index) {
        int next = kLifecycleThreads * kCycles * kTasksPerCycle + thread_index * kTasksPerSubmitter;
        for (int i = 0; i < kTasksPerSubmitter; ++i) {
            TaskHandle task(zolvex_tp_context_new_task(nullptr, count_run, &runs[next++]));
            if (i % 3 == 0) {
                zolvex_tp_wait(task.get(), 0);
            }
        }
    };

    run_bounded([&] {
        std::vector<std::thread> threads;
        for (int i = 0; i < kLifecycleThreads; ++i) {
            threads.emplace_back(cycle_pool, i);
        }
        for (int i = 0; i < kSubmitterThreads; ++i) {
            threads.emplace_back(submit_many, i);
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    });
    for (std::size_t i = 0; i < runs.size(); ++i) {
        ASSERT_EQ(runs[i].load(), 1) << "task " << i;
    }
}

}  // namespace
}  // namespace zolvex_tp_test
