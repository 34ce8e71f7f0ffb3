// zolvexm: a small command-line front end to libzolvex-m.
//
//   zolvexm demo           a short processing chain on a generated 12-bit
//                          ADC signal, checked against the generic kernels
//   zolvexm kernels        which kernel level (and accelerator) each family
//                          would use now, from the library's own tables
//   zolvexm bench [n]      the main families timed at every level this
//                          processor has, on blocks of n samples (4096)
//   zolvexm options        the option list with each option's state
//   zolvexm version        the library version

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "core/isa.h"
#include "support/regime_ladder.h"
#include "zolvex_m.h"

namespace {

void print_version() {
    const ZolvexMVersion* v = zolvex_m_version_record();
    std::printf("libzolvex-m %u.%u.%u.%u\n", v->major, v->minor, v->release, v->build);
}

void print_options() {
    for (const ZolvexMOptionEntry* row = zolvex_m_getopt_list(); row->id != 0; ++row) {
        uint32_t on = 0;
        zolvex_m_getopt(row->id, &on);
        std::printf("  %2d  %-16s %s\n", row->id, row->description, on ? "on" : "off");
    }
}

// A 12-bit ADC's view of a 1 kHz sine at 1 MS/s with a DC offset, as raw
// codes in 16-bit words.
std::vector<uint16_t> generate_adc_codes(uint32_t n) {
    std::vector<uint16_t> codes(n);
    for (uint32_t i = 0; i < n; ++i) {
        double volts = 0.2 + 0.7 * std::sin(2.0 * M_PI * 1000.0 * i / 1e6);
        double code = std::round((volts + 1.0) / 2.0 * 4095.0);
        codes[i] = static_cast<uint16_t>(code < 0 ? 0 : code > 4095 ? 4095 : code);
    }
    return codes;
}

// Codes to |AC part| in volts: x * 2/4095 - 1, minus the 0.2 V offset.
std::vector<float> ac_magnitude(const std::vector<uint16_t>& codes) {
    const uint32_t n = static_cast<uint32_t>(codes.size());
    std::vector<float> v(n);
    zolvex_m_convert_u16f32(codes.data(), v.data(), n);
    zolvex_m_mulc_addc_f32(v.data(), v.data(), n, 2.0f / 4095.0f, -1.0f);
    zolvex_m_subc_f32(v.data(), v.data(), n, 0.2f);
    zolvex_m_abs_f32(v.data(), v.data(), n);
    return v;
}

// The options as zolvex_m_init set them.
struct SavedOptions {
    std::vector<std::pair<int32_t, uint32_t>> states;
    SavedOptions() {
        for (const ZolvexMOptionEntry* row = zolvex_m_getopt_list(); row->id != 0; ++row) {
            uint32_t on = 0;
            zolvex_m_getopt(row->id, &on);
            states.emplace_back(row->id, on);
        }
    }
    void restore() const {
        for (auto [id, on] : states) zolvex_m_setopt(static_cast<uint32_t>(id), static_cast<int32_t>(on));
    }
};

int run_demo() {
    print_version();
    zolvex_m_init();
    const uint32_t n = 4000;  // four whole periods
    std::vector<uint16_t> codes = generate_adc_codes(n);
    std::vector<float> magnitude = ac_magnitude(codes);
    double mean = 0;
    for (float m : magnitude) mean += m;
    mean /= n;
    std::printf("%u samples of a 12-bit ADC: codes -> volts -> AC part -> |AC part|\n", n);
    std::printf("  mean |AC| = %.4f V (a 0.7 V sine gives %.4f V)\n", mean, 0.7 * 2 / M_PI);

    // The same chain on the generic kernels. Every kernel gives their bits,
    // except the fused multiply-add of mulc_addc's AVX2+FMA3 kernel, which
    // rounds once where the others round twice: one unit in the last place
    // (of the volts before the offset is taken away) at most.
    SavedOptions options;
    testing_support::apply_regime(core::Isa::generic);
    std::vector<float> generic = ac_magnitude(codes);
    options.restore();
    size_t fused = 0, wrong = 0;
    for (uint32_t i = 0; i < n; ++i) {
        if (generic[i] == magnitude[i]) continue;
        const float volts = std::fabs(generic[i]) + 1.0f;  // bounds the magnitude before subc
        if (std::fabs(generic[i] - magnitude[i]) <= std::nextafter(volts, 2.0f) - volts)
            ++fused;
        else
            ++wrong;
    }
    zolvex_m_fini();
    if (wrong != 0) {
        std::printf("FAILED: %zu of %u results differ from the generic kernels' by more than one rounding\n", wrong, n);
        return 1;
    }
    if (fused == 0)
        std::printf("check: the same bits as the generic kernels\n");
    else
        std::printf("check: matches the generic kernels (%zu of %u values one rounding apart: the fused\n"
                    "  multiply-add of mulc_addc's AVX2+FMA3 kernel rounds once where they round twice)\n",
                    fused, n);
    return 0;
}

struct Report {
    std::string family, type, level, accelerator;
};

int run_kernels() {
    zolvex_m_init();
    std::vector<Report> reports;
    const char *family, *type, *level, *accelerator;
    for (uint32_t k = 0; zolvex_m_kernel_report(k, &family, &type, &level, &accelerator) == 0; ++k)
        reports.push_back({family, type, level, accelerator ? accelerator : "-"});
    zolvex_m_fini();
    std::sort(reports.begin(), reports.end(), [](const Report& a, const Report& b) {
        return std::tie(a.family, a.type) < std::tie(b.family, b.type);
    });
    std::printf("%-36s %-8s %-9s %s\n", "functions", "type", "level", "accelerator");
    for (const Report& r : reports)
        std::printf("%-36s %-8s %-9s %s\n", r.family.c_str(), r.type.c_str(), r.level.c_str(), r.accelerator.c_str());
    std::printf("Functions not listed have one kernel for every level.\n");
    return 0;
}

// Nanoseconds per sample of `work` on one block: the best of five rounds of
// about 10 ms each, so that a round another process interrupted does not
// count.
double time_per_sample(const std::function<void()>& work, uint32_t n) {
    using clock = std::chrono::steady_clock;
    work();  // warm the caches and any lazily built state
    uint64_t calls = 1;
    double best = 1e300;
    for (int round = 0; round < 5; ++round) {
        for (;;) {
            auto start = clock::now();
            for (uint64_t c = 0; c < calls; ++c) work();
            double seconds = std::chrono::duration<double>(clock::now() - start).count();
            if (seconds >= 0.01) {
                best = std::min(best, seconds * 1e9 / (double(calls) * n));
                break;
            }
            calls *= 2;
        }
    }
    return best;
}

struct Bench {
    const char* name;
    std::function<void()> work;
};

int run_bench(uint32_t n) {
    zolvex_m_init();
    SavedOptions options;
    uint32_t seed = 1;
    std::vector<float> x(n), y(n), out(n);
    std::vector<double> xd(n);
    std::vector<uint16_t> codes(2 * n), a(n), b(n);
    zolvex_m_waveform_noise_f32(x.data(), n, -1.0f, 1.0f, &seed);
    zolvex_m_waveform_noise_f64(xd.data(), n, -1.0, 1.0, &seed);
    zolvex_m_waveform_noise_u16(codes.data(), 2 * n, 0, 4095, &seed);
    std::vector<float> spectrum(2 * (n / 2 + 1));
    zolvex_m_filter_state* filter = nullptr;
    zolvex_m_filter_iir_butterworth(ZOLVEX_M_FILTER_LOWPASS, 8, 1.0, 0.1, 0.0, &filter);
    void* trigger = nullptr;
    float minimum, maximum;
    double total;

    const std::vector<Bench> benches = {
        {"convert_u16f32", [&] { zolvex_m_convert_u16f32(codes.data(), out.data(), n); }},
        {"mulc_addc_f32", [&] { zolvex_m_mulc_addc_f32(x.data(), out.data(), n, 0.5f, 1.0f); }},
        {"add_f32", [&] { zolvex_m_add_f32(x.data(), x.data(), out.data(), n); }},
        {"minmax_f32", [&] { zolvex_m_minmax_f32(x.data(), n, &minimum, &maximum); }},
        {"sum_f64", [&] { total = 0; zolvex_m_sum_f64(xd.data(), n, &total); }},
        {"deinterleave2_u16", [&] { zolvex_m_deinterleave2_u16(codes.data(), int32_t(2 * n), a.data(), b.data()); }},
        {"trigger_edge_rising_u16", [&] {
             uint32_t position = 0;  // levels the noise never reaches: a full scan
             zolvex_m_trigger_edge_rising_u16(codes.data(), n, 0, 4096, &position, &trigger);
         }},
        {"sin_f32", [&] { zolvex_m_sin_f32(x.data(), out.data(), n); }},
        {"window_hanning_f32", [&] { zolvex_m_window_hanning_f32(x.data(), out.data(), n, 0); }},
        {"filter_execute_f32 (8 poles)", [&] { zolvex_m_filter_execute_f32(x.data(), out.data(), n, filter); }},
        {"dft_f32 (one-shot)", [&] { zolvex_m_dft_f32(x.data(), n, spectrum.data(), n / 2 + 1); }},
    };

    // The ladder of levels this processor has, the accelerator off.
    std::vector<core::Isa> levels;
    zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0);
    for (core::Isa isa : core::kIsaNarrowestFirst)
        if (testing_support::apply_regime(isa)) levels.push_back(isa);
    std::printf("ns per sample, blocks of %u samples (best of 5 rounds; lower is faster)\n%-30s", n, "");
    for (core::Isa isa : levels) std::printf(" %9s", core::isa_name(isa));
    std::printf("\n");
    for (const Bench& bench : benches) {
        std::printf("%-30s", bench.name);
        for (core::Isa isa : levels) {
            testing_support::apply_regime(isa);
            std::printf(" %9.3f", time_per_sample(bench.work, n));
            std::fflush(stdout);
        }
        std::printf("\n");
    }
    options.restore();
    zolvex_m_state_free(&trigger);
    zolvex_m_filter_state_destroy(filter);
    zolvex_m_fini();
    std::printf("The accelerator was off throughout; `zolvexm kernels` shows what runs by default.\n");
    return 0;
}

int usage() {
    std::fprintf(stderr, "usage: zolvexm demo | kernels | bench [block size] | options | version\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    const char* command = argc > 1 ? argv[1] : "demo";
    if (std::strcmp(command, "demo") == 0) return run_demo();
    if (std::strcmp(command, "kernels") == 0) return run_kernels();
    if (std::strcmp(command, "bench") == 0) {
        long n = argc > 2 ? std::strtol(argv[2], nullptr, 10) : 4096;
        if (n < 16 || n > (1L << 26)) return usage();
        return run_bench(static_cast<uint32_t>(n));
    }
    if (std::strcmp(command, "version") == 0) {
        print_version();
        return 0;
    }
    if (std::strcmp(command, "options") == 0) {
        zolvex_m_init();
        print_options();
        zolvex_m_fini();
        return 0;
    }
    return usage();
}
