"""zolvex: analyses of raw captures from the command line.

  zolvex info CAPTURE       per channel min/max/mean/RMS and a histogram
  zolvex trigger CAPTURE    trigger times of any trigger kind
  zolvex spectrum CAPTURE   windowed, averaged one-sided amplitude spectrum
  zolvex filter CAPTURE     design, apply, write the filtered capture
  zolvex demo [DIR]         generate a capture and run all of the above
  zolvex batch DIR          statistics and spectra of many captures on Dask

CAPTURE is .npy, .wav or raw interleaved binary (--dtype, --channels, --rate).
"""
from __future__ import annotations

import argparse
import os
import sys
from typing import List, Optional

import numpy as np

import zolvex_m as z
from . import analysis, plots
from .capture import DTYPES, open_capture


def _capture_args(p: argparse.ArgumentParser) -> None:
    p.add_argument("capture", help=".npy, .wav or raw interleaved samples")
    p.add_argument("--dtype", choices=sorted(DTYPES), help="sample type of a raw capture")
    p.add_argument("--channels", type=int, default=1, help="interleaved channels of a raw capture")
    p.add_argument("--rate", type=float, default=1.0, help="samples per second per channel (raw, .npy)")
    p.add_argument("--scale", type=float, default=1.0, help="volts per raw unit")
    p.add_argument("--zero", type=float, default=0.0, help="volts at raw 0")
    p.add_argument("--block", type=int, default=1 << 20, help="frames per block")
    p.add_argument("--progress", action="store_true", default=sys.stderr.isatty(), help="progress bar")
    p.add_argument("--plot", metavar="OUT.png|OUT.svg", help="draw the result")


def _open(args):
    return open_capture(args.capture, args.dtype, args.channels, args.rate, args.scale, args.zero)


def cmd_info(args) -> None:
    cap = _open(args)
    print(f"{args.capture}: {cap.channels} channel(s) of {cap.dtype.name}, {cap.frames} frames, "
          f"{cap.rate:g} Hz, {cap.duration:.6g} s")
    stats = analysis.statistics(cap, args.bins, args.block, args.progress)
    print(f"{'channel':>7} {'min':>12} {'max':>12} {'mean':>12} {'rms':>12}   (volts)")
    for c, s in enumerate(stats):
        lo, hi, mean = cap.volts([s.minimum, s.maximum, s.mean])
        rms = s.rms * abs(cap.scale) if cap.zero == 0 else float("nan")
        print(f"{c:>7} {lo:>12.6g} {hi:>12.6g} {mean:>12.6g} {rms:>12.6g}")
    for c, s in enumerate(stats):
        top = np.argsort(s.counts)[::-1][:3]
        edges = cap.volts(s.edges)
        common = ", ".join(f"[{edges[i]:.4g}, {edges[i + 1]:.4g}) V: {int(s.counts[i])}" for i in sorted(top))
        print(f"channel {c} histogram ({len(s.counts)} bins), fullest: {common}")
    if args.plot:
        plots.histograms(args.plot, [(s.counts, cap.volts(s.edges)) for s in stats])
        print(f"plot: {args.plot}")


