"""The Python package against numpy and scipy, and the zolvex tool on
generated captures."""
import os
import resource
import subprocess
import sys

import numpy as np
import pytest
import scipy.signal as ss
from scipy.io import wavfile

import zolvex_m as z
from zolvex_m import cli

rng = np.random.default_rng(17)


def backends():
    found = ["builtin"]
    with z.options.backend("builtin"):
        pass
    try:
        z.Plan(8, backend="fftw")
        found.append("fftw")
    except ValueError:
        pass
    return found


@pytest.mark.parametrize("backend", backends())
@pytest.mark.parametrize("dtype,tol", [(np.float64, 1e-12), (np.float32, 2e-5)])
def test_rfft_matches_numpy_and_inverts(backend, dtype, tol):
    for n in (1, 2, 7, 64, 97, 1000, 4096, 3 * 1021):
        x = rng.standard_normal(n).astype(dtype)
        want = np.fft.rfft(x.astype(np.float64))
        got = z.rfft(x, backend=backend)
        assert got.dtype == (np.complex128 if dtype == np.float64 else np.complex64)
        assert np.max(np.abs(got - want)) <= tol * max(1.0, np.sqrt(n)) * np.sqrt(np.mean(x.astype(float) ** 2) * n)
        if n > 1:
            assert np.allclose(z.irfft(got, n, backend=backend), x, atol=tol * 10)
    cosine = np.cos(2 * np.pi * 10 * np.arange(1000) / 1000).astype(dtype)
    assert abs(abs(z.Plan(1000, dtype, backend).amplitude(cosine)[10]) - 1) < tol * 10


DESIGNS = [
    (lambda: z.butter(6, 0.2), lambda o: ss.butter(6, 0.2, output=o)),
    (lambda: z.butter(4, [100, 200], "bandpass", fs=1000), lambda o: ss.butter(4, [100, 200], "bandpass", fs=1000, output=o)),
    (lambda: z.cheby1(5, 1.0, 300, "highpass", fs=1000), lambda o: ss.cheby1(5, 1.0, 300, "highpass", fs=1000, output=o)),
    (lambda: z.cheby2(4, 40, [0.2, 0.5], "bandstop"), lambda o: ss.cheby2(4, 40, [0.2, 0.5], "bandstop", output=o)),
]


@pytest.mark.parametrize("ours,theirs", DESIGNS)
def test_filters_match_scipy(ours, theirs):
    f = ours()
    assert f.isstable
    assert np.allclose(f.sos, theirs("sos"), rtol=1e-9, atol=1e-12)
    b, a = theirs("ba")
    assert np.allclose(f.tf[0], b, atol=1e-12) and np.allclose(f.tf[1], a, atol=1e-12)
    w, h = f.freqz(512)
    w2, h2 = ss.freqz(b, a, 512, fs=f.fs)
    assert np.allclose(w, w2) and np.max(np.abs(h - h2)) < 1e-10
    w, h = f.freqz(300, zpk=True, whole=True)
    assert np.max(np.abs(h - ss.freqz_zpk(*theirs("zpk"), 300, whole=True, fs=f.fs)[1])) < 1e-10
    # Filtered in uneven blocks: the delay line carries over, as one sosfilt.
    x = rng.standard_normal(5000)
    want = ss.sosfilt(theirs("sos"), x)
    cuts = np.sort(rng.integers(0, len(x), 6))
    got = np.concatenate([f.filter(part) for part in np.split(x, cuts)])
    assert np.max(np.abs(got - want)) < 1e-10
    f.reset(steady_state=True)
    y = f.filter(np.full(2000, 3.0))
    zi = ss.sosfilt_zi(theirs("sos")) * 3.0
    assert np.allclose(y, ss.sosfilt(theirs("sos"), np.full(2000, 3.0), zi=zi)[0], atol=1e-9)


def test_notch_and_peak_match_scipy():
    for ours, theirs in ((z.iirnotch, ss.iirnotch), (z.iirpeak, ss.iirpeak)):
        b, a = theirs(50, 30, fs=1000)
        f = ours(50, 30, fs=1000)
        assert np.allclose(f.tf[0], b) and np.allclose(f.tf[1], a)
        x = rng.standard_normal(1000).astype(np.float32)
        assert np.allclose(f.filter(x), ss.lfilter(b, a, x), atol=1e-4)


@pytest.mark.parametrize("ours,theirs", [
    ("hanning", ss.windows.hann), ("hamming", ss.windows.hamming), ("blackman", ss.windows.blackman),
    ("blackmannuttall", ss.windows.nuttall), ("blackmanharris", ss.windows.blackmanharris),
    ("flattop", ss.windows.flattop), ("bartlett", ss.windows.bartlett),
    ("gaussian", lambda n: ss.windows.gaussian(n, 0.4 * (n - 1) / 2)),
])
def test_windows_match_scipy(ours, theirs):
    for n in (2, 3, 16, 101, 4096):
        assert np.allclose(z.window(ours, n), theirs(n), rtol=1e-12, atol=1e-13)
    # On float32 data, scaled by the amplitude correction (about 1 / mean).
    x = rng.standard_normal(1001).astype(np.float32)
    scaled = z.window(ours, x, scale=True)
    factor = scaled[500] / (x[500] * theirs(1001)[500])
    assert scaled.dtype == np.float32 and abs(factor * np.mean(theirs(1001)) - 1) < 0.01
    assert np.allclose(scaled, x * theirs(1001) * factor, rtol=1e-5, atol=1e-6)


