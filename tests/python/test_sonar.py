"""Side scan and processed depths written from Python against the same
values through the C functions, read back ragged and as xarray datasets."""

import ctypes
import os

import numpy as np
import pytest

import velmio

D, U, I = ctypes.c_double, ctypes.c_uint, ctypes.c_int


class Ping(ctypes.Structure):
    _fields_ = [("status", U), ("beamCount", U), ("firstBeam", U), ("time", D), ("pingNumber", U)] + [
        (n, D) for n in ("latitude", "longitude", "heading", "heave", "pitch", "roll", "tide", "draft", "soundSpeed")]


class Sounding(ctypes.Structure):
    _fields_ = [("status", U)] + [(n, D) for n in ("time", "depth", "acrossTrack", "alongTrack", "latitude",
                                                    "longitude", "horizontalUncertainty", "verticalUncertainty")]


def _struct(name, doubles, words=()):
    return type(name, (ctypes.Structure,), {"_fields_": [(n, D) for n in doubles] + [(n, U) for n in words]})


Head = _struct("Head", ("x", "y", "z", "roll", "pitch", "heading", "latency"), ("word",))
Heads = type("Heads", (ctypes.Structure,), {"_fields_": [("count", U), ("head", Head * 2)]})
PingSd = _struct("PingSd", ("horizontal", "vertical", "heave", "tide", "draft", "roll", "pitch", "heading",
                            "soundSpeed", "timing"))
Measurement = _struct("Measurement", ("travelTime", "acrossAngle", "alongAngle", "slantRange", "reflectivity"),
                      ("quality", "detection", "head"))
Reductions = _struct("Reductions", ("tide", "heave", "draft", "refraction"))


def _fill(struct, columns, i, prefix=""):
    """A C struct from row i of the columns named after its fields in snake case."""
    for f, _ in struct._fields_:
        col = columns.get(prefix + "".join("_" + c.lower() if c.isupper() else c for c in f))
        if col is not None:
            setattr(struct, f, col[i])
    return ctypes.byref(struct)


def sonar_segments(family, seed):
    """Two segments of plausible values, as write_segment takes them."""
    rng = np.random.default_rng(seed)
    out = []
    for s in range(2):
        n, t = 4, 767966413.0 + s * 60 + np.arange(4) * 0.5
        counts = rng.integers(1, 6, n).astype(np.uint32)
        total, status = int(counts.sum()), rng.integers(0, 2**32, n, dtype=np.uint32)
        if family == "ProcessedDepths":
            p = {f: rng.uniform(-0.5, 0.5, n) for f in ("latitude", "heading", "roll", "tide", "head1_x", "sd_timing")}
            p.update(time=t, beam_count=counts, first_beam=np.full(n, 3, np.uint32), status=status,
                     ping_number=np.arange(n, dtype=np.uint32) + 7, head_count=np.full(n, 2, np.uint32),
                     head2_word=np.full(n, 5, np.uint32))
            b = {f: rng.uniform(-30, 30, total) for f in ("across_track", "travel_time", "reduction_tide")}
            b.update(time=np.repeat(t, counts) + 0.002, depth=rng.uniform(5, 80, total),
                     status=rng.integers(0, 8, total).astype(np.uint32) << 16,
                     quality=rng.integers(0, 100, total).astype(np.uint32))
            out.append((f"raw_{s}.all", p, b, None))
        else:
            p = {"time": t, "sample_count": counts, "first_sample": np.full(n, 2, np.uint32), "status": status,
                 "sample_interval": np.full(n, 1e-4), "gain": rng.integers(-20, 20, n),
                 "attenuation1": rng.integers(0, 9, n), "attenuation2": rng.integers(0, 9, n)}
            b = {"amplitude": rng.integers(-2**31, 2**31, total),
                 "detection": rng.integers(0, 2**32, total, dtype=np.uint32)}
            traces = {"profile": np.array([0, 0, 3]), "bottom_sample": np.array([5, 6, 7], np.uint32),
                      "depth": np.array([12.5, 13.0, 40.25])}
            out.append((f"raw_{s}.xtf", p, b, traces))
    return out


def c_write_sonar(capi, line, family, sonar_type, segments):
    """The same values through the C API, one sample or beam per call."""
    os.makedirs(line)
    opener = {9: "SideScanEM100OpenDir", 10: "SideScanEM1000OpenDir", 15: "SideScanELACOpenDir"}.get(
        sonar_type, f"{family}OpenDir")
    err = I()
    h = ctypes.c_void_p(capi.fn(opener, ctypes.c_void_p)(str(line), "create", ctypes.byref(err)))
    assert h, err.value
    pre = "ProcessedDepths" if family == "ProcessedDepths" else "SideScan"
    capi.call(f"{pre}BgnSeqWriteSummary", h, U(sonar_type))
    for name, p, b, traces in segments:
        capi.call(f"{pre}BgnSeqWriteLineSegment", h, name)
        k = 0
        for i in range(len(p["time"])):
            count = int(p["sample_count" if pre == "SideScan" else "beam_count"][i])
            if pre == "SideScan":
                capi.call("SideScanBgnSeqWriteProfile", h, U(count), U(int(p["first_sample"][i])), D(p["time"][i]),
                          D(p["sample_interval"][i]), *(I(int(p[c][i])) for c in ("gain", "attenuation1",
                                                                                   "attenuation2")),
                          U(int(p["status"][i])))
                for j in range(k, k + count):
                    capi.call("SideScanSeqWrite", h, I(int(b["amplitude"][j])), U(int(b["detection"][j])))
                capi.call("SideScanEndSeqWriteProfile", h)
                for r in np.flatnonzero(traces["profile"] == i) if sonar_type in (9, 10) else ():
                    capi.call("SideScanSeqWriteTrace", h, U(int(traces["bottom_sample"][r])), D(traces["depth"][r]))
            else:
                heads = Heads(count=int(p["head_count"][i]))
                heads.head[0].x, heads.head[1].word = p["head1_x"][i], int(p["head2_word"][i])
                capi.call("ProcessedDepthsBgnSeqWriteProfile", h, _fill(Ping(), p, i), ctypes.byref(heads),
                          _fill(PingSd(), p, i, "sd_"))
                for j in range(k, k + count):
                    capi.call("ProcessedDepthsSeqWrite", h, _fill(Sounding(), b, j), _fill(Measurement(), b, j),
                              _fill(Reductions(), b, j, "reduction_"))
                capi.call("ProcessedDepthsEndSeqWriteProfile", h)
            k += count
        capi.call(f"{pre}EndSeqWriteLineSegment", h, U(3))
    capi.call(f"{pre}EndSeqWriteSummary", h, U(1))
    capi.call(f"{pre}Close", h)


