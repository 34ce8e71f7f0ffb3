// IIR filters: execution of Butterworth low-passes of order 2, 8 and 16
// (1, 4 and 8 biquads) on 64k-sample blocks, ours per kernel regime against
// Intel IPP's own biquad cascade called directly (ippsIIR_32f/_64f on the
// same taps) as the anchor: `vs_ipp` is our sample rate over IPP's in the
// same run. And the frequency response of 8192 points at order 8, from the
// transfer function (on the thread pool) and from the zeros and poles,
// against a plain loop of the 8192 complex exponentials every response
// needs (`vs_exp`).

#include <dlfcn.h>

#include <chrono>
#include <cmath>
#include <complex>
#include <map>
#include <utility>
#include <vector>

#include "harness.h"

namespace bench {
namespace {

constexpr uint32_t kBlock = 1 << 16;
constexpr int64_t kRawIpp = -1;

// IPP's biquad functions, straight from its signal-processing library.
struct RawIpp {
    using GetStateSize = int (*)(int, int*);
    template <class T>
    using Init = int (*)(void**, const T*, int, const T*, unsigned char*);
    template <class T>
    using Run = int (*)(const T*, T*, int, void*);
    void* library = dlopen("libipps.so.12", RTLD_NOW | RTLD_LOCAL);
    template <class F>
    F get(const char* name) const { return library ? reinterpret_cast<F>(dlsym(library, name)) : nullptr; }
};

const RawIpp& raw_ipp() {
    static RawIpp ipp;
    return ipp;
}

template <class T>
constexpr const char* ipp_name(const char* f32, const char* f64) {
    return sizeof(T) == 4 ? f32 : f64;
}

std::map<std::pair<size_t, int64_t>, double>& ipp_rates() {
    static std::map<std::pair<size_t, int64_t>, double> rates;
    return rates;
}

template <class T>
int32_t execute(const T* in, T* out, uint32_t n, zolvex_m_filter_state* s) {
    if constexpr (sizeof(T) == 4) return zolvex_m_filter_execute_f32(in, out, n, s);
    else return zolvex_m_filter_execute_f64(in, out, n, s);
}

// A slow sine with noise, as a data logger's channel.
template <class T>
void fill(Buffer<T>& x) {
    uint64_t state = 0x9E3779B97F4A7C15u;
    for (size_t i = 0; i < x.size(); ++i) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        x.data()[i] = T(std::sin(double(i) * 0.001) + double(state >> 40) / double(1 << 24) - 0.5);
    }
}

// Items (samples or points) per second of a timed loop.
template <class Body>
double timed(benchmark::State& state, uint32_t items, Body body) {
    auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        body();
        benchmark::ClobberMemory();
    }
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    state.SetItemsProcessed(int64_t(state.iterations()) * items);
    return double(state.iterations()) * items / elapsed.count();
}

// IPP's cascade on the taps of our sections; its rate is the anchor.
template <class T>
void run_raw_ipp(benchmark::State& state, zolvex_m_filter_state* filter, Buffer<T>& x, Buffer<T>& y) {
    const double* const* rows = nullptr;
    uint32_t sections = 0;
    zolvex_m_filter_iir_get_sos(filter, &rows, &sections);
    std::vector<T> taps;
    for (uint32_t s = 0; s < sections; ++s) taps.insert(taps.end(), rows[s], rows[s] + 6);
    const RawIpp& ipp = raw_ipp();
    auto size = ipp.get<RawIpp::GetStateSize>(ipp_name<T>("ippsIIRGetStateSize_BiQuad_32f", "ippsIIRGetStateSize_BiQuad_64f"));
    auto init = ipp.get<RawIpp::Init<T>>(ipp_name<T>("ippsIIRInit_BiQuad_32f", "ippsIIRInit_BiQuad_64f"));
    auto run = ipp.get<RawIpp::Run<T>>(ipp_name<T>("ippsIIR_32f", "ippsIIR_64f"));
    int bytes = 0;
    if (!run || size(int(sections), &bytes) != 0)
        return state.SkipWithError("IPP not found (tools/run-bench puts it on the search path)");
    Buffer<unsigned char> buffer{size_t(bytes)};
    void* ipp_state = nullptr;
    init(&ipp_state, taps.data(), int(sections), nullptr, buffer.data());
    ipp_rates()[{sizeof(T), state.range(0)}] = timed(state, kBlock, [&] { run(x.data(), y.data(), int(kBlock), ipp_state); });
}

