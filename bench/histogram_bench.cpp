// Linear histograms of u8, u16 and i16 blocks against the plain per-sample
// loop of the bin rule (one division per sample), per kernel regime and
// buffer size. The block is what an instrument's display histogram sees: a
// sine over most of the full scale with some noise, or a flat signal; the
// range is the full scale.
// The library's benchmarks report `vs_plain`, the plain loop's time over
// theirs (the speed-up), both measured in the same benchmark.

#include <immintrin.h>

#include <algorithm>
#include <ctime>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "harness.h"

namespace bench {
namespace {

// The bin rule read literally, the truncation as the processor does it.
// Not specialised for the benchmarks' constant limits (which would drop the
// range tests of a full-scale range), as the library cannot be either.
template <class T, class C>
__attribute__((noipa)) uint32_t plain_histogram(const T* x, uint32_t n, T lo, T hi, C* bins, uint32_t bin_count, C* below, C* above) {
    const double w = double(int32_t(hi) - int32_t(lo)) / double(uint64_t(bin_count));
    uint32_t counted = 0;
    for (uint32_t i = 0; i < n; ++i) {
        if (x[i] < lo) {
            if (below) ++*below, ++counted;
        } else if (x[i] > hi) {
            if (above) ++*above, ++counted;
        } else {
            double q = double(int32_t(x[i]) - int32_t(lo)) / w;
            uint32_t k = static_cast<uint32_t>(_mm_cvttsd_si64(_mm_set_sd(q)));
            ++bins[k < bin_count - 1 ? k : bin_count - 1];
            ++counted;
        }
    }
    return counted;
}

using Counter = uint32_t;

template <class T>
using Histogram = uint32_t (*)(const T*, uint32_t, T, T, Counter*, uint32_t, Counter*, Counter*);

// One shape of histogram: the sample type's full scale and a bin count.
enum class Signal { sine, flat };

template <class T>
struct Shape {
    const char* name;
    uint32_t bin_count;
    Histogram<T> library;
    Signal signal = Signal::sine;
};

// A sine over most of the full scale with some noise, or a flat signal
// (a level with a code or two of noise), as an idle channel gives it. Each
// depends only on the type, length and kind; computed once for each.
template <class T>
const std::vector<T>& instrument_signal(size_t n, Signal signal) {
    static std::map<std::pair<size_t, Signal>, std::vector<T>> signals;
    auto [it, added] = signals.try_emplace({n, signal});
    if (added) {
        constexpr double lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max();
        const bool sine = signal == Signal::sine;
        const double mid = (lo + hi) / 2, amplitude = sine ? 0.45 * (hi - lo) : 0.0;
        const double noise = sine ? 0.01 * (hi - lo) : 1.5;
        std::mt19937 rng(1);
        std::uniform_real_distribution<double> jitter(-noise, noise);
        it->second.resize(n);
        for (size_t i = 0; i < n; ++i)
            it->second[i] = static_cast<T>(std::lround(mid + amplitude * std::sin(double(i) * 0.0063) + jitter(rng)));
    }
    return it->second;
}

template <class T>
struct Block {
    Buffer<T> x;
    std::vector<Counter> bins;
    Block(size_t n, uint32_t bin_count, Signal kind) : x(n), bins(bin_count) {
        const std::vector<T>& signal = instrument_signal<T>(n, kind);
        std::copy(signal.begin(), signal.end(), x.data());
    }
};

// Processor time of this thread: on a machine shared with other work the
// wall-clock time would also count the time others had the core.
double thread_seconds() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

template <class Call>
double seconds_of(uint32_t calls, Call call) {
    double start = thread_seconds();
    for (uint32_t i = 0; i < calls; ++i) {
        call();
        benchmark::ClobberMemory();
    }
    return thread_seconds() - start;
}

// The plain loop's time over the library's: the best of several alternating
// timings of each (about a millisecond of the plain loop, or one call), so
// that a burst of other work on a shared machine spoils only some of them.
template <class Plain, class Library>
double speed_up(uint32_t n, Plain plain, Library library) {
    const uint32_t calls = n < (1u << 19) ? (1u << 19) / n : 1;
    double best_plain = 1e300, best_library = 1e300;
    for (int round = 0; round < 12; ++round) {
        best_plain = std::min(best_plain, seconds_of(calls, plain));
        best_library = std::min(best_library, seconds_of(calls, library));
    }
    return best_plain / best_library;
}

template <class T>
constexpr T kLow = std::numeric_limits<T>::min();
template <class T>
constexpr T kHigh = std::numeric_limits<T>::max();

template <class T>
void BM_plain(benchmark::State& state, Shape<T> shape) {
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(T)));
    Block<T> block(n, shape.bin_count, shape.signal);
    Counter below = 0, above = 0;
    for (auto _ : state) {
        plain_histogram<T, Counter>(block.x.data(), n, kLow<T>, kHigh<T>, block.bins.data(), shape.bin_count, &below,
                                    &above);
        benchmark::ClobberMemory();
    }
    report_bytes(state, state.range(0), double(n) * sizeof(T));
}