def files_of(line):
    return {f: (line / f).read_bytes() for f in sorted(os.listdir(line))}


@pytest.mark.parametrize("family,sonar_type", [
    ("ProcessedDepths", 0), ("SideScan", 20), ("SideScan", 9), ("SideScan", 10), ("SideScan", 15),
    ("SSSSideScan", 13), ("SSSProcessedSideScan", 19), ("NewSSSProcessedSideScan", 19)])
def test_sonar_lines_written_from_python_are_the_c_api_bytes(tmp_path, capi, family, sonar_type):
    segments = sonar_segments(family, sonar_type)
    kw = {"tool_type": sonar_type} if family == "ProcessedDepths" else {"sonar_type": sonar_type}
    with velmio.create_sensor(tmp_path / "py", family, **kw) as w:
        w.summary_status = 1
        for name, p, b, traces in segments:
            w.write_segment(name, profiles=p, beams=b, traces=traces if sonar_type in (9, 10) else None,
                            segment_status=3)
    c_write_sonar(capi, tmp_path / "c", family, sonar_type, segments)
    mine, theirs = files_of(tmp_path / "py"), files_of(tmp_path / "c")
    assert list(mine) == list(theirs) and len(mine) >= 3
    for name in mine:
        assert mine[name] == theirs[name], name

    line = velmio.open_line(tmp_path / "py")
    got = line.read(family)
    exact = {"profiles": ("status", "first_beam", "beam_count", "ping_number", "head2_word"),
             "beams": ("status", "quality")} if family == "ProcessedDepths" else {
        "profiles": ("status", "first_sample", "sample_count", "gain"), "beams": ("amplitude", "detection")}
    for k, part in ((1, "profiles"), (2, "beams")):
        for c in exact[part]:
            np.testing.assert_array_equal(got[part][c], np.concatenate([s[k][c] for s in segments]))
    # A part is read with its beam total counted first, the whole line with the summary's.
    at, c = got["beams"]["beam_offsets" if family == "ProcessedDepths" else "sample_offsets"], exact["beams"][0]
    np.testing.assert_array_equal(line.read(family, 1, 2)["beams"][c], got["beams"][c][at[1]:at[3]])
    # Scaled columns come back at their stored resolution, and padded per ping as a dataset.
    value, count, dim = (("depth", "beam_count", "beam") if family == "ProcessedDepths"
                         else ("amplitude", "sample_count", "sample"))
    for k, part, c in ((1, "profiles", "time"), (2, "beams", value)):
        np.testing.assert_allclose(got[part][c], np.concatenate([s[k][c] for s in segments]), atol=1e-3)
    ds = pytest.importorskip("xarray").open_dataset(tmp_path / "py", engine="velmio", group=family)
    assert ds[value].dims == ("ping", dim) and ds["time"].dtype == np.dtype("datetime64[ns]")
    assert ds[value].shape == (got["profiles"][count].size, got["profiles"][count].max())
    if sonar_type in (9, 10):
        t = line.traces(family)
        np.testing.assert_array_equal(t["profile"], [0, 0, 3, 4, 4, 7])
        np.testing.assert_array_equal(t["depth"], [12.5, 13.0, 40.25] * 2)


def test_sonar_status_edits_are_saved_and_bad_columns_refused(tmp_path):
    for family in ("SideScan", "ProcessedDepths"):
        line = tmp_path / family
        with velmio.create_sensor(line, family) as w:
            for name, p, b, _ in sonar_segments(family, 1):
                w.write_segment(name, profiles=p, beams=b)
        with velmio.open_line(line).edit(family) as e:
            if family == "SideScan":
                e.set_profile_status(np.arange(8) % 3 == 0, 0xABCD0000)
            else:
                e.set_beam_status([0, -1], 0x00050000)
            e.set_segment_status(1, 9)
            e.set_summary_status(6)
            e.save()
        got = velmio.open_line(line).read(family)
        if family == "SideScan":
            assert (got["profiles"]["status"][[0, 3, 6]] == 0xABCD0000).all()
        else:
            assert got["beams"]["status"][0] == got["beams"]["status"][-1] == 0x00050000
        assert velmio.open_line(line).segments(family)[1]["status"] == 9
        assert velmio.open_line(line).summary(family)["status"] == 6

    name, p, b, _ = sonar_segments("ProcessedDepths", 2)[0]
    with velmio.create_sensor(tmp_path / "bad", "ProcessedDepths") as w:
        with pytest.raises(velmio.VelmioError, match="no column dept"):
            w.write_segment(name, profiles=p, beams=dict(b, dept=b["depth"]))
        with pytest.raises(velmio.VelmioError) as early:
            w.write_segment(name, profiles=dict(p, time=p["time"] - 2e9), beams=b)
        assert early.value.code == 5000322
