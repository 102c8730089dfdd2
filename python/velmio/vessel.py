"""Vessel configuration files (".tvc") as objects.

``Vessel(path)`` loads a file. The queries ``gyro``, ``heave``,
``navigation``, ``pitch``, ``roll``, ``svp``, ``towed``, ``waterline``,
``depth`` and ``draft`` take a time (seconds since 1980) and return the
settings valid then as a dict (angles in radians). ``entries(kind)``,
``entry(kind, time)`` and ``add`` give :class:`Entry` objects whose settings
are attributes; ``update`` and ``remove`` edit the entry lists; ``store()``
writes the file."""

from . import _velmio

# The entry kinds (list element names) the library knows.
KINDS = tuple(_velmio.VESSEL_KINDS)
# The keys of each dict of a depth sensor's ``transducers``.
TRANSDUCER_SETTINGS = tuple(_velmio.TRANSDUCER_SETTINGS)


class Entry:
    """One time-stamped entry of a vessel. Every setting of its kind is an
    attribute (``settings()`` lists them), read and written through the
    library: numbers as floats, flags as bools, texts as str or None,
    offsets and angles as tuples, tables as lists of (a, b) pairs
    (``gyro_offsets`` (azimuth, offset), ``draft_table`` (speed, draft)) and
    ``transducers`` as a list of dicts. Setting ``time`` moves the entry.
    Values are kept as the document holds them (metres, degrees, seconds)."""

    __slots__ = ("_e",)

    def __init__(self, handle):
        object.__setattr__(self, "_e", handle)

    @property
    def kind(self):
        return self._e.kind

    def settings(self):
        """The names of this kind's settings, in the library's order."""
        return list(self._e.names())

    def to_dict(self):
        return dict({"time": self._e.time}, **{n: self._e.get(n) for n in self._e.names()})

    def __getattr__(self, name):
        if name == "time":
            return self._e.time
        if name.startswith("_") or name not in self._e.names():
            raise AttributeError(f"{self.kind} entries have no setting {name!r}")
        return self._e.get(name)

    def __setattr__(self, name, value):
        if name == "time":
            self._e.time = float(value)
        else:
            self._e.set(name, value)

    def __getitem__(self, name):
        return self.time if name == "time" else self._e.get(name)

    def __dir__(self):
        return sorted(set(object.__dir__(self)) | set(self._e.names()) | {"time"})

    def __repr__(self):
        return f"velmio.vessel.Entry({self.kind!r}, time={self._e.time!r})"


class Vessel(_velmio.Vessel):
    def __init__(self, path=None):
        if path is None:
            super().__init__()
        else:
            super().__init__(path)

    def entries(self, kind):
        """The entries of a kind in time order."""
        return [Entry(e) for e in super().entries(kind)]

    def entry(self, kind, time):
        """The entry of a kind valid at time."""
        return Entry(super().entry(kind, float(time)))

    def add(self, kind, time, **settings):
        """Adds an entry of a kind (one of ``KINDS``, e.g. "GyroSensor")
        valid from time, with any of its settings; returns it."""
        return Entry(super().add(kind, float(time), settings))

    def update(self, kind, time, new_time=None, **settings):
        """Changes the entry of exactly that time; ``new_time`` moves it."""
        if new_time is not None:
            settings["time"] = float(new_time)
        super().update(kind, float(time), settings)

    def __repr__(self):
        return f"velmio.Vessel({self.file_name!r})"
