// The exported element-wise arithmetic: one macro per family stamps out the
// f32 and f64 entry points of each operation.

#include "elementwise/arith.h"

#include <cmath>
#include <cstring>
#include <functional>

#include "core/options.h"
#include "elementwise/mulc_addc_kernels.h"
#include "zolvex_m.h"

namespace elementwise {
namespace {

// Operations with the constant on the left, and the remainder.
struct ConstantMinus {
    template <class T> T operator()(T v, T c) const noexcept { return c - v; }
};
struct ConstantOver {
    template <class T> T operator()(T v, T c) const noexcept { return c / v; }
};
struct Remainder {
    template <class T> T operator()(T v, T c) const noexcept { return std::fmod(v, c); }
};

} // namespace

namespace generic {

template <class T>
static void mulc_addc_loop(const T* x, T* out, uint32_t n, T m, T a) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = x[i] * m + a;
}

void mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a) noexcept {
    mulc_addc_loop(x, out, n, m, a);
}
void mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a) noexcept {
    mulc_addc_loop(x, out, n, m, a);
}

} // namespace generic

MulcAddcKernel<float> choose_mulc_addc_f32() noexcept {
    if (core::avx2_fma3_on()) return avx2::mulc_addc_f32;
    if (core::option_on(ZOLVEX_M_OPT_SSE42)) return sse42::mulc_addc_f32;
    return generic::mulc_addc_f32;
}

MulcAddcKernel<double> choose_mulc_addc_f64() noexcept {
    if (core::avx2_fma3_on()) return avx2::mulc_addc_f64;
    if (core::option_on(ZOLVEX_M_OPT_SSE42)) return sse42::mulc_addc_f64;
    return generic::mulc_addc_f64;
}

} // namespace elementwise

#define ZOLVEX_M_BINARY(name, Op)                                                                  \
    int32_t zolvex_m_##name##_f32(const float* x, const float* y, float* out, uint32_t n) {        \
        return elementwise::binary(x, y, out, n, Op{});                                            \
    }                                                                                              \
    int32_t zolvex_m_##name##_f64(const double* x, const double* y, double* out, uint32_t n) {     \
        return elementwise::binary(x, y, out, n, Op{});                                            \
    }

#define ZOLVEX_M_WITH_CONSTANT(name, Op)                                                           \
    int32_t zolvex_m_##name##_f32(const float* x, float* out, uint32_t n, float c) {               \
        return elementwise::with_constant(x, out, n, c, Op{});                                     \
    }                                                                                              \
    int32_t zolvex_m_##name##_f64(const double* x, double* out, uint32_t n, double c) {            \
        return elementwise::with_constant(x, out, n, c, Op{});                                     \
    }

#define ZOLVEX_M_SET(suffix, T)                                                                    \
    int32_t zolvex_m_set_##suffix(T* out, uint32_t n, T value) {                                   \
        return elementwise::fill(out, n, value);                                                   \
    }

extern "C" {

ZOLVEX_M_BINARY(add, std::plus<>)
ZOLVEX_M_BINARY(sub, std::minus<>)
ZOLVEX_M_BINARY(mul, std::multiplies<>)
ZOLVEX_M_BINARY(div, std::divides<>)

ZOLVEX_M_WITH_CONSTANT(addc, std::plus<>)
ZOLVEX_M_WITH_CONSTANT(subc, std::minus<>)
ZOLVEX_M_WITH_CONSTANT(csub, elementwise::ConstantMinus)
ZOLVEX_M_WITH_CONSTANT(mulc, std::multiplies<>)
ZOLVEX_M_WITH_CONSTANT(divc, std::divides<>)
ZOLVEX_M_WITH_CONSTANT(cdiv, elementwise::ConstantOver)
ZOLVEX_M_WITH_CONSTANT(modc, elementwise::Remainder)

int32_t zolvex_m_mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a) {
    if (n == 0) return 0;
    elementwise::choose_mulc_addc_f32()(x, out, n, m, a);
    return 0;
}

int32_t zolvex_m_mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a) {
    if (n == 0) return 0;
    elementwise::choose_mulc_addc_f64()(x, out, n, m, a);
    return 0;
}

int32_t zolvex_m_set_u8(uint8_t* out, uint32_t n, uint8_t value) {
    if (n != 0) std::memset(out, value, n);
    return 0;
}
ZOLVEX_M_SET(i16, int16_t)
ZOLVEX_M_SET(u16, uint16_t)
ZOLVEX_M_SET(u32, uint32_t)
ZOLVEX_M_SET(f32, float)
ZOLVEX_M_SET(f64, double)

} // extern "C"
