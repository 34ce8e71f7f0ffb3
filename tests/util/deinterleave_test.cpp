// De-interleaving: every channel count and sample type through the public
// functions in every kernel regime against the generic regime (the plain
// loop), and every regime against direct indexing of the source, with the
// destinations at their own misalignments behind sentinels; totals of 0 and
// below; the one-channel extraction against the same indexing.

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/differential.h"
#include "util/split_channels.h"
#include "zolvex_m.h"

namespace {

using testing_support::GuardedOutput;
using testing_support::Shape;
using testing_support::split;

// The driver's shapes, then every rest after several steps of the widest
// kernels (64 frames of six u8 channels take 384 samples), and a large one.
std::vector<Shape> split_shapes() {
    std::vector<Shape> shapes = testing_support::differential_shapes();
    uint32_t k = 0;
    for (uint32_t total = 301; total < 2700; total += 11, ++k) shapes.push_back({total, k % 4, 5000 + k});
    shapes.push_back({(3u << 20) + 5, 1, 7});
    return shapes;
}

// Channel c's samples, each checked against the source; the sentinels catch
// a write past the channel's last sample.
template <class T>
std::vector<std::vector<T>> split_and_check(unsigned n, const Shape& s) {
    auto source = testing_support::shaped_input<T>(s);
    const uint32_t frames = s.length / n, rest = s.length % n;
    std::vector<GuardedOutput<T>> outputs;
    std::vector<T*> d;
    // Moving an output keeps its storage, so the pointers stay valid.
    for (unsigned c = 0; c < n; ++c) d.push_back(outputs.emplace_back(Shape{0, (s.offset + c) % 4, 0}, frames + (c < rest)).data());
    EXPECT_EQ(split(n, source.data(), static_cast<int32_t>(s.length), d.data()), 0);
    std::vector<std::vector<T>> channels;
    for (unsigned c = 0; c < n; ++c) {
        channels.push_back(outputs[c].values());
        for (size_t f = 0; f < channels[c].size(); ++f)
            if (channels[c][f] != source.data()[f * n + c]) {
                ADD_FAILURE() << n << " channels, total " << s.length << ": channel " << c << " frame " << f;
                return channels;
            }
    }
    return channels;
}

template <class T>
void expect_every_regime_splits_exactly() {
    const std::vector<Shape> shapes = split_shapes();
    for (unsigned n = 2; n <= 6; ++n) {
        SCOPED_TRACE(::testing::Message() << n << " channels of " << sizeof(T) << "-byte samples");
        testing_support::expect_regimes_agree([n](const Shape& s) { return split_and_check<T>(n, s); }, shapes);
    }
}

TEST(Deinterleave, EveryKernelWritesWhatThePlainLoopWritesU8) { expect_every_regime_splits_exactly<uint8_t>(); }
TEST(Deinterleave, EveryKernelWritesWhatThePlainLoopWritesU16) { expect_every_regime_splits_exactly<uint16_t>(); }

TEST(Deinterleave, TotalsOfZeroAndBelowWriteNothing) {
    testing_support::in_each_regime([](core::Isa) {
        const std::vector<uint8_t> source(64, 7);
        std::vector<uint8_t> out(6 * 16, 0);
        uint8_t* d[6] = {&out[0], &out[16], &out[32], &out[48], &out[64], &out[80]};
        for (unsigned n = 2; n <= 6; ++n)
            for (int32_t total : {0, -1, -int32_t(n), -1000, INT32_MIN}) EXPECT_EQ(split(n, source.data(), total, d), 0);
        EXPECT_EQ(out, std::vector<uint8_t>(6 * 16, 0));
    });
}

// The one-channel function against byte indexing, for sample sizes with and
// without their own loop.
TEST(Deinterleave, OneChannelOfAnySampleSize) {
    const std::vector<uint8_t> source = testing_support::random_vector<uint8_t>(9000, 3);
    for (uint32_t size : {0u, 1u, 2u, 3u, 4u, 8u, 12u})
        for (uint32_t channels : {1u, 2u, 4u, 7u})
            for (uint32_t count : {0u, 1u, 5u, 100u}) {
                const uint32_t channel = channels - 1;
                GuardedOutput<uint8_t> out(Shape{0, size % 4, 0}, count * size);
                ASSERT_EQ(zolvex_m_deinterleave(source.data(), channel, channels, count, size, out.data()), 0);
                const std::vector<uint8_t> got = out.values();
                for (uint32_t i = 0; i < count * size; ++i)
                    ASSERT_EQ(got[i], source[(i / size * channels + channel) * size + i % size])
                        << "size " << size << ", " << channels << " channels, byte " << i;
            }
    // Nothing to copy: no pointer is touched.
    EXPECT_EQ(zolvex_m_deinterleave(nullptr, 1, 2, 0, 2, nullptr), 0);
    EXPECT_EQ(zolvex_m_deinterleave(nullptr, 1, 2, 9, 0, nullptr), 0);
}

} // namespace
