#pragma once
// Which kernel a call would run now, for diagnostics (zolvex_m_kernel_report,
// `zolvexm kernels`). Each family registers its kernel tables from the file
// that holds them, as it registers its dispatch tables; the level reported
// is the table's own chosen_isa(), the rule its calls choose by, so the
// report cannot drift from what runs.
//
//   const core::KernelReportRegistration kReportAbsF32(
//       {"abs", "f32", [] () noexcept { return kAbsF32.chosen_isa(); }});

#include "core/kernel_table.h"

namespace core {

struct KernelReport {
    const char* family;  // the functions, as in their names ("minmax", "add sub mul div")
    const char* type;    // the sample type suffix ("u8", "f32", ...)
    Isa (*level)() noexcept;
    // The accelerator that would take the call now ("ipp", "fftw3"), or
    // nullptr; absent when no accelerator ever takes it.
    const char* (*accelerator)() noexcept = nullptr;
};

struct KernelReportRegistration {
    explicit KernelReportRegistration(const KernelReport& report) noexcept;
};

// The level function of a table that is a constant: level_of<kTable>.
template <const auto& kTable>
Isa level_of() noexcept {
    return kTable.chosen_isa();
}

// The accelerator predicate of the families that hand calls to IPP whenever
// its option is on.
const char* ipp_when_on() noexcept;

// The registered reports, in registration order; nullptr past the end.
const KernelReport* kernel_report(uint32_t index) noexcept;

} // namespace core
