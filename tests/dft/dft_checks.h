#pragma once
// Checks every transform backend must pass, shared by the test process that
// has FFTW (Debian's) and the one that has the accelerator (IPP's runtime).
// Accuracy is measured against long double sums, relative to the RMS of the
// exact result: one bound, kBound * eps * log2(n), for every backend.

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>

#include "support/regimes.h"  // GoogleTest, OptionsSnapshot
#include "zolvex_m.h"

namespace dft_checks {

using LComplex = std::complex<long double>;
// The c of c * eps * log2(n). Largest measured: built-in 0.91 (1.41 with
// either engine forced at every length up to 300), FFTW 0.66, IPP 1.03,
// except IPP's f32 inverse at n = 2^20: 5.2.
constexpr double kBound = 8.0;

enum class Backend { built_in, fftw, ipp };

// The flat functions of one precision.
template <class T> struct Api;
#define DFT_CHECKS_API(T, s)                                                          \
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
    };
DFT_CHECKS_API(float, f32)
DFT_CHECKS_API(double, f64)
#undef DFT_CHECKS_API

// Forward, inverse, round trip and Parseval at length n through the given
// plans (which it destroys unless an execute fails). The direct sums are taken for every bin and
// sample up to n = 64, beyond that for about 16 spread over the range, the
// last one included.
template <class T>
void expect_accurate(uint32_t n, void* forward, void* inverse) {
    SCOPED_TRACE(::testing::Message() << "n=" << n << (sizeof(T) == 4 ? " f32" : " f64"));
    const uint32_t bins = n / 2 + 1, stride = n <= 64 ? 1 : n / 16;
    auto next = [stride](uint32_t i, uint32_t end) { return i + 1 == end ? end : std::min(i + stride, end - 1); };
    const long double bound = kBound * std::numeric_limits<T>::epsilon() * std::max(1.0, std::log2(double(n)));
    std::vector<T> x(n), y(2 * bins), spectrum(2 * bins), back(n);
    std::mt19937_64 rng(n);
    auto draw = [&] { return T(std::uniform_real_distribution<double>(-1, 1)(rng)); };
    std::generate(x.begin(), x.end(), draw);
    std::generate(y.begin(), y.end(), draw);
    const std::vector<T> y_kept = y;  // an FFTW inverse may overwrite its input
    std::vector<LComplex> w(n);       // e^(-2 pi i m / n)
    for (uint32_t m = 0; m < n; ++m) w[m] = std::polar(1.0L, -2 * std::numbers::pi_v<long double> * m / n);
    auto weight = [n](uint32_t k) { return k == 0 || 2 * k == n ? 1 : 2; };  // bins standing for two
    // The imaginary parts of bin 0 and of the Nyquist bin do not count.
    auto bin = [&](const std::vector<T>& v, uint32_t k, bool hermitian) {
        return LComplex(v[2 * k], hermitian && weight(k) == 1 ? 0 : v[2 * k + 1]);
    };
    long double energy = 0, power = 0, spectrum_energy = 0, worst = 0;
    for (uint32_t k = 0; k < bins; ++k) energy += weight(k) * std::norm(bin(y_kept, k, true));
    ASSERT_EQ(Api<T>::iexecute(inverse, y.data(), bins, back.data(), n), 0);
    for (uint32_t j = 0; j < n; j = next(j, n)) {
        long double want = 0;
        for (uint32_t k = 0; k < bins; ++k) want += weight(k) * std::real(std::conj(w[uint64_t(j) * k % n]) * bin(y_kept, k, true));
        EXPECT_LE(std::fabs(back[j] - want), bound * std::sqrt(energy)) << "inverse, sample " << j;
    }
    for (T v : x) power += (long double)v * v;
    ASSERT_EQ(Api<T>::execute(forward, x.data(), n, spectrum.data(), bins), 0);
    for (uint32_t k = 0; k < bins; k = next(k, bins)) {
        LComplex want = 0;
        for (uint32_t j = 0; j < n; ++j) want += (long double)x[j] * w[uint64_t(j) * k % n];
        EXPECT_LE(std::abs(bin(spectrum, k, false) - want), bound * std::sqrt(power)) << "bin " << k;
    }
    for (uint32_t k = 0; k < bins; ++k) spectrum_energy += weight(k) * std::norm(bin(spectrum, k, false));
    EXPECT_LE(std::fabs(spectrum_energy - n * power), 2 * bound * n * power) << "Parseval";
    ASSERT_EQ(Api<T>::iexecute(inverse, spectrum.data(), bins, back.data(), n), 0);
    for (uint32_t j = 0; j < n; ++j) worst = std::max(worst, std::fabs(back[j] - (long double)n * x[j]));
    EXPECT_LE(worst, 2 * bound * std::sqrt(n * power)) << "round trip (n times the signal)";
    zolvex_m_dft_plan_destroy(forward);
    zolvex_m_idft_plan_destroy(inverse);
}

