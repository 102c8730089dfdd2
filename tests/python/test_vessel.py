"""Vessel entry settings from Python: every setting of every kind, and the
stored documents against the same edits made through the C++ classes."""

import os
import subprocess

import pytest

import velmio


def distinct_value(current, n):
    """A value of the setting's type that no other setting of the entry gets
    (so that two names reaching one member are caught); at most 6 decimals,
    since the document keeps 6."""
    if isinstance(current, bool):
        return not current
    if isinstance(current, float):
        return n + 0.125
    if isinstance(current, int):
        return n
    if current is None or isinstance(current, str):
        return f"text {n}"
    if isinstance(current, tuple):
        return tuple(n + i / 8 for i in range(len(current)))
    raise AssertionError(current)


def test_every_setting_of_every_kind_is_stored_and_read_back(tmp_path):
    boat = velmio.Vessel()
    expected = {}
    for k, kind in enumerate(velmio.vessel.KINDS):
        e = boat.add(kind, 100.0 + k)
        for n, name in enumerate(e.settings()):
            value = {"gyro_offsets": [(90.0, 0.5), (270.0, -0.25)], "draft_table": [(1.0, 0.05), (2.0, 0.1)],
                     "sensor_class": "Sweep"}.get(name)
            if name == "transducers":
                value = [{s: distinct_value(d, 20 * t + i) for i, (s, d) in enumerate(default_transducer().items())}
                         for t in range(2)]
            elif value is None:
                value = distinct_value(getattr(e, name), n)
            setattr(e, name, value)
            assert getattr(e, name) == value, (kind, name)
        expected[kind] = e.to_dict()
    boat.store(tmp_path / "all.tvc")
    back = velmio.Vessel(tmp_path / "all.tvc")
    assert back.kinds() == sorted(velmio.vessel.KINDS)
    for kind, settings in expected.items():
        assert back.entry(kind, 1e6).to_dict() == settings, kind


def default_transducer():
    boat = velmio.Vessel()
    e = boat.add("DepthSensor", 0.0, sensor_class="Sweep")
    e.transducers = [{}]
    return e.transducers[0]


def apply_edits(new, edited):
    """The edits tests/python/vessel_edits.cpp makes, from Python."""
    v = velmio.Vessel()
    v.add("GyroSensor", 100.0, manufacturer="Acme", latency=0.25, apply=True,
          gyro_offsets=[(90.0, 0.5), (270.0, -0.25)])
    v.add("DepthSensor", 100.0, sensor_class="Sweep", nav_to_boom=(1.0, 2.0, 3.0), transducers=[
        dict(number=1, start_beam=0, offset=(0.1, 0.2, 0.3), mount=(1.0, 2.0, 3.0), latency=0.01,
             transducer_fixed=False, mru_alignment_gyro=0.5, mru_alignment_roll=0.25, squat_perc_factor=95.0,
             heave_perc_amplitude=90.0, serial_number="S1"),
        dict(number=2, start_beam=64, model="M2")])
    v.add("DraftSensor", 100.0, apply=True, draft_table=[(2.0, 0.1), (1.0, 0.05)])
    v.add("SVPSensor", 100.0, dual_head=True, offset2=(4.0, 5.0, 6.0), mount=(0.5, 0.25, 180.0))
    v.add("TPEConfiguration", 100.0, mru_to_transducer=(1.0, 2.0, 3.0, 4.0, 5.0, 6.0), heave_std_dev=(0.05, 5.0),
          std_dev_comment="estimated")
    v.add("WaterlineHeight", 100.0, waterline=1.25, std_dev=0.05)
    v.store(new)
    v = velmio.Vessel(new)
    gyro = v.entries("GyroSensor")[0]
    gyro.comment = "refit"
    gyro.time = 150.0
    v.add("NavSensor", 200.0, ellipse="WGS84", offset=(1.0, -1.0, 0.5))
    v.remove("DraftSensor", 100.0)
    v.store(edited)


def test_stored_documents_equal_those_of_the_same_cpp_edits(tmp_path):
    helper = os.environ.get("VELMIO_VESSEL_EDITS")
    if not helper:
        pytest.skip("VELMIO_VESSEL_EDITS (the C++ helper) is set by CTest")
    subprocess.run([helper, str(tmp_path / "c_new.tvc"), str(tmp_path / "c_edited.tvc")], check=True)
    apply_edits(tmp_path / "py_new.tvc", tmp_path / "py_edited.tvc")
    for name in ("new", "edited"):
        assert (tmp_path / f"py_{name}.tvc").read_bytes() == (tmp_path / f"c_{name}.tvc").read_bytes(), name


def test_bad_settings_raise_and_leave_the_entry_alone():
    boat = velmio.Vessel()
    gyro = boat.add("GyroSensor", 100.0, latency=0.5)
    boat.add("GyroSensor", 200.0)
    for name, value in (("latency", "slow"), ("apply", 1.5), ("gyro_offsets", [(1.0,)]), ("no_such", 1.0),
                        ("time", 200.0)):
        with pytest.raises(velmio.VelmioError) as e:
            setattr(gyro, name, value)
        assert e.value.code in (-1, 5100008)
    assert (gyro.time, gyro.latency, gyro.gyro_offsets) == (100.0, 0.5, [])
    with pytest.raises(AttributeError):
        gyro.layback
    with pytest.raises(velmio.VelmioError):
        boat.add("DepthSensor", 0.0, sensor_class="Fan")
    assert boat.kinds() == ["GyroSensor"]
