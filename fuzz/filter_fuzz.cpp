// IIR filters: every design with the arguments the checks let through
// (orders 0 to 255, NaN and infinite edges and ripples) and refused with -1
// and nothing written otherwise; then the accessors (the same pointers each
// time, counts that fit the order), both frequency responses, isstable and
// execution on random blocks: split into blocks as in one, in every kernel
// regime the same bits, in place as out of place.

#include <cmath>

#include "fuzz_support.h"

namespace {

struct Design {
    uint8_t kind, order, regime, points, flags;
    uint16_t cut;
};

zolvex_m_filter_state* const kUntouched = reinterpret_cast<zolvex_m_filter_state*>(uintptr_t(0x1234));

// The documented refusals of each design.
bool refused(const Design& d, double fs, double f1, double f2, double r) {
    const uint32_t type = d.kind >> 4;
    if (d.kind % 5 >= 3) return !(2 * f1 / fs >= 0 && 2 * f1 / fs <= 1);
    if (fs <= 0 || f1 < 0 || f2 < 0 || (d.kind % 5 > 0 && r < 0)) return true;
    if (!(2 * f1 / fs > 0 && 2 * f1 / fs < 1)) return true;
    if (type >= 2 && type <= 3 && !(2 * f2 / fs > 0 && 2 * f2 / fs < 1)) return true;
    return type > 3;
}

template <class T, class Execute>
std::vector<T> filtered(zolvex_m_filter_state* state, const std::vector<T>& x, uint32_t cut, Execute execute) {
    std::vector<T> y(x.size());
    zolvex_m_filter_reset_delay_line(state, cut & 1);
    const uint32_t first = cut % (x.size() + 1);
    if (execute(x.data(), y.data(), first, state) != 0) return {};
    fuzz::check(execute(x.data() + first, y.data() + first, uint32_t(x.size() - first), state) == 0, "second block");
    return y;
}

template <class T, class Execute>
void execution(zolvex_m_filter_state* state, const Design& d, std::vector<T> x, Execute execute) {
    std::vector<T> whole(x.size());
    zolvex_m_filter_reset_delay_line(state, d.cut & 1);
    const int32_t status = execute(x.data(), whole.data(), uint32_t(x.size()), state);
    // The runtime filter is built first, also for no samples: -1 when the
    // state has no sections.
    if (status != 0) return fuzz::check(status == -1, "execute status", status);
    if (x.empty()) return;
    fuzz::generic_against_vector(
        d.regime, [&] { return filtered(state, x, d.cut, execute); },
        [&](const auto& a, const auto& b) {
            fuzz::check(fuzz::same_values(a, whole), "two blocks against one");
            fuzz::check(fuzz::same_values(a, b), "execute: a kernel regime against the generic one");
        });
    zolvex_m_filter_reset_delay_line(state, d.cut & 1);
    execute(x.data(), x.data(), uint32_t(x.size()), state);
    fuzz::check(fuzz::same_values(x, whole), "execute in place against out of place");
}

void forms(zolvex_m_filter_state* state, const Design& d) {
    const double *zeros = nullptr, *poles = nullptr, *b = nullptr, *a = nullptr;
    const double* const* sections = nullptr;
    uint32_t zero_count = 0, pole_count = 0, length = 0, section_count = 0;
    double gain = 0;
    const int32_t zpk = zolvex_m_filter_iir_get_zpk(state, &zeros, &zero_count, &poles, &pole_count, &gain);
    const int32_t tf = zolvex_m_filter_iir_get_tf(state, &b, &a, &length);
    const int32_t sos = zolvex_m_filter_iir_get_sos(state, &sections, &section_count);
    fuzz::check((zpk == 0 || zpk == -1) && (tf == 0 || tf == -1) && (sos == 0 || sos == -1), "accessor status");
    if (zpk == 0 && d.kind % 5 < 3) {
        const uint32_t poles_expected = uint32_t(d.order) * (((d.kind >> 4) >= 2) ? 2 : 1);
        fuzz::check(pole_count == poles_expected && zero_count <= pole_count, "pole count", pole_count);
    }
    if (sos == 0 && zpk == 0)
        fuzz::check(section_count == std::max<uint32_t>(1, (std::max(zero_count, pole_count) + 1) / 2),
                    "section count", section_count);
    // The same pointers every time.
    const double *zeros2 = nullptr, *poles2 = nullptr, *b2 = nullptr, *a2 = nullptr;
    const double* const* sections2 = nullptr;
    if (zpk == 0) zolvex_m_filter_iir_get_zpk(state, &zeros2, &zero_count, &poles2, &pole_count, &gain);
    if (tf == 0) zolvex_m_filter_iir_get_tf(state, &b2, &a2, &length);
    if (sos == 0) zolvex_m_filter_iir_get_sos(state, &sections2, &section_count);
    fuzz::check(zeros == zeros2 && poles == poles2 && b == b2 && a == a2 && sections == sections2, "same pointers");

    bool stable = true;
    const int32_t s = zolvex_m_filter_iir_isstable(state, &stable);
    if (s == 0 && zpk == 0) {
        bool inside = pole_count > 0;
        for (uint32_t i = 0; i < pole_count; ++i) inside &= std::hypot(poles[2 * i], poles[2 * i + 1]) < 1;
        // hypot rounds: only poles clearly off the circle are judged here.
        bool clear = true;
        for (uint32_t i = 0; i < pole_count; ++i) clear &= std::fabs(std::hypot(poles[2 * i], poles[2 * i + 1]) - 1) > 1e-12;
        if (clear) fuzz::check(stable == inside, "isstable against the poles");
    }

    const uint32_t n = d.points % 64;
    const bool whole = d.flags & 1, logarithmic = d.flags & 2;
    std::vector<double> f(n, 5), h(2 * n, 5), untouched_f = f, untouched_h = h;
    const int32_t rz = zolvex_m_filter_iir_freqz_zpk(state, n, 1000, whole, logarithmic, f.data(), h.data());
    if (rz != 0) fuzz::check(rz == -1 && f == untouched_f && h == untouched_h, "freqz_zpk: -1 writes nothing");
    std::vector<double> f2(n, 5), h2(2 * n, 5);
    const int32_t r = zolvex_m_filter_iir_freqz(state, n, 1000, whole, logarithmic, f2.data(), h2.data());
    if (r != 0) fuzz::check(r == -1 && f2 == untouched_f && h2 == untouched_h, "freqz: -1 writes nothing");
    if (r == 0 && rz == 0) fuzz::check(fuzz::same_values(f, f2), "both responses on the same frequencies");
}

} // namespace

