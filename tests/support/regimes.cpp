#include "support/regimes.h"

#include <algorithm>

namespace testing_support {

namespace {

constexpr uint32_t kProcessorOptions[] = {
    ZOLVEX_M_OPT_SSE,     ZOLVEX_M_OPT_SSE2,     ZOLVEX_M_OPT_SSE3,     ZOLVEX_M_OPT_SSSE3,
    ZOLVEX_M_OPT_SSE41,   ZOLVEX_M_OPT_SSE42,    ZOLVEX_M_OPT_AVX,      ZOLVEX_M_OPT_AVX2,
    ZOLVEX_M_OPT_NEON,    ZOLVEX_M_OPT_FMA3,     ZOLVEX_M_OPT_AVX512F,  ZOLVEX_M_OPT_AVX512BW,
    ZOLVEX_M_OPT_AVX512DQ, ZOLVEX_M_OPT_AVX512CD,
};

bool set_processor_options(const std::vector<uint32_t>& on) {
    bool all = true;
    for (uint32_t id : kProcessorOptions) {
        bool want = std::find(on.begin(), on.end(), id) != on.end();
        if (zolvex_m_setopt(id, want ? 1 : 0) != 0 && want) all = false;
    }
    return all;
}

} // namespace

const std::vector<Regime>& all_regimes() {
    static const std::vector<uint32_t> sse = {ZOLVEX_M_OPT_SSE, ZOLVEX_M_OPT_SSE2, ZOLVEX_M_OPT_SSE3,
                                              ZOLVEX_M_OPT_SSSE3, ZOLVEX_M_OPT_SSE41, ZOLVEX_M_OPT_SSE42};
    static const std::vector<Regime> regimes = [] {
        std::vector<Regime> r;
        r.push_back({"generic", {}});
        r.push_back({"sse42", sse});
        std::vector<uint32_t> avx = sse;
        avx.push_back(ZOLVEX_M_OPT_AVX);
        r.push_back({"avx", avx});
        std::vector<uint32_t> avx2 = avx;
        avx2.push_back(ZOLVEX_M_OPT_AVX2);
        avx2.push_back(ZOLVEX_M_OPT_FMA3);
        r.push_back({"avx2_fma3", avx2});
        std::vector<uint32_t> avx512 = avx2;
        for (uint32_t id : {ZOLVEX_M_OPT_AVX512F, ZOLVEX_M_OPT_AVX512CD, ZOLVEX_M_OPT_AVX512BW, ZOLVEX_M_OPT_AVX512DQ})
            avx512.push_back(id);
        r.push_back({"avx512", avx512});
        return r;
    }();
    return regimes;
}

bool apply_regime(const Regime& regime) { return set_processor_options(regime.options); }

bool only_options(std::initializer_list<uint32_t> on) { return set_processor_options(std::vector<uint32_t>(on)); }

OptionsSnapshot::OptionsSnapshot() {
    for (int32_t id = 1; id <= 18; ++id) {
        uint32_t value = 0;
        if (zolvex_m_getopt(id, &value) == 0) saved_.emplace_back(static_cast<uint32_t>(id), value);
    }
}

OptionsSnapshot::~OptionsSnapshot() {
    for (auto [id, value] : saved_) zolvex_m_setopt(id, static_cast<int32_t>(value));
}

} // namespace testing_support
