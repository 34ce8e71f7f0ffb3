#pragma once
// Checks every transform backend must pass, shared by the test process that
// has FFTW (Debian's) and the one that has the accelerator (IPP's runtime).
// Accuracy is measured against long double sums, relative to the RMS of the
// exact result: one bound, kBound * eps * log2(n), for every backend.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

#include "zolvex_m.h"

namespace dft_checks {

using LComplex = std::complex<long double>;
// The c of c * eps * log2(n). Largest measured: built-in 0.91 (1.41 with
// either engine forced at every length up to 300), FFTW 0.66, IPP 1.03,
// except IPP's f32 inverse at n = 2^20: 5.2.
constexpr double kBound = 8.0;

enum class Backend { built_in, fftw, ipp };

// The flat functions of one precision.
template <class T>
struct Api;
#define DFT_CHECKS_API(T, s)                                                                       \
    template <>                                                                                    \
    struct Api<T> {                                                                                \
        static constexpr auto create = zolvex_m_dft_plan_create_r2c_1d_##s;                        \
        static constexpr auto execute = zolvex_m_dft_plan_execute_r2c_1d_##s;                      \
        static constexpr auto divn = zolvex_m_dft_plan_execute_r2c_1d_divn_##s;                    \
        static constexpr auto icreate = zolvex_m_idft_plan_create_c2r_1d_##s;                      \
        static constexpr auto iexecute = zolvex_m_idft_plan_execute_c2r_1d_##s;                    \
        static constexpr auto once = zolvex_m_dft_##s;                                             \
        static constexpr auto divn_once = zolvex_m_dft_divn_##s;                                   \
        static constexpr auto ionce = zolvex_m_idft_##s;                                           \
        static constexpr uint32_t fftw = std::is_same_v<T, double> ? ZOLVEX_M_OPT_FFTW3 : ZOLVEX_M_OPT_FFTW3F; \
    };
DFT_CHECKS_API(float, f32)
DFT_CHECKS_API(double, f64)
#undef DFT_CHECKS_API

// Switches the options so that new plans of T take `backend`.
template <class T>
bool use(Backend backend) {
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, backend == Backend::ipp);
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3, 0);
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3F, 0);
    return backend != Backend::fftw || zolvex_m_setopt(Api<T>::fftw, 1) == 0;
}

inline std::vector<double> random_signal(size_t n, uint32_t seed) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> value(-1, 1);
    std::vector<double> v(n);
    for (double& x : v) x = value(rng);
    return v;
}

// e^(-2 pi i m / n) for every m < n, in long double.
inline std::vector<LComplex> roots(uint32_t n) {
    std::vector<LComplex> w(n);
    for (uint32_t m = 0; m < n; ++m) w[m] = std::polar(1.0L, -2 * std::numbers::pi_v<long double> * m / n);
    return w;
}

// The indexes to compare: all of them up to 64, else the ends, the middle
// and a random sample.
inline std::vector<uint32_t> spots(uint32_t count, uint32_t seed) {
    std::vector<uint32_t> at;
    if (count <= 65) {
        for (uint32_t i = 0; i < count; ++i) at.push_back(i);
        return at;
    }
    std::mt19937 rng(seed);
    at = {0, 1, count / 2, count - 2, count - 1};
    for (int i = 0; i < 12; ++i) at.push_back(rng() % count);
    return at;
}

