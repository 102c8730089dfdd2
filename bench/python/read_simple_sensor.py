#!/usr/bin/env python3
"""Reading a 10 M-record simple sensor into numpy: velmio against
numpy.fromfile with a big-endian structured dtype over the same file, followed
by the same scaling (milliseconds after the reference minute, values in units
of 1e-7 rad). A measurement, not a test: it prints the times and their ratio.

    PYTHONPATH=build/python /usr/bin/python3 bench/python/read_simple_sensor.py [RECORDS] [DIR] [PASSES]

Passes alternate between the two sides and the best of each is kept, so
that other work on the machine weighs on both alike; the load average is
printed beside the ratio.
"""

import os
import sys
import tempfile
import time

import numpy as np

import velmio

HEADER = 16 + 32  # validation record and summary before the first record
RECORD = np.dtype([("status", ">u4"), ("time", ">i4"), ("value", ">i4")])


def best_of(runs, fn):
    best, result = float("inf"), None
    for _ in range(runs):
        start = time.perf_counter()
        result = fn()
        best = min(best, time.perf_counter() - start)
    return best, result


def main():
    records = int(sys.argv[1]) if len(sys.argv) > 1 else 10_000_000
    base = sys.argv[2] if len(sys.argv) > 2 and sys.argv[2] else None
    passes = int(sys.argv[3]) if len(sys.argv) > 3 else 7
    with tempfile.TemporaryDirectory(dir=base) as line:
        start = 767966400.0  # a whole minute: the reference time of the file
        t = start + np.arange(records) * 0.01
        v = np.round(np.sin(np.arange(records) * 1e-3), 7)
        written = time.perf_counter()
        with velmio.create_sensor(line, "Gyro") as w:
            w.write_segment("bench.raw", time=t, value=v)
        written = time.perf_counter() - written
        path = os.path.join(line, "Gyro")
        reference = round(start / 60.0) * 60.0

        def with_numpy():
            raw = np.fromfile(path, dtype=RECORD, offset=HEADER)
            return raw["time"] / 1000.0 + reference, raw["value"] / 1e7, raw["status"].astype(np.uint32)

        parts = {"open": float("inf"), "read": float("inf")}

        def with_velmio():
            # The library's two costs, kept apart: the open (time index and
            # summary) and the bulk read into the arrays.
            start = time.perf_counter()
            h = velmio.open_line(line).open("Gyro")
            opened = time.perf_counter()
            try:
                c = h.read_records()
            finally:
                h.close()
            parts["open"] = min(parts["open"], opened - start)
            parts["read"] = min(parts["read"], time.perf_counter() - opened)
            return c["time"], c["value"], c["status"]

        # The first pass of each side fills the page cache and the huge page
        # pool; it counts like any other, the best of all is kept.
        fromfile = ours = float("inf")
        ratios = []
        for _ in range(passes):
            t_numpy, expected = best_of(1, with_numpy)
            t_ours, got = best_of(1, with_velmio)
            fromfile, ours = min(fromfile, t_numpy), min(ours, t_ours)
            ratios.append(t_numpy / t_ours)
            del expected, got
        _, expected = best_of(1, with_numpy)
        _, got = best_of(1, with_velmio)
        assert all(np.array_equal(a, b) for a, b in zip(got, expected)), "the two reads differ"
        del expected, got
        with_datetimes, _ = best_of(3, lambda: velmio.open_line(line).read("Gyro"))
        size = os.path.getsize(path) / 1e6
        print(f"{records} records, {size:.0f} MB (written in {written:.2f} s)")
        print(f"numpy.fromfile + scaling: {fromfile:.3f} s")
        print(f"velmio read_records:      {ours:.3f} s (open {parts['open']:.3f} s, bulk read {parts['read']:.3f} s)")
        print(f"velmio Line.read:         {with_datetimes:.3f} s (with the datetime64 column)")
        print(f"velmio speed / fromfile speed: {fromfile / ours:.2f} (target >= 0.8), best of {passes} passes")
        print(f"pass by pass: {' '.join(f'{r:.2f}' for r in ratios)}; load average {os.getloadavg()[0]:.2f}")


if __name__ == "__main__":
    main()
