"""Sensor families through Python against the C API on the same files."""

import os

import numpy as np
import pytest

import velmio
from conftest import T0, sample, write_python

FILES = ("", "LineSegments", "TmIdx")


def _files(line, family):
    return [open(os.path.join(line, family + suffix), "rb").read() for suffix in FILES]


@pytest.mark.parametrize("family", [f for f in velmio.FAMILIES if f not in velmio.line.SONAR_FAMILIES])
def test_python_writes_the_c_api_bytes_and_reads_its_values(tmp_path, capi, family):
    segments = sample(family)
    capi.write(str(tmp_path / "c"), family, segments)
    write_python(tmp_path / "py", family, segments)
    assert _files(tmp_path / "py", family) == _files(tmp_path / "c", family)
    got = velmio.open_line(tmp_path / "c").read(family)
    parts = ((got["profiles"], 1), (got["beams"], 2)) if family in velmio.PROFILE_FAMILIES else ((got, 1),)
    for have, k in parts:
        written = {c: np.concatenate([s[k][c] for s in segments]) for c in segments[0][k] if c in have}
        assert {"time", "status"} <= set(written)
        # Every column the family keeps: values in float64 at their stored
        # resolution, words exact.
        for c, values in written.items():
            floating = values.dtype.kind == "f"
            assert have[c].dtype == (np.float64 if floating else np.uint32), c
            np.testing.assert_allclose(have[c], values, rtol=0, atol=1.001e-3 if floating else 0, err_msg=c)


def test_ranges_datetimes_and_segments(tmp_path):
    write_python(tmp_path, "Heave", sample("Heave", segments=3, per_segment=4))
    line = velmio.open_line(tmp_path)
    whole = line.read("Heave")
    part = line.read("Heave", first=5, count=3)
    np.testing.assert_array_equal(part["value"], whole["value"][5:8])
    assert part["datetime"][0] == np.datetime64("2004-05-02T12:01:40.250")  # segment 1 starts at T0 + 100 s
    assert [s["name"] for s in line.segments("Heave")] == ["raw_0.dat", "raw_1.dat", "raw_2.dat"]
    assert line.sensors == ["Heave"]
    with pytest.raises(velmio.VelmioValueError) as e:
        line.read("Heave", first=10, count=5)
    assert e.value.code == -1


def test_datetime_times_are_written_as_seconds_since_1980(tmp_path):
    times = np.array(["2009-01-01T00:00:00", "2009-01-01T00:00:01.5"], dtype="datetime64[ms]")
    with velmio.create_sensor(tmp_path, "Tide") as w:
        w.write_segment("tide.txt", time=times, value=[0.5, 0.6])
    got = velmio.open_line(tmp_path).read("Tide")
    # 29 years of days plus the 15 leap seconds of 1981..2008.
    days = (np.datetime64("2009-01-01") - np.datetime64("1980-01-01")).astype(int)
    np.testing.assert_array_equal(got["time"], [days * 86400 + 15, days * 86400 + 16.5])
    np.testing.assert_array_equal(got["datetime"], times.astype("datetime64[ns]"))


def test_status_edits_by_mask_reach_the_file_only_when_saved(tmp_path):
    write_python(tmp_path, "Navigation", sample("Navigation"))
    before = _files(tmp_path, "Navigation")
    mask = np.zeros(12, bool)
    mask[[1, 7]] = True
    with velmio.edit_sensor(tmp_path, "Navigation") as e:
        e.set_status(mask, 0x80000000)
        e.set_status([-1], 5)
    assert _files(tmp_path, "Navigation") == before  # closed without save
    with velmio.edit_sensor(tmp_path, "Navigation") as e:
        e.set_status(mask, 0x80000000)
        e.set_status([-1], 5)
        e.save()
    statuses = velmio.open_line(tmp_path).read("Navigation")["status"].tolist()
    expected = [int(s) for s in sample("Navigation")[0][1]["status"]] + [int(s) for s in sample("Navigation")[1][1]["status"]]
    expected[1] = expected[7] = 0x80000000
    expected[-1] = 5
    assert statuses == expected


