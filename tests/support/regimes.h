#pragma once
// Kernel regimes for differential tests: each switches on exactly the
// processor options a kernel level needs (everything else off) through the
// public setopt, so the library's own choosers pick the kernel.

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "zolvex_m.h"

namespace testing_support {

struct Regime {
    std::string name;
    std::vector<uint32_t> options;  // processor options switched on
};

// Generic, SSE4.2, AVX, AVX2+FMA3, AVX-512F+CD (each level also keeps the
// narrower ones on, as a real processor would).
const std::vector<Regime>& all_regimes();

// Switches the regime's options on and every other processor option off.
// Returns false if the processor lacks one of them.
bool apply_regime(const Regime& regime);

// Restores every option flag to what it was when constructed.
class OptionsSnapshot {
public:
    OptionsSnapshot();
    ~OptionsSnapshot();

private:
    std::vector<std::pair<uint32_t, uint32_t>> saved_;
};

// Switches exactly the listed processor options on (all others off).
bool only_options(std::initializer_list<uint32_t> on);

} // namespace testing_support
