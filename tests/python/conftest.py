"""Shared pieces of the Python package tests: sample data of every family and
the C API itself (libvelmio through ctypes) as the reference writer."""

import ctypes
import os

import numpy as np
import pytest

import velmio

NAVIGATION = ("Navigation", "SSSNavigation")
T0 = 767966413.0  # 2004-05-02 12:00:00 UTC, seconds since 1980


def sample(family, segments=2, per_segment=6, seed=1):
    """Segments of plausible values: [(name, columns)] for time series,
    [(name, profiles, beams)] for profile families. Times are whole
    milliseconds, beam status bits lie in the upper 16 bits."""
    rng = np.random.default_rng(seed)
    out = []
    for s in range(segments):
        n = per_segment
        t = T0 + s * 100.0 + np.arange(n) * 0.25
        status = rng.integers(0, 4, n).astype(np.uint32) << 16
        if family in velmio.PROFILE_FAMILIES:
            counts = rng.integers(1, 5, n).astype(np.uint32)
            total = int(counts.sum())
            profiles = {"time": t, "beam_count": counts, "first_beam": np.full(n, 1, np.uint32),
                        "status": status, "angle1": rng.uniform(-0.5, 0.5, n), "angle2": rng.uniform(-0.5, 0.5, n),
                        "profile_word": rng.integers(0, 1000, n).astype(np.uint32)}
            ping = np.repeat(t, counts) + np.concatenate([np.arange(c) for c in counts]) * 0.001
            beams = {"time": ping, "status": rng.integers(0, 8, total).astype(np.uint32) << 16,
                     "depth": rng.uniform(5, 80, total), "x": rng.uniform(-50, 50, total),
                     "y": rng.uniform(-50, 50, total), "range": rng.uniform(1, 200, total),
                     "value": rng.uniform(-2, 2, total), "angle1": rng.uniform(-1, 1, total),
                     "angle2": rng.uniform(-1, 1, total), "error1": rng.uniform(0, 3, total),
                     "error2": rng.uniform(0, 3, total)}
            out.append((f"raw_{s}.dat", profiles, beams))
        elif family in NAVIGATION:
            out.append((f"raw_{s}.dat", {"time": t, "latitude": rng.uniform(0.7, 0.8, n),
                                         "longitude": rng.uniform(-1.2, -1.1, n), "metres": rng.uniform(0, 9, n),
                                         "status": status}))
        else:
            out.append((f"raw_{s}.dat", {"time": t, "value": rng.uniform(-1.5, 1.5, n), "status": status}))
    return out


def write_python(line, family, segments):
    with velmio.create_sensor(line, family) as w:
        for seg in segments:
            if family in velmio.PROFILE_FAMILIES:
                w.write_segment(seg[0], profiles=seg[1], beams=seg[2])
            else:
                w.write_segment(seg[0], seg[1])


D, U = ctypes.c_double, ctypes.c_uint


class CApi:
    """The flat C writers, one record or beam per call."""

    def __init__(self, path):
        self.lib = ctypes.CDLL(path)

    def fn(self, name, restype=ctypes.c_int):
        f = getattr(self.lib, name)
        f.restype = restype
        return f

    def open(self, line, family, mode):
        err = ctypes.c_int(0)
        h = self.fn(f"{family}OpenDir", ctypes.c_void_p)(str(line), mode, ctypes.byref(err))
        assert h, f"{family}OpenDir: {err.value}"
        return ctypes.c_void_p(h)

    def call(self, name, *args):
        rc = self.fn(name)(*args)
        assert rc == 0, f"{name}: {rc}"

    def write(self, line, family, segments):
        os.makedirs(line, exist_ok=True)
        p = "ObservedDepths" if family.startswith("ObservedDepths") else family
        h = self.open(line, family, "create")
        if family in NAVIGATION or family == "SLRange":
            self.call(f"{p}BgnSeqWriteSummary", h, U(1 if family in NAVIGATION else 0))
        else:
            self.call(f"{p}BgnSeqWriteSummary", h)
        for seg in segments:
            self.call(f"{p}BgnSeqWriteLineSegment", h, seg[0])
            if family in velmio.PROFILE_FAMILIES:
                prof, beams = seg[1], seg[2]
                k = 0
                for i in range(len(prof["time"])):
                    head = [U(int(prof["beam_count"][i])), U(int(prof["first_beam"][i])), D(prof["time"][i])]
                    if family == "TPE":
                        head += [U(int(prof["profile_word"][i]))]
                    else:
                        head += [D(prof["angle1"][i]), D(prof["angle2"][i])]
                    self.call(f"{p}BgnSeqWriteProfile", h, *head, U(int(prof["status"][i])))
                    for _ in range(int(prof["beam_count"][i])):
                        b = {c: D(v[k]) for c, v in beams.items() if c != "status"}
                        values = {"TPE": ["time", "error1", "error2"],
                                  "SLRange": ["time", "range", "value", "angle1", "angle2"]}.get(
                            family, ["time", "y", "x", "depth"])
                        extra = [D(0), D(0)] if p == "ObservedDepths" else []
                        self.call(f"{p}SeqWrite", h, *[b[c] for c in values], *extra, U(int(beams["status"][k])))
                        k += 1
                    self.call(f"{p}EndSeqWriteProfile", h)
            else:
                c = seg[1]
                for i in range(len(c["time"])):
                    values = ([c["latitude"][i], c["longitude"][i], c["metres"][i]] if family in NAVIGATION
                              else [c["value"][i]])
                    self.call(f"{p}SeqWrite", h, D(c["time"][i]), *map(D, values), U(int(c["status"][i])))
            self.call(f"{p}EndSeqWriteLineSegment", h, U(0))
        self.call(f"{p}EndSeqWriteSummary", h, U(0))
        self.call(f"{p}Close", h)


@pytest.fixture(scope="session")
def capi():
    path = os.environ.get("VELMIO_LIBRARY")
    if not path:
        import glob

        here = os.path.dirname(velmio._velmio.__file__)
        found = glob.glob(os.path.join(here, "..", "..", "libvelmio.so*"))
        path = found[0] if found else "libvelmio.so.1"
    return CApi(path)
