// Every entry point that allocates, run with its Nth allocation failing for
// N = 1, 2, ... until it needs no more: it returns its documented status,
// leaves the caller's pointers as they were, and works once memory is back.
// Runs with allocation_shim.c preloaded (see CMakeLists.txt).

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "zolvex_m.h"

namespace {

// One run of an entry point: its status, and whether the caller's pointers
// are as the documentation wants them after a failure.
struct Attempt {
    int32_t status;
    bool pointers_kept;
};

// The entry point armed with its Nth allocation failing, for every N that
// fails one; each failure must give one of `failures`, and the call made
// again unarmed must succeed and pass `works`. Only `attempt` runs armed:
// the test's own allocations belong in `prepare`.
void fail_each_allocation(const char* what, const std::function<Attempt()>& attempt,
                          std::initializer_list<int32_t> failures, const std::function<bool()>& works,
                          const std::function<void()>& prepare = [] {}, const std::function<void()>& cleanup = [] {}) {
    static auto arm = reinterpret_cast<void (*)(long)>(dlsym(RTLD_DEFAULT, "zolvex_m_allocation_shim_arm"));
    static auto disarm = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "zolvex_m_allocation_shim_disarm"));
    ASSERT_TRUE(arm && disarm) << "run with allocation_shim preloaded";
    for (long nth = 1;; ++nth) {
        prepare();
        arm(nth);
        const Attempt a = attempt();
        const bool failed = disarm();
        cleanup();
        if (!failed) {
            EXPECT_EQ(a.status, 0) << what << ": no allocation failed, yet status " << a.status;
            EXPECT_TRUE(works()) << what;
            return;
        }
        SCOPED_TRACE(std::string(what) + ", allocation " + std::to_string(nth) + " failing");
        // Status 0: an allocation the code can do without (std::stable_sort's
        // buffer, for one) failed.
        if (a.status != 0) {
            EXPECT_TRUE(std::find(failures.begin(), failures.end(), a.status) != failures.end()) << "status " << a.status;
            EXPECT_TRUE(a.pointers_kept);
        }
        EXPECT_TRUE(works()) << "after memory came back";
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(AllocationFailure, TriggerStates) {
    const uint8_t signal[] = {0, 0, 200, 200, 0, 0, 200};
    void* state = nullptr;
    uint32_t position = 3;
    auto call = [&] { return zolvex_m_trigger_edge_rising_u8(signal, 7, 50, 100, &position, &state); };
    fail_each_allocation("edge trigger state", [&] {
        state = nullptr;
        position = 0;
        const int32_t status = call();
        // -3 leaves *state NULL and *position untouched.
        return Attempt{status, status == 0 || (state == nullptr && position == 0)};
    }, {ZOLVEX_M_STATUS_OUT_OF_MEMORY}, [&] {
        zolvex_m_state_free(&state);
        position = 0;
        const bool fired = call() == 0 && position == 2;
        zolvex_m_state_free(&state);
        return fired;
    });
    void* pulse = nullptr;
    fail_each_allocation("pulse-width state", [&] {
        pulse = nullptr;
        uint32_t p = 0;
        const int32_t status = zolvex_m_trigger_pulse_width_positive_u8(signal, 7, 100, 50, 0, 0, 0, &p, &pulse);
        return Attempt{status, status == 0 || (pulse == nullptr && p == 0)};
    }, {ZOLVEX_M_STATUS_OUT_OF_MEMORY}, [&] { zolvex_m_state_free(&pulse); return true; });
}

// Plans of the built-in engine (FFTW's own allocator cannot fail softly:
// it stops the process, so its plans are left out).
TEST(AllocationFailure, TransformPlans) {
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3, 0);
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3F, 0);
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
    for (uint32_t n : {8u, 17u, 1000u}) {
        std::vector<double> x(n, 1.0), spectrum(n + 2);
        std::vector<float> xf(n, 1.0f), spectrum_f(n + 2);
        void* plan = nullptr;
        auto forward_works = [&] {
            void* p = nullptr;
            bool ok = zolvex_m_dft_plan_create_r2c_1d_f64(x.data(), n, spectrum.data(), n / 2 + 1, &p) == 0 &&
                      zolvex_m_dft_plan_execute_r2c_1d_f64(p, x.data(), n, spectrum.data(), n / 2 + 1) == 0 &&
                      std::fabs(spectrum[0] - n) < 1e-9;
            zolvex_m_dft_plan_destroy(p);
            return ok;
        };
        fail_each_allocation("forward plan", [&] {
            plan = &plan;
            const int32_t status = zolvex_m_dft_plan_create_r2c_1d_f64(x.data(), n, spectrum.data(), n / 2 + 1, &plan);
            const bool kept = status == 0 || plan == nullptr;  // a failed create sets *plan to NULL
            zolvex_m_dft_plan_destroy(status == 0 ? plan : nullptr);
            return Attempt{status, kept};
        }, {ZOLVEX_M_STATUS_OUT_OF_MEMORY}, forward_works);
        fail_each_allocation("inverse plan (f32)", [&] {
            plan = &plan;
            const int32_t status = zolvex_m_idft_plan_create_c2r_1d_f32(spectrum_f.data(), n / 2 + 1, xf.data(), n, &plan);
            const bool kept = status == 0 || plan == nullptr;
            zolvex_m_idft_plan_destroy(status == 0 ? plan : nullptr);
            return Attempt{status, kept};
        }, {ZOLVEX_M_STATUS_OUT_OF_MEMORY}, forward_works);
        fail_each_allocation("one-shot transform", [&] {
            return Attempt{zolvex_m_dft_f64(x.data(), n, spectrum.data(), n / 2 + 1), true};
        }, {ZOLVEX_M_STATUS_OUT_OF_MEMORY}, forward_works);
    }
}

