// Signal generation against its anchors, measured in the same run:
//  - noise of 1M samples against the plain standard-library loop that gives
//    the same samples (std::mt19937 with uniform_real_distribution<double>,
//    or uniform_int_distribution for u16);
//  - window_hanning and window_blackmanharris (f64/f32; 4K, 64K, 1M
//    samples; widest regime, the calling thread and the pool as the library
//    splits) against the accelerator's raw ippsWinHann_64f / _32f, called
//    directly on the same buffers.
// Compare items per second of the rows that share a size.

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <random>

#include "harness.h"

namespace {

constexpr uint32_t kNoiseSamples = 1u << 20;

void BM_noise_f64(benchmark::State& state) {
    bench::Buffer<double> out(kNoiseSamples);
    const uint32_t seed = 42;
    for (auto _ : state) {
        zolvex_m_waveform_noise_f64(out.data(), kNoiseSamples, -1.0, 1.0, &seed);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kNoiseSamples);
}

void BM_noise_f64_std_loop(benchmark::State& state) {
    bench::Buffer<double> out(kNoiseSamples);
    for (auto _ : state) {
        std::mt19937 engine(42);
        std::uniform_real_distribution<double> u(-1.0, 1.0);
        for (uint32_t i = 0; i < kNoiseSamples; ++i) out.data()[i] = u(engine);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kNoiseSamples);
}

void BM_noise_u16(benchmark::State& state) {
    bench::Buffer<uint16_t> out(kNoiseSamples);
    const uint32_t seed = 42;
    for (auto _ : state) {
        zolvex_m_waveform_noise_u16(out.data(), kNoiseSamples, 0, 4095, &seed);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kNoiseSamples);
}

void BM_noise_u16_std_loop(benchmark::State& state) {
    bench::Buffer<uint16_t> out(kNoiseSamples);
    for (auto _ : state) {
        std::mt19937 engine(42);
        std::uniform_int_distribution<uint32_t> u(0, 4095);
        for (uint32_t i = 0; i < kNoiseSamples; ++i) out.data()[i] = static_cast<uint16_t>(u(engine));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kNoiseSamples);
}

BENCHMARK(BM_noise_f64)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_noise_f64_std_loop)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_noise_u16)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_noise_u16_std_loop)->Unit(benchmark::kMicrosecond);

template <class T>
void BM_window(benchmark::State& state, int32_t (*window)(const T*, T*, uint32_t, uint8_t)) {
    if (!bench::apply_regime(bench::kAvx512) && !bench::apply_regime(bench::kAvx2Fma3))
        return state.SkipWithError("no vector regime");
    const uint32_t n = static_cast<uint32_t>(state.range(0));
    bench::Buffer<T> in(n, T(1)), out(n);
    for (auto _ : state) {
        window(in.data(), out.data(), n, 1);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * n);
}

// The accelerator as zolvex_m_init loaded it, called without the library.
template <class T>
void BM_ipp_hann(benchmark::State& state) {
    using Hann = int (*)(const T*, T*, int);
    void* ipp = dlopen("libipps.so.12", RTLD_NOW | RTLD_NOLOAD);
    Hann hann = ipp ? reinterpret_cast<Hann>(dlsym(ipp, sizeof(T) == 8 ? "ippsWinHann_64f" : "ippsWinHann_32f")) : nullptr;
    if (!hann) return state.SkipWithError("accelerator not loaded (tools/run-bench puts it on the search path)");
    const int n = static_cast<int>(state.range(0));
    bench::Buffer<T> in(n, T(1)), out(n);
    for (auto _ : state) {
        hann(in.data(), out.data(), n);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * n);
    dlclose(ipp);
}

#define WINDOW_SIZES ->Arg(4096)->Arg(65536)->Arg(1 << 20)->Unit(benchmark::kMicrosecond)
BENCHMARK_CAPTURE(BM_window, hanning_f64, zolvex_m_window_hanning_f64) WINDOW_SIZES;
BENCHMARK_CAPTURE(BM_window, blackmanharris_f64, zolvex_m_window_blackmanharris_f64) WINDOW_SIZES;
BENCHMARK_TEMPLATE(BM_ipp_hann, double) WINDOW_SIZES;
BENCHMARK_CAPTURE(BM_window, hanning_f32, zolvex_m_window_hanning_f32) WINDOW_SIZES;
BENCHMARK_CAPTURE(BM_window, blackmanharris_f32, zolvex_m_window_blackmanharris_f32) WINDOW_SIZES;
BENCHMARK_TEMPLATE(BM_ipp_hann, float) WINDOW_SIZES;

} // namespace
