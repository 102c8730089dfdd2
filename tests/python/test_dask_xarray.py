"""The xarray backend and the Dask collections against plain reads."""

import os
import runpy

import numpy as np
import pytest

import velmio
import velmio.dask
from conftest import sample, write_python

xr = pytest.importorskip("xarray")
pytest.importorskip("dask.dataframe")
distributed = pytest.importorskip("distributed")

EXAMPLE = os.path.join(os.path.dirname(__file__), "..", "..", "examples", "python", "survey_stats.py")


def test_backend_pads_pings_and_each_chunk_reads_only_its_pings(tmp_path, monkeypatch):
    write_python(tmp_path, "ObservedDepths", sample("ObservedDepths"))
    ragged = velmio.open_line(tmp_path).read("ObservedDepths")
    ds = xr.open_dataset(tmp_path, engine="velmio", group="ObservedDepths")  # found through the entry point
    counts = ragged["profiles"]["beam_count"]
    assert ds.depth.shape == (12, counts.max())
    offsets = ragged["beams"]["beam_offsets"]
    for ping in (0, 11):
        row = ds.depth.values[ping]
        np.testing.assert_array_equal(row[: counts[ping]], ragged["beams"]["depth"][offsets[ping]: offsets[ping + 1]])
        assert np.isnan(row[counts[ping]:]).all()
    np.testing.assert_array_equal(ds.time.values, ragged["profiles"]["datetime"])
    np.testing.assert_array_equal(ds.seconds.values, ragged["profiles"]["time"])
    assert ds.depth.attrs["units"] == "m"

    from velmio import xarray_backend

    reads = []
    real = xarray_backend._velmio.Sensor

    class Counting:
        def __init__(self, *args):
            self.h = real(*args)

        def read_beams(self, first, count):
            reads.append((first, count))
            return self.h.read_beams(first, count)

        def __getattr__(self, name):
            return getattr(self.h, name)

    monkeypatch.setattr(xarray_backend._velmio, "Sensor", Counting)
    chunked = xr.open_dataset(tmp_path, engine="velmio", group="ObservedDepths", chunks={"ping": 5})
    np.testing.assert_array_equal(chunked.depth.values, ds.depth.values)
    assert sorted(reads) == [(0, 5), (5, 5), (10, 2)]


def test_time_series_dataset_and_frame_match_the_read(tmp_path):
    write_python(tmp_path, "Roll", sample("Roll"))
    data = velmio.open_line(tmp_path).read("Roll")
    ds = xr.open_dataset(tmp_path, engine="velmio", group="Roll", chunks={"record": 4})
    np.testing.assert_array_equal(ds.value.values, data["value"])
    assert ds.value.attrs["units"] == "rad"
    frame = velmio.dask.read_lines([tmp_path], "Roll").compute()
    np.testing.assert_array_equal(frame["status"].to_numpy(), data["status"])
    np.testing.assert_array_equal(frame["datetime"].to_numpy(), data["datetime"])


def test_survey_example_on_two_worker_processes_equals_a_serial_computation(tmp_path):
    lines = []
    for i in range(20):
        line = tmp_path / f"line{i:02d}"
        write_python(line, "ObservedDepths", sample("ObservedDepths", per_segment=3 + i % 4, seed=i))
        lines.append(str(line))
    survey_stats = runpy.run_path(EXAMPLE)["survey_stats"]

    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster, distributed.Client(cluster):
        per_line, overall = survey_stats(velmio.dask.find_lines(tmp_path, "ObservedDepths"))

    depths = {os.path.basename(p): velmio.open_line(p).read("ObservedDepths")["beams"]["depth"] for p in lines}
    assert list(per_line.index) == sorted(depths)
    for name, d in depths.items():
        row = per_line.loc[name]
        assert row["count"] == d.size and row["min"] == d.min() and row["max"] == d.max()
        assert row["mean"] == pytest.approx(d.mean(), rel=1e-12)
        assert row["std"] == pytest.approx(d.std(ddof=1), rel=1e-9)
    every = np.concatenate(list(depths.values()))
    assert overall["count"] == every.size
    assert overall["mean"] == pytest.approx(every.mean(), rel=1e-12)
    assert (overall["min"], overall["max"]) == (every.min(), every.max())
    assert overall["std"] == pytest.approx(every.std(ddof=1), rel=1e-9)
