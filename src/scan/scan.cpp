// Level scans: the generic kernels of every sample type and the tables the
// scans are chosen from.

#include "scan/scan.h"

#include "core/kernel_report.h"

namespace scan {

namespace generic {

namespace {

// Each condition is the plain comparison, so a NaN sample (or level) never
// satisfies it; f32 is compared as f32, which orders exactly like the
// widened doubles would.
template <class T, class Condition>
uint32_t first(const T* x, uint32_t start, uint32_t length, Condition satisfied) noexcept {
    for (uint32_t i = start; i < length; ++i)
        if (satisfied(x[i])) return i;
    return length;
}

template <class T>
constexpr ScanSet<T> plain_scans() noexcept {
    return {
        [](const T* x, uint32_t start, uint32_t length, T level) noexcept {
            return first(x, start, length, [level](T v) { return v >= level; });
        },
        [](const T* x, uint32_t start, uint32_t length, T level) noexcept {
            return first(x, start, length, [level](T v) { return v <= level; });
        },
        [](const T* x, uint32_t start, uint32_t length, T level) noexcept {
            return first(x, start, length, [level](T v) { return v > level; });
        },
        [](const T* x, uint32_t start, uint32_t length, T level) noexcept {
            return first(x, start, length, [level](T v) { return v < level; });
        },
        [](const T* x, uint32_t start, uint32_t length, T high, T low) noexcept {
            return first(x, start, length, [high, low](T v) { return v > high || v < low; });
        },
        [](const T* x, uint32_t start, uint32_t length, T high, T low) noexcept {
            return first(x, start, length, [high, low](T v) { return v >= low && v <= high; });
        },
    };
}

} // namespace

const ScanSet<uint8_t> kU8 = plain_scans<uint8_t>();
const ScanSet<int16_t> kI16 = plain_scans<int16_t>();
const ScanSet<uint16_t> kU16 = plain_scans<uint16_t>();
const ScanSet<float> kF32 = plain_scans<float>();
const ScanSet<double> kF64 = plain_scans<double>();

} // namespace generic

namespace {

template <class T>
struct Levels;
#define ZOLVEX_M_SCAN_LEVELS(T, ...)                                                               \
    template <>                                                                                    \
    struct Levels<T> {                                                                             \
        static constexpr core::KernelTable<const ScanSet<T>*> kTable = {__VA_ARGS__};              \
    };
ZOLVEX_M_SCAN_LEVELS(uint8_t, .generic = &generic::kU8, .sse42 = &sse42::kU8, .avx2 = &avx2::kU8)
ZOLVEX_M_SCAN_LEVELS(uint16_t, .generic = &generic::kU16, .sse42 = &sse42::kU16, .avx2 = &avx2::kU16)
ZOLVEX_M_SCAN_LEVELS(int16_t, .generic = &generic::kI16)
ZOLVEX_M_SCAN_LEVELS(float, .generic = &generic::kF32)
ZOLVEX_M_SCAN_LEVELS(double, .generic = &generic::kF64)
#undef ZOLVEX_M_SCAN_LEVELS

#define ZOLVEX_M_REPORT(T, suffix)                                                                 \
    core::KernelReportRegistration({"level scans (triggers, index_*)", #suffix, core::level_of<Levels<T>::kTable>})
const core::KernelReportRegistration kReports[] = {
    ZOLVEX_M_REPORT(uint8_t, u8), ZOLVEX_M_REPORT(int16_t, i16), ZOLVEX_M_REPORT(uint16_t, u16),
    ZOLVEX_M_REPORT(float, f32),  ZOLVEX_M_REPORT(double, f64),
};
#undef ZOLVEX_M_REPORT

} // namespace

template <class T>
const core::KernelTable<const ScanSet<T>*>& table() noexcept {
    return Levels<T>::kTable;
}
template const core::KernelTable<const ScanSet<uint8_t>*>& table<uint8_t>() noexcept;
template const core::KernelTable<const ScanSet<uint16_t>*>& table<uint16_t>() noexcept;
template const core::KernelTable<const ScanSet<int16_t>*>& table<int16_t>() noexcept;
template const core::KernelTable<const ScanSet<float>*>& table<float>() noexcept;
template const core::KernelTable<const ScanSet<double>*>& table<double>() noexcept;

} // namespace scan
