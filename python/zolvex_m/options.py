"""The library's option flags: kernel levels and accelerators."""
from __future__ import annotations

import contextlib
from typing import Dict, Iterator

from . import _ext

# Python names of the option ids.
_IDS = {
    "sse": 1, "sse2": 2, "sse3": 3, "ssse3": 4, "sse41": 5, "sse42": 6, "avx": 7, "avx2": 8,
    "neon": 9, "ipp": 10, "fftw3": 11, "fftw3f": 12, "fma3": 14, "avx512f": 15, "avx512bw": 16,
    "avx512dq": 17, "avx512cd": 18,
}

# What each transform backend needs switched on and off.
_BACKENDS = {
    "builtin": {"ipp": False, "fftw3": False, "fftw3f": False},
    "fftw": {"ipp": False, "fftw3": True, "fftw3f": True},
    "ipp": {"ipp": True},
    "auto": {},
}


class Options:
    """Reads and forces the library's option flags.

    ``options["avx2"]`` reads a flag, ``options["avx2"] = False`` forces it
    (raising ValueError when the processor or the loaded libraries cannot
    have it on), ``options.as_dict()`` shows them all. Used as a context
    manager, ``with options(avx512f=False, ipp=False): ...`` forces flags for
    the block and puts the old values back after it. Flags are process-wide:
    changing them while other threads call the library is the caller's
    business.
    """

    names = tuple(_IDS)

    def __getitem__(self, name: str) -> bool:
        return _ext.getopt(self._id(name))

    def __setitem__(self, name: str, on: bool) -> None:
        if not _ext.setopt(self._id(name), bool(on)):
            raise ValueError(f"option {name} cannot be switched {'on' if on else 'off'} here")

    def as_dict(self) -> Dict[str, bool]:
        return {name: self[name] for name in _IDS}

    def descriptions(self) -> Dict[str, str]:
        by_id = dict(_ext.option_list())
        return {name: by_id.get(i, "") for name, i in _IDS.items()}

    @contextlib.contextmanager
    def __call__(self, **flags: bool) -> Iterator["Options"]:
        before = {name: self[name] for name in flags}
        try:
            for name, on in flags.items():
                self[name] = on
            yield self
        finally:
            for name, on in before.items():
                _ext.setopt(self._id(name), on)

    def backend(self, name: str):
        """Context in which new transform plans use `name`: builtin, fftw, ipp or auto."""
        if name not in _BACKENDS:
            raise ValueError(f"backend is one of {', '.join(_BACKENDS)}")
        return self(**_BACKENDS[name])

    @staticmethod
    def _id(name: str) -> int:
        try:
            return _IDS[name.lower()]
        except KeyError:
            raise KeyError(f"unknown option {name!r}; options are {', '.join(_IDS)}") from None

    def __repr__(self) -> str:
        return f"Options({self.as_dict()})"


options = Options()
