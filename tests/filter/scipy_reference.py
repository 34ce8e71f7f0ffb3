#!/usr/bin/python3
# Reference values for the IIR filter tests, from Debian's python3-scipy.
#
# Writes records "case <kind> <parameters...>", each followed by lines
# "<name> <values...>" (complex arrays as interleaved real, imaginary pairs),
# as filter_support.h reads them. Run at build time by
# tests/filter/CMakeLists.txt: python3 scipy_reference.py <output file>.
import sys

import numpy as np
from scipy import signal

FS, RP, RS = 1000.0, 1.0, 40.0
# family: (design, analog prototype, its parameter)
FAMILIES = [(signal.butter, signal.buttap, 0.0),
            (lambda n, wn, **kw: signal.cheby1(n, RP, wn, **kw), lambda n: signal.cheb1ap(n, RP), RP),
            (lambda n, wn, **kw: signal.cheby2(n, RS, wn, **kw), lambda n: signal.cheb2ap(n, RS), RS)]
BTYPES = ['lowpass', 'highpass', 'bandpass', 'bandstop']
EDGES = [[(30.0, 0.0), (120.0, 0.0), (240.0, 0.0), (400.0, 0.0)],
         [(100.0, 200.0), (50.0, 400.0), (220.0, 260.0), (300.0, 310.0)]]


# The gain again, from scipy's roots, in x87 extended precision
# (numpy.longdouble), whose range holds the products of order 255 that
# overflow or underflow scipy's doubles.
def extended_gain(family, btype, order, f1, f2):
    z, p, _ = FAMILIES[family][1](order)
    ext = lambda r: np.asarray(r, np.clongdouble)
    k = [1, np.prod(-ext(p)).real, (np.prod(-ext(p)) / np.prod(-ext(z))).real][family]
    if family == 1 and order % 2 == 0:
        k /= np.sqrt(np.longdouble(1) + (10 ** (0.1 * RP) - 1))
    w1, w2 = (4 * np.tan(np.pi * (2 * f / FS) / 2) for f in (f1, f2))
    wo, bw, degree = np.sqrt(w1 * w2), w2 - w1, len(p) - len(z)
    inverted = (np.prod(-ext(z)) / np.prod(-ext(p))).real
    k *= [np.longdouble(w1) ** degree, inverted, np.longdouble(bw) ** degree, inverted][btype]
    za, pa, _ = [lambda: signal.lp2lp_zpk(z, p, 1, w1), lambda: signal.lp2hp_zpk(z, p, 1, w1),
                 lambda: signal.lp2bp_zpk(z, p, 1, wo, bw), lambda: signal.lp2bs_zpk(z, p, 1, wo, bw)][btype]()
    return k * (np.prod(4 - ext(za)) / np.prod(4 - ext(pa))).real


def line(out, name, values):
    values = np.asarray(values)
    values = np.column_stack((values.real, values.imag)).ravel() if np.iscomplexobj(values) else values
    out.write(name + ' ' + ' '.join(repr(float(v)) for v in values) + '\n')


def design(out, family, btype, order):
    f1, f2 = EDGES[btype // 2][order % 4]
    z, p, k = FAMILIES[family][0](order, f1 if btype < 2 else [f1, f2], btype=BTYPES[btype], output='zpk', fs=FS)
    out.write('case design %d %d %d %r %r %r %r\n' % (family, btype, order, FS, f1, f2, FAMILIES[family][2]))
    line(out, 'zeros', np.asarray(z, complex))
    line(out, 'poles', np.asarray(p, complex))
    line(out, 'gain', [k])
    out.write('extended_gain %s\n' % np.format_float_scientific(extended_gain(family, btype, order, f1, f2)))
    sos = signal.zpk2sos(z, p, k, pairing='nearest')
    line(out, 'sos', sos.ravel())
    if order <= 8:  # the test input: exact in binary, the same on both sides
        x = np.array([((k * 7919) % 1000) / 500.0 - 1.0 for k in range(400)])
        line(out, 'sosfilt', signal.sosfilt(sos, x, zi=signal.sosfilt_zi(sos) * x[0])[0])
    if order in (3, 8):
        b, a = signal.zpk2tf(z, p, k)
        for whole in (False, True):
            line(out, 'freqz%d' % whole, signal.freqz(b, a, worN=128, whole=whole)[1])
            line(out, 'freqz_zpk%d' % whole, signal.freqz_zpk(z, p, k, worN=128, whole=whole)[1])
        lo, hi = np.log10(2 * np.pi / FS), np.log10(np.pi)
        w = 10.0 ** (lo + np.arange(128) * (hi - lo) / 128)
        w[0] = 2 * np.pi / FS
        line(out, 'freqz_log', signal.freqz_zpk(z, p, k, worN=w)[1])


with open(sys.argv[1], 'w') as output:
    for family in range(3):
        for btype in range(4):
            for order in list(range(1, 21)) + [64, 255]:
                design(output, family, btype, order)
    for name, make in (('notch', signal.iirnotch), ('peak', signal.iirpeak)):
        for f0, bandwidth in ((50.0, 5.0), (250.0, 30.0), (499.0, 2.0), (500.0, 10.0), (1.0, 0.5)):
            b, a = make(f0, f0 / bandwidth, fs=FS)
            output.write('case %s %r %r %r\n' % (name, FS, f0, bandwidth))
            line(output, 'b', b)
            line(output, 'a', a)
