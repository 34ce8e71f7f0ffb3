// De-interleaving (every total: negative, 0, below N, not a multiple of N,
// large; every kernel regime) against the plain loop, and the exponential
// fit against its sums taken again in long double.

#include <bit>
#include <cmath>

#include "fuzz_support.h"

namespace {

template <class T>
struct Deinterleave;
#define DEINTERLEAVE(T, s)                                                                                          \
    template <>                                                                                                      \
    struct Deinterleave<T> {                                                                                         \
        static int32_t call(const T* x, int32_t total, uint32_t channels, T** d) {                                  \
            switch (channels) {                                                                                      \
            case 2: return zolvex_m_deinterleave2_##s(x, total, d[0], d[1]);                                        \
            case 3: return zolvex_m_deinterleave3_##s(x, total, d[0], d[1], d[2]);                                  \
            case 4: return zolvex_m_deinterleave4_##s(x, total, d[0], d[1], d[2], d[3]);                            \
            case 5: return zolvex_m_deinterleave5_##s(x, total, d[0], d[1], d[2], d[3], d[4]);                      \
            default: return zolvex_m_deinterleave6_##s(x, total, d[0], d[1], d[2], d[3], d[4], d[5]);               \
            }                                                                                                        \
        }                                                                                                            \
    };
DEINTERLEAVE(uint8_t, u8)
DEINTERLEAVE(uint16_t, u16)

template <class T>
void channels(fuzz::Bytes& in) {
    const uint32_t n = 2 + in.pick(5);
    const uint8_t regime = in.take<uint8_t>(), shape = in.take<uint8_t>();
    const int32_t raw = in.take<int32_t>();
    std::vector<T> x = in.samples<T>(1u << 16);
    // Now and then a total below zero; otherwise at most the samples there are.
    const int32_t total = (shape & 7) == 0 ? -int32_t(uint32_t(raw) % 100000) : int32_t(uint32_t(raw) % (x.size() + 1));
    const uint32_t frames = total > 0 ? uint32_t(total) / n : 0, rest = total > 0 ? uint32_t(total) % n : 0;
    auto run = [&] {
        // One more slot than any channel can get, to see nothing is written past it.
        std::vector<std::vector<T>> out(n, std::vector<T>(frames + 2, T(0x5A)));
        T* d[6];
        for (uint32_t c = 0; c < n; ++c) d[c] = out[c].data();
        fuzz::check(Deinterleave<T>::call(x.data(), total, n, d) == 0, "deinterleave status");
        for (uint32_t c = 0; c < n; ++c) {
            const uint32_t got = frames + (c < rest ? 1 : 0);
            for (uint32_t f = 0; f < frames + 2; ++f)
                fuzz::check(out[c][f] == (f < got ? x[f * n + c] : T(0x5A)), "deinterleave against the loop", f);
        }
        return out;
    };
    fuzz::generic_against_vector(regime, run, [](const auto&, const auto&) {});
}

void one_channel(fuzz::Bytes& in) {
    const uint32_t channel = in.take<uint8_t>() % 8, channel_count = 1 + in.take<uint8_t>() % 8,
                   sample_size = in.take<uint8_t>() % 9;
    std::vector<uint8_t> x = in.samples<uint8_t>();
    const uint64_t stride = uint64_t(channel_count) * sample_size;
    uint32_t count = 0;
    if (sample_size && x.size() >= (channel + 1) * uint64_t(sample_size))
        count = uint32_t((x.size() - (channel + 1) * uint64_t(sample_size)) / stride + 1);
    std::vector<uint8_t> out(uint64_t(count) * sample_size + 1, 0xA5), expected = out;
    for (uint32_t i = 0; i < count; ++i)
        std::memcpy(&expected[uint64_t(i) * sample_size], &x[channel * uint64_t(sample_size) + i * stride], sample_size);
    fuzz::check(zolvex_m_deinterleave(x.data(), channel, channel_count, count, sample_size, out.data()) == 0 &&
                    out == expected,
                "deinterleave of one channel against the loop");
}

void fit(fuzz::Bytes& in) {
    const uint8_t outputs = in.take<uint8_t>();
    std::vector<double> y = in.samples<double>(1u << 14);
    if (outputs & 4)  // mostly well-scaled samples, to compare with the sums
        for (double& v : y) v = std::ldexp(1.0 + (std::bit_cast<uint64_t>(v) & 0xFFFF) / 65536.0, int((std::bit_cast<uint64_t>(v) >> 16) % 20) - 10);
    const uint32_t n = uint32_t(y.size());
    double a = 7, b = 7;
    const int32_t status = zolvex_m_fit_exp_f64(y.data(), n, (outputs & 1) ? nullptr : &a, (outputs & 2) ? nullptr : &b);
    bool refused = false;
    for (double v : y) refused |= v <= 0;
    if (refused) return fuzz::check(status == -1 && a == 7 && b == 7, "fit_exp refusal writes nothing");
    fuzz::check(status == 0, "fit_exp status");
    if (outputs & 1) fuzz::check(a == 7, "fit_exp wrote a NULL result");
    if (outputs & 2) fuzz::check(b == 7, "fit_exp wrote a NULL result");
    if (n < 2) return fuzz::check(((outputs & 1) || std::isnan(a)) && ((outputs & 2) || std::isnan(b)), "fit_exp of 0 or 1 sample");
    if (!(outputs & 4) || n >= 65536) return;
    long double sx = 0, sxx = 0, sy = 0, sxy = 0;
    for (uint32_t i = 0; i < n; ++i) {
        const long double l = std::log((long double)y[i]);
        sx += i, sxx += (long double)(uint32_t(i * i)), sy += l, sxy += i * l;
    }
    const long double d = n * sxx - sx * sx;
    const double ea = double(std::exp((sxx * sy - sx * sxy) / d)), eb = double((n * sxy - sy * sx) / d);
    if (!(outputs & 1)) fuzz::check(std::fabs(a - ea) <= 1e-9 * std::fabs(ea), "fit_exp A against long double");
    if (!(outputs & 2)) fuzz::check(std::fabs(b - eb) <= 1e-12 + 1e-9 * std::fabs(eb), "fit_exp B against long double");
}

} // namespace

ZOLVEX_M_FUZZ_INITIALISE

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Bytes in(data, size);
    switch (in.pick(4)) {
    case 0: channels<uint8_t>(in); break;
    case 1: channels<uint16_t>(in); break;
    case 2: one_channel(in); break;
    default: fit(in); break;
    }
    return 0;
}
