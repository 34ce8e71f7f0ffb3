// The window functions: out[i] = in[i] * w(i) (times the window's amplitude
// correction factor when `scale` is set), D = n - 1, symmetric. The
// cosine-sum windows run on the chosen level's kernel, the others here;
// all but Welch split the block over the thread pool. Hann, Hamming,
// Blackman and Bartlett go to the accelerator when its option is on.

#include <emmintrin.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

#include "core/export.h"
#include "core/ipp.h"
#include "core/kernel_report.h"
#include "core/options.h"
#include "core/status_error.h"
#include "generate/split.h"
#include "generate/window.h"
#include "zolvex_m.h"

namespace generate {

namespace generic {
// SSE2, which every x86-64 processor has.
constexpr unsigned kVectorBytes = 16;
#include "generate/window_loops.inc"
} // namespace generic

namespace {

// Blocks below these lengths stay on the calling thread (measured on the
// cost of a pool round trip against the kernels' time per element).
constexpr uint32_t kCosineSumSplit = 1u << 16;
constexpr uint32_t kSimpleSplit = 1u << 16;
constexpr uint32_t kGaussianSplit = 1u << 12;

constexpr long double kPi = 3.141592653589793238462643383279502884L;

// T_k(1 - 2s) as polynomials in s (Chebyshev's T_k(cos x) = cos(k x) with
// cos x = 1 - 2 sin^2(x / 2)).
constexpr int kChebyshev[5][5] = {
    {1}, {1, -2}, {1, -8, 8}, {1, -18, 48, -32}, {1, -32, 160, -256, 128}};

// The leading 21 significant bits of x.
double leading_bits(double x) noexcept {
    uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    bits &= ~uint64_t{0xffffffff};
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

} // namespace

CosineSumPlan plan_for(uint32_t n, const CosineSum& window, long double factor) noexcept {
    CosineSumPlan plan{};
    plan.last = n - 1;
    const long double step = kPi / (2.0L * plan.last);
    plan.step[0] = leading_bits(static_cast<double>(step));
    plan.step[1] = leading_bits(static_cast<double>(step - plan.step[0]));
    plan.step[2] = static_cast<double>(step - plan.step[0] - plan.step[1]);
    // The double coefficients combine exactly in long double (a few bits
    // each beyond their 53), the factor with one more rounding; one rounding
    // to double per coefficient.
    for (int power = 0; power < 5; ++power) {
        long double c = 0;
        for (int k = 0; k < 5; ++k)
            c += (k % 2 == 0 ? 1 : -1) * static_cast<long double>(window.a[k]) * kChebyshev[k][power];
        plan.coefficient[power] = static_cast<double>(c * factor);
        if (c != 0) plan.terms = power + 1;
    }
    // The table by rotation in long double (error below 2^-57 after 64
    // steps), rounded once.
    const long double angle = kPi / plan.last, cos_step = std::cos(angle), sin_step = std::sin(angle);
    long double cos_k = 1.0L, sin_k = 0.0L;
    for (uint32_t k = 0; k < kTableSize; ++k) {
        plan.cos_double[k] = static_cast<double>((cos_k - sin_k) * (cos_k + sin_k));
        plan.sin_squared[k] = static_cast<double>(sin_k * sin_k);
        plan.half_sin_double[k] = static_cast<double>(sin_k * cos_k);
        const long double next_cos = cos_k * cos_step - sin_k * sin_step;
        sin_k = sin_k * cos_step + cos_k * sin_step;
        cos_k = next_cos;
    }
    return plan;
}

namespace {

template <class T>
CosineSumKernel<T> cosine_sum_kernel() noexcept {
    const WindowKernels& kernels = *kWindowKernels.choose();
    if constexpr (sizeof(T) == 8)
        return kernels.f64;
    else
        return kernels.f32;
}

template <class T>
long double factor_of(const CosineSum& window, bool scale) noexcept {
    if (!scale) return 1.0L;
    return sizeof(T) == 8 ? window.factor_f64 : window.factor_f32;
}

template <class T>
int32_t cosine_sum(const T* in, T* out, uint32_t n, bool scale, const CosineSum& window) noexcept {
    const CosineSumPlan plan = plan_for(n, window, factor_of<T>(window, scale));
    const CosineSumKernel<T> kernel = cosine_sum_kernel<T>();
    // A piece shares the weights of the mirror pairs it holds, which two
    // halves of a block never do: on two processors the split would double
    // the weights to compute and gain nothing.
    const uint32_t pieces = n >= kCosineSumSplit && core::hardware_threads() > 2 ? core::hardware_threads() : 1u;
    core::run_pieces(n, pieces, [&](uint32_t begin, uint32_t end) { kernel(in, out, begin, end, plan); });
    return 0;
}

// The three other windows over h = D / 2, from j = min(i, D - i) (exact):
// |i - h| = h - j, so w(i) = w(D - i) exactly.
template <class T, class Weight>
int32_t by_distance(const T* in, T* out, uint32_t n, uint32_t min_split, Weight weight) noexcept {
    const double last = n - 1, half = last * 0.5;
    split_work(n, min_split, [&](uint32_t begin, uint32_t end) {
        for (uint32_t i = begin; i < end; ++i) {
            const double j = i < last - i ? i : last - i;
            out[i] = static_cast<T>(static_cast<double>(in[i]) * weight(j, half));
        }
    });
    return 0;
}

// Triangle 1 - |i - h| / h = j / h: one rounding. Factor 2 (its mean is 1/2).
template <class T>
int32_t bartlett(const T* in, T* out, uint32_t n, bool scale) noexcept {
    const double factor = scale ? 2.0 : 1.0;
    return by_distance(in, out, n, kSimpleSplit, [factor](double j, double half) { return j / half * factor; });
}

// Gaussian exp(-0.5 ((i - h) / (sigma h))^2) with sigma = 0.4 (alpha = 2.5,
// F. J. Harris, Proc. IEEE 66(1), 1978); its continuous mean over [-1, 1]
// is sigma sqrt(pi) sqrt(0.5) erf(sqrt(0.5) / sigma), the factor's
// reciprocal. Evaluated in long double, rounded once.
constexpr long double kGaussianSigma = 0.4L;

template <class T>
int32_t gaussian(const T* in, T* out, uint32_t n, bool scale) noexcept {
    const long double sqrt_half = std::sqrt(0.5L);
    const long double mean = kGaussianSigma * std::sqrt(kPi) * sqrt_half * std::erf(sqrt_half / kGaussianSigma);
    const long double factor = scale ? (sizeof(T) == 8 ? 1.0L / mean : static_cast<float>(1.0L / mean)) : 1.0L;
    return by_distance(in, out, n, kGaussianSplit, [factor](double j, double half) {
        const long double x = (static_cast<long double>(half) - j) / (kGaussianSigma * half);
        return static_cast<double>(factor * std::exp(-0.5L * x * x));
    });
}

// Parzen (de la Vallee Poussin), with x = |i - h| / h and y = 1 - x = j / h:
// 1 - 6 x^2 + 6 x^3 = 1 - 6 x^2 y for x <= 1/2, else 2 y^3. Factor 8/3 (its
// mean is 3/8). Evaluated in long double, rounded once.
template <class T>
int32_t parzen(const T* in, T* out, uint32_t n, bool scale) noexcept {
    const long double factor = scale ? (sizeof(T) == 8 ? 8.0L / 3.0L : static_cast<float>(8.0L / 3.0L)) : 1.0L;
    return by_distance(in, out, n, kSimpleSplit, [factor](double j, double half) {
        const long double y = j / static_cast<long double>(half), x = (half - j) / static_cast<long double>(half);
        const long double w = y >= 0.5L ? 1.0L - 6.0L * x * x * y : 2.0L * y * y * y;
        return static_cast<double>(factor * w);
    });
}

// Welch, evaluated as written in double on the calling thread:
// (1 - ((i - h) / h)^2) * factor * in[i], h = (n - 1) * 0.5.
template <class T>
int32_t welch(const T* in, T* out, uint32_t n, bool scale) noexcept {
    const double half = (n - 1) * 0.5, factor = scale ? 1.5 : 1.0;
    for (uint32_t i = 0; i < n; ++i) {
        const double r = (i - half) / half;
        out[i] = static_cast<T>((1.0 - r * r) * factor * static_cast<double>(in[i]));
    }
    return 0;
}

// The accelerator's windows (no scale of their own: the factor follows as
// an in-place multiplication by the same constant).
template <class T>
using IppWindow = lib::ipp::IppStatus (*)(const T* src, T* dst, int len);
template <class T>
using IppWindowInPlace = lib::ipp::IppStatus (*)(T* src_dst, int len);

struct IppNames {
    lib::ipp::Fn f32, f32_in_place, f64, f64_in_place;
};
#define ZOLVEX_M_IPP_WINDOW(name)                                                                  \
    IppNames { lib::ipp::Fn::name##_32f, lib::ipp::Fn::name##_32f_I, lib::ipp::Fn::name##_64f, lib::ipp::Fn::name##_64f_I }

template <class T>
int32_t on_accelerator(const T* in, T* out, uint32_t n, bool scale, const IppNames& names, double factor) noexcept {
    using lib::ipp::table;
    const bool wide = sizeof(T) == 8;
    const int length = static_cast<int>(n);
    lib::ipp::IppStatus status =
        in == out ? table<IppWindowInPlace<T>>(wide ? names.f64_in_place : names.f32_in_place)(out, length)
                  : table<IppWindow<T>>(wide ? names.f64 : names.f32)(in, out, length);
    if (status == 0 && scale) {
        using lib::ipp::Fn;
        status = table<lib::ipp::WithConstantInPlace<T>>(wide ? Fn::ippsMulC_64f_I : Fn::ippsMulC_32f_I)(
            static_cast<T>(factor), out, length);
    }
    return core::map_accelerator_status(status);
}

// The shared front of every window: nothing for n = 0, the accelerator when
// it takes the window, NaN for n = 1 (the window of one sample is 0 / 0).
template <class T, class Compute>
int32_t window(const T* in, T* out, uint32_t n, uint8_t scale, const IppNames* accelerated, double ipp_factor,
               Compute compute) noexcept {
    if (n == 0) return 0;
    if (accelerated != nullptr && core::option_on(ZOLVEX_M_OPT_IPP))
        return on_accelerator(in, out, n, scale != 0, *accelerated, ipp_factor);
    if (n == 1) {
        out[0] = std::numeric_limits<T>::quiet_NaN();
        return 0;
    }
    return compute(in, out, n, scale != 0);
}

template <class T>
int32_t cosine_window(const T* in, T* out, uint32_t n, uint8_t scale, const CosineSum& sum,
                      const IppNames* accelerated) noexcept {
    return window(in, out, n, scale, accelerated, sizeof(T) == 8 ? sum.factor_f64 : sum.factor_f32,
                  [&sum](const T* x, T* y, uint32_t count, bool s) { return cosine_sum(x, y, count, s, sum); });
}

const IppNames kIppHann = ZOLVEX_M_IPP_WINDOW(ippsWinHann);
const IppNames kIppHamming = ZOLVEX_M_IPP_WINDOW(ippsWinHamming);
const IppNames kIppBlackman = ZOLVEX_M_IPP_WINDOW(ippsWinBlackmanStd);
const IppNames kIppBartlett = ZOLVEX_M_IPP_WINDOW(ippsWinBartlett);

const char* window_accelerator() noexcept {
    return core::ipp_when_on() != nullptr ? "ipp (hanning hamming blackman bartlett)" : nullptr;
}
const core::KernelReportRegistration kReport({"window_*", "f32 f64", core::level_of<kWindowKernels>, window_accelerator});

} // namespace

} // namespace generate

#define ZOLVEX_M_EXPORT_COSINE_WINDOW(name, sum, accelerated)                                      \
    int32_t zolvex_m_window_##name##_f32(const float* in, float* out, uint32_t n, uint8_t scale) { \
        return generate::cosine_window(in, out, n, scale, generate::sum, accelerated);             \
    }                                                                                              \
    int32_t zolvex_m_window_##name##_f64(const double* in, double* out, uint32_t n, uint8_t scale) { \
        return generate::cosine_window(in, out, n, scale, generate::sum, accelerated);             \
    }

