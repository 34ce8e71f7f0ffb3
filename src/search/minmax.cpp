// Min/max: the generic kernels, the per-call choice among the kernels and
// the accelerator, and the exported entry points (one macro for all ten
// sample types).

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/ipp.h"
#include "core/kernel_report.h"
#include "core/kernel_table.h"
#include "core/options.h"
#include "core/status_error.h"
#include "search/extremes_rule.h"
#include "search/minmax.h"
#include "zolvex_m.h"

namespace search {

namespace {

template <class T>
void extremes(const T* x, uint32_t n, T* min, T* max) noexcept {
    with_requested(min, max, [&](auto want_min, auto want_max) {
        extremes_in_order<T, decltype(want_min)::value, decltype(want_max)::value>(x, n, min, max);
    });
}

} // namespace

namespace generic {
void minmax_u8(const uint8_t* x, uint32_t n, uint8_t* min, uint8_t* max) noexcept { extremes(x, n, min, max); }
void minmax_i16(const int16_t* x, uint32_t n, int16_t* min, int16_t* max) noexcept { extremes(x, n, min, max); }
void minmax_u16(const uint16_t* x, uint32_t n, uint16_t* min, uint16_t* max) noexcept { extremes(x, n, min, max); }
void minmax_f32(const float* x, uint32_t n, float* min, float* max) noexcept { extremes(x, n, min, max); }
void minmax_f64(const double* x, uint32_t n, double* min, double* max) noexcept { extremes(x, n, min, max); }
} // namespace generic

// The sample types with vector kernels, and their accelerator functions;
// the others (i8, i32, i64, u32, u64) have only the generic rule.
template <class T>
struct VectorMinMax {};

#define ZOLVEX_M_VECTOR_MINMAX(T, suffix, ipp_suffix, widest)                                      \
    template <>                                                                                    \
    struct VectorMinMax<T> {                                                                       \
        static constexpr core::KernelTable<MinMaxKernel<T>> kKernels = {                           \
            .generic = generic::minmax_##suffix, .sse42 = sse42::minmax_##suffix,                  \
            .avx2 = avx2::minmax_##suffix, .widest = widest::minmax_##suffix};                     \
        static constexpr lib::ipp::Fn kAccelerated = lib::ipp::Fn::ippsMinMax_##ipp_suffix;        \
    };                                                                                             \
    template const core::KernelTable<MinMaxKernel<T>>& minmax_kernels<T>() noexcept;

template <class T>
const core::KernelTable<MinMaxKernel<T>>& minmax_kernels() noexcept {
    return VectorMinMax<T>::kKernels;
}

// 8- and 16-bit lanes need AVX-512BW.
ZOLVEX_M_VECTOR_MINMAX(uint8_t, u8, 8u, avx512bw)
ZOLVEX_M_VECTOR_MINMAX(int16_t, i16, 16s, avx512bw)
ZOLVEX_M_VECTOR_MINMAX(uint16_t, u16, 16u, avx512bw)
ZOLVEX_M_VECTOR_MINMAX(float, f32, 32f, avx512)
ZOLVEX_M_VECTOR_MINMAX(double, f64, 64f, avx512)
#undef ZOLVEX_M_VECTOR_MINMAX

namespace {

#define ZOLVEX_M_REPORT(T, suffix)                                                                 \
    core::KernelReportRegistration({"minmax", #suffix, core::level_of<VectorMinMax<T>::kKernels>, core::ipp_when_on})
const core::KernelReportRegistration kReports[] = {
    ZOLVEX_M_REPORT(uint8_t, u8),   ZOLVEX_M_REPORT(int16_t, i16), ZOLVEX_M_REPORT(uint16_t, u16),
    ZOLVEX_M_REPORT(float, f32),    ZOLVEX_M_REPORT(double, f64),
};
#undef ZOLVEX_M_REPORT

} // namespace

namespace {

template <class T>
constexpr bool kHasVectorKernels = requires { VectorMinMax<T>::kKernels; };

// The whole call on the accelerator, which judges the length itself (it
// rejects 0, and counts above INT32_MAX, which arrive as negative ints).
// Its results go only to the pointers given, and only when it succeeded.
template <class T>
int32_t minmax_on_accelerator(const T* x, uint32_t length, T* min, T* max) noexcept {
    T low{}, high{};
    auto accelerated = lib::ipp::table<lib::ipp::MinMax<T>>(VectorMinMax<T>::kAccelerated);
    int32_t status = core::map_accelerator_status(accelerated(x, static_cast<int>(length), &low, &high));
    if (status != 0) return status;
    if (min) *min = low;
    if (max) *max = high;
    return 0;
}

template <class T>
int32_t minmax(const T* x, uint32_t length, T* min, T* max) noexcept {
    if constexpr (kHasVectorKernels<T>)
        if (core::option_on(ZOLVEX_M_OPT_IPP)) return minmax_on_accelerator(x, length, min, max);
    if (!min && !max) return 0;
    // No samples, no extremes: refused before anything is read.
    if (length == 0) return ZOLVEX_M_STATUS_ERROR_DATA_LENGTH;
    if constexpr (kHasVectorKernels<T>)
        minmax_kernels<T>().choose()(x, length, min, max);
    else
        extremes(x, length, min, max);
    return 0;
}

} // namespace

} // namespace search

#define ZOLVEX_M_MINMAX_TYPES(X)                                                                   \
    X(i8, int8_t) X(i16, int16_t) X(i32, int32_t) X(i64, int64_t) X(u8, uint8_t) X(u16, uint16_t)  \
    X(u32, uint32_t) X(u64, uint64_t) X(f32, float) X(f64, double)

#define ZOLVEX_M_EXPORT_MINMAX(suffix, T)                                                          \
    int32_t zolvex_m_minmax_##suffix(const T* data, uint32_t length, T* min, T* max) {             \
        return search::minmax(data, length, min, max);                                             \
    }

extern "C" {
ZOLVEX_M_MINMAX_TYPES(ZOLVEX_M_EXPORT_MINMAX)
} // extern "C"
