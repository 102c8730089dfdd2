"""Side scan and processed depths: the demo survey's lines read through
Python against the C functions, ragged and as xarray datasets."""

import ctypes
import os
import subprocess

import numpy as np
import pytest

import velmio
from velmio.dask import find_lines

D, U, I = ctypes.c_double, ctypes.c_uint, ctypes.c_int


class Ping(ctypes.Structure):
    _fields_ = [("status", U), ("beamCount", U), ("firstBeam", U), ("time", D), ("pingNumber", U)] + [
        (n, D) for n in ("latitude", "longitude", "heading", "heave", "pitch", "roll", "tide", "draft", "soundSpeed")]


class Sounding(ctypes.Structure):
    _fields_ = [("status", U)] + [(n, D) for n in ("time", "depth", "acrossTrack", "alongTrack", "latitude",
                                                    "longitude", "horizontalUncertainty", "verticalUncertainty")]


@pytest.fixture(scope="module")
def survey(tmp_path_factory):
    tool = os.environ.get("VELMIO_TOOL")
    if not tool:
        pytest.skip("VELMIO_TOOL (the velmio command) is set by CTest")
    root = tmp_path_factory.mktemp("survey")
    subprocess.run([tool, "demo", str(root)], check=True, capture_output=True)
    return root


def c_side_scan(capi, line, pings):
    for opener in ("SideScanOpenDir", "SideScanEM1000OpenDir", "SideScanEM100OpenDir"):
        err = I()
        h = capi.fn(opener, ctypes.c_void_p)(str(line), "query", ctypes.byref(err))
        if h:
            break
    h, rows = ctypes.c_void_p(h), []
    for p in range(1, pings + 1):
        n, first, t, dt, g, a1, a2, s = U(), U(), D(), D(), I(), I(), I(), U()
        capi.call("SideScanReadProfile", h, U(p), *map(ctypes.byref, (n, first, t, dt, g, a1, a2, s)))
        samples = []
        for k in range(first.value, first.value + n.value):
            amp, det = I(), U()
            capi.call("SideScanRead", h, U(p), U(k), ctypes.byref(amp), ctypes.byref(det))
            samples.append((amp.value, det.value))
        rows.append(((n.value, t.value, g.value, s.value), samples))
    capi.call("SideScanClose", h)
    return rows


def test_side_scan_reads_equal_the_c_reads_ragged_and_as_a_dataset(survey, capi):
    import xarray as xr

    line = find_lines(survey, "SideScan")[0]
    got = velmio.open_line(line).read("SideScan", 0, 3)
    p, s = got["profiles"], got["beams"]
    offsets = s["sample_offsets"]
    mine = [((int(p["sample_count"][i]), p["time"][i], int(p["gain"][i]), int(p["status"][i])),
             list(zip(s["amplitude"][offsets[i]:offsets[i + 1]].tolist(),
                      s["detection"][offsets[i]:offsets[i + 1]].tolist()))) for i in range(3)]
    assert mine == c_side_scan(capi, line, 3)
    ds = xr.open_dataset(line, engine="velmio", group="SideScan", chunks={"ping": 2})
    assert ds["amplitude"].dims == ("ping", "sample")
    assert ds["amplitude"].shape == (ds.sizes["ping"], int(ds["sample_count"].max()))
    np.testing.assert_array_equal(ds["amplitude"][0, :mine[0][0][0]].values, [a for a, _ in mine[0][1]])


def test_processed_depths_read_equal_the_c_reads(survey, capi):
    import xarray as xr

    line = find_lines(survey, "ProcessedDepths")[0]
    got = velmio.open_line(line).read("ProcessedDepths")
    h = capi.open(line, "ProcessedDepths", "query")
    ping, sounding = Ping(), Sounding()
    for i in range(min(3, got["profiles"]["time"].size)):
        capi.call("ProcessedDepthsReadProfile", h, U(i + 1), ctypes.byref(ping), None, None)
        assert (got["profiles"]["time"][i], got["profiles"]["heading"][i], got["profiles"]["beam_count"][i]) == (
            ping.time, ping.heading, ping.beamCount)
        for k in range(ping.beamCount):
            capi.call("ProcessedDepthsRead", h, U(i + 1), U(ping.firstBeam + k), ctypes.byref(sounding), None, None)
            b = got["beams"]["beam_offsets"][i] + k
            assert (got["beams"]["depth"][b], got["beams"]["latitude"][b], got["beams"]["status"][b]) == (
                sounding.depth, sounding.latitude, sounding.status)
    capi.call("ProcessedDepthsClose", h)
    ds = xr.open_dataset(line, engine="velmio", group="ProcessedDepths")
    assert ds["depth"].dims == ("ping", "beam") and ds["time"].dtype == np.dtype("datetime64[ns]")


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