#define ZOLVEX_M_EXPORT_WINDOW(name, compute, accelerated, ipp_factor)                             \
    int32_t zolvex_m_window_##name##_f32(const float* in, float* out, uint32_t n, uint8_t scale) { \
        return generate::window(in, out, n, scale, accelerated, ipp_factor, generate::compute<float>); \
    }                                                                                              \
    int32_t zolvex_m_window_##name##_f64(const double* in, double* out, uint32_t n, uint8_t scale) { \
        return generate::window(in, out, n, scale, accelerated, ipp_factor, generate::compute<double>); \
    }

extern "C" {
ZOLVEX_M_EXPORT_COSINE_WINDOW(hanning, kHann, &generate::kIppHann)
ZOLVEX_M_EXPORT_COSINE_WINDOW(hamming, kHamming, &generate::kIppHamming)
ZOLVEX_M_EXPORT_COSINE_WINDOW(blackman, kBlackman, &generate::kIppBlackman)
ZOLVEX_M_EXPORT_COSINE_WINDOW(nuttall, kNuttall, nullptr)
ZOLVEX_M_EXPORT_COSINE_WINDOW(blackmanharris, kBlackmanHarris, nullptr)
ZOLVEX_M_EXPORT_COSINE_WINDOW(blackmannuttall, kBlackmanNuttall, nullptr)
ZOLVEX_M_EXPORT_COSINE_WINDOW(flattop, kFlatTop, nullptr)
ZOLVEX_M_EXPORT_WINDOW(bartlett, bartlett, &generate::kIppBartlett, 2.0)
ZOLVEX_M_EXPORT_WINDOW(gaussian, gaussian, nullptr, 1.0)
ZOLVEX_M_EXPORT_WINDOW(parzen, parzen, nullptr, 1.0)
ZOLVEX_M_EXPORT_WINDOW(welch, welch, nullptr, 1.5)
}
