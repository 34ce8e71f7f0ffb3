// Signal generation: windows over n, scale and input (every kernel regime
// the same bits, w(i) = w(D - i), in place as out of place), periodic
// waveforms (refused arguments write nothing; a block generated in two
// pieces joins into the one-call block bit for bit), and noise (the
// documented MT19937 rule, every regime the same bits, add_noise inside its
// bounds).

#include <functional>
#include <random>

#include "fuzz_support.h"

namespace {

template <class T>
using Window = int32_t (*)(const T*, T*, uint32_t, uint8_t);
#define WINDOWS(s)                                                                                                \
    zolvex_m_window_hanning_##s, zolvex_m_window_hamming_##s, zolvex_m_window_blackman_##s,                       \
        zolvex_m_window_nuttall_##s, zolvex_m_window_blackmanharris_##s, zolvex_m_window_blackmannuttall_##s,     \
        zolvex_m_window_flattop_##s, zolvex_m_window_welch_##s, zolvex_m_window_bartlett_##s,                     \
        zolvex_m_window_gaussian_##s, zolvex_m_window_parzen_##s
const Window<float> windows_f32[] = {WINDOWS(f32)};
const Window<double> windows_f64[] = {WINDOWS(f64)};

uint32_t length_of(uint16_t raw, uint8_t shape) {
    // Mostly short; now and then long enough to be split over threads.
    return (shape & 15) == 15 ? 65536u + raw : raw % 600;
}

template <class T>
void window(fuzz::Bytes& in, Window<T> w) {
    const uint8_t regime = in.take<uint8_t>(), scale = in.take<uint8_t>(), shape = in.take<uint8_t>();
    const uint32_t n = length_of(in.take<uint16_t>(), shape);
    std::vector<T> x = in.samples<T>(n);
    x.resize(n, T(1));
    auto run = [&] {
        std::vector<T> out(n), same = x;
        fuzz::check(w(x.data(), out.data(), n, scale) == 0, "window status");
        w(same.data(), same.data(), n, scale);
        fuzz::check(fuzz::same_values(out, same), "window in place against out of place");
        return out;
    };
    fuzz::generic_against_vector(regime, run, [](const auto& a, const auto& b) {
        fuzz::check(fuzz::same_values(a, b), "window: a kernel regime against the generic one");
    });
    if (n < 2) return;
    std::vector<T> ones(n, T(1)), out(n);
    w(ones.data(), out.data(), n, scale);
    for (uint32_t i = 0; i < n / 2; ++i)
        fuzz::check(fuzz::same_values(std::vector<T>{out[i]}, std::vector<T>{out[n - 1 - i]}), "window symmetry", i);
}

template <class T>
struct Waveforms;
#define WAVEFORMS(T, s)                                                                                           \
    template <>                                                                                                    \
    struct Waveforms<T> {                                                                                          \
        static constexpr auto cosine = zolvex_m_waveform_cosine_##s;                                              \
        static constexpr auto square = zolvex_m_waveform_square_##s;                                              \
        static constexpr auto triangle = zolvex_m_waveform_triangle_##s;                                          \
        static constexpr auto noise = zolvex_m_waveform_noise_##s;                                                \
        static constexpr auto add_noise = zolvex_m_add_noise_##s;                                                 \
    };
WAVEFORMS(uint8_t, u8)
WAVEFORMS(int16_t, i16)
WAVEFORMS(uint16_t, u16)
WAVEFORMS(float, f32)
WAVEFORMS(double, f64)

template <class T>
void waveform(fuzz::Bytes& in) {
    using W = Waveforms<T>;
    const uint8_t kind = in.take<uint8_t>(), shape = in.take<uint8_t>();
    const double amplitude = in.level<double>(), offset = in.level<double>(), frequency = in.level<double>(),
                 phase = in.level<double>(), duty = in.level<double>();
    const uint64_t start = in.take<uint64_t>();
    const uint32_t n = length_of(in.take<uint16_t>(), shape), cut = in.pick(n + 1);
    auto make = [&](T* out, uint32_t count, uint64_t first) {
        switch (kind % 3) {
        case 0: return W::cosine(out, count, amplitude, offset, frequency, phase, first);
        case 1: return W::square(out, count, amplitude, offset, frequency, phase, duty, first);
        default: return W::triangle(out, count, amplitude, offset, frequency, phase, first);
        }
    };
    const bool refused = !std::isfinite(amplitude) || !std::isfinite(offset) || !std::isfinite(frequency) ||
                         !std::isfinite(phase) || (kind % 3 == 1 && !(duty >= 0 && duty <= 1));
    std::vector<T> whole(n, T(7)), pieces(n, T(7));
    const int32_t status = make(whole.data(), n, start);
    if (n == 0) return fuzz::check(status == 0, "waveform of no samples");
    if (refused) {
        fuzz::check(status == -1 && whole == pieces, "refused waveform: -1 with nothing written");
        return;
    }
    fuzz::check(status == 0, "waveform status");
    make(pieces.data(), cut, start);
    make(pieces.data() + cut, n - cut, start + cut);
    fuzz::check(fuzz::same_values(whole, pieces), "waveform in two pieces against one block", cut);
}

// The documented noise rule: MT19937 draws, 64-bit real variates, and
// integer variates by multiplication with rejection.
template <class T>
std::vector<T> noise_rule(uint32_t n, T min, T max, uint32_t seed) {
    std::mt19937 engine(seed);
    std::vector<T> out(n);
    for (T& v : out) {
        if constexpr (std::is_floating_point_v<T>) {
            const uint64_t d1 = engine(), d2 = engine();
            double u = double(d1 + (d2 << 32)) * 0x1p-64;
            if (u >= 1) u = std::nextafter(1.0, 0.0);
            v = T(double(min) + u * (double(max) - double(min)));
        } else {
            const uint32_t lo = uint32_t(int32_t(min)), r = uint32_t(int32_t(max)) - lo + 1;
            uint32_t draw = engine();
            if (r != 0) {
                uint64_t p = uint64_t(draw) * r;
                while (uint32_t(p) < (0u - r) % r) p = uint64_t(engine()) * r;
                draw = uint32_t(p >> 32);
            }
            v = T(lo + draw);
        }
    }
    return out;
}

template <class T>
void noise(fuzz::Bytes& in) {
    using W = Waveforms<T>;
    const uint8_t regime = in.take<uint8_t>(), shape = in.take<uint8_t>();
    const T a = in.level<T>(), b = in.level<T>(), c = in.level<T>();
    const uint32_t seed = in.take<uint32_t>(), n = length_of(in.take<uint16_t>(), shape);
    std::vector<T> data = in.samples<T>(n);
    data.resize(n);
    auto run = [&] {
        std::vector<T> out(n), noisy = data;
        fuzz::check(W::noise(out.data(), n, a, b, &seed) == 0, "noise status");
        fuzz::check(W::add_noise(noisy.data(), n, a, b, c, &seed) == 0, "add_noise status");
        out.insert(out.end(), noisy.begin(), noisy.end());
        return out;
    };
    fuzz::generic_against_vector(regime, run, [&](const auto& g, const auto& v) {
        fuzz::check(fuzz::same_values(g, v), "noise: a kernel regime against the generic one");
        const std::vector<T> drawn(g.begin(), g.begin() + n);
        if (!std::is_floating_point_v<T> || (std::isfinite(double(a)) && std::isfinite(double(b))))
            fuzz::check(fuzz::same_values(drawn, noise_rule<T>(n, a, b, seed)), "noise against the MT19937 rule");
        if (!(b <= c)) return;
        for (uint32_t i = 0; i < n; ++i)
            fuzz::check((g[n + i] >= b && g[n + i] <= c) || g[n + i] != g[n + i], "add_noise outside its bounds", i);
    });
}

template <class T>
void signals(fuzz::Bytes& in) {
    if (in.flag()) waveform<T>(in);
    else noise<T>(in);
}

} // namespace

ZOLVEX_M_FUZZ_INITIALISE

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Bytes in(data, size);
    const uint32_t what = in.pick(27);
    if (what < 11) window<float>(in, windows_f32[what]);
    else if (what < 22) window<double>(in, windows_f64[what - 11]);
    else if (what == 22) signals<uint8_t>(in);
    else if (what == 23) signals<int16_t>(in);
    else if (what == 24) signals<uint16_t>(in);
    else if (what == 25) signals<float>(in);
    else signals<double>(in);
    return 0;
}
