// IIR filter designs: their descriptions, responses and execution.
#include "arrays.h"

#include <complex>

namespace zpy {
namespace {

using nb::arg;

class Filter {
public:
    explicit Filter(zolvex_m_filter_state* state) : state_(state) {}
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;
    ~Filter() {
        if (!library_closed) zolvex_m_filter_state_destroy(state_);
    }

    nb::object zpk() const {
        const double *zeros = nullptr, *poles = nullptr;
        uint32_t zero_count = 0, pole_count = 0;
        double gain = 0;
        check(zolvex_m_filter_iir_get_zpk(state_, &zeros, &zero_count, &poles, &pole_count, &gain));
        return nb::make_tuple(complex_copy(zeros, zero_count), complex_copy(poles, pole_count), gain);
    }

    nb::object tf() const {
        const double *b = nullptr, *a = nullptr;
        uint32_t length = 0;
        check(zolvex_m_filter_iir_get_tf(state_, &b, &a, &length));
        return nb::make_tuple(copy(b, length), copy(a, length));
    }

    nb::object sos() const {
        const double* const* rows = nullptr;
        uint32_t count = 0;
        check(zolvex_m_filter_iir_get_sos(state_, &rows, &count));
        size_t shape[2] = {count, 6};
        auto out = new_array<double>(2, shape);
        for (uint32_t r = 0; r < count; ++r) std::memcpy(out.data() + 6 * r, rows[r], 6 * sizeof(double));
        return nb::cast(out);
    }

    // (frequencies, complex response) at n points.
    nb::object freqz(uint32_t n, double fs, bool whole, bool logarithmic, bool from_zpk) const {
        auto frequencies = new_vector<double>(n);
        auto response = new_vector<std::complex<double>>(n);
        double* f = frequencies.data();
        auto* h = reinterpret_cast<double*>(response.data());
        check(released([&] {
            return from_zpk ? zolvex_m_filter_iir_freqz_zpk(state_, n, fs, whole, logarithmic, f, h)
                            : zolvex_m_filter_iir_freqz(state_, n, fs, whole, logarithmic, f, h);
        }));
        return nb::make_tuple(frequencies, response);
    }

    bool isstable() const {
        bool stable = false;
        check(zolvex_m_filter_iir_isstable(state_, &stable));
        return stable;
    }

    // Filters a block, continuing from the previous one (delay line kept).
    nb::object filter(const In& x, nb::object out) {
        if (busy_) throw nb::value_error("Filter.filter: the filter is in use by another thread");
        busy_ = true;
        struct Done { bool& flag; ~Done() { flag = false; } } done{busy_};
        return map_into(x, out, "Filter.filter", Overloads{zolvex_m_filter_execute_f32, zolvex_m_filter_execute_f64},
                        [this](auto fn, auto* xs, auto* o, uint32_t n) { return fn(xs, o, n, state_); });
    }

    void reset(bool steady_state) { zolvex_m_filter_reset_delay_line(state_, steady_state); }

private:
    static nb::object copy(const double* data, uint32_t count) {
        auto out = new_vector<double>(count);
        if (count) std::memcpy(out.data(), data, count * sizeof(double));
        return nb::cast(out);
    }
    static nb::object complex_copy(const double* pairs, uint32_t count) {
        auto out = new_vector<std::complex<double>>(count);
        if (count) std::memcpy(out.data(), pairs, 2 * count * sizeof(double));
        return nb::cast(out);
    }

    zolvex_m_filter_state* state_;
    bool busy_ = false;
};

template <class Design> Filter* designed(Design&& design) {
    zolvex_m_filter_state* state = nullptr;
    check(design(&state));
    return new Filter(state);
}

}  // namespace

void bind_filter(nb::module_& m) {
    nb::class_<Filter>(m, "_Filter")
        .def("zpk", &Filter::zpk)
        .def("tf", &Filter::tf)
        .def("sos", &Filter::sos)
        .def("freqz", &Filter::freqz, arg("n"), arg("fs"), arg("whole") = false, arg("logarithmic") = false,
             arg("from_zpk") = false)
        .def("isstable", &Filter::isstable)
        .def("filter", &Filter::filter, arg("x"), arg("out") = nb::none())
        .def("reset", &Filter::reset, arg("steady_state") = false);
    auto policy = nb::rv_policy::take_ownership;
    m.def("_butterworth", [](uint32_t type, uint8_t order, double fs, double f1, double f2) {
        return designed([&](auto** s) { return zolvex_m_filter_iir_butterworth(type, order, fs, f1, f2, s); });
    }, policy);
    m.def("_chebyshev1", [](uint32_t type, uint8_t order, double fs, double f1, double f2, double rp) {
        return designed([&](auto** s) { return zolvex_m_filter_iir_chebyshev1(type, order, fs, f1, f2, rp, s); });
    }, policy);
    m.def("_chebyshev2", [](uint32_t type, uint8_t order, double fs, double f1, double f2, double rs) {
        return designed([&](auto** s) { return zolvex_m_filter_iir_chebyshev2(type, order, fs, f1, f2, rs, s); });
    }, policy);
    m.def("_notch", [](double fs, double f0, double bandwidth) {
        return designed([&](auto** s) { return zolvex_m_filter_iir_notch(fs, f0, bandwidth, s); });
    }, policy);
    m.def("_peak", [](double fs, double f0, double bandwidth) {
        return designed([&](auto** s) { return zolvex_m_filter_iir_peak(fs, f0, bandwidth, s); });
    }, policy);
}

}  // namespace zpy
