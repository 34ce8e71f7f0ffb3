#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <vector>

#include "test_support.h"

namespace zolvex_tp_test {
namespace {

constexpr unsigned char kSentinel = 0xAB;

std::array<unsigned char, 40> sentinel_buffer() {
    std::array<unsigned char, 40> buffer;
    buffer.fill(kSentinel);
    return buffer;
}

bool untouched(const unsigned char* begin, const unsigned char* end) {
    for (const unsigned char* byte = begin; byte != end; ++byte) {
        if (*byte != kSentinel) {
            return false;
        }
    }
    return true;
}

zolvex_tp_status decode(const unsigned char* bytes) {
    zolvex_tp_status status;
    std::memcpy(&status, bytes, sizeof status);
    return status;
}

TEST(PoolStatus, UndersizedOrNullRecordIsRejectedWithoutWriting) {
    EXPECT_EQ(zolvex_tp_get_status(nullptr, 12), -1);
    EXPECT_EQ(zolvex_tp_get_status(nullptr, 0), -1);
    for (std::uint32_t size : {0u, 1u, 4u, 11u}) {
        auto buffer = sentinel_buffer();
        EXPECT_EQ(zolvex_tp_get_status(buffer.data(), size), -1) << "size " << size;
        EXPECT_TRUE(untouched(buffer.data(), buffer.data() + buffer.size())) << "size " << size;
    }
}

TEST(PoolStatus, WritesExactlyOneRecordAtAnyAlignment) {
    ASSERT_EQ(zolvex_tp_init(), 0);
    for (std::size_t offset = 0; offset < 4; ++offset) {
        for (std::uint32_t size : {12u, 13u, 28u}) {
            auto buffer = sentinel_buffer();
            unsigned char* record = buffer.data() + offset;
            ASSERT_EQ(zolvex_tp_get_status(record, size), 0);
            EXPECT_TRUE(untouched(buffer.data(), record));
            EXPECT_TRUE(untouched(record + 12, buffer.data() + buffer.size()))
                << "offset " << offset << " size " << size;
            const zolvex_tp_status status = decode(record);
            EXPECT_EQ(status.threads, expected_worker_count());
            EXPECT_EQ(status.reserved, 0);
        }
    }
    EXPECT_EQ(zolvex_tp_fini(), 0);
    const zolvex_tp_status stopped = pool_status();
    EXPECT_EQ(stopped.threads, 0);
    EXPECT_EQ(stopped.queued, 0u);
    EXPECT_EQ(stopped.running, 0u);
}

TEST(PoolStatus, CountsFollowTasksThroughQueuedRunningAndDone) {
    ASSERT_EQ(zolvex_tp_init(), 0);
    run_bounded([] {
        constexpr std::uint32_t kQueued = 25;
        std::atomic<int> runs{0};
        auto count = [&] { ++runs; };
        std::vector<TaskHandle> tasks;
        {
            BlockedWorkers blocked(pool_status().threads);
            for (std::uint32_t i = 0; i < kQueued; ++i) {
                tasks.push_back(submit(count));
            }
            zolvex_tp_status status = pool_status();
            EXPECT_EQ(status.queued, kQueued);
            EXPECT_EQ(status.running, status.threads);

            // Claimed by this thread while the workers stay blocked.
            for (std::uint32_t i = 0; i < 5; ++i) {
                ASSERT_EQ(zolvex_tp_wait(tasks[i].get(), ZOLVEX_TP_WAIT_INFINITE), 0);
            }
            status = pool_status();
            EXPECT_EQ(status.queued, kQueued - 5);
            EXPECT_EQ(status.running, status.threads);
        }
        tasks.clear();
        const zolvex_tp_status status = pool_status();
        EXPECT_EQ(status.queued, 0u);
        EXPECT_EQ(status.running, 0u);
        EXPECT_EQ(runs.load(), static_cast<int>(kQueued));
    });
    EXPECT_EQ(zolvex_tp_fini(), 0);
}

}  // namespace
}  // namespace zolvex_tp_test
