// Channel de-interleaving: one channel of any sample size by stride, and
// 2 to 6 channels of u8/u16 samples at once (the vector kernels by level,
// the plain loop for what they leave), with the exported entry points.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/kernel_report.h"
#include "util/deinterleave.h"
#include "zolvex_m.h"

namespace util {

namespace {

template <size_t kSize>
void copy_strided(const uint8_t* from, uint8_t* to, size_t count, size_t stride) noexcept {
    for (size_t i = 0; i < count; ++i, from += stride, to += kSize) std::memcpy(to, from, kSize);
}

// Strides are 64-bit: a channel count times a sample size never wraps.
void extract_channel(const void* source, uint32_t channel, uint32_t channel_count, uint32_t count,
                     uint32_t sample_size, void* destination) noexcept {
    if (count == 0 || sample_size == 0) return;
    const size_t stride = size_t(channel_count) * sample_size;
    const uint8_t* from = static_cast<const uint8_t*>(source) + size_t(channel) * sample_size;
    uint8_t* to = static_cast<uint8_t*>(destination);
    if (stride == sample_size) {
        std::memcpy(to, from, size_t(count) * sample_size);
        return;
    }
    switch (sample_size) {
    case 1: return copy_strided<1>(from, to, count, stride);
    case 2: return copy_strided<2>(from, to, count, stride);
    case 4: return copy_strided<4>(from, to, count, stride);
    case 8: return copy_strided<8>(from, to, count, stride);
    }
    for (size_t i = 0; i < count; ++i, from += stride, to += sample_size) std::memcpy(to, from, sample_size);
}

// frames = total / N and rest = total % N, truncating; a total of 0 or less
// has no frame and no rest.
template <class T, unsigned N>
void split_channels(const T* source, int32_t total, T* const (&channels)[N]) noexcept {
    if (total <= 0) return;
    const size_t frames = static_cast<uint32_t>(total) / N, rest = static_cast<uint32_t>(total) % N;
    size_t f = 0;
    if (auto kernel = deinterleave_kernels<T, N>().choose()) f = kernel(source, channels, frames);
    for (; f < frames; ++f)
        for (unsigned c = 0; c < N; ++c) channels[c][f] = source[f * N + c];
    for (size_t c = 0; c < rest; ++c) channels[c][frames] = source[frames * N + c];
}

} // namespace

// 128-bit kernels for 2 to 4 channels; AVX2 (256-bit) and AVX-512BW for all.
#define ZOLVEX_M_DEINTERLEAVE_TABLE(N, T, suffix, narrowest)                                       \
    template <>                                                                                    \
    const core::KernelTable<DeinterleaveKernel<T>>& deinterleave_kernels<T, N>() noexcept {        \
        static constexpr core::KernelTable<DeinterleaveKernel<T>> kTable = {                       \
            .sse42 = narrowest, .avx2 = avx2::deinterleave##N##_##suffix,                          \
            .avx512bw = avx512bw::deinterleave##N##_##suffix};                                     \
        return kTable;                                                                             \
    }
#define ZOLVEX_M_DEINTERLEAVE_TABLES(N, sse42_u8, sse42_u16)                                       \
    ZOLVEX_M_DEINTERLEAVE_TABLE(N, uint8_t, u8, sse42_u8)                                          \
    ZOLVEX_M_DEINTERLEAVE_TABLE(N, uint16_t, u16, sse42_u16)

ZOLVEX_M_DEINTERLEAVE_TABLES(2, sse42::deinterleave2_u8, sse42::deinterleave2_u16)
ZOLVEX_M_DEINTERLEAVE_TABLES(3, sse42::deinterleave3_u8, sse42::deinterleave3_u16)
ZOLVEX_M_DEINTERLEAVE_TABLES(4, sse42::deinterleave4_u8, sse42::deinterleave4_u16)
ZOLVEX_M_DEINTERLEAVE_TABLES(5, nullptr, nullptr)
ZOLVEX_M_DEINTERLEAVE_TABLES(6, nullptr, nullptr)
#undef ZOLVEX_M_DEINTERLEAVE_TABLES
#undef ZOLVEX_M_DEINTERLEAVE_TABLE

namespace {

#define ZOLVEX_M_REPORT(N, T, suffix)                                                              \
    core::KernelReportRegistration(                                                                \
        {"deinterleave" #N, #suffix, []() noexcept { return deinterleave_kernels<T, N>().chosen_isa(); }})
#define ZOLVEX_M_REPORTS(N) ZOLVEX_M_REPORT(N, uint8_t, u8), ZOLVEX_M_REPORT(N, uint16_t, u16),
const core::KernelReportRegistration kReports[] = {
    ZOLVEX_M_REPORTS(2) ZOLVEX_M_REPORTS(3) ZOLVEX_M_REPORTS(4) ZOLVEX_M_REPORTS(5) ZOLVEX_M_REPORTS(6)};
#undef ZOLVEX_M_REPORTS
#undef ZOLVEX_M_REPORT

} // namespace

} // namespace util

// The destination parameters of N channels.
#define ZOLVEX_M_CHANNELS_2(T) T* destination0, T* destination1
#define ZOLVEX_M_CHANNELS_3(T) ZOLVEX_M_CHANNELS_2(T), T* destination2
#define ZOLVEX_M_CHANNELS_4(T) ZOLVEX_M_CHANNELS_3(T), T* destination3
#define ZOLVEX_M_CHANNELS_5(T) ZOLVEX_M_CHANNELS_4(T), T* destination4
#define ZOLVEX_M_CHANNELS_6(T) ZOLVEX_M_CHANNELS_5(T), T* destination5
#define ZOLVEX_M_NAMES_2 destination0, destination1
#define ZOLVEX_M_NAMES_3 ZOLVEX_M_NAMES_2, destination2
#define ZOLVEX_M_NAMES_4 ZOLVEX_M_NAMES_3, destination3
#define ZOLVEX_M_NAMES_5 ZOLVEX_M_NAMES_4, destination4
#define ZOLVEX_M_NAMES_6 ZOLVEX_M_NAMES_5, destination5

#define ZOLVEX_M_EXPORT_DEINTERLEAVE(N, T, suffix)                                                 \
    int32_t zolvex_m_deinterleave##N##_##suffix(const T* source, int32_t total, ZOLVEX_M_CHANNELS_##N(T)) { \
        T* const channels[N] = {ZOLVEX_M_NAMES_##N};                                               \
        util::split_channels(source, total, channels);                                             \
        return 0;                                                                                  \
    }
#define ZOLVEX_M_EXPORT_DEINTERLEAVE_BOTH(N)                                                       \
    ZOLVEX_M_EXPORT_DEINTERLEAVE(N, uint8_t, u8) ZOLVEX_M_EXPORT_DEINTERLEAVE(N, uint16_t, u16)

extern "C" {

int32_t zolvex_m_deinterleave(const void* source, uint32_t channel, uint32_t channel_count, uint32_t count,
                              uint32_t sample_size, void* destination) {
    util::extract_channel(source, channel, channel_count, count, sample_size, destination);
    return 0;
}

ZOLVEX_M_EXPORT_DEINTERLEAVE_BOTH(2)
ZOLVEX_M_EXPORT_DEINTERLEAVE_BOTH(3)
ZOLVEX_M_EXPORT_DEINTERLEAVE_BOTH(4)
ZOLVEX_M_EXPORT_DEINTERLEAVE_BOTH(5)
ZOLVEX_M_EXPORT_DEINTERLEAVE_BOTH(6)

} // extern "C"
