"""Time conversions over arrays between UTC seconds since 1980 (leap seconds
counted, as the files hold them), year/day/seconds, seconds since 1970 and
numpy datetime64 (POSIX time: the library's leap second table, which ends in
2009, decides the offset)."""

import numpy as np

from . import _velmio


def _apply(fn, *arrays):
    arrays = np.broadcast_arrays(*[np.asarray(a) for a in arrays])
    shape = arrays[0].shape
    out = fn(*[a.reshape(-1) for a in arrays])
    if isinstance(out, tuple):
        return tuple(o.reshape(shape) for o in out)
    return out.reshape(shape)


def to_datetime64(seconds):
    """datetime64[ns] UTC of seconds since 1980 (NaN gives NaT)."""
    return _apply(_velmio.utcs80_to_datetime64, np.asarray(seconds, dtype=float))


def from_datetime64(datetimes):
    """Seconds since 1980 of datetime64 values (NaT gives NaN)."""
    d = np.asarray(datetimes)
    return _velmio.datetime64_to_utcs80(d).reshape(d.shape)


def to_yds(seconds):
    """(year, day of year, seconds of day) of seconds since 1980."""
    return _apply(_velmio.utcs80_to_yds, seconds)


def from_yds(year, day, seconds):
    return _apply(_velmio.yds_to_utcs80, year, day, seconds)


def to_utcs70(seconds):
    """Seconds since 1970 (leap seconds counted) of seconds since 1980."""
    return _apply(_velmio.utcs80_to_utcs70, seconds)


def tai_utc_offset(year, day):
    """TAI - UTC in whole seconds on a day."""
    return _velmio.tai_utc_offset(int(year), int(day))
