"""Survey lines: the sensors present in a line directory, read into numpy
columns, written from them and edited."""

import os

import numpy as np

from . import _velmio
from .errors import _error

SONAR_FAMILIES = tuple(_velmio.SONAR_FAMILIES)
FAMILIES = tuple(_velmio.FAMILIES) + SONAR_FAMILIES
PROFILE_FAMILIES = tuple(_velmio.PROFILE_FAMILIES) + SONAR_FAMILIES
SIDE_SCAN_FAMILIES = tuple(f for f in SONAR_FAMILIES if "SideScan" in f)

# The codes the library gives for a missing line directory and data file.
_NO_DIRECTORY = 5000010
_NO_DATA_FILE = 5000046

# Units of each column, kept in xarray attributes.
UNITS = {
    "time": "s since 1980-01-01 UTC (leap seconds counted)",
    "value": None,
    "latitude": "rad", "longitude": "rad", "metres": "m",
    "depth": "m", "x": "m", "y": "m", "extra": "m",
    "range": "m", "angle1": "rad", "angle2": "rad",
}
_RADIAN_FAMILIES = {"Gyro", "Pitch", "Roll", "SSSGyro"}


def value_unit(family):
    return "rad" if family in _RADIAN_FAMILIES else "m"


def _check_family(family):
    if family not in FAMILIES:
        raise _error(5000022, f"not a sensor family of this library: {family!r}")


def ragged(family):
    """The names of a profile family's second dimension, its per-ping count
    and its offsets column: side scan pings hold samples, the others beams."""
    if family in SIDE_SCAN_FAMILIES:
        return "sample", "sample_count", "sample_offsets"
    return "beam", "beam_count", "beam_offsets"


def _open(path, family, mode="query"):
    """The library handle of a family (query, update or create)."""
    if family in SONAR_FAMILIES:
        return _velmio.SonarSensor(path, family, mode)
    return _velmio.Sensor(path, family, mode)


def _with_datetimes(columns):
    if "time" in columns:  # side scan samples carry no time of their own
        columns["datetime"] = _velmio.utcs80_to_datetime64(columns["time"])
    return columns


class Line:
    """A survey line directory. ``sensors`` lists the families whose data
    file is present; ``read`` gives a family's columns."""

    def __init__(self, path):
        self.path = os.fspath(path)
        if not os.path.isdir(self.path):
            raise _error(_NO_DIRECTORY, self.path)

    def __repr__(self):
        return f"velmio.Line({self.path!r}, sensors={self.sensors})"

    @property
    def sensors(self):
        return [f for f in FAMILIES if os.path.isfile(os.path.join(self.path, f))]

    def open(self, family, mode="query"):
        """The library handle of a family; close it with ``close()``. A
        handle serves one thread at a time (open one per thread)."""
        _check_family(family)
        return _open(self.path, family, mode)

    def summary(self, family):
        with _Handle(self.open(family)) as h:
            return h.summary()

    def segments(self, family):
        with _Handle(self.open(family)) as h:
            return h.segments()

    def read(self, family, first=0, count=None):
        """A family's data in one bulk read.

        Time series (simple sensors, navigation): a dict of equal-length
        columns ``time`` (float64 seconds since 1980, leap seconds counted),
        ``datetime`` (datetime64[ns] UTC), the values and ``status`` (uint32),
        records ``first`` .. ``first + count`` (from 0).

        Profile families: ``{"profiles": {...}, "beams": {...}}``, the beams
        flat with ``beams["beam_offsets"]`` (profiles + 1 of them) and
        ``profiles["beam_count"]`` (side scan: samples, ``sample_offsets`` and
        ``sample_count``); ``first`` and ``count`` count profiles."""
        with _Handle(self.open(family)) as h:
            if family in PROFILE_FAMILIES:
                both = h.read_range(first, count)
                return {"profiles": _with_datetimes(both["profiles"]), "beams": _with_datetimes(both["beams"])}
            return _with_datetimes(h.read_records(first, count))

    def traces(self, family="SideScan"):
        """The side scan trace records of sonar types 9 and 10: ``profile``
        (pings from 0), ``bottom_sample`` and ``depth``."""
        with _Handle(self.open(family)) as h:
            return h.read_traces()

    def dataset(self, family, **kwargs):
        """The family as an xarray.Dataset (see velmio.xarray_backend)."""
        from .xarray_backend import open_line_dataset

        return open_line_dataset(self.path, family, **kwargs)

    def edit(self, family):
        return edit_sensor(self.path, family)

    def create(self, family, **kwargs):
        return create_sensor(self.path, family, **kwargs)


class _Handle:
    """Closes a library handle on leaving the block, whatever happened."""

    def __init__(self, handle):
        self.handle = handle

    def __enter__(self):
        return self.handle

    def __exit__(self, *exc):
        if exc[0] is None:
            self.handle.close()
        else:
            try:
                self.handle.close()
            except Exception:
                pass
        return False


