#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

#include "core/export.h"
#include "core/status_error.h"
#include "zolvex_m.h"

namespace {

TEST(Status, TextsOfEveryCode) {
    const char* expected[] = {"nullptr", "Invalid plan", "Out of memory", "Error data length", "Failed", "Success"};
    for (int32_t code = -5; code <= 0; ++code) EXPECT_STREQ(zolvex_m_status_str(code), expected[code + 5]) << code;
}

TEST(Status, CodesOutsideTheTableHaveNoText) {
    for (int32_t code : {1, -6, 5, 100, -100, INT32_MIN, INT32_MAX, INT32_MIN + 4})
        EXPECT_EQ(zolvex_m_status_str(code), nullptr) << code;
}

TEST(Status, TextIsStatic) { EXPECT_EQ(zolvex_m_status_str(-3), zolvex_m_status_str(-3)); }

TEST(StatusError, CarriesCodeAndText) {
    StatusError error(-3);
    EXPECT_EQ(error.status, -3);
    EXPECT_STREQ(error.what(), "Out of memory");
    const std::runtime_error& base = error;
    EXPECT_STREQ(base.what(), "Out of memory");
}

TEST(ExportBoundary, TurnsEveryExceptionIntoAStatus) {
    EXPECT_EQ(core::guarded([] { return 0; }), 0);
    EXPECT_EQ(core::guarded([]() -> int32_t { throw StatusError(-4); }), -4);
    EXPECT_EQ(core::guarded([]() -> int32_t { throw std::bad_alloc(); }), ZOLVEX_M_STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(core::guarded([]() -> int32_t { throw std::logic_error("x"); }), ZOLVEX_M_STATUS_FAILED);
    EXPECT_EQ(core::guarded([]() -> int32_t { throw 42; }), ZOLVEX_M_STATUS_FAILED);
}

TEST(StateFree, FreesOnceAndClearsThePointer) {
    void* state = std::calloc(1, 16);
    zolvex_m_state_free(&state);
    EXPECT_EQ(state, nullptr);
    zolvex_m_state_free(&state);  // a second call frees nothing
    EXPECT_EQ(state, nullptr);
}

TEST(Version, SameRecordReadFieldByField) {
    const void* address = zolvex_m_get_version();
    ASSERT_EQ(address, zolvex_m_get_version());
    uint16_t fields[4];
    std::memcpy(fields, address, sizeof fields);
    EXPECT_EQ(fields[0], 0);
    EXPECT_EQ(fields[1], 38);
    EXPECT_EQ(fields[2], 5);
    EXPECT_EQ(fields[3], 2);
}

} // namespace
