"""Exceptions of the package."""

__all__ = ["CancelledError", "Error"]


class Error(RuntimeError, ValueError):
    """What the library refused or failed at; the text is its own and names attributes and values.

    Most often a value is what was refused, so this is a ValueError, too. What the package itself finds wrong with an
    argument, before the library sees it, is a TypeError or ValueError; no memory is a MemoryError.
    """


class CancelledError(Error):
    """A run that was cancelled on request."""
