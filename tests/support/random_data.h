#pragma once
// Random test vectors, reproducible from a seed.

#include <cstdint>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace testing_support {

// Values spread over the whole range of an integer type; for floating
// types a mix of ordinary magnitudes, zeros of both signs, infinities, NaN
// and subnormals.
template <class T>
std::vector<T> random_vector(size_t n, uint32_t seed) {
    std::mt19937_64 rng(seed);
    std::vector<T> v(n);
    if constexpr (std::is_integral_v<T>) {
        // Random bits cover the whole range of any integer type.
        for (auto& x : v) x = static_cast<T>(rng());
    } else {
        std::uniform_real_distribution<double> value(-1e3, 1e3);
        std::uniform_int_distribution<int> special(0, 63);
        for (auto& x : v) {
            switch (special(rng)) {
            case 0: x = T(0); break;
            case 1: x = -T(0); break;
            case 2: x = std::numeric_limits<T>::infinity(); break;
            case 3: x = -std::numeric_limits<T>::infinity(); break;
            case 4: x = std::numeric_limits<T>::quiet_NaN(); break;
            case 5: x = std::numeric_limits<T>::denorm_min() * T(7); break;
            default: x = static_cast<T>(value(rng)); break;
            }
        }
    }
    return v;
}

// Bit-exact comparison that treats two NaNs with the same bits as equal.
template <class T>
bool same_bits(T a, T b) {
    static_assert(std::is_trivially_copyable_v<T>);
    return __builtin_memcmp(&a, &b, sizeof(T)) == 0;
}

// A sample as text for a failure message: integers as numbers (not as
// characters), floating values with every digit they need.
template <class T>
std::string show(T x) {
    if constexpr (std::is_integral_v<T>) {
        return std::to_string(static_cast<int64_t>(x));
    } else {
        std::ostringstream out;
        out << std::setprecision(std::numeric_limits<T>::max_digits10) << x;
        return out.str();
    }
}

} // namespace testing_support