// Forward, inverse, round trip and Parseval at length n through the given
// plans (which it destroys).
template <class T>
void expect_accurate(uint32_t n, void* forward, void* inverse) {
    SCOPED_TRACE(::testing::Message() << "n=" << n << (sizeof(T) == 4 ? " f32" : " f64"));
    std::unique_ptr<void, void (*)(void*)> release_forward(forward, zolvex_m_dft_plan_destroy),
        release_inverse(inverse, zolvex_m_dft_plan_destroy);
    const uint32_t bins = n / 2 + 1;
    const long double bound = kBound * std::numeric_limits<T>::epsilon() * std::max(1.0, std::log2(double(n)));
    std::vector<double> signal = random_signal(n + 2 * bins, n);
    std::vector<T> x(signal.begin(), signal.begin() + n), y(signal.begin() + n, signal.end()), spectrum(2 * bins),
        back(n);
    const std::vector<T> y_kept = y;  // an FFTW inverse may overwrite its input
    auto weight = [n](uint32_t k) { return k == 0 || 2 * k == n ? 1 : 2; };  // bins standing for two
    auto bin = [&](const std::vector<T>& v, uint32_t k, bool hermitian) {
        return LComplex(v[2 * k], hermitian && weight(k) == 1 ? 0 : v[2 * k + 1]);
    };
    const std::vector<LComplex> w = roots(n);
    // The inverse of random bins; the imaginary parts of bin 0 and of the
    // Nyquist bin do not count.
    long double energy = 0, power = 0, spectrum_energy = 0, worst = 0;
    for (uint32_t k = 0; k < bins; ++k) energy += weight(k) * std::norm(bin(y_kept, k, true));
    ASSERT_EQ(Api<T>::iexecute(inverse, y.data(), bins, back.data(), n), 0);
    for (uint32_t j : spots(n, n + 1)) {
        long double want = 0;
        for (uint32_t k = 0; k < bins; ++k) want += weight(k) * std::real(std::conj(w[uint64_t(j) * k % n]) * bin(y_kept, k, true));
        EXPECT_LE(std::fabs(back[j] - want), bound * std::sqrt(energy)) << "inverse, sample " << j;
    }
    // The forward against the direct sum, Parseval over all bins, and the
    // round trip (n times the signal).
    for (T v : x) power += (long double)v * v;
    ASSERT_EQ(Api<T>::execute(forward, x.data(), n, spectrum.data(), bins), 0);
    for (uint32_t k : spots(bins, n + 2)) {
        LComplex want = 0;
        for (uint32_t j = 0; j < n; ++j) want += (long double)x[j] * w[uint64_t(j) * k % n];
        EXPECT_LE(std::abs(bin(spectrum, k, false) - want), bound * std::sqrt(power)) << "bin " << k;
    }
    for (uint32_t k = 0; k < bins; ++k) spectrum_energy += weight(k) * std::norm(bin(spectrum, k, false));
    EXPECT_LE(std::fabs(spectrum_energy - n * power), 2 * bound * n * power) << "Parseval";
    ASSERT_EQ(Api<T>::iexecute(inverse, spectrum.data(), bins, back.data(), n), 0);
    for (uint32_t j = 0; j < n; ++j) worst = std::max(worst, std::fabs(back[j] - (long double)n * x[j]));
    EXPECT_LE(worst, 2 * bound * std::sqrt(n * power)) << "round trip";
}

// What sets the backends apart: the statuses of a plan of n = 0 (create,
// then execute) and whether buffer alignment classes count.
struct Traits {
    int32_t empty_create, empty_execute;
    bool alignment_matters;
};

