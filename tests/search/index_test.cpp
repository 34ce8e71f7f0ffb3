// Index searches on every shape of the differential driver, for all five
// sample types: in every regime each of the forty functions finds what a
// plain loop over the samples finds, from random start indexes (at and
// beyond the length too). The condition searches are the level scans, so
// each condition is searched in a block where its hits are rare and placed
// on and beside the 64-sample groups counted from the start, and in a busy
// block (support/signal_maker.h); levels are random, often equal, reversed
// or at the ends of the range. The extremes start from the ends of the
// type, a sample of the block, a value near the levels or NaN.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/differential.h"
#include "support/signal_maker.h"
#include "zolvex_m.h"

namespace {

using namespace testing_support;

enum Condition { gt, gte, lt, lte, in, out };

template <class T>
bool meets(Condition c, T x, const Levels<T>& l) {
    switch (c) {
    case gt: return x > l[0];
    case gte: return x >= l[0];
    case lt: return x < l[0];
    case lte: return x <= l[0];
    case in: return l[2] <= x && x <= l[1];  // (high, low) = (l[1], l[2])
    default: return x > l[1] || x < l[2];
    }
}

template <class T>
struct Api;
#define ZOLVEX_M_INDEX_API(T, sfx)                                                                            \
    template <>                                                                                             \
    struct Api<T> {                                                                                         \
        static int32_t find(Condition c, const T* d, uint32_t n, const Levels<T>& l, uint32_t* index) {     \
            switch (c) {                                                                                    \
            case gt: return zolvex_m_index_gt_##sfx(d, n, l[0], index);                                     \
            case gte: return zolvex_m_index_gte_##sfx(d, n, l[0], index);                                   \
            case lt: return zolvex_m_index_lt_##sfx(d, n, l[0], index);                                     \
            case lte: return zolvex_m_index_lte_##sfx(d, n, l[0], index);                                   \
            case in: return zolvex_m_index_in_##sfx(d, n, l[1], l[2], index);                               \
            default: return zolvex_m_index_out_##sfx(d, n, l[1], l[2], index);                              \
            }                                                                                               \
        }                                                                                                   \
        static int32_t extreme(bool max, const T* d, uint32_t n, uint32_t* index, T* value) {               \
            return max ? zolvex_m_index_max_##sfx(d, n, index, value) : zolvex_m_index_min_##sfx(d, n, index, value); \
        }                                                                                                   \
    };
ZOLVEX_M_INDEX_API(uint8_t, u8)
ZOLVEX_M_INDEX_API(int16_t, i16)
ZOLVEX_M_INDEX_API(uint16_t, u16)
ZOLVEX_M_INDEX_API(float, f32)
ZOLVEX_M_INDEX_API(double, f64)
#undef ZOLVEX_M_INDEX_API

// Flat runs of values that miss condition c, with a few hits (if any value
// meets it) on and beside group boundaries from `start`, or anywhere.
template <class T>
void sparse(Condition c, const Levels<T>& l, T* x, uint32_t n, uint32_t start, SignalMaker<T>& maker) {
    std::vector<T> hits, misses;
    for (T v : maker.pool(l)) (meets(c, v, l) ? hits : misses).push_back(v);
    for (uint32_t i = 0; i < n;) {
        const T v = misses.empty() ? maker.pick(hits) : maker.pick(misses);
        for (int64_t run = maker.chance(3) ? maker.between(1, 10) : maker.between(60, 300); run > 0 && i < n; --run)
            x[i++] = v;
    }
    for (int64_t k = hits.empty() ? 0 : maker.between(0, 3); k > 0; --k) {
        const int64_t group = maker.chance(2) ? maker.between(0, 4) : maker.between(0, n / 64 + 1);
        const int64_t at = maker.chance(4) ? maker.between(0, n) : start + 64 * group + maker.between(-1, 1);
        if (at >= 0 && at < int64_t(n)) x[at] = maker.pick(hits);
    }
}

template <class T>
void check_type() {
    expect_regimes_agree([](const Shape& s) {
        SignalMaker<T> maker(s.seed * 7919u + sizeof(T));
        const Levels<T> l = maker.levels();
        const uint32_t n = s.length;
        auto x = shaped_input<T>(s);
        std::vector<uint32_t> indexes;
        std::vector<T> values;
        auto start_index = [&] {
            switch (maker.between(0, 5)) {
            case 0: return 0u;
            case 1: return maker.chance(2) ? n : 0xFFFFFFFFu;
            default: return static_cast<uint32_t>(maker.between(0, n));
            }
        };
        for (Condition c : {gt, gte, lt, lte, in, out}) {
            const uint32_t start = start_index();
            if (maker.chance(2)) {
                sparse(c, l, x.data(), n, start, maker);
            } else {
                const std::vector<T> busy = maker.stream(n, l);
                std::copy(busy.begin(), busy.end(), x.data());
            }
            uint32_t want = n, index = start;
            for (uint32_t i = start; i < n && want == n; ++i)
                if (meets(c, x.data()[i], l)) want = i;
            EXPECT_EQ(Api<T>::find(c, x.data(), n, l, &index), 0);
            EXPECT_EQ(index, want) << "condition " << c << ", levels " << show(l[0]) << " " << show(l[1]) << " "
                                   << show(l[2]) << ", length " << n << ", start " << start;
            indexes.push_back(index);
        }
        // The running extreme starts at the caller's value; only a strictly
        // better sample replaces it, so ties keep the first and NaN never wins.
        std::vector<T> seeds = {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max(), maker.pick(maker.pool(l))};
        if (n > 0) seeds.push_back(x.data()[maker.between(0, n - 1)]);
        for (T seed : seeds)
            for (bool max : {true, false}) {
                const uint32_t start = start_index();
                uint32_t want = n, index = start;
                T best = seed, value = seed;
                for (uint32_t i = start; i < n; ++i)
                    if (max ? x.data()[i] > best : x.data()[i] < best) best = x.data()[i], want = i;
                EXPECT_EQ(Api<T>::extreme(max, x.data(), n, &index, &value), 0);
                EXPECT_TRUE(index == want && same_bits(value, best))
                    << (max ? "max" : "min") << " from " << show(seed) << ", start " << start << ": index " << index
                    << " value " << show(value) << ", the loop finds " << want << " value " << show(best);
                indexes.push_back(index);
                values.push_back(value);
            }
        return std::pair(indexes, values);
    });
}

TEST(IndexSearch, EveryFunctionFindsWhatTheLoopFinds) {
    check_type<uint8_t>();
    check_type<int16_t>();
    check_type<uint16_t>();
    check_type<float>();
    check_type<double>();
}

} // namespace
