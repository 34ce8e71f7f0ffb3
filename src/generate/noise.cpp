// Uniform noise: waveform_noise_* fills a buffer, add_noise_* adds noise to
// one. Each call seeds its own MT19937 and produces exactly the sequence of
// std::mt19937 with std::uniform_real_distribution<double> (two draws per
// sample) or std::uniform_int_distribution (libstdc++'s rule for a 32-bit
// engine); the kernels only make the twist, the tempering and the turning of
// draws into samples run in vectors.

#include <emmintrin.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <type_traits>

#include "core/export.h"
#include "core/kernel_report.h"
#include "generate/noise.h"
#include "zolvex_m.h"

namespace generate {

namespace generic {

// SSE2, which every x86-64 processor has.
constexpr unsigned kVectorBytes = 16;
#include "generate/noise_loops.inc"

namespace {
U64 multiply_low_words(U64 a, U64 b) noexcept { return (U64)_mm_mul_epu32((__m128i)a, (__m128i)b); }
bool any_lane(I64 mask) noexcept { return _mm_movemask_pd((__m128d)mask) != 0; }
} // namespace

} // namespace generic

namespace {

constexpr uint32_t kSamplesPerBlock = kStateWords / 2;  // real variates take two draws

// The engine as std::mt19937 seeds it, with its draws taken a block of 624
// at a time from the chosen level.
class Engine {
public:
    explicit Engine(const uint32_t* seed) : kernels_(*kNoiseKernels.choose()) {
        // Without a seed, one value of the platform's non-deterministic source.
        state_[0] = seed != nullptr ? *seed : std::random_device{}();
        for (uint32_t i = 1; i < kStateWords; ++i)
            state_[i] = 1812433253u * (state_[i - 1] ^ (state_[i - 1] >> 30)) + i;
    }

    const NoiseKernels& kernels() const noexcept { return kernels_; }
    const uint32_t* next_block() noexcept {
        kernels_.next_draws(state_, draws_);
        used_ = kStateWords;
        return draws_;
    }

    // Integer sampling: the unused draws of the current block.
    const uint32_t* unused() noexcept {
        if (used_ == kStateWords) next_block(), used_ = 0;
        return draws_ + used_;
    }
    uint32_t unused_count() const noexcept { return kStateWords - used_; }
    void consume(uint32_t n) noexcept { used_ += n; }

    uint32_t next() noexcept {
        const uint32_t d = *unused();
        ++used_;
        return d;
    }

