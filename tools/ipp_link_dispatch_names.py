"""Adds the per-processor library names an IPP dispatcher asks for.

An IPP dispatcher library (libipps.so.N, ...) loads the code for the running
processor at load time under a name written in its file, for example
libippsk0.so.12.1, and ends the process if it finds none. Some packagings
install those libraries under a shorter version (libippsk0.so.12). For every
name a dispatcher in DIR asks for that DIR lacks, this links it to the file
whose name is the longest prefix of it. Safe to repeat.

usage: ipp_link_dispatch_names.py DIR
"""
import os
import re
import sys

NAME = re.compile(rb"(libipp[a-z0-9_]+\.so(?:\.[0-9]+)+)\x00")


def requested_names(path):
    with open(path, "rb") as f:
        return {m.decode() for m in NAME.findall(f.read())}


def main(directory):
    files = set(os.listdir(directory))
    dispatchers = [f for f in files if re.fullmatch(r"libipp[a-z]+\.so\.[0-9]+", f)]
    for dispatcher in sorted(dispatchers):
        for wanted in sorted(requested_names(os.path.join(directory, dispatcher)) - files):
            candidates = [f for f in files if wanted.startswith(f + ".")]
            if candidates:
                target = max(candidates, key=len)
                os.symlink(target, os.path.join(directory, wanted))
                files.add(wanted)
                print(f"linked {wanted} -> {target}")


if __name__ == "__main__":
    main(sys.argv[1])
