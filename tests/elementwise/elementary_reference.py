#!/usr/bin/env python3
"""The elementary functions through the shared library, against references.

  elementary_reference.py LIB accuracy PART PARTS SAMPLES
    Every PARTS-th function from PART, f32 and f64: SAMPLES inputs spread
    over the whole domain (random bit patterns), all magnitudes and the
    function's hard ranges (zeros, poles, huge trigonometric arguments), plus
    every special value (every pair of them for two inputs), in every regime
    at the widest level the processor has and at the generic level (the two
    rounding families), against numpy's long double functions (x87 libm, a
    64-bit significand: within 1/1000 ulp of double). Prints the worst
    errors; fails above 1 ulp (0.5 for the correctly rounded ones).
  elementary_reference.py LIB unwrap
    unwrap against numpy.unwrap bit for bit: whole records, in random blocks
    carrying the state, in place.
"""
import ctypes
import sys

import numpy as np

LD, HUGE = np.longdouble, 1e308
lib = ctypes.CDLL(sys.argv[1])
rng = np.random.default_rng(14)
np.seterr(all="ignore")  # overflow, NaN and the like are what is tested


def ptr(a):
    return ctypes.c_void_p(a.ctypes.data)


def api(name, dtype):
    return getattr(lib, f"zolvex_m_{name}_{'f32' if dtype == np.float32 else 'f64'}")


def sample(kind, a, b, n, dtype):
    """Random bits; |x| log-uniform in [a, b] (either sign, or positive);
    uniform in [a, b] (or whole numbers); neighbours of (k + a) * pi, |k| <= b."""
    info, ints = np.finfo(dtype), f"i{np.dtype(dtype).itemsize}"
    if kind == "bits":
        return rng.integers(np.iinfo(ints).min, np.iinfo(ints).max, n, dtype=ints).view(dtype)
    if kind in ("mag", "pos"):
        x = np.exp(rng.uniform(np.log(max(a, info.smallest_subnormal)), np.log(min(b, info.max)), n)).astype(dtype)
        return x if kind == "pos" else np.copysign(x, rng.uniform(-1, 1, n)).astype(dtype)
    if kind in ("uni", "int"):
        x = rng.uniform(a, b, n).astype(dtype)
        return np.round(x) if kind == "int" else x
    x = ((rng.integers(-b, b + 1, n) + a) * np.pi).astype(dtype)
    return (x.view(ints) + rng.integers(-3, 4, n).astype(ints)).view(dtype)


def ulp_error(got, want, dtype):
    """|got - want| in units of the last place at want's magnitude (want in
    those units split as hi + lo in doubles, for speed); a NaN, an infinity
    or a zero is right only where want rounds to it, sign and all, else
    infinitely far."""
    info = np.finfo(dtype)
    rounded = want.astype(np.float64)
    exponent = np.frexp(np.minimum(np.abs(rounded), float(info.max)))[1]
    ulp = np.maximum(np.ldexp(1.0, exponent - info.nmant - 1), float(info.smallest_subnormal))
    scaled = want / ulp.astype(LD)
    hi = scaled.astype(np.float64)
    err = np.abs(got.astype(np.float64) / ulp - hi - (scaled - hi).astype(np.float64))
    right = np.isnan(got) & np.isnan(want) | (got == rounded.astype(dtype)) & (np.signbit(got) == np.signbit(want))
    odd = np.isnan(got) | np.isnan(want) | np.isinf(got) | np.isinf(rounded)
    odd |= (got == 0) & ((want == 0) | (np.signbit(got) != np.signbit(want)))
    err[odd] = np.where(right[odd], 0, np.inf)
    return err


def erf(x):
    """2/sqrt(pi) exp(-x^2) sum 2^n x^(2n+1) / (1 3 5 ... (2n+1)), Abramowitz
    and Stegun 7.1.6: positive terms, nothing cancels. +-1 beyond |x| = 7,
    where erfc < 1e-22."""
    near = np.where(np.abs(x) < 7, x, 0)
    term, total = near.copy(), near.copy()
    for n in range(1, 160):
        term *= 2 * near * near / (2 * n + 1)
        total += term
    return np.where(np.abs(x) < 7, 2 / np.sqrt(np.arccos(LD(-1))) * np.exp(-near * near) * total, np.sign(x))


