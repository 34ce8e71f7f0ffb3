"""libzolvex-m for Python: vector maths and signal processing for sampled
measurement data, on numpy arrays.

Arrays go in as numpy arrays of the dtypes each operation takes (others
raise TypeError; strided views are copied to C order first) and results
come back as new arrays, or in ``out=``. Every call that does work releases
the GIL. A failed call raises :class:`Error` with the library's status code
and text. The library is started on import and stopped at interpreter exit.
"""
from __future__ import annotations

import atexit
from typing import Optional, Sequence, Tuple, Union

import numpy as np

from ._error import Error
from . import _ext
from ._ext import (  # noqa: F401  (the element-wise and statistics families, as they are)
    Unwrap, abs, acos, acosh, add, addc, andc, argmax, argmin, asin, asinh, atan, atan2, atanh,
    bit_mask_set, bit_mask_test, cbrt, cdiv, clip, cos, cosh, csub, deinterleave, div, divc, erf,
    exp, exp2, find, fit_exp, hypot, log, log2, log10, logn, magnitude, minmax, modc, mul, mulc,
    mulc_addc, pow, pow2, shl, shr, shr_clip, sin, sincos, sinh, sqrt, square_sum, sub, subc, sum,
    tan, tanh, to_float32, to_float64, add_noise, status_text,
)
from .options import options

__version__ = ".".join(str(v) for v in _ext.version()[:3])
atexit.register(_ext._shutdown)

DTypeLike = Union[str, np.dtype, type]


def _dtype_name(dtype: DTypeLike) -> str:
    return np.dtype(dtype).name


# --- generation --------------------------------------------------------------

def noise(count: int, low: float = 0.0, high: float = 1.0, dtype: DTypeLike = "float64",
          seed: Optional[int] = None) -> np.ndarray:
    """Uniform noise in [low, high) (integers: [low, high]); reproducible with a seed."""
    return _ext._noise(count, low, high, _dtype_name(dtype), seed)


def waveform(shape: str, count: int, frequency: float, amplitude: float = 1.0, offset: float = 0.0,
             phase: float = 0.0, duty: float = 0.5, start: int = 0, dtype: DTypeLike = "float64") -> np.ndarray:
    """cosine, square or triangle samples; frequency in cycles per sample,
    phase in cycles; `start` is the index of the first sample, so blocks join."""
    return _ext._waveform(shape, count, amplitude, offset, frequency, phase, duty, start, _dtype_name(dtype))


def window(name: str, x: Union[int, np.ndarray], scale: bool = False, out: Optional[np.ndarray] = None) -> np.ndarray:
    """x times the symmetric window `name` (hanning, hamming, blackman, nuttall,
    blackmanharris, blackmannuttall, flattop, welch, bartlett, gaussian,
    parzen); an int x gives the window of that many points. scale=True
    multiplies by the window's amplitude correction (1 / its mean)."""
    if isinstance(x, (int, np.integer)):
        x = np.ones(int(x))
    return _ext.window(name, x, scale, out)


# --- histograms --------------------------------------------------------------

class Histogram:
    """Equal-width bins over [low, high] accumulated block after block.

    ``counts`` has `bins` entries; ``below`` and ``above`` count the samples
    outside the range. A sample equal to `high` falls in the last bin, as in
    numpy.histogram.
    """

    def __init__(self, bins: int, range: Tuple[float, float]):
        self.range = (float(range[0]), float(range[1]))
        self._all = np.zeros(bins + 2, dtype=np.uint64)

    def add(self, x: np.ndarray) -> "Histogram":
        _ext._histogram(x, len(self._all) - 2, self.range, self._all)
        return self

    @property
    def counts(self) -> np.ndarray:
        return self._all[1:-1]

    @property
    def below(self) -> int:
        return int(self._all[0])

    @property
    def above(self) -> int:
        return int(self._all[-1])

    @property
    def edges(self) -> np.ndarray:
        return np.linspace(self.range[0], self.range[1], len(self._all) - 1)


def histogram(x: np.ndarray, bins: int = 10, range: Optional[Tuple[float, float]] = None) -> Tuple[np.ndarray, np.ndarray]:
    """(counts, bin_edges) as numpy.histogram for equal bins; range defaults to (min, max)."""
    if range is None:
        range = minmax(x) if x.size else (0.0, 1.0)
    h = Histogram(bins, range).add(x)
    return h.counts.copy(), h.edges


