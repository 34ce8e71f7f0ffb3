// Shifts with the accelerator on, in the process whose loader finds the real
// one (ZOLVEX_M_TEST_ACCELERATOR=present, see tests/CMakeLists.txt): the
// same results as the built-in kernels, out of place and in place.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/random_data.h"
#include "support/regimes.h"
#include "zolvex_m.h"

namespace {

bool accelerator_present() {
    const char* scenario = std::getenv("ZOLVEX_M_TEST_ACCELERATOR");
    return scenario && std::string(scenario) == "present";
}

// Every count from 0 past the width and far beyond, at lengths around the
// accelerator's vector steps, from an unaligned start.
template <class T>
void expect_same_as_built_in(int32_t (*shift_fn)(const T*, T*, uint32_t, uint32_t)) {
    for (uint32_t n : {1u, 15u, 16u, 17u, 255u, 1000u, 4097u, 65537u})
        for (uint32_t shift : {0u, 1u, 3u, 7u, 8u, 9u, 15u, 16u, 17u, 32u, 0x80000000u, 0xFFFFFFFFu}) {
            const std::vector<T> data = testing_support::random_vector<T>(n + 1, n + shift);
            std::vector<T> want(n), got(n), in_place(data.begin() + 1, data.end());
            ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 0), 0);
            ASSERT_EQ(shift_fn(data.data() + 1, want.data(), n, shift), 0);
            ASSERT_EQ(zolvex_m_setopt(ZOLVEX_M_OPT_IPP, 1), 0);
            ASSERT_EQ(shift_fn(data.data() + 1, got.data(), n, shift) + shift_fn(in_place.data(), in_place.data(), n, shift), 0);
            ASSERT_EQ(got, want) << "n=" << n << " shift=" << shift;
            ASSERT_EQ(in_place, want) << "in place, n=" << n << " shift=" << shift;
        }
}

TEST(AcceleratedShifts, SameResultsAsTheBuiltInKernels) {
    if (!accelerator_present()) GTEST_SKIP() << "no accelerator in this process";
    testing_support::OptionsSnapshot restore;
    expect_same_as_built_in<uint8_t>(zolvex_m_shl_u8);
    expect_same_as_built_in<uint8_t>(zolvex_m_shr_u8);
    expect_same_as_built_in<uint16_t>(zolvex_m_shl_u16);
    expect_same_as_built_in<uint16_t>(zolvex_m_shr_u16);
    // A count of 0 stays with the library and touches nothing.
    EXPECT_EQ(zolvex_m_shl_u8(nullptr, nullptr, 0, 1) + zolvex_m_shr_u16(nullptr, nullptr, 0, 1), 0);
}

} // namespace
