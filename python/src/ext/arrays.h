// Shared plumbing of the extension: numpy arrays in and out, dispatch on the
// element type, status codes to exceptions, and calls without the GIL.
#pragma once

#include <nanobind/nanobind.h>
#include <nanobind/ndarray.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "zolvex_m.h"

namespace zpy {

namespace nb = nanobind;

// Input: any element type, read-only allowed (memory maps), C order. A
// strided view is copied to C order by nanobind on the way in.
using In = nb::ndarray<nb::ro, nb::numpy, nb::c_contig, nb::device::cpu>;
// An output the caller hands in: written in place, so never converted.
using Any = nb::ndarray<nb::numpy, nb::device::cpu>;

// A failed call of the library; becomes zolvex_m.Error in Python.
struct StatusError {
    int32_t status;
};

inline void check(int32_t status) {
    if (status != ZOLVEX_M_STATUS_SUCCESS) throw StatusError{status};
}

// Runs a call of the library with the GIL released, so other Python threads
// (and Dask workers in threads) go on meanwhile.
template <class Call>
decltype(auto) released(Call&& call) {
    nb::gil_scoped_release unlocked;
    return call();
}

template <class T> constexpr const char* dtype_name() {
    if constexpr (std::is_same_v<T, int8_t>) return "int8";
    else if constexpr (std::is_same_v<T, uint8_t>) return "uint8";
    else if constexpr (std::is_same_v<T, int16_t>) return "int16";
    else if constexpr (std::is_same_v<T, uint16_t>) return "uint16";
    else if constexpr (std::is_same_v<T, int32_t>) return "int32";
    else if constexpr (std::is_same_v<T, uint32_t>) return "uint32";
    else if constexpr (std::is_same_v<T, int64_t>) return "int64";
    else if constexpr (std::is_same_v<T, uint64_t>) return "uint64";
    else if constexpr (std::is_same_v<T, float>) return "float32";
    else return "float64";
}

// The element type a C function works on: that of its first pointer.
template <class F> struct element_of;
template <class R, class First, class... Rest> struct element_of<R (*)(First, Rest...)> {
    using type = std::remove_cv_t<std::remove_pointer_t<First>>;
};
template <class F> using element_t = typename element_of<F>::type;

// One operation of the library in all its element types, e.g.
// Overloads{zolvex_m_add_f32, zolvex_m_add_f64}. on() calls body(fn, T{})
// with the function for the array's element type, and refuses the others
// with a TypeError naming the types there are.
template <class... F> struct Overloads {
    std::tuple<F...> fns;
    explicit Overloads(F... f) : fns(f...) {}

    template <class Body> nb::object on(nb::dlpack::dtype dt, const char* what, Body&& body) const {
        nb::object result;
        bool found = false;
        std::apply([&](auto... fn) {
            ((!found && dt == nb::dtype<element_t<decltype(fn)>>()
                  ? (found = true, result = body(fn, element_t<decltype(fn)>{}), 0)
                  : 0),
             ...);
        }, fns);
        if (!found) {
            std::string names;
            ((names += std::string(names.empty() ? "" : ", ") + dtype_name<element_t<F>>()), ...);
            throw nb::type_error((std::string(what) + ": unsupported dtype; takes " + names).c_str());
        }
        return result;
    }
};

// A new numpy array of `count` elements of T in the shape given (owned by
// Python through a capsule).
template <class T> nb::ndarray<nb::numpy, T> new_array(size_t ndim, const size_t* shape) {
    size_t count = 1;
    for (size_t i = 0; i < ndim; ++i) count *= shape[i];
    T* data = new T[count ? count : 1];
    nb::capsule owner(data, [](void* p) noexcept { delete[] static_cast<T*>(p); });
    return nb::ndarray<nb::numpy, T>(data, ndim, shape, owner);
}

template <class T> nb::ndarray<nb::numpy, T> new_vector(size_t count) {
    return new_array<T>(1, &count);
}

template <class T> nb::ndarray<nb::numpy, T> like(const In& x) {
    size_t shape[8];
    if (x.ndim() > 8) throw nb::value_error("arrays of more than 8 dimensions are not taken");
    for (size_t i = 0; i < x.ndim(); ++i) shape[i] = x.shape(i);
    return new_array<T>(x.ndim(), shape);
}

inline bool c_contiguous(const Any& a) {
    int64_t expected = 1;
    for (size_t i = a.ndim(); i-- > 0;) {
        if (a.shape(i) != 1 && a.stride(i) != expected) return false;
        expected *= static_cast<int64_t>(a.shape(i));
    }
    return true;
}

// The caller's out= array: the right dtype and size, C order, writable.
template <class T> T* checked_out(const Any& out, size_t count, const char* what) {
    if (out.dtype() != nb::dtype<T>())
        throw nb::type_error((std::string(what) + ": out must have dtype " + dtype_name<T>()).c_str());
    if (out.size() != count)
        throw nb::value_error((std::string(what) + ": out has " + std::to_string(out.size()) +
                               " elements, the result " + std::to_string(count)).c_str());
    if (!c_contiguous(out))
        throw nb::value_error((std::string(what) + ": out must be C-contiguous").c_str());
    return static_cast<T*>(out.data());
}

// The result array: the caller's out= or a new one shaped like x.
template <class T> std::pair<nb::object, T*> result_like(const In& x, const nb::object& out, const char* what) {
    if (out.is_none()) {
        auto array = like<T>(x);
        T* data = array.data();
        return {nb::cast(array), data};
    }
    T* data = checked_out<T>(nb::cast<Any>(out), x.size(), what);
    return {out, data};
}

template <class T> const T* data_of(const In& x) { return static_cast<const T*>(x.data()); }

// The library counts in 32 bits: longer arrays are worked in pieces where
// the operation allows it.
constexpr size_t max_piece = std::numeric_limits<uint32_t>::max() & ~size_t{63};

template <class Piece> void in_pieces(size_t count, Piece&& piece) {
    for (size_t start = 0; start < count || start == 0; start += max_piece) {
        size_t length = count - start < max_piece ? count - start : max_piece;
        check(piece(start, static_cast<uint32_t>(length)));
        if (count == 0) break;
    }
}

inline uint32_t length32(size_t count, const char* what) {
    if (count > std::numeric_limits<uint32_t>::max())
        throw nb::value_error((std::string(what) + ": at most 2**32 - 1 samples per call").c_str());
    return static_cast<uint32_t>(count);
}

// A level given as a Python float, in the sample type of the call: integer
// samples take it rounded to the nearest value and clamped to their range.
template <class T> T level_as(double value) {
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(value);
    } else {
        if (value != value) throw nb::value_error("a level is NaN");
        constexpr double lo = static_cast<double>(std::numeric_limits<T>::min());
        constexpr double hi = static_cast<double>(std::numeric_limits<T>::max());
        if (value <= lo) return std::numeric_limits<T>::min();
        if (value >= hi) return std::numeric_limits<T>::max();
        double rounded = value < 0 ? -static_cast<double>(static_cast<int64_t>(-value + 0.5))
                                   : static_cast<double>(static_cast<int64_t>(value + 0.5));
        return static_cast<T>(rounded);
    }
}

