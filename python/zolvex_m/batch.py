"""zolvex batch: per-file statistics and spectra of every capture in a
folder, one Dask task per file. The library releases the GIL in every call,
so threads of one worker run in parallel as well as separate workers."""
from __future__ import annotations

import glob
import os
from typing import List, Optional

import numpy as np

from . import analysis
from .capture import open_capture


def _one(path: str, dtype: Optional[str], channels: int, rate: float, nfft: int) -> dict:
    cap = open_capture(path, dtype, channels, rate)
    stats = analysis.statistics(cap)
    row = {"file": os.path.basename(path), "frames": cap.frames, "channels": []}
    for c, s in enumerate(stats):
        spec = analysis.spectrum(cap, c, nfft, peaks=1) if cap.frames >= nfft else None
        row["channels"].append({
            "min": s.minimum, "max": s.maximum, "mean": s.mean, "rms": s.rms,
            "peak_hz": spec.peaks[0][0] if spec and spec.peaks else float("nan"),
            "peak": spec.peaks[0][1] if spec and spec.peaks else float("nan"),
        })
    return row


def run(directory: str, scheduler: str = "local", dtype: Optional[str] = None, channels: int = 1,
        rate: float = 1.0, nfft: int = 4096) -> List[dict]:
    """scheduler: "local" (a LocalCluster of threads in this process),
    "threads" or "synchronous" (Dask's local schedulers), or the address of
    a running Dask scheduler."""
    import dask
    files = sorted(p for p in glob.glob(os.path.join(directory, "*"))
                   if os.path.isfile(p) and (dtype or p.lower().endswith((".npy", ".wav"))))
    if not files:
        raise ValueError(f"{directory}: no captures (.npy, .wav, or raw files with --dtype)")
    tasks = [dask.delayed(_one)(p, dtype, channels, rate, nfft) for p in files]
    if scheduler in ("threads", "synchronous", "processes"):
        return list(dask.compute(*tasks, scheduler=scheduler))
    from distributed import Client, LocalCluster
    if scheduler == "local":
        with LocalCluster(n_workers=1, threads_per_worker=os.cpu_count() or 1, processes=False,
                          dashboard_address=None) as cluster, Client(cluster) as client:
            return list(client.gather(client.compute(tasks)))
    with Client(scheduler) as client:
        return list(client.gather(client.compute(tasks)))


def report(rows: List[dict]) -> None:
    print(f"{'file':<24} {'ch':>3} {'frames':>10} {'min':>10} {'max':>10} {'mean':>10} {'rms':>10} {'peak Hz':>10} {'peak':>10}")
    for row in rows:
        for c, ch in enumerate(row["channels"]):
            print(f"{row['file']:<24} {c:>3} {row['frames']:>10} {ch['min']:>10.4g} {ch['max']:>10.4g} "
                  f"{ch['mean']:>10.4g} {ch['rms']:>10.4g} {ch['peak_hz']:>10.4g} {ch['peak']:>10.4g}")
