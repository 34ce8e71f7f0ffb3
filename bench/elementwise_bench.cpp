// Element-wise arithmetic and conversions, per kernel regime and buffer size.

#include <chrono>
#include <string>
#include <vector>

#include "harness.h"

namespace bench {
namespace {

void BM_read_baseline(benchmark::State& state) {
    int64_t bytes = state.range(0);
    Buffer<uint8_t> buffer(static_cast<size_t>(bytes), 1);
    auto start = std::chrono::steady_clock::now();
    for (auto _ : state) benchmark::DoNotOptimize(read_all(buffer.data(), static_cast<size_t>(bytes)));
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    // Registered first, so every later benchmark of this size compares
    // with this very measurement.
    record_read_bandwidth(static_cast<size_t>(bytes), double(bytes) * double(state.iterations()) / elapsed.count());
    report_bytes(state, bytes, double(bytes));
}

template <class T>
void BM_add(benchmark::State& state, int32_t (*add)(const T*, const T*, T*, uint32_t)) {
    if (!apply_regime(state.range(1))) return state.SkipWithError("regime not supported");
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(T)));
    Buffer<T> x(n, T(1.5)), y(n, T(2.5)), out(n);
    for (auto _ : state) {
        add(x.data(), y.data(), out.data(), n);
        benchmark::ClobberMemory();
    }
    report_bytes(state, state.range(0), 3.0 * n * sizeof(T));
}

template <class T>
void BM_unary(benchmark::State& state, int32_t (*function)(const T*, T*, uint32_t)) {
    if (!apply_regime(state.range(1))) return state.SkipWithError("regime not supported");
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(T)));
    Buffer<T> x(n, T(-1.5)), out(n);
    for (auto _ : state) {
        function(x.data(), out.data(), n);
        benchmark::ClobberMemory();
    }
    report_bytes(state, state.range(0), 2.0 * n * sizeof(T));
}

template <class T>
void BM_mulc(benchmark::State& state, int32_t (*mulc)(const T*, T*, uint32_t, T)) {
    if (!apply_regime(state.range(1))) return state.SkipWithError("regime not supported");
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(T)));
    Buffer<T> x(n, T(1.5)), out(n);
    for (auto _ : state) {
        mulc(x.data(), out.data(), n, T(0.25));
        benchmark::ClobberMemory();
    }
    report_bytes(state, state.range(0), 2.0 * n * sizeof(T));
}

template <class T>
void BM_mulc_addc(benchmark::State& state, int32_t (*mulc_addc)(const T*, T*, uint32_t, T, T)) {
    if (!apply_regime(state.range(1))) return state.SkipWithError("regime not supported");
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(T)));
    Buffer<T> x(n, T(1.5)), out(n);
    for (auto _ : state) {
        mulc_addc(x.data(), out.data(), n, T(0.25), T(-1));
        benchmark::ClobberMemory();
    }
    report_bytes(state, state.range(0), 2.0 * n * sizeof(T));
}

template <class In>
void BM_convert(benchmark::State& state, int32_t (*convert)(const In*, float*, uint32_t)) {
    if (!apply_regime(state.range(1))) return state.SkipWithError("regime not supported");
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(In)));
    Buffer<In> x(n, In(200));
    Buffer<float> out(n);
    for (auto _ : state) {
        convert(x.data(), out.data(), n);
        benchmark::ClobberMemory();
    }
    report_bytes(state, state.range(0), double(n) * (sizeof(In) + sizeof(float)));
}

void sizes(benchmark::internal::Benchmark* b) {
    for (int64_t size : kSizes) b->Arg(size);
}

void sizes_and(benchmark::internal::Benchmark* b, std::initializer_list<Regime> regimes) {
    b->ArgNames({"bytes", "regime"});
    for (int64_t regime : regimes)
        for (int64_t size : kSizes) b->Args({size, regime});
}

// Regime numbers in the names: 0 generic, 1 sse42, 2 avx, 3 avx2_fma3, 4 avx512.
const bool registered = [] {
    sizes(benchmark::RegisterBenchmark("read_baseline", BM_read_baseline));
    sizes_and(benchmark::RegisterBenchmark("add_f32", BM_add<float>, zolvex_m_add_f32), {kGeneric, kAvx, kAvx512});
    sizes_and(benchmark::RegisterBenchmark("add_f64", BM_add<double>, zolvex_m_add_f64), {kGeneric, kAvx, kAvx512});
    sizes_and(benchmark::RegisterBenchmark("mulc_f32", BM_mulc<float>, zolvex_m_mulc_f32), {kGeneric, kAvx, kAvx512});
    sizes_and(benchmark::RegisterBenchmark("mulc_f64", BM_mulc<double>, zolvex_m_mulc_f64), {kGeneric, kAvx, kAvx512});
    sizes_and(benchmark::RegisterBenchmark("mulc_addc_f32", BM_mulc_addc<float>, zolvex_m_mulc_addc_f32),
              {kGeneric, kSse42, kAvx2Fma3});
    sizes_and(benchmark::RegisterBenchmark("mulc_addc_f64", BM_mulc_addc<double>, zolvex_m_mulc_addc_f64),
              {kGeneric, kSse42, kAvx2Fma3});
    sizes_and(benchmark::RegisterBenchmark("abs_f32", BM_unary<float>, zolvex_m_abs_f32), {kGeneric, kAvx});
    sizes_and(benchmark::RegisterBenchmark("abs_f64", BM_unary<double>, zolvex_m_abs_f64), {kGeneric, kAvx});
    sizes_and(benchmark::RegisterBenchmark("convert_u8f32", BM_convert<uint8_t>, zolvex_m_convert_u8f32),
              {kGeneric, kSse42, kAvx, kAvx2Fma3, kAvx512});
    sizes_and(benchmark::RegisterBenchmark("convert_u16f32", BM_convert<uint16_t>, zolvex_m_convert_u16f32),
              {kGeneric, kSse42, kAvx, kAvx2Fma3, kAvx512});
    return true;
}();

} // namespace
} // namespace bench