// range(0): order; range(1): our regime, or kRawIpp.
template <class T>
void BM_filter_execute(benchmark::State& state) {
    const int64_t order = state.range(0), backend = state.range(1);
    zolvex_m_filter_state* filter = nullptr;
    zolvex_m_filter_iir_butterworth(ZOLVEX_M_FILTER_LOWPASS, uint8_t(order), 1000.0, 100.0, 0.0, &filter);
    Buffer<T> x(kBlock), y(kBlock);
    fill(x);
    if (backend == kRawIpp) {
        run_raw_ipp(state, filter, x, y);
    } else if (!apply_regime(backend)) {
        state.SkipWithError("regime not supported");
    } else {
        double rate = timed(state, kBlock, [&] { execute(x.data(), y.data(), kBlock, filter); });
        auto ipp = ipp_rates().find({sizeof(T), order});
        if (ipp != ipp_rates().end()) state.counters["vs_ipp"] = rate / ipp->second;
    }
    state.SetLabel(backend == kRawIpp ? "ipp" : regime_name(backend));
    zolvex_m_filter_state_destroy(filter);
}

double g_exp_rate = 0;

// range(0): 0 the exponentials alone (the anchor), 1 from the TF, 2 from
// the ZPK.
void BM_filter_freqz(benchmark::State& state) {
    constexpr uint32_t kPoints = 8192;
    zolvex_m_filter_state* filter = nullptr;
    zolvex_m_filter_iir_butterworth(ZOLVEX_M_FILTER_LOWPASS, 8, 1000.0, 100.0, 0.0, &filter);
    std::vector<double> f(kPoints), h(2 * kPoints);
    zolvex_m_filter_iir_freqz(filter, 1, 1000.0, false, false, f.data(), h.data());  // the TF, derived once
    double rate = 0;
    if (state.range(0) == 0) {
        rate = timed(state, kPoints, [&] {
            std::complex<double> sum = 0;
            for (uint32_t i = 0; i < kPoints; ++i) sum += std::exp(std::complex<double>(0, i * (M_PI / kPoints)));
            benchmark::DoNotOptimize(sum);
        });
        g_exp_rate = rate;
    } else {
        auto freqz = state.range(0) == 1 ? zolvex_m_filter_iir_freqz : zolvex_m_filter_iir_freqz_zpk;
        rate = timed(state, kPoints, [&] { freqz(filter, kPoints, 1000.0, false, false, f.data(), h.data()); });
        if (g_exp_rate > 0) state.counters["vs_exp"] = rate / g_exp_rate;
    }
    state.SetLabel(state.range(0) == 0 ? "exp loop" : state.range(0) == 1 ? "from TF" : "from ZPK");
    zolvex_m_filter_state_destroy(filter);
}

void execute_arguments(benchmark::internal::Benchmark* b) {
    for (int64_t order : {2, 8, 16})
        for (int64_t backend : {kRawIpp, int64_t(kGeneric), int64_t(kAvx2Fma3), int64_t(kAvx512)})
            b->Args({order, backend});
    b->ArgNames({"order", "backend"});
}

BENCHMARK(BM_filter_execute<float>)->Name("filter_execute_f32")->Apply(execute_arguments)->UseRealTime();
BENCHMARK(BM_filter_execute<double>)->Name("filter_execute_f64")->Apply(execute_arguments)->UseRealTime();
BENCHMARK(BM_filter_freqz)->Name("filter_freqz_8192_order8")->Arg(0)->Arg(1)->Arg(2)->ArgName("from")->UseRealTime();

} // namespace
} // namespace bench
