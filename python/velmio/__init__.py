"""VelmIO for Python: survey lines, vessel configurations, sound velocity
profiles, projections and time conversions as numpy arrays.

The library's own failure lines on standard output are switched off at
import; every failure raises :class:`VelmioError`. Call
``velmio.diagnostics(True)`` to see the lines again."""

from .errors import VelmioError, VelmioFileError, VelmioValueError
from . import _velmio
from .line import Line, open_line, create_sensor, edit_sensor, FAMILIES, PROFILE_FAMILIES
from .vessel import Vessel
from . import vessel
from . import geodesy, plot, svp, time

__version__ = "1.0.0"


def explain(code):
    """The message bundle's sentence for an error code (None when unknown)."""
    return _velmio.explain(int(code))


def diagnostics(enabled=True):
    """Lets the library print its failure lines on standard output (off after
    import). Returns the previous setting."""
    return _velmio.set_diagnostics(bool(enabled))


__all__ = [
    "VelmioError", "VelmioFileError", "VelmioValueError", "Line", "open_line", "create_sensor",
    "edit_sensor", "FAMILIES", "PROFILE_FAMILIES", "Vessel", "geodesy", "svp", "time", "explain",
    "diagnostics",
]
