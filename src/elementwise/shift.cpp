// Shifts of u8 and u16 samples: the plain loops, the choice between the
// accelerator and the vector kernels, and the exported entry points.

#include <algorithm>
#include <cstdint>

#include "core/ipp.h"
#include "core/kernel_report.h"
#include "core/kernel_table.h"
#include "core/options.h"
#include "core/status_error.h"
#include "elementwise/bitops_kernels.h"
#include "zolvex_m.h"

namespace elementwise {

namespace generic {

namespace {
template <class T, bool kLeft>
void shift_loop(const T* x, T* out, uint32_t n, uint32_t shift) noexcept {
    for (uint32_t i = 0; i < n; ++i) out[i] = static_cast<T>(kLeft ? x[i] << shift : x[i] >> shift);
}
} // namespace

#define ZOLVEX_M_DEFINE_SHIFT_LOOPS(T, suffix)                                                     \
    void shl_##suffix(const T* x, T* out, uint32_t n, uint32_t shift) noexcept {                  \
        shift_loop<T, true>(x, out, n, shift);                                                    \
    }                                                                                              \
    void shr_##suffix(const T* x, T* out, uint32_t n, uint32_t shift) noexcept {                  \
        shift_loop<T, false>(x, out, n, shift);                                                   \
    }
ZOLVEX_M_SHIFT_TYPES(ZOLVEX_M_DEFINE_SHIFT_LOOPS)
#undef ZOLVEX_M_DEFINE_SHIFT_LOOPS

} // namespace generic

namespace {

// The accelerator's ippsLShiftC / ippsRShiftC, out of place and in place.
template <class T>
using IppShift = lib::ipp::IppStatus (*)(const T* src, int val, T* dst, int len);
template <class T>
using IppShiftInPlace = lib::ipp::IppStatus (*)(int val, T* src_dst, int len);

// The kernels and the accelerator's functions of one shift.
template <class T, bool kLeft>
struct ShiftPath;

#define ZOLVEX_M_SHIFT_PATH(T, suffix, bits, left, op, side)                                        \
    template <>                                                                                    \
    struct ShiftPath<T, left> {                                                                    \
        static constexpr core::KernelTable<ShiftKernel<T>> kKernels = {                            \
            .generic = generic::op##_##suffix, .sse42 = sse42::op##_##suffix, .avx2 = avx2::op##_##suffix, \
            .avx512bw = avx512bw::op##_##suffix};                                                  \
        static constexpr lib::ipp::Fn kAccelerated = lib::ipp::Fn::ipps##side##ShiftC_##bits##u;    \
        static constexpr lib::ipp::Fn kAcceleratedInPlace = lib::ipp::Fn::ipps##side##ShiftC_##bits##u_I; \
    };
ZOLVEX_M_SHIFT_PATH(uint8_t, u8, 8, true, shl, L)
ZOLVEX_M_SHIFT_PATH(uint8_t, u8, 8, false, shr, R)
ZOLVEX_M_SHIFT_PATH(uint16_t, u16, 16, true, shl, L)
ZOLVEX_M_SHIFT_PATH(uint16_t, u16, 16, false, shr, R)
#undef ZOLVEX_M_SHIFT_PATH

const core::KernelReportRegistration kReports[] = {
    core::KernelReportRegistration({"shl shr", "u8", core::level_of<ShiftPath<uint8_t, true>::kKernels>, core::ipp_when_on}),
    core::KernelReportRegistration({"shl shr", "u16", core::level_of<ShiftPath<uint16_t, true>::kKernels>, core::ipp_when_on}),
};

// The accelerator takes counts up to INT32_MAX and gives 0 for shifts of
// the width or more, as the kernels do; it refuses negative shifts, so
// larger ones reach it as the width.
template <class T, bool kLeft>
int32_t accelerated_shift(const T* x, T* out, uint32_t n, uint32_t shift) noexcept {
    using Path = ShiftPath<T, kLeft>;
    using lib::ipp::table;
    const int len = static_cast<int>(n), val = static_cast<int>(std::min<uint32_t>(shift, sizeof(T) * 8));
    const int status = x == out ? table<IppShiftInPlace<T>>(Path::kAcceleratedInPlace)(val, out, len)
                                : table<IppShift<T>>(Path::kAccelerated)(x, val, out, len);
    return core::map_accelerator_status(status);
}

template <class T, bool kLeft>
int32_t shift_samples(const T* x, T* out, uint32_t n, uint32_t shift) noexcept {
    if (n == 0) return 0;
    if (core::option_on(ZOLVEX_M_OPT_IPP) && n <= uint32_t(INT32_MAX))
        return accelerated_shift<T, kLeft>(x, out, n, shift);
    if (shift >= sizeof(T) * 8) {
        std::fill_n(out, n, T(0));
        return 0;
    }
    ShiftPath<T, kLeft>::kKernels.choose()(x, out, n, shift);
    return 0;
}

} // namespace

} // namespace elementwise

#define ZOLVEX_M_EXPORT_SHIFTS(T, suffix)                                                         \
    int32_t zolvex_m_shl_##suffix(const T* x, T* out, uint32_t n, uint32_t shift) {               \
        return elementwise::shift_samples<T, true>(x, out, n, shift);                             \
    }                                                                                              \
    int32_t zolvex_m_shr_##suffix(const T* x, T* out, uint32_t n, uint32_t shift) {               \
        return elementwise::shift_samples<T, false>(x, out, n, shift);                            \
    }

extern "C" {

ZOLVEX_M_SHIFT_TYPES(ZOLVEX_M_EXPORT_SHIFTS)

} // extern "C"
