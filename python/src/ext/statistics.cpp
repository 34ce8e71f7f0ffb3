// Block statistics, histograms and index searches.
#include "arrays.h"

#include <nanobind/stl/pair.h>
#include <nanobind/stl/string.h>

namespace zpy {
namespace {

using nb::arg;

#define ZPY_SAMPLES(name) \
    Overloads{zolvex_m_##name##_u8, zolvex_m_##name##_i16, zolvex_m_##name##_u16, zolvex_m_##name##_f32, zolvex_m_##name##_f64}

// Python number of a sample or sum.
template <class T> nb::object number(T value) {
    if constexpr (std::is_floating_point_v<T>) return nb::float_(static_cast<double>(value));
    else return nb::int_(static_cast<int64_t>(value));
}

nb::object minmax(const In& x) {
    auto ops = Overloads{zolvex_m_minmax_i8, zolvex_m_minmax_i16, zolvex_m_minmax_i32, zolvex_m_minmax_i64,
                         zolvex_m_minmax_u8, zolvex_m_minmax_u16, zolvex_m_minmax_u32, zolvex_m_minmax_u64,
                         zolvex_m_minmax_f32, zolvex_m_minmax_f64};
    return ops.on(x.dtype(), "minmax", [&](auto fn, auto t) {
        using T = decltype(t);
        if (x.size() == 0) throw nb::value_error("minmax: an empty array has no extremes");
        T low{}, high{};
        bool first = true;
        released([&] {
            in_pieces(x.size(), [&](size_t at, uint32_t n) {
                T l{}, h{};
                int32_t status = fn(data_of<T>(x) + at, n, &l, &h);
                // The library's rule in sample order: a later piece replaces
                // unless beaten, as a later sample would.
                if (status == 0) {
                    low = first || !(l > low) ? l : low;
                    high = first || !(high > h) ? h : high;
                    first = false;
                }
                return status;
            });
        });
        return nb::object(nb::make_tuple(number(low), number(high)));
    });
}

nb::object sum(const In& x) {
    auto ops = Overloads{zolvex_m_sum_u8, zolvex_m_sum_i16, zolvex_m_sum_u16, zolvex_m_sum_u32,
                         zolvex_m_sum_f32, zolvex_m_sum_f64};
    return ops.on(x.dtype(), "sum", [&](auto fn, auto t) {
        using T = decltype(t);
        using Sum = std::conditional_t<std::is_same_v<T, int16_t>, int64_t,
                    std::conditional_t<std::is_integral_v<T>, uint64_t, T>>;
        Sum total{};
        released([&] { in_pieces(x.size(), [&](size_t at, uint32_t n) { return fn(data_of<T>(x) + at, n, &total); }); });
        return number(total);
    });
}

nb::object square_sum(const In& x) {
    return Overloads{zolvex_m_square_sum_f32, zolvex_m_square_sum_f64}.on(x.dtype(), "square_sum", [&](auto fn, auto t) {
        using T = decltype(t);
        double total = 0;
        released([&] { in_pieces(x.size(), [&](size_t at, uint32_t n) { return fn(data_of<T>(x) + at, n, &total); }); });
        return nb::object(nb::float_(total));
    });
}

// numpy.histogram's counts (64-bit) for equal bins over [low, high], plus
// the counts below and above the range. The bins accumulate into `counts`
// when given, so a stream adds block after block.
nb::object histogram(const In& x, uint32_t bins, std::pair<double, double> range, nb::object counts) {
    auto ops = Overloads{zolvex_m_histogram_lin_1d_u8u64, zolvex_m_histogram_lin_1d_i16u64,
                         zolvex_m_histogram_lin_1d_u16u64, zolvex_m_histogram_lin_1d_f32u64,
                         zolvex_m_histogram_lin_1d_f64u64};
    return ops.on(x.dtype(), "histogram", [&](auto fn, auto t) {
        using T = decltype(t);
        nb::object result = counts;
        if (counts.is_none()) {
            auto fresh = new_vector<uint64_t>(size_t{bins} + 2);
            std::memset(fresh.data(), 0, (size_t{bins} + 2) * sizeof(uint64_t));
            result = nb::cast(fresh);
        }
        uint64_t* c = checked_out<uint64_t>(nb::cast<Any>(result), size_t{bins} + 2, "histogram");
        T low = level_as<T>(range.first), high = level_as<T>(range.second);
        released([&] {
            in_pieces(x.size(), [&](size_t at, uint32_t n) {
                fn(data_of<T>(x) + at, n, low, high, c + 1, bins, c, c + bins + 1);
                return 0;
            });
        });
        return result;
    });
}

// The first index from `start` whose sample meets the condition, or None.
nb::object find_first(const In& x, const std::string& condition, double level, double level_low, size_t start) {
    uint32_t n = length32(x.size(), "find");
    uint32_t index = start > n ? n : static_cast<uint32_t>(start);
    auto level_search = [&](auto ops) {
        return ops.on(x.dtype(), "find", [&](auto fn, auto t) {
            using T = decltype(t);
            check(released([&] { return fn(data_of<T>(x), n, level_as<T>(level), &index); }));
            return nb::object();
        });
    };
    auto band_search = [&](auto ops) {
        return ops.on(x.dtype(), "find", [&](auto fn, auto t) {
            using T = decltype(t);
            check(released([&] { return fn(data_of<T>(x), n, level_as<T>(level), level_as<T>(level_low), &index); }));
            return nb::object();
        });
    };
    if (condition == ">") level_search(ZPY_SAMPLES(index_gt));
    else if (condition == ">=") level_search(ZPY_SAMPLES(index_gte));
    else if (condition == "<") level_search(ZPY_SAMPLES(index_lt));
    else if (condition == "<=") level_search(ZPY_SAMPLES(index_lte));
    else if (condition == "in") band_search(ZPY_SAMPLES(index_in));
    else if (condition == "out") band_search(ZPY_SAMPLES(index_out));
    else throw nb::value_error("find: condition is one of >, >=, <, <=, in, out");
    return index < n ? nb::object(nb::int_(index)) : nb::none();
}

template <bool Max> nb::object arg_extreme(const In& x) {
    auto body = [&](auto fn, auto t) {
        using T = decltype(t);
        uint32_t n = length32(x.size(), "argmax");
        if (n == 0) throw nb::value_error("argmax/argmin: an empty array has no extremes");
        uint32_t index = 0;
        T value = Max ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
        if constexpr (std::is_floating_point_v<T>) value = Max ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
        check(released([&] { return fn(data_of<T>(x), n, &index, &value); }));
        // Every sample equal to the seed: the first one is the extreme.
        return nb::object(nb::int_(index < n ? index : 0));
    };
    if constexpr (Max) return ZPY_SAMPLES(index_max).on(x.dtype(), "argmax", body);
    else return ZPY_SAMPLES(index_min).on(x.dtype(), "argmin", body);
}

}  // namespace

void bind_statistics(nb::module_& m) {
    m.def("minmax", &minmax, arg("x"));
    m.def("sum", &sum, arg("x"));
    m.def("square_sum", &square_sum, arg("x"));
    m.def("_histogram", &histogram, arg("x"), arg("bins"), arg("range"), arg("counts") = nb::none());
    m.def("find", &find_first, arg("x"), arg("condition"), arg("level"), arg("level_low") = 0.0, arg("start") = 0);
    m.def("argmax", &arg_extreme<true>, arg("x"));
    m.def("argmin", &arg_extreme<false>, arg("x"));
}

}  // namespace zpy