def test_observed_depth_edits_match_the_c_api_edits_byte_for_byte(tmp_path, capi):
    import ctypes

    segments = sample("ObservedDepths")
    for d in ("py", "c"):
        write_python(tmp_path / d, "ObservedDepths", segments)
    offsets = velmio.open_line(tmp_path / "py").read("ObservedDepths")["beams"]["beam_offsets"]
    beams = np.array([0, 3, int(offsets[-1]) - 1])
    with velmio.edit_sensor(tmp_path / "py", "ObservedDepths") as e:
        e.set_depth(beams, [11.0, 12.0, 13.0])
        e.set_xyz(beams[:2], x=[1.5, 2.5], status=0x00100000)
        e.set_rejection(beams[2:], 0x80000000)
        e.save()
    h = capi.open(str(tmp_path / "c"), "ObservedDepths", "update")
    where = [(int(np.searchsorted(offsets, b, "right")), 1 + b - int(offsets[np.searchsorted(offsets, b, "right") - 1]))
             for b in beams]
    for (p, b), depth in zip(where, (11.0, 12.0, 13.0)):
        capi.call("ObservedDepthsUpdateDepth", h, ctypes.c_uint(p), ctypes.c_uint(b), ctypes.c_double(depth))
    for (p, b), x in zip(where[:2], (1.5, 2.5)):
        xv, s = ctypes.c_double(x), ctypes.c_uint(0x00100000)
        capi.call("ObservedDepthsUpdateXYZStatus", h, ctypes.c_uint(p), ctypes.c_uint(b), ctypes.byref(xv), None, None,
                  ctypes.byref(s))
    capi.call("ObservedDepthsUpdateRejectionStatus", h, ctypes.c_uint(where[2][0]), ctypes.c_uint(where[2][1]),
              ctypes.c_uint(0x80000000))
    capi.call("ObservedDepthsSaveStatusToDisk", h)
    capi.call("ObservedDepthsClose", h)
    assert _files(tmp_path / "py", "ObservedDepths") == _files(tmp_path / "c", "ObservedDepths")


def test_bad_input_raises_velmio_error_with_the_code_and_prints_nothing(tmp_path, capfd):
    write_python(tmp_path / "line", "Gyro", sample("Gyro"))
    cases = [
        (lambda: velmio.open_line(tmp_path / "missing"), 5000010, OSError),
        (lambda: velmio.edit_sensor(tmp_path / "missing", "Gyro"), 5000010, OSError),
        (lambda: velmio.open_line(tmp_path / "line").read("Roll"), 5000046, OSError),
        (lambda: velmio.open_line(tmp_path / "line").read("NoSuchFamily"), 5000022, ValueError),
    ]
    w = velmio.create_sensor(tmp_path / "new", "Pitch")
    cases += [
        (lambda: w.write_segment("a", time=[T0, T0 + 1], value=[0.1]), -1, ValueError),
        (lambda: w.write_segment("a", time=[T0], value=["x"]), -1, ValueError),
        (lambda: w.write_segment("a", time=[T0], value=[0.1], status=[0.5]), -1, ValueError),
        (lambda: w.write_segment("a", time=np.array(["1979-12-31"], "datetime64[D]"), value=[0.1]), 5001222,
         ValueError),
    ]
    h = velmio.open_line(tmp_path / "line").open("Gyro")
    h.close()
    cases.append((lambda: h.read_records(), 5000019, ValueError))
    for call, code, kind in cases:
        with pytest.raises(kind) as e:
            call()
        assert isinstance(e.value, velmio.VelmioError) and e.value.code == code
        assert e.value.sentence == velmio.explain(code)
    w.close()
    assert capfd.readouterr().out == ""

    data = tmp_path / "line" / "Gyro"
    data.write_bytes(data.read_bytes()[:20])  # cut inside the summary
    with pytest.raises(velmio.VelmioError) as e:
        velmio.open_line(tmp_path / "line").read("Gyro")
    assert 5000000 < e.value.code < 6000000
    assert capfd.readouterr().out == ""
    old = velmio.diagnostics(True)
    try:
        with pytest.raises(velmio.VelmioError):
            velmio.edit_sensor(tmp_path / "missing", "Gyro")
        assert "Unable to find directory" in capfd.readouterr().out
    finally:
        velmio.diagnostics(old)
