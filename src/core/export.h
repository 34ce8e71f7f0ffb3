#pragma once
// The export boundary: every exported function whose work can throw runs it
// through guarded(), so that no exception ever reaches a caller (who may be
// plain C with no way to handle one).

#include <cstdint>
#include <new>

#include "core/status_error.h"
#include "zolvex_m.h"

namespace core {

template <class Work>
int32_t guarded(Work&& work) noexcept {
    try {
        return work();
    } catch (const StatusError& error) {
        return error.status;
    } catch (const std::bad_alloc&) {
        return ZOLVEX_M_STATUS_OUT_OF_MEMORY;
    } catch (...) {
        return ZOLVEX_M_STATUS_FAILED;
    }
}

} // namespace core
