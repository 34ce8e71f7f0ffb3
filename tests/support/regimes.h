#pragma once
// Option handling for tests: a snapshot that restores every option flag,
// switching on an exact set of options, and running a check once in each
// kernel regime of the ladder (support/regime_ladder.h).

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "support/regime_ladder.h"

namespace testing_support {

// Restores every option flag to what it was when constructed.
class OptionsSnapshot {
public:
    OptionsSnapshot();
    ~OptionsSnapshot();

private:
    std::vector<std::pair<uint32_t, uint32_t>> saved_;
};

// Switches exactly the listed processor options on (all others off).
// Returns false if the processor lacks one of them.
bool only_options(std::initializer_list<uint32_t> on);

// Runs check(isa) once per regime the processor has, narrowest first, with
// a trace naming the regime; stops at the first failure and restores the
// options.
template <class Check>
void in_each_regime(Check&& check) {
    OptionsSnapshot restore;
    for (core::Isa isa : core::kIsaNarrowestFirst) {
        if (!apply_regime(isa)) continue;
        SCOPED_TRACE(std::string("regime ") + core::isa_name(isa));
        check(isa);
        if (::testing::Test::HasFailure()) return;
    }
}

} // namespace testing_support