ZOLVEX_M_FUZZ_INITIALISE

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Bytes in(data, size);
    const Design d = in.take<Design>();
    const double fs = in.level<double>(), f1 = in.level<double>(), f2 = in.level<double>(), r = in.level<double>();
    zolvex_m_filter_state* state = kUntouched;
    int32_t status;
    switch (d.kind % 5) {
    case 0: status = zolvex_m_filter_iir_butterworth(d.kind >> 4, d.order, fs, f1, f2, &state); break;
    case 1: status = zolvex_m_filter_iir_chebyshev1(d.kind >> 4, d.order, fs, f1, f2, r, &state); break;
    case 2: status = zolvex_m_filter_iir_chebyshev2(d.kind >> 4, d.order, fs, f1, f2, r, &state); break;
    case 3: status = zolvex_m_filter_iir_notch(fs, f1, f2, &state); break;
    default: status = zolvex_m_filter_iir_peak(fs, f1, f2, &state); break;
    }
    if (refused(d, fs, f1, f2, r)) {
        fuzz::check(status == -1 && state == kUntouched, "a refused design: -1 and *state unwritten", status);
        return 0;
    }
    fuzz::check(status == 0 && state != kUntouched && state != nullptr, "design status", status);
    forms(state, d);
    if (d.flags & 4)
        execution(state, d, in.samples<double>(4096), zolvex_m_filter_execute_f64);
    else
        execution(state, d, in.samples<float>(4096), zolvex_m_filter_execute_f32);
    zolvex_m_filter_state_destroy(state);
    return 0;
}
