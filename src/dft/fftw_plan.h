#pragma once
// The FFTW backend, written once for both precisions: lib::fftw3 (double)
// and lib::fftw3f (float) each supply an FftwLibrary<T> (the loaded
// functions and the planner lock of that precision) and name the classes.
//
// FFTW plans lazily: creating our plan only records the alignment classes
// of the buffers; the first execute plans (FFTW_ESTIMATE, under the planner
// lock, since FFTW's planner is not thread-safe) on the buffers it is given
// and runs that plan; later executes run the same FFTW plan on new buffers
// (the new-array execute), which FFTW allows only for buffers of the same
// alignment class. A planning that fails leaves the plan unplanned and is
// tried again on the next execute.

#include <climits>
#include <cstdint>
#include <mutex>
#include <type_traits>

#include "core/libraries.h"
#include "dft/abstract_dft.h"
#include "zolvex_m.h"

namespace dft {

template <class T>
struct FftwLibrary;  // static void* function(lib::FftwFn); static std::mutex& planner_mutex();

// One FFTW plan handle of precision T, null until the first execute.
template <class T>
class FftwHandle {
public:
    using Plan = void*;
    // FFTW's own signatures, with fftw_complex as a pair of T (so r2c and
    // c2r share theirs).
    using AlignmentOf = int (*)(T*);
    using PlanReal = Plan (*)(int n, T* in, T* out, unsigned flags);
    using Execute = void (*)(Plan);
    using ExecuteNewArray = void (*)(Plan, T* in, T* out);
    using Destroy = void (*)(Plan);

    static constexpr unsigned kEstimate = 1u << 6;  // FFTW_ESTIMATE

    FftwHandle() = default;
    FftwHandle(const FftwHandle&) = delete;
    FftwHandle& operator=(const FftwHandle&) = delete;
    ~FftwHandle() {
        std::lock_guard<std::mutex> lock(FftwLibrary<T>::planner_mutex());
        function<Destroy>(lib::FftwFn::destroy_plan)(plan_);
    }

    static int alignment_of(const void* p) noexcept {
        return function<AlignmentOf>(lib::FftwFn::alignment_of)(static_cast<T*>(const_cast<void*>(p)));
    }

    // Runs the transform of real length n; `make` is plan_dft_r2c_1d or
    // plan_dft_c2r_1d, `run_new` the matching new-array execute.
    int run(lib::FftwFn make, lib::FftwFn run_new, uint32_t n, const T* in, T* out) {
        T* input = const_cast<T*>(in);  // an r2c plan only reads it; a c2r plan may overwrite it
        if (plan_ != nullptr) {
            function<ExecuteNewArray>(run_new)(plan_, input, out);
            return 0;
        }
        // FFTW's lengths are positive ints; it cannot plan the others, so
        // they never reach its planner.
        if (n == 0 || n > uint32_t(INT_MAX)) return ZOLVEX_M_STATUS_FAILED;
        {
            std::lock_guard<std::mutex> lock(FftwLibrary<T>::planner_mutex());
            plan_ = function<PlanReal>(make)(static_cast<int>(n), input, out, kEstimate);
        }
        if (plan_ == nullptr) return ZOLVEX_M_STATUS_FAILED;
        function<Execute>(lib::FftwFn::execute)(plan_);
        return 0;
    }

private:
    template <class Signature>
    static Signature function(lib::FftwFn f) noexcept {
        return reinterpret_cast<Signature>(FftwLibrary<T>::function(f));
    }

    Plan plan_ = nullptr;
};

// A plan of either direction (Base is AbstractDFTR2C1D<T> or
// AbstractIDFTC2R1D<T>); the backend namespaces name the four classes.
template <class Base>
class FftwPlan : public Base {
    using T = typename Base::Element;
    static constexpr bool kForward = std::is_same_v<Base, AbstractDFTR2C1D<T>>;

public:
    FftwPlan(const T* in, T* out, uint32_t n)
        : Base(n, FftwHandle<T>::alignment_of(in), FftwHandle<T>::alignment_of(out)) {}

    int alignment_of(const void* p) const noexcept override { return FftwHandle<T>::alignment_of(p); }
    int execute(const void* in, uint32_t, void* out, uint32_t) override {
        return handle_.run(kForward ? lib::FftwFn::plan_dft_r2c_1d : lib::FftwFn::plan_dft_c2r_1d,
                           kForward ? lib::FftwFn::execute_dft_r2c : lib::FftwFn::execute_dft_c2r,
                           kForward ? this->input_length : this->output_length, static_cast<const T*>(in),
                           static_cast<T*>(out));
    }

private:
    FftwHandle<T> handle_;
};

} // namespace dft