KINDS = [
    ("edge_rising", (-0.2, 0.3), {}), ("edge_falling", (0.2, -0.3), {}), ("edge_any", (0.5, -0.5, 0.0), {}),
    ("window_inside", (0.3, -0.3), {}), ("window_outside", (1.0, -1.0), {}), ("window_enter", (1.0, 0.5, -1.0, -0.5), {}),
    ("window_exit", (0.2, 0.5, -0.2, -0.5), {}), ("pulse_width_positive", (0.5, -0.5), dict(mode=2, time_min=20)),
    ("interval_negative", (0.5, -0.5), dict(mode=0)), ("runt_pulse_any", (1.0, -1.0), dict(mode=0)),
]


@pytest.mark.parametrize("dtype", [np.float64, np.int16, np.uint8])
@pytest.mark.parametrize("kind,levels,timing", KINDS)
def test_triggers_across_block_cuts_equal_one_search(kind, levels, timing, dtype):
    n = np.arange(20000)
    x = 1.5 * np.sin(n / 40) + 0.8 * np.sin(n / 700) + 0.05 * rng.standard_normal(len(n))
    if dtype != np.float64:
        scale, offset = (30.0, 128.0) if dtype == np.uint8 else (1000.0, 0.0)
        x = np.clip(np.round(x * scale + offset), np.iinfo(dtype).min, np.iinfo(dtype).max).astype(dtype)
        levels = tuple(v * scale + offset for v in levels)
    whole = z.Trigger(kind, dtype, *levels, **timing).find(x)
    assert len(whole) > 0
    trig = z.Trigger(kind, dtype, *levels, **timing)
    found = []
    for part in np.split(x, np.sort(rng.integers(0, len(x), 25))):
        start = trig.samples
        found.extend(start + int(p) for p in trig.find(part))
    assert np.array_equal(found, whole)


def test_elementwise_and_statistics_against_numpy():
    x = rng.uniform(0.1, 2, 1001)
    y = rng.uniform(0.1, 2, 1001)
    for ours, theirs in ((z.sin, np.sin), (z.exp, np.exp), (z.log10, np.log10), (z.sqrt, np.sqrt), (z.tanh, np.tanh)):
        assert np.allclose(ours(x), theirs(x), rtol=1e-15)
        assert np.allclose(ours(x.astype(np.float32)), theirs(x.astype(np.float32)), rtol=1e-6)
    assert np.array_equal(z.add(x, y), x + y) and np.array_equal(z.mulc(x, 3.0), x * 3.0)
    assert np.allclose(z.hypot(x, y), np.hypot(x, y)) and np.allclose(z.atan2(y, x), np.arctan2(y, x))
    assert np.array_equal(z.Unwrap()(np.cumsum(x) % 6), np.unwrap(np.cumsum(x) % 6))
    codes = rng.integers(0, 4096, 5000, dtype=np.uint16)
    assert np.array_equal(z.shr_clip(codes, 4, 10, 200), np.clip(codes >> 4, 10, 200))
    assert np.array_equal(z.andc(codes, 0xF0F), codes & 0xF0F)
    assert z.minmax(codes) == (codes.min(), codes.max()) and z.sum(codes) == codes.sum()
    assert np.isclose(z.square_sum(x), np.sum(x * x))
    assert z.argmax(codes) == np.argmax(codes) and z.argmin(x) == np.argmin(x)
    assert z.find(codes, ">", 4000) == np.argmax(codes > 4000)
    counts, edges = z.histogram(x, 17, (0.0, 2.0))
    assert np.array_equal(counts, np.histogram(x, 17, (0.0, 2.0))[0])
    frames = rng.integers(-999, 999, (1000, 5), dtype=np.int16)
    assert np.array_equal(z.deinterleave(frames.ravel(), 5), frames.T)
    assert np.allclose(z.fit_exp(2 * np.exp(0.01 * np.arange(100))), (2, 0.01))
    assert z.noise(1, seed=5489)[0] == 0.1354770042967805
    assert np.array_equal(z.to_float32(codes), codes.astype(np.float32))


def test_options_read_force_and_restore():
    before = z.options.as_dict()
    with z.options(avx2=False, avx512f=False):
        assert not z.options["avx2"] and not z.options["avx512f"]
        assert np.array_equal(z.add(np.ones(100), np.ones(100)), np.full(100, 2.0))
    assert z.options.as_dict() == before
    with pytest.raises(KeyError):
        z.options["nope"]
    with pytest.raises(ValueError):
        z.options["neon"] = True


