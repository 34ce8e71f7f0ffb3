// The elementary functions on every level through the differential driver:
// the generic, SSE4.2 and AVX levels give the generic bits, the AVX2 and
// AVX-512 levels (fused multiply-add) the AVX2 bits; out of place and in
// place, at every length and offset, nothing written outside the output.
// Accuracy and unwrap are checked against references by
// elementary_reference.py.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "support/differential.h"
#include "zolvex_m.h"

namespace {

// Every function as f(x, y, out, n).
template <class T>
using Fn = void (*)(const T* x, const T* y, T* out, uint32_t n);
struct Function {
    const char* name;
    Fn<float> f32;
    Fn<double> f64;
};

// The exported functions f32, f64 with their arguments in terms of x, y,
// out, n. magnitude reads n / 2 complex values from x; sincos writes the
// sines to the first half of out, the cosines to the second.
#define ZOLVEX_M_CALL(f32, f64, ...)                                                               \
    Function{#f32, [](const float* x, [[maybe_unused]] const float* y, float* out, uint32_t n) { f32(__VA_ARGS__); }, \
             [](const double* x, [[maybe_unused]] const double* y, double* out, uint32_t n) { f64(__VA_ARGS__); }}
#define ZOLVEX_M_UNARY(fn) ZOLVEX_M_CALL(zolvex_m_##fn##_f32, zolvex_m_##fn##_f64, x, out, n)
#define ZOLVEX_M_BINARY(fn) ZOLVEX_M_CALL(zolvex_m_##fn##_f32, zolvex_m_##fn##_f64, x, y, out, n)
const Function kFunctions[] = {
    ZOLVEX_M_UNARY(sin),   ZOLVEX_M_UNARY(cos),   ZOLVEX_M_UNARY(tan),    ZOLVEX_M_UNARY(asin),
    ZOLVEX_M_UNARY(acos),  ZOLVEX_M_UNARY(atan),  ZOLVEX_M_UNARY(sinh),   ZOLVEX_M_UNARY(cosh),
    ZOLVEX_M_UNARY(tanh),  ZOLVEX_M_UNARY(asinh), ZOLVEX_M_UNARY(acosh),  ZOLVEX_M_UNARY(atanh),
    ZOLVEX_M_UNARY(exp),   ZOLVEX_M_UNARY(exp2),  ZOLVEX_M_UNARY(log),    ZOLVEX_M_UNARY(log2),
    ZOLVEX_M_UNARY(log10), ZOLVEX_M_UNARY(sqrt),  ZOLVEX_M_UNARY(cbrt),   ZOLVEX_M_UNARY(erf),
    ZOLVEX_M_UNARY(pow2),  ZOLVEX_M_BINARY(pow),  ZOLVEX_M_BINARY(atan2), ZOLVEX_M_BINARY(hypot),
    ZOLVEX_M_CALL(zolvex_m_logn_f32, zolvex_m_logn_f64, x, out, n, 3),
    ZOLVEX_M_CALL(zolvex_m_sincos_f32, zolvex_m_sincos_f64, x, out, out + n / 2, n / 2),
    ZOLVEX_M_CALL(zolvex_m_magnitude_c32f32, zolvex_m_magnitude_c64f64, x, out, n / 2),
};

core::Isa rounding_family(core::Isa isa) { return isa >= core::Isa::avx2 ? core::Isa::avx2 : core::Isa::generic; }

template <class T>
void expect_levels_agree(Fn<T> f) {
    using namespace testing_support;
    auto call = [&](const Shape& s) {
        auto x = shaped_input<T>(s), y = shaped_input<T>(s, 1);
        GuardedOutput<T> out(s);
        f(x.data(), y.data(), out.data(), s.length);
        f(x.data(), y.data(), x.data(), s.length);
        std::vector<T> results = out.values();
        results.insert(results.end(), x.data(), x.data() + s.length);
        // The sign and payload of a NaN result are not promised.
        std::replace_if(results.begin(), results.end(), [](T e) { return std::isnan(e); }, T(NAN));
        return results;
    };
    expect_regimes_agree(call, differential_shapes(), rounding_family);
}

TEST(Elementary, EveryLevelGivesItsFamilysBitsInAndOutOfPlace) {
    for (const Function& f : kFunctions) {
        SCOPED_TRACE(f.name);
        expect_levels_agree(f.f32);
        expect_levels_agree(f.f64);
    }
}

TEST(Elementary, CountZeroTouchesNoPointerNorTheUnwrapState) {
    for (const Function& f : kFunctions) f.f32(nullptr, nullptr, nullptr, 0), f.f64(nullptr, nullptr, nullptr, 0);
    ZolvexMUnwrapState state{1.5, 2.5, 7};
    EXPECT_EQ(zolvex_m_unwrap_f64(nullptr, nullptr, 0, &state), 0);
    EXPECT_TRUE(state.previous == 1.5 && state.correction == 2.5 && state.started == 7);
}

} // namespace
