"""Pictures of the analyses (matplotlib, drawn off-screen): waveform with
trigger marks, histogram, spectrum in dB, filter magnitude and phase."""
from __future__ import annotations

from typing import Optional, Sequence

import numpy as np


def _figure(rows: int = 1):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    fig, axes = plt.subplots(rows, 1, figsize=(9, 3.2 * rows), squeeze=False)
    return fig, [a[0] for a in axes]


def _save(fig, path: str) -> None:
    fig.tight_layout()
    fig.savefig(path, dpi=100)
    import matplotlib.pyplot as plt
    plt.close(fig)


def waveform(path: str, time: np.ndarray, volts: np.ndarray, marks: Sequence[float] = (),
             levels: Sequence[float] = (), title: str = "") -> None:
    fig, (ax,) = _figure()
    ax.plot(time * 1e3, volts, lw=0.8, label="signal")
    for level in levels:
        ax.axhline(level, color="tab:gray", ls="--", lw=0.8)
    shown = [t for t in marks if time[0] <= t <= time[-1]]
    if shown:
        ax.plot(np.asarray(shown) * 1e3, np.interp(shown, time, volts), "rv", ms=7, label="trigger")
    ax.set_xlabel("time (ms)")
    ax.set_ylabel("V")
    ax.set_title(title)
    ax.legend(loc="upper right")
    ax.grid(alpha=0.3)
    _save(fig, path)


def histograms(path: str, hists, names: Optional[Sequence[str]] = None) -> None:
    """hists: (counts, edges in volts) per channel."""
    fig, axes = _figure(len(hists))
    for c, (ax, (counts, edges)) in enumerate(zip(axes, hists)):
        ax.stairs(counts, edges, fill=True)
        ax.set_xlabel("V")
        ax.set_ylabel("samples")
        ax.set_title(names[c] if names else f"channel {c}: histogram")
        ax.grid(alpha=0.3)
    _save(fig, path)


def spectrum(path: str, frequencies: np.ndarray, amplitude: np.ndarray, peaks=(), title: str = "") -> None:
    fig, (ax,) = _figure()
    db = 20 * np.log10(np.maximum(amplitude, 1e-12))
    ax.plot(frequencies / 1e3, db, lw=0.8)
    for f, a in peaks:
        ax.annotate(f"{f / 1e3:.3g} kHz", (f / 1e3, 20 * np.log10(a)), textcoords="offset points",
                    xytext=(0, 6), ha="center", fontsize=8, color="tab:red")
    ax.set_xlabel("frequency (kHz)")
    ax.set_ylabel("amplitude (dBV)")
    ax.set_title(title)
    ax.set_ylim(max(db.min(), db.max() - 140), db.max() + 10)
    ax.grid(alpha=0.3)
    _save(fig, path)


def response(path: str, frequencies: np.ndarray, h: np.ndarray, title: str = "") -> None:
    fig, (mag, phase) = _figure(2)
    mag.plot(frequencies / 1e3, 20 * np.log10(np.maximum(np.abs(h), 1e-12)), lw=0.9)
    mag.set_ylabel("gain (dB)")
    mag.set_ylim(-100, 10)
    mag.set_title(title)
    phase.plot(frequencies / 1e3, np.degrees(np.unwrap(np.angle(h))), lw=0.9, color="tab:orange")
    phase.set_ylabel("phase (degrees)")
    for ax in (mag, phase):
        ax.set_xlabel("frequency (kHz)")
        ax.grid(alpha=0.3)
    _save(fig, path)
