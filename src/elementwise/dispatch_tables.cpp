// The kernels of abs, the conversions and shr_clip by level, the dispatch
// slots chosen from them, and their registration with the frame.

#include "elementwise/dispatch_tables.h"

#include "core/kernel_report.h"

namespace elementwise {

namespace {

constexpr core::KernelTable<AbsKernel<float>> kAbsF32 = {.generic = generic::abs_f32, .avx = avx::abs_f32};
constexpr core::KernelTable<AbsKernel<double>> kAbsF64 = {.generic = generic::abs_f64, .avx = avx::abs_f64};

// Every conversion has its generic kernel; the widening ones of u8 and u16
// have one at every vector level too.
template <class In, class Out>
struct ConvertLevels;
#define ZOLVEX_M_GENERIC_LEVELS(is, In, os, Out)                                                   \
    template <>                                                                                    \
    struct ConvertLevels<In, Out> {                                                                \
        static constexpr core::KernelTable<ConvertKernel<In, Out>> kTable = {                      \
            .generic = generic::convert_##is##os};                                                 \
    };
#define ZOLVEX_M_VECTOR_LEVELS(is, In, os, Out)                                                    \
    template <>                                                                                    \
    struct ConvertLevels<In, Out> {                                                                \
        static constexpr core::KernelTable<ConvertKernel<In, Out>> kTable = {                      \
            .generic = generic::convert_##is##os, .sse42 = sse42::convert_##is##os,                \
            .avx = avx::convert_##is##os, .avx2 = avx2::convert_##is##os,                          \
            .avx512 = avx512::convert_##is##os};                                                   \
    };
ZOLVEX_M_VECTOR_CONVERSIONS(ZOLVEX_M_VECTOR_LEVELS)
ZOLVEX_M_PLAIN_CONVERSIONS(ZOLVEX_M_GENERIC_LEVELS)
#undef ZOLVEX_M_VECTOR_LEVELS
#undef ZOLVEX_M_GENERIC_LEVELS

constexpr core::KernelTable<ShrClipKernel<uint8_t>> kShrClipU8 = {
    .generic = generic::shr_clip_u8, .sse42 = sse42::shr_clip_u8, .avx2 = avx2::shr_clip_u8};
constexpr core::KernelTable<ShrClipKernel<uint16_t>> kShrClipU16 = {
    .generic = generic::shr_clip_u16, .sse42 = sse42::shr_clip_u16, .avx2 = avx2::shr_clip_u16};

} // namespace

constinit AbsSlots g_abs = {core::DispatchSlot(kAbsF32), core::DispatchSlot(kAbsF64)};
constinit ConvertSlots g_convert = {
#define ZOLVEX_M_SLOT(is, In, os, Out) core::DispatchSlot(ConvertLevels<In, Out>::kTable),
    ZOLVEX_M_CONVERSIONS(ZOLVEX_M_SLOT)
#undef ZOLVEX_M_SLOT
};
constinit ShrClipSlots g_shr_clip = {core::DispatchSlot(kShrClipU8), core::DispatchSlot(kShrClipU16)};

namespace {

void choose_element_wise_kernels() noexcept {
    g_abs.f32.choose();
    g_abs.f64.choose();
#define ZOLVEX_M_CHOOSE(is, In, os, Out) g_convert.is##os.choose();
    ZOLVEX_M_CONVERSIONS(ZOLVEX_M_CHOOSE)
#undef ZOLVEX_M_CHOOSE
    g_shr_clip.u8.choose();
    g_shr_clip.u16.choose();
}

const core::DispatchRegistration kRegistration(choose_element_wise_kernels);

const core::KernelReportRegistration kReports[] = {
    core::KernelReportRegistration({"abs", "f32", []() noexcept { return g_abs.f32.table().chosen_isa(); }}),
    core::KernelReportRegistration({"abs", "f64", []() noexcept { return g_abs.f64.table().chosen_isa(); }}),
#define ZOLVEX_M_REPORT(is, In, os, Out)                                                           \
    core::KernelReportRegistration(                                                                \
        {"convert", #is #os, []() noexcept { return g_convert.is##os.table().chosen_isa(); }}),
    ZOLVEX_M_CONVERSIONS(ZOLVEX_M_REPORT)
#undef ZOLVEX_M_REPORT
    core::KernelReportRegistration({"shr_clip", "u8", []() noexcept { return g_shr_clip.u8.table().chosen_isa(); }}),
    core::KernelReportRegistration({"shr_clip", "u16", []() noexcept { return g_shr_clip.u16.table().chosen_isa(); }}),
};

} // namespace

} // namespace elementwise
