"""VelmioError: every failing call of the package raises it, with the
library's error code and the message bundle's sentence for it."""


class VelmioError(Exception):
    """A failing call. ``code`` is the library's error code, ``sentence`` the
    message bundle's text for it and ``detail`` what failed."""

    def __init__(self, code, detail=""):
        from . import _velmio

        self.code = code
        self.detail = detail
        self.sentence = _velmio.explain(code) or "Unknown error code."
        text = f"[{code}] {self.sentence}"
        super().__init__(f"{text} ({detail})" if detail else text)

    def __reduce__(self):
        # Errors travel between Dask worker processes.
        return (_error, (self.code, self.detail))


class VelmioFileError(VelmioError, OSError):
    """A file or directory could not be found, opened, read or written."""


class VelmioValueError(VelmioError, ValueError):
    """An argument the library refuses: wrong lengths or types, ranges,
    times before 1980, a closed handle."""


# Codes that name a bad argument rather than a file problem: -1, and the
# reasons shared by the sensor families (null handle 12/19, wrong mode 18,
# record out of range 19, not encodable 22) within each family's block.
_VALUE_REASONS = {12, 13, 17, 18, 19, 22, 28}


def _is_value_error(code):
    if code == -1 or code == 5000019 or code == 5000022:
        return True
    if 5000100 <= code < 5003000:
        return code % 100 in _VALUE_REASONS
    return False


def _error(code, detail=""):
    """The exception for a code (used by the extension)."""
    cls = VelmioValueError if _is_value_error(code) else VelmioFileError
    return cls(code, detail)
