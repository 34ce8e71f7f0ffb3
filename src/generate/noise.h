#pragma once
// Noise kernels. The engine is MT19937 (std::mt19937's parameters); every
// level twists its 624-word state and tempers the words into draws the same
// way, and turns the draws into samples by the same rules, so every level
// gives the same samples as the generic one bit for bit.
//
// Real variates take two draws d1, d2 per sample: u = (d1 + d2 * 2^32) *
// 2^-64 rounded to double (std::generate_canonical<double, 53> on a 32-bit
// engine), with u >= 1 replaced by the largest double below 1.
// Integer variates take Lemire's multiply-and-reject rule of
// std::uniform_int_distribution for a 32-bit engine (libstdc++'s _S_nd).

#include <cstdint>

#include "core/kernel_table.h"

namespace generate {

constexpr uint32_t kStateWords = 624;

// The kernels of one instruction-set level.
struct NoiseKernels {
    // Twists the state once and writes its 624 tempered words to `draws`.
    void (*next_draws)(uint32_t* state, uint32_t* draws) noexcept;

    // out[k] = lo + u_k * span for k < count (count <= 312), u_k from
    // draws[2k] and draws[2k + 1]; f32 rounds the double result once.
    void (*reals_f64)(const uint32_t* draws, double* out, uint32_t count, double lo, double span) noexcept;
    void (*reals_f32)(const uint32_t* draws, float* out, uint32_t count, double lo, double span) noexcept;

    // data[k] += lo + u_k * span, clipped to [low, high] (below low gives
    // low, else above high gives high); the integer forms work in double
    // and round halves away from zero.
    void (*add_f64)(const uint32_t* draws, double* data, uint32_t count, double lo, double span, double low,
                    double high) noexcept;
    void (*add_f32)(const uint32_t* draws, float* data, uint32_t count, double lo, double span, double low,
                    double high) noexcept;
    void (*add_u8)(const uint32_t* draws, uint8_t* data, uint32_t count, double lo, double span, double low,
                   double high) noexcept;
    void (*add_u16)(const uint32_t* draws, uint16_t* data, uint32_t count, double lo, double span, double low,
                    double high) noexcept;
    void (*add_i16)(const uint32_t* draws, int16_t* data, uint32_t count, double lo, double span, double low,
                    double high) noexcept;

    // Integers min + (d * range >> 32) (range = max - min + 1, not 0) while
    // no draw needs the rejection test: stops before the first draw whose
    // product's low word is below `range`, or when fewer than a vector of
    // draws or outputs remain. Returns the samples written (= draws used).
    uint32_t (*ints_u8)(const uint32_t* draws, uint32_t available, uint8_t* out, uint32_t count, uint32_t min,
                        uint32_t range) noexcept;
    uint32_t (*ints_u16)(const uint32_t* draws, uint32_t available, uint16_t* out, uint32_t count, uint32_t min,
                         uint32_t range) noexcept;
    uint32_t (*ints_i16)(const uint32_t* draws, uint32_t available, int16_t* out, uint32_t count, uint32_t min,
                         uint32_t range) noexcept;
};

namespace generic {
extern const NoiseKernels kNoise;
}
namespace avx2 {
extern const NoiseKernels kNoise;
}
namespace avx512 {
extern const NoiseKernels kNoise;
}

inline constexpr core::KernelTable<const NoiseKernels*> kNoiseKernels = {
    .generic = &generic::kNoise, .avx2 = &avx2::kNoise, .avx512 = &avx512::kNoise};

} // namespace generate
