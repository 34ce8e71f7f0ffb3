#pragma once
// The differential driver every kernel family's tests use: a call through
// the public functions runs in the generic regime and then in every wider
// regime the processor has, on every shape (lengths 0..300 and a few large
// ones, each at a start offset of 0..3 elements), and every regime must give
// the generic regime's results bit for bit (or those of the level the family
// names as its reference). Outputs live in GuardedOutput
// buffers, so a kernel that writes before its start or past its end fails
// too.
//
//   expect_regimes_agree([](const Shape& s) {
//       auto x = shaped_input<float>(s);                // s.length values at s.offset
//       GuardedOutput<float> out(s);
//       zolvex_m_abs_f32(x.data(), out.data(), s.length);
//       return out.values();
//   });
//
// A call returns anything same_results() compares: an arithmetic value, a
// std::vector, std::array, std::pair or std::tuple of those, or a struct
// with a `tie()` member returning a tuple of references.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/random_data.h"
#include "support/regimes.h"

namespace testing_support {

struct Shape {
    uint32_t length;
    uint32_t offset;  // elements before the first one, 0..3: unaligned starts
    uint32_t seed;    // for the inputs; the same in every regime
};

// Lengths 0..300 (every tail and head a kernel can have), then 1023, 4096
// and 65537; offsets cycle through 0..3.
inline std::vector<Shape> differential_shapes() {
    std::vector<Shape> shapes;
    uint32_t k = 0;
    auto add = [&](uint32_t length) { shapes.push_back({length, k % 4, 1000u + k}), ++k; };
    for (uint32_t n = 0; n <= 300; ++n) add(n);
    for (uint32_t n : {1023u, 4096u, 65537u}) add(n);
    return shapes;
}

// Random input (random_vector's mix) of s.length elements, placed at
// s.offset: data() + offset is the array to pass. The whole vector is
// exactly that long, so a sanitizer sees any read past the end.
template <class T>
class ShapedInput {
public:
    explicit ShapedInput(const Shape& s, uint32_t salt = 0) : offset_(s.offset) {
        storage_ = random_vector<T>(s.offset + s.length, s.seed * 7919u + salt);
    }
    const T* data() const { return storage_.data() + offset_; }
    T* data() { return storage_.data() + offset_; }

private:
    uint32_t offset_;
    std::vector<T> storage_;
};

template <class T>
ShapedInput<T> shaped_input(const Shape& s, uint32_t salt = 0) {
    return ShapedInput<T>(s, salt);
}

// An output array of s.length elements at s.offset, with sentinels before and
// after; values() checks them and returns the elements.
template <class T>
class GuardedOutput {
public:
    static constexpr uint32_t kGuard = 16;
    explicit GuardedOutput(const Shape& s, uint32_t length_override = UINT32_MAX)
        : length_(length_override == UINT32_MAX ? s.length : length_override), offset_(s.offset + kGuard) {
        storage_.resize(offset_ + length_ + kGuard);
        std::memset(storage_.data(), 0xA5, storage_.size() * sizeof(T));
        sentinel_ = storage_[0];
    }
    T* data() { return storage_.data() + offset_; }
    std::vector<T> values() const {
        for (uint32_t i = 0; i < offset_; ++i)
            if (!same_bits(storage_[i], sentinel_)) ADD_FAILURE() << "wrote " << (offset_ - i) << " elements before the output";
        for (size_t i = offset_ + length_; i < storage_.size(); ++i)
            if (!same_bits(storage_[i], sentinel_)) ADD_FAILURE() << "wrote past the output's end, at +" << (i - offset_);
        return std::vector<T>(storage_.begin() + offset_, storage_.begin() + offset_ + length_);
    }

private:
    uint32_t length_, offset_;
    std::vector<T> storage_;
    T sentinel_;
};

// Bitwise equality of results; `where` names the first difference.
template <class T>
bool same_results(const T& a, const T& b, std::string& where);

namespace detail {
template <class T>
concept HasTie = requires(const T& t) { t.tie(); };
template <class Tuple, size_t... I>
bool same_tuple(const Tuple& a, const Tuple& b, std::string& where, std::index_sequence<I...>) {
    bool same = true;
    auto part = [&](size_t i, const auto& x, const auto& y) {
        if (same && !same_results(x, y, where)) where = "part " + std::to_string(i) + ": " + where, same = false;
    };
    (part(I, std::get<I>(a), std::get<I>(b)), ...);
    return same;
}
template <class Range>
bool same_range(const Range& a, const Range& b, std::string& where) {
    if (a.size() != b.size()) return where = "sizes " + std::to_string(a.size()) + " and " + std::to_string(b.size()), false;
    for (size_t i = 0; i < a.size(); ++i)
        if (!same_results(a[i], b[i], where)) return where = "element " + std::to_string(i) + ": " + where, false;
    return true;
}
} // namespace detail

template <class T>
bool same_results(const T& a, const T& b, std::string& where) {
    if constexpr (std::is_arithmetic_v<T>) {
        if (same_bits(a, b)) return true;
        where = show(a) + " against " + show(b);
        return false;
    } else if constexpr (detail::HasTie<T>) {
        return same_results(a.tie(), b.tie(), where);
    } else if constexpr (requires { std::tuple_size<T>::value; a.size(); }) {
        return detail::same_range(a, b, where);  // std::array
    } else if constexpr (requires { std::tuple_size<T>::value; }) {
        return detail::same_tuple(a, b, where, std::make_index_sequence<std::tuple_size_v<T>>());
    } else {
        return detail::same_range(a, b, where);  // std::vector and the like
    }
}

// The level whose results a level must give bit for bit: the generic
// level's for most families; a family whose fused multiply-add levels round
// differently names the first of those for them.
using ReferenceLevel = core::Isa (*)(core::Isa);
inline core::Isa generic_level(core::Isa) { return core::Isa::generic; }

// Runs call(shape) for every shape in `shapes` in each regime and expects
// the result of each regime to equal that of its reference level's regime
// (by default the generic one). Stops at the first difference; restores the
// option flags.
template <class Call>
void expect_regimes_agree(Call&& call, const std::vector<Shape>& shapes = differential_shapes(),
                          ReferenceLevel reference_of = generic_level) {
    using Result = std::decay_t<decltype(call(shapes.front()))>;
    OptionsSnapshot restore;
    ASSERT_TRUE(apply_regime(core::Isa::generic));
    std::vector<Result> expected[core::kIsaCount];
    for (core::Isa isa : core::kIsaNarrowestFirst) {
        if (!apply_regime(isa)) continue;
        core::Isa reference = reference_of(isa);
        std::vector<Result>& want = expected[static_cast<size_t>(reference)];
        if (want.empty()) {
            // The first regime of its group: its results are the reference.
            for (const Shape& s : shapes) want.push_back(call(s));
            if (::testing::Test::HasFailure()) return;
            continue;
        }
        for (size_t k = 0; k < shapes.size(); ++k) {
            std::string where;
            Result got = call(shapes[k]);
            if (::testing::Test::HasFailure()) return;
            if (!same_results(got, want[k], where)) {
                ADD_FAILURE() << "regime " << core::isa_name(isa) << " differs from " << core::isa_name(reference)
                              << " at length " << shapes[k].length << ", offset " << shapes[k].offset << ": "
                              << where;
                return;
            }
        }
    }
}

} // namespace testing_support