def open_line(path):
    """The survey line directory at path; VelmioError 5000010 when missing."""
    return Line(path)


class SensorWriter:
    """Writes one family of a line: one ``write_segment`` call per raw
    source file, then ``close`` (or leave the ``with`` block) to finish."""

    def __init__(self, line, family, tool_type=0, tool_type2=0, coordinate_type=1, sonar_type=None):
        _check_family(family)
        os.makedirs(os.fspath(line), exist_ok=True)
        self.family = family
        self.summary_status = 0
        if family in SONAR_FAMILIES:
            # Sonar type 9, 10 or 15 makes a "SideScan" file of that sonar.
            kind = sonar_type if family in SIDE_SCAN_FAMILIES else tool_type
            self._h = _velmio.SonarSensor(os.fspath(line), family, "create", kind)
            return
        first = coordinate_type if family in ("Navigation", "SSSNavigation") else tool_type
        self._h = _velmio.Sensor(os.fspath(line), family, "create", first, tool_type2)

    def write_segment(self, name, data=None, *, profiles=None, beams=None, traces=None, segment_status=0,
                      **columns):
        """Writes a segment named after its raw source file. Time series
        take equal-length columns (``time``, ``value`` or ``latitude``/
        ``longitude``/``metres``, ``status``) as a dict or keywords; profile
        families take ``profiles`` (time, beam_count, first_beam, status and
        angle1/angle2 or profile_word) and flat ``beams`` columns. Times are
        seconds since 1980 or datetime64 values; ``segment_status`` is the
        segment's status word.

        Side scan and processed depths take the columns their reads give
        (absent ones are zeros; ``time``, the count, first beam or sample,
        beam ``depth`` and sample ``amplitude`` are required); side scan of
        sonar types 9 and 10 also ``traces`` (``profile``, its index in this
        segment, ``bottom_sample``, ``depth``)."""
        if self.family in SONAR_FAMILIES:
            self._h.write_segment(name, _times(profiles), _times(beams), traces, segment_status)
        elif self.family in PROFILE_FAMILIES:
            self._h.write_profiles(name, _times(profiles), _times(beams), segment_status)
        else:
            data = dict(data or {}, **columns)
            data.setdefault("status", np.zeros(np.shape(data.get("time", ())), np.uint32))
            self._h.write_records(name, _times(data), segment_status)

    def close(self):
        if not self._h.closed:
            self._h.finish(self.summary_status)

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        if exc[0] is None:
            self.close()
        else:
            self._h.close()
        return False


def _times(columns):
    """Columns with datetime64 times turned into seconds since 1980."""
    if columns is None:
        raise _error(-1, "columns missing")
    columns = dict(columns)
    t = columns.get("time")
    if t is not None and np.asarray(t).dtype.kind == "M":
        columns["time"] = _velmio.datetime64_to_utcs80(np.asarray(t))
    return columns


def create_sensor(line, family, **kwargs):
    """A SensorWriter for a new family file in line (created when missing)."""
    return SensorWriter(line, family, **kwargs)


class SensorEditor:
    """Edits one family of a line in place. Record and beam positions count
    from 0 as ``Line.read`` returns them; an index array or a boolean mask
    selects them. Status edits of time series and navigation, and segment
    and summary statuses, reach the file with ``save()``; beam edits are
    written at once, as are side scan ping statuses."""

    def __init__(self, line, family):
        _check_family(family)
        self.family = family
        self._h = _open(os.fspath(line), family, "update")

    def set_status(self, where, status):
        """Record statuses (time series and navigation)."""
        if self.family in PROFILE_FAMILIES:
            raise _error(-1, f"{self.family} holds profiles, not records")
        self._h.set_record_status(where, status)

    def set_profile_status(self, where, status):
        """Ping statuses of side scan."""
        if self.family not in SIDE_SCAN_FAMILIES:
            raise _error(-1, f"{self.family} has no ping status edit")
        self._h.set_profile_status(where, status)

    def set_beam_status(self, where, status):
        """Replaces the status bits of beams (observed depths, slant range,
        processed depths)."""
        self._h.update_beams("status", where, {"status": status})

    def set_rejection(self, where, bits):
        """Replaces only the rejection bits of observed depth beams."""
        self._h.update_beams("rejection", where, {"status": bits})

    def set_depth(self, where, depth, status=None):
        self._h.update_beams("depth", where, {"depth": depth, "status": status})

    def set_xyz(self, where, x=None, y=None, depth=None, status=None):
        self._h.update_beams("xyz", where, {"x": x, "y": y, "depth": depth, "status": status})

    def set_segment_status(self, segment, status):
        self._h.set_segment_status(segment, status)

    def set_summary_status(self, status):
        self._h.set_summary_status(status)

    def save(self):
        self._h.save()

    def close(self):
        self._h.close()

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()
        return False


def edit_sensor(line, family):
    return SensorEditor(line, family)
