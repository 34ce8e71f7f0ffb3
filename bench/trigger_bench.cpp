// Trigger searches as pure scans: the only trigger is at the end of the
// buffer, so a call reads every sample once. Each benchmark lets one scan
// condition run through the whole buffer (rising edge: "at or above" after
// arming at the first sample), per kernel regime and buffer size. The index
// search "in" stands for the band scan no trigger uses.

#include <cstdint>
#include <string>

#include "harness.h"

namespace bench {
namespace {

// One shape of search: the value of every sample but the last two, those
// two, and the call.
template <class T>
struct Search {
    T background;
    T second_last;
    T last;
    int32_t (*call)(const T* data, uint32_t n, uint32_t* position, void** state);
};

template <class T>
void BM_trigger(benchmark::State& state, Search<T> search) {
    if (!apply_regime(state.range(1))) return state.SkipWithError("regime not supported");
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(T)));
    Buffer<T> x(n, search.background);
    x.data()[n - 2] = search.second_last;
    x.data()[n - 1] = search.last;
    void* trigger_state = nullptr;
    uint32_t position = 0;
    for (auto _ : state) {
        position = 0;
        search.call(x.data(), n, &position, &trigger_state);
        benchmark::DoNotOptimize(position);
    }
    if (position != n - 1) state.SkipWithError("the trigger was not at the last sample");
    zolvex_m_state_free(&trigger_state);
    report_bytes(state, state.range(0), double(n) * sizeof(T));
}

// Levels: arm 20, trigger 100 (rising) / arm 100, trigger 20 (falling);
// any: band 40..60, trigger 50.
#define ZOLVEX_M_BENCH_SEARCHES(T, suffix)                                                         \
    int32_t rising_##suffix(const T* d, uint32_t n, uint32_t* p, void** s) {                       \
        return zolvex_m_trigger_edge_rising_##suffix(d, n, 20, 100, p, s);                         \
    }                                                                                              \
    int32_t falling_##suffix(const T* d, uint32_t n, uint32_t* p, void** s) {                      \
        return zolvex_m_trigger_edge_falling_##suffix(d, n, 100, 20, p, s);                        \
    }                                                                                              \
    int32_t any_##suffix(const T* d, uint32_t n, uint32_t* p, void** s) {                          \
        return zolvex_m_trigger_edge_any_##suffix(d, n, 60, 40, 50, p, s);                         \
    }                                                                                              \
    int32_t in_##suffix(const T* d, uint32_t n, uint32_t* p, void**) {                             \
        return zolvex_m_index_in_##suffix(d, n, 20, 0, p);                                         \
    }
ZOLVEX_M_BENCH_SEARCHES(uint8_t, u8)
ZOLVEX_M_BENCH_SEARCHES(uint16_t, u16)
#undef ZOLVEX_M_BENCH_SEARCHES

template <class T>
struct Searches;
template <>
struct Searches<uint8_t> {
    static constexpr auto rising = rising_u8;
    static constexpr auto falling = falling_u8;
    static constexpr auto any = any_u8;
    static constexpr auto in = in_u8;
};
template <>
struct Searches<uint16_t> {
    static constexpr auto rising = rising_u16;
    static constexpr auto falling = falling_u16;
    static constexpr auto any = any_u16;
    static constexpr auto in = in_u16;
};

template <class T>
void register_type(const std::string& suffix) {
    using S = Searches<T>;
    // Which scan runs through the buffer, and the search that makes it do so.
    const std::pair<const char*, Search<T>> searches[] = {
        // Arms on the first sample (10 < 20), then waits for x >= 20.
        {"trigger_edge_rising_", {10, 10, 200, S::rising}},
        // Idle in x < 20 over 50s; 10 arms, 200 passes 20 and 100.
        {"trigger_scan_lt_", {50, 10, 200, S::rising}},
        // Idle in x > 100 over 10s; 200 arms, 0 passes 100 and 20.
        {"trigger_scan_gt_", {10, 200, 0, S::falling}},
        // Armed by the 200 below; waits in x <= 100 (and x <= 20) over 150s.
        {"trigger_scan_le_", {150, 150, 0, S::falling}},
        // Idle in x > 60 || x < 40 over 50s; 100 arms high, 45 passes 60 and 50.
        {"trigger_scan_outside_", {50, 100, 45, S::any}},
        // The index search for 0 <= x <= 20 over 50s: the "inside" scan.
        {"index_in_", {50, 50, 10, S::in}},
    };
    for (const auto& [name, search] : searches) {
        Search<T> s = search;
        auto* b = benchmark::RegisterBenchmark((name + suffix).c_str(), BM_trigger<T>, s);
        b->ArgNames({"bytes", "regime"});
        for (int64_t regime : {kGeneric, kSse42, kAvx2Fma3})
            for (int64_t size : kSizes) b->Args({size, regime});
    }
}

const bool registered = [] {
    register_type<uint8_t>("u8");
    register_type<uint16_t>("u16");
    return true;
}();

} // namespace
} // namespace bench
