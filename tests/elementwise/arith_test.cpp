// The arithmetic, abs, mulc_addc and set functions on every shape of the
// differential driver: in every regime each element equals a scalar
// reference written here, out of place and in place, and every regime gives
// the generic regime's results bit for bit (NaN payloads aside where the
// header leaves them open).

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using namespace testing_support;

template <class T>
bool same_value(T got, T want, bool any_nan) {
    return (any_nan && std::isnan(got) && std::isnan(want)) || same_bits(got, want);
}

// run(s, x, y, out, n) must give reference(s, x[i], y[i]) in out[i], also
// with out on x (and on y when `on_y`). With `any_nan` every NaN counts as
// equal: the payload of an operation's NaN is not promised, and the
// compiler may swap the operands of a commutative one.
template <class T, class Run, class Reference>
void expect_elementwise(Run run, Reference reference, bool on_y, bool any_nan) {
    expect_regimes_agree([&](const Shape& s) {
        auto x = shaped_input<T>(s), y = shaped_input<T>(s, 1);
        GuardedOutput<T> out(s);
        run(s, x.data(), y.data(), out.data(), s.length);
        std::vector<T> got = out.values();
        auto on_x = x, on_y_copy = y;
        run(s, on_x.data(), y.data(), on_x.data(), s.length);
        if (on_y) run(s, x.data(), on_y_copy.data(), on_y_copy.data(), s.length);
        for (uint32_t i = 0; i < s.length; ++i) {
            const T want = reference(s, x.data()[i], y.data()[i]);
            if (!same_value(got[i], want, any_nan) || !same_bits(on_x.data()[i], got[i]) ||
                (on_y && !same_bits(on_y_copy.data()[i], got[i]))) {
                ADD_FAILURE() << "element " << i << " of " << s.length << ": " << show(got[i]) << ", in place "
                              << show(on_x.data()[i]) << ", want " << show(want);
                break;
            }
            if (any_nan && std::isnan(got[i])) got[i] = std::numeric_limits<T>::quiet_NaN();
        }
        return got;
    });
}

template <class T>
struct Functions {
    int32_t (*binary[4])(const T*, const T*, T*, uint32_t);  // add sub mul div
    int32_t (*constant[7])(const T*, T*, uint32_t, T);       // addc subc csub mulc divc cdiv modc
    int32_t (*abs)(const T*, T*, uint32_t);
};

template <class T>
void check_type(const Functions<T>& f) {
    using F = T (*)(T, T);
    const F binary_reference[] = {[](T a, T b) -> T { return a + b; }, [](T a, T b) -> T { return a - b; },
                                  [](T a, T b) -> T { return a * b; }, [](T a, T b) -> T { return a / b; }};
    for (int k = 0; k < 4; ++k) {
        SCOPED_TRACE("binary operation " + std::to_string(k));
        expect_elementwise<T>(
            [&](const Shape&, const T* x, const T* y, T* out, uint32_t n) { EXPECT_EQ(f.binary[k](x, y, out, n), 0); },
            [&](const Shape&, T a, T b) { return binary_reference[k](a, b); }, true, true);
    }
    const F constant_reference[] = {[](T v, T c) -> T { return v + c; }, [](T v, T c) -> T { return v - c; },
                                    [](T v, T c) -> T { return c - v; }, [](T v, T c) -> T { return v * c; },
                                    [](T v, T c) -> T { return v / c; }, [](T v, T c) -> T { return c / v; },
                                    [](T v, T c) -> T { return std::fmod(v, c); }};
    // Each shape has its constant.
    auto constant = [](const Shape& s) {
        const T constants[] = {T(3), T(-0.5), -T(0), std::numeric_limits<T>::infinity(),
                               std::numeric_limits<T>::quiet_NaN()};
        return constants[s.seed % 5];
    };
    for (int k = 0; k < 7; ++k) {
        SCOPED_TRACE("operation with a constant " + std::to_string(k));
        expect_elementwise<T>(
            [&](const Shape& s, const T* x, const T*, T* out, uint32_t n) {
                EXPECT_EQ(f.constant[k](x, out, n, constant(s)), 0);
            },
            [&](const Shape& s, T v, T) { return constant_reference[k](v, constant(s)); }, false, true);
    }
    // abs clears the sign bit and nothing else, NaN included.
    expect_elementwise<T>(
        [&](const Shape&, const T* x, const T*, T* out, uint32_t n) { EXPECT_EQ(f.abs(x, out, n), 0); },
        [](const Shape&, T v, T) { return std::fabs(v); }, false, false);
}

