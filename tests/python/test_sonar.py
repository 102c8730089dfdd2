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
    with pytest.raises(velmio.VelmioError):
        velmio.create_sensor(line, "ProcessedDepths")
