// The kernel report follows the option flags: in every regime no entry
// names a level wider than the regime, and some entry names the regime's
// own level, so the report is read from the tables the calls choose from.

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

#include "core/isa.h"
#include "support/regimes.h"
#include "zolvex_m.h"

namespace {

core::Isa isa_named(const std::string& name) {
    for (core::Isa isa : core::kIsaNarrowestFirst)
        if (name == core::isa_name(isa)) return isa;
    ADD_FAILURE() << "unknown level " << name;
    return core::Isa::generic;
}

TEST(KernelReport, FollowsTheRegimeAndEndsWithFailure) {
    testing_support::in_each_regime([](core::Isa regime) {
        std::set<std::pair<std::string, std::string>> seen;
        bool regime_level_named = false;
        const char *family, *type, *level, *accelerator;
        uint32_t k = 0;
        for (; zolvex_m_kernel_report(k, &family, &type, &level, &accelerator) == 0; ++k) {
            EXPECT_TRUE(seen.emplace(family, type).second) << family << " " << type << " listed twice";
            core::Isa isa = isa_named(level);
            EXPECT_LE(static_cast<int>(isa), static_cast<int>(regime)) << family << " " << type;
            regime_level_named |= isa == regime;
            EXPECT_EQ(accelerator, nullptr) << family << ": no accelerator option is on";
        }
        EXPECT_GT(k, 40u);
        EXPECT_TRUE(regime_level_named);
        family = type = level = accelerator = "untouched";
        EXPECT_EQ(zolvex_m_kernel_report(k, &family, &type, &level, &accelerator), ZOLVEX_M_STATUS_FAILED);
        EXPECT_STREQ(family, "untouched");
        EXPECT_STREQ(accelerator, "untouched");
    });
}

} // namespace
