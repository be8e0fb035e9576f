"""Control loops: frames drawn and handed over on threads of their own."""
import contextlib
import ctypes
import threading
from typing import Any, Callable, Iterator, Optional, Set, Union

import numpy as np

from . import raw
from ._calls import Handle, Reporting, Reports, checked, is_forked, use_process
from ._contexts import Context
from .errors import ArgumentError, ErrorKind, OctError, StateError, error_of
from .pictures import Picture, new_picture

_MODES = {"once": 0, "cycle": 1}
_PIXELS = raw.OctPixelFormat.OCT_PIXELS_RGBA_TOP_DOWN

Draw = Union[Callable[[int], Any], Any]  # a function of the request's id, or what has a draw(id)

open_loops: Set["Loop"] = set()
_inside = threading.local()  # the loop whose callback this thread is in


class Loop(Reporting):
    """Draws frames on a thread of its own, in a context of its own.

    `draw` draws a frame: a Display, a Volume or a Live, or a function that gets the id of the request and calls their draw().
    `frame` gets each finished picture and its id, on another thread; the loop is at most three pictures ahead of it. `start` and
    `end` are called on the drawing thread before the first and after the last frame. `mode`: "once" draws every request
    once, "cycle" all of them in turn for ever.

    An exception in one of these functions does not reach the library: it is raised by the next call of the loop. Close the
    loop, or use it in a `with` statement; the end of the program closes it as well."""

    def __init__(self, draw: Draw, size: "tuple[int, int]" = (640, 480), frame: Optional[Callable[[Picture, int], Any]] = None,
                 mode: str = "once", start: Optional[Callable[[], Any]] = None, end: Optional[Callable[[], Any]] = None) -> None:
        if mode not in _MODES:
            raise ArgumentError(f"There is no mode {mode!r}: {', '.join(_MODES)}.")
        use_process()
        self._draw = getattr(draw, "draw", draw)
        self._frame = frame
        self._start = start
        self._end = end
        self._reports = Reports()
        self._context = Context("the drawing thread of a loop")
        # They live as long as the loop does, whoever forgets it.
        guard = self._reports.guard
        self._callbacks = (raw.OctLoopFunction(guard(self._on_start)), raw.OctLoopFunction(guard(self._on_end)),
                           raw.OctErrorFunction(guard(self._on_error)), raw.OctRenderFunction(guard(self._on_draw)),
                           raw.OctImageReadyFunction(guard(self._on_frame)))
        init, uninit, error, render, image_ready = self._callbacks
        checked(raw.setSurfaceSharing, raw.OctSurfaceSharing.OCT_SHARING_HOST_MEMORY)
        checked(raw.setHostPixelFormat, _PIXELS)
        value = checked(raw.createOpenGLControlLoopCB, init, uninit, error)
        self._handle = Handle(value, raw.deleteOpenGLControlLoop, "Loop")
        open_loops.add(self)
        try:
            self._handle.call(raw.registerOpenGLControlLoopRenderCallback, render)
            self._handle.call(raw.registerOpenGLControlLoopCallback, image_ready)
            self._handle.call(raw.resizeOpenGLControlLoop, *size)
            self._handle.call(raw.OpenGLControlLoopMode, _MODES[mode])
        except BaseException:
            self.close()
            raise

    def __enter__(self) -> "Loop":
        return self

    def request(self, id: int = 0) -> None:
        """Asks for a frame and returns at once. An id that waits already is not added again."""
        self._reports.raise_first()
        if not 0 <= id < 0x7FFFFFFF:
            raise ArgumentError("The id of a request is a number from 0 to 2147483646.")
        self._handle.call(raw.renderMultOpenGLControlLoop, id)

    def resize(self, width: int, height: int) -> None:
        """Sets the size of the frames, from the next one on."""
        self._reports.raise_first()
        self._handle.call(raw.resizeOpenGLControlLoop, width, height)

    def snapshot(self, width: int, height: int) -> Picture:
        """Draws a frame of any size and waits for it."""
        self._reports.raise_first()
        if self._inside():
            raise StateError("A snapshot would wait for the function that takes it.")
        if not (1 <= width <= 65536 and 1 <= height <= 65536):
            raise ArgumentError(f"A picture cannot have {width} x {height} pixels.")
        picture = new_picture(width, height)
        self._handle.call(raw.snapshotOpenGLControlLoopAs, width, height, _PIXELS, picture.ctypes.data)
        self._reports.raise_first()
        return picture

    def close(self) -> None:
        """Ends both threads; no function is called any more when it returns. Again: nothing."""
        if is_forked():
            return
        if self._inside():
            raise StateError("A loop cannot be closed from its own functions.")
        self._handle.close()
        self._handle.wait_until_freed()
        self._context.end()
        open_loops.discard(self)

    def _inside(self) -> bool:
        return getattr(_inside, "loop", None) is self

    @contextlib.contextmanager
    def _within(self) -> Iterator[None]:
        _inside.loop = self
        try:
            yield
        finally:
            _inside.loop = None

    def _on_start(self) -> None:
        if self._start:
            with self._within(), self._context.current():
                self._start()

    def _on_draw(self, id: int) -> None:
        with self._within(), self._context.current():
            self._context.sweep()
            self._draw(id)

    def _on_frame(self, id: int, width: int, height: int, surface: int) -> None:
        if not self._frame:
            return
        host = ctypes.cast(surface, ctypes.POINTER(raw.OctHostSurface)).contents
        rows = np.ctypeslib.as_array(ctypes.cast(host.pixels, ctypes.POINTER(ctypes.c_ubyte)), (height, host.stride_bytes))
        picture = new_picture(width, height)
        picture.reshape(height, -1)[:] = rows[:, :width * 4]
        with self._within():
            self._frame(picture, id)

    def _on_end(self) -> None:
        with self._within(), self._context.current():
            if self._end:
                self._end()
            self._context.sweep()

    def _on_error(self, message: bytes) -> None:
        self._reports.add(_thread_error(message))


def _thread_error(message: bytes) -> OctError:
    return error_of(ErrorKind.OPENGL, message.decode("utf-8", "replace"))
