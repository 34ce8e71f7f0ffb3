// Linear histograms: the per-sample loop of the bin rule, the faster exact
// paths for the integer sample types, the generic bin kernels and the
// exported functions.
//
// Counters only ever grow by whole increments that wrap in the counter type,
// so adding a sample count to a counter once gives the same value as
// incrementing it that many times: the fast paths count first (per value or
// per bin number) and add afterwards.

#include "search/histogram.h"

#include <cstring>
#include <type_traits>

#include "core/options.h"
#include "zolvex_m.h"

namespace search {

namespace generic {

template <class T>
static ChunkCounts bin_numbers(const T* x, uint32_t n, const IntegerBinning& b, uint32_t* out) noexcept {
    ChunkCounts counts = {0, 0, 0};
    bin_numbers_one_by_one(x, 0, n, b, out, counts);
    return counts;
}

ChunkCounts bin_numbers_i16(const int16_t* x, uint32_t n, const IntegerBinning& b, uint32_t* out) noexcept {
    return bin_numbers(x, n, b, out);
}
ChunkCounts bin_numbers_u16(const uint16_t* x, uint32_t n, const IntegerBinning& b, uint32_t* out) noexcept {
    return bin_numbers(x, n, b, out);
}

} // namespace generic

namespace {

// Width and distances: in 32-bit integer arithmetic for the integer types,
// in double for the floating ones; both then in double.
template <class T>
double difference(T a, T b) noexcept {
    if constexpr (std::is_integral_v<T>)
        return static_cast<double>(int32_t(a) - int32_t(b));
    else
        return static_cast<double>(a) - static_cast<double>(b);
}

template <class T>
double bin_width(T range_min, T range_max, uint32_t bin_count) noexcept {
    return difference(range_max, range_min) / static_cast<double>(static_cast<uint64_t>(bin_count));
}

// The caller's counters, and the count of samples that went into them.
template <class C>
struct Counters {
    C* bins;
    uint32_t bin_count;
    C* below;
    C* above;
    uint32_t counted = 0;

