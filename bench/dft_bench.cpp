// Transform plans: our plan execute on each backend (built-in, FFTW, IPP)
// against FFTW and IPP called directly, per direction, precision and
// length, on 64-byte-aligned buffers. Besides its own time, each of our
// cases reports `vs_fftw`, its time over raw FFTW's (an FFTW_ESTIMATE plan
// and the new-array execute), and the IPP case `vs_ipp`, over raw IPP's:
// medians of alternating blocks of both calls in this thread's CPU time,
// so that a change in the load of a shared machine hits both sides alike.
//
// Raw FFTW is linked into this program only (the library loads the same
// libfftw3 at run time); raw IPP is the runtime the library loaded, found by
// its soname on the loader's path (tools/run-bench puts it there). FFTW's
// inverse overwrites its input, so the raw calls get buffers of their own.

#include <dlfcn.h>
#include <fftw3.h>

#include <cmath>
#include <ctime>
#include <algorithm>
#include <string>

#include "harness.h"

namespace bench {
namespace {

enum Variant : int64_t { kRawFftw, kRawIpp, kBuiltIn, kFftw, kIpp };
const char* const kVariantNames[] = {"raw_fftw", "raw_ipp", "builtin", "fftw", "ipp"};

double thread_seconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

template <class Call>
double seconds_for(int calls, Call call) {
    double start = thread_seconds();
    for (int i = 0; i < calls; ++i) call();
    benchmark::ClobberMemory();
    return thread_seconds() - start;
}

// The median over 7 pairs of blocks (each at least a millisecond of the
// anchor) of our time over the anchor's.
template <class Ours, class Anchor>
double paired_ratio(Ours ours, Anchor anchor) {
    int calls = 1;
    while (seconds_for(calls, anchor) < 1e-3) calls *= 2;
    double ratios[7];
    for (double& ratio : ratios) {
        double anchor_seconds = seconds_for(calls, anchor);
        ratio = seconds_for(calls, ours) / anchor_seconds;
    }
    std::nth_element(ratios, ratios + 3, ratios + 7);
    return ratios[3];
}

// FFTW's and IPP's functions by precision.
template <class T>
struct Raw;
template <>
struct Raw<double> {
    static void* plan(bool inverse, int n, double* in, double* out) {
        return inverse ? fftw_plan_dft_c2r_1d(n, reinterpret_cast<fftw_complex*>(in), out, FFTW_ESTIMATE)
                       : fftw_plan_dft_r2c_1d(n, in, reinterpret_cast<fftw_complex*>(out), FFTW_ESTIMATE);
    }
    static void execute(bool inverse, void* plan, double* in, double* out) {
        if (inverse)
            fftw_execute_dft_c2r(static_cast<fftw_plan>(plan), reinterpret_cast<fftw_complex*>(in), out);
        else
            fftw_execute_dft_r2c(static_cast<fftw_plan>(plan), in, reinterpret_cast<fftw_complex*>(out));
    }
    static void destroy(void* plan) { fftw_destroy_plan(static_cast<fftw_plan>(plan)); }
    static constexpr const char* kIpp[] = {"ippsDFTGetSize_R_64f", "ippsDFTInit_R_64f", "ippsDFTFwd_RToCCS_64f",
                                           "ippsDFTInv_CCSToR_64f"};
    static constexpr const char* kName = "f64";
};
template <>
struct Raw<float> {
    static void* plan(bool inverse, int n, float* in, float* out) {
        return inverse ? fftwf_plan_dft_c2r_1d(n, reinterpret_cast<fftwf_complex*>(in), out, FFTW_ESTIMATE)
                       : fftwf_plan_dft_r2c_1d(n, in, reinterpret_cast<fftwf_complex*>(out), FFTW_ESTIMATE);
    }
    static void execute(bool inverse, void* plan, float* in, float* out) {
        if (inverse)
            fftwf_execute_dft_c2r(static_cast<fftwf_plan>(plan), reinterpret_cast<fftwf_complex*>(in), out);
        else
            fftwf_execute_dft_r2c(static_cast<fftwf_plan>(plan), in, reinterpret_cast<fftwf_complex*>(out));
    }
    static void destroy(void* plan) { fftwf_destroy_plan(static_cast<fftwf_plan>(plan)); }
    static constexpr const char* kIpp[] = {"ippsDFTGetSize_R_32f", "ippsDFTInit_R_32f", "ippsDFTFwd_RToCCS_32f",
                                           "ippsDFTInv_CCSToR_32f"};
    static constexpr const char* kName = "f32";
};

// IPP's real DFT called directly, set up as the library sets it up.
template <class T>
class RawIpp {
public:
    explicit RawIpp(int n) {
        if (n <= 0) return;
        void* ipps = dlopen("libipps.so.12", RTLD_NOW | RTLD_NOLOAD);
        if (!ipps) return;
        auto get_size = reinterpret_cast<int (*)(int, int, int, int*, int*, int*)>(dlsym(ipps, Raw<T>::kIpp[0]));
        auto init = reinterpret_cast<int (*)(int, int, int, uint8_t*, uint8_t*)>(dlsym(ipps, Raw<T>::kIpp[1]));
        forward_ = reinterpret_cast<Run>(dlsym(ipps, Raw<T>::kIpp[2]));
        inverse_ = reinterpret_cast<Run>(dlsym(ipps, Raw<T>::kIpp[3]));
        auto allocate = reinterpret_cast<uint8_t* (*)(int)>(dlsym(ipps, "ippsMalloc_8u"));
        free_ = reinterpret_cast<void (*)(void*)>(dlsym(ipps, "ippFree"));
        dlclose(ipps);
        int spec_size = 0, init_size = 0, work_size = 0;
        if (get_size(n, 8, 0, &spec_size, &init_size, &work_size) != 0) return;
        spec_ = allocate(spec_size);
        work_ = allocate(work_size);
        uint8_t* init_buffer = allocate(init_size);
        ok_ = init(n, 8, 0, spec_, init_buffer) == 0;
        free_(init_buffer);
    }
    ~RawIpp() {
        if (free_) free_(work_), free_(spec_);
    }
    bool ok() const { return ok_; }
    void execute(bool inverse, const T* in, T* out) const { (inverse ? inverse_ : forward_)(in, out, spec_, work_); }

private:
    using Run = int (*)(const T*, T*, const uint8_t*, uint8_t*);
    Run forward_ = nullptr, inverse_ = nullptr;
    void (*free_)(void*) = nullptr;
    uint8_t *spec_ = nullptr, *work_ = nullptr;
    bool ok_ = false;
};

// Chooses the backend our plans take; false if it is not available.
template <class T>
bool use_backend(Variant variant) {
    uint32_t fftw = sizeof(T) == 8 ? ZOLVEX_M_OPT_FFTW3 : ZOLVEX_M_OPT_FFTW3F;
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3, 0);
    zolvex_m_setopt(ZOLVEX_M_OPT_FFTW3F, 0);
    if (zolvex_m_setopt(ZOLVEX_M_OPT_IPP, variant == kIpp || variant == kRawIpp) != 0) return false;
    return variant != kFftw || zolvex_m_setopt(fftw, 1) == 0;
}

// Our plan functions by precision.
template <class T>
struct Ours;
#define ZOLVEX_M_BENCH_OURS(T, s)                                                                  \
    template <>                                                                                    \
    struct Ours<T> {                                                                               \
        static int32_t make(bool inverse, T* real, T* spectrum, uint32_t n, void** plan) {         \
            return inverse ? zolvex_m_idft_plan_create_c2r_1d_##s(spectrum, n / 2 + 1, real, n, plan) \
                           : zolvex_m_dft_plan_create_r2c_1d_##s(real, n, spectrum, n / 2 + 1, plan); \
        }                                                                                          \
        static int32_t run(bool inverse, void* plan, T* real, T* spectrum, uint32_t n) {           \
            return inverse ? zolvex_m_idft_plan_execute_c2r_1d_##s(plan, spectrum, n / 2 + 1, real, n) \
                           : zolvex_m_dft_plan_execute_r2c_1d_##s(plan, real, n, spectrum, n / 2 + 1); \
        }                                                                                          \
    };
ZOLVEX_M_BENCH_OURS(float, f32)
ZOLVEX_M_BENCH_OURS(double, f64)
#undef ZOLVEX_M_BENCH_OURS

// One transform per iteration: state.range(0) is n, range(1) 1 for the
// inverse; the variant is bound at registration.
template <class T>
void BM_dft(benchmark::State& state, Variant variant) {
    const uint32_t n = static_cast<uint32_t>(state.range(0));
    const bool inverse = state.range(1) != 0;
    Buffer<T> real(n), spectrum(2 * (n / 2 + 1)), raw_real(n), raw_spectrum(spectrum.size());
    for (uint32_t j = 0; j < n; ++j) real.data()[j] = raw_real.data()[j] = T(std::sin(0.001 * j * j));
    for (uint32_t k = 0; k < spectrum.size(); ++k) spectrum.data()[k] = raw_spectrum.data()[k] = T(std::cos(0.002 * k));
    T* raw_in = inverse ? raw_spectrum.data() : raw_real.data();
    T* raw_out = inverse ? raw_real.data() : raw_spectrum.data();
    const bool on_ipp = variant == kRawIpp || variant == kIpp;
    if (!use_backend<T>(variant))
        return state.SkipWithError("backend not available (tools/run-bench puts IPP on the search path)");
    RawIpp<T> ipp(on_ipp ? static_cast<int>(n) : 0);
    void* plan = nullptr;
    if ((on_ipp && !ipp.ok()) || (variant >= kBuiltIn && Ours<T>::make(inverse, real.data(), spectrum.data(), n, &plan) != 0))
        return state.SkipWithError("IPP or our plan refused the length");
    void* fftw = Raw<T>::plan(inverse, int(n), raw_in, raw_out);
    auto raw_fftw = [&] { Raw<T>::execute(inverse, fftw, raw_in, raw_out); };
    auto raw_ipp = [&] { ipp.execute(inverse, raw_in, raw_out); };
    auto ours = [&] { Ours<T>::run(inverse, plan, real.data(), spectrum.data(), n); };
    for (auto _ : state) {
        if (variant == kRawFftw)
            raw_fftw();
        else if (variant == kRawIpp)
            raw_ipp();
        else
            ours();
        benchmark::ClobberMemory();
    }
    if (variant >= kBuiltIn) state.counters["vs_fftw"] = paired_ratio(ours, raw_fftw);
    if (variant == kIpp) state.counters["vs_ipp"] = paired_ratio(ours, raw_ipp);
    zolvex_m_dft_plan_destroy(plan);
    Raw<T>::destroy(fftw);
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
}

const bool registered = [] {
    for (int64_t inverse : {0, 1})
        for (int64_t n : {1024, 65536, 1 << 20, 100000, 65537, 100003})
            for (Variant variant : {kRawFftw, kRawIpp, kBuiltIn, kFftw, kIpp})
                for (auto [name, function] : {std::pair{Raw<float>::kName, &BM_dft<float>},
                                              std::pair{Raw<double>::kName, &BM_dft<double>}}) {
                    std::string label = std::string(inverse ? "idft_c2r_" : "dft_r2c_") + name + "/" +
                                        kVariantNames[variant];
                    benchmark::RegisterBenchmark(label.c_str(), function, variant)
                        ->Args({n, inverse})
                        ->ArgNames({"n", "inverse"})
                        ->Unit(benchmark::kMicrosecond);
                }
    return true;
}();

} // namespace
} // namespace bench
