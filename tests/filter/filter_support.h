#pragma once
// Shared by the filter tests: the scipy reference values (made at build
// time by scipy_reference.py), designing a state from a reference case,
// and reading a state's forms.

#include <gtest/gtest.h>

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

struct Case {
    std::vector<std::string> head;  // kind, then its parameters
    std::map<std::string, std::vector<double>> values;
    double number(size_t i) const { return std::stod(head.at(i)); }
    Roots roots(const std::string& name) const {
        const std::vector<double>& v = values.at(name);
        Roots r;
        for (size_t i = 0; i + 1 < v.size(); i += 2) r.emplace_back(v[i], v[i + 1]);
        return r;
    }
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
    int32_t status = -9;
    Designed() = default;
    Designed(const Designed&) = delete;
    ~Designed() { zolvex_m_filter_state_destroy(state); }
};

// family 0 Butterworth, 1 Chebyshev I (parameter rp), 2 Chebyshev II (rs).
inline void design(int family, uint32_t type, unsigned order, double fs, double f1, double f2, double parameter,
                   Designed& d) {
    switch (family) {
    case 0: d.status = zolvex_m_filter_iir_butterworth(type, order, fs, f1, f2, &d.state); break;
    case 1: d.status = zolvex_m_filter_iir_chebyshev1(type, order, fs, f1, f2, parameter, &d.state); break;
    default: d.status = zolvex_m_filter_iir_chebyshev2(type, order, fs, f1, f2, parameter, &d.state); break;
    }
}

// A "design family type order fs f1 f2 parameter" case.
inline void design(const Case& c, Designed& d) {
    design(int(c.number(1)), uint32_t(c.number(2)), unsigned(c.number(3)), c.number(4), c.number(5), c.number(6),
           c.number(7), d);
}

struct Zpk {
    Roots zeros, poles;
    double gain = 0;
};

inline int32_t get_zpk(zolvex_m_filter_state* state, Zpk& zpk) {
    const double *z = nullptr, *p = nullptr;
    uint32_t nz = 0, np = 0;
    int32_t status = zolvex_m_filter_iir_get_zpk(state, &z, &nz, &p, &np, &zpk.gain);
    for (uint32_t i = 0; i < nz; ++i) zpk.zeros.emplace_back(z[2 * i], z[2 * i + 1]);
    for (uint32_t i = 0; i < np; ++i) zpk.poles.emplace_back(p[2 * i], p[2 * i + 1]);
    return status;
}

inline std::vector<std::vector<double>> get_sos(zolvex_m_filter_state* state) {
    const double* const* rows = nullptr;
    uint32_t count = 0;
    std::vector<std::vector<double>> sections;
    if (zolvex_m_filter_iir_get_sos(state, &rows, &count) == 0)
        for (uint32_t i = 0; i < count; ++i) sections.emplace_back(rows[i], rows[i] + 6);
    return sections;
}

// The signal the reference filtered: exact in binary on both sides.
inline std::vector<double> test_signal(size_t n) {
    std::vector<double> x(n);
    for (size_t k = 0; k < n; ++k) x[k] = double((k * 7919) % 1000) / 500.0 - 1.0;
    return x;
}

inline double largest_magnitude(const std::vector<double>& v) {
    double m = 0;
    for (double x : v) m = std::max(m, std::abs(x));
    return m;
}

} // namespace filter_test
