#!/usr/bin/env python3
"""zolvex_m_unwrap_f32/_f64 against numpy.unwrap, bit for bit: whole
records, the same records cut into random blocks (the state carried from
block to block), and in place. Usage: unwrap_numpy.py <libzolvex-m.so>"""
import ctypes
import sys

import numpy as np


class State(ctypes.Structure):
    _fields_ = [("previous", ctypes.c_double), ("correction", ctypes.c_double), ("started", ctypes.c_uint32)]


def records(rng, dtype):
    n = 20000
    t = np.arange(n)
    # A chirp's wrapped phase with noise (jumps of every size near 2*pi),
    # a random walk with steps up to several periods, drifting far from 0.
    yield np.angle(np.exp(1j * (1e-4 * t * t + rng.normal(0, 0.4, n))))
    yield np.cumsum(rng.uniform(-9, 9, n))
    yield 1e5 + np.cumsum(rng.uniform(-4, 4, n))
    # Jumps of exactly +-pi and 2*pi (numpy keeps +pi as +pi), zeros of
    # both signs, and a record of one sample.
    yield np.array([0, np.pi, 0, -np.pi, -0.0, 0.0, np.pi, 2 * np.pi, -np.pi, 3 * np.pi, -0.0])
    yield np.array([-0.0])
    # NaN and infinity poison everything after them, as in numpy.
    for bad in (np.nan, np.inf):
        x = rng.uniform(-10, 10, 300)
        x[150] = bad
        yield x


def differences(a, b):
    """Where a and b differ in their bits; any NaN equals any NaN."""
    bits = {4: np.uint32, 8: np.uint64}[a.dtype.itemsize]
    return (a.view(bits) != b.view(bits)) & ~(np.isnan(a) & np.isnan(b))


def main():
    lib = ctypes.CDLL(sys.argv[1])
    rng = np.random.default_rng(14)
    failures = 0
    for dtype, name, ctype in ((np.float32, "f32", ctypes.c_float), (np.float64, "f64", ctypes.c_double)):
        unwrap = getattr(lib, "zolvex_m_unwrap_" + name)
        pointer = ctypes.POINTER(ctype)
        unwrap.argtypes = [pointer, pointer, ctypes.c_uint32, ctypes.POINTER(State)]
        unwrap.restype = ctypes.c_int32

        def call(x, out, state):
            return unwrap(x.ctypes.data_as(pointer), out.ctypes.data_as(pointer), len(x), state)

        for k, record in enumerate(records(rng, dtype)):
            x = record.astype(dtype)
            want = np.unwrap(x)
            whole = np.empty_like(x)
            assert call(x, whole, None) == 0
            blocks = np.empty_like(x)
            state = State()
            cuts = np.sort(rng.choice(len(x) + 1, size=min(len(x), 7), replace=True))
            for start, stop in zip(np.r_[0, cuts], np.r_[cuts, len(x)]):
                assert call(x[start:stop], blocks[start:stop], ctypes.byref(state)) == 0
            in_place = x.copy()
            assert call(in_place, in_place, None) == 0
            for what, got in (("whole", whole), ("in blocks", blocks), ("in place", in_place)):
                differ = differences(got, want)
                if differ.any():
                    i = int(np.argmax(differ))
                    print(f"{name} record {k} {what}: element {i} is {got[i]!r}, numpy gives {want[i]!r}")
                    failures += 1

        # A count of 0 touches neither the arrays nor the state.
        state = State(1.5, 2.5, 1)
        assert call(np.empty(0, dtype), np.empty(0, dtype), ctypes.byref(state)) == 0
        assert (state.previous, state.correction, state.started) == (1.5, 2.5, 1)
    print("unwrap: numpy's bits" if failures == 0 else f"unwrap: {failures} differences")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
