// Every arithmetic function against a scalar reference written here, on
// random data with infinities, NaNs, signed zeros and subnormals; n = 0 and
// in-place use.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "support/random_data.h"
#include "support/regimes.h"
#include "zolvex_m.h"

namespace {

using testing_support::random_vector;
using testing_support::same_bits;

template <class T>
using Binary = int32_t (*)(const T*, const T*, T*, uint32_t);
template <class T>
using WithConstant = int32_t (*)(const T*, T*, uint32_t, T);

template <class T>
struct BinaryCase {
    const char* name;
    Binary<T> function;
    std::function<T(T, T)> reference;
};

template <class T>
struct ConstantCase {
    const char* name;
    WithConstant<T> function;
    std::function<T(T, T)> reference;
};

#define BINARY_CASES(T, sfx)                                                                       \
    std::vector<BinaryCase<T>> {                                                                   \
        {"add", zolvex_m_add_##sfx, [](T a, T b) { return T(a + b); }},                            \
            {"sub", zolvex_m_sub_##sfx, [](T a, T b) { return T(a - b); }},                        \
            {"mul", zolvex_m_mul_##sfx, [](T a, T b) { return T(a * b); }},                        \
            {"div", zolvex_m_div_##sfx, [](T a, T b) { return T(a / b); }},                        \
    }

#define CONSTANT_CASES(T, sfx)                                                                     \
    std::vector<ConstantCase<T>> {                                                                 \
        {"addc", zolvex_m_addc_##sfx, [](T v, T c) { return T(v + c); }},                          \
            {"subc", zolvex_m_subc_##sfx, [](T v, T c) { return T(v - c); }},                      \
            {"csub", zolvex_m_csub_##sfx, [](T v, T c) { return T(c - v); }},                      \
            {"mulc", zolvex_m_mulc_##sfx, [](T v, T c) { return T(v * c); }},                      \
            {"divc", zolvex_m_divc_##sfx, [](T v, T c) { return T(v / c); }},                      \
            {"cdiv", zolvex_m_cdiv_##sfx, [](T v, T c) { return T(c / v); }},                      \
            {"modc", zolvex_m_modc_##sfx, [](T v, T c) { return T(std::fmod(v, c)); }},            \
    }

template <class T>
std::vector<BinaryCase<T>> binary_cases();
template <>
std::vector<BinaryCase<float>> binary_cases() { return BINARY_CASES(float, f32); }
template <>
std::vector<BinaryCase<double>> binary_cases() { return BINARY_CASES(double, f64); }

template <class T>
std::vector<ConstantCase<T>> constant_cases();
template <>
std::vector<ConstantCase<float>> constant_cases() { return CONSTANT_CASES(float, f32); }
template <>
std::vector<ConstantCase<double>> constant_cases() { return CONSTANT_CASES(double, f64); }

template <class T>
void expect_same(const std::vector<T>& got, const std::vector<T>& want, const char* name, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        // Two NaNs count as equal whatever their payloads: IEEE leaves the
        // payload of an operation's NaN open.
        if (std::isnan(got[i]) && std::isnan(want[i])) continue;
        ASSERT_TRUE(same_bits(got[i], want[i])) << name << " n=" << n << " i=" << i << ": " << got[i] << " vs "
                                                << want[i];
    }
}

template <class T>
class Arithmetic : public ::testing::Test {};
using Types = ::testing::Types<float, double>;
TYPED_TEST_SUITE(Arithmetic, Types);

TYPED_TEST(Arithmetic, BinaryMatchesReferenceOutOfPlaceAndInPlace) {
    using T = TypeParam;
    for (const auto& c : binary_cases<T>()) {
        for (uint32_t n : {1u, 7u, 64u, 1001u}) {
            auto x = random_vector<T>(n, n), y = random_vector<T>(n, n + 1);
            std::vector<T> want(n), out(n + 4, T(-7));
            for (uint32_t i = 0; i < n; ++i) want[i] = c.reference(x[i], y[i]);
            ASSERT_EQ(c.function(x.data(), y.data(), out.data(), n), 0);
            expect_same(out, want, c.name, n);
            EXPECT_EQ(out[n], T(-7)) << "wrote past n";

            auto in_x = x;
            c.function(in_x.data(), y.data(), in_x.data(), n);
            expect_same(in_x, want, c.name, n);
            auto in_y = y;
            c.function(x.data(), in_y.data(), in_y.data(), n);
            expect_same(in_y, want, c.name, n);
        }
    }
}

TYPED_TEST(Arithmetic, WithConstantMatchesReferenceOutOfPlaceAndInPlace) {
    using T = TypeParam;
    const T constants[] = {T(3), T(-0.5), T(0), -T(0), std::numeric_limits<T>::infinity(),
                           std::numeric_limits<T>::quiet_NaN()};
    for (const auto& c : constant_cases<T>()) {
        for (T k : constants) {
            for (uint32_t n : {1u, 5u, 300u}) {
                auto x = random_vector<T>(n, n * 3);
                std::vector<T> want(n), out(n + 1, T(-7));
                for (uint32_t i = 0; i < n; ++i) want[i] = c.reference(x[i], k);
                ASSERT_EQ(c.function(x.data(), out.data(), n, k), 0);
                expect_same(out, want, c.name, n);
                EXPECT_EQ(out[n], T(-7));
                c.function(x.data(), x.data(), n, k);
                expect_same(x, want, c.name, n);
            }
        }
    }
}

TYPED_TEST(Arithmetic, ZeroLengthTouchesNothing) {
    using T = TypeParam;
    // Pointers that would fault if dereferenced.
    const T* bad_in = reinterpret_cast<const T*>(uintptr_t(16));
    T* bad_out = reinterpret_cast<T*>(uintptr_t(16));
    for (const auto& c : binary_cases<T>()) EXPECT_EQ(c.function(bad_in, bad_in, bad_out, 0), 0) << c.name;
    for (const auto& c : constant_cases<T>()) EXPECT_EQ(c.function(bad_in, bad_out, 0, T(2)), 0) << c.name;
    if constexpr (std::is_same_v<T, float>) {
        EXPECT_EQ(zolvex_m_mulc_addc_f32(bad_in, bad_out, 0, 1, 2), 0);
        EXPECT_EQ(zolvex_m_abs_f32(bad_in, bad_out, 0), 0);
        EXPECT_EQ(zolvex_m_set_f32(bad_out, 0, 1), 0);
    } else {
        EXPECT_EQ(zolvex_m_mulc_addc_f64(bad_in, bad_out, 0, 1, 2), 0);
        EXPECT_EQ(zolvex_m_abs_f64(bad_in, bad_out, 0), 0);
        EXPECT_EQ(zolvex_m_set_f64(bad_out, 0, 1), 0);
    }
}

TEST(Arithmetic, WorkedExamples) {
    double x[2] = {1, 2}, out[2];
    zolvex_m_csub_f64(x, out, 2, 10.0);
    EXPECT_EQ(out[0], 9.0);
    EXPECT_EQ(out[1], 8.0);
    double y[2] = {2, 4};
    zolvex_m_cdiv_f64(y, out, 2, 1.0);
    EXPECT_EQ(out[0], 0.5);
    EXPECT_EQ(out[1], 0.25);
    double r[1] = {-7};
    zolvex_m_modc_f64(r, out, 1, 3.0);
    EXPECT_EQ(out[0], -1.0);
    zolvex_m_modc_f64(r, out, 1, 0.0);
    EXPECT_TRUE(std::isnan(out[0]));
    float z[1] = {-0.0f}, a[1];
    zolvex_m_abs_f32(z, a, 1);
    EXPECT_FALSE(std::signbit(a[0]));
    float one[1] = {1.0f}, inf[1];
    zolvex_m_divc_f32(one, inf, 1, 0.0f);
    EXPECT_TRUE(std::isinf(inf[0]));
}

// set: every width, odd lengths and misaligned starts (the 16-bit fill may
// pair elements into words internally), nothing written past n.
template <class T, class Set>
void check_fill(Set set, T value) {
    for (uint32_t offset = 0; offset < 3; ++offset) {
        for (uint32_t n : {0u, 1u, 2u, 3u, 17u, 258u}) {
            std::vector<T> buffer(n + 8, T(0x5A));
            ASSERT_EQ(set(buffer.data() + offset, n, value), 0);
            for (uint32_t i = 0; i < buffer.size(); ++i) {
                bool inside = i >= offset && i < offset + n;
                ASSERT_EQ(buffer[i], inside ? value : T(0x5A)) << "offset " << offset << " n " << n << " i " << i;
            }
        }
    }
}

TEST(Set, EveryTypeFillsExactlyItsRange) {
    check_fill<uint8_t>(zolvex_m_set_u8, 0xC3);
    check_fill<int16_t>(zolvex_m_set_i16, -12345);
    check_fill<uint16_t>(zolvex_m_set_u16, 0xBEEF);
    check_fill<uint32_t>(zolvex_m_set_u32, 0xDEADBEEF);
    check_fill<float>(zolvex_m_set_f32, -1.5f);
    check_fill<double>(zolvex_m_set_f64, 2.25);
}

} // namespace
