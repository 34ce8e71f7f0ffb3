#pragma once
// Running one check in several kernel regimes, for the tests that compare
// the public functions with a model in each of them.

#include <gtest/gtest.h>

#include <iostream>
#include <vector>

#include "support/regimes.h"

namespace testing_support {

// Runs check() in each regime (a struct whose `options` is the Regime to
// apply) after expect_choice(regime) has asserted which kernels the regime
// selects. A regime the processor lacks is noted and skipped; the first
// failure ends the run; the option flags are restored afterwards.
template <class R, class Expect, class Check>
void in_each_regime(const std::vector<R>& regimes, Expect&& expect_choice, Check&& check) {
    OptionsSnapshot restore;
    for (const R& regime : regimes) {
        if (!apply_regime(regime.options)) {
            std::cout << "[   NOTE   ] this processor lacks regime " << regime.options.name << "; not tested\n";
            continue;
        }
        SCOPED_TRACE("regime " + regime.options.name);
        expect_choice(regime);
        check();
        if (::testing::Test::HasFailure()) return;
    }
}

} // namespace testing_support
