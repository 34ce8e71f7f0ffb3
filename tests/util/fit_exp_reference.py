"""The exponential fit of libzolvex-m through ctypes, against numpy.

The worked example, the failure that writes nothing, fewer than two samples
and the optional outputs; noisy decays up to i = 65535 against
numpy.polyfit(i, log(y), 1); longer series, where the library squares i in
32-bit unsigned arithmetic, against the same normal equations with those
wrapped squares in numpy's extended precision.
Usage: fit_exp_reference.py path/to/libzolvex-m.so
"""
import ctypes
import math
import sys

import numpy as np

fit = ctypes.CDLL(sys.argv[1]).zolvex_m_fit_exp_f64
fit.restype = ctypes.c_int32
fit.argtypes = [np.ctypeslib.ndpointer(np.float64, flags="C"), ctypes.c_uint32,
                ctypes.POINTER(ctypes.c_double), ctypes.POINTER(ctypes.c_double)]


def ours(y, want_a=True, want_b=True):
    """Status, A, B; an output not asked for, or not written, stays 5 or 6."""
    a, b = ctypes.c_double(5), ctypes.c_double(6)
    status = fit(np.asarray(y, np.float64), len(y), ctypes.byref(a) if want_a else None,
                 ctypes.byref(b) if want_b else None)
    return status, a.value, b.value


def wrapped_fit(y):
    i = np.arange(len(y), dtype=np.uint64)
    x, ln_y = i.astype(np.longdouble), np.log(y).astype(np.longdouble)
    sx, sy = x.sum(), ln_y.sum()
    sxx, sxy = ((i * i) % 2**32).astype(np.longdouble).sum(), (x * ln_y).sum()
    d = len(y) * sxx - sx * sx
    return float(np.exp((sxx * sy - sx * sxy) / d)), float((len(y) * sxy - sy * sx) / d)


def noisy_decay(rng, count):
    amplitude = 10 ** rng.uniform(-3, 3)
    rate = -rng.uniform(0.1, 20) / count
    return amplitude * np.exp(rate * np.arange(count) + rng.normal(0, 0.05, count))


def close(got, want, tolerance):
    return abs(got - want) <= tolerance * max(abs(want), 1e-300)


status, a, b = ours([1, 2, 4, 8])
assert status == 0 and close(a, 1, 1e-15) and close(b, math.log(2), 1e-15), f"1 2 4 8: {status} {a} {b}"
_, a, b = ours([2, 1, 0.5], want_a=False)
assert a == 5 and close(b, -math.log(2), 1e-15), "only B"
_, a, b = ours([2, 1, 0.5], want_b=False)
assert close(a, 2, 1e-15) and b == 6, "only A"
for bad in [0.0, -0.0, -1.0, -math.inf]:
    for at in [0, 500, 999]:
        y = np.full(1000, 3.0)
        y[at] = bad
        assert ours(y) == (-1, 5, 6), f"sample {bad} at {at} must fail and write nothing"
for y in [[], [2.5]]:
    status, a, b = ours(y)
    assert status == 0 and math.isnan(a) and math.isnan(b), f"{len(y)} samples give NaN"

rng = np.random.default_rng(13)
for count in [2, 3, 10, 257, 4096, 65536]:
    for _ in range(5):
        y = noisy_decay(rng, count)
        slope, intercept = np.polyfit(np.arange(count), np.log(y), 1)
        _, a, b = ours(y)
        assert close(a, np.exp(intercept), 1e-11) and close(b, slope, 1e-11), \
            f"count {count}: ours {a!r} {b!r}, numpy {np.exp(intercept)!r} {slope!r}"
for count in [65537, 70000, 300000]:
    y = noisy_decay(rng, count)
    _, a, b = ours(y)
    want_a, want_b = wrapped_fit(y)
    slope = np.polyfit(np.arange(count), np.log(y), 1)[0]
    assert close(a, want_a, 1e-12) and close(b, want_b, 1e-12) and not close(b, slope, 1e-6), \
        f"count {count}: ours {a!r} {b!r}, wrapped {want_a!r} {want_b!r}, unwrapped B {slope!r}"
print("fit_exp agrees with numpy")
