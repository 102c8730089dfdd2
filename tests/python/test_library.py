"""Vessel configurations, sound velocity profiles, projections, times and
the plot through Python."""

import ctypes
import math

import numpy as np
import pytest

import velmio
from conftest import sample, write_python

D = ctypes.c_double


def test_vessel_queries_give_the_entry_valid_at_a_time(tmp_path):
    boat = velmio.Vessel()
    boat.add("GyroSensor", 100.0, manufacturer="Acme", model="G1", latency=0.25)
    boat.add("GyroSensor", 200.0, comment="after refit")
    boat.store(tmp_path / "boat")
    back = velmio.Vessel(tmp_path / "boat.tvc")
    first = back.gyro(150.0)
    assert (first["time"], first["manufacturer"], first["model"], first["latency"]) == (100.0, "Acme", "G1", 0.25)
    assert back.gyro(1e6)["comment"] == "after refit"
    for call, code in ((lambda: back.gyro(50.0), 5000413), (lambda: back.heave(150.0), 5000414),
                       (lambda: back.remove("GyroSensor", 7.0), 5100009),
                       (lambda: velmio.Vessel(tmp_path / "none.tvc"), None)):
        with pytest.raises(velmio.VelmioError) as e:
            call()
        assert code is None or e.value.code == code


@pytest.mark.parametrize("fmt,name", [("native", "Svp"), ("chs", "casts.chs"), ("ran_dat", "casts.dat"),
                                      ("ran_edf", "casts.edf")])
def test_profiles_of_every_format_read_back_and_convert(tmp_path, fmt, name):
    t = velmio.time.from_yds(2009, 83, 12 * 3600 + 30 * 60)
    casts = [{"time": float(t), "latitude": 45.125, "longitude": -63.5,
              "depth": np.array([10.0, 20.5, 40.0]), "velocity": np.array([1480.5, 1479.25, 1478.0])},
             {"time": float(t) + 3600, "latitude": "45:08:00", "longitude": "-63:31:00",
              "depth": np.array([5.0, 15.0]), "velocity": np.array([1481.0, 1482.0])}]
    velmio.svp.write(tmp_path / name, casts, fmt)
    found, back = velmio.svp.read(tmp_path / name)
    assert found == fmt
    assert [c["time"] for c in back] == [c["time"] for c in casts]
    for c, b in zip(casts, back):
        np.testing.assert_allclose(b["depth"], c["depth"], atol=0.051)  # RAN Edf keeps one decimal
        np.testing.assert_allclose(b["velocity"], c["velocity"], atol=0.005)
    assert back[0]["latitude_degrees"] == pytest.approx(45.125, abs=1e-4)
    assert back[0]["longitude_degrees"] == pytest.approx(-63.5, abs=1e-4)
    assert back[0]["datetime"] == np.datetime64("2009-03-24T12:30:00")
    velmio.svp.convert(tmp_path / name, tmp_path / "Converted", "native")
    assert velmio.svp.read(tmp_path / "Converted")[0] == "native"


def test_projections_over_arrays_equal_the_scalar_c_functions(capi):
    a, b = 6378137.0, 6356752.314245
    lat = np.radians(np.array([[43.0], [-33.9]]))
    lon = np.radians(np.array([-65.0, 2.0, 151.2]))
    lib = capi.lib
    north, east, zone = velmio.geodesy.utm(lat, lon, a, b)
    assert north.shape == (2, 3)
    gn, ge, gz = velmio.geodesy.gk(lat, lon, a, b, zone=20)
    conv, czone = velmio.geodesy.utm_convergence(lat, lon, a, b)
    la, lo = velmio.geodesy.utm_inverse(north, east, zone, a, b)
    g2 = velmio.geodesy.geoford(a, 0.00669438, lat, lon, 1000.0, 0.5)
    lib.UTMGridConv.restype = D
    for i in range(2):
        for j in range(3):
            args = (D(lat[i, 0]), D(lon[j]), D(a), D(b))
            z, n, e = ctypes.c_int(), D(), D()
            lib.UTMMapProj(*args, ctypes.byref(z), ctypes.byref(n), ctypes.byref(e), 0)
            assert (north[i, j], east[i, j], zone[i, j]) == (n.value, e.value, z.value)
            z.value = 20
            lib.GKMapProj(*args, ctypes.byref(z), ctypes.byref(n), ctypes.byref(e), 1)
            assert (gn[i, j], ge[i, j], gz[i, j]) == (n.value, e.value, 20)
            assert conv[i, j] == lib.UTMGridConv(*args, ctypes.byref(z)) and czone[i, j] == z.value
            y, x = D(), D()
            lib.UTMInvMapProj(ctypes.byref(y), ctypes.byref(x), D(a), D(b), int(zone[i, j]), D(north[i, j]),
                              D(east[i, j]))
            assert (la[i, j], lo[i, j]) == (y.value, x.value)
            lib.GeoFord(D(a), D(0.00669438), *args[:2], ctypes.byref(y), ctypes.byref(x), D(1000.0), D(0.5))
            assert (g2[0][i, j], g2[1][i, j]) == (y.value, x.value)
    y, x = velmio.geodesy.mercator(lat, lon, a, b)
    np.testing.assert_allclose(velmio.geodesy.mercator_inverse(y, x, a, b)[0], np.broadcast_to(lat, (2, 3)),
                               atol=1e-11)
    sy, sx = velmio.geodesy.st(lat, lon, a, lat[0, 0], lon[0])
    assert sy[0, 0] == 0.0 and sx[0, 0] == 0.0
    with pytest.raises(velmio.VelmioError):
        velmio.geodesy.mercator(lat, lon, a, 2 * a)


def test_time_conversions_count_the_leap_seconds_of_the_table():
    seconds = velmio.time.from_yds([1981, 2009], [182, 1], [0.0, 0.0])
    np.testing.assert_array_equal(seconds, [47260801.0, 10593 * 86400 + 15.0])
    np.testing.assert_array_equal(velmio.time.to_datetime64(seconds),
                                  np.array(["1981-07-01", "2009-01-01"], dtype="datetime64[ns]"))
    np.testing.assert_array_equal(velmio.time.from_datetime64(velmio.time.to_datetime64(seconds)), seconds)
    year, day, rest = velmio.time.to_yds(seconds)
    assert (year.tolist(), day.tolist(), rest.tolist()) == ([1981, 2009], [182, 1], [0.0, 0.0])
    assert velmio.time.tai_utc_offset(2009, 1) == 34
    # A sorted series converts day by day; each time must still match its own
    # conversion, also where the library repeats a second around a leap second.
    starts = velmio.time.from_yds(np.repeat(np.arange(1980, 2012), 2), np.tile([1, 182], 32), 0.0)
    series = np.sort(np.concatenate([starts[:, None] + np.arange(-3.0, 3.0, 0.0137),
                                     starts[:, None] + np.arange(-2.5, 2.5, 0.03) * 86400], axis=1).ravel())
    one_by_one = [velmio.time.to_datetime64(series[i:i + 1])[0] for i in range(series.size)]
    np.testing.assert_array_equal(velmio.time.to_datetime64(series), one_by_one)
    assert velmio.explain(5000046) == "The sensor's data file was not found."
    assert velmio.explain(1234) is None


def test_plot_draws_track_and_attitude(tmp_path):
    pytest.importorskip("matplotlib")
    for family in ("Navigation", "ObservedDepths", "Pitch"):
        write_python(tmp_path, family, sample(family))
    out = velmio.plot.line(tmp_path, out=tmp_path / "line.png")
    data = open(out, "rb").read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n" and len(data) > 20000
