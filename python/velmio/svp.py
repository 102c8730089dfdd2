"""Sound velocity profile files in every format the library knows: native,
CHS, RAN Dat and RAN Edf. A file is a list of casts, each a dict with
``time`` (seconds since 1980), ``datetime``, ``latitude``/``longitude`` (the
files' texts; decimal degrees are accepted on writing), their values in
``latitude_degrees``/``longitude_degrees``, and numpy ``depth`` (m) and
``velocity`` (m/s) columns."""

import numpy as np

from . import _velmio

FORMATS = ("native", "chs", "ran_dat", "ran_edf")


def read(path, format=None):
    """(format, casts) of a file; the format is detected unless given."""
    found = _velmio.svp_read(path, format)
    for cast in found["casts"]:
        cast["datetime"] = _velmio.utcs80_to_datetime64(np.array([cast["time"]]))[0]
    return found["format"], found["casts"]


def write(path, casts, format="native"):
    """Writes casts to path in a format (the old file is replaced only when
    the new one was written whole)."""
    _velmio.svp_write(path, [dict(c) for c in casts], format)


def convert(source, target, format, source_format=None):
    """Reads source and writes its casts to target in another format."""
    _, casts = read(source, source_format)
    write(target, casts, format)
    return casts
