#include "support/regimes.h"

namespace testing_support {

bool only_options(std::initializer_list<uint32_t> on) {
    bool all = true;
    for (uint32_t id : kProcessorOptions) {
        bool want = false;
        for (uint32_t wanted : on) want = want || wanted == id;
        if (zolvex_m_setopt(id, want ? 1 : 0) != 0 && want) all = false;
    }
    return all;
}

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
