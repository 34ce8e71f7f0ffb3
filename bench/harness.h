#pragma once
// Shared pieces of the benchmarks: buffer sizes, kernel regimes chosen
// through the public setopt, and the byte counters.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <initializer_list>
#include <vector>

#include "read_baseline.h"
#include "zolvex_m.h"

namespace bench {

// 4 KiB (L1), 256 KiB (L2), 64 MiB (memory): bytes of one input array.
inline const std::vector<int64_t> kSizes = {4 << 10, 256 << 10, 64 << 20};

enum Regime : int64_t { kGeneric, kSse42, kAvx, kAvx2Fma3, kAvx512 };

inline const char* regime_name(int64_t r) {
    static const char* names[] = {"generic", "sse42", "avx", "avx2_fma3", "avx512"};
    return names[r];
}

// Switches on the options of the regime (and the narrower ones), every other
// processor option off. Returns false if the processor lacks one.
inline bool apply_regime(int64_t regime) {
    static const uint32_t ladder[][6] = {
        {0},
        {ZOLVEX_M_OPT_SSE42},
        {ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX},
        {ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX, ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3},
        {ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX, ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3, ZOLVEX_M_OPT_AVX512F,
         ZOLVEX_M_OPT_AVX512CD},
    };
    for (uint32_t id : {ZOLVEX_M_OPT_SSE42, ZOLVEX_M_OPT_AVX, ZOLVEX_M_OPT_AVX2, ZOLVEX_M_OPT_FMA3,
                        ZOLVEX_M_OPT_AVX512F, ZOLVEX_M_OPT_AVX512CD})
        zolvex_m_setopt(id, 0);
    for (uint32_t id : ladder[regime])
        if (id != 0 && zolvex_m_setopt(id, 1) != 0) return false;
    return true;
}

// A buffer aligned to 64 bytes, as an instrument's DMA buffers and the
// accelerator's allocator give them. The contents start zeroed.
template <class T>
class Buffer {
public:
    explicit Buffer(size_t n, T value = T{}) : n_(n), data_(static_cast<T*>(std::aligned_alloc(64, round_up(n)))) {
        if (!data_) throw std::bad_alloc();
        for (size_t i = 0; i < n; ++i) data_[i] = value;
    }
    ~Buffer() { std::free(data_); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    T* data() { return data_; }
    size_t size() const { return n_; }

private:
    static size_t round_up(size_t n) { return (n * sizeof(T) + 63) / 64 * 64; }
    size_t n_;
    T* data_;
};

// Sets the byte counters after the timing loop: bytes/s and the fraction of
// the read bandwidth for a buffer of `input_bytes`.
inline void report_bytes(benchmark::State& state, int64_t input_bytes, double bytes_per_iteration) {
    double total = bytes_per_iteration * double(state.iterations());
    state.SetBytesProcessed(static_cast<int64_t>(total));
    state.counters["vs_read"] =
        benchmark::Counter(total / read_bandwidth(static_cast<size_t>(input_bytes)), benchmark::Counter::kIsRate);
}

} // namespace bench