# --- triggers ----------------------------------------------------------------

class Trigger:
    """A trigger search that keeps its state from block to block.

    Kinds and their levels (raw units of the samples' dtype):
      edge_rising, edge_falling: arm_level, trigger_level
      edge_any: arm_level_high, arm_level_low, trigger_level
      window_inside, window_outside: level_high, level_low
      window_enter, window_exit: arm_level_high, level_high, arm_level_low, level_low
      pulse_width_positive/negative, interval_positive/negative,
      runt_pulse_positive/negative/any: level_high, level_low, with mode
      (0 always, 1 d < time_min, 2 d > time_min, 3 within, 4 outside) and
      time_min, time_max in samples.

    ``for pos in trig.find(block)`` gives every trigger in the block (indices
    into the block); ``trig.samples`` counts the samples searched so far, so
    ``trig.samples - len(block) + pos`` is the position in the stream.
    Levels for integer samples are rounded to the nearest code and clamped.
    """

    def __init__(self, kind: str, dtype: DTypeLike, *levels: float, mode: int = 0,
                 time_min: int = 0, time_max: int = 0):
        self.kind = kind
        self.dtype = np.dtype(dtype)
        self.levels = tuple(float(v) for v in levels)
        self._search = _ext._Trigger(kind, self.dtype.name, list(self.levels), mode, time_min, time_max)

    def find(self, block: np.ndarray) -> np.ndarray:
        return self._search.find(block)

    @property
    def samples(self) -> int:
        return self._search.samples

    def reset(self) -> None:
        """Forget the search so far: the next block starts a new one."""
        self._search.reset()


# --- transforms ----------------------------------------------------------------

class Plan:
    """Real transforms of n samples (float32 or float64) on one backend.

    backend: "auto" (the option flags' choice: IPP, then FFTW, then the
    built-in transform), "builtin", "fftw" or "ipp". ``rfft`` and ``irfft``
    scale as numpy.fft.rfft and numpy.fft.irfft; ``amplitude`` gives |X| / n
    with the one-sided factor 2 (a cosine of amplitude A reads A).
    """

    def __init__(self, n: int, dtype: DTypeLike = "float64", backend: str = "auto"):
        self.n = int(n)
        self.dtype = np.dtype(dtype)
        self.backend = backend
        self._forward = self._inverse = None
        self._make(False)

    def _make(self, inverse: bool):
        with options.backend(self.backend):
            plan = _ext._Plan(self.n, self.dtype.name, inverse)
        if inverse:
            self._inverse = plan
        else:
            self._forward = plan
        return plan

    def rfft(self, x: np.ndarray) -> np.ndarray:
        return (self._forward or self._make(False)).forward(x)

    def amplitude(self, x: np.ndarray, one_sided: bool = True) -> np.ndarray:
        """Complex bins divided by n (one-sided: all but bin 0 doubled)."""
        return (self._forward or self._make(False)).forward(x, 2 if one_sided else 1)

    def irfft(self, spectrum: np.ndarray) -> np.ndarray:
        samples = (self._inverse or self._make(True)).inverse(spectrum)
        samples /= self.n
        return samples


_plans: dict = {}


def _plan(n: int, dtype: np.dtype, backend: str) -> Plan:
    key = (n, dtype.name, backend)
    plan = _plans.get(key)
    if plan is None:
        if len(_plans) > 64:
            _plans.clear()
        plan = _plans[key] = Plan(n, dtype, backend)
    return plan


def _real_dtype(x: np.ndarray) -> np.dtype:
    if x.dtype not in (np.float32, np.float64):
        raise TypeError(f"unsupported dtype {x.dtype}; takes float32, float64")
    return x.dtype


def rfft(x: np.ndarray, backend: str = "auto") -> np.ndarray:
    """numpy.fft.rfft of a 1-D float32/float64 array (plans are kept per length)."""
    return _plan(len(x), _real_dtype(x), backend).rfft(x)


def irfft(spectrum: np.ndarray, n: Optional[int] = None, backend: str = "auto") -> np.ndarray:
    """numpy.fft.irfft: n real samples from n//2 + 1 complex bins."""
    if spectrum.dtype not in (np.complex64, np.complex128):
        raise TypeError(f"unsupported dtype {spectrum.dtype}; takes complex64, complex128")
    n = 2 * (len(spectrum) - 1) if n is None else n
    real = np.float32 if spectrum.dtype == np.complex64 else np.float64
    return _plan(n, np.dtype(real), backend).irfft(spectrum)


