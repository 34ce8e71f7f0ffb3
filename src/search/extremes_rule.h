#pragma once
// The min/max rule every min/max kernel reproduces, in sample order: the
// running minimum m becomes x unless x > m, the running maximum M becomes x
// unless M > x. Equal samples therefore replace the running value (which
// only shows for zeros: -0.0 and +0.0 compare equal), and so does a NaN,
// which the next sample replaces again (no comparison with NaN is true).
//
// Inside an anonymous namespace: every translation unit that includes it
// (each compiled for its own instruction set) keeps its own copy, so the
// linker can never hand one level's code to another.

#include <cstddef>
#include <type_traits>

namespace search {
namespace {

template <class T>
inline T running_min(T m, T x) noexcept {
    return x > m ? m : x;
}

template <class T>
inline T running_max(T m, T x) noexcept {
    return m > x ? m : x;
}

// The rule over x[0..n), n >= 1, computing only the requested extremes.
template <class T, bool kMin, bool kMax>
inline void extremes_in_order(const T* x, size_t n, T* min, T* max) noexcept {
    T m = x[0], M = x[0];
    for (size_t i = 1; i < n; ++i) {
        if constexpr (kMin) m = running_min(m, x[i]);
        if constexpr (kMax) M = running_max(M, x[i]);
    }
    if constexpr (kMin) *min = m;
    if constexpr (kMax) *max = M;
}

// Calls run(want_min, want_max) with the two wishes as std::bool_constant,
// for the result pointers that are not null (at least one is not).
template <class T, class Run>
inline void with_requested(const T* min, const T* max, Run run) noexcept {
    if (min && max)
        run(std::true_type{}, std::true_type{});
    else if (min)
        run(std::true_type{}, std::false_type{});
    else
        run(std::false_type{}, std::true_type{});
}

} // namespace
} // namespace search