TRIG = [("uni", -4, 4), ("pi", 0, 10**5), ("pi", 0.5, 10**5), ("mag", 1e4, HUGE), ("mag", 1e-30, 1e-3)]
UNIT = [("uni", -1, 1), ("uni", 0.99, 1), ("uni", -1, -0.99), ("mag", 1e-30, 1e-3)]
LOGS = [("pos", 0, HUGE), ("uni", 0.999, 1.001), ("uni", 0.5, 2)]
SMALL = [("uni", -20, 20), ("mag", 1e-30, 1e-2), ("mag", 20, 800)]
PLANE = [("uni", -10, 10), ("mag", 1e-30, 1e30), ("mag", 1e-40, 1e-20)]
# name: (references, ranges of x[, ranges of y]); logn with base 3.
FUNCTIONS = {
    "sin": ([np.sin], TRIG), "cos": ([np.cos], TRIG), "tan": ([np.tan], TRIG), "sincos": ([np.sin, np.cos], TRIG),
    "asin": ([np.arcsin], UNIT), "acos": ([np.arccos], UNIT), "atan": ([np.arctan], [("uni", -4, 4)]),
    "sinh": ([np.sinh], SMALL), "cosh": ([np.cosh], SMALL), "tanh": ([np.tanh], SMALL),
    "asinh": ([np.arcsinh], SMALL), "acosh": ([np.arccosh], [("uni", 1, 1.01), ("pos", 1, HUGE)]),
    "atanh": ([np.arctanh], UNIT), "exp": ([np.exp], [("uni", -750, 710), ("uni", -104, 89), ("mag", 1e-30, 1)]),
    "exp2": ([np.exp2], [("uni", -1080, 1025), ("uni", -150, 129)]),
    "log": ([np.log], LOGS), "log2": ([np.log2], LOGS), "log10": ([np.log10], LOGS),
    "logn": ([lambda x: np.log(x) / np.log(LD(3))], LOGS), "sqrt": ([np.sqrt], LOGS),
    "cbrt": ([np.cbrt], [("uni", -10, 10)]), "pow2": ([np.square], [("uni", -10, 10)]),
    "erf": ([erf], [("uni", -6, 6), ("mag", 1e-30, 1e-2)]),
    "pow": ([np.power], [("pos", 0, HUGE), ("uni", 0.99, 1.01), ("uni", -10, 0), ("pos", 1e-3, 1e3)],
            [("uni", -50, 50), ("uni", -5000, 5000), ("int", -40, 40), ("mag", 1e-30, 300)]),
    "atan2": ([np.arctan2], PLANE, PLANE), "hypot": ([np.hypot], PLANE, PLANE), "magnitude": ([np.hypot], PLANE, PLANE),
}
CORRECTLY_ROUNDED = {"sqrt", "pow2", "hypot", "magnitude", "logn"}


def ours(name, x, y):
    """The library's outputs for x (and y)."""
    outs = [np.zeros_like(x), np.zeros_like(x)][:1 + (name == "sincos")]
    if name == "magnitude":
        z = np.stack([x, y], 1).ravel()
        suffix = "c32f32" if x.dtype == np.float32 else "c64f64"
        getattr(lib, "zolvex_m_magnitude_" + suffix)(ptr(z), ptr(outs[0]), len(x))
    elif name == "logn":
        api(name, x.dtype)(ptr(x), ptr(outs[0]), len(x), np.ctypeslib.as_ctypes_type(x.dtype)(3))
    else:
        api(name, x.dtype)(*map(ptr, [x, y][:len(FUNCTIONS[name]) - 1] + outs), len(x))
    return outs