    // An integer in [0, range - 1] (range 0: the whole 32-bit range) by
    // Lemire's rule: reject products whose low word lies below
    // 2^32 mod range (D. Lemire, "Fast random integer generation in an
    // interval", ACM TOMACS 29(1), 2019).
    uint32_t below(uint32_t range) noexcept {
        if (range == 0) return next();
        uint64_t product = uint64_t{next()} * range;
        if (static_cast<uint32_t>(product) < range) {
            const uint32_t threshold = (0u - range) % range;
            while (static_cast<uint32_t>(product) < threshold) product = uint64_t{next()} * range;
        }
        return static_cast<uint32_t>(product >> 32);
    }

private:
    const NoiseKernels& kernels_;
    alignas(64) uint32_t state_[kStateWords];
    alignas(64) uint32_t draws_[kStateWords];
    uint32_t used_ = kStateWords;
};

// The kernels of each sample type.
template <class T>
struct Kernels;
#define ZOLVEX_M_NOISE_KERNELS(T, suffix)                                                          \
    template <>                                                                                    \
    struct Kernels<T> {                                                                            \
        static constexpr auto kAdd = &NoiseKernels::add_##suffix;                                  \
        static constexpr auto kFill = &NoiseKernels::ZOLVEX_M_FILL_##suffix;                       \
    };
#define ZOLVEX_M_FILL_f64 reals_f64
#define ZOLVEX_M_FILL_f32 reals_f32
#define ZOLVEX_M_FILL_u8 ints_u8
#define ZOLVEX_M_FILL_u16 ints_u16
#define ZOLVEX_M_FILL_i16 ints_i16
ZOLVEX_M_NOISE_KERNELS(double, f64)
ZOLVEX_M_NOISE_KERNELS(float, f32)
ZOLVEX_M_NOISE_KERNELS(uint8_t, u8)
ZOLVEX_M_NOISE_KERNELS(uint16_t, u16)
ZOLVEX_M_NOISE_KERNELS(int16_t, i16)
#undef ZOLVEX_M_NOISE_KERNELS

// min + u * (max - min), u in [0, 1): max itself only through rounding.
template <class T>
void fill_reals(T* out, uint32_t count, T min, T max, Engine& engine) noexcept {
    const double lo = min, span = static_cast<double>(max) - static_cast<double>(min);
    for (uint32_t done = 0; done < count; done += kSamplesPerBlock) {
        const uint32_t n = count - done < kSamplesPerBlock ? count - done : kSamplesPerBlock;
        (engine.kernels().*Kernels<T>::kFill)(engine.next_block(), out + done, n, lo, span);
    }
}

// Integers in [min, max] with both bounds widened to 32 bits (u8 and u16
// zero-extended, i16 sign-extended) and the range max - min taken modulo
// 2^32, so reversed bounds wrap as the unsigned arithmetic does.
template <class T>
void fill_integers(T* out, uint32_t count, T min_value, T max_value, Engine& engine) noexcept {
    const uint32_t min = static_cast<uint32_t>(static_cast<int32_t>(min_value));
    const uint32_t range = static_cast<uint32_t>(static_cast<int32_t>(max_value)) - min + 1u;
    uint32_t done = 0;
    while (done < count) {
        if (range != 0) {
            const uint32_t* draws = engine.unused();
            const uint32_t n = (engine.kernels().*Kernels<T>::kFill)(draws, engine.unused_count(), out + done,
                                                                    count - done, min, range);
            engine.consume(n);
            done += n;
            if (done == count) break;
        }
        // The vectors stopped at a draw that needs the rejection test, at
        // the end of a block or at the last few samples.
        out[done++] = static_cast<T>(min + engine.below(range));
    }
}

template <class T>
int32_t waveform_noise(T* out, uint32_t count, T min, T max, const uint32_t* seed) {
    if (count == 0) return 0;
    Engine engine(seed);
    if constexpr (std::is_floating_point_v<T>)
        fill_reals(out, count, min, max, engine);
    else
        fill_integers(out, count, min, max, engine);
    return 0;
}

// data + (u * (a - (-a)) + (-a)), clipped to [low, high], in double; f32
// and the integer types round the double result once (integers half away
// from zero).
template <class T>
int32_t add_noise(T* data, uint32_t count, T amplitude, T low, T high, const uint32_t* seed) {
    if (count == 0) return 0;
    Engine engine(seed);
    const double a = amplitude, lo = -a, span = a - lo;
    for (uint32_t done = 0; done < count; done += kSamplesPerBlock) {
        const uint32_t n = count - done < kSamplesPerBlock ? count - done : kSamplesPerBlock;
        (engine.kernels().*Kernels<T>::kAdd)(engine.next_block(), data + done, n, lo, span, low, high);
    }
    return 0;
}

// Every sample type draws from the same engine kernels.
const core::KernelReportRegistration kReport({"waveform_noise add_noise", "all", core::level_of<kNoiseKernels>});

} // namespace

} // namespace generate

#define ZOLVEX_M_EXPORT_NOISE(T, suffix)                                                           \
    int32_t zolvex_m_waveform_noise_##suffix(T* out, uint32_t count, T min, T max, const uint32_t* seed) { \
        return core::guarded([&] { return generate::waveform_noise(out, count, min, max, seed); });   \
    }                                                                                              \
    int32_t zolvex_m_add_noise_##suffix(T* data, uint32_t count, T amplitude, T low, T high,       \
                                        const uint32_t* seed) {                                    \
        return core::guarded([&] { return generate::add_noise(data, count, amplitude, low, high, seed); }); \
    }

extern "C" {
ZOLVEX_M_EXPORT_NOISE(uint8_t, u8)
ZOLVEX_M_EXPORT_NOISE(int16_t, i16)
ZOLVEX_M_EXPORT_NOISE(uint16_t, u16)
ZOLVEX_M_EXPORT_NOISE(float, f32)
ZOLVEX_M_EXPORT_NOISE(double, f64)
}