// Filter designs (their failures are -1), the derived forms, the responses
// and the runtime filter of the first execute (-3).
TEST(AllocationFailure, FilterStatesAndTheirForms) {
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
    zolvex_m_filter_state* const untouched = reinterpret_cast<zolvex_m_filter_state*>(uintptr_t(0x1234));
    auto design = [](int which, zolvex_m_filter_state** s) {
        return which == 0 ? zolvex_m_filter_iir_chebyshev1(2, 6, 1000, 100, 200, 1, s)
                          : zolvex_m_filter_iir_notch(1000, 50, 5, s);
    };
    for (int which : {0, 1}) {
        auto filters = [&] {
            zolvex_m_filter_state* s = nullptr;
            std::vector<double> x(64, 1.0);
            bool ok = design(which, &s) == 0 && zolvex_m_filter_execute_f64(x.data(), x.data(), 64, s) == 0;
            zolvex_m_filter_state_destroy(s);
            return ok && std::isfinite(x[63]);
        };
        zolvex_m_filter_state* state = nullptr;
        fail_each_allocation("design", [&] {
            state = untouched;
            const int32_t status = design(which, &state);
            const bool kept = status == 0 || state == untouched;
            if (status == 0) zolvex_m_filter_state_destroy(state);
            return Attempt{status, kept};
        }, {ZOLVEX_M_STATUS_FAILED}, filters);

        // Each derived form on a fresh state, so that it is derived under the fault.
        zolvex_m_filter_state* s = nullptr;
        std::vector<double> f(16), h(32);
        std::vector<float> x(32), y(32);
        const double *z, *p, *b, *a;
        const double* const* rows;
        uint32_t nz, np, n;
        double k;
        auto prepare = [&] {
            ASSERT_EQ(design(which, &s), 0);
            z = p = b = a = nullptr;
            rows = nullptr;
            nz = np = n = 77;
            k = 77;
            std::fill(f.begin(), f.end(), 7.0);
            std::fill(y.begin(), y.end(), 7.0f);
            std::fill(x.begin(), x.end(), 1.0f);
        };
        auto cleanup = [&] { zolvex_m_filter_state_destroy(s); };
        const std::pair<const char*, std::function<Attempt()>> forms[] = {
            {"get_zpk", [&] {
                 int32_t status = zolvex_m_filter_iir_get_zpk(s, &z, &nz, &p, &np, &k);
                 return Attempt{status, status == 0 || (!z && !p && nz == 77 && np == 77 && k == 77)};
             }},
            {"get_tf", [&] {
                 int32_t status = zolvex_m_filter_iir_get_tf(s, &b, &a, &n);
                 return Attempt{status, status == 0 || (!b && !a && n == 77)};
             }},
            {"get_sos", [&] {
                 int32_t status = zolvex_m_filter_iir_get_sos(s, &rows, &n);
                 return Attempt{status, status == 0 || (!rows && n == 77)};
             }},
            {"freqz", [&] {
                 int32_t status = zolvex_m_filter_iir_freqz(s, 16, 1000, false, false, f.data(), h.data());
                 return Attempt{status, status == 0 || f[0] == 7};
             }},
            {"execute", [&] {
                 int32_t status = zolvex_m_filter_execute_f32(x.data(), y.data(), 32, s);
                 return Attempt{status, status == 0 || y[0] == 7.0f};
             }},
        };
        for (const auto& [name, form] : forms)
            fail_each_allocation(name, form, {ZOLVEX_M_STATUS_FAILED, ZOLVEX_M_STATUS_OUT_OF_MEMORY}, filters,
                                 prepare, cleanup);
    }
}

// The outermost init starts the sibling libraries under the fault; after a
// fini and an init with memory back, the library works.
TEST(AllocationFailure, Init) {
    fail_each_allocation("init", [] {
        zolvex_m_fini();
        const int32_t status = zolvex_m_init();
        return Attempt{status, true};
    }, {ZOLVEX_M_STATUS_SUCCESS, ZOLVEX_M_STATUS_OUT_OF_MEMORY, ZOLVEX_M_STATUS_FAILED}, [] {
        zolvex_m_fini();
        zolvex_m_init();
        uint8_t data[3] = {1, 9, 4}, low = 0, high = 0;
        return zolvex_m_minmax_u8(data, 3, &low, &high) == 0 && low == 1 && high == 9;
    });
}

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    zolvex_m_init();
    const int result = RUN_ALL_TESTS();
    zolvex_m_fini();
    return result;
}