template <class T>
void BM_library(benchmark::State& state, Shape<T> shape) {
    if (!apply_regime(state.range(1))) return state.SkipWithError("regime not supported");
    uint32_t n = static_cast<uint32_t>(state.range(0) / int64_t(sizeof(T)));
    Block<T> block(n, shape.bin_count, shape.signal);
    // The same counts as the plain loop, from zero, before timing.
    std::vector<Counter> want(shape.bin_count), got(shape.bin_count);
    Counter want_outside[2] = {}, got_outside[2] = {};
    plain_histogram<T, Counter>(block.x.data(), n, kLow<T>, kHigh<T>, want.data(), shape.bin_count, &want_outside[0],
                                &want_outside[1]);
    shape.library(block.x.data(), n, kLow<T>, kHigh<T>, got.data(), shape.bin_count, &got_outside[0], &got_outside[1]);
    if (want != got || want_outside[0] != got_outside[0] || want_outside[1] != got_outside[1])
        return state.SkipWithError("counts differ from the plain loop");
    Counter below = 0, above = 0;
    auto library = [&] {
        shape.library(block.x.data(), n, kLow<T>, kHigh<T>, block.bins.data(), shape.bin_count, &below, &above);
    };
    for (auto _ : state) {
        library();
        benchmark::ClobberMemory();
    }
    report_bytes(state, state.range(0), double(n) * sizeof(T));
    state.counters["vs_plain"] = speed_up(n, [&] {
        plain_histogram<T, Counter>(block.x.data(), n, kLow<T>, kHigh<T>, block.bins.data(), shape.bin_count, &below,
                                    &above);
    }, library);
}

// Per shape and size: the plain loop, then the library in each regime.
template <class T>
void register_shape(Shape<T> shape) {
    for (int64_t size : kSizes) {
        benchmark::RegisterBenchmark((std::string(shape.name) + "/plain").c_str(), BM_plain<T>, shape)
            ->Arg(size)->ArgNames({"bytes"});
        auto* b = benchmark::RegisterBenchmark((std::string(shape.name) + "/library").c_str(), BM_library<T>, shape);
        b->ArgNames({"bytes", "regime"});
        for (int64_t regime : {kGeneric, kAvx2Fma3, kAvx512}) b->Args({size, regime});
    }
}

// Regime numbers in the names: 0 generic, 3 avx2_fma3, 4 avx512. Widths:
// 255/100 and 65535/1000 are not short binary fractions (the multiplication
// checks for quotients near whole numbers), 65535/4096 and 65535/1024 are.
const bool registered = [] {
    register_shape<uint8_t>({"histogram_u8_100bins", 100, zolvex_m_histogram_lin_1d_u8u32});
    register_shape<uint16_t>({"histogram_u16_1000bins", 1000, zolvex_m_histogram_lin_1d_u16u32});
    register_shape<uint16_t>({"histogram_u16_4096bins", 4096, zolvex_m_histogram_lin_1d_u16u32});
    register_shape<int16_t>({"histogram_i16_1024bins", 1024, zolvex_m_histogram_lin_1d_i16u32});
    register_shape<uint8_t>({"histogram_u8_100bins_flat", 100, zolvex_m_histogram_lin_1d_u8u32, Signal::flat});
    register_shape<uint16_t>({"histogram_u16_4096bins_flat", 4096, zolvex_m_histogram_lin_1d_u16u32, Signal::flat});
    return true;
}();

} // namespace
} // namespace bench
