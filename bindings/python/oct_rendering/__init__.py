"""Rendering of optical coherence tomography (OCT) images.

    import numpy, oct_rendering
    picture = oct_rendering.render_bscan(numpy.load("bscan.npy"))    # shape (A-scans, depth)
    picture.save("bscan.png")

render_bscan and render_volume give pictures by one call. Display and Volume keep what they show on the graphics card; Loop draws
them on a thread of its own; Live shows the volumes of a device while it measures. `raw` has all functions of the library as they
are in C. Errors are exceptions: OctError and its kinds.
"""
import atexit as _atexit

from . import raw
from ._calls import is_forked as _is_forked
from ._contexts import leave_the_rest as _leave_the_rest
from ._library import library as _library
from ._scene import Pick
from .colors import colormap_names
from .display import Display
from .errors import (ArgumentError, DeviceError, EmptyPicture, ErrorKind, LibraryNotFound, OctError, OpenGLError, OutOfMemory, StateError,
                     SystemFailure)
from .live import Live, open_lives as _open_lives
from .loop import Loop, open_loops as _open_loops
from .pictures import Picture
from .render import render_bscan, render_turntable, render_volume
from .simulator import SimulatedDevice
from .volume import Volume

__version__ = raw.VERSION
__all__ = ["ArgumentError", "DeviceError", "Display", "EmptyPicture", "ErrorKind", "LibraryNotFound", "Live", "Loop", "OctError",
           "OpenGLError", "OutOfMemory", "Pick", "Picture", "SimulatedDevice", "StateError", "SystemFailure", "Volume",
           "colormap_names", "library_path", "raw", "render_bscan", "render_turntable", "render_volume"]


def library_path() -> str:
    """The file of the library that is loaded, or that is loaded now."""
    _library.load()
    return _library.path


@_atexit.register
def _end() -> None:
    """Threads that call functions of Python end before Python does."""
    _leave_the_rest()
    if _is_forked():
        return
    for loop in tuple(_open_loops):
        loop.finish()
    for live in tuple(_open_lives):
        live.finish()