// expect_accurate on a new plan pair of the current backend.
template <class T>
void expect_accurate(uint32_t n) {
    void *forward = nullptr, *inverse = nullptr;
    std::vector<T> buffer(n + 2);  // for the alignment class only
    ASSERT_EQ(Api<T>::create(buffer.data(), n, buffer.data(), n / 2 + 1, &forward), 0);
    ASSERT_EQ(Api<T>::icreate(buffer.data(), n / 2 + 1, buffer.data(), n, &inverse), 0);
    expect_accurate<T>(n, forward, inverse);
}

// Every length from 1 to 64 and composite and prime lengths up to 2^20.
template <class T>
void expect_accurate_everywhere() {
    std::vector<uint32_t> lengths = {1000, 65536, 65537, 100000, 100003, 131074, 999999, 1048573, 1048576};
    for (uint32_t n = 1; n <= 64; ++n) lengths.push_back(n);
    for (uint32_t n : lengths)
        if (!::testing::Test::HasFailure()) expect_accurate<T>(n);
}

// Runs check() with the options set so that new plans of T take `backend`
// (the accelerator comes before FFTW, which is switched on with it), or
// skips when this process cannot have it: FFTW must be found, and the
// accelerator only counts where the test runner put the real one on the
// loader's path.
template <class T, class Check>
void on_backend(Backend backend, Check check) {
    const char* scenario = std::getenv("ZOLVEX_M_TEST_ACCELERATOR");
    if (backend == Backend::ipp && (!scenario || std::string(scenario) != "present"))
        GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
    bool fftw = zolvex_m_setopt(sizeof(T) == 8 ? ZOLVEX_M_OPT_FFTW3 : ZOLVEX_M_OPT_FFTW3F, backend != Backend::built_in) == 0;
    if (zolvex_m_setopt(ZOLVEX_M_OPT_IPP, backend == Backend::ipp) != 0 || (backend == Backend::fftw && !fftw))
        GTEST_SKIP() << "backend not found";
    check();
}

// What sets the backends apart: for n = 0 and n = 2^32 - 2, the create
// status, then (if a plan was made) the execute status; and whether buffer
// alignment classes count.
struct Traits { int32_t empty[2], huge[2]; bool alignment_matters; };

