#pragma once
// Shared by the filter tests: the scipy reference values (made at build
// time by scipy_reference.py), designing a state from a reference case,
// and reading a state's forms.

#include <complex>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "zolvex_m.h"

namespace filter_test {

using Complex = std::complex<double>;
using Roots = std::vector<Complex>;

// Interleaved real, imaginary pairs as complex values.
inline Roots as_complex(const double* v, size_t n) {
    Roots r;
    for (size_t i = 0; i < n; ++i) r.emplace_back(v[2 * i], v[2 * i + 1]);
    return r;
}

struct Case {
    std::vector<std::string> head;  // kind, then its parameters
    std::map<std::string, std::vector<double>> values;
    double number(size_t i) const { return std::stod(head.at(i)); }
    Roots roots(const std::string& name) const { return as_complex(values.at(name).data(), values.at(name).size() / 2); }
};

inline const std::vector<Case>& reference() {
    static const std::vector<Case> cases = [] {
        std::vector<Case> read;
        std::ifstream file(ZOLVEX_M_FILTER_REFERENCE);
        for (std::string text, word; std::getline(file, text);) {
            std::istringstream line(text);
            line >> word;
            if (word == "case") {
                read.emplace_back();
                while (line >> word) read.back().head.push_back(word);
            } else {
                std::vector<double>& values = read.back().values[word];
                while (line >> text) values.push_back(std::strtod(text.c_str(), nullptr));
            }
        }
        return read;
    }();
    return cases;
}

// Owns a designed state.
struct Designed {
    zolvex_m_filter_state* state = nullptr;
    ~Designed() { zolvex_m_filter_state_destroy(state); }
};

// family 0 Butterworth, 1 Chebyshev I (parameter rp), 2 Chebyshev II (rs).
inline int32_t design(int family, uint32_t type, unsigned order, double fs, double f1, double f2, double parameter,
                      zolvex_m_filter_state** state) {
    switch (family) {
    case 0: return zolvex_m_filter_iir_butterworth(type, uint8_t(order), fs, f1, f2, state);
    case 1: return zolvex_m_filter_iir_chebyshev1(type, uint8_t(order), fs, f1, f2, parameter, state);
    default: return zolvex_m_filter_iir_chebyshev2(type, uint8_t(order), fs, f1, f2, parameter, state);
    }
}

// A "design family type order fs f1 f2 parameter" case.
inline int32_t design(const Case& c, zolvex_m_filter_state** state) {
    return design(int(c.number(1)), uint32_t(c.number(2)), unsigned(c.number(3)), c.number(4), c.number(5),
                  c.number(6), c.number(7), state);
}

inline std::vector<std::vector<double>> get_sos(zolvex_m_filter_state* state) {
    const double* const* rows = nullptr;
    uint32_t count = 0;
    std::vector<std::vector<double>> sections;
    if (zolvex_m_filter_iir_get_sos(state, &rows, &count) == 0)
        for (uint32_t i = 0; i < count; ++i) sections.emplace_back(rows[i], rows[i] + 6);
    return sections;
}

template <class T>
int32_t execute(const T* in, T* out, uint32_t n, zolvex_m_filter_state* s) {
    if constexpr (sizeof(T) == 4) return zolvex_m_filter_execute_f32(in, out, n, s);
    else return zolvex_m_filter_execute_f64(in, out, n, s);
}

} // namespace filter_test
