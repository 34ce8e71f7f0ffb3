#pragma once
// Random levels and signals for the trigger and index-search tests: signals
// that cross the levels often, with flat runs longer than the vector scans' 64-sample
// groups, square waves of every width around them, values at, next to and
// far from the levels, and for floating types zeros, infinities and NaN.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "support/random_data.h"

namespace testing_support {

// Up to four levels; each kind uses the first ones it needs, in its call
// order.
template <class T>
using Levels = std::array<T, 4>;

// ---------------------------------------------------------------------------
// Random levels and signals that cross them often.

template <class T>
class SignalMaker {
public:
    explicit SignalMaker(uint64_t seed) : rng_(seed) {}

    bool chance(int one_in) { return std::uniform_int_distribution<int>(0, one_in - 1)(rng_) == 0; }
    int64_t between(int64_t lo, int64_t hi) { return std::uniform_int_distribution<int64_t>(lo, hi)(rng_); }
    double real(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng_); }
    template <class V>
    V pick(const std::vector<V>& values) { return values[between(0, static_cast<int64_t>(values.size()) - 1)]; }

    // Levels near each other (including equal ones), in any order, sometimes
    // at the ends of the range or spread over it.
    Levels<T> levels() {
        Levels<T> l;
        if constexpr (std::is_integral_v<T>) {
            int64_t center;
            if (chance(4)) center = between(kMin, kMax);
            else if constexpr (std::is_same_v<T, int16_t>) center = between(-400, 400);
            else if constexpr (std::is_same_v<T, uint16_t>) center = chance(2) ? between(32600, 32900) : between(0, 1000);
            else center = between(0, 255);
            int64_t spread = pick(std::vector<int64_t>{0, 1, 2, 5, 30, 200});
            for (T& level : l) level = chance(8) ? clamp(between(kMin, kMax)) : clamp(center + between(-spread, spread));
            for (T& level : l)
                if (chance(14)) level = chance(2) ? T(kMin) : T(kMax);
        } else {
            double center = chance(3) ? 0.0 : real(-100, 100);
            double spread = pick(std::vector<double>{0.0, 1e-5, 0.5, 10.0, 1000.0});
            for (T& level : l) level = static_cast<T>(center + real(-spread, spread));
            for (T& level : l) {
                switch (between(0, 19)) {
                case 0: level = std::numeric_limits<T>::infinity(); break;
                case 1: level = -std::numeric_limits<T>::infinity(); break;
                case 2: level = chance(2) ? T(0) : -T(0); break;
                case 3: level = std::numeric_limits<T>::denorm_min(); break;
                default: break;
                }
            }
        }
        if (chance(5)) l[1] = l[0];
        if (chance(8)) l[2] = l[0];
        if (chance(8)) l[2] = l[1];
        if (chance(8)) l[3] = l[2];
        return l;
    }

    // Values at, next to and around the levels, the ends of the range, the
    // middle of an unsigned range, and for floating types zeros, infinities
    // and NaN.
    std::vector<T> pool(const Levels<T>& levels) {
        std::vector<T> values;
        const Levels<T>& l = levels;
        if constexpr (std::is_integral_v<T>) {
            for (T level : l)
                for (int d = -2; d <= 2; ++d) values.push_back(clamp(int64_t(level) + d));
            for (int64_t v : {kMin, kMax, int64_t(0), int64_t(1), int64_t(-1), kMid - 1, kMid, kMid + 1})
                values.push_back(clamp(v));
            for (int i = 0; i < 4; ++i) values.push_back(clamp(between(kMin, kMax)));
        } else {
            const T inf = std::numeric_limits<T>::infinity();
            for (T level : l) {
                values.push_back(level);
                values.push_back(std::nextafter(level, inf));
                values.push_back(std::nextafter(level, -inf));
                values.push_back(static_cast<T>(level + real(-1, 1)));
            }
            for (T v : {inf, -inf, T(0), -T(0), std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest(),
                        std::numeric_limits<T>::quiet_NaN()})
                values.push_back(v);
        }
        return values;
    }

