"""Many lines in parallel on Dask, one partition per line, with the same
reads as for one line (a Dask scheduler only ever ships line paths)."""

import os

import numpy as np

from .line import FAMILIES, PROFILE_FAMILIES, Line

_PROFILE_COLUMNS = {
    "ObservedDepths": ("depth", "x", "y"),
    "ObservedDepthsNew": ("depth", "x", "y"),
    "SLRange": ("range", "value", "angle1", "angle2"),
    "TPE": ("error1", "error2"),
    "ProcessedDepths": ("depth", "across_track", "along_track"),
}


def _columns(sensor):
    if sensor in PROFILE_FAMILIES:
        return ("ping", "time") + _PROFILE_COLUMNS[sensor] + ("status",)
    if sensor in ("Navigation", "SSSNavigation"):
        return ("time", "latitude", "longitude", "metres", "status")
    return ("time", "value", "status")


def line_frame(path, sensor):
    """One line's data as a pandas DataFrame (profile families: one row per
    beam, with its ping number), with the line's directory name in ``line``
    and the times as ``datetime``."""
    import pandas as pd

    data = Line(path).read(sensor)
    if sensor in PROFILE_FAMILIES:
        beams = data["beams"]
        counts = np.diff(beams["beam_offsets"])
        columns = {"ping": np.repeat(np.arange(counts.size), counts)}
        columns.update({c: beams[c] for c in _columns(sensor)[1:]})
        columns["datetime"] = beams["datetime"]
    else:
        columns = {c: data[c] for c in _columns(sensor)}
        columns["datetime"] = data["datetime"]
    frame = pd.DataFrame(columns)
    frame.insert(0, "line", pd.Categorical([os.path.basename(os.path.normpath(os.fspath(path)))] * len(frame)))
    return frame


def _meta(sensor, lines):
    import pandas as pd

    columns = {"line": pd.Categorical([], categories=lines)}
    for c in _columns(sensor):
        columns[c] = np.array([], dtype=np.int64 if c == "ping" else np.uint32 if c == "status" else float)
    columns["datetime"] = np.array([], dtype="datetime64[ns]")
    return pd.DataFrame(columns)


def read_lines(paths, sensor, frame=None, chunks=None):
    """A lazy collection over many lines, one partition per line.

    Time series families (and profile families with ``frame=True``): a Dask
    DataFrame of :func:`line_frame` partitions. Profile families by default:
    a list of lazy xarray Datasets (dimensions ping, beam), chunked by
    ``chunks`` (default: one chunk per line)."""
    import dask
    import dask.dataframe as dd

    if sensor not in FAMILIES:
        from .errors import _error

        raise _error(5000022, f"not a sensor family of this library: {sensor!r}")
    paths = [os.fspath(p) for p in paths]
    if frame and sensor in PROFILE_FAMILIES and sensor not in _PROFILE_COLUMNS:
        from .errors import _error

        raise _error(-1, f"{sensor} is read as Datasets only (frame=False)")
    if sensor in PROFILE_FAMILIES and not frame:
        import xarray as xr

        return [xr.open_dataset(p, engine="velmio", group=sensor, chunks=chunks or {}) for p in paths]
    names = sorted({os.path.basename(os.path.normpath(p)) for p in paths})
    parts = [dask.delayed(_categorised)(p, sensor, names) for p in paths]
    return dd.from_delayed(parts, meta=_meta(sensor, names), verify_meta=False)


def _categorised(path, sensor, names):
    frame = line_frame(path, sensor)
    frame["line"] = frame["line"].cat.set_categories(names)
    return frame


def find_lines(root, sensor):
    """Line directories under root that hold the sensor's data file, sorted."""
    found = []
    for directory, _, files in os.walk(os.fspath(root)):
        if sensor in files:
            found.append(directory)
    return sorted(found)
