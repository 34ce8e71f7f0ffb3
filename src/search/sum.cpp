// Sums and sums of squares: the generic kernels, the per-call choice among
// the kernels and the accelerator, and the exported entry points. Every sum
// adds to the value already at `sum`, so that consecutive blocks of one
// record add up to its total.

#include <cstddef>
#include <cstdint>

#include "core/ipp.h"
#include "core/kernel_report.h"
#include "core/options.h"
#include "core/status_error.h"
#include "search/sum.h"
#include "zolvex_m.h"

namespace search {

namespace generic {

namespace {

template <class T>
uint64_t widened_sum(const T* x, uint32_t n) noexcept {
    uint64_t total = 0;
    for (uint32_t i = 0; i < n; ++i) total += static_cast<uint64_t>(x[i]);
    return total;
}

template <bool kSquares>
double in_order(const double* x, uint32_t n, double sum) noexcept {
    double total = 0.0;
    for (uint32_t i = 0; i < n; ++i) total += kSquares ? x[i] * x[i] : x[i];
    return total + sum;
}

} // namespace

uint64_t sum_u8(const uint8_t* x, uint32_t n) noexcept { return widened_sum(x, n); }
uint64_t sum_u16(const uint16_t* x, uint32_t n) noexcept { return widened_sum(x, n); }
uint64_t sum_u32(const uint32_t* x, uint32_t n) noexcept { return widened_sum(x, n); }
uint64_t sum_i16(const int16_t* x, uint32_t n) noexcept { return widened_sum(x, n); }

double sum_f64(const double* x, uint32_t n, double sum) noexcept { return in_order<false>(x, n, sum); }
double square_sum_f64(const double* x, uint32_t n, double sum) noexcept { return in_order<true>(x, n, sum); }

} // namespace generic

template <class T>
struct IntegerSum {};

#define ZOLVEX_M_INTEGER_SUM(T, suffix, widest)                                                    \
    template <>                                                                                    \
    struct IntegerSum<T> {                                                                         \
        static constexpr core::KernelTable<SumKernel<T>> kKernels = {                              \
            .generic = generic::sum_##suffix, .sse42 = sse42::sum_##suffix, .avx2 = avx2::sum_##suffix, \
            .widest = widest::sum_##suffix};                                                       \
    };                                                                                             \
    template const core::KernelTable<SumKernel<T>>& sum_kernels<T>() noexcept;

template <class T>
const core::KernelTable<SumKernel<T>>& sum_kernels() noexcept {
    return IntegerSum<T>::kKernels;
}

// 8- and 16-bit lanes need AVX-512BW.
ZOLVEX_M_INTEGER_SUM(uint8_t, u8, avx512bw)
ZOLVEX_M_INTEGER_SUM(uint16_t, u16, avx512bw)
ZOLVEX_M_INTEGER_SUM(uint32_t, u32, avx512)
ZOLVEX_M_INTEGER_SUM(int16_t, i16, avx512bw)
#undef ZOLVEX_M_INTEGER_SUM

constexpr core::KernelTable<FloatSumKernel> kFloatSumKernels = {
    .generic = generic::sum_f64, .sse42 = sse42::sum_f64, .avx = avx::sum_f64};
constexpr core::KernelTable<FloatSumKernel> kFloatSquareSumKernels = {
    .generic = generic::square_sum_f64, .sse42 = sse42::square_sum_f64, .avx = avx::square_sum_f64};

namespace {

const core::KernelReportRegistration kReports[] = {
    core::KernelReportRegistration({"sum", "u8", core::level_of<IntegerSum<uint8_t>::kKernels>}),
    core::KernelReportRegistration({"sum", "u16", core::level_of<IntegerSum<uint16_t>::kKernels>}),
    core::KernelReportRegistration({"sum", "u32", core::level_of<IntegerSum<uint32_t>::kKernels>}),
    core::KernelReportRegistration({"sum", "i16", core::level_of<IntegerSum<int16_t>::kKernels>}),
    core::KernelReportRegistration({"sum square_sum", "f64", core::level_of<kFloatSumKernels>, core::ipp_when_on}),
};

// The 64-bit total of the samples added to *sum modulo 2^64 (in unsigned
// arithmetic, so that a signed result wraps as well).
template <class T, class Total>
int32_t add_integer_sum(const T* x, uint32_t length, Total* sum) noexcept {
    if (length == 0) return 0;
    uint64_t total = sum_kernels<T>().choose()(x, length);
    *sum = static_cast<Total>(static_cast<uint64_t>(*sum) + total);
    return 0;
}

// The accelerator judges the length itself (0 and counts above INT32_MAX
// are refused); *sum changes only when it succeeded.
template <bool kSquares>
int32_t add_f64_sum(const double* x, uint32_t length, double* sum) noexcept {
    if (core::option_on(ZOLVEX_M_OPT_IPP)) {
        double local = 0.0;
        int len = static_cast<int>(length);
        using lib::ipp::Fn;
        int status = kSquares ? lib::ipp::table<lib::ipp::DotProduct<double>>(Fn::ippsDotProd_64f)(x, x, len, &local)
                              : lib::ipp::table<lib::ipp::Sum<double>>(Fn::ippsSum_64f)(x, len, &local);
        if (status != 0) return core::map_accelerator_status(status);
        *sum += local;
        return 0;
    }
    *sum = (kSquares ? kFloatSquareSumKernels : kFloatSumKernels).choose()(x, length, *sum);
    return 0;
}

// f32 data: in order, in double precision (exact for the squares).
template <bool kSquares, class Total>
int32_t add_f32_sum(const float* x, uint32_t length, Total* sum) noexcept {
    double total = 0.0;
    for (uint32_t i = 0; i < length; ++i) {
        double v = x[i];
        total += kSquares ? v * v : v;
    }
    *sum = static_cast<Total>(total + static_cast<double>(*sum));
    return 0;
}

} // namespace

} // namespace search

#define ZOLVEX_M_INTEGER_SUMS(X)                                                                   \
    X(u8, uint8_t, uint64_t) X(u16, uint16_t, uint64_t) X(u32, uint32_t, uint64_t) X(i16, int16_t, int64_t)

#define ZOLVEX_M_EXPORT_INTEGER_SUM(suffix, T, Total)                                              \
    int32_t zolvex_m_sum_##suffix(const T* data, uint32_t length, Total* sum) {                    \
        return search::add_integer_sum(data, length, sum);                                         \
    }

extern "C" {

ZOLVEX_M_INTEGER_SUMS(ZOLVEX_M_EXPORT_INTEGER_SUM)

int32_t zolvex_m_sum_f32(const float* data, uint32_t length, float* sum) {
    return search::add_f32_sum<false>(data, length, sum);
}
int32_t zolvex_m_square_sum_f32(const float* data, uint32_t length, double* sum) {
    return search::add_f32_sum<true>(data, length, sum);
}
int32_t zolvex_m_sum_f64(const double* data, uint32_t length, double* sum) {
    return search::add_f64_sum<false>(data, length, sum);
}
int32_t zolvex_m_square_sum_f64(const double* data, uint32_t length, double* sum) {
    return search::add_f64_sum<true>(data, length, sum);
}

} // extern "C"