def test_bad_arguments_raise_clear_errors():
    x = np.arange(100, dtype=np.float64)
    with pytest.raises(TypeError, match="unsupported dtype; takes float32, float64"):
        z.sin(np.arange(10))
    with pytest.raises(ValueError, match="differ in length"):
        z.add(x, x[:50])
    with pytest.raises(TypeError, match="both arrays must have one dtype"):
        z.add(x, x.astype(np.float32))
    with pytest.raises(ValueError, match="C-contiguous"):
        z.sin(x, out=np.empty(200)[::2])
    with pytest.raises(TypeError, match="out must have dtype float64"):
        z.sin(x, out=np.empty(100, np.float32))
    with pytest.raises(TypeError):
        z.Trigger("edge_rising", np.float64, 0, 1).find(x.astype(np.float32))
    with pytest.raises(ValueError, match="kind .edge_sideways. is unknown"):
        z.Trigger("edge_sideways", np.float64, 0, 1)
    with pytest.raises(ValueError, match="takes 2 levels"):
        z.Trigger("edge_rising", np.float64, 0)
    with pytest.raises(z.Error) as failed:
        z.butter(4, 1.5)
    assert failed.value.status == -1 and failed.value.text == "Failed"
    with pytest.raises(ValueError, match="minmax: an empty array"):
        z.minmax(x[:0])
    # Strided and two-dimensional views are copied: same results as contiguous.
    strided = np.linspace(0, 3, 400)[::4]
    assert np.array_equal(z.sin(strided), z.sin(np.ascontiguousarray(strided)))
    square = np.linspace(0, 1, 64).reshape(8, 8)
    assert np.array_equal(z.exp(square.T), z.exp(np.ascontiguousarray(square.T))) and z.exp(square).shape == (8, 8)
    out = np.empty(100)
    assert z.cos(x, out=out) is out


def test_cli_demo_prints_the_analysis_and_writes_plots(tmp_path, capsys):
    assert cli.main(["demo", str(tmp_path), "--frames", str(1 << 18)]) == 0
    text = capsys.readouterr().out
    assert "262 trigger(s) of edge_rising on channel 0" in text
    assert "mean interval 0.001 s" in text
    peaks = [line.split() for line in text.splitlines() if line.strip().startswith(("50048.8", "120117"))]
    assert [round(float(p[1]), 2) for p in peaks[:2]] == [1.0, 0.25]
    assert "6 order" not in text and "3 section(s), stable" in text
    for name in ("histogram.png", "trigger.png", "spectrum.png", "filter.png", "spectrum-filtered.png"):
        assert (tmp_path / name).stat().st_size > 10000
    assert np.load(tmp_path / "filtered.npy", mmap_mode="r").shape == (1 << 18, 2)
    assert cli.main(["spectrum", str(tmp_path / "filtered.npy"), "--rate", "1e6", "--plot", str(tmp_path / "s.svg")]) == 0
    assert (tmp_path / "s.svg").read_text().startswith("<?xml")
    tone = (np.sin(np.arange(48000) * 2 * np.pi * 1000 / 48000) * 10000).astype(np.int16)
    wavfile.write(tmp_path / "t.wav", 48000, np.stack([tone, tone // 2], axis=1))
    capsys.readouterr()
    assert cli.main(["spectrum", str(tmp_path / "t.wav"), "--scale", "1e-4", "--nfft", "4800", "--channel", "1"]) == 0
    assert ["1000", "0.499866"] in [line.split()[:2] for line in capsys.readouterr().out.splitlines()]


def test_batch_on_dask_local_schedulers(tmp_path, capsys):
    for i in range(3):
        np.save(tmp_path / f"c{i}.npy", np.stack([np.cos(np.arange(8192) * (i + 1) * 0.25), np.ones(8192) * i], axis=1))
    for scheduler in ("threads", "local"):
        assert cli.main(["batch", str(tmp_path), "--scheduler", scheduler, "--rate", "8192", "--nfft", "1024"]) == 0
        rows = [line.split() for line in capsys.readouterr().out.splitlines()[1:]]
        assert [r[0] for r in rows] == ["c0.npy", "c0.npy", "c1.npy", "c1.npy", "c2.npy", "c2.npy"]
        assert [float(r[6]) for r in rows[1::2]] == [0.0, 1.0, 2.0]


def test_streamed_sparse_capture_keeps_memory_flat(tmp_path):
    path = tmp_path / "big.i16"
    size = 2 << 30  # 2 GiB of int16 samples, 4 channels: sparse, so zeros but for the tail
    with open(path, "wb") as f:
        f.seek(size - 8)
        f.write(np.array([100, -200, 300, -400], dtype=np.int16).tobytes())
    run = subprocess.run([sys.executable, "-m", "zolvex_m.cli", "info", str(path), "--dtype", "i16",
                          "--channels", "4", "--rate", "1e9", "--block", str(1 << 20)],
                         capture_output=True, text=True, check=True)
    assert f"{size // 8} frames" in run.stdout
    assert "      3         -400            0" in run.stdout
    peak_kib = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    assert peak_kib < 400 * 1024, f"peak memory {peak_kib} KiB for a 2 GiB capture"
