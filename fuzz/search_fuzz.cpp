// Index searches, extremes, sums and linear histograms of every sample type
// against their rules written out sample by sample, in a kernel regime the
// input picks and in the generic one. Histograms get bin counts up to 2^21,
// NaN and infinite limits, reversed ranges and counters already filled near
// their wrap-around.

#include <cmath>

#include "fuzz_support.h"

namespace {

template <class T>
struct Functions;
#define ZOLVEX_M_SEARCH_FUNCTIONS(T, s)                                                                            \
    template <>                                                                                                     \
    struct Functions<T> {                                                                                           \
        static constexpr decltype(zolvex_m_index_gt_##s)* compare[] = {zolvex_m_index_gt_##s, zolvex_m_index_gte_##s, \
                                                                      zolvex_m_index_lt_##s, zolvex_m_index_lte_##s}; \
        static constexpr decltype(zolvex_m_index_in_##s)* band[] = {zolvex_m_index_in_##s, zolvex_m_index_out_##s}; \
        static constexpr decltype(zolvex_m_index_max_##s)* extreme[] = {zolvex_m_index_max_##s,                     \
                                                                        zolvex_m_index_min_##s};                    \
        static constexpr auto minmax = zolvex_m_minmax_##s;                                                         \
        static constexpr auto h16 = zolvex_m_histogram_lin_1d_##s##u16;                                             \
        static constexpr auto h32 = zolvex_m_histogram_lin_1d_##s##u32;                                             \
        static constexpr auto h64 = zolvex_m_histogram_lin_1d_##s##u64;                                             \
    };
ZOLVEX_M_SEARCH_FUNCTIONS(uint8_t, u8)
ZOLVEX_M_SEARCH_FUNCTIONS(int16_t, i16)
ZOLVEX_M_SEARCH_FUNCTIONS(uint16_t, u16)
ZOLVEX_M_SEARCH_FUNCTIONS(float, f32)
ZOLVEX_M_SEARCH_FUNCTIONS(double, f64)

struct Args {
    uint8_t what, regime, from, bins_shape;
    uint32_t bins_raw, fill;
    uint8_t counters;
};

// Every index search from `from` on, then from one past each hit.
template <class T>
std::vector<uint32_t> index_searches(const std::vector<T>& x, uint32_t op, T a, T b, uint32_t from) {
    using F = Functions<T>;
    const uint32_t n = uint32_t(x.size());
    auto rule = [&](T v) {
        switch (op) {
        case 0: return v > a;
        case 1: return v >= a;
        case 2: return v < a;
        case 3: return v <= a;
        case 4: return b <= v && v <= a;
        default: return v > a || v < b;
        }
    };
    std::vector<uint32_t> found;
    for (uint32_t start = from;; ) {
        uint32_t expected = start;
        while (expected < n && !rule(x[expected])) ++expected;
        uint32_t index = start;
        int32_t status = op < 4 ? F::compare[op](x.data(), n, a, &index) : F::band[op - 4](x.data(), n, a, b, &index);
        fuzz::check(status == 0 && index == (start >= n ? n : expected), "index search against its rule", op);
        found.push_back(index);
        if (index >= n) return found;
        start = index + 1;
    }
}

template <class T>
void extreme(const std::vector<T>& x, bool is_max, T seed, uint32_t from) {
    const uint32_t n = uint32_t(x.size());
    uint32_t expected = n;
    T best = seed;
    for (uint32_t i = from; i < n; ++i)
        if (is_max ? x[i] > best : x[i] < best) best = x[i], expected = i;
    uint32_t index = from;
    T value = seed;
    fuzz::check(Functions<T>::extreme[is_max ? 0 : 1](x.data(), n, &index, &value) == 0, "max/min status");
    fuzz::check(index == expected && std::memcmp(&value, &best, sizeof(T)) == 0, "max/min against its rule");
}

template <class T>
void minmax(const std::vector<T>& x) {
    T lo{}, hi{}, m{}, M{};
    int32_t status = Functions<T>::minmax(x.data(), uint32_t(x.size()), &lo, &hi);
    if (x.empty()) return fuzz::check(status == ZOLVEX_M_STATUS_ERROR_DATA_LENGTH, "minmax of nothing");
    m = M = x[0];
    for (T v : x) {
        if (!(v > m)) m = v;
        if (!(M > v)) M = v;
    }
    fuzz::check(status == 0 && std::memcmp(&lo, &m, sizeof(T)) == 0 && std::memcmp(&hi, &M, sizeof(T)) == 0,
                "minmax against its rule");
}

// The histogram rule, sample by sample, onto the same pre-filled counters.
template <class T, class C>
uint32_t histogram_rule(const std::vector<T>& x, T lo, T hi, std::vector<C>& bins, C* below, C* above) {
    const uint32_t count = uint32_t(bins.size());
    double width;
    if constexpr (std::is_integral_v<T>)
        width = double(int64_t(hi) - int64_t(lo)) / count;
    else
        width = (double(hi) - double(lo)) / count;
    uint32_t counted = 0;
    for (T v : x) {
        if (v < lo) {
            if (below) ++*below, ++counted;
        } else if (v > hi) {
            if (above) ++*above, ++counted;
        } else if (count > 0) {
            double q;
            if constexpr (std::is_integral_v<T>)
                q = double(int64_t(v) - int64_t(lo)) / width;
            else
                q = (double(v) - double(lo)) / width;
            uint64_t k = 0;
            if (q >= 0 && q < 9223372036854775808.0) k = uint64_t(q);
            if (k >= count) k = count - 1;
            ++bins[k];
            ++counted;
        }
    }
    return counted;
}

template <class T, class C, class H>
void histogram(H h, const std::vector<T>& x, T lo, T hi, const Args& args) {
    uint32_t count = args.bins_raw % 300;
    if (args.bins_shape == 0x5A) count = (1u << 20) + args.bins_raw % (1u << 20);
    // Pre-filled counters, some of them at the edge of their wrap-around.
    std::vector<C> bins(count);
    for (uint32_t i = 0; i < count; ++i) bins[i] = C(args.fill * (i + 1) - ((i & 3) == 0 ? i : 0));
    C out_of_range[2] = {C(~C(0) - (args.fill & 3)), C(args.fill)};
    std::vector<C> expected = bins;
    C expected_range[2] = {out_of_range[0], out_of_range[1]};
    const bool below = args.counters & 1, above = args.counters & 2;
    const uint32_t rule = histogram_rule(x, lo, hi, expected, below ? &expected_range[0] : nullptr,
                                         above ? &expected_range[1] : nullptr);
    const uint32_t counted = h(x.data(), uint32_t(x.size()), lo, hi, count == 0 && (args.counters & 4) ? nullptr : bins.data(),
                               count, below ? &out_of_range[0] : nullptr, above ? &out_of_range[1] : nullptr);
    fuzz::check(counted == rule, "histogram count against its rule", counted);
    fuzz::check(bins == expected, "histogram bins against its rule");
    fuzz::check(std::memcmp(out_of_range, expected_range, sizeof out_of_range) == 0, "below/above against the rule");
}

template <class T>
void fuzz_type(fuzz::Bytes& in) {
    const Args args = in.take<Args>();
    const T a = in.level<T>(), b = in.level<T>();
    const std::vector<T> x = in.samples<T>(1u << 14);
    const uint32_t from = args.from % (x.size() + 2);
    auto run = [&] {
        switch (args.what % 8) {
        case 0: case 1: return index_searches(x, args.bins_shape % 6, a, b, from);
        case 2: extreme(x, true, a, from); break;
        case 3: extreme(x, false, a, from); break;
        case 4: minmax(x); break;
        case 5: histogram<T, uint16_t>(Functions<T>::h16, x, a, b, args); break;
        case 6: histogram<T, uint32_t>(Functions<T>::h32, x, a, b, args); break;
        default: histogram<T, uint64_t>(Functions<T>::h64, x, a, b, args); break;
        }
        return std::vector<uint32_t>{};
    };
    fuzz::generic_against_vector(args.regime, run, [](const auto& g, const auto& v) {
        fuzz::check(g == v, "a kernel regime against the generic one");
    });
}

// The sums: integers exactly; f32 in order in double; f64 in the order the
// options choose (partial sums by index modulo 4 with AVX, 16 with SSE4.2).
template <class T, class S>
S plain_sum(const std::vector<T>& x, S start) {
    S total = 0;
    for (T v : x) total += S(v);
    return total + start;
}

double f64_sum(const std::vector<double>& x, double start, bool squares) {
    uint32_t avx = 0, sse = 0;
    zolvex_m_getopt(ZOLVEX_M_OPT_AVX, &avx);
    zolvex_m_getopt(ZOLVEX_M_OPT_SSE42, &sse);
    auto term = [&](double v) { return squares ? v * v : v; };
    const size_t parts = avx ? 4 : sse ? 16 : 0;
    if (parts == 0) {
        double total = 0;
        for (double v : x) total += term(v);
        return start + total;
    }
    std::vector<double> partial(parts, 0.0);
    const size_t whole = x.size() - x.size() % parts;
    for (size_t i = 0; i < whole; ++i) partial[i % parts] += term(x[i]);
    for (size_t i = whole; i < x.size(); ++i) start += term(x[i]);
    for (double p : partial) start += p;
    return start;
}

template <class T>
bool same_bits(T a, T b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0 || (std::isnan(double(a)) && std::isnan(double(b)));
}

template <class T>
std::vector<uint32_t> exact_sum(fuzz::Bytes& in, uint64_t start, int32_t (*sum)(const T*, uint32_t, uint64_t*)) {
    auto x = in.samples<T>();
    uint64_t s = start;
    sum(x.data(), uint32_t(x.size()), &s);
    fuzz::check(s == plain_sum<T, uint64_t>(x, start), "sum of integers");
    return {};
}

void sums(fuzz::Bytes& in) {
    const uint8_t what = in.take<uint8_t>(), regime = in.take<uint8_t>();
    const uint64_t start = in.take<uint64_t>();
    auto run = [&]() -> std::vector<uint32_t> {
        switch (what % 8) {
        case 0: return exact_sum<uint8_t>(in, start, zolvex_m_sum_u8);
        case 1: return exact_sum<uint16_t>(in, start, zolvex_m_sum_u16);
        case 2: return exact_sum<uint32_t>(in, start, zolvex_m_sum_u32);
        case 3: {
            auto x = in.samples<int16_t>();
            int64_t s = int64_t(start);
            zolvex_m_sum_i16(x.data(), uint32_t(x.size()), &s);
            uint64_t total = start;
            for (int16_t v : x) total += uint64_t(int64_t(v));
            fuzz::check(uint64_t(s) == total, "sum_i16");
            break;
        }
        case 4: case 5: {
            auto x = in.samples<float>();
            float fs;
            double ds, total = 0;
            std::memcpy(&fs, &start, sizeof fs);
            std::memcpy(&ds, &start, sizeof ds);
            for (float v : x) total += (what % 8 == 4) ? double(v) : double(v) * double(v);
            if (what % 8 == 4) {
                float expected = float(total + double(fs));
                zolvex_m_sum_f32(x.data(), uint32_t(x.size()), &fs);
                fuzz::check(same_bits(fs, expected), "sum_f32");
            } else {
                double expected = total + ds;
                zolvex_m_square_sum_f32(x.data(), uint32_t(x.size()), &ds);
                fuzz::check(same_bits(ds, expected), "square_sum_f32");
            }
            break;
        }
        default: {
            auto x = in.samples<double>();
            double s;
            std::memcpy(&s, &start, sizeof s);
            const bool squares = what & 1;
            double expected = f64_sum(x, s, squares);
            (squares ? zolvex_m_square_sum_f64 : zolvex_m_sum_f64)(x.data(), uint32_t(x.size()), &s);
            fuzz::check(same_bits(s, expected), "sum_f64 / square_sum_f64 in the options' order");
            break;
        }
        }
        return {};
    };
    // Sums read the samples once per regime: take them before.
    fuzz::Bytes again = in;
    fuzz::generic_against_vector(regime, [&] { in = again; return run(); }, [](const auto&, const auto&) {});
}

} // namespace

ZOLVEX_M_FUZZ_INITIALISE

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Bytes in(data, size);
    switch (in.pick(6)) {
    case 0: fuzz_type<uint8_t>(in); break;
    case 1: fuzz_type<int16_t>(in); break;
    case 2: fuzz_type<uint16_t>(in); break;
    case 3: fuzz_type<float>(in); break;
    case 4: fuzz_type<double>(in); break;
    default: sums(in); break;
    }
    return 0;
}
