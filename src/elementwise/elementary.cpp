// The exported elementary functions. Each call picks its kernel from the
// function's table (generic, SSE4.2, AVX, AVX2+FMA3, AVX-512); one macro per
// shape of signature stamps out the f32 and f64 entry points. The generic
// kernels, SLEEF's SSE2 entry points, live here.

#include <emmintrin.h>
#include <sleef.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "core/kernel_report.h"
#include "core/kernel_table.h"
#include "elementwise/elementary_kernels.h"
#include "zolvex_m.h"

namespace elementwise::elementary {

namespace generic {

// SSE2, which every x86-64 processor has.
constexpr unsigned kVectorBytes = 16;
#define ZOLVEX_M_SLEEF_F32(fn, ulp) Sleef_cinz_##fn##f4_##ulp##sse2
#define ZOLVEX_M_SLEEF_F64(fn, ulp) Sleef_cinz_##fn##d2_##ulp##sse2
#define ZOLVEX_M_SQRT_F32 _mm_sqrt_ps
#define ZOLVEX_M_SQRT_F64 _mm_sqrt_pd
#include "elementwise/elementary_loops.inc"

// log(x) / log(base) in x87 extended precision (64-bit significand), then
// rounded once to double: within 0.5 ulp plus about 2^-10 ulp, which no
// quotient of two double-precision logarithms can promise. One element at a
// time, the same on every level.
void logn_f64(const double* x, double* out, uint32_t n, double base) noexcept {
    const long double log_base = std::log(static_cast<long double>(base));
    for (uint32_t i = 0; i < n; ++i)
        out[i] = static_cast<double>(std::log(static_cast<long double>(x[i])) / log_base);
}

} // namespace generic

} // namespace elementwise::elementary

// The kernel of one function and type for the current options.
#define ZOLVEX_M_ELEMENTARY_TABLE(name)                                                            \
    core::KernelTable<decltype(&elementwise::elementary::generic::name)>{                          \
        .generic = elementwise::elementary::generic::name,                                         \
        .sse42 = elementwise::elementary::sse42::name,                                             \
        .avx = elementwise::elementary::avx::name,                                                 \
        .avx2 = elementwise::elementary::avx2::name,                                               \
        .avx512 = elementwise::elementary::avx512::name}
#define ZOLVEX_M_ELEMENTARY_KERNEL(name) ZOLVEX_M_ELEMENTARY_TABLE(name).choose()

namespace {

// Every function has kernels at the same levels; sin stands for them all.
const core::KernelReportRegistration kReports[] = {
    core::KernelReportRegistration({"elementary functions", "f32",
                                    []() noexcept { return ZOLVEX_M_ELEMENTARY_TABLE(sin_f32).chosen_isa(); }}),
    core::KernelReportRegistration({"elementary functions", "f64",
                                    []() noexcept { return ZOLVEX_M_ELEMENTARY_TABLE(sin_f64).chosen_isa(); }}),
};

} // namespace

#define ZOLVEX_M_EXPORT_ELEMENTARY_UNARY(fn, ulp)                                                  \
    int32_t zolvex_m_##fn##_f32(const float* x, float* out, uint32_t n) {                          \
        if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(fn##_f32)(x, out, n);                               \
        return 0;                                                                                  \
    }                                                                                              \
    int32_t zolvex_m_##fn##_f64(const double* x, double* out, uint32_t n) {                        \
        if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(fn##_f64)(x, out, n);                               \
        return 0;                                                                                  \
    }

#define ZOLVEX_M_EXPORT_ELEMENTARY_BINARY(fn, ulp)                                                 \
    int32_t zolvex_m_##fn##_f32(const float* x, const float* y, float* out, uint32_t n) {          \
        if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(fn##_f32)(x, y, out, n);                            \
        return 0;                                                                                  \
    }                                                                                              \
    int32_t zolvex_m_##fn##_f64(const double* x, const double* y, double* out, uint32_t n) {       \
        if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(fn##_f64)(x, y, out, n);                            \
        return 0;                                                                                  \
    }

extern "C" {

ZOLVEX_M_ELEMENTARY_UNARY(ZOLVEX_M_EXPORT_ELEMENTARY_UNARY)
ZOLVEX_M_EXPORT_ELEMENTARY_UNARY(sqrt, exact)
ZOLVEX_M_ELEMENTARY_BINARY(ZOLVEX_M_EXPORT_ELEMENTARY_BINARY)

// x², an exact IEEE product: the multiplication kernels give it.
int32_t zolvex_m_pow2_f32(const float* x, float* out, uint32_t n) { return zolvex_m_mul_f32(x, x, out, n); }
int32_t zolvex_m_pow2_f64(const double* x, double* out, uint32_t n) { return zolvex_m_mul_f64(x, x, out, n); }

int32_t zolvex_m_sincos_f32(const float* x, float* sin_out, float* cos_out, uint32_t n) {
    if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(sincos_f32)(x, sin_out, cos_out, n);
    return 0;
}
int32_t zolvex_m_sincos_f64(const double* x, double* sin_out, double* cos_out, uint32_t n) {
    if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(sincos_f64)(x, sin_out, cos_out, n);
    return 0;
}

int32_t zolvex_m_magnitude_c32f32(const float* z, float* out, uint32_t n) {
    if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(magnitude_f32)(z, out, n);
    return 0;
}
int32_t zolvex_m_magnitude_c64f64(const double* z, double* out, uint32_t n) {
    if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(magnitude_f64)(z, out, n);
    return 0;
}

int32_t zolvex_m_logn_f32(const float* x, float* out, uint32_t n, float base) {
    if (n != 0) ZOLVEX_M_ELEMENTARY_KERNEL(logn_f32)(x, out, n, base);
    return 0;
}
int32_t zolvex_m_logn_f64(const double* x, double* out, uint32_t n, double base) {
    if (n != 0) elementwise::elementary::generic::logn_f64(x, out, n, base);
    return 0;
}

} // extern "C"
