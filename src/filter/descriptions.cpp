// The filter state's forms: deriving and storing them, the conversions from
// zeros/poles/gain to a transfer function and to second-order sections, and
// the accessors.

#include "filter/descriptions.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <utility>

#include "filter/filter.h"

namespace FilterState::IIR {

namespace {

// prod(1 - r_i z^-1) in powers of z^-1, one root at a time in complex
// arithmetic (numpy.poly's convolution with [1, -r]).
std::vector<Complex> expand(const std::vector<Complex>& roots) {
    std::vector<Complex> c(roots.size() + 1);
    c[0] = 1.0;
    for (size_t i = 0; i < roots.size(); ++i)
        for (size_t j = i + 1; j > 0; --j) c[j] = c[j] - roots[i] * c[j - 1];
    return c;
}

// The real parts, times k, padded with zeros to `length`: conjugate pairs
// cancel the imaginary parts.
std::vector<double> real_parts(const std::vector<Complex>& c, double k, size_t length) {
    std::vector<double> out(length, 0.0);
    for (size_t i = 0; i < c.size(); ++i) out[i] = k * c[i].real();
    return out;
}

// --- Pairing into sections ---------------------------------------------
// As scipy.signal.zpk2sos with pairing='nearest' (scipy 1.10,
// signal/_filter_design.py): the pole nearest the unit circle is taken
// first with its conjugate (or the next such real pole) and the zeros
// nearest to it; sections are written in reverse order of choice, so the
// poles nearest the unit circle act last, and the gain goes to the first.

constexpr double kPairTolerance = 100 * std::numeric_limits<double>::epsilon();

bool is_real(Complex r) { return r.imag() == 0.0; }

void sort_by(std::vector<Complex>& v, size_t begin, size_t end, auto key) {
    std::stable_sort(v.begin() + std::ptrdiff_t(begin), v.begin() + std::ptrdiff_t(end),
                     [&](Complex a, Complex b) { return key(a) < key(b); });
}

// One root per conjugate pair (the one above the real axis, averaged with
// its partner), then the real roots, as scipy's _cplxreal orders them: by
// real part, runs of equal real parts by |imag|. A root within 100 eps
// (relative) of the real axis is real.
std::vector<Complex> pairs_then_reals(std::vector<Complex> roots) {
    for (Complex r : roots)
        if (!std::isfinite(r.real()) || !std::isfinite(r.imag()))
            throw std::invalid_argument("");  // no order, no pairs
    std::stable_sort(roots.begin(), roots.end(), [](Complex a, Complex b) {
        return a.real() != b.real() ? a.real() < b.real() : std::abs(a.imag()) < std::abs(b.imag());
    });
    std::vector<Complex> above, below, pairs;
    std::vector<Complex> reals;
    for (Complex r : roots) {
        if (std::abs(r.imag()) <= kPairTolerance * std::abs(r))
            reals.push_back(r.real());
        else
            (r.imag() > 0 ? above : below).push_back(r);
    }
    if (above.size() != below.size()) throw std::invalid_argument("");
    for (size_t start = 0; start < above.size();) {
        size_t stop = start + 1;
        while (stop < above.size() &&
               above[stop].real() - above[stop - 1].real() <= kPairTolerance * std::abs(above[stop - 1]))
            ++stop;
        auto magnitude_of_imag = [](Complex r) { return std::abs(r.imag()); };
        sort_by(above, start, stop, magnitude_of_imag);
        sort_by(below, start, stop, magnitude_of_imag);
        start = stop;
    }
    for (size_t i = 0; i < above.size(); ++i) {
        if (std::abs(above[i] - std::conj(below[i])) > kPairTolerance * std::abs(below[i]))
            throw std::invalid_argument("");
        pairs.push_back((above[i] + std::conj(below[i])) / 2.0);
    }
    pairs.insert(pairs.end(), reals.begin(), reals.end());
    return pairs;
}

Complex take(std::vector<Complex>& v, size_t i) {
    Complex r = v.at(i);
    v.erase(v.begin() + std::ptrdiff_t(i));
    return r;
}

// The index of the root nearest the unit circle, least |1 - |p||.
size_t worst(const std::vector<Complex>& p, bool reals_only = false) {
    size_t best = p.size();
    for (size_t i = 0; i < p.size(); ++i) {
        if (reals_only && !is_real(p[i])) continue;
        if (best == p.size() || std::abs(1 - std::abs(p[i])) < std::abs(1 - std::abs(p[best]))) best = i;
    }
    if (best == p.size()) throw std::invalid_argument("");
    return best;
}

enum class Kind { any, real, complex };

// The index of the root of `from` nearest to `to` among those of `kind`.
size_t nearest(const std::vector<Complex>& from, Complex to, Kind kind) {
    size_t best = from.size();
    for (size_t i = 0; i < from.size(); ++i) {
        if ((kind == Kind::real && !is_real(from[i])) || (kind == Kind::complex && is_real(from[i]))) continue;
        if (best == from.size() || std::abs(from[i] - to) < std::abs(from[best] - to)) best = i;
    }
    if (best == from.size()) throw std::invalid_argument("");
    return best;
}

size_t count_real(const std::vector<Complex>& v) {
    return size_t(std::count_if(v.begin(), v.end(), is_real));
}

// b0 b1 b2 a0 a1 a2 of (1 - z1 w)(1 - z2 w) / ((1 - p1 w)(1 - p2 w)), w = z^-1.
std::vector<double> section(Complex z1, Complex z2, Complex p1, Complex p2) {
    std::vector<double> b = real_parts(expand({z1, z2}), 1.0, 3);
    std::vector<double> a = real_parts(expand({p1, p2}), 1.0, 3);
    b.insert(b.end(), a.begin(), a.end());
    return b;
}

// The next section: the worst pole and its partner with the zeros nearest
// to it (scipy's special cases kept: a last real pole joins the nearest
// real zero and a pole/zero at the origin; a complex pole takes a complex
// zero pair when the last real pole must still find the last real zero).
std::vector<double> next_section(std::vector<Complex>& p, std::vector<Complex>& z) {
    Complex p1 = take(p, worst(p));
    if (is_real(p1) && count_real(p) == 0) {
        Complex z1 = take(z, nearest(z, p1, Kind::real));
        return section(z1, 0.0, p1, 0.0);
    }
    if (p.size() + 1 == z.size() && !is_real(p1) && count_real(p) == 1 && count_real(z) == 1) {
        Complex z1 = take(z, nearest(z, p1, Kind::complex));
        return section(z1, std::conj(z1), p1, std::conj(p1));
    }
    Complex p2 = is_real(p1) ? take(p, worst(p, true)) : std::conj(p1);
    Complex z1 = take(z, nearest(z, p1, Kind::any));
    if (!is_real(z1)) return section(z1, std::conj(z1), p1, p2);
    Complex z2 = take(z, nearest(z, p1, Kind::real));
    return section(z1, z2, p1, p2);
}

} // namespace

TF to_tf(const ZPK& zpk) {
    size_t length = std::max(zpk.zeros.size(), zpk.poles.size()) + 1;
    return {real_parts(expand(zpk.zeros), zpk.gain, length), real_parts(expand(zpk.poles), 1.0, length)};
}

std::shared_ptr<SOS> to_sos(const ZPK& zpk) {
    auto sos = std::make_shared<SOS>();
    std::vector<Complex> z = zpk.zeros, p = zpk.poles;
    // As many zeros as poles (the missing ones at the origin), and an even
    // number of both.
    size_t n = std::max(z.size(), p.size());
    z.resize(n + n % 2, 0.0);
    p.resize(n + n % 2, 0.0);
    size_t count = std::max<size_t>(1, (n + 1) / 2);  // a filter of order 0 keeps its gain in one section
    sos->sections.resize(count, {1.0, 0.0, 0.0, 1.0, 0.0, 0.0});
    z = pairs_then_reals(std::move(z));
    p = pairs_then_reals(std::move(p));
    for (size_t i = n == 0 ? 0 : count; i-- > 0;) sos->sections[i] = next_section(p, z);
    if (!p.empty() || !z.empty()) throw std::invalid_argument("");
    for (size_t i = 0; i < 3; ++i) sos->sections[0][i] *= zpk.gain;
    for (const std::vector<double>& s : sos->sections) sos->section_pointers.push_back(s.data());
    return sos;
}

} // namespace FilterState::IIR

