// De-interleaving against memcpy of the same bytes, per kernel regime, at
// 256 KiB (L2) and 64 MiB of source. Each iteration times the split and then
// a memcpy of the source into a buffer of its size, alternately, so both
// see the same machine; `vs_memcpy` is the memcpy time over the split time
// (1.0: as fast as copying the bytes once). Times are the thread's processor
// time.

#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

#include "harness.h"
#include "util/split_channels.h"

namespace bench {
namespace {

using testing_support::split;

const std::vector<int64_t> kSplitSizes = {256 << 10, 64 << 20};
// The regimes whose kernels differ for this family.
const std::vector<int64_t> kSplitRegimes = {kGeneric, kSse42, kAvx2Fma3, kAvx512Bw};

// Processor time of this thread: the machine is shared, and time spent
// waiting for another process is neither the split's nor memcpy's.
double thread_seconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

// Where the outputs start within a 4 KiB page decides how their stores meet
// the source's loads in the caches (some placements cost a quarter of the
// speed, see notes/issue-13.md): each call moves every output to another
// 64-byte-aligned place in a 4 KiB slack, so the rates are averages over
// placements, for the split and memcpy alike.
constexpr size_t kSlack = 4096;
size_t place(size_t call, unsigned output) { return (call * 11 + output * 23) % (kSlack / 64) * 64; }

// Runs work(call) against memcpy of `bytes`, alternately, and reports both.
// Each timing (one iteration) covers `rounds` calls, at least 4 MiB of
// source, so reading the clock costs nothing noticeable.
template <class Work>
void against_memcpy(benchmark::State& state, const uint8_t* source, size_t bytes, Work work) {
    Buffer<uint8_t> copy(bytes + kSlack, 0);
    const size_t rounds = std::max<size_t>(1, (size_t(4) << 20) / bytes);
    double work_seconds = 0, copy_seconds = 0;
    size_t calls = 0;
    for (auto _ : state) {
        const double start = thread_seconds();
        for (size_t r = 0; r < rounds; ++r) work(calls + r);
        benchmark::ClobberMemory();
        const double middle = thread_seconds();
        for (size_t r = 0; r < rounds; ++r) std::memcpy(copy.data() + place(calls + r, 0), source, bytes);
        benchmark::ClobberMemory();
        const double end = thread_seconds();
        calls += rounds;
        work_seconds += middle - start;
        copy_seconds += end - middle;
        state.SetIterationTime(middle - start);
    }
    const double copied = double(bytes) * double(rounds) * double(state.iterations());
    state.SetBytesProcessed(static_cast<int64_t>(copied));
    state.counters["vs_memcpy"] = copy_seconds / work_seconds;
    state.counters["memcpy_GBps"] = copied / copy_seconds * 1e-9;
}

// n outputs of `bytes` each, with the slack for placing them.
template <class T>
class Outputs {
public:
    Outputs(unsigned n, size_t bytes) {
        for (unsigned c = 0; c < n; ++c) buffers_.emplace_back(new Buffer<uint8_t>(bytes + kSlack));
    }
    // The outputs' starts for call `call`.
    T* const* at(size_t call) {
        for (size_t c = 0; c < buffers_.size(); ++c)
            starts_[c] = reinterpret_cast<T*>(buffers_[c]->data() + place(call, unsigned(c) + 1));
        return starts_;
    }

private:
    std::vector<std::unique_ptr<Buffer<uint8_t>>> buffers_;
    T* starts_[6] = {};
};

template <class T>
void BM_deinterleave(benchmark::State& state, unsigned n) {
    if (!apply_regime(state.range(1))) return state.SkipWithError("regime not supported");
    const size_t bytes = static_cast<size_t>(state.range(0)), total = bytes / sizeof(T);
    Buffer<T> source(total, T(3));
    Outputs<T> outputs(n, (total / n + 1) * sizeof(T));
    against_memcpy(state, reinterpret_cast<const uint8_t*>(source.data()), bytes, [&](size_t call) {
        split(n, source.data(), static_cast<int32_t>(total), outputs.at(call));
    });
}

// The one-channel function, called once per channel: four channels of
// 2-byte samples.
void BM_deinterleave_one_channel(benchmark::State& state) {
    constexpr uint32_t kChannels = 4, kSize = 2;
    const size_t bytes = static_cast<size_t>(state.range(0));
    const uint32_t count = static_cast<uint32_t>(bytes / (kChannels * kSize));
    Buffer<uint8_t> source(bytes, 3);
    Outputs<uint8_t> outputs(kChannels, size_t(count) * kSize);
    against_memcpy(state, source.data(), bytes, [&](size_t call) {
        uint8_t* const* d = outputs.at(call);
        for (uint32_t c = 0; c < kChannels; ++c)
            zolvex_m_deinterleave(source.data(), c, kChannels, count, kSize, d[c]);
    });
}

void register_all() {
    for (unsigned n = 2; n <= 6; ++n)
        for (bool words : {false, true}) {
            std::string name = "deinterleave" + std::to_string(n) + (words ? "_u16" : "_u8");
            auto* b = words ? benchmark::RegisterBenchmark(name.c_str(), BM_deinterleave<uint16_t>, n)
                            : benchmark::RegisterBenchmark(name.c_str(), BM_deinterleave<uint8_t>, n);
            b->ArgNames({"bytes", "regime"})->UseManualTime();
            for (int64_t size : kSplitSizes)
                for (int64_t regime : kSplitRegimes) b->Args({size, regime});
        }
    auto* b = benchmark::RegisterBenchmark("deinterleave_one_channel_4x2bytes", BM_deinterleave_one_channel);
    b->ArgNames({"bytes"})->UseManualTime();
    for (int64_t size : kSplitSizes) b->Arg(size);
}

const bool kRegistered = (register_all(), true);

} // namespace
} // namespace bench
