"""The xarray backend: ``xarray.open_dataset(line_dir, engine="velmio",
group="ObservedDepths")``.

Profile families become dimensions (ping, beam), side scan (ping, sample),
NaN-padded to the widest
ping (status words padded with 0); time series become dimension (record).
Times are the coordinate ``time`` (datetime64[ns] UTC, by the library's leap
second table) with the raw seconds since 1980 in ``seconds``. Beam and record
variables are lazy: each read, or each Dask chunk with ``chunks=``, reads
only its range of pings or records through one bulk call."""

import os

import numpy as np
import xarray as xr
from xarray.backends import BackendArray, BackendEntrypoint
from xarray.core import indexing

from . import _velmio
from .errors import _error
from .line import FAMILIES, PROFILE_FAMILIES, SIDE_SCAN_FAMILIES, UNITS, _open, ragged, value_unit

_SECONDS_UNITS = UNITS["time"]


class _RangeArray(BackendArray):
    """A lazily read variable: rows (pings or records) come from one range
    read of the family, padded to ``shape[1]`` beams for profile families."""

    def __init__(self, path, family, column, shape, dtype, fill):
        self.path, self.family, self.column = path, family, column
        self.shape, self.dtype, self.fill = shape, np.dtype(dtype), fill

    def __getitem__(self, key):
        return indexing.explicit_indexing_adapter(key, self.shape, indexing.IndexingSupport.BASIC, self._read)

    def _read(self, key):
        rows = np.arange(self.shape[0])[key[0]]
        scalar = np.ndim(rows) == 0
        rows = np.atleast_1d(rows)
        if rows.size == 0:
            block = np.empty((0,) + self.shape[1:], self.dtype)
        else:
            first, stop = int(rows.min()), int(rows.max()) + 1
            block = self._rows(first, stop - first)[rows - first]
        block = block[(slice(None),) + tuple(key[1:])]
        return block[0] if scalar else block

    def _rows(self, first, count):
        h = _open(self.path, self.family)
        try:
            if self.family in PROFILE_FAMILIES:
                beams = h.read_beams(first, count)
                offsets = beams[ragged(self.family)[2]]
                return _pad(self._convert(beams[self.column]), offsets, self.shape[1], self.fill)
            return self._convert(h.read_records(first, count)[self.column])
        finally:
            h.close()

    def _convert(self, values):
        if self.dtype.kind == "M":
            return _velmio.utcs80_to_datetime64(values)
        return values.astype(self.dtype, copy=False)


def _pad(values, offsets, width, fill):
    """Flat beams to a (pings, width) block, without a loop per beam."""
    counts = np.diff(offsets)
    out = np.full((counts.size, width), fill, dtype=values.dtype)
    rows = np.repeat(np.arange(counts.size), counts)
    cols = np.arange(values.size) - np.repeat(offsets[:-1], counts)
    out[rows, cols] = values
    return out


def _fill(dtype):
    dtype = np.dtype(dtype)
    if dtype.kind == "f":
        return np.nan
    if dtype.kind == "M":
        return np.datetime64("NaT")
    return 0


_BEAMS = {
    "ObservedDepths": [("depth", "f8"), ("x", "f8"), ("y", "f8"), ("extra", "f8"), ("status", "u4")],
    "SLRange": [("range", "f8"), ("value", "f8"), ("angle1", "f8"), ("angle2", "f8"), ("status", "u4")],
    "TPE": [("error1", "f8"), ("error2", "f8"), ("status", "u4")],
}
_BEAMS["ObservedDepthsNew"] = _BEAMS["ObservedDepths"]
_BEAMS["ProcessedDepths"] = [(n, "u4" if n in ("quality", "detection", "head", "status") else "f8") for n in (
    "depth", "across_track", "along_track", "latitude", "longitude", "horizontal_uncertainty",
    "vertical_uncertainty", "travel_time", "across_angle", "along_angle", "slant_range", "reflectivity", "quality",
    "detection", "head", "reduction_tide", "reduction_heave", "reduction_draft", "reduction_refraction", "status")]
