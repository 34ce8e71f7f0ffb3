// Transform plans: the backend choice at creation, the checks before every
// execute, the one-shot transforms on a temporary plan, and the exported
// entry points (one macro for both precisions).

#include <cstdint>
#include <memory>
#include <type_traits>

#include "core/export.h"
#include "core/kernel_report.h"
#include "core/options.h"
#include "dft/abstract_dft.h"
#include "dft/eigen/eigen_dft.h"
#include "dft/fftw3/fftw3_dft.h"
#include "dft/fftw3f/fftw3f_dft.h"
#include "dft/ipp/ipp_dft.h"
#include "zolvex_m.h"

namespace dft {
namespace {

template <class T>
struct Fftw;
template <>
struct Fftw<double> {
    static constexpr uint32_t kOption = ZOLVEX_M_OPT_FFTW3;
    using Forward = lib::fftw3::DFTR2C1DFFTW;
    using Inverse = lib::fftw3::IDFTC2R1DFFTW;
};
template <>
struct Fftw<float> {
    static constexpr uint32_t kOption = ZOLVEX_M_OPT_FFTW3F;
    using Forward = lib::fftw3f::DFTR2C1DFFTWF;
    using Inverse = lib::fftw3f::IDFTC2R1DFFTW;
};

// The first backend allowed: the accelerator, FFTW of this precision, the
// built-in transform.
enum class Backend { ipp, fftw, builtin };
template <class T>
Backend backend() noexcept {
    if (core::option_on(ZOLVEX_M_OPT_IPP)) return Backend::ipp;
    if (core::option_on(Fftw<T>::kOption)) return Backend::fftw;
    return Backend::builtin;
}

// Throw StatusError when the backend cannot take n.
template <class T>
std::unique_ptr<AbstractDFTR2C1D<T>> make_forward(const T* in, uint32_t n, T* out) {
    switch (backend<T>()) {
    case Backend::ipp: return std::make_unique<lib::ipp::DFTR2C1D<T>>(n);
    case Backend::fftw: return std::make_unique<typename Fftw<T>::Forward>(in, out, n);
    case Backend::builtin: break;
    }
    return std::make_unique<lib::eigen::DFTR2C1D<T>>(n);
}

template <class T>
std::unique_ptr<AbstractIDFTC2R1D<T>> make_inverse(const T* in, T* out, uint32_t n) {
    switch (backend<T>()) {
    case Backend::ipp: return std::make_unique<lib::ipp::IDFTC2R1D<T>>(n);
    case Backend::fftw: return std::make_unique<typename Fftw<T>::Inverse>(in, out, n);
    case Backend::builtin: break;
    }
    return std::make_unique<lib::eigen::IDFTC2R1D<T>>(n);
}

// A new plan's backend; the built-in transform has one (baseline) kernel.
template <class T>
const char* accelerator_of_new_plans() noexcept {
    switch (backend<T>()) {
    case Backend::ipp: return "ipp";
    case Backend::fftw: return std::is_same_v<T, float> ? "fftw3f" : "fftw3";
    case Backend::builtin: break;
    }
    return nullptr;
}
const core::KernelReportRegistration kReports[] = {
    core::KernelReportRegistration({"dft idft (new plans)", "f32", []() noexcept { return core::Isa::generic; },
                                    accelerator_of_new_plans<float>}),
    core::KernelReportRegistration({"dft idft (new plans)", "f64", []() noexcept { return core::Isa::generic; },
                                    accelerator_of_new_plans<double>}),
};

bool lengths_agree(uint32_t n, uint32_t bins) noexcept { return bins == n / 2 + 1; }

// Makes a plan whose real length is n and complex length `bins`; a null
// `plan` is refused, and *plan is null unless a plan was made.
template <class Make>
int32_t create(uint32_t n, uint32_t bins, void** plan, Make&& make) noexcept {
    if (plan == nullptr) return ZOLVEX_M_STATUS_NULLPTR;
    *plan = nullptr;
    if (!lengths_agree(n, bins)) return ZOLVEX_M_STATUS_ERROR_DATA_LENGTH;
    return core::guarded([&] {
        AbstractDFT* made = make().release();
        *plan = made;
        return 0;
    });
}

// The checks of every plan execute, in order: null plan, lengths, alignment
// classes, then kind and precision (a checked down-cast).
template <class Kind, class Run>
int32_t execute(void* plan, const void* in, uint32_t in_length, const void* out, uint32_t out_length,
                Run&& run) noexcept {
    if (plan == nullptr) return ZOLVEX_M_STATUS_NULLPTR;
    auto* any = static_cast<AbstractDFT*>(plan);
    if (!any->check_input_length(in_length) || !any->check_output_length(out_length) ||
        any->alignment_of(in) != any->input_alignment || any->alignment_of(out) != any->output_alignment)
        return ZOLVEX_M_STATUS_INVALID_PLAN;
    auto* kind = dynamic_cast<Kind*>(any);
    if (kind == nullptr) return ZOLVEX_M_STATUS_INVALID_PLAN;
    return core::guarded([&] { return run(*kind); });
}

void destroy(void* plan) noexcept { delete static_cast<AbstractDFT*>(plan); }

int32_t alignment_of(void* plan, const void* p) noexcept {
    if (plan == nullptr) return static_cast<int32_t>(reinterpret_cast<uintptr_t>(p) & 15);
    return static_cast<AbstractDFT*>(plan)->alignment_of(p);
}

// One-shot transforms: a plan made for exactly these buffers, run without
// the plan checks, and destroyed whatever happened.
template <class T>
int32_t forward_once(const T* in, uint32_t n, T* out, uint32_t out_length) noexcept {
    if (!lengths_agree(n, out_length)) return ZOLVEX_M_STATUS_ERROR_DATA_LENGTH;
    return core::guarded([&] { return make_forward(in, n, out)->execute(in, n, out, out_length); });
}

template <class T>
int32_t forward_divn_once(const T* in, uint32_t n, T* out, uint32_t out_length, bool one_sided) noexcept {
    if (!lengths_agree(n, out_length)) return ZOLVEX_M_STATUS_ERROR_DATA_LENGTH;
    return core::guarded([&] { return make_forward(in, n, out)->execute_divn(in, n, out, out_length, one_sided); });
}

template <class T>
int32_t inverse_once(const T* in, uint32_t in_length, T* out, uint32_t n) noexcept {
    if (!lengths_agree(n, in_length)) return ZOLVEX_M_STATUS_ERROR_DATA_LENGTH;
    return core::guarded([&] { return make_inverse(in, out, n)->execute(in, in_length, out, n); });
}

} // namespace
} // namespace dft