// Argument checks, kinds, one-shot against plan, the divn examples and the
// lengths 0, 1 and 8, under the current backend.
template <class T>
void expect_contract(Traits backend) {
    using A = Api<T>;
    using U = std::conditional_t<std::is_same_v<T, float>, double, float>;
    const T eps = std::numeric_limits<T>::epsilon();
    alignas(64) T x[16] = {1, 2, 3, 4, 5, 6, 7, -8}, out[12], back[16];
    std::fill(out, out + 12, T(-7));
    void* plan = x;
    EXPECT_EQ(A::create(x, 8, out, 4, &plan), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    EXPECT_EQ(plan, nullptr);
    EXPECT_EQ(A::icreate(out, 6, back, 8, &plan), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    EXPECT_EQ(A::create(x, 8, out, 5, nullptr), ZOLVEX_M_STATUS_NULLPTR);
    EXPECT_EQ(A::execute(nullptr, x, 8, out, 5), ZOLVEX_M_STATUS_NULLPTR);
    EXPECT_EQ(A::once(x, 8, out, 4), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    EXPECT_EQ(A::divn_once(x, 8, out, 6, true), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    EXPECT_EQ(A::ionce(out, 4, back, 8), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    ASSERT_EQ(A::create(x, 8, out, 5, &plan), 0);
    EXPECT_EQ(A::execute(plan, x, 9, out, 5), ZOLVEX_M_STATUS_INVALID_PLAN);
    EXPECT_EQ(A::divn(plan, x, 8, out, 4, true), ZOLVEX_M_STATUS_INVALID_PLAN);
    EXPECT_EQ(out[0], T(-7)) << "a refused call writes nothing";
    // Buffers 8 bytes off those the plan was made with: another alignment
    // class for FFTW, the same (0) for the others.
    T* shifted = x + 8 / sizeof(T);
    EXPECT_EQ(A::execute(plan, shifted, 8, out, 5), backend.alignment_matters ? ZOLVEX_M_STATUS_INVALID_PLAN : 0);
    EXPECT_EQ(zolvex_m_dft_alignment_of(plan, shifted) != 0, backend.alignment_matters);
    EXPECT_EQ(zolvex_m_idft_alignment_of(nullptr, reinterpret_cast<char*>(x) + 19), 3);
    // The length-8 round trip gives 8 times the signal.
    ASSERT_EQ(A::execute(plan, x, 8, out, 5), 0);
    zolvex_m_idft_plan_destroy(plan);  // either destroy takes either kind
    ASSERT_EQ(A::ionce(out, 5, back, 8), 0);
    for (int j = 0; j < 8; ++j) EXPECT_NEAR(back[j], 8 * x[j], 64 * eps) << j;
    // n = 2 has as many bins as samples: only the kind and precision check
    // tells the plans apart.
    void *forward = nullptr, *inverse = nullptr;
    ASSERT_EQ(A::create(x, 2, out, 2, &forward), 0);
    ASSERT_EQ(A::icreate(out, 2, back, 2, &inverse), 0);
    EXPECT_EQ(A::iexecute(forward, out, 2, back, 2), ZOLVEX_M_STATUS_INVALID_PLAN);
    EXPECT_EQ(A::execute(inverse, x, 2, out, 2), ZOLVEX_M_STATUS_INVALID_PLAN);
    EXPECT_EQ(A::divn(inverse, x, 2, out, 2, false), ZOLVEX_M_STATUS_INVALID_PLAN);
    alignas(64) U other[2][4] = {};
    EXPECT_EQ(Api<U>::execute(forward, other[0], 2, other[1], 2), ZOLVEX_M_STATUS_INVALID_PLAN);
    EXPECT_EQ(Api<U>::iexecute(inverse, other[1], 2, other[0], 2), ZOLVEX_M_STATUS_INVALID_PLAN);
    zolvex_m_dft_plan_destroy(inverse);
    zolvex_m_dft_plan_destroy(forward);
    zolvex_m_dft_plan_destroy(nullptr);
    // n = 0 as the backend decides; n = 1 copies.
    EXPECT_EQ(A::create(x, 0, out, 1, &plan), backend.empty_create);
    if (plan) {
        EXPECT_EQ(A::execute(plan, x, 0, out, 1), backend.empty_execute);
        EXPECT_EQ(A::execute(plan, x, 0, out, 1), backend.empty_execute) << "FFTW tries again";
        if (backend.empty_execute == 0) EXPECT_TRUE(out[0] == 0 && out[1] == 0) << "the sum of nothing";
        zolvex_m_dft_plan_destroy(plan);
    }
    EXPECT_EQ(A::once(x + 7, 1, out, 1), 0);
    EXPECT_TRUE(out[0] == -8 && out[1] == 0);
    EXPECT_EQ(A::ionce(out, 1, back, 1), 0);
    EXPECT_EQ(back[0], -8);
    // One-shot and plan give the same bits, every time.
    for (uint32_t n : {12u, 31u}) {
        std::vector<double> signal = random_signal(n, n);
        std::copy(signal.begin(), signal.end(), x);
        alignas(64) T via_plan[2][36], one_shot[2][36];  // 16-byte multiples: one alignment class
        ASSERT_EQ(A::create(x, n, via_plan[0], n / 2 + 1, &plan), 0);
        ASSERT_EQ(A::execute(plan, x, n, via_plan[0], n / 2 + 1), 0);
        ASSERT_EQ(A::divn(plan, x, n, via_plan[1], n / 2 + 1, true), 0);
        ASSERT_EQ(A::once(x, n, one_shot[0], n / 2 + 1), 0);
        ASSERT_EQ(A::divn_once(x, n, one_shot[1], n / 2 + 1, true), 0);
        EXPECT_EQ(std::memcmp(via_plan, one_shot, sizeof(T) * 2 * (n / 2 + 1)), 0) << n;
        EXPECT_EQ(std::memcmp(via_plan[1], one_shot[1], sizeof(T) * 2 * (n / 2 + 1)), 0) << n;
        zolvex_m_dft_plan_destroy(plan);
    }
    // divn: a constant, a cosine of amplitude 3 at bin 2, and the Nyquist
    // bin, which the one-sided scaling doubles like any other.
    for (auto [value, k] : {std::pair{T(1), 0}, {T(3), 2}, {T(3), 4}}) {
        for (int j = 0; j < 8; ++j) x[j] = value * T(std::cos(2 * std::numbers::pi * k * j / 8));
        for (bool one_sided : {false, true}) {
            ASSERT_EQ(A::divn_once(x, 8, out, 5, one_sided), 0);
            T full = k % 4 == 0 ? value : value / 2;  // |X[k]| / n
            T want = one_sided && k > 0 ? 2 * full : full;
            for (int b = 0; b < 5; ++b) EXPECT_NEAR(std::hypot(out[2 * b], out[2 * b + 1]), b == k ? want : 0, 8 * eps) << k << " " << b;
        }
    }
}

// Every length from 1 to 64 and composite and prime lengths up to 2^20,
// on plans of the current backend.
template <class T>
void expect_accurate_everywhere() {
    std::vector<uint32_t> lengths = {1000, 65536, 65537, 100000, 100003, 131074, 999999, 1045504, 1048573, 1048576};
    for (uint32_t n = 1; n <= 64; ++n) lengths.push_back(n);
    for (uint32_t n : lengths) {
        if (::testing::Test::HasFailure()) return;
        void *forward = nullptr, *inverse = nullptr;
        std::vector<T> buffer(n + 2);  // for the alignment class only
        ASSERT_EQ(Api<T>::create(buffer.data(), n, buffer.data(), n / 2 + 1, &forward), 0);
        ASSERT_EQ(Api<T>::icreate(buffer.data(), n / 2 + 1, buffer.data(), n, &inverse), 0);
        expect_accurate<T>(n, forward, inverse);
    }
}

} // namespace dft_checks
