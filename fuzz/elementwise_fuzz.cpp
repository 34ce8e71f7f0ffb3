// Element-wise functions (arithmetic, conversions, shifts, bit operations,
// clipping, elementary functions, unwrap) in every kernel regime against the
// generic kernel: the same bits (any NaN for a NaN), except where the header
// allows the fused kernels (AVX2 and wider) another last bit. Each call also
// in place (out = x) against out of place, and the integer operations
// against their plain rules.

#include <algorithm>
#include <bit>
#include <functional>

#include "fuzz_support.h"

namespace {

struct Input {
    std::vector<uint8_t> x, y;  // raw bytes for the first and second operand
    double c[2];
    uint32_t k[2];
};

struct Output {
    std::vector<uint8_t> bytes;
    int float_size;  // 4 or 8 when the elements are floating point, else 0
};

template <class T>
std::vector<T> as(const std::vector<uint8_t>& raw, size_t n) {
    std::vector<T> out(n);
    if (n) std::memcpy(out.data(), raw.data(), std::min(raw.size(), n * sizeof(T)));
    return out;
}

template <class O>
Output bytes_of(const std::vector<O>& v) {
    Output out{std::vector<uint8_t>(v.size() * sizeof(O)), std::is_floating_point_v<O> ? int(sizeof(O)) : 0};
    if (!v.empty()) std::memcpy(out.bytes.data(), v.data(), out.bytes.size());
    return out;
}

template <class X>
size_t count_of(const Input& in) {
    return in.x.size() / sizeof(X);
}

// out = f(x), and the same call in place where the types allow it.
template <class X, class O, class Call>
std::function<Output(const Input&)> one(Call call) {
    return [call](const Input& in) {
        const size_t n = count_of<X>(in);
        std::vector<X> x = as<X>(in.x, n);
        std::vector<O> out(n);
        fuzz::check(call(x.data(), out.data(), uint32_t(n), in) == 0, "status");
        if constexpr (std::is_same_v<X, O>) {
            call(x.data(), x.data(), uint32_t(n), in);
            fuzz::check(fuzz::same_values(x, out), "in place against out of place");
        }
        return bytes_of(out);
    };
}
template <class X, class O, class F>
std::function<Output(const Input&)> unary(F f) {
    return one<X, O>([f](const X* x, O* out, uint32_t n, const Input&) { return f(x, out, n); });
}
template <class X, class F>
std::function<Output(const Input&)> binary(F f) {
    return one<X, X>([f](const X* x, X* out, uint32_t n, const Input& in) {
        std::vector<X> y = as<X>(in.y, n);
        return f(x, y.data(), out, n);
    });
}
template <class X, class F>
std::function<Output(const Input&)> constant(F f) {
    return one<X, X>([f](const X* x, X* out, uint32_t n, const Input& in) { return f(x, out, n, X(in.c[0])); });
}
template <class X, class F>
std::function<Output(const Input&)> raw_constant(F f) {
    return one<X, X>([f](const X* x, X* out, uint32_t n, const Input& in) { return f(x, out, n, X(in.k[0])); });
}
template <class X, class F>
std::function<Output(const Input&)> shift(F f) {
    return one<X, X>([f](const X* x, X* out, uint32_t n, const Input& in) { return f(x, out, n, in.k[0] % 40); });
}

// Integer operations against their plain loops.
template <class X, class F, class Rule>
std::function<Output(const Input&)> ruled(F f, Rule rule) {
    return one<X, X>([f, rule](const X* x, X* out, uint32_t n, const Input& in) {
        std::vector<X> expected(x, x + n);
        for (X& v : expected) v = rule(v, in);
        int32_t status = f(x, out, n, in);
        fuzz::check(std::equal(expected.begin(), expected.end(), out), "integer operation against its rule");
        return status;
    });
}
template <class X>
X shifted_right(X v, uint32_t s) {
    return s >= sizeof(X) * 8 ? X(0) : X(v >> s);
}
template <class X>
auto shr_clip(int32_t (*f)(const X*, X*, uint32_t, uint32_t, X, X)) {
    return ruled<X>([f](const X* x, X* o, uint32_t n, const Input& in) { return f(x, o, n, in.k[0] % 40, X(in.k[1]), X(in.k[1] >> 16)); },
                    [](X v, const Input& in) {
                        X low = X(in.k[1]), high = X(in.k[1] >> 16);
                        return std::min(std::max(shifted_right(v, in.k[0] % 40), low), high);
                    });
}
template <class X>
auto clip(int32_t (*f)(const X*, X*, uint32_t, X, X)) {
    return ruled<X>([f](const X* x, X* o, uint32_t n, const Input& in) { return f(x, o, n, X(in.k[0]), X(in.k[1])); },
                    [](X v, const Input& in) {
                        v = v < X(in.k[0]) ? X(in.k[0]) : v;
                        return v > X(in.k[1]) ? X(in.k[1]) : v;
                    });
}

// fused: AVX2 and wider may differ in the last bit. single_rounding: AVX2 and
// wider round a * x + b once, which under cancellation may differ from the
// twice-rounded result by any number of ulps; they agree among themselves.
enum class Agreement { exact, fused, single_rounding };

struct Op {
    Agreement agreement;
    std::function<Output(const Input&)> run;
};

#define UNARY_FLOAT(name) {Agreement::fused, unary<float, float>(zolvex_m_##name##_f32)}, \
                          {Agreement::fused, unary<double, double>(zolvex_m_##name##_f64)}
#define BINARY_FLOAT(name, agreement) {agreement, binary<float>(zolvex_m_##name##_f32)}, \
                                      {agreement, binary<double>(zolvex_m_##name##_f64)}
#define CONSTANT_FLOAT(name) {Agreement::exact, constant<float>(zolvex_m_##name##_f32)}, \
                             {Agreement::exact, constant<double>(zolvex_m_##name##_f64)}
#define CONVERT(from, to, t) {Agreement::exact, unary<from, t>(zolvex_m_convert_##to)}

const std::vector<Op>& ops() {
    static const std::vector<Op> list = {
        BINARY_FLOAT(add, Agreement::exact), BINARY_FLOAT(sub, Agreement::exact), BINARY_FLOAT(mul, Agreement::exact),
        BINARY_FLOAT(div, Agreement::exact), BINARY_FLOAT(pow, Agreement::fused), BINARY_FLOAT(hypot, Agreement::fused),
        BINARY_FLOAT(atan2, Agreement::fused),
        CONSTANT_FLOAT(addc), CONSTANT_FLOAT(subc), CONSTANT_FLOAT(csub), CONSTANT_FLOAT(mulc), CONSTANT_FLOAT(divc),
        CONSTANT_FLOAT(cdiv), CONSTANT_FLOAT(modc),
        {Agreement::exact, constant<float>(zolvex_m_logn_f32)}, {Agreement::exact, constant<double>(zolvex_m_logn_f64)},
        {Agreement::single_rounding, one<float, float>([](const float* x, float* o, uint32_t n, const Input& in) {
             return zolvex_m_mulc_addc_f32(x, o, n, float(in.c[0]), float(in.c[1])); })},
        {Agreement::single_rounding, one<double, double>([](const double* x, double* o, uint32_t n, const Input& in) {
             return zolvex_m_mulc_addc_f64(x, o, n, in.c[0], in.c[1]); })},
        {Agreement::exact, unary<float, float>(zolvex_m_abs_f32)}, {Agreement::exact, unary<double, double>(zolvex_m_abs_f64)},
        {Agreement::exact, unary<float, float>(zolvex_m_sqrt_f32)}, {Agreement::exact, unary<double, double>(zolvex_m_sqrt_f64)},
        {Agreement::exact, unary<float, float>(zolvex_m_pow2_f32)}, {Agreement::exact, unary<double, double>(zolvex_m_pow2_f64)},
        UNARY_FLOAT(sin), UNARY_FLOAT(cos), UNARY_FLOAT(tan), UNARY_FLOAT(asin), UNARY_FLOAT(acos), UNARY_FLOAT(atan),
        UNARY_FLOAT(sinh), UNARY_FLOAT(cosh), UNARY_FLOAT(tanh), UNARY_FLOAT(asinh), UNARY_FLOAT(acosh),
        UNARY_FLOAT(atanh), UNARY_FLOAT(exp), UNARY_FLOAT(exp2), UNARY_FLOAT(log), UNARY_FLOAT(log2),
        UNARY_FLOAT(log10), UNARY_FLOAT(cbrt), UNARY_FLOAT(erf),
        {Agreement::fused, one<float, float>([](const float* x, float* o, uint32_t n, const Input&) {
             const int32_t status = n / 2 ? zolvex_m_magnitude_c32f32(x, o, n / 2) : 0;
             if (o != x) std::copy(x + n / 2, x + n, o + n / 2);  // as in place: the rest of x stays
             return status; })},
        {Agreement::fused, one<double, double>([](const double* x, double* o, uint32_t n, const Input&) {
             const int32_t status = n / 2 ? zolvex_m_magnitude_c64f64(x, o, n / 2) : 0;
             if (o != x) std::copy(x + n / 2, x + n, o + n / 2);  // as in place: the rest of x stays
             return status; })},
        CONVERT(int8_t, i8f32, float), CONVERT(int16_t, i16f32, float), CONVERT(int32_t, i32f32, float),
        CONVERT(int64_t, i64f32, float), CONVERT(uint8_t, u8f32, float), CONVERT(uint16_t, u16f32, float),
        CONVERT(uint32_t, u32f32, float), CONVERT(uint64_t, u64f32, float), CONVERT(int8_t, i8f64, double),
        CONVERT(int16_t, i16f64, double), CONVERT(int32_t, i32f64, double), CONVERT(int64_t, i64f64, double),
        CONVERT(uint8_t, u8f64, double), CONVERT(uint16_t, u16f64, double), CONVERT(uint32_t, u32f64, double),
        CONVERT(uint64_t, u64f64, double), CONVERT(float, f32f64, double), CONVERT(double, f64f32, float),
        {Agreement::exact, shr_clip<uint8_t>(zolvex_m_shr_clip_u8)},
        {Agreement::exact, shr_clip<uint16_t>(zolvex_m_shr_clip_u16)},
        {Agreement::exact, ruled<uint8_t>([](const uint8_t* x, uint8_t* o, uint32_t n, const Input& in) { return zolvex_m_shr_u8(x, o, n, in.k[0] % 40); },
                                          [](uint8_t v, const Input& in) { return shifted_right(v, in.k[0] % 40); })},
        {Agreement::exact, ruled<uint16_t>([](const uint16_t* x, uint16_t* o, uint32_t n, const Input& in) { return zolvex_m_shr_u16(x, o, n, in.k[0] % 40); },
                                           [](uint16_t v, const Input& in) { return shifted_right(v, in.k[0] % 40); })},
        {Agreement::exact, ruled<uint8_t>([](const uint8_t* x, uint8_t* o, uint32_t n, const Input& in) { return zolvex_m_shl_u8(x, o, n, in.k[0] % 40); },
                                          [](uint8_t v, const Input& in) { return in.k[0] % 40 >= 8 ? uint8_t(0) : uint8_t(v << (in.k[0] % 40)); })},
        {Agreement::exact, ruled<uint16_t>([](const uint16_t* x, uint16_t* o, uint32_t n, const Input& in) { return zolvex_m_shl_u16(x, o, n, in.k[0] % 40); },
                                           [](uint16_t v, const Input& in) { return in.k[0] % 40 >= 16 ? uint16_t(0) : uint16_t(v << (in.k[0] % 40)); })},
        {Agreement::exact, raw_constant<uint8_t>(zolvex_m_andc_u8)}, {Agreement::exact, raw_constant<int16_t>(zolvex_m_andc_i16)},
        {Agreement::exact, raw_constant<uint16_t>(zolvex_m_andc_u16)}, {Agreement::exact, raw_constant<uint32_t>(zolvex_m_andc_u32)},
        {Agreement::exact, raw_constant<uint8_t>(zolvex_m_bit_mask_set_u8)}, {Agreement::exact, raw_constant<int16_t>(zolvex_m_bit_mask_set_i16)},
        {Agreement::exact, raw_constant<uint16_t>(zolvex_m_bit_mask_set_u16)}, {Agreement::exact, raw_constant<uint32_t>(zolvex_m_bit_mask_set_u32)},
        {Agreement::exact, raw_constant<uint8_t>(zolvex_m_bit_mask_test_u8)}, {Agreement::exact, raw_constant<int16_t>(zolvex_m_bit_mask_test_i16)},
        {Agreement::exact, raw_constant<uint16_t>(zolvex_m_bit_mask_test_u16)}, {Agreement::exact, raw_constant<uint32_t>(zolvex_m_bit_mask_test_u32)},
        {Agreement::exact, clip<uint8_t>(zolvex_m_clip_u8)}, {Agreement::exact, clip<int16_t>(zolvex_m_clip_i16)},
        {Agreement::exact, clip<uint16_t>(zolvex_m_clip_u16)}, {Agreement::exact, clip<uint32_t>(zolvex_m_clip_u32)},
        {Agreement::exact, one<float, float>([](const float* x, float* o, uint32_t n, const Input& in) {
             return zolvex_m_clip_f32(x, o, n, float(in.c[0]), float(in.c[1])); })},
        {Agreement::exact, one<double, double>([](const double* x, double* o, uint32_t n, const Input& in) {
             return zolvex_m_clip_f64(x, o, n, in.c[0], in.c[1]); })},
    };
    return list;
}

// Distance in units in the last place, NaNs equal to each other.
template <class F>
uint64_t ulps(F a, F b) {
    if (std::isnan(a) && std::isnan(b)) return 0;
    if (std::isnan(a) || std::isnan(b)) return ~uint64_t(0);
    using I = std::conditional_t<sizeof(F) == 4, int32_t, int64_t>;
    auto ordered = [](F v) {
        I i = std::bit_cast<I>(v);
        return i < 0 ? int64_t(std::numeric_limits<I>::min()) - int64_t(i) : int64_t(i);
    };
    int64_t d = ordered(a) - ordered(b);
    return d < 0 ? uint64_t(-d) : uint64_t(d);
}

uint64_t largest_distance(const Output& a, const Output& b) {
    fuzz::check(a.bytes.size() == b.bytes.size(), "output sizes");
    uint64_t worst = 0;
    for (size_t i = 0; i < a.bytes.size(); i += a.float_size ? a.float_size : a.bytes.size()) {
        uint64_t d;
        if (a.float_size == 4) {
            float x, y;
            std::memcpy(&x, &a.bytes[i], 4), std::memcpy(&y, &b.bytes[i], 4);
            d = ulps(x, y);
        } else if (a.float_size == 8) {
            double x, y;
            std::memcpy(&x, &a.bytes[i], 8), std::memcpy(&y, &b.bytes[i], 8);
            d = ulps(x, y);
        } else {
            d = a.bytes == b.bytes ? 0 : ~uint64_t(0);
        }
        worst = std::max(worst, d);
        if (a.bytes.empty()) break;
    }
    return worst;
}

void unwrap(fuzz::Bytes& bytes) {
    const uint32_t cut = bytes.take<uint16_t>();
    auto x = bytes.samples<double>(4096);
    const uint32_t n = uint32_t(x.size()), first = n ? cut % (n + 1) : 0;
    std::vector<double> whole(n), blocks(n);
    zolvex_m_unwrap_f64(x.data(), whole.data(), n, nullptr);
    ZolvexMUnwrapState state{};
    zolvex_m_unwrap_f64(x.data(), blocks.data(), first, &state);
    zolvex_m_unwrap_f64(x.data() + first, blocks.data() + first, n - first, &state);
    fuzz::check(fuzz::same_values(whole, blocks), "unwrap in two blocks against one");
}

} // namespace

ZOLVEX_M_FUZZ_INITIALISE

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Bytes bytes(data, size);
    const uint32_t which = bytes.pick(uint32_t(ops().size() + 1));
    if (which == ops().size()) {
        unwrap(bytes);
        return 0;
    }
    Input in;
    in.c[0] = bytes.level<double>();
    in.c[1] = bytes.level<double>();
    in.k[0] = bytes.take<uint32_t>();
    in.k[1] = bytes.take<uint32_t>();
    const uint32_t half = uint32_t(std::min<size_t>(bytes.left() / 2, 1u << 15));
    in.x = bytes.samples<uint8_t>(half);
    in.y = bytes.samples<uint8_t>(half);
    const Op& op = ops()[which];

    std::vector<Output> results;
    for (core::Isa isa : fuzz::regimes()) {
        testing_support::apply_regime(isa);
        results.push_back(op.run(in));
    }
    // Generic, SSE4.2 and AVX alike; AVX2 and wider alike, and for fused
    // operations within 2 ulp of the others (each is within 1 of exact).
    const auto& regimes = fuzz::regimes();
    size_t first_fused = 0;
    while (first_fused < regimes.size() && regimes[first_fused] < core::Isa::avx2) ++first_fused;
    for (size_t i = 1; i < results.size(); ++i) {
        const size_t against = (op.agreement != Agreement::exact && i >= first_fused) ? first_fused : 0;
        fuzz::check(largest_distance(results[against], results[i]) == 0, "a kernel regime against its group", long(i));
    }
    if (op.agreement == Agreement::fused && first_fused < results.size())
        fuzz::check(largest_distance(results[0], results[first_fused]) <= 2, "fused kernels more than 2 ulp away");
    return 0;
}
