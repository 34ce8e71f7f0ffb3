#include "core/kernel_report.h"

#include <atomic>

#include "core/options.h"

namespace core {

namespace {

// Registrations happen during static initialisation, before any call can
// reach the library: a fixed array suffices.
constexpr unsigned kMaxReports = 256;
constinit KernelReport g_reports[kMaxReports] = {};
constinit std::atomic<unsigned> g_report_count{0};

} // namespace

KernelReportRegistration::KernelReportRegistration(const KernelReport& report) noexcept {
    unsigned slot = g_report_count.fetch_add(1);
    if (slot < kMaxReports) g_reports[slot] = report;
}

const char* ipp_when_on() noexcept { return option_on(ZOLVEX_M_OPT_IPP) ? "ipp" : nullptr; }

const KernelReport* kernel_report(uint32_t index) noexcept {
    unsigned count = g_report_count.load();
    return index < count && index < kMaxReports ? &g_reports[index] : nullptr;
}

} // namespace core

extern "C" ZOLVEX_M_API int32_t zolvex_m_kernel_report(uint32_t index, const char** family, const char** type,
                                                       const char** level, const char** accelerator) {
    const core::KernelReport* report = core::kernel_report(index);
    if (report == nullptr) return ZOLVEX_M_STATUS_FAILED;
    *family = report->family;
    *type = report->type;
    *level = core::isa_name(report->level());
    *accelerator = report->accelerator != nullptr ? report->accelerator() : nullptr;
    return ZOLVEX_M_STATUS_SUCCESS;
}