// The entry of `table` (a map by name) called `name`, or a ValueError that
// lists the names there are.
template <class Table>
const typename Table::mapped_type& named(const Table& table, const std::string& name, const char* what) {
    auto found = table.find(name);
    if (found != table.end()) return found->second;
    std::string names;
    for (auto& entry : table) names += (names.empty() ? "" : ", ") + entry.first;
    throw nb::value_error((std::string(what) + " '" + name + "' is unknown; the names are " + names).c_str());
}

// Registration of each family.
void bind_elementwise(nb::module_& m);
void bind_statistics(nb::module_& m);
void bind_trigger(nb::module_& m);
void bind_generate(nb::module_& m);
void bind_dft(nb::module_& m);
void bind_filter(nb::module_& m);

// Set at interpreter exit once the library is finalised: handles still alive
// then are left to the process's end rather than released into a library
// that has unloaded its backends.
extern bool library_closed;

}  // namespace zpy

namespace zpy {

// A new array of any element type (given as a dtype), owned by Python.
inline nb::ndarray<nb::numpy> new_typed(nb::dlpack::dtype dt, size_t ndim, const size_t* shape) {
    size_t bytes = (dt.bits + 7) / 8;
    for (size_t i = 0; i < ndim; ++i) bytes *= shape[i];
    auto* data = new uint8_t[bytes ? bytes : 1];
    nb::capsule owner(data, [](void* p) noexcept { delete[] static_cast<uint8_t*>(p); });
    return nb::ndarray<nb::numpy>(data, ndim, shape, owner, nullptr, dt);
}

// The element-wise pattern: out (new, shaped like x, or the caller's) gets
// call(fn, x + at, out + at, n) over x in pieces, without the GIL.
template <class Ops, class Call>
nb::object map_into(const In& x, const nb::object& out, const char* what, const Ops& ops, Call&& call) {
    return ops.on(x.dtype(), what, [&](auto fn, auto t) {
        using T = decltype(t);
        auto [result, o] = result_like<T>(x, out, what);
        T* target = o;
        released([&] {
            in_pieces(x.size(), [&](size_t at, uint32_t n) { return call(fn, data_of<T>(x) + at, target + at, n); });
        });
        return result;
    });
}

}  // namespace zpy