zolvex_m_filter_state::zolvex_m_filter_state() = default;
zolvex_m_filter_state::~zolvex_m_filter_state() = default;

namespace iir {

using namespace FilterState::IIR;

namespace {

// The stored form, or one derived now and stored unless another thread
// stored its own first (then that one): a state never holds two.
template <class Form, class Derive>
std::shared_ptr<const Form> stored_or_derived(std::atomic<std::shared_ptr<Form>>& field, Derive&& derive) {
    if (std::shared_ptr<Form> stored = field.load()) return stored;
    std::shared_ptr<Form> fresh = derive();
    if (!fresh) return nullptr;
    std::shared_ptr<Form> expected;
    if (field.compare_exchange_strong(expected, fresh)) return fresh;
    return expected;
}

} // namespace

std::shared_ptr<const ZPK> zpk_of(zolvex_m_filter_state& state) {
    return stored_or_derived(state.zpk, [&]() -> std::shared_ptr<ZPK> {
        std::shared_ptr<TF> tf = state.tf.load();
        return tf ? std::make_shared<ZPK>(to_zpk(*tf)) : nullptr;
    });
}

std::shared_ptr<const TF> tf_of(zolvex_m_filter_state& state) {
    return stored_or_derived(state.tf, [&]() -> std::shared_ptr<TF> {
        std::shared_ptr<ZPK> zpk = state.zpk.load();
        return zpk ? std::make_shared<TF>(to_tf(*zpk)) : nullptr;
    });
}

std::shared_ptr<const SOS> sos_of(zolvex_m_filter_state& state) {
    return stored_or_derived(state.sos, [&]() -> std::shared_ptr<SOS> {
        std::shared_ptr<const ZPK> zpk = zpk_of(state);
        return zpk ? to_sos(*zpk) : nullptr;
    });
}

} // namespace iir

