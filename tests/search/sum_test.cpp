// Sums: the integer sums on every shape of the differential driver against a
// plain 64-bit loop (exact, wrapping, from random start values), and on runs
// long enough to fill the kernels' narrow accumulators many times; the f64
// sums in every regime bit for bit against a model of the order the
// regime's kernel promises; the f32 sums against a double-precision loop.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "search/sum.h"
#include "support/differential.h"
#include "zolvex_m.h"

namespace {

using namespace testing_support;

template <class T, class Total>
Total reference_sum(const T* x, size_t n, Total start) {
    uint64_t total = static_cast<uint64_t>(start);
    for (size_t i = 0; i < n; ++i) total += static_cast<uint64_t>(static_cast<int64_t>(x[i]));
    return static_cast<Total>(total);
}

template <class T, class Total>
void check_integer_sum(int32_t (*sum)(const T*, uint32_t, Total*)) {
    expect_regimes_agree([&](const Shape& s) {
        auto x = shaped_input<T>(s);
        // Random bits for the start value too: totals wrap past 2^64.
        const Total start = static_cast<Total>(std::mt19937_64(s.seed)());
        Total got = start;
        EXPECT_EQ(sum(x.data(), s.length, &got), 0);
        EXPECT_EQ(got, reference_sum(x.data(), s.length, start)) << "length " << s.length;
        return got;
    });
    // Runs of the type's extremes, long enough for every kernel to widen its
    // narrow accumulators several times.
    in_each_regime([&](core::Isa) {
        for (T extreme : {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()}) {
            const std::vector<T> run((size_t(1) << 21) + 37, extreme);
            for (size_t offset : {size_t(0), size_t(5)}) {
                Total got = 0;
                ASSERT_EQ(sum(run.data() + offset, uint32_t(run.size() - offset), &got), 0);
                ASSERT_EQ(got, reference_sum(run.data() + offset, run.size() - offset, Total(0)));
            }
        }
    });
}

TEST(IntegerSums, EveryKernelGivesTheExactTotal) {
    check_integer_sum<uint8_t, uint64_t>(zolvex_m_sum_u8);
    check_integer_sum<uint16_t, uint64_t>(zolvex_m_sum_u16);
    check_integer_sum<uint32_t, uint64_t>(zolvex_m_sum_u32);
    check_integer_sum<int16_t, int64_t>(zolvex_m_sum_i16);
}

// The order of sum.h: in order into an accumulator that is then added to
// `sum` (k = 0), or k partial sums over the largest multiple of k samples,
// the rest added to `sum` one by one, then the partial sums in order.
double order_model(const double* x, size_t n, double sum, size_t k, bool squares) {
    auto term = [squares](double v) { return squares ? v * v : v; };
    if (k == 0) {
        double accumulator = 0.0;
        for (size_t i = 0; i < n; ++i) accumulator += term(x[i]);
        return accumulator + sum;
    }
    std::vector<double> partial(k, 0.0);
    const size_t whole = n / k * k;
    for (size_t i = 0; i < whole; ++i) partial[i % k] += term(x[i]);
    for (size_t i = whole; i < n; ++i) sum += term(x[i]);
    for (double p : partial) sum += p;
    return sum;
}

// Mixed signs over eighty binary orders of magnitude, so that every change
// of order shows in the last bits; or random_vector's mix with infinities,
// NaN, zeros of both signs and subnormals.
std::vector<double> f64_samples(const Shape& s) {
    auto x = shaped_input<double>(s);
    std::vector<double> v(x.data(), x.data() + s.length);
    if (s.seed % 2 == 0) {
        std::mt19937_64 rng(s.seed);
        for (double& d : v) d = std::ldexp(std::uniform_real_distribution<double>(-1, 1)(rng), int(rng() % 81) - 40);
    }
    return v;
}

TEST(FloatSums, EveryRegimeAddsInItsOwnOrder) {
    in_each_regime([](core::Isa isa) {
        const size_t k = isa >= core::Isa::avx ? search::avx::kPartialSums
                         : isa == core::Isa::sse42 ? search::sse42::kPartialSums
                                                   : 0;
        for (const Shape& s : differential_shapes()) {
            const std::vector<double> x = f64_samples(s);
            const double start = s.seed % 3 == 0 ? -0.0 : std::ldexp(1.0 / 3, int(s.seed % 50) - 25);
            for (bool squares : {false, true}) {
                double got = start;
                ASSERT_EQ((squares ? zolvex_m_square_sum_f64 : zolvex_m_sum_f64)(x.data(), s.length, &got), 0);
                const double want = order_model(x.data(), s.length, start, k, squares);
                // Which NaN comes out of two NaN operands depends on the
                // operand order the compiler chose for an addition.
                ASSERT_TRUE(same_bits(got, want) || (std::isnan(got) && std::isnan(want)))
                    << (squares ? "square_sum" : "sum") << " length " << s.length << ": " << show(got)
                    << ", the order of " << k << " partial sums gives " << show(want);
            }
        }
    });
}

// f32 data: in order in double precision; the sum is stored rounded to
// float, the sum of squares in double.
TEST(FloatSums, SinglePrecisionDataAddsInDoublePrecision) {
    expect_regimes_agree([](const Shape& s) {
        auto x = shaped_input<float>(s);
        double want_sum = 0, want_squares = 0;
        for (uint32_t i = 0; i < s.length; ++i) {
            want_sum += double(x.data()[i]);
            want_squares += double(x.data()[i]) * double(x.data()[i]);
        }
        float total = -1.5f;
        double squares = 2.0;
        EXPECT_EQ(zolvex_m_sum_f32(x.data(), s.length, &total), 0);
        EXPECT_EQ(zolvex_m_square_sum_f32(x.data(), s.length, &squares), 0);
        EXPECT_TRUE(same_bits(total, float(want_sum + -1.5)) || std::isnan(want_sum));
        EXPECT_TRUE(same_bits(squares, want_squares + 2.0) || std::isnan(want_squares));
        return std::pair(total, squares);
    });
}

} // namespace
