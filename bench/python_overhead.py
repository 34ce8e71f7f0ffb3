#!/usr/bin/env python3
"""Python call overhead of the zolvex_m package against the C call.

Times zolvex_m.add (float64, into out=) from Python at 4 KiB and 64 MiB per
operand and compares it with the C benchmark add_f64 at the same sizes (the
processor's widest kernel, regime 4 = AVX-512), run here in the same job;
numpy.add on the same arrays is the anchor of the Python side. A 16-sample
call shows the fixed cost alone.

  PYTHONPATH=build/python .venv/bin/python bench/python_overhead.py build/bench/zolvex_m_bench
"""
import json
import subprocess
import sys
import timeit

import numpy as np

import zolvex_m as z


def python_ns(function, n: int) -> float:
    x, y, out = np.full(n, 1.5), np.full(n, 2.5), np.empty(n)
    call = lambda: function(x, y, out=out)
    number = max(1, int(2e6 // max(n, 1000)))
    best = min(timeit.repeat(call, number=number, repeat=5))
    return best / number * 1e9


def c_ns(bench: str) -> dict:
    run = subprocess.run([bench, "--benchmark_filter=^add_f64/bytes:(4096|67108864)/regime:4$",
                          "--benchmark_format=json", "--benchmark_repetitions=3",
                          "--benchmark_report_aggregates_only=true"], capture_output=True, text=True, check=True)
    rows = json.loads(run.stdout)["benchmarks"]
    return {int(r["name"].split("bytes:")[1].split("/")[0]) // 8: r["real_time"] * {"ns": 1, "us": 1e3, "ms": 1e6}[r["time_unit"]]
            for r in rows if r.get("aggregate_name") == "median"}


def main() -> None:
    c = c_ns(sys.argv[1]) if len(sys.argv) > 1 else {}
    print(f"{'samples':>10} {'C call (ns)':>12} {'zolvex_m.add (ns)':>18} {'overhead (ns)':>14} {'numpy.add (ns)':>15}")
    for n in (16, 512, 8 << 20):
        ours = python_ns(z.add, n)
        theirs = python_ns(np.add, n)
        cc = c.get(n)
        over = f"{ours - cc:14.0f}" if cc else f"{'':>14}"
        print(f"{n:>10} {cc if cc else float('nan'):>12.0f} {ours:>18.0f} {over} {theirs:>15.0f}")


if __name__ == "__main__":
    main()
