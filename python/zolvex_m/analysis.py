"""The analyses of the command-line tool and the batch, block by block over
a capture: statistics with histograms, trigger times, averaged spectra and
filtering."""
from __future__ import annotations

from dataclasses import dataclass, field
from typing import Dict, List, Optional, Sequence

import numpy as np

import zolvex_m as z
from .capture import Capture


@dataclass
class ChannelStats:
    minimum: float
    maximum: float
    mean: float
    rms: float
    counts: np.ndarray  # histogram over [minimum, maximum]
    edges: np.ndarray  # raw units


def statistics(capture: Capture, bins: int = 64, block: int = 1 << 20, progress: bool = False) -> List[ChannelStats]:
    """Per channel min, max, mean, RMS (raw units) and a histogram of `bins`
    bins over the measured range. Integer samples are counted per code in
    one pass and the codes then gathered into the bins; floating-point
    samples take a second pass once the range is known."""
    channels = range(capture.channels)
    lows = [np.inf] * capture.channels
    highs = [-np.inf] * capture.channels
    sums = [0.0] * capture.channels
    squares = [0.0] * capture.channels
    integer = capture.dtype.kind in "iu"
    if integer:
        info = np.iinfo(capture.dtype)
        per_code = [z.Histogram(int(info.max) - int(info.min) + 1, (info.min, info.max)) for _ in channels]
    for _, samples in capture.blocks(block, progress):
        for c in channels:
            x = samples[c]
            low, high = z.minmax(x)
            lows[c], highs[c] = min(lows[c], low), max(highs[c], high)
            sums[c] += z.sum(x)
            squares[c] += _integer_square_sum(x) if integer else z.square_sum(x)
            if integer:
                per_code[c].add(x)
    if integer:
        hists = [_gather(per_code[c].counts, int(info.min), int(lows[c]), int(highs[c]), bins) for c in channels]
    else:
        fine = [z.Histogram(bins, (lows[c], highs[c])) for c in channels]
        for _, samples in capture.blocks(block, progress):
            for c in channels:
                fine[c].add(samples[c])
        hists = [(h.counts.copy(), h.edges) for h in fine]
    n = max(capture.frames, 1)
    return [ChannelStats(lows[c], highs[c], sums[c] / n, float(np.sqrt(squares[c] / n)), *hists[c]) for c in channels]


def _gather(per_code: np.ndarray, first_code: int, low: int, high: int, bins: int):
    """Counts per code gathered into `bins` bins over the codes [low, high]."""
    bins = min(bins, high - low + 1)
    codes = np.arange(low, high + 1)
    which = (codes - low) * bins // (high - low + 1)
    counts = np.bincount(which, weights=per_code[low - first_code:high - first_code + 1], minlength=bins)
    return counts.astype(np.uint64), np.linspace(low, high + 1, bins + 1)


def _integer_square_sum(x: np.ndarray) -> float:
    # Integer codes: squared in float64 by the library's own square sum.
    return z.square_sum(z.to_float64(x))


def trigger_times(capture: Capture, kind: str, levels: Sequence[float], channel: int = 0, mode: int = 0,
                  time_min: int = 0, time_max: int = 0, block: int = 1 << 20, progress: bool = False,
                  limit: int = 1_000_000) -> np.ndarray:
    """Frame indices of every trigger on one channel (levels in raw units)."""
    trig = z.Trigger(kind, capture.dtype, *levels, mode=mode, time_min=time_min, time_max=time_max)
    found: List[np.ndarray] = []
    count = 0
    for first, samples in capture.blocks(block, progress):
        positions = trig.find(samples[channel])
        found.append(positions.astype(np.int64) + first)
        count += len(positions)
        if count >= limit:
            break
    return np.concatenate(found)[:limit] if found else np.zeros(0, dtype=np.int64)


@dataclass
class Spectrum:
    frequencies: np.ndarray
    amplitude: np.ndarray  # volts (one-sided amplitude, RMS-averaged over segments)
    averages: int
    peaks: List[tuple] = field(default_factory=list)  # (frequency, amplitude)