    void add_below(uint32_t n) noexcept { add_outside(below, n); }
    void add_above(uint32_t n) noexcept { add_outside(above, n); }
    void add_to_bin(uint32_t k, uint32_t n) noexcept {
        bins[k] = static_cast<C>(bins[k] + n);
        counted += n;
    }

private:
    void add_outside(C* counter, uint32_t n) noexcept {
        if (counter == nullptr || n == 0) return;
        *counter = static_cast<C>(*counter + n);
        counted += n;
    }
};

// The rule sample by sample, as stated. Every type and every range takes it
// when no faster path applies; the floating types always do.
template <class T, class C>
void count_one_by_one(const T* x, uint32_t n, T range_min, T range_max, double width, Counters<C>& c) noexcept {
    // A histogram without bins has nowhere to put the samples in range.
    const bool has_bins = c.bin_count != 0;
    const uint32_t last = c.bin_count - 1;
    for (uint32_t i = 0; i < n; ++i) {
        const T v = x[i];
        if (v < range_min) {
            c.add_below(1);
        } else if (v > range_max) {
            c.add_above(1);
        } else if (has_bins) {
            uint32_t k = bin_of_quotient(difference(v, range_min) / width, last);
            ++c.bins[k];
            ++c.counted;
        }
    }
}

// u8: count how often each of the 256 values occurs, then give each value's
// count to its bin. Consecutive equal samples would make each increment wait
// for the previous one through memory; four tables, one per sample position
// modulo 4, keep four such chains independent.
constexpr uint32_t kValueCountingFrom = 256;

struct ValueCounts {
    uint32_t lanes[4][256];
};

void count_values(const uint8_t* x, uint32_t n, ValueCounts& counts) noexcept {
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        ++counts.lanes[0][x[i]];
        ++counts.lanes[1][x[i + 1]];
        ++counts.lanes[2][x[i + 2]];
        ++counts.lanes[3][x[i + 3]];
    }
    for (; i < n; ++i) ++counts.lanes[0][x[i]];
}

template <class C>
void count_by_value(const uint8_t* x, uint32_t n, uint8_t range_min, uint8_t range_max, double width,
                    Counters<C>& c) noexcept {
    ValueCounts counts;
    std::memset(&counts, 0, sizeof counts);
    count_values(x, n, counts);
    uint32_t below = 0, above = 0;
    for (uint32_t v = 0; v < 256; ++v) {
        uint32_t times = counts.lanes[0][v] + counts.lanes[1][v] + counts.lanes[2][v] + counts.lanes[3][v];
        if (times == 0) continue;
        if (v < range_min)
            below += times;
        else if (v > range_max)
            above += times;
        else
            c.add_to_bin(bin_of_quotient(static_cast<double>(v - range_min) / width, c.bin_count - 1), times);
    }
    c.add_below(below);
    c.add_above(above);
}

// i16/u16: bin numbers a chunk at a time from the fastest kernel allowed,
// then the increments.
constexpr uint32_t kChunk = 1024;
constexpr uint32_t kBinKernelsFrom = 16;

template <class T>
BinKernel<T> choose_bin_kernel() noexcept {
    if constexpr (std::is_same_v<T, int16_t>) {
        if (core::avx512f_cd_on()) return avx512::bin_numbers_i16;
        if (core::avx2_fma3_on()) return avx2::bin_numbers_i16;
        return generic::bin_numbers_i16;
    } else {
        if (core::avx512f_cd_on()) return avx512::bin_numbers_u16;
        if (core::avx2_fma3_on()) return avx2::bin_numbers_u16;
        return generic::bin_numbers_u16;
    }
}

template <class T, class C>
void count_by_chunks(const T* x, uint32_t n, T range_min, T range_max, double width, Counters<C>& c) noexcept {
    const IntegerBinning binning = integer_binning(range_min, range_max, c.bin_count, width);
    const BinKernel<T> kernel = choose_bin_kernel<T>();
    uint32_t numbers[kChunk];
    uint32_t below = 0, above = 0;
    for (uint32_t start = 0; start < n; start += kChunk) {
        uint32_t length = n - start < kChunk ? n - start : kChunk;
        ChunkCounts counts = kernel(x + start, length, binning, numbers);
        for (uint32_t j = 0; j < counts.binned; ++j) ++c.bins[numbers[j]];
        c.counted += counts.binned;
        below += counts.below;
        above += counts.above;
    }
    c.add_below(below);
    c.add_above(above);
}

template <class T, class C>
uint32_t histogram(const T* x, uint32_t length, T range_min, T range_max, C* bins, uint32_t bin_count, C* below,
                   C* above) noexcept {
    const double width = bin_width(range_min, range_max, bin_count);
    if (length == 0) return 0;
    Counters<C> c{bins, bin_count, below, above};
    const bool has_bins = bin_count != 0;
    if constexpr (std::is_same_v<T, uint8_t>) {
        if (has_bins && length >= kValueCountingFrom) {
            count_by_value(x, length, range_min, range_max, width, c);
            return c.counted;
        }
    }
    if constexpr (std::is_integral_v<T> && sizeof(T) == 2) {
        if (has_bins && bin_count <= kMaxFastBins && length >= kBinKernelsFrom) {
            count_by_chunks(x, length, range_min, range_max, width, c);
            return c.counted;
        }
    }
    count_one_by_one(x, length, range_min, range_max, width, c);
    return c.counted;
}

} // namespace

} // namespace search

// One exported function per (sample type, counter type).
#define ZOLVEX_M_HISTOGRAMS(X)                                                                     \
    X(int16_t, uint16_t, i16u16)                                                                   \
    X(int16_t, uint32_t, i16u32)                                                                   \
    X(int16_t, uint64_t, i16u64)                                                                   \
    X(uint8_t, uint16_t, u8u16)                                                                    \
    X(uint8_t, uint32_t, u8u32)                                                                    \
    X(uint8_t, uint64_t, u8u64)                                                                    \
    X(uint16_t, uint16_t, u16u16)                                                                  \
    X(uint16_t, uint32_t, u16u32)                                                                  \
    X(uint16_t, uint64_t, u16u64)                                                                  \
    X(float, uint16_t, f32u16)                                                                     \
    X(float, uint32_t, f32u32)                                                                     \
    X(float, uint64_t, f32u64)                                                                     \
    X(double, uint16_t, f64u16)                                                                    \
    X(double, uint32_t, f64u32)                                                                    \
    X(double, uint64_t, f64u64)

#define ZOLVEX_M_DEFINE_HISTOGRAM(T, C, suffix)                                                    \
    uint32_t zolvex_m_histogram_lin_1d_##suffix(const T* data, uint32_t length, T range_min, T range_max, C* bins, \
                                                uint32_t bin_count, C* below, C* above) {          \
        return search::histogram(data, length, range_min, range_max, bins, bin_count, below, above); \
    }

extern "C" {
ZOLVEX_M_HISTOGRAMS(ZOLVEX_M_DEFINE_HISTOGRAM)
}
#undef ZOLVEX_M_DEFINE_HISTOGRAM
#undef ZOLVEX_M_HISTOGRAMS