for _family in SIDE_SCAN_FAMILIES:
    _BEAMS[_family] = [("amplitude", "i4"), ("detection", "u4")]


def _lazy(path, family, column, shape, dtype, dims, attrs):
    array = _RangeArray(path, family, column, shape, dtype, _fill(dtype))
    return xr.Variable(dims, indexing.LazilyIndexedArray(array), attrs)


def open_line_dataset(path, family, drop_variables=None):
    path = os.fspath(path)
    if family not in FAMILIES:
        raise _error(5000022, f"not a sensor family of this library: {family!r}")
    h = _open(path, family)
    try:
        summary = h.summary()
        segments = h.segments()
        profiles = h.read_profiles() if family in PROFILE_FAMILIES else None
        count = h.count()
    finally:
        h.close()
    attrs = {"family": family, "line": path, "segments": [s["name"] for s in segments]}
    attrs.update({f"summary_{k}": v for k, v in summary.items()})
    variables = {}
    if profiles is not None:
        dim, count_key, _ = ragged(family)
        width = int(profiles[count_key].max()) if count else 0
        shape = (count, width)
        coords = {"ping": np.arange(count), dim: np.arange(width),
                  "time": ("ping", _velmio.utcs80_to_datetime64(profiles["time"]))}
        variables["seconds"] = xr.Variable("ping", profiles["time"], {"units": _SECONDS_UNITS})
        for name, values in profiles.items():
            if name not in ("time", "status"):
                variables[name] = xr.Variable("ping", values, {"units": UNITS.get(name, "1")})
        variables["profile_status"] = xr.Variable("ping", profiles["status"], {"units": "status bits"})
        if family not in SIDE_SCAN_FAMILIES:
            variables[f"{dim}_seconds"] = _lazy(path, family, "time", shape, "f8", ("ping", dim),
                                                {"units": _SECONDS_UNITS})
            variables[f"{dim}_time"] = _lazy(path, family, "time", shape, "M8[ns]", ("ping", dim), {})
        for name, dtype in _BEAMS[family]:
            key = f"{dim}_status" if name == "status" else name
            unit = "status bits" if name == "status" else UNITS.get(name, "1")
            variables[key] = _lazy(path, family, name, shape, dtype, ("ping", dim), {"units": unit})
    else:
        shape = (count,)
        seconds = _RangeArray(path, family, "time", shape, "f8", np.nan)[indexing.BasicIndexer((slice(None),))]
        coords = {"record": np.arange(count), "time": ("record", _velmio.utcs80_to_datetime64(seconds))}
        variables["seconds"] = xr.Variable("record", seconds, {"units": _SECONDS_UNITS})
        names = ["value"] if family not in ("Navigation", "SSSNavigation") else ["latitude", "longitude", "metres"]
        for name in names:
            unit = value_unit(family) if name == "value" else UNITS[name]
            variables[name] = _lazy(path, family, name, shape, "f8", ("record",), {"units": unit})
        variables["status"] = _lazy(path, family, "status", shape, "u4", ("record",), {"units": "status bits"})
    for name in drop_variables or ():
        variables.pop(name, None)
    return xr.Dataset(variables, coords=coords, attrs=attrs)


class VelmioBackendEntrypoint(BackendEntrypoint):
    """Survey line directories of VelmIO; ``group`` names the sensor family."""

    description = "VelmIO survey lines (sensor families of a line directory)"
    open_dataset_parameters = ("filename_or_obj", "drop_variables", "group")

    def open_dataset(self, filename_or_obj, *, drop_variables=None, group="ObservedDepths"):
        return open_line_dataset(filename_or_obj, group, drop_variables)

    def guess_can_open(self, filename_or_obj):
        try:
            path = os.fspath(filename_or_obj)
        except TypeError:
            return False
        return os.path.isdir(path) and any(os.path.isfile(os.path.join(path, f)) for f in FAMILIES)
