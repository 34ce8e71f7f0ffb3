// Spectral transforms: plans of every length on the built-in engine and on
// FFTW, forward and inverse, against a direct sum in long double within the
// documented bound (8 eps log2(n) times the RMS of the exact result); the
// scaled forms against the plain one; an inverse of a forward against n
// times the signal; and the argument checks: wrong lengths, wrong kind or
// precision of plan.

#include <cmath>
#include <complex>

#include "fuzz_support.h"

namespace {

template <class T>
struct Dft;
#define DFT(T, s)                                                                                                  \
    template <>                                                                                                     \
    struct Dft<T> {                                                                                                 \
        static constexpr auto create = zolvex_m_dft_plan_create_r2c_1d_##s;                                        \
        static constexpr auto execute = zolvex_m_dft_plan_execute_r2c_1d_##s;                                      \
        static constexpr auto divn = zolvex_m_dft_plan_execute_r2c_1d_divn_##s;                                    \
        static constexpr auto icreate = zolvex_m_idft_plan_create_c2r_1d_##s;                                      \
        static constexpr auto iexecute = zolvex_m_idft_plan_execute_c2r_1d_##s;                                    \
    };
DFT(float, f32)
DFT(double, f64)

// The error against the exact values, in the RMS over all values (the
// adversarial signals of a fuzzer break a per-value bound, not this one),
// within `times` the documented bound.
template <class T>
bool within_bound(const std::vector<T>& got, const std::vector<long double>& exact, uint32_t n, int times) {
    long double sum = 0, error = 0;
    for (size_t i = 0; i < exact.size(); ++i) {
        if (!std::isfinite(double(got[i]))) return false;
        sum += exact[i] * exact[i];
        error += (got[i] - exact[i]) * (got[i] - exact[i]);
    }
    // The bound is relative: subnormal values have fewer digits, so an
    // absolute slack of the smallest normal number per value covers them.
    const long double eps = sizeof(T) == 4 ? 0x1p-24L : 0x1p-53L;
    return std::sqrt(error) <= times * 8 * eps * std::max(1.0, std::log2(double(n))) * std::sqrt(sum) +
                                   std::numeric_limits<T>::min() * std::sqrt(exact.size() + 1.0L);
}

template <class T>
std::vector<long double> forward_sum(const std::vector<T>& x) {
    const size_t n = x.size(), bins = n / 2 + 1;
    std::vector<long double> out(2 * bins), c(n), s(n);
    for (size_t j = 0; j < n; ++j) {
        const long double angle = -2 * 3.141592653589793238462643383279502884L * j / n;
        c[j] = std::cos(angle), s[j] = std::sin(angle);
    }
    for (size_t k = 0; k < bins; ++k)
        for (size_t j = 0; j < n; ++j) out[2 * k] += x[j] * c[(j * k) % n], out[2 * k + 1] += x[j] * s[(j * k) % n];
    return out;
}

template <class T>
void transform(fuzz::Bytes& in) {
    using D = Dft<T>;
    const uint8_t shape = in.take<uint8_t>(), library = in.take<uint8_t>();
    const uint16_t raw = in.take<uint16_t>();
    // Lengths: small ones, primes and products of a few factors, and now
    // and then a long one (compared only through the inverse).
    const uint32_t n = (shape & 127) == 127 ? 4096u + raw % 20000 : raw % 700;
    zolvex_m_setopt(sizeof(T) == 4 ? ZOLVEX_M_OPT_FFTW3F : ZOLVEX_M_OPT_FFTW3, library & 1);
    std::vector<T> x = in.samples<T>(n);
    x.resize(n);
    for (T& v : x) v = std::isfinite(v) ? T(std::fmod(v, T(1e6))) : T(0);
    const uint32_t bins = n / 2 + 1;
    std::vector<T> spectrum(2 * bins, T(9)), sentinel = spectrum;

    void* plan = &spectrum;
    fuzz::check(D::create(x.data(), n, spectrum.data(), bins + 1, &plan) == ZOLVEX_M_STATUS_ERROR_DATA_LENGTH &&
                    plan == nullptr, "a wrong bin count: -2 and no plan");
    const int32_t made = D::create(x.data(), n, spectrum.data(), bins, &plan);
    fuzz::check(made == 0 || made == -2, "plan status", made);
    if (made != 0) return fuzz::check(plan == nullptr, "no plan after a failure");
    fuzz::check(D::execute(plan, x.data(), n + 1, spectrum.data(), bins) == ZOLVEX_M_STATUS_INVALID_PLAN &&
                    spectrum == sentinel, "an execute with the wrong n: -4, nothing written");
    fuzz::check(D::iexecute(plan, spectrum.data(), bins, x.data(), n) == ZOLVEX_M_STATUS_INVALID_PLAN,
                "a forward plan given to the inverse");
    const int32_t status = D::execute(plan, x.data(), n, spectrum.data(), bins);
    const bool fftw_refuses = (library & 1) && n == 0;
    if (fftw_refuses) {
        fuzz::check(status == -1, "FFTW plans of no samples fail", status);
        return zolvex_m_dft_plan_destroy(plan);
    }
    fuzz::check(status == 0, "execute status", status);
    if (n <= 700) fuzz::check(within_bound(spectrum, forward_sum(x), n, 1), "forward against the direct sum", n);

    // The scaled forms: each part divided by n, or by n / 2 but bin 0.
    std::vector<T> scaled(2 * bins);
    const bool one_sided = library & 2;
    fuzz::check(D::divn(plan, x.data(), n, scaled.data(), bins, one_sided) == 0, "divn status");
    for (uint32_t i = 0; i < 2 * bins && n > 0; ++i) {
        const T expected = (one_sided && i >= 2) ? T(2) * spectrum[i] / T(n) : spectrum[i] / T(n);
        fuzz::check(fuzz::same_values(std::vector<T>{expected}, std::vector<T>{scaled[i]}), "divn against execute", i);
    }
    zolvex_m_dft_plan_destroy(plan);

    // Back again: n times the signal.
    void* inverse = nullptr;
    fuzz::check(D::icreate(spectrum.data(), bins, x.data(), n, &inverse) == 0, "inverse plan");
    std::vector<T> back(n);
    fuzz::check(D::execute(inverse, x.data(), n, spectrum.data(), bins) == ZOLVEX_M_STATUS_INVALID_PLAN,
                "an inverse plan given to the forward execute");
    fuzz::check(D::iexecute(inverse, spectrum.data(), bins, back.data(), n) == 0, "inverse status");
    std::vector<long double> expected(x.begin(), x.end());
    for (long double& v : expected) v *= n;
    // Two transforms: twice the bound.
    fuzz::check(within_bound(back, expected, n, 2), "inverse of forward against n x", n);
    zolvex_m_idft_plan_destroy(inverse);
}

// Plans of one precision handed to the other's functions, and lengths the
// built-in engine refuses.
void mismatches(fuzz::Bytes& in) {
    const uint32_t n = in.take<uint16_t>() % 64 + (in.flag() ? (1u << 28) + 1 : 0);
    float f[2] = {};
    double d[2] = {};
    void* plan = nullptr;
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3, 0);
    const int32_t made = zolvex_m_dft_plan_create_r2c_1d_f64(d, n, d, n / 2 + 1, &plan);
    if (n > (1u << 28)) return fuzz::check(made == -2 && plan == nullptr, "too long for the built-in engine");
    fuzz::check(made == 0, "plan status");
    fuzz::check(zolvex_m_dft_plan_execute_r2c_1d_f32(plan, f, n, f, n / 2 + 1) == ZOLVEX_M_STATUS_INVALID_PLAN,
                "a f64 plan given to the f32 execute");
    fuzz::check(zolvex_m_dft_plan_execute_r2c_1d_f64(nullptr, d, n, d, n / 2 + 1) == ZOLVEX_M_STATUS_NULLPTR,
                "no plan");
    zolvex_m_dft_plan_destroy(plan);
    fuzz::check(zolvex_m_dft_plan_create_r2c_1d_f64(d, n, d, n / 2 + 1, nullptr) == ZOLVEX_M_STATUS_NULLPTR,
                "no place for the plan");
}

} // namespace

ZOLVEX_M_FUZZ_INITIALISE

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Bytes in(data, size);
    switch (in.pick(3)) {
    case 0: transform<float>(in); break;
    case 1: transform<double>(in); break;
    default: mismatches(in); break;
    }
    return 0;
}
