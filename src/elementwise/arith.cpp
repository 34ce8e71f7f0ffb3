// The exported element-wise arithmetic. Each call picks its kernel from the
// operation's table (generic, AVX, AVX-512; mulc_addc: generic, SSE4.2,
// AVX2); one macro per family stamps out the f32 and f64 entry points.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/ipp.h"
#include "core/kernel_report.h"
#include "core/kernel_table.h"
#include "core/options.h"
#include "core/status_error.h"
#include "elementwise/arith_kernels.h"
#include "elementwise/mulc_addc_kernels.h"
#include "zolvex_m.h"

namespace elementwise {

namespace generic {

// SSE2, which every x86-64 processor has.
constexpr unsigned kVectorBytes = 16;
#include "elementwise/arith_loops.inc"

void abs_f32(const float* x, float* out, uint32_t n) noexcept { abs_kernel(x, out, n); }
void abs_f64(const double* x, double* out, uint32_t n) noexcept { abs_kernel(x, out, n); }

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

constexpr core::KernelTable<MulcAddcKernel<float>> kMulcAddcF32 = {
    .generic = generic::mulc_addc_f32, .sse42 = sse42::mulc_addc_f32, .avx2 = avx2::mulc_addc_f32};
constexpr core::KernelTable<MulcAddcKernel<double>> kMulcAddcF64 = {
    .generic = generic::mulc_addc_f64, .sse42 = sse42::mulc_addc_f64, .avx2 = avx2::mulc_addc_f64};

// mulc and divc hand the whole call to the accelerator when the IPP option
// is on, in its in-place form when input and output are one array. The
// accelerator judges the length itself (it rejects 0, and counts above
// INT32_MAX, which arrive as negative ints), and any status of its own but
// success becomes ZOLVEX_M_STATUS_FAILED.
template <class T>
int32_t on_accelerator(lib::ipp::Fn out_of_place, lib::ipp::Fn in_place, const T* x, T* out, uint32_t n,
                       T c) noexcept {
    int length = static_cast<int>(n);
    lib::ipp::IppStatus status = x == out ? lib::ipp::table<lib::ipp::WithConstantInPlace<T>>(in_place)(c, out, length)
                                          : lib::ipp::table<lib::ipp::WithConstant<T>>(out_of_place)(x, c, out, length);
    return core::map_accelerator_status(status);
}

bool accelerator_on() noexcept { return core::option_on(ZOLVEX_M_OPT_IPP); }

// fmod has no vector form; one loop serves every level.
template <class T>
static int32_t remainder_loop(const T* x, T* out, uint32_t n, T c) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = std::fmod(x[i], c);
    return 0;
}

template <class T>
static int32_t fill(T* out, uint32_t n, T value) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = value;
    return 0;
}

} // namespace elementwise

// The arithmetic kernels of one operation and type by level.
#define ZOLVEX_M_KERNEL_TABLE(op, sfx)                                                             \
    core::KernelTable<decltype(&elementwise::generic::op##_##sfx)>{                                \
        .generic = elementwise::generic::op##_##sfx, .avx = elementwise::avx::op##_##sfx,          \
        .avx512 = elementwise::avx512::op##_##sfx}
#define ZOLVEX_M_KERNEL(op, sfx) ZOLVEX_M_KERNEL_TABLE(op, sfx).choose()

#define ZOLVEX_M_EXPORT_BINARY(op)                                                                 \
    int32_t zolvex_m_##op##_f32(const float* x, const float* y, float* out, uint32_t n) {          \
        if (n != 0) ZOLVEX_M_KERNEL(op, f32)(x, y, out, n);                                        \
        return 0;                                                                                  \
    }                                                                                              \
    int32_t zolvex_m_##op##_f64(const double* x, const double* y, double* out, uint32_t n) {       \
        if (n != 0) ZOLVEX_M_KERNEL(op, f64)(x, y, out, n);                                        \
        return 0;                                                                                  \
    }

#define ZOLVEX_M_EXPORT_CONSTANT(op)                                                               \
    int32_t zolvex_m_##op##_f32(const float* x, float* out, uint32_t n, float c) {                 \
        if (n != 0) ZOLVEX_M_KERNEL(op, f32)(x, out, n, c);                                        \
        return 0;                                                                                  \
    }                                                                                              \
    int32_t zolvex_m_##op##_f64(const double* x, double* out, uint32_t n, double c) {              \
        if (n != 0) ZOLVEX_M_KERNEL(op, f64)(x, out, n, c);                                        \
        return 0;                                                                                  \
    }

