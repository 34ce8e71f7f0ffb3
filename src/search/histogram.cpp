// Linear histograms: the per-sample loop of the bin rule, the per-value
// counting of u8 blocks, the choice of counting kernel for i16/u16 blocks
// and the exported functions.
//
// Counters only ever grow by whole increments that wrap in the counter type,
// so adding a sample count to a counter once gives the same value as
// incrementing it that many times: the fast paths count first (per value or
// per bin number) and add afterwards.

#include "search/histogram.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "core/kernel_report.h"
#include "core/kernel_table.h"
#include "zolvex_m.h"

namespace search {

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
// when no faster path applies; the floating types always do. (The counts
// stay in locals: in memory they could be the target of any increment.)
template <class T, class C>
void count_one_by_one(const T* x, uint32_t n, T range_min, T range_max, double width, Counters<C>& c) noexcept {
    // A histogram without bins has nowhere to put the samples in range.
    const bool has_bins = c.bin_count != 0;
    const uint32_t last = c.bin_count - 1;
    uint32_t binned = 0, below = 0, above = 0;
    for (uint32_t i = 0; i < n; ++i) {
        const T v = x[i];
        if (v < range_min) {
            ++below;
        } else if (v > range_max) {
            ++above;
        } else if (has_bins) {
            ++c.bins[bin_of_quotient(difference(v, range_min) / width, last)];
            ++binned;
        }
    }
    c.counted += binned;
    c.add_below(below);
    c.add_above(above);
}

// u8: count how often each of the 256 values occurs, then give each value's
// count to its bin. Consecutive equal samples would make each increment wait
// for the previous one through memory; four tables, one per sample position
// modulo 4, keep four such chains independent.
constexpr uint32_t kValueCountingFrom = 256;

struct ValueCounts {
    uint32_t lanes[4][256];
};

// times[v] = how often v occurs in x.
void count_values(const uint8_t* x, uint32_t n, uint32_t* times) noexcept {
    ValueCounts counts;
    std::memset(&counts, 0, sizeof counts);
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        ++counts.lanes[0][x[i]];
        ++counts.lanes[1][x[i + 1]];
        ++counts.lanes[2][x[i + 2]];
        ++counts.lanes[3][x[i + 3]];
    }
    for (; i < n; ++i) ++counts.lanes[0][x[i]];
    for (uint32_t v = 0; v < 256; ++v)
        times[v] = counts.lanes[0][v] + counts.lanes[1][v] + counts.lanes[2][v] + counts.lanes[3][v];
}

// Each value's count goes to its bin, unseen values' zero counts too: a
// test for them would be mispredicted about as often as it saved work.
template <class C>
void add_values_to_bins(const uint32_t* times, uint8_t range_min, uint8_t range_max, double width,
                        Counters<C>& c) noexcept {
    const bool multiply = c.bin_count <= kMaxFastBins;
    const IntegerBinning b = multiply ? integer_binning(range_min, range_max, c.bin_count, width) : IntegerBinning{};
    for (uint32_t v = range_min; v <= range_max; ++v) {
        uint32_t d = v - range_min;
        uint32_t k = multiply && b.exact ? exact_bin(d, b) : bin_of_quotient(d / width, c.bin_count - 1);
        c.add_to_bin(k, times[v]);
    }
}

template <class C>
void count_by_value(const uint8_t* x, uint32_t n, uint8_t range_min, uint8_t range_max, double width,
                    Counters<C>& c) noexcept {
    uint32_t times[256];
    count_values(x, n, times);
    uint32_t below = 0, above = 0;
    for (uint32_t v = 0; v < range_min; ++v) below += times[v];
    // With the limits reversed, a value below range_min is not also above.
    for (uint32_t v = std::max<uint32_t>(range_max + 1u, range_min); v < 256; ++v) above += times[v];
    if (range_min <= range_max) add_values_to_bins(times, range_min, range_max, width, c);
    c.add_below(below);
    c.add_above(above);
}

// i16/u16: the vector kernels find the bins by integer multiplication with
// an exact binning (nearly always), else in double with the division near
// whole quotients. Without them the per-sample loop runs: one sample at a
// time, multiplying was no faster than dividing (the increments set the
// pace).
template <class T, class C>
struct CountKernels;
#define ZOLVEX_M_COUNT_KERNELS_OF(T, C, suffix)                                                    \
    template <>                                                                                    \
    struct CountKernels<T, C> {                                                                    \
        static constexpr core::KernelTable<CountKernel<T, C>> kTable = {                           \
            .avx2 = avx2::count_##suffix, .avx512 = avx512::count_##suffix};                       \
    };
ZOLVEX_M_COUNT_KERNEL_TYPES(ZOLVEX_M_COUNT_KERNELS_OF)
#undef ZOLVEX_M_COUNT_KERNELS_OF

// One entry per sample type: the counter widths share their levels.
const core::KernelReportRegistration kReports[] = {
    core::KernelReportRegistration({"histogram_lin_1d", "i16", core::level_of<CountKernels<int16_t, uint32_t>::kTable>}),
    core::KernelReportRegistration({"histogram_lin_1d", "u16", core::level_of<CountKernels<uint16_t, uint32_t>::kTable>}),
};

template <class T, class C>
bool count_with_kernel(const T* x, uint32_t n, T range_min, T range_max, double width, Counters<C>& c) noexcept {
    const CountKernel<T, C> kernel = CountKernels<T, C>::kTable.choose();
    if (kernel == nullptr) return false;
    const BlockCounts counts = kernel(x, n, integer_binning(range_min, range_max, c.bin_count, width), c.bins);
    c.counted += counts.binned;
    c.add_below(counts.below);
    c.add_above(counts.above);
    return true;
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
        if (has_bins && bin_count <= kMaxFastBins && range_min <= range_max &&
            count_with_kernel(x, length, range_min, range_max, width, c))
            return c.counted;
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
