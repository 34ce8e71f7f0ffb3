// Real transforms through plans: forward (r2c), scaled to amplitudes, and
// inverse (c2r).
#include "arrays.h"

#include <nanobind/stl/string.h>

#include <complex>
#include <vector>

namespace zpy {
namespace {

using nb::arg;

// A plan of one direction, precision and length, made with the backend the
// option flags select at construction.
class Plan {
public:
    Plan(size_t n, const std::string& dtype, bool inverse) : n_(length32(n, "Plan")), inverse_(inverse) {
        if (dtype == "float32") single_ = true;
        else if (dtype != "float64") throw nb::type_error("Plan: dtype is float32 or float64");
        // The aligned stand-ins give the alignment class of the arrays the
        // plan will see (new arrays, 16-byte aligned).
        alignas(64) static double stand_in[8];
        uint32_t bins = n_ / 2 + 1;
        int32_t status = released([&] {
            if (single_)
                return inverse ? zolvex_m_idft_plan_create_c2r_1d_f32(reinterpret_cast<float*>(stand_in), bins,
                                                                      reinterpret_cast<float*>(stand_in), n_, &plan_)
                               : zolvex_m_dft_plan_create_r2c_1d_f32(reinterpret_cast<float*>(stand_in), n_,
                                                                     reinterpret_cast<float*>(stand_in), bins, &plan_);
            return inverse ? zolvex_m_idft_plan_create_c2r_1d_f64(stand_in, bins, stand_in, n_, &plan_)
                           : zolvex_m_dft_plan_create_r2c_1d_f64(stand_in, n_, stand_in, bins, &plan_);
        });
        check(status);
    }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;
    ~Plan() {
        if (plan_ && !library_closed) zolvex_m_dft_plan_destroy(plan_);
    }

    // amplitude: 0 plain, 1 divided by n, 2 one-sided amplitudes.
    nb::object forward(const In& x, int amplitude) {
        if (inverse_) throw nb::value_error("Plan: an inverse plan has no forward transform");
        if (x.size() != n_) throw nb::value_error(("rfft: the plan takes " + std::to_string(n_) + " samples").c_str());
        return single_ ? forward_as<float>(x, amplitude) : forward_as<double>(x, amplitude);
    }

    nb::object inverse(const In& spectrum) {
        if (!inverse_) throw nb::value_error("Plan: a forward plan has no inverse transform");
        if (spectrum.size() != n_ / 2 + 1)
            throw nb::value_error(("irfft: the plan takes " + std::to_string(n_ / 2 + 1) + " bins").c_str());
        return single_ ? inverse_as<float>(spectrum) : inverse_as<double>(spectrum);
    }

    uint32_t size() const { return n_; }

private:
    // The plan's alignment class for `data`, or a copy that has it. The
    // inverse always works on a copy: FFTW's may overwrite its input.
    template <class T> const T* aligned(const T* data, size_t count, std::vector<T>& copy) const {
        if (!inverse_ && zolvex_m_dft_alignment_of(plan_, data) == zolvex_m_dft_alignment_of(plan_, nullptr))
            return data;
        copy.assign(count + 16, T{});
        T* start = copy.data();
        while (zolvex_m_dft_alignment_of(plan_, start) != zolvex_m_dft_alignment_of(plan_, nullptr)) ++start;
        std::memcpy(start, data, count * sizeof(T));
        return start;
    }

    template <class T> nb::object forward_as(const In& x, int amplitude) {
        if (x.dtype() != nb::dtype<T>())
            throw nb::type_error((std::string("rfft: the plan takes ") + dtype_name<T>() + " samples").c_str());
        uint32_t bins = n_ / 2 + 1;
        auto out = new_vector<std::complex<T>>(bins);
        T* o = reinterpret_cast<T*>(out.data());
        std::vector<T> copy;
        check(released([&] {
            const T* in = aligned(data_of<T>(x), n_, copy);
            if constexpr (std::is_same_v<T, float>)
                return amplitude ? zolvex_m_dft_plan_execute_r2c_1d_divn_f32(plan_, in, n_, o, bins, amplitude == 2)
                                 : zolvex_m_dft_plan_execute_r2c_1d_f32(plan_, in, n_, o, bins);
            else
                return amplitude ? zolvex_m_dft_plan_execute_r2c_1d_divn_f64(plan_, in, n_, o, bins, amplitude == 2)
                                 : zolvex_m_dft_plan_execute_r2c_1d_f64(plan_, in, n_, o, bins);
        }));
        return nb::cast(out);
    }

    template <class T> nb::object inverse_as(const In& spectrum) {
        if (spectrum.dtype() != nb::dtype<std::complex<T>>())
            throw nb::type_error((std::string("irfft: the plan takes complex bins of ") + dtype_name<T>()).c_str());
        uint32_t bins = n_ / 2 + 1;
        auto out = new_vector<T>(n_);
        T* o = out.data();
        std::vector<T> copy;
        check(released([&] {
            const T* in = aligned(static_cast<const T*>(spectrum.data()), 2 * size_t{bins}, copy);
            if constexpr (std::is_same_v<T, float>)
                return zolvex_m_idft_plan_execute_c2r_1d_f32(plan_, in, bins, o, n_);
            else
                return zolvex_m_idft_plan_execute_c2r_1d_f64(plan_, in, bins, o, n_);
        }));
        return nb::cast(out);
    }

    uint32_t n_;
    bool inverse_;
    bool single_ = false;
    void* plan_ = nullptr;
};

}  // namespace

void bind_dft(nb::module_& m) {
    nb::class_<Plan>(m, "_Plan")
        .def(nb::init<size_t, const std::string&, bool>(), arg("n"), arg("dtype"), arg("inverse"))
        .def("forward", &Plan::forward, arg("x"), arg("amplitude") = 0)
        .def("inverse", &Plan::inverse, arg("spectrum"))
        .def_prop_ro("n", &Plan::size);
}

}  // namespace zpy