# --- filters -----------------------------------------------------------------

_BTYPES = {"lowpass": 0, "low": 0, "highpass": 1, "high": 1, "bandpass": 2, "band": 2, "bandstop": 3, "stop": 3}


class Filter:
    """An IIR filter design, with its descriptions and a delay line.

    ``filter(x)`` filters a block as the continuation of the previous ones
    (as scipy.signal.sosfilt with the final state carried over); a filter
    takes float32 or float64 blocks, the type of its first block. ``reset()``
    zeroes the delay line; ``reset(steady_state=True)`` starts the next block
    as if its first sample had always been the input (sosfilt_zi).
    """

    def __init__(self, state, fs: float):
        self._state = state
        self.fs = fs

    @property
    def zpk(self) -> Tuple[np.ndarray, np.ndarray, float]:
        return self._state.zpk()

    @property
    def tf(self) -> Tuple[np.ndarray, np.ndarray]:
        return self._state.tf()

    @property
    def sos(self) -> np.ndarray:
        return self._state.sos()

    @property
    def isstable(self) -> bool:
        return self._state.isstable()

    def freqz(self, n: int = 512, fs: Optional[float] = None, whole: bool = False,
              logarithmic: bool = False, zpk: bool = False) -> Tuple[np.ndarray, np.ndarray]:
        """(frequencies, complex response) as scipy.signal.freqz(b, a, n, fs=fs);
        zpk=True evaluates the zeros and poles instead (scipy.signal.freqz_zpk),
        which stays accurate at high orders."""
        return self._state.freqz(n, self.fs if fs is None else fs, whole, logarithmic, zpk)

    def filter(self, x: np.ndarray, out: Optional[np.ndarray] = None) -> np.ndarray:
        return self._state.filter(x, out)

    def reset(self, steady_state: bool = False) -> None:
        self._state.reset(steady_state)


def _edges(Wn: Union[float, Sequence[float]], btype: str) -> Tuple[int, float, float]:
    try:
        kind = _BTYPES[btype]
    except KeyError:
        raise ValueError(f"btype is one of {', '.join(_BTYPES)}") from None
    edges = np.atleast_1d(np.asarray(Wn, dtype=float))
    if len(edges) != (2 if kind >= 2 else 1):
        raise ValueError(f"{btype} takes {'two edges' if kind >= 2 else 'one edge'}")
    return kind, float(edges[0]), float(edges[1]) if len(edges) > 1 else 0.0


def butter(N: int, Wn, btype: str = "lowpass", fs: float = 2.0) -> Filter:
    """Butterworth design as scipy.signal.butter(N, Wn, btype, fs=fs)."""
    kind, f1, f2 = _edges(Wn, btype)
    return Filter(_ext._butterworth(kind, N, fs, f1, f2), fs)


def cheby1(N: int, rp: float, Wn, btype: str = "lowpass", fs: float = 2.0) -> Filter:
    """Chebyshev type I design as scipy.signal.cheby1(N, rp, Wn, btype, fs=fs)."""
    kind, f1, f2 = _edges(Wn, btype)
    return Filter(_ext._chebyshev1(kind, N, fs, f1, f2, rp), fs)


def cheby2(N: int, rs: float, Wn, btype: str = "lowpass", fs: float = 2.0) -> Filter:
    """Chebyshev type II design as scipy.signal.cheby2(N, rs, Wn, btype, fs=fs)."""
    kind, f1, f2 = _edges(Wn, btype)
    return Filter(_ext._chebyshev2(kind, N, fs, f1, f2, rs), fs)


def iirnotch(w0: float, Q: float, fs: float = 2.0) -> Filter:
    """Notch at w0 of quality Q, as scipy.signal.iirnotch(w0, Q, fs)."""
    return Filter(_ext._notch(fs, w0, w0 / Q), fs)


def iirpeak(w0: float, Q: float, fs: float = 2.0) -> Filter:
    """Peak (resonator) at w0 of quality Q, as scipy.signal.iirpeak(w0, Q, fs)."""
    return Filter(_ext._peak(fs, w0, w0 / Q), fs)
