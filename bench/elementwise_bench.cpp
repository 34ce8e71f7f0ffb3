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

// mulc/divc: ours (the widest regime) against the accelerator's, side by
// side; `backend` 0 is ours, 1 the accelerator (skipped when absent).
template <class T>
void BM_scale(benchmark::State& state, int32_t (*function)(const T*, T*, uint32_t, T)) {
    bool accelerator = state.range(1) == 1;
    if (!apply_regime(kAvx512) && !apply_regime(kAvx)) return state.SkipWithError("no vector regime");
    if (zolvex_m_setopt(ZOLVEX_M_OPT_IPP, accelerator ? 1 : 0) != 0)
        return state.SkipWithError("accelerator not loaded (tools/run-bench puts it on the search path)");
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(T)));
    Buffer<T> x(n, T(1.5)), out(n);
    for (auto _ : state) {
        function(x.data(), out.data(), n, T(3));
        benchmark::ClobberMemory();
    }
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
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
    struct Scale {
        const char* name;
        int32_t (*f32)(const float*, float*, uint32_t, float);
        int32_t (*f64)(const double*, double*, uint32_t, double);
    };
    for (auto [name, f32, f64] : {Scale{"mulc", zolvex_m_mulc_f32, zolvex_m_mulc_f64},
                                  Scale{"divc", zolvex_m_divc_f32, zolvex_m_divc_f64}}) {
        for (int64_t size : kSizes) {
            for (int64_t backend : {0, 1}) {
                std::string suffix = std::string(backend ? "/ipp" : "/ours");
                benchmark::RegisterBenchmark((std::string(name) + "_f32" + suffix).c_str(), BM_scale<float>, f32)
                    ->Args({size, backend})->ArgNames({"bytes", "ipp"});
                benchmark::RegisterBenchmark((std::string(name) + "_f64" + suffix).c_str(), BM_scale<double>, f64)
                    ->Args({size, backend})->ArgNames({"bytes", "ipp"});
            }
        }
    }
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
