"""Vessel configuration files (".tvc") as objects.

``Vessel(path)`` loads a file. The queries ``gyro``, ``heave``,
``navigation``, ``pitch``, ``roll``, ``svp``, ``towed``, ``waterline``,
``depth`` and ``draft`` take a time (seconds since 1980) and return the
settings valid then as a dict (angles in radians). ``kinds()``, ``entries(kind)``,
``add``, ``update`` and ``remove`` edit the entry lists; ``store()`` writes
the file."""

from . import _velmio


class Vessel(_velmio.Vessel):
    def __init__(self, path=None):
        if path is None:
            super().__init__()
        else:
            super().__init__(path)

    def add(self, kind, time, **settings):
        """Adds an entry of a kind (e.g. "GyroSensor") valid from time; the
        settings are latency, comment, authorization and, for sensors,
        manufacturer, model and serial_number."""
        super().add(kind, float(time), settings)

    def update(self, kind, time, new_time=None, **settings):
        """Changes the entry of exactly that time; ``new_time`` moves it."""
        if new_time is not None:
            settings["time"] = float(new_time)
        super().update(kind, float(time), settings)

    def __repr__(self):
        return f"velmio.Vessel({self.file_name!r})"
