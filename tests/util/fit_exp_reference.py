"""The exponential fit of libzolvex-m against numpy, through ctypes.

Noisy decays up to i = 65535 against numpy.polyfit(i, log(y), 1); longer
series, where the library squares i in 32-bit unsigned arithmetic, against
the same normal equations with those wrapped squares in numpy's extended
precision. Usage: fit_exp_reference.py path/to/libzolvex-m.so
"""
import ctypes
import sys

import numpy as np

library = ctypes.CDLL(sys.argv[1])
fit = library.zolvex_m_fit_exp_f64
fit.restype = ctypes.c_int32
fit.argtypes = [np.ctypeslib.ndpointer(np.float64, flags="C"), ctypes.c_uint32,
                ctypes.POINTER(ctypes.c_double), ctypes.POINTER(ctypes.c_double)]


def ours(y):
    a, b = ctypes.c_double(), ctypes.c_double()
    assert fit(y, len(y), ctypes.byref(a), ctypes.byref(b)) == 0
    return a.value, b.value


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


failures = 0
rng = np.random.default_rng(13)
for count in [2, 3, 10, 257, 4096, 65536]:
    for _ in range(5):
        y = noisy_decay(rng, count)
        slope, intercept = np.polyfit(np.arange(count), np.log(y), 1)
        a, b = ours(y)
        if not (close(a, np.exp(intercept), 1e-11) and close(b, slope, 1e-11)):
            print(f"count {count}: ours A={a!r} B={b!r}, numpy A={np.exp(intercept)!r} B={slope!r}")
            failures += 1
for count in [65537, 70000, 300000]:
    y = noisy_decay(rng, count)
    a, b = ours(y)
    want_a, want_b = wrapped_fit(y)
    slope = np.polyfit(np.arange(count), np.log(y), 1)[0]
    if not (close(a, want_a, 1e-12) and close(b, want_b, 1e-12)) or close(b, slope, 1e-6):
        print(f"count {count}: ours A={a!r} B={b!r}, wrapped A={want_a!r} B={want_b!r}, unwrapped B={slope!r}")
        failures += 1
print("fit_exp against numpy:", "failed" if failures else "passed")
sys.exit(1 if failures else 0)
