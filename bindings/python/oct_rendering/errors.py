"""Errors of the library as exceptions."""
from enum import IntEnum
from typing import Dict, Type


class ErrorKind(IntEnum):
    """What went wrong, by the numbers of OctErrorKind."""

    NONE = 0
    ARGUMENT = 1
    STATE = 2
    OPENGL = 3
    MEMORY = 4
    DEVICE = 5
    SYSTEM = 6


class OctError(RuntimeError):
    """An error of the library: `kind`, and its words in `text`."""

    kind = ErrorKind.NONE

    def __init__(self, text: str) -> None:
        super().__init__(text)
        self.text = text


class ArgumentError(OctError, ValueError):
    """A handle, a number or an array that the function cannot work with."""

    kind = ErrorKind.ARGUMENT


class StateError(OctError):
    """The call comes at the wrong time, on the wrong thread or in the wrong process."""

    kind = ErrorKind.STATE


class OpenGLError(OctError):
    """OpenGL, Direct3D or what they share: a driver that is too old, or failed."""

    kind = ErrorKind.OPENGL


class OutOfMemory(OctError, MemoryError):
    """No memory, on the host or on the graphics card."""

    kind = ErrorKind.MEMORY


class DeviceError(OctError):
    """The device library: missing, incomplete, or with an error of its own."""

    kind = ErrorKind.DEVICE


class SystemFailure(OctError):
    """The operating system: files, threads, windows, fonts."""

    kind = ErrorKind.SYSTEM


class EmptyPicture(UserWarning):
    """A picture shows nothing or almost nothing; the warning says why, and what to do about it."""


class LibraryNotFound(OctError, ImportError):
    """The shared library, or a function of it, was not found."""

    kind = ErrorKind.SYSTEM


_CLASSES: Dict[int, Type[OctError]] = {error.kind: error for error in (
    ArgumentError, StateError, OpenGLError, OutOfMemory, DeviceError, SystemFailure)}


def error_of(kind: int, text: str) -> OctError:
    """The exception for an error of the library."""
    return _CLASSES.get(kind, OctError)(text.strip() or "A program of the graphics card did not link; see the log.")