// Argument checks, kinds, alignment classes, one-shot against plan, the divn
// examples and the lengths 0 and 2^32 - 2, under the current backend.
template <class T>
void expect_contract(Traits backend) {
    using A = Api<T>;
    using U = std::conditional_t<std::is_same_v<T, float>, double, float>;
    alignas(64) T x[32] = {1, 2, 3, 4, 5, 6, 7, -8}, out[36] = {-7}, back[16];
    alignas(64) U other[2][4] = {};
    void *plan = x, *inverse = nullptr;
    EXPECT_EQ(A::create(x, 8, out, 4, &plan), ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
    EXPECT_EQ(plan, nullptr);
    EXPECT_EQ(A::create(x, 8, out, 5, nullptr), ZOLVEX_M_STATUS_NULLPTR);
    EXPECT_EQ(A::execute(nullptr, x, 8, out, 5), ZOLVEX_M_STATUS_NULLPTR);
    for (int32_t status : {A::icreate(out, 6, back, 8, &plan), A::once(x, 8, out, 4),
                           A::divn_once(x, 8, out, 6, true), A::ionce(out, 4, back, 8)})
        EXPECT_EQ(status, ZOLVEX_M_STATUS_ERROR_DATA_LENGTH);
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
    zolvex_m_idft_plan_destroy(plan);  // either destroy takes either kind
    // At n = 2 bins and samples are as many: only the kind and precision
    // check tells the plans apart. (Statuses are never positive: a sum of
    // them is 0 only if each is.)
    ASSERT_EQ(A::create(x, 2, out, 2, &plan) + A::icreate(out, 2, back, 2, &inverse), 0);
    for (int32_t status : {A::iexecute(plan, out, 2, back, 2), A::execute(inverse, x, 2, out, 2),
                           A::divn(inverse, x, 2, out, 2, false), Api<U>::execute(plan, other[0], 2, other[1], 2),
                           Api<U>::iexecute(inverse, other[1], 2, other[0], 2)})
        EXPECT_EQ(status, ZOLVEX_M_STATUS_INVALID_PLAN);
    for (void* any : {inverse, plan, static_cast<void*>(nullptr)}) zolvex_m_dft_plan_destroy(any);
    // n = 0 and a length beyond every backend, as each decides.
    for (auto [n, want] : {std::pair{0u, backend.empty}, {0xFFFFFFFEu, backend.huge}}) {
        EXPECT_EQ(A::create(x, n, out, n / 2 + 1, &plan), want[0]) << n;
        for (int again = 0; again < 2 && plan; ++again)  // FFTW tries to plan again
            EXPECT_EQ(A::execute(plan, x, n, out, n / 2 + 1), want[1]) << n;
        zolvex_m_dft_plan_destroy(plan);
    }
    if (backend.empty[0] == 0 && backend.empty[1] == 0) EXPECT_TRUE(out[0] == 0 && out[1] == 0) << "the sum of nothing";
    // One-shot and plan give the same bits, every time.
    alignas(64) T via_plan[2][16 * 2], one_shot[2][16 * 2];
    ASSERT_EQ(A::create(x, 31, via_plan[0], 16, &plan), 0);
    ASSERT_EQ(A::execute(plan, x, 31, via_plan[0], 16) + A::divn(plan, x, 31, via_plan[1], 16, true), 0);
    ASSERT_EQ(A::once(x, 31, one_shot[0], 16) + A::divn_once(x, 31, one_shot[1], 16, true), 0);
    EXPECT_EQ(std::memcmp(via_plan, one_shot, sizeof via_plan), 0);
    zolvex_m_dft_plan_destroy(plan);
    // divn: a constant, a cosine of amplitude 3 at bin 2, and the Nyquist
    // bin, which the one-sided scaling doubles like any other.
    for (auto [value, k] : {std::pair{T(1), 0}, {T(3), 2}, {T(3), 4}}) {
        for (int j = 0; j < 8; ++j) x[j] = value * T(std::cos(2 * std::numbers::pi * k * j / 8));
        for (bool one_sided : {false, true}) {
            ASSERT_EQ(A::divn_once(x, 8, out, 5, one_sided), 0);
            T want = (k % 4 == 0 ? value : value / 2) * (one_sided && k > 0 ? 2 : 1);  // |X[k]| / n, or twice
            for (int b = 0; b < 5; ++b)
                EXPECT_NEAR(std::hypot(out[2 * b], out[2 * b + 1]), b == k ? want : 0, 8 * std::numeric_limits<T>::epsilon());
        }
    }
}

// The contract in both precisions.
inline void expect_contract(Backend backend, Traits traits) {
    on_backend<float>(backend, [traits] { expect_contract<float>(traits); });
    on_backend<double>(backend, [traits] { expect_contract<double>(traits); });
}

} // namespace dft_checks
