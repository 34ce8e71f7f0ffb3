#pragma once
// The one exception type of the library: carries a status code from deep
// inside to the exported function that turns it back into that code.

#include <cstdint>
#include <stdexcept>

class StatusError : public std::runtime_error {
public:
    explicit StatusError(int32_t status);

    int32_t status;
};

namespace core {

// Text of a status code, or nullptr outside -5..0.
const char* status_text(int32_t status) noexcept;

// Accelerator libraries report their own status numbers; callers only ever
// learn "worked" (0) or "failed" (-1).
constexpr int32_t map_accelerator_status(int status) noexcept { return status == 0 ? 0 : -1; }

} // namespace core
