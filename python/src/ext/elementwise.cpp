// Element-wise arithmetic, elementary functions, integer and bit operations,
// conversions, de-interleaving and the exponential fit.
#include "arrays.h"

#include <complex>

namespace zpy {
namespace {

#define ZPY_FLOATS(name) Overloads{zolvex_m_##name##_f32, zolvex_m_##name##_f64}
#define ZPY_BYTES_WORDS(name) Overloads{zolvex_m_##name##_u8, zolvex_m_##name##_u16}
#define ZPY_MASKS(name) \
    Overloads{zolvex_m_##name##_u8, zolvex_m_##name##_i16, zolvex_m_##name##_u16, zolvex_m_##name##_u32}

using nb::arg;
const auto no_out = arg("out") = nb::none();

template <class Ops>
void def_binary(nb::module_& m, const char* name, Ops ops, const char* first = "x", const char* second = "y") {
    m.def(name, [ops, name](const In& x, const In& y, nb::object out) {
        if (x.dtype() != y.dtype()) throw nb::type_error((std::string(name) + ": both arrays must have one dtype").c_str());
        if (x.size() != y.size()) throw nb::value_error((std::string(name) + ": the arrays differ in length").c_str());
        return map_into(x, out, name, ops, [&](auto fn, auto* xs, auto* o, uint32_t n) {
            return fn(xs, static_cast<decltype(xs)>(y.data()) + (xs - static_cast<decltype(xs)>(x.data())), o, n);
        });
    }, arg(first), arg(second), no_out);
}

template <class Ops> void def_unary(nb::module_& m, const char* name, Ops ops) {
    m.def(name, [ops, name](const In& x, nb::object out) {
        return map_into(x, out, name, ops, [](auto fn, auto* xs, auto* o, uint32_t n) { return fn(xs, o, n); });
    }, arg("x"), no_out);
}

// x with one constant (in the element type): addc, andc, logn's base...
template <class Ops> void def_constant(nb::module_& m, const char* name, Ops ops, const char* constant) {
    m.def(name, [ops, name](const In& x, double c, nb::object out) {
        return map_into(x, out, name, ops, [c](auto fn, auto* xs, auto* o, uint32_t n) {
            return fn(xs, o, n, level_as<std::remove_pointer_t<decltype(o)>>(c));
        });
    }, arg("x"), arg(constant), no_out);
}

template <class Ops> void def_shift(nb::module_& m, const char* name, Ops ops) {
    m.def(name, [ops, name](const In& x, uint32_t shift, nb::object out) {
        return map_into(x, out, name, ops, [shift](auto fn, auto* xs, auto* o, uint32_t n) { return fn(xs, o, n, shift); });
    }, arg("x"), arg("shift"), no_out);
}

template <class T> nb::object convert_to(const In& x, nb::object out) {
    auto body = [&](auto fn, auto s) {
        using S = decltype(s);
        auto [result, o] = result_like<T>(x, out, "convert");
        T* target = o;
        released([&] {
            in_pieces(x.size(), [&](size_t at, uint32_t n) { return fn(data_of<S>(x) + at, target + at, n); });
        });
        return result;
    };
    if constexpr (std::is_same_v<T, float>)
        return Overloads{zolvex_m_convert_i8f32, zolvex_m_convert_i16f32, zolvex_m_convert_i32f32,
                         zolvex_m_convert_i64f32, zolvex_m_convert_u8f32, zolvex_m_convert_u16f32,
                         zolvex_m_convert_u32f32, zolvex_m_convert_u64f32, zolvex_m_convert_f64f32}
            .on(x.dtype(), "convert", body);
    else
        return Overloads{zolvex_m_convert_i8f64, zolvex_m_convert_i16f64, zolvex_m_convert_i32f64,
                         zolvex_m_convert_i64f64, zolvex_m_convert_u8f64, zolvex_m_convert_u16f64,
                         zolvex_m_convert_u32f64, zolvex_m_convert_u64f64, zolvex_m_convert_f32f64}
            .on(x.dtype(), "convert", body);
}

template <class T, class Fn> nb::object magnitude_of(const In& z, Fn fn) {
    auto out = new_array<T>(z.ndim(), reinterpret_cast<const size_t*>(z.shape_ptr()));
    T* o = out.data();
    const T* zs = static_cast<const T*>(z.data());
    released([&] { in_pieces(z.size(), [&](size_t at, uint32_t n) { return fn(zs + 2 * at, o + at, n); }); });
    return nb::cast(out);
}

nb::object magnitude(const In& z) {
    if (z.dtype() == nb::dtype<std::complex<float>>()) return magnitude_of<float>(z, zolvex_m_magnitude_c32f32);
    if (z.dtype() == nb::dtype<std::complex<double>>()) return magnitude_of<double>(z, zolvex_m_magnitude_c64f64);
    throw nb::type_error("magnitude: unsupported dtype; takes complex64, complex128");
}

nb::object sincos(const In& x) {
    return ZPY_FLOATS(sincos).on(x.dtype(), "sincos", [&](auto fn, auto t) {
        using T = decltype(t);
        auto s = like<T>(x);
        auto c = like<T>(x);
        T* so = s.data();
        T* co = c.data();
        released([&] {
            in_pieces(x.size(), [&](size_t at, uint32_t n) { return fn(data_of<T>(x) + at, so + at, co + at, n); });
        });
        return nb::object(nb::make_tuple(s, c));
    });
}

// numpy.unwrap's result, block after block with the same Unwrap.
struct Unwrap {
    ZolvexMUnwrapState state{};
    nb::object operator()(const In& x) {
        return map_into(x, nb::none(), "unwrap", ZPY_FLOATS(unwrap), [this](auto fn, auto* xs, auto* o, uint32_t n) {
            return fn(xs, o, n, &state);
        });
    }
};

// (channels, frames) from interleaved samples; an incomplete last frame is
// left out.
nb::object deinterleave(const In& buffer, uint32_t channels) {
    if (channels == 0) throw nb::value_error("deinterleave: channels must be at least 1");
    size_t width = buffer.itemsize();
    if (buffer.dtype().code == static_cast<uint8_t>(nb::dlpack::dtype_code::Complex))
        throw nb::type_error("deinterleave: takes integer and floating-point samples");
    size_t frames = buffer.size() / channels;
    uint32_t count = length32(frames, "deinterleave");
    size_t shape[2] = {channels, frames};
    auto result = new_typed(buffer.dtype(), 2, shape);
    auto* target = static_cast<uint8_t*>(result.data());
    released([&] {
        for (uint32_t c = 0; c < channels; ++c)
            check(zolvex_m_deinterleave(buffer.data(), c, channels, count, static_cast<uint32_t>(width),
                                        target + c * frames * width));
    });
    return nb::cast(result);
}

nb::object fit_exp(const In& y) {
    if (y.dtype() != nb::dtype<double>()) throw nb::type_error("fit_exp: unsupported dtype; takes float64");
    double a = 0, b = 0;
    uint32_t n = length32(y.size(), "fit_exp");
    check(released([&] { return zolvex_m_fit_exp_f64(data_of<double>(y), n, &a, &b); }));
    return nb::make_tuple(a, b);
}

}  // namespace

void bind_elementwise(nb::module_& m) {
    def_binary(m, "add", ZPY_FLOATS(add));
    def_binary(m, "sub", ZPY_FLOATS(sub));
    def_binary(m, "mul", ZPY_FLOATS(mul));
    def_binary(m, "div", ZPY_FLOATS(div));
    def_binary(m, "pow", ZPY_FLOATS(pow));
    def_binary(m, "hypot", ZPY_FLOATS(hypot));
    def_binary(m, "atan2", ZPY_FLOATS(atan2), "y", "x");  // numpy.arctan2's order
#define ZPY_UNARY(name) def_unary(m, #name, ZPY_FLOATS(name));
    ZPY_UNARY(abs) ZPY_UNARY(sin) ZPY_UNARY(cos) ZPY_UNARY(tan) ZPY_UNARY(asin) ZPY_UNARY(acos)
    ZPY_UNARY(atan) ZPY_UNARY(sinh) ZPY_UNARY(cosh) ZPY_UNARY(tanh) ZPY_UNARY(asinh) ZPY_UNARY(acosh)
    ZPY_UNARY(atanh) ZPY_UNARY(exp) ZPY_UNARY(exp2) ZPY_UNARY(log) ZPY_UNARY(log2) ZPY_UNARY(log10)
    ZPY_UNARY(sqrt) ZPY_UNARY(cbrt) ZPY_UNARY(erf) ZPY_UNARY(pow2)
#undef ZPY_UNARY
#define ZPY_CONSTANT(name) def_constant(m, #name, ZPY_FLOATS(name), "c");
    ZPY_CONSTANT(addc) ZPY_CONSTANT(subc) ZPY_CONSTANT(csub) ZPY_CONSTANT(mulc) ZPY_CONSTANT(divc)
    ZPY_CONSTANT(cdiv) ZPY_CONSTANT(modc)
#undef ZPY_CONSTANT
    def_constant(m, "logn", ZPY_FLOATS(logn), "base");
    def_constant(m, "andc", ZPY_MASKS(andc), "mask");
    def_constant(m, "bit_mask_set", ZPY_MASKS(bit_mask_set), "mask");
    def_constant(m, "bit_mask_test", ZPY_MASKS(bit_mask_test), "mask");
    def_shift(m, "shl", ZPY_BYTES_WORDS(shl));
    def_shift(m, "shr", ZPY_BYTES_WORDS(shr));

    m.def("mulc_addc", [](const In& x, double mul, double add, nb::object out) {
        return map_into(x, out, "mulc_addc", ZPY_FLOATS(mulc_addc), [=](auto fn, auto* xs, auto* o, uint32_t n) {
            using T = std::remove_pointer_t<decltype(o)>;
            return fn(xs, o, n, static_cast<T>(mul), static_cast<T>(add));
        });
    }, arg("x"), arg("mul"), arg("add"), no_out);
    m.def("clip", [](const In& x, double low, double high, nb::object out) {
        auto ops = Overloads{zolvex_m_clip_u8, zolvex_m_clip_i16, zolvex_m_clip_u16, zolvex_m_clip_u32,
                             zolvex_m_clip_f32, zolvex_m_clip_f64};
        return map_into(x, out, "clip", ops, [=](auto fn, auto* xs, auto* o, uint32_t n) {
            using T = std::remove_pointer_t<decltype(o)>;
            return fn(xs, o, n, level_as<T>(low), level_as<T>(high));
        });
    }, arg("x"), arg("low"), arg("high"), no_out);
    m.def("shr_clip", [](const In& x, uint32_t shift, double low, double high, nb::object out) {
        return map_into(x, out, "shr_clip", ZPY_BYTES_WORDS(shr_clip), [=](auto fn, auto* xs, auto* o, uint32_t n) {
            using T = std::remove_pointer_t<decltype(o)>;
            return fn(xs, o, n, shift, level_as<T>(low), level_as<T>(high));
        });
    }, arg("x"), arg("shift"), arg("low"), arg("high"), no_out);

    m.def("to_float32", &convert_to<float>, arg("x"), no_out);
    m.def("to_float64", &convert_to<double>, arg("x"), no_out);
    m.def("magnitude", &magnitude, arg("z"));
    m.def("sincos", &sincos, arg("x"));
    nb::class_<Unwrap>(m, "Unwrap").def(nb::init<>()).def("__call__", &Unwrap::operator(), arg("x"));
    m.def("deinterleave", &deinterleave, arg("buffer"), arg("channels"));
    m.def("fit_exp", &fit_exp, arg("y"));
}

}  // namespace zpy
