// The elementary functions: accuracy against x87 extended-precision libm
// (a 64-bit significand: its own error is far below 1/1000 ulp of double),
// on a million inputs per function and type spread over the whole domain
// (random bit patterns), all magnitudes and the function's hard ranges
// (zeros, poles, huge trigonometric arguments), plus every pair of special
// values; then every level against its reference level through the
// differential driver.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "support/differential.h"
#include "support/random_data.h"
#include "support/regimes.h"
#include "zolvex_m.h"

namespace {

using testing_support::same_bits;
using testing_support::show;

#if defined(__SANITIZE_ADDRESS__)
constexpr uint32_t kSamples = 100'000;  // the instrumented build is slower
#else
constexpr uint32_t kSamples = 1'000'000;
#endif

// Where inputs come from: random bit patterns (the whole domain, NaN and
// infinities included), |x| log-uniform in [a, b] with either sign (or
// positive only), x uniform in [a, b], or the floating-point neighbours of
// (k + a) * pi for |k| <= b, where the trigonometric functions have zeros
// and poles.
struct Range {
    enum Kind { bits, magnitudes, positive, uniform, multiples_of_pi } kind;
    long double a = 0, b = 0;
};
constexpr Range kBits{Range::bits};
constexpr long double kHuge = 1e308L;

template <class T>
T sample(const Range& r, std::mt19937_64& rng) {
    std::uniform_real_distribution<long double> unit(0, 1);
    switch (r.kind) {
    case Range::bits: {
        auto bits = rng();
        T x;
        std::memcpy(&x, &bits, sizeof x);
        return x;
    }
    case Range::magnitudes:
    case Range::positive: {
        long double lo = std::max<long double>(r.a, std::numeric_limits<T>::denorm_min());
        long double hi = std::min<long double>(r.b, std::numeric_limits<T>::max());
        T x = T(std::exp(std::log(lo) + unit(rng) * (std::log(hi) - std::log(lo))));
        return r.kind == Range::magnitudes && (rng() & 1) ? -x : x;
    }
    case Range::uniform: return T(r.a + unit(rng) * (r.b - r.a));
    case Range::multiples_of_pi: {
        long double k = std::floor(unit(rng) * (2 * r.b + 1)) - r.b;
        T x = T((k + r.a) * std::numbers::pi_v<long double>);
        for (int step = int(rng() % 7) - 3; step != 0; step += step > 0 ? -1 : 1)
            x = std::nextafter(x, step > 0 ? T(INFINITY) : T(-INFINITY));
        return x;
    }
    }
    return T(0);
}

template <class T>
std::vector<T> special_values() {
    using L = std::numeric_limits<T>;
    std::vector<T> v = {T(0), L::infinity(), L::quiet_NaN(), L::denorm_min(), L::min(), L::max(), T(1), T(0.5),
                        T(2), T(3), std::numbers::pi_v<T> / 2, std::numbers::pi_v<T>, T(10), T(1e-30)};
    for (size_t i = 0, n = v.size(); i < n; ++i) v.push_back(-v[i]);
    return v;
}

// Distance from the exact value in units of the last place of T at its
// magnitude. A NaN, an infinity or a zero of the wrong kind or sign is
// infinitely far (an infinity is right where the exact value rounds to it).
template <class T>
double ulp_error(T got, long double want) {
    if (std::isnan(want) || std::isnan(got)) return std::isnan(want) && std::isnan(got) ? 0 : INFINITY;
    if (std::isinf(got) || std::isinf(want)) return got == T(want) ? 0 : INFINITY;
    if (got == 0 && (want == 0 || std::signbit(got) != std::signbit(want)))
        return want == 0 && std::signbit(got) == std::signbit(want) ? 0 : INFINITY;
    int exponent;
    std::frexp(std::min<long double>(std::fabs(want), std::numeric_limits<T>::max()), &exponent);
    long double ulp = std::max<long double>(std::ldexp(1.0L, exponent - std::numeric_limits<T>::digits),
                                            std::numeric_limits<T>::denorm_min());
    return double(std::fabs(got - want) / ulp);
}

// Every function as f(x, y) (one-input functions ignore y), with its
// reference and input ranges (y_ranges[k] pairs with x_ranges[k]).
template <class T>
using Eval = void (*)(const T* x, const T* y, T* out, uint32_t n);
struct Function {
    std::string name;
    Eval<float> f32;
    Eval<double> f64;
    long double (*reference)(long double x, long double y);
    std::vector<Range> x_ranges, y_ranges;
    bool binary() const { return !y_ranges.empty(); }
};

template <auto f32, auto f64, auto reference>
Function unary(std::string name, std::vector<Range> x) {
    x.insert(x.begin(), {kBits, {Range::magnitudes, 0, kHuge}});
    return {std::move(name), [](const float* x, const float*, float* out, uint32_t n) { f32(x, out, n); },
            [](const double* x, const double*, double* out, uint32_t n) { f64(x, out, n); },
            [](long double x, long double) { return reference(x); }, std::move(x), {}};
}

template <auto f32, auto f64, auto reference>
Function binary(std::string name, std::vector<Range> x, std::vector<Range> y) {
    x.insert(x.begin(), {kBits, {Range::magnitudes, 0, kHuge}});
    y.insert(y.begin(), {kBits, {Range::magnitudes, 0, kHuge}});
    return {std::move(name), [](const float* x, const float* y, float* out, uint32_t n) { f32(x, y, out, n); },
            [](const double* x, const double* y, double* out, uint32_t n) { f64(x, y, out, n); }, reference,
            std::move(x), std::move(y)};
}

// The functions whose signature is not f(x) or f(x, y), as such.
int32_t sincos(const float* x, float* s, float* c, uint32_t n) { return zolvex_m_sincos_f32(x, s, c, n); }
int32_t sincos(const double* x, double* s, double* c, uint32_t n) { return zolvex_m_sincos_f64(x, s, c, n); }
template <class T, bool cosine>
int32_t sincos_part(const T* x, T* out, uint32_t n) {
    std::vector<T> other(n);
    return cosine ? sincos(x, other.data(), out, n) : sincos(x, out, other.data(), n);
}
int32_t logn(const float* x, float* out, uint32_t n, float b) { return zolvex_m_logn_f32(x, out, n, b); }
int32_t logn(const double* x, double* out, uint32_t n, double b) { return zolvex_m_logn_f64(x, out, n, b); }
template <class T, int base_tenths>
int32_t logn_fixed(const T* x, T* out, uint32_t n) {
    return logn(x, out, n, T(base_tenths / 10.0L));
}
template <int base_tenths>
long double logn_reference(long double x) {
    return std::log(x) / std::log(base_tenths / 10.0L);
}
int32_t magnitude(const float* z, float* out, uint32_t n) { return zolvex_m_magnitude_c32f32(z, out, n); }
int32_t magnitude(const double* z, double* out, uint32_t n) { return zolvex_m_magnitude_c64f64(z, out, n); }
template <class T>
int32_t magnitude_of(const T* re, const T* im, T* out, uint32_t n) {
    std::vector<T> z(2 * size_t(n));
    for (uint32_t i = 0; i < n; ++i) z[2 * i] = re[i], z[2 * i + 1] = im[i];
    return magnitude(z.data(), out, n);
}
long double square(long double x) { return x * x; }

const std::vector<Function>& functions() {
    using R = Range;
    const R trig[] = {{R::uniform, -4, 4}, {R::multiples_of_pi, 0, 1e5}, {R::multiples_of_pi, 0.5, 1e5},
                      {R::magnitudes, 1e4, kHuge}, {R::magnitudes, 1e-30, 1e-3}};
    const R unit_interval[] = {{R::uniform, -1, 1}, {R::uniform, 0.99, 1}, {R::uniform, -1, -0.99},
                               {R::magnitudes, 1e-30, 1e-3}};
    const R logs[] = {{R::positive, 0, kHuge}, {R::uniform, 0.999, 1.001}, {R::uniform, 0.5, 2}};
    const R small[] = {{R::uniform, -20, 20}, {R::magnitudes, 1e-30, 1e-2}, {R::magnitudes, 20, 800}};
    static const std::vector<Function> all = {
        unary<zolvex_m_sin_f32, zolvex_m_sin_f64, sinl>("sin", {std::begin(trig), std::end(trig)}),
        unary<zolvex_m_cos_f32, zolvex_m_cos_f64, cosl>("cos", {std::begin(trig), std::end(trig)}),
        unary<zolvex_m_tan_f32, zolvex_m_tan_f64, tanl>("tan", {std::begin(trig), std::end(trig)}),
        unary<sincos_part<float, false>, sincos_part<double, false>, sinl>("sincos.sin", {std::begin(trig), std::end(trig)}),
        unary<sincos_part<float, true>, sincos_part<double, true>, cosl>("sincos.cos", {std::begin(trig), std::end(trig)}),
        unary<zolvex_m_asin_f32, zolvex_m_asin_f64, asinl>("asin", {std::begin(unit_interval), std::end(unit_interval)}),
        unary<zolvex_m_acos_f32, zolvex_m_acos_f64, acosl>("acos", {std::begin(unit_interval), std::end(unit_interval)}),
        unary<zolvex_m_atan_f32, zolvex_m_atan_f64, atanl>("atan", {{R::uniform, -4, 4}}),
        unary<zolvex_m_sinh_f32, zolvex_m_sinh_f64, sinhl>("sinh", {std::begin(small), std::end(small)}),
        unary<zolvex_m_cosh_f32, zolvex_m_cosh_f64, coshl>("cosh", {std::begin(small), std::end(small)}),
        unary<zolvex_m_tanh_f32, zolvex_m_tanh_f64, tanhl>("tanh", {std::begin(small), std::end(small)}),
        unary<zolvex_m_asinh_f32, zolvex_m_asinh_f64, asinhl>("asinh", {std::begin(small), std::end(small)}),
        unary<zolvex_m_acosh_f32, zolvex_m_acosh_f64, acoshl>("acosh", {{R::uniform, 1, 1.01}, {R::positive, 1, kHuge}}),
        unary<zolvex_m_atanh_f32, zolvex_m_atanh_f64, atanhl>("atanh", {std::begin(unit_interval), std::end(unit_interval)}),
        unary<zolvex_m_exp_f32, zolvex_m_exp_f64, expl>("exp", {{R::uniform, -750, 710}, {R::uniform, -104, 89}, {R::magnitudes, 1e-30, 1}}),
        unary<zolvex_m_exp2_f32, zolvex_m_exp2_f64, exp2l>("exp2", {{R::uniform, -1080, 1025}, {R::uniform, -150, 129}, {R::magnitudes, 1e-30, 1}}),
        unary<zolvex_m_log_f32, zolvex_m_log_f64, logl>("log", {std::begin(logs), std::end(logs)}),
        unary<zolvex_m_log2_f32, zolvex_m_log2_f64, log2l>("log2", {std::begin(logs), std::end(logs)}),
        unary<zolvex_m_log10_f32, zolvex_m_log10_f64, log10l>("log10", {std::begin(logs), std::end(logs)}),
        unary<logn_fixed<float, 100>, logn_fixed<double, 100>, logn_reference<100>>("logn.10", {std::begin(logs), std::end(logs)}),
        unary<logn_fixed<float, 5>, logn_fixed<double, 5>, logn_reference<5>>("logn.0.5", {std::begin(logs), std::end(logs)}),
        unary<logn_fixed<float, 30>, logn_fixed<double, 30>, logn_reference<30>>("logn.3", {std::begin(logs), std::end(logs)}),
        unary<zolvex_m_sqrt_f32, zolvex_m_sqrt_f64, sqrtl>("sqrt", {{R::positive, 0, kHuge}}),
        unary<zolvex_m_cbrt_f32, zolvex_m_cbrt_f64, cbrtl>("cbrt", {{R::uniform, -10, 10}}),
        unary<zolvex_m_erf_f32, zolvex_m_erf_f64, erfl>("erf", {{R::uniform, -6, 6}, {R::magnitudes, 1e-30, 1e-2}}),
        unary<zolvex_m_pow2_f32, zolvex_m_pow2_f64, square>("pow2", {{R::uniform, -10, 10}}),
        binary<zolvex_m_pow_f32, zolvex_m_pow_f64, powl>("pow",
            {{R::positive, 0, kHuge}, {R::uniform, 0.99, 1.01}, {R::uniform, -10, 0}, {R::positive, 1e-3, 1e3}},
            {{R::uniform, -50, 50}, {R::uniform, -5000, 5000}, {R::uniform, -9, 9}, {R::magnitudes, 1e-30, 300}}),
        binary<zolvex_m_atan2_f32, zolvex_m_atan2_f64, atan2l>("atan2", {{R::uniform, -10, 10}, {R::magnitudes, 1e-30, 1e30}},
            {{R::uniform, -10, 10}, {R::magnitudes, 1e-30, 1e30}}),
        binary<zolvex_m_hypot_f32, zolvex_m_hypot_f64, hypotl>("hypot", {{R::uniform, -10, 10}, {R::magnitudes, 1e-40, 1e-20}},
            {{R::uniform, -10, 10}, {R::magnitudes, 1e-40, 1e-20}}),
        binary<magnitude_of<float>, magnitude_of<double>, hypotl>("magnitude", {{R::uniform, -10, 10}},
            {{R::uniform, -10, 10}}),
    };
    return all;
}

// The inputs of one function: kSamples spread evenly over its ranges, then
// the special values (every pair of them for two-input functions).
template <class T>
void make_inputs(const Function& f, std::vector<T>& x, std::vector<T>& y) {
    std::mt19937_64 rng(std::hash<std::string>{}(f.name));
    size_t per_range = kSamples / f.x_ranges.size();
    for (size_t r = 0; r < f.x_ranges.size(); ++r)
        for (size_t i = 0; i < per_range; ++i) {
            x.push_back(sample<T>(f.x_ranges[r], rng));
            y.push_back(f.binary() ? sample<T>(f.y_ranges[r], rng) : T(0));
        }
    for (T a : special_values<T>())
        for (T b : special_values<T>()) {
            x.push_back(a), y.push_back(b);
            if (!f.binary()) break;
        }
}

template <class T>
Eval<T> eval(const Function& f) {
    if constexpr (sizeof(T) == 4) return f.f32; else return f.f64;
}

// The worst error in each regime; fails above `bound` ulp. Regimes that
// repeat the previous regime's bits (each rounding family) share its
// measurement.
template <class T>
void check_accuracy(const Function& f, double bound) {
    std::vector<T> x, y, got(kSamples), previous;
    make_inputs(f, x, y);
    std::vector<long double> want(x.size());
    for (size_t i = 0; i < x.size(); ++i) want[i] = f.reference(x[i], y[i]);
    size_t worst = 0;
    double worst_error = 0;
    testing_support::in_each_regime([&](core::Isa isa) {
        got.assign(x.size(), T(0));
        eval<T>(f)(x.data(), y.data(), got.data(), uint32_t(x.size()));
        if (got.size() != previous.size() || std::memcmp(got.data(), previous.data(), got.size() * sizeof(T)) != 0) {
            worst = 0, worst_error = 0;
            for (size_t i = 0; i < x.size(); ++i)
                if (double e = ulp_error(got[i], want[i]); e > worst_error) worst = i, worst_error = e;
            previous = got;
        }
        std::printf("%-10s %s %-8s worst %.3f ulp at x=%s y=%s\n", f.name.c_str(), sizeof(T) == 4 ? "f32" : "f64",
                    core::isa_name(isa), worst_error, show(x[worst]).c_str(), show(y[worst]).c_str());
        EXPECT_LE(worst_error, bound) << f.name << "(" << show(x[worst]) << ", " << show(y[worst]) << ") gave "
                                      << show(got[worst]) << ", want " << show(want[worst]);
    });
}

void PrintTo(const Function& f, std::ostream* os) { *os << f.name; }

class Elementary : public testing::TestWithParam<Function> {};

TEST_P(Elementary, WithinOneUlpOnEveryLevelWithAnnexFSpecialValues) {
    double bound = GetParam().name == "pow2" || GetParam().name == "sqrt" ? 0.5 : 1.0;
    check_accuracy<float>(GetParam(), bound);
    check_accuracy<double>(GetParam(), bound);
}

// The non-fused levels give the generic bits, the fused ones the AVX2 bits;
// out of place and in place, at every length and offset, nothing written
// outside the output.
// The sign and payload of a NaN result are not promised.
template <class T>
std::vector<T> any_nan_alike(std::vector<T> v) {
    for (T& e : v)
        if (std::isnan(e)) e = std::numeric_limits<T>::quiet_NaN();
    return v;
}

core::Isa rounding_family(core::Isa isa) { return isa >= core::Isa::avx2 ? core::Isa::avx2 : core::Isa::generic; }

template <class T>
void expect_levels_agree(const Function& f) {
    testing_support::expect_regimes_agree(
        [&](const testing_support::Shape& s) {
            auto x = testing_support::shaped_input<T>(s), y = testing_support::shaped_input<T>(s, 1);
            testing_support::GuardedOutput<T> out(s);
            eval<T>(f)(x.data(), y.data(), out.data(), s.length);
            eval<T>(f)(x.data(), y.data(), x.data(), s.length);
            return std::pair(any_nan_alike(out.values()), any_nan_alike(std::vector<T>(x.data(), x.data() + s.length)));
        },
        testing_support::differential_shapes(), rounding_family);
}

TEST_P(Elementary, EveryLevelGivesItsFamilysBits) {
    expect_levels_agree<float>(GetParam());
    expect_levels_agree<double>(GetParam());
}

// magnitude may write its results over the first half of its input; a
// count of 0 touches no pointer.
template <class T>
void expect_magnitude_in_place() {
    testing_support::in_each_regime([](core::Isa) {
        for (uint32_t n : testing_support::test_lengths()) {
            auto z = testing_support::random_vector<T>(2 * size_t(n), n);
            std::vector<T> out(n);
            magnitude(z.data(), out.data(), n);
            magnitude(z.data(), z.data(), n);
            ASSERT_TRUE(std::equal(out.begin(), out.end(), z.begin(), same_bits<T>)) << "n=" << n;
        }
    });
}

TEST(ElementaryEdges, MagnitudeInPlaceAndCountZero) {
    expect_magnitude_in_place<float>();
    expect_magnitude_in_place<double>();
    for (const Function& f : functions()) f.f32(nullptr, nullptr, nullptr, 0), f.f64(nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(zolvex_m_unwrap_f64(nullptr, nullptr, 0, nullptr), 0);
}

INSTANTIATE_TEST_SUITE_P(Functions, Elementary, testing::ValuesIn(functions()),
                         [](const auto& info) {
                             std::string name = info.param.name;
                             for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             return name;
                         });

} // namespace