#define ZOLVEX_M_EXPORT_DFT(suffix, T)                                                                         \
    int32_t zolvex_m_dft_plan_create_r2c_1d_##suffix(const T* in, uint32_t n, T* out, uint32_t out_length,     \
                                                     void** plan) {                                            \
        return dft::create(n, out_length, plan, [&] { return dft::make_forward(in, n, out); });               \
    }                                                                                                          \
    int32_t zolvex_m_dft_plan_execute_r2c_1d_##suffix(void* plan, const T* in, uint32_t n, T* out,             \
                                                      uint32_t out_length) {                                   \
        return dft::execute<dft::AbstractDFTR2C1D<T>>(plan, in, n, out, out_length, [&](auto& p) {            \
            return p.execute(in, n, out, out_length);                                                          \
        });                                                                                                    \
    }                                                                                                          \
    int32_t zolvex_m_dft_plan_execute_r2c_1d_divn_##suffix(void* plan, const T* in, uint32_t n, T* out,        \
                                                           uint32_t out_length, bool one_sided) {              \
        return dft::execute<dft::AbstractDFTR2C1D<T>>(plan, in, n, out, out_length, [&](auto& p) {            \
            return p.execute_divn(in, n, out, out_length, one_sided);                                          \
        });                                                                                                    \
    }                                                                                                          \
    int32_t zolvex_m_idft_plan_create_c2r_1d_##suffix(const T* in, uint32_t in_length, T* out, uint32_t n,     \
                                                      void** plan) {                                           \
        return dft::create(n, in_length, plan, [&] { return dft::make_inverse(in, out, n); });               \
    }                                                                                                          \
    int32_t zolvex_m_idft_plan_execute_c2r_1d_##suffix(void* plan, const T* in, uint32_t in_length, T* out,    \
                                                       uint32_t n) {                                           \
        return dft::execute<dft::AbstractIDFTC2R1D<T>>(plan, in, in_length, out, n, [&](auto& p) {            \
            return p.execute(in, in_length, out, n);                                                           \
        });                                                                                                    \
    }                                                                                                          \
    int32_t zolvex_m_dft_##suffix(const T* in, uint32_t n, T* out, uint32_t out_length) {                      \
        return dft::forward_once(in, n, out, out_length);                                                      \
    }                                                                                                          \
    int32_t zolvex_m_dft_divn_##suffix(const T* in, uint32_t n, T* out, uint32_t out_length, bool one_sided) { \
        return dft::forward_divn_once(in, n, out, out_length, one_sided);                                      \
    }                                                                                                          \
    int32_t zolvex_m_idft_##suffix(const T* in, uint32_t in_length, T* out, uint32_t n) {                      \
        return dft::inverse_once(in, in_length, out, n);                                                       \
    }

extern "C" {
ZOLVEX_M_EXPORT_DFT(f32, float)
ZOLVEX_M_EXPORT_DFT(f64, double)

void zolvex_m_dft_plan_destroy(void* plan) { dft::destroy(plan); }
void zolvex_m_idft_plan_destroy(void* plan) { dft::destroy(plan); }
int32_t zolvex_m_dft_alignment_of(void* plan, const void* p) { return dft::alignment_of(plan, p); }
int32_t zolvex_m_idft_alignment_of(void* plan, const void* p) { return dft::alignment_of(plan, p); }
} // extern "C"
