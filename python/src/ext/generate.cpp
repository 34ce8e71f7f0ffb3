// Noise, windows and periodic waveforms.
#include "arrays.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>

#include <map>
#include <optional>

namespace zpy {
namespace {

using nb::arg;

#define ZPY_SAMPLES(name) \
    Overloads{zolvex_m_##name##_u8, zolvex_m_##name##_i16, zolvex_m_##name##_u16, zolvex_m_##name##_f32, zolvex_m_##name##_f64}

nb::dlpack::dtype sample_dtype(const std::string& name) {
    if (name == "uint8") return nb::dtype<uint8_t>();
    if (name == "int16") return nb::dtype<int16_t>();
    if (name == "uint16") return nb::dtype<uint16_t>();
    if (name == "float32") return nb::dtype<float>();
    if (name == "float64") return nb::dtype<double>();
    throw nb::type_error(("unsupported dtype " + name + "; takes uint8, int16, uint16, float32, float64").c_str());
}

// A new array of count samples filled by fill(fn, out, n), one call.
template <class Ops, class Fill>
nb::object generated(const Ops& ops, const std::string& dtype, size_t count, const char* what, Fill&& fill) {
    uint32_t n = length32(count, what);
    return ops.on(sample_dtype(dtype), what, [&](auto fn, auto t) {
        using T = decltype(t);
        auto out = new_vector<T>(count);
        T* o = out.data();
        check(released([&] { return fill(fn, o, n); }));
        return nb::cast(out);
    });
}

nb::object noise(size_t count, double low, double high, const std::string& dtype, std::optional<uint32_t> seed) {
    return generated(ZPY_SAMPLES(waveform_noise), dtype, count, "noise", [&](auto fn, auto* o, uint32_t n) {
        using T = std::remove_pointer_t<decltype(o)>;
        return fn(o, n, level_as<T>(low), level_as<T>(high), seed ? &*seed : nullptr);
    });
}

// Adds clipped uniform noise to x in place.
void add_noise(Any x, double amplitude, double low, double high, std::optional<uint32_t> seed) {
    ZPY_SAMPLES(add_noise).on(x.dtype(), "add_noise", [&](auto fn, auto t) {
        using T = decltype(t);
        T* data = checked_out<T>(x, x.size(), "add_noise");
        uint32_t n = length32(x.size(), "add_noise");
        check(released([&] {
            return fn(data, n, level_as<T>(amplitude), level_as<T>(low), level_as<T>(high), seed ? &*seed : nullptr);
        }));
        return nb::object();
    });
}

nb::object window(const std::string& name, const In& x, bool scale, nb::object out) {
    using Window = Overloads<int32_t (*)(const float*, float*, uint32_t, uint8_t),
                             int32_t (*)(const double*, double*, uint32_t, uint8_t)>;
    static const std::map<std::string, Window> windows = {
#define ZPY_WINDOW(w) {#w, Window{zolvex_m_window_##w##_f32, zolvex_m_window_##w##_f64}}
        ZPY_WINDOW(hanning), ZPY_WINDOW(hamming), ZPY_WINDOW(blackman), ZPY_WINDOW(nuttall),
        ZPY_WINDOW(blackmanharris), ZPY_WINDOW(blackmannuttall), ZPY_WINDOW(flattop), ZPY_WINDOW(welch),
        ZPY_WINDOW(bartlett), ZPY_WINDOW(gaussian), ZPY_WINDOW(parzen),
#undef ZPY_WINDOW
    };
    const Window& kernels = named(windows, name, "window");
    // The window spans the whole array: one call, not pieces.
    length32(x.size(), "window");
    return map_into(x, out, "window", kernels, [scale](auto fn, auto* xs, auto* o, uint32_t n) {
        return fn(xs, o, n, scale ? 1 : 0);
    });
}

#define ZPY_WAVE(name) \
    Overloads{zolvex_m_waveform_##name##_u8, zolvex_m_waveform_##name##_i16, zolvex_m_waveform_##name##_u16, \
              zolvex_m_waveform_##name##_f32, zolvex_m_waveform_##name##_f64}

nb::object waveform(const std::string& shape, size_t count, double amplitude, double offset, double frequency,
                    double phase, double duty, uint64_t start, const std::string& dtype) {
    auto periodic = [&](auto fn, auto* o, uint32_t n) { return fn(o, n, amplitude, offset, frequency, phase, start); };
    if (shape == "cosine") return generated(ZPY_WAVE(cosine), dtype, count, "waveform", periodic);
    if (shape == "triangle") return generated(ZPY_WAVE(triangle), dtype, count, "waveform", periodic);
    if (shape == "square")
        return generated(ZPY_WAVE(square), dtype, count, "waveform", [&](auto fn, auto* o, uint32_t n) {
            return fn(o, n, amplitude, offset, frequency, phase, duty, start);
        });
    throw nb::value_error("waveform: shape is one of cosine, square, triangle");
}

}  // namespace

void bind_generate(nb::module_& m) {
    m.def("_noise", &noise, arg("count"), arg("low"), arg("high"), arg("dtype"), arg("seed").none());
    m.def("add_noise", &add_noise, arg("x"), arg("amplitude"), arg("low"), arg("high"), arg("seed").none() = nb::none());
    m.def("window", &window, arg("name"), arg("x"), arg("scale") = false, arg("out") = nb::none());
    m.def("_waveform", &waveform, arg("shape"), arg("count"), arg("amplitude"), arg("offset"), arg("frequency"),
          arg("phase"), arg("duty"), arg("start"), arg("dtype"));
}

}  // namespace zpy
