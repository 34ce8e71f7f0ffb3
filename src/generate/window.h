#pragma once
// Cosine-sum window kernels (Hann, Hamming, Blackman, Nuttall,
// Blackman-Harris, Blackman-Nuttall, flat top). Every level evaluates the
// same operations in the same order, so every level gives the generic
// level's values bit for bit.
//
// w(i) = sum_k (-1)^k a_k cos(2 pi k i / D), D = n - 1, is evaluated as a
// polynomial in s = sin^2(pi j / D), j = min(i, D - i), through
// cos(2 pi k t) = T_k(1 - 2s) (T_k the Chebyshev polynomials). The window's
// small values near its ends then come from the small s instead of from the
// cancellation of terms near 1, and w(i) = w(D - i) exactly.

#include <cstdint>

#include "core/kernel_table.h"

namespace generate {

// Rows of the angle table: s is built from blocks of this many indexes.
constexpr uint32_t kTableSize = 64;

struct CosineSumPlan {
    double last;      // D = n - 1, at least 1
    double step[3];   // pi / (2D) = step[0] + step[1] + step[2]; the first two have
                      // 21 significant bits, so m * step[k] is exact for m < 2^31
    double coefficient[5];  // the window times its factor as c0 + c1 s + ... + c4 s^4
    uint32_t terms;         // 2 .. 5 coefficients
    // For B = pi k / D, k < kTableSize: 1 - 2 sin^2 B, sin^2 B, sin B cos B.
    double cos_double[kTableSize], sin_squared[kTableSize], half_sin_double[kTableSize];
};

// A cosine-sum window: its coefficients a_k of (-1)^k a_k cos(2 pi k i / D)
// as double constants, and its amplitude correction factors.
struct CosineSum {
    double a[5];
    double factor_f64;
    float factor_f32;
};

inline constexpr CosineSum kHann = {{0.5, 0.5}, 2.0, 2.0f};
inline constexpr CosineSum kHamming = {{0.54, 0.46}, 1.0 / 0.54, 1.85185182f};
inline constexpr CosineSum kBlackman = {{0.42, 0.5, 0.08}, 1.0 / 0.42, 2.38095236f};
inline constexpr CosineSum kNuttall = {{0.355768, 0.487396, 0.144232, 0.012604}, 1.0 / 0.355768, 2.81082058f};
inline constexpr CosineSum kBlackmanHarris = {{0.35875, 0.48829, 0.14128, 0.01168}, 1.0 / 0.35875, 2.78745651f};
inline constexpr CosineSum kBlackmanNuttall = {{0.3635819, 0.4891775, 0.1365995, 0.0106411}, 1.0 / 0.3635819, 2.75041199f};
inline constexpr CosineSum kFlatTop = {{0.21557895, 0.41663158, 0.277263158, 0.083578947, 0.006947368},
                                4.638671818375588, static_cast<float>(4.638671818375588)};

// The plan of an n-sample block (n >= 2), the window times `factor`.
CosineSumPlan plan_for(uint32_t n, const CosineSum& window, long double factor) noexcept;

template <class T>
using CosineSumKernel = void (*)(const T* in, T* out, uint32_t begin, uint32_t end,
                                 const CosineSumPlan& plan) noexcept;

struct WindowKernels {
    CosineSumKernel<double> f64;
    CosineSumKernel<float> f32;
};

namespace generic {
extern const WindowKernels kWindow;
}
namespace avx2 {
extern const WindowKernels kWindow;
}
namespace avx512 {
extern const WindowKernels kWindow;
}

inline constexpr core::KernelTable<const WindowKernels*> kWindowKernels = {
    .generic = &generic::kWindow, .avx2 = &avx2::kWindow, .avx512 = &avx512::kWindow};

} // namespace generate