    // A stream of n samples made of segments: flat runs (often longer than
    // 64 samples, often exactly at a level), random walks and square waves
    // across the levels, draws from the pool, values from the whole range
    // and, for floating types, runs of NaN.
    std::vector<T> stream(size_t n, const Levels<T>& levels) {
        const std::vector<T> values = pool(levels);
        std::vector<T> out;
        out.reserve(n + 300);
        while (out.size() < n) {
            switch (between(0, 5)) {
            case 0: {  // flat run
                T v = pick(values);
                out.insert(out.end(), chance(3) ? between(65, 200) : between(1, 10), v);
                break;
            }
            case 1: walk(out, between(10, 300), levels, values); break;
            case 2: {  // square wave between two pool values
                T a = pick(values), b = pick(values);
                int64_t half = chance(3) ? pick(std::vector<int64_t>{32, 63, 64, 65}) : between(1, 70);
                int64_t length = between(1, 300);
                for (int64_t i = 0; i < length; ++i) out.push_back((i / half) % 2 ? b : a);
                break;
            }
            case 3:
                for (int64_t i = between(1, 100); i > 0; --i) out.push_back(pick(values));
                break;
            case 4:
                for (int64_t i = between(1, 50); i > 0; --i) out.push_back(whole_range());
                break;
            default:
                if constexpr (std::is_floating_point_v<T>)
                    out.insert(out.end(), between(1, 80), std::numeric_limits<T>::quiet_NaN());
                else
                    walk(out, between(10, 300), levels, values);
                break;
            }
        }
        out.resize(n);
        return out;
    }

    T whole_range() {
        if constexpr (std::is_integral_v<T>) {
            return static_cast<T>(rng_());
        } else {
            if (chance(16)) return std::numeric_limits<T>::quiet_NaN();
            return static_cast<T>(real(-1e3, 1e3));
        }
    }

private:
    static constexpr int64_t kMin = std::is_integral_v<T> ? int64_t(std::numeric_limits<T>::min()) : 0;
    static constexpr int64_t kMax = std::is_integral_v<T> ? int64_t(std::numeric_limits<T>::max()) : 0;
    static constexpr int64_t kMid = std::is_signed_v<T> ? 0 : (kMax + 1) / 2;

    static T clamp(int64_t v) { return static_cast<T>(std::clamp(v, kMin, kMax)); }

    void walk(std::vector<T>& out, int64_t length, const Levels<T>& levels, const std::vector<T>& values) {
        const Levels<T>& l = levels;
        const std::vector<T> level_values(l.begin(), l.end());
        if constexpr (std::is_integral_v<T>) {
            int64_t lo = *std::min_element(l.begin(), l.end()), hi = *std::max_element(l.begin(), l.end());
            int64_t step = std::max<int64_t>(2, (hi - lo) / 3);
            int64_t x = pick(level_values);
            for (int64_t i = 0; i < length; ++i) {
                x = std::clamp(x + between(-step, step), kMin, kMax);
                if (chance(10)) x = pick(level_values);
                out.push_back(static_cast<T>(x));
            }
        } else {
            double lo = 0, hi = 0;
            bool any_finite = false;
            for (T level : l)
                if (std::isfinite(level)) {
                    lo = any_finite ? std::min(lo, double(level)) : double(level);
                    hi = any_finite ? std::max(hi, double(level)) : double(level);
                    any_finite = true;
                }
            double step = std::max((hi - lo) / 3, 1e-3 * std::max(1.0, std::fabs(lo)));
            double x = lo;
            for (int64_t i = 0; i < length; ++i) {
                x += real(-step, step);
                if (chance(10)) {
                    T snap = pick(values);
                    if (std::isfinite(snap)) x = snap;
                }
                out.push_back(chance(20) ? std::numeric_limits<T>::quiet_NaN() : static_cast<T>(x));
            }
        }
    }

    std::mt19937_64 rng_;
};

} // namespace testing_support
