// zolvexm: a small command-line front end to libzolvex-m.
//
//   zolvexm demo      version, processor options, and a short processing
//                     chain on a generated 12-bit ADC signal
//   zolvexm options   the option list with each option's state
//   zolvexm version   the library version

#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "zolvex_m.h"

namespace {

void print_version() {
    const auto* v = static_cast<const ZolvexMVersion*>(zolvex_m_get_version());
    std::printf("libzolvex-m %u.%u.%u.%u\n", v->major, v->minor, v->release, v->build);
}

void print_options() {
    for (const OptionEntry* row = zolvex_m_getopt_list(); row->id != 0; ++row) {
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

template <class T>
void print_head(const char* what, const std::vector<T>& v) {
    std::printf("  %-28s", what);
    for (size_t i = 0; i < 6 && i < v.size(); ++i) std::printf(" %9.4f", static_cast<double>(v[i]));
    std::printf(" ...\n");
}

int run_demo() {
    print_version();
    zolvex_m_init();
    std::printf("options after init:\n");
    print_options();

    const uint32_t n = 4000;  // four whole periods
    std::vector<uint16_t> codes = generate_adc_codes(n);
    std::vector<float> volts(n), magnitude(n);

    std::printf("processing %u samples of a 12-bit ADC:\n", n);
    zolvex_m_convert_u16f32(codes.data(), volts.data(), n);
    print_head("codes as f32", volts);
    zolvex_m_mulc_addc_f32(volts.data(), volts.data(), n, 2.0f / 4095.0f, -1.0f);
    print_head("volts (x * 2/4095 - 1)", volts);
    zolvex_m_subc_f32(volts.data(), volts.data(), n, 0.2f);
    print_head("AC part (- 0.2 V offset)", volts);
    zolvex_m_abs_f32(volts.data(), magnitude.data(), n);
    print_head("|AC part|", magnitude);
    double mean = 0;
    for (float m : magnitude) mean += m;
    mean /= n;
    std::printf("  mean |AC| = %.4f V (a 0.7 V sine gives %.4f V)\n", mean, 0.7 * 2 / M_PI);

    std::vector<uint16_t> display(n);
    zolvex_m_shr_clip_u16(codes.data(), display.data(), n, 4, 16, 239);
    std::printf("  8-bit display codes (>> 4, clipped to 16..239): %u %u %u %u ...\n", display[0], display[64],
                display[250], display[750]);

    // The same chain with every vector option off gives the same numbers.
    zolvex_m_setopt(ZOLVEX_M_OPT_SSE42, 0);
    zolvex_m_setopt(ZOLVEX_M_OPT_AVX, 0);
    zolvex_m_setopt(ZOLVEX_M_OPT_AVX2, 0);
    std::vector<float> generic(n);
    zolvex_m_convert_u16f32(codes.data(), generic.data(), n);
    zolvex_m_mulc_addc_f32(generic.data(), generic.data(), n, 2.0f / 4095.0f, -1.0f);
    zolvex_m_subc_f32(generic.data(), generic.data(), n, 0.2f);
    zolvex_m_abs_f32(generic.data(), generic.data(), n);
    size_t differ = 0;
    double largest = 0;
    for (uint32_t i = 0; i < n; ++i) {
        differ += generic[i] != magnitude[i];
        largest = std::fmax(largest, std::fabs(double(generic[i]) - magnitude[i]));
    }
    std::printf("  generic kernels: %zu of %u results differ, by at most %.3g V (the fused\n"
                "  multiply-add of the AVX2+FMA3 kernel rounds once instead of twice)\n",
                differ, n, largest);
    zolvex_m_fini();
    return 0;
}

int usage() {
    std::fprintf(stderr, "usage: zolvexm demo | options | version\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    const char* command = argc > 1 ? argv[1] : "demo";
    if (std::strcmp(command, "demo") == 0) return run_demo();
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