def accuracy(part, parts, samples):
    failed = False
    for name in list(FUNCTIONS)[part::parts]:
        references, *ranges = FUNCTIONS[name]
        for dtype in (np.float32, np.float64):
            info, whole = np.finfo(dtype), [("bits", 0, 0), ("mag", 0, HUGE)]
            specials = np.array([0, np.inf, np.nan, info.smallest_subnormal, info.tiny, info.max, 1, 0.5, 2, 3,
                                 np.pi / 2, np.pi, 10, 1e-30] * 2, dtype) * np.repeat([1, -1], 14).astype(dtype)
            x, y = (np.concatenate([sample(*r, samples // len(whole + ranges[0]), dtype) for r in whole + rs] + [s])
                    for rs, s in ((ranges[0], np.repeat(specials, 28)), (ranges[-1], np.tile(specials, 28))))
            wants = [f(*[x.astype(LD), y.astype(LD)][:len(ranges)]) for f in references]
            # With every processor option the processor has (its widest
            # level: the fused family where there is FMA), then with none.
            for level in ("widest", "generic"):
                for option in (1, 2, 3, 4, 5, 6, 7, 8, 9, 14, 15, 16, 17, 18):
                    lib.zolvex_m_setopt(option, int(level == "widest"))
                for part_name, got, want in zip(("", ".cos"), ours(name, x, y), wants):
                    err = ulp_error(got, want, dtype)
                    i = int(np.argmax(err))
                    print(f"{name}{part_name} {dtype.__name__} {level}: worst {err[i]:.4f} ulp "
                          f"at x={x[i]!r} y={y[i]!r}: {got[i]!r}, want {want[i]!r}")
                    failed |= not err[i] <= (0.501 if name in CORRECTLY_ROUNDED else 1.0)
    return failed


class UnwrapState(ctypes.Structure):
    _fields_ = [("previous", ctypes.c_double), ("correction", ctypes.c_double), ("started", ctypes.c_uint32)]


def unwrap():
    failed = False
    t = np.arange(20000)
    # Chirp phase with noise; random walks with steps of several periods,
    # also far from 0; jumps of exactly +-pi and 2*pi, signed zeros; NaN
    # and infinity, which poison all that follows, as in numpy.
    records = [np.angle(np.exp(1j * (1e-4 * t * t + rng.normal(0, 0.4, t.size)))),
               np.cumsum(rng.uniform(-9, 9, t.size)), 1e5 + np.cumsum(rng.uniform(-4, 4, t.size)),
               np.array([0, np.pi, 0, -np.pi, -0.0, 0.0, np.pi, 2 * np.pi, -np.pi, 3 * np.pi, -0.0]),
               np.array([-0.0]), np.r_[rng.uniform(-9, 9, 99), np.nan, 1.0], np.r_[1.0, np.inf, 2.0]]
    for dtype in (np.float32, np.float64):
        f = api("unwrap", dtype)
        for k, x in enumerate(r.astype(dtype) for r in records):
            whole, blocks, in_place, state = np.empty_like(x), np.empty_like(x), x.copy(), UnwrapState()
            f(ptr(x), ptr(whole), len(x), None)
            f(ptr(in_place), ptr(in_place), len(x), None)
            cuts = np.r_[0, np.sort(rng.integers(0, len(x) + 1, 6)), len(x)]
            for a, b in zip(cuts[:-1], cuts[1:]):
                f(ptr(x[a:]), ptr(blocks[a:]), int(b - a), ctypes.byref(state))
            want = np.unwrap(x)
            for what, got in (("whole", whole), ("in blocks", blocks), ("in place", in_place)):
                differ = (got.view(f"u{x.itemsize}") != want.view(f"u{x.itemsize}")) & ~(np.isnan(got) & np.isnan(want))
                for i in np.flatnonzero(differ)[:1]:
                    print(f"unwrap {dtype.__name__} record {k} {what}: [{i}] = {got[i]!r}, numpy {want[i]!r}")
                failed |= differ.any()
    return failed


lib.zolvex_m_init()
sys.exit(int(accuracy(*map(int, sys.argv[3:6])) if sys.argv[2] == "accuracy" else unwrap()))