#define ZOLVEX_M_EXPORT_SET(sfx, T)                                                                \
    int32_t zolvex_m_set_##sfx(T* out, uint32_t n, T value) { return elementwise::fill(out, n, value); }

// The two operations with an accelerator path.
#define ZOLVEX_M_EXPORT_ACCELERATED(op, ipp_name)                                                  \
    int32_t zolvex_m_##op##_f32(const float* x, float* out, uint32_t n, float c) {                 \
        if (elementwise::accelerator_on())                                                         \
            return elementwise::on_accelerator(lib::ipp::Fn::ipp_name##_32f, lib::ipp::Fn::ipp_name##_32f_I, x, \
                                               out, n, c);                                         \
        if (n != 0) ZOLVEX_M_KERNEL(op, f32)(x, out, n, c);                                        \
        return 0;                                                                                  \
    }                                                                                              \
    int32_t zolvex_m_##op##_f64(const double* x, double* out, uint32_t n, double c) {              \
        if (elementwise::accelerator_on())                                                         \
            return elementwise::on_accelerator(lib::ipp::Fn::ipp_name##_64f, lib::ipp::Fn::ipp_name##_64f_I, x, \
                                               out, n, c);                                         \
        if (n != 0) ZOLVEX_M_KERNEL(op, f64)(x, out, n, c);                                        \
        return 0;                                                                                  \
    }

namespace {

#define ZOLVEX_M_LEVEL(op, sfx) []() noexcept { return ZOLVEX_M_KERNEL_TABLE(op, sfx).chosen_isa(); }
const core::KernelReportRegistration kReports[] = {
    core::KernelReportRegistration({"add sub mul div addc subc csub cdiv", "f32", ZOLVEX_M_LEVEL(add, f32)}),
    core::KernelReportRegistration({"add sub mul div addc subc csub cdiv", "f64", ZOLVEX_M_LEVEL(add, f64)}),
    core::KernelReportRegistration({"mulc divc", "f32", ZOLVEX_M_LEVEL(mulc, f32), core::ipp_when_on}),
    core::KernelReportRegistration({"mulc divc", "f64", ZOLVEX_M_LEVEL(mulc, f64), core::ipp_when_on}),
    core::KernelReportRegistration({"mulc_addc", "f32", []() noexcept { return elementwise::kMulcAddcF32.chosen_isa(); }}),
    core::KernelReportRegistration({"mulc_addc", "f64", []() noexcept { return elementwise::kMulcAddcF64.chosen_isa(); }}),
};
#undef ZOLVEX_M_LEVEL

} // namespace

extern "C" {

ZOLVEX_M_BINARY_OPS(ZOLVEX_M_EXPORT_BINARY)
ZOLVEX_M_EXPORT_CONSTANT(addc)
ZOLVEX_M_EXPORT_CONSTANT(subc)
ZOLVEX_M_EXPORT_CONSTANT(csub)
ZOLVEX_M_EXPORT_CONSTANT(cdiv)
ZOLVEX_M_EXPORT_ACCELERATED(mulc, ippsMulC)
ZOLVEX_M_EXPORT_ACCELERATED(divc, ippsDivC)

int32_t zolvex_m_modc_f32(const float* x, float* out, uint32_t n, float c) {
    return elementwise::remainder_loop(x, out, n, c);
}
int32_t zolvex_m_modc_f64(const double* x, double* out, uint32_t n, double c) {
    return elementwise::remainder_loop(x, out, n, c);
}

int32_t zolvex_m_mulc_addc_f32(const float* x, float* out, uint32_t n, float m, float a) {
    if (n != 0) elementwise::kMulcAddcF32.choose()(x, out, n, m, a);
    return 0;
}
int32_t zolvex_m_mulc_addc_f64(const double* x, double* out, uint32_t n, double m, double a) {
    if (n != 0) elementwise::kMulcAddcF64.choose()(x, out, n, m, a);
    return 0;
}

int32_t zolvex_m_set_u8(uint8_t* out, uint32_t n, uint8_t value) {
    if (n != 0) std::memset(out, value, n);
    return 0;
}
ZOLVEX_M_EXPORT_SET(i16, int16_t)
ZOLVEX_M_EXPORT_SET(u16, uint16_t)
ZOLVEX_M_EXPORT_SET(u32, uint32_t)
ZOLVEX_M_EXPORT_SET(f32, float)
ZOLVEX_M_EXPORT_SET(f64, double)

} // extern "C"