TEST(Arithmetic, EveryFunctionFollowsItsReferenceAndTheGenericKernel) {
#define ZOLVEX_M_ARITH_OF(sfx)                                                                     \
    {{zolvex_m_add_##sfx, zolvex_m_sub_##sfx, zolvex_m_mul_##sfx, zolvex_m_div_##sfx},               \
     {zolvex_m_addc_##sfx, zolvex_m_subc_##sfx, zolvex_m_csub_##sfx, zolvex_m_mulc_##sfx,            \
      zolvex_m_divc_##sfx, zolvex_m_cdiv_##sfx, zolvex_m_modc_##sfx},                                \
     zolvex_m_abs_##sfx}
    check_type<float>(ZOLVEX_M_ARITH_OF(f32));
    check_type<double>(ZOLVEX_M_ARITH_OF(f64));
#undef ZOLVEX_M_ARITH_OF
}

// Without AVX2 and FMA3 both on the product is rounded, then the sum; with
// them one fused multiply-add rounds once, exactly as std::fma.
template <class T>
void check_mulc_addc(int32_t (*mulc_addc)(const T*, T*, uint32_t, T, T)) {
    const T pairs[][2] = {{T(1.1), T(-0.3)}, {T(-3), T(0)}, {T(1e-3), T(1e3)}, {std::numeric_limits<T>::infinity(), T(1)}};
    in_each_regime([&](core::Isa isa) {
        const bool fused = isa >= core::Isa::avx2;
        for (auto [m, a] : pairs)
            for (const Shape& s : differential_shapes()) {
                auto x = shaped_input<T>(s);
                GuardedOutput<T> out(s);
                ASSERT_EQ(mulc_addc(x.data(), out.data(), s.length, m, a), 0);
                const std::vector<T> got = out.values();
                for (uint32_t i = 0; i < s.length; ++i) {
                    const T v = x.data()[i], product = v * m;
                    const T want = fused ? std::fma(v, m, a) : T(product + a);
                    ASSERT_TRUE(same_value(got[i], want, true)) << "m " << m << " a " << a << " x " << show(v);
                }
            }
    });
}

TEST(MulcAddc, EveryRegimeRoundsAsTheHeaderSays) {
    check_mulc_addc<float>(zolvex_m_mulc_addc_f32);
    check_mulc_addc<double>(zolvex_m_mulc_addc_f64);
}

template <class T>
void check_set(int32_t (*set)(T*, uint32_t, T), T value) {
    expect_regimes_agree([&](const Shape& s) {
        GuardedOutput<T> out(s);
        EXPECT_EQ(set(out.data(), s.length, value), 0);
        std::vector<T> got = out.values();
        EXPECT_TRUE(std::all_of(got.begin(), got.end(), [&](T v) { return same_bits(v, value); }));
        return got;
    });
}

TEST(Set, EveryTypeFillsExactlyItsRange) {
    check_set<uint8_t>(zolvex_m_set_u8, 0xC3);
    check_set<int16_t>(zolvex_m_set_i16, -12345);
    check_set<uint16_t>(zolvex_m_set_u16, 0xBEEF);
    check_set<uint32_t>(zolvex_m_set_u32, 0xDEADBEEF);
    check_set<float>(zolvex_m_set_f32, -1.5f);
    check_set<double>(zolvex_m_set_f64, 2.25);
}

} // namespace
