#include "core/options.h"

#include <iterator>

#include "core/dispatch.h"
#include "core/libraries.h"
#include "zolvex/zolvex_core.h"
#include "zolvex_m.h"

namespace core {

constinit std::atomic<uint8_t> g_option_flags[kOptionSlots] = {};

namespace {

struct ProcessorOption {
    uint32_t id;
    uint8_t (*supported)();
};

constexpr ProcessorOption kProcessorOptions[] = {
    {ZOLVEX_M_OPT_SSE, zolvex_core_cpu_has_sse},
    {ZOLVEX_M_OPT_SSE2, zolvex_core_cpu_has_sse2},
    {ZOLVEX_M_OPT_SSE3, zolvex_core_cpu_has_sse3},
    {ZOLVEX_M_OPT_SSSE3, zolvex_core_cpu_has_ssse3},
    {ZOLVEX_M_OPT_SSE41, zolvex_core_cpu_has_sse41},
    {ZOLVEX_M_OPT_SSE42, zolvex_core_cpu_has_sse42},
    {ZOLVEX_M_OPT_AVX, zolvex_core_cpu_has_avx},
    {ZOLVEX_M_OPT_AVX2, zolvex_core_cpu_has_avx2},
    {ZOLVEX_M_OPT_NEON, zolvex_core_cpu_has_neon},
    {ZOLVEX_M_OPT_FMA3, zolvex_core_cpu_has_fma3},
    {ZOLVEX_M_OPT_AVX512F, zolvex_core_cpu_has_avx512f},
    {ZOLVEX_M_OPT_AVX512BW, zolvex_core_cpu_has_avx512bw},
    {ZOLVEX_M_OPT_AVX512DQ, zolvex_core_cpu_has_avx512dq},
    {ZOLVEX_M_OPT_AVX512CD, zolvex_core_cpu_has_avx512cd},
};

const ProcessorOption* find_processor_option(uint32_t id) noexcept {
    for (const ProcessorOption& option : kProcessorOptions)
        if (option.id == id) return &option;
    return nullptr;
}

// Only the low byte of the sibling library's answer counts.
bool processor_supports(const ProcessorOption& option) noexcept {
    return static_cast<uint8_t>(option.supported()) != 0;
}

bool known_option(int32_t id) noexcept { return id >= 1 && id <= 18 && id != 13; }

// Each returns the setopt status; the flag is left as the rule says.
int32_t set_processor_option(const ProcessorOption& option, bool on) noexcept {
    if (!on) {
        set_option_flag(option.id, false);
        return 0;
    }
    bool supported = processor_supports(option);
    set_option_flag(option.id, supported);
    return supported ? 0 : -1;
}

// The accelerator is only ever loaded by init: here it can merely be
// switched back on if init found it.
int32_t set_ipp_option(bool on) noexcept {
    bool usable = on && lib::ipp::base_loaded() && lib::ipp::table_loaded();
    set_option_flag(ZOLVEX_M_OPT_IPP, usable);
    return on && !usable ? -1 : 0;
}

// FFTW loads on first request and stays loaded when switched off.
int32_t set_fftw_option(uint32_t id, bool on, bool (*loaded)() noexcept, bool (*load)() noexcept) noexcept {
    if (!on) {
        set_option_flag(id, false);
        return 0;
    }
    bool usable = loaded() || load();
    set_option_flag(id, usable);
    return usable ? 0 : -1;
}

int32_t set_option(uint32_t id, bool on) noexcept {
    if (const ProcessorOption* option = find_processor_option(id)) return set_processor_option(*option, on);
    switch (id) {
    case ZOLVEX_M_OPT_IPP: return set_ipp_option(on);
    case ZOLVEX_M_OPT_FFTW3: return set_fftw_option(id, on, lib::fftw3::loaded, lib::fftw3::load);
    case ZOLVEX_M_OPT_FFTW3F: return set_fftw_option(id, on, lib::fftw3f::loaded, lib::fftw3f::load);
    default: return -1;
    }
}

// Deliberately not sorted by id.
constexpr OptionEntry kOptionList[] = {
    {ZOLVEX_M_OPT_SSE, "Use SSE"},
    {ZOLVEX_M_OPT_SSE2, "Use SSE2"},
    {ZOLVEX_M_OPT_SSE3, "Use SSE3"},
    {ZOLVEX_M_OPT_SSSE3, "Use SSSE3"},
    {ZOLVEX_M_OPT_SSE41, "Use SSE4.1"},
    {ZOLVEX_M_OPT_SSE42, "Use SSE4.2"},
    {ZOLVEX_M_OPT_AVX, "Use AVX"},
    {ZOLVEX_M_OPT_AVX2, "Use AVX2"},
    {ZOLVEX_M_OPT_AVX512F, "Use AVX-512F"},
    {ZOLVEX_M_OPT_AVX512CD, "Use AVX-512CD"},
    {ZOLVEX_M_OPT_AVX512BW, "Use AVX-512BW"},
    {ZOLVEX_M_OPT_AVX512DQ, "Use AVX-512DQ"},
    {ZOLVEX_M_OPT_FMA3, "Use FMA3"},
    {ZOLVEX_M_OPT_NEON, "Use NEON"},
    {ZOLVEX_M_OPT_IPP, "Use IPP"},
    {ZOLVEX_M_OPT_FFTW3, "Use FFTW3"},
    {ZOLVEX_M_OPT_FFTW3F, "Use FFTW3F"},
    {0, nullptr},
};

} // namespace

void read_processor_options() noexcept {
    for (const ProcessorOption& option : kProcessorOptions)
        set_option_flag(option.id, processor_supports(option));
}

} // namespace core

extern "C" {

int32_t zolvex_m_getopt(int32_t id, uint32_t* value) {
    if (!core::known_option(id)) return -1;
    *value = core::option_on(static_cast<uint32_t>(id)) ? 1u : 0u;
    return 0;
}

int32_t zolvex_m_setopt(uint32_t id, int32_t value) {
    if (id > 18) return -1;
    int32_t status = core::set_option(id, value != 0);
    if (status == 0) core::choose_dispatch_tables();
    return status;
}

const OptionEntry* zolvex_m_getopt_list(void) { return core::kOptionList; }

} // extern "C"