def spectrum(capture: Capture, channel: int = 0, nfft: int = 4096, window: str = "flattop",
             averages: Optional[int] = None, peaks: int = 5, block: int = 1 << 20,
             progress: bool = False) -> Spectrum:
    """Averaged one-sided amplitude spectrum of a channel, in volts: segments
    of nfft samples, each windowed (amplitude-corrected) and transformed,
    their squared magnitudes averaged."""
    plan = z.Plan(nfft, np.float64)
    total = np.zeros(nfft // 2 + 1)
    count = 0
    carry = np.zeros(0)
    for _, samples in capture.blocks(block, progress):
        x = np.concatenate([carry, capture.volts(samples[channel])]) if len(carry) else capture.volts(samples[channel])
        whole = len(x) // nfft * nfft
        for start in range(0, whole, nfft):
            segment = z.window(window, x[start:start + nfft], scale=True)
            total += np.abs(plan.amplitude(segment)) ** 2
            count += 1
            if averages and count >= averages:
                break
        carry = x[whole:]
        if averages and count >= averages:
            break
    if count == 0:
        raise ValueError(f"the channel has fewer than nfft = {nfft} samples")
    amplitude = np.sqrt(total / count)
    frequencies = np.arange(nfft // 2 + 1) * capture.rate / nfft
    return Spectrum(frequencies, amplitude, count, _peaks(frequencies, amplitude, peaks))


def _peaks(frequencies: np.ndarray, amplitude: np.ndarray, count: int) -> List[tuple]:
    from scipy.signal import find_peaks
    # Peaks: 20 dB above the median floor and within 60 dB of the largest.
    floor = np.median(amplitude[1:]) if len(amplitude) > 1 else 0.0
    index, _ = find_peaks(amplitude, height=max(10 * floor, 1e-3 * amplitude[1:].max(initial=0)), distance=3)
    best = index[np.argsort(amplitude[index])[::-1][:count]]
    return [(float(frequencies[i]), float(amplitude[i])) for i in sorted(best)]


def design(kind: str, order: int, frequencies: Sequence[float], rate: float, btype: str = "lowpass",
           rp: float = 1.0, rs: float = 40.0, q: float = 30.0) -> z.Filter:
    edges = frequencies[0] if len(frequencies) == 1 else list(frequencies)
    if kind == "butter":
        return z.butter(order, edges, btype, fs=rate)
    if kind == "cheby1":
        return z.cheby1(order, rp, edges, btype, fs=rate)
    if kind == "cheby2":
        return z.cheby2(order, rs, edges, btype, fs=rate)
    if kind == "notch":
        return z.iirnotch(frequencies[0], q, fs=rate)
    if kind == "peak":
        return z.iirpeak(frequencies[0], q, fs=rate)
    raise ValueError("filter kind is one of butter, cheby1, cheby2, notch, peak")


def apply_filter(capture: Capture, filt_factory, output: str, block: int = 1 << 20, progress: bool = False) -> int:
    """Filters every channel (in volts, float32) block by block and writes the
    result interleaved as raw float32 (or .npy of frames x channels)."""
    filters = [filt_factory() for _ in range(capture.channels)]
    frames = 0
    npy = output.lower().endswith(".npy")
    shape = (capture.frames, capture.channels)
    target = np.lib.format.open_memmap(output, mode="w+", dtype=np.float32, shape=shape) if npy else open(output, "wb")
    try:
        for first, samples in capture.blocks(block, progress):
            volts = [z.to_float32(samples[c]) if capture.scale == 1 and capture.zero == 0
                     else capture.volts(samples[c]).astype(np.float32) for c in range(capture.channels)]
            out = np.empty((samples.shape[1], capture.channels), dtype=np.float32)
            for c, f in enumerate(filters):
                out[:, c] = f.filter(volts[c])
            if npy:
                target[first:first + len(out)] = out
            else:
                target.write(out.tobytes())
            frames += len(out)
    finally:
        if npy:
            target.flush()
            del target
        else:
            target.close()
    return frames


def response_table(filt: z.Filter, points: int = 8) -> List[tuple]:
    """(frequency, gain dB, phase degrees) at a few frequencies up to fs/2."""
    f, h = filt.freqz(4096, zpk=True)
    rows = []
    for i in np.linspace(0, len(f) - 1, points).astype(int):
        gain = 20 * np.log10(max(abs(h[i]), 1e-300))
        rows.append((float(f[i]), float(gain), float(np.degrees(np.angle(h[i])))))
    return rows