def cmd_trigger(args) -> None:
    cap = _open(args)
    levels = [cap.raw(v) for v in args.level] if args.volts else list(args.level)
    frames = analysis.trigger_times(cap, args.kind, levels, args.channel, args.mode, args.time_min, args.time_max,
                                    args.block, args.progress, args.limit)
    print(f"{len(frames)} trigger(s) of {args.kind} on channel {args.channel}")
    for f in frames[:args.show]:
        print(f"  frame {f:>12}  t = {f / cap.rate:.9g} s")
    if len(frames) > args.show:
        print(f"  ... {len(frames) - args.show} more")
    if len(frames) > 1:
        print(f"mean interval {np.mean(np.diff(frames)) / cap.rate:.6g} s")
    if args.plot:
        span = int(min(cap.frames, max(args.window * cap.rate, 16)))
        first = max(int(frames[0]) - span // 4, 0) if len(frames) else 0
        samples = cap.read(first, span)
        time = (first + np.arange(samples.shape[1])) / cap.rate
        plots.waveform(args.plot, time, cap.volts(samples[args.channel]), frames / cap.rate, cap.volts(levels),
                       f"{args.kind} on channel {args.channel}")
        print(f"plot: {args.plot}")


def cmd_spectrum(args) -> None:
    cap = _open(args)
    spec = analysis.spectrum(cap, args.channel, args.nfft, args.window, args.averages, args.peaks,
                             args.block, args.progress)
    resolution = cap.rate / args.nfft
    print(f"channel {args.channel}: {args.nfft}-point {args.window} spectrum, {spec.averages} average(s), "
          f"resolution {resolution:.6g} Hz")
    print(f"{'frequency (Hz)':>16} {'amplitude (V)':>14} {'dBV':>8}")
    for f, a in spec.peaks:
        print(f"{f:>16.6g} {a:>14.6g} {20 * np.log10(a):>8.2f}")
    if args.plot:
        plots.spectrum(args.plot, spec.frequencies, spec.amplitude, spec.peaks,
                       f"channel {args.channel}: amplitude spectrum ({spec.averages} averages)")
        print(f"plot: {args.plot}")


def cmd_filter(args) -> None:
    cap = _open(args)
    make = lambda: analysis.design(args.kind, args.order, args.freq, cap.rate, args.type, args.rp, args.rs, args.q)
    filt = make()
    print(f"{args.kind} {args.type if args.kind not in ('notch', 'peak') else ''} filter at "
          f"{', '.join(f'{f:g}' for f in args.freq)} Hz, fs {cap.rate:g} Hz: {len(filt.sos)} section(s), "
          f"{'stable' if filt.isstable else 'UNSTABLE'}")
    print(f"{'frequency (Hz)':>16} {'gain (dB)':>10} {'phase (deg)':>12}")
    for f, gain, phase in analysis.response_table(filt):
        print(f"{f:>16.6g} {gain:>10.2f} {phase:>12.1f}")
    if args.output:
        frames = analysis.apply_filter(cap, make, args.output, args.block, args.progress)
        print(f"wrote {frames} frames x {cap.channels} channel(s) of float32 volts to {args.output}")
    if args.plot:
        f, h = filt.freqz(4096, zpk=True)
        plots.response(args.plot, f, h, f"{args.kind} response")
        print(f"plot: {args.plot}")


def cmd_demo(args) -> None:
    from . import demo
    demo.run(args.directory, args.frames)


def cmd_batch(args) -> None:
    from . import batch
    rows = batch.run(args.directory, args.scheduler, args.dtype, args.channels, args.rate, args.nfft)
    batch.report(rows)


def parser() -> argparse.ArgumentParser:
    top = argparse.ArgumentParser(prog="zolvex", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    top.add_argument("--version", action="version", version=f"zolvex {z.__version__}")
    sub = top.add_subparsers(dest="command", required=True)

    p = sub.add_parser("info", help="statistics and histogram per channel")
    _capture_args(p)
    p.add_argument("--bins", type=int, default=64)
    p.set_defaults(run=cmd_info)

    p = sub.add_parser("trigger", help="trigger times")
    _capture_args(p)
    p.add_argument("--kind", default="edge_rising", help="edge_rising, edge_falling, edge_any, window_inside, "
                   "window_outside, window_enter, window_exit, pulse_width_positive, pulse_width_negative, "
                   "interval_positive, interval_negative, runt_pulse_positive, runt_pulse_negative, runt_pulse_any")
    p.add_argument("--level", type=float, nargs="+", required=True, help="levels in the kind's order")
    p.add_argument("--volts", action="store_true", help="levels are volts (with --scale/--zero), not raw units")
    p.add_argument("--channel", type=int, default=0)
    p.add_argument("--mode", type=int, default=0, help="duration test of the timed kinds (0-4)")
    p.add_argument("--time-min", type=int, default=0, help="samples")
    p.add_argument("--time-max", type=int, default=0, help="samples")
    p.add_argument("--limit", type=int, default=1_000_000, help="stop after this many triggers")
    p.add_argument("--show", type=int, default=10, help="trigger times printed")
    p.add_argument("--window", type=float, default=0.005, help="seconds of signal in the plot")
    p.set_defaults(run=cmd_trigger)

    p = sub.add_parser("spectrum", help="averaged amplitude spectrum with its peaks")
    _capture_args(p)
    p.add_argument("--channel", type=int, default=0)
    p.add_argument("--nfft", type=int, default=4096)
    p.add_argument("--window", default="flattop", help="window (flattop: amplitudes exact between bins)")
    p.add_argument("--averages", type=int, help="at most this many segments (default: the whole capture)")
    p.add_argument("--peaks", type=int, default=5)
    p.set_defaults(run=cmd_spectrum)

    p = sub.add_parser("filter", help="design, apply and write")
    _capture_args(p)
    p.add_argument("--kind", default="butter", choices=["butter", "cheby1", "cheby2", "notch", "peak"])
    p.add_argument("--type", default="lowpass", choices=["lowpass", "highpass", "bandpass", "bandstop"])
    p.add_argument("--order", type=int, default=4)
    p.add_argument("--freq", type=float, nargs="+", required=True, help="edge(s) or centre, Hz")
    p.add_argument("--rp", type=float, default=1.0, help="cheby1 pass-band ripple, dB")
    p.add_argument("--rs", type=float, default=40.0, help="cheby2 stop-band attenuation, dB")
    p.add_argument("--q", type=float, default=30.0, help="notch/peak quality")
    p.add_argument("--output", "-o", help="filtered capture: raw float32 interleaved, or .npy")
    p.set_defaults(run=cmd_filter)

    p = sub.add_parser("demo", help="generate a capture and analyse it")
    p.add_argument("directory", nargs="?", default="zolvex-demo")
    p.add_argument("--frames", type=int, default=1 << 20)
    p.set_defaults(run=cmd_demo)

    p = sub.add_parser("batch", help="statistics and spectra of every capture in DIR, on Dask")
    p.add_argument("directory")
    p.add_argument("--scheduler", default="local", help="local (a LocalCluster), threads, synchronous, "
                   "or the ADDRESS of a running Dask scheduler (tcp://host:8786)")
    p.add_argument("--dtype", choices=sorted(DTYPES), help="sample type of raw captures")
    p.add_argument("--channels", type=int, default=1)
    p.add_argument("--rate", type=float, default=1.0)
    p.add_argument("--nfft", type=int, default=4096)
    p.set_defaults(run=cmd_batch)
    return top


def main(argv: Optional[List[str]] = None) -> int:
    args = parser().parse_args(argv)
    try:
        args.run(args)
    except (ValueError, TypeError, OSError, z.Error) as e:
        print(f"zolvex {args.command}: {e}", file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main())
