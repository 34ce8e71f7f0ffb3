"""Captures on disk read in blocks through a memory map, so that a file of
many GB is worked with flat memory: each block's pages are dropped from the
process once it has been used."""
from __future__ import annotations

import mmap
import os
import struct
from dataclasses import dataclass
from typing import Iterator, Optional, Tuple

import numpy as np

from . import _ext

DTYPES = {"u8": np.uint8, "i16": np.int16, "u16": np.uint16, "f32": np.float32, "f64": np.float64}


@dataclass
class Capture:
    """Interleaved samples of `channels` channels at `offset` bytes into `path`.

    Volts are raw * scale + zero (scale 1, zero 0: raw units).
    """

    path: str
    dtype: np.dtype
    channels: int
    rate: float
    offset: int = 0
    scale: float = 1.0
    zero: float = 0.0
    size: Optional[int] = None  # bytes of samples; None: to the end of the file

    @property
    def frames(self) -> int:
        size = os.path.getsize(self.path) - self.offset if self.size is None else self.size
        return size // (self.dtype.itemsize * self.channels)

    @property
    def duration(self) -> float:
        return self.frames / self.rate

    def volts(self, raw):
        return np.asarray(raw, dtype=np.float64) * self.scale + self.zero

    def raw(self, volts: float) -> float:
        return (volts - self.zero) / self.scale

    def read(self, first: int, count: int) -> np.ndarray:
        """Frames [first, first + count) as (channels, n): a short look."""
        count = max(0, min(count, self.frames - first))
        with open(self.path, "rb") as f:
            f.seek(self.offset + first * self.dtype.itemsize * self.channels)
            raw = np.fromfile(f, dtype=self.dtype, count=count * self.channels)
        return _ext.deinterleave(raw, self.channels)

    def blocks(self, frames: int = 1 << 20, progress: bool = False,
               limit: Optional[int] = None) -> Iterator[Tuple[int, np.ndarray]]:
        """(first frame, samples as (channels, n)) block after block."""
        total = self.frames if limit is None else min(self.frames, limit)
        if total == 0:
            return
        frame_bytes = self.dtype.itemsize * self.channels
        bar = _progress(total, progress, os.path.basename(self.path))
        with open(self.path, "rb") as f, mmap.mmap(f.fileno(), 0, access=mmap.ACCESS_READ) as mapped:
            page = mmap.PAGESIZE
            for first in range(0, total, frames):
                n = min(frames, total - first)
                start = self.offset + first * frame_bytes
                view = np.frombuffer(mapped, dtype=self.dtype, count=n * self.channels, offset=start)
                block = _ext.deinterleave(view, self.channels)
                del view
                yield first, block
                # The pages of this block are no longer needed: give them back.
                begin = start // page * page
                end = start + n * frame_bytes
                mapped.madvise(mmap.MADV_DONTNEED, begin, end - begin)
                if bar:
                    bar.update(n)
        if bar:
            bar.close()


def _progress(total: int, wanted: bool, name: str):
    # A bar only for long work on a terminal (or when asked for).
    if not wanted or total < (1 << 24):
        return None
    from tqdm import tqdm
    return tqdm(total=total, unit=" frames", unit_scale=True, desc=name, leave=False)


def open_capture(path: str, dtype: Optional[str] = None, channels: int = 1, rate: float = 1.0,
                 scale: float = 1.0, zero: float = 0.0) -> Capture:
    """A .npy (frames x channels), .wav (PCM 8/16 bit, float 32/64) or raw file."""
    lower = path.lower()
    if lower.endswith(".npy"):
        return _npy(path, rate, scale, zero)
    if lower.endswith(".wav"):
        return _wav(path, scale, zero)
    if dtype is None:
        raise ValueError("a raw capture needs --dtype (u8, i16, u16, f32, f64)")
    return Capture(path, np.dtype(DTYPES[dtype]), channels, rate, 0, scale, zero)


def _npy(path: str, rate: float, scale: float, zero: float) -> Capture:
    with open(path, "rb") as f:
        version = np.lib.format.read_magic(f)
        shape, fortran, dtype = np.lib.format._read_array_header(f, version)
        offset = f.tell()
    if fortran or len(shape) > 2:
        raise ValueError(f"{path}: takes C-ordered arrays of (frames,) or (frames, channels)")
    return Capture(path, np.dtype(dtype), shape[1] if len(shape) == 2 else 1, rate, offset, scale, zero)


def _wav(path: str, scale: float, zero: float) -> Capture:
    with open(path, "rb") as f:
        riff, _, wave = struct.unpack("<4sI4s", f.read(12))
        if riff != b"RIFF" or wave != b"WAVE":
            raise ValueError(f"{path}: not a RIFF/WAVE file")
        fmt = None
        while True:
            header = f.read(8)
            if len(header) < 8:
                raise ValueError(f"{path}: no data chunk")
            chunk, size = struct.unpack("<4sI", header)
            if chunk == b"fmt ":
                fmt = struct.unpack("<HHIIHH", f.read(16))
                f.seek(size - 16 + (size & 1), 1)
            elif chunk == b"data":
                data_size = size
                break
            else:
                f.seek(size + (size & 1), 1)
        offset = f.tell()
    if fmt is None:
        raise ValueError(f"{path}: no fmt chunk")
    code, channels, rate, _, _, bits = fmt
    kinds = {(1, 8): np.uint8, (1, 16): np.int16, (3, 32): np.float32, (3, 64): np.float64}
    if (code, bits) not in kinds:
        raise ValueError(f"{path}: takes PCM 8/16-bit or float 32/64-bit WAV, not format {code} of {bits} bits")
    return Capture(path, np.dtype(kinds[(code, bits)]), channels, float(rate), offset, scale, zero, data_size)
