// Elementary functions on 64K elements per kernel regime, against a plain
// loop over the C library's scalar function (glibc) measured in the same
// run: `vs_glibc` is our elements per second divided by the loop's, both
// in the thread's processor time (Google Benchmark's CPU column), so that
// time the shared machine gives to others counts for neither.

#include <time.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>

#include "harness.h"

namespace bench {
namespace {

constexpr uint32_t kElements = 64 * 1024;

// One function: its inputs' ranges (y only for two-input functions), the
// C library's loop and ours.
template <class T>
struct Elementary {
    const char* name;
    T x_low, x_high, y_low, y_high;
    void (*glibc)(const T* x, const T* y, T* out, uint32_t n);
    int32_t (*ours)(const T* x, const T* y, T* out, uint32_t n);
};

template <class T>
struct Inputs {
    Buffer<T> x{kElements}, y{kElements}, out{kElements};
    explicit Inputs(const Elementary<T>& f) {
        std::mt19937_64 rng(14);
        std::uniform_real_distribution<T> ux(f.x_low, f.x_high), uy(f.y_low, f.y_high);
        for (uint32_t i = 0; i < kElements; ++i) x.data()[i] = ux(rng), y.data()[i] = uy(rng);
    }
};

double thread_seconds() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

// The C library loop's elements per second, per function name, as measured
// by its benchmark in this run (or measured here when a filter left it out).
std::map<std::string, double>& glibc_rates() {
    static std::map<std::string, double> rates;
    return rates;
}

template <class T>
double glibc_rate(const std::string& key, const Elementary<T>& f) {
    if (auto found = glibc_rates().find(key); found != glibc_rates().end()) return found->second;
    Inputs<T> in(f);
    double best = 0;
    for (int round = 0; round < 20; ++round) {
        double start = thread_seconds();
        f.glibc(in.x.data(), in.y.data(), in.out.data(), kElements);
        best = std::max(best, kElements / (thread_seconds() - start));
    }
    return glibc_rates()[key] = best;
}

template <class T>
void BM_glibc(benchmark::State& state, Elementary<T> f, std::string key) {
    Inputs<T> in(f);
    double start = thread_seconds();
    for (auto _ : state) {
        f.glibc(in.x.data(), in.y.data(), in.out.data(), kElements);
        benchmark::ClobberMemory();
    }
    glibc_rates()[key] = double(kElements) * double(state.iterations()) / (thread_seconds() - start);
    state.SetItemsProcessed(int64_t(state.iterations()) * kElements);
}

template <class T>
void BM_ours(benchmark::State& state, Elementary<T> f, std::string key) {
    if (!apply_regime(state.range(0))) return state.SkipWithError("regime not supported");
    Inputs<T> in(f);
    double start = thread_seconds();
    for (auto _ : state) {
        f.ours(in.x.data(), in.y.data(), in.out.data(), kElements);
        benchmark::ClobberMemory();
    }
    double elements = double(kElements) * double(state.iterations());
    double rate = elements / (thread_seconds() - start);
    state.SetItemsProcessed(int64_t(elements));
    state.counters["vs_glibc"] = rate / glibc_rate(key, f);
}

// The loops and entry points as f(x, y, out, n).
#define ZOLVEX_M_BENCH_UNARY(fn, T, sfx)                                                           \
    [](const T* x, const T*, T* out, uint32_t n) {                                                 \
        for (uint32_t i = 0; i < n; ++i) out[i] = std::fn(x[i]);                                   \
    },                                                                                             \
        [](const T* x, const T*, T* out, uint32_t n) { return zolvex_m_##fn##_##sfx(x, out, n); }
#define ZOLVEX_M_BENCH_BINARY(fn, T, sfx)                                                          \
    [](const T* x, const T* y, T* out, uint32_t n) {                                               \
        for (uint32_t i = 0; i < n; ++i) out[i] = std::fn(x[i], y[i]);                             \
    },                                                                                             \
        [](const T* x, const T* y, T* out, uint32_t n) { return zolvex_m_##fn##_##sfx(x, y, out, n); }
#define ZOLVEX_M_BENCH_FUNCTIONS(T, sfx)                                                           \
    {Elementary<T>{"sin", -10, 10, 0, 0, ZOLVEX_M_BENCH_UNARY(sin, T, sfx)},                       \
     Elementary<T>{"cos", -10, 10, 0, 0, ZOLVEX_M_BENCH_UNARY(cos, T, sfx)},                       \
     Elementary<T>{"exp", -10, 10, 0, 0, ZOLVEX_M_BENCH_UNARY(exp, T, sfx)},                       \
     Elementary<T>{"log", T(1e-3), 1000, 0, 0, ZOLVEX_M_BENCH_UNARY(log, T, sfx)},                 \
     Elementary<T>{"atan2", -10, 10, -10, 10, ZOLVEX_M_BENCH_BINARY(atan2, T, sfx)},               \
     Elementary<T>{"pow", T(0.1), 10, -5, 5, ZOLVEX_M_BENCH_BINARY(pow, T, sfx)}}

template <class T>
void register_type(std::initializer_list<Elementary<T>> functions, const char* type) {
    for (const Elementary<T>& f : functions) {
        std::string key = std::string("elementary_") + f.name + "_" + type;
        benchmark::RegisterBenchmark((key + "/glibc").c_str(), BM_glibc<T>, f, key);
        benchmark::RegisterBenchmark(key.c_str(), BM_ours<T>, f, key)
            ->ArgName("regime")->DenseRange(kGeneric, kAvx512);
    }
}

// Regime numbers in the names: 0 generic, 1 sse42, 2 avx, 3 avx2_fma3, 4 avx512.
const bool registered = [] {
    register_type<float>(ZOLVEX_M_BENCH_FUNCTIONS(float, f32), "f32");
    register_type<double>(ZOLVEX_M_BENCH_FUNCTIONS(double, f64), "f64");
    return true;
}();

} // namespace
} // namespace bench