extern "C" {

int32_t zolvex_m_filter_iir_get_zpk(zolvex_m_filter_state* state, const double** zeros, uint32_t* zero_count,
                                    const double** poles, uint32_t* pole_count, double* gain) {
    return iir::guarded([&] {
        auto zpk = state ? iir::zpk_of(*state) : nullptr;
        if (!zpk) return ZOLVEX_M_STATUS_FAILED;
        *zeros = reinterpret_cast<const double*>(zpk->zeros.data());
        *zero_count = static_cast<uint32_t>(zpk->zeros.size());
        *poles = reinterpret_cast<const double*>(zpk->poles.data());
        *pole_count = static_cast<uint32_t>(zpk->poles.size());
        *gain = zpk->gain;
        return ZOLVEX_M_STATUS_SUCCESS;
    });
}

int32_t zolvex_m_filter_iir_get_tf(zolvex_m_filter_state* state, const double** b, const double** a,
                                   uint32_t* length) {
    return iir::guarded([&] {
        auto tf = state ? iir::tf_of(*state) : nullptr;
        if (!tf) return ZOLVEX_M_STATUS_FAILED;
        *b = tf->b.data();
        *a = tf->a.data();
        *length = static_cast<uint32_t>(tf->b.size());
        return ZOLVEX_M_STATUS_SUCCESS;
    });
}

int32_t zolvex_m_filter_iir_get_sos(zolvex_m_filter_state* state, const double* const** sections,
                                    uint32_t* section_count) {
    return iir::guarded([&] {
        auto sos = state ? iir::sos_of(*state) : nullptr;
        if (!sos) return ZOLVEX_M_STATUS_FAILED;
        for (const std::vector<double>& s : sos->sections)
            if (s.size() != 6) return ZOLVEX_M_STATUS_FAILED;
        *sections = sos->section_pointers.data();
        *section_count = static_cast<uint32_t>(sos->sections.size());
        return ZOLVEX_M_STATUS_SUCCESS;
    });
}

void zolvex_m_filter_state_destroy(zolvex_m_filter_state* state) { delete state; }

} // extern "C"
