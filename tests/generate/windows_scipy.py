"""The library's windows against scipy.signal.windows (sym=True) where the
definitions agree, to a few ulps of the peak 1 (scipy sums the cosines
directly): Gaussian with std = 0.4 (n - 1) / 2, Nuttall with the library's
coefficients (scipy's own differ). Usage: windows_scipy.py libzolvex-m.so"""
import ctypes
import sys

import numpy as np
from scipy.signal import windows

library = ctypes.CDLL(sys.argv[1])
library.zolvex_m_init()
CASES = {"hanning": windows.hann, "hamming": windows.hamming, "blackman": windows.blackman,
         "blackmanharris": windows.blackmanharris, "bartlett": windows.bartlett,
         "nuttall": lambda n: windows.general_cosine(n, [0.355768, 0.487396, 0.144232, 0.012604]),
         "gaussian": lambda n: windows.gaussian(n, 0.4 * (n - 1) / 2)}
failures = []
for name, scipy_window in CASES.items():
    for dtype, ctype, eps in ((np.float64, ctypes.c_double, 2.0**-52), (np.float32, ctypes.c_float, 2.0**-23)):
        function = getattr(library, f"zolvex_m_window_{name}_{'f64' if dtype == np.float64 else 'f32'}")
        worst = 0.0
        for n in (2, 3, 4, 5, 16, 17, 255, 256, 4097, 65536):
            ones, out = np.ones(n, dtype), np.empty(n, dtype)
            status = function(ones.ctypes.data_as(ctypes.POINTER(ctype)), out.ctypes.data_as(ctypes.POINTER(ctype)),
                              ctypes.c_uint32(n), ctypes.c_uint8(0))
            worst = max(worst, np.inf if status else float(np.max(np.abs(out - scipy_window(n)))) / eps)
        print(f"{name} {dtype.__name__}: at most {worst:.2f} ulps of 1 from scipy")
        if worst > 8:
            failures.append(name)
library.zolvex_m_fini()
sys.exit(1 if failures else 0)
