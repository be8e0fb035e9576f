"""OpenGL contexts, the threads that they belong to, and renderers at home in them."""
import contextlib
import threading
from collections import deque
from typing import Callable, Deque, Iterator, Optional

from . import raw
from ._calls import checked, discard_pending, is_calling, is_forked, use_process
from .arrays import address
from .errors import ArgumentError, StateError
from .pictures import Picture, new_picture


class Discarded:
    """What is to be freed: `uninit` deletes OpenGL objects in their context, `free` the rest with or without it."""

    def __init__(self, uninit: Callable[[], None], free: Callable[[], None]) -> None:
        self._uninit = uninit
        self.free = free

    def release(self) -> None:
        """With the context current. Errors concern nobody any more."""
        self._uninit()
        self.free()
        discard_pending()


class Context:
    """A context is current on one thread only: what belongs to it is drawn and freed there."""

    def __init__(self, owner: str) -> None:
        self.owner = owner  # for messages
        self.alive = True
        self._garbage: Deque["Discarded"] = deque()

    def discard(self, item: "Discarded") -> None:
        """Frees something of this context: now on its own thread, from another one before its next frame."""
        if not self.alive:
            item.free()
        elif _here.current is self and not is_calling():
            item.release()
        else:
            self._garbage.append(item)

    def sweep(self) -> None:
        """With the context current."""
        while self._garbage:
            self._garbage.popleft().release()

    def end(self) -> None:
        self.alive = False
        while self._garbage:
            self._garbage.popleft().free()

    @contextlib.contextmanager
    def current(self) -> Iterator[None]:
        """While the context is current, on its thread."""
        before, _here.current = _here.current, self
        try:
            yield
        finally:
            _here.current = before


class OwnContext(Context):
    """The offscreen target of a thread. It is made with the thread's first picture and ends with the thread."""

    def __init__(self) -> None:
        super().__init__(f"the thread {threading.current_thread().name!r}")
        use_process()
        self._target = checked(raw.createOffscreenTarget)
        self._size = (1, 1)
        self._framing = False  # also while a frame begins and ends

    def picture(self, width: int, height: int, draw: Callable[[], None]) -> Picture:
        if not (1 <= width <= 65536 and 1 <= height <= 65536):
            raise ArgumentError(f"A picture cannot have {width} x {height} pixels.")
        picture = new_picture(width, height)
        with self.frame(picture):
            draw()
        return picture

    @contextlib.contextmanager
    def frame(self, picture: Optional[Picture] = None) -> Iterator[None]:
        """A frame of the picture; without one a frame that nobody reads, to have the context current."""
        size = self._size if picture is None else (picture.shape[1], picture.shape[0])
        self._framing = True
        try:
            checked(raw.beginOffscreenFrame, self._target, *size)
            self._size = size
            try:
                with self.current():
                    self.sweep()
                    yield
            except BaseException:
                raw.finishOffscreenFrame(self._target, None)
                discard_pending()
                raise
            pixels = None if picture is None else address(picture)
            checked(raw.finishOffscreenFrameAs, self._target, raw.OctPixelFormat.OCT_PIXELS_RGBA_TOP_DOWN, pixels)
        finally:
            self._framing = False

    def discard(self, item: Discarded) -> None:
        if self.alive and _here.own is self and not (self._framing or is_calling()):
            with self.frame():
                item.release()
        else:
            super().discard(item)

    def end(self) -> None:
        with contextlib.suppress(Exception):
            with self.frame():
                pass
        self.alive = False
        raw.clearOffscreenTarget(self._target)
        discard_pending()
        super().end()


class _OwnHolder:
    """Ends a thread's own context with the thread."""

    def __init__(self) -> None:
        self.context = OwnContext()

    def __del__(self) -> None:
        if not (is_forked() or _ending):
            self.context.end()


class _Here(threading.local):
    """What this thread has."""

    current: Optional[Context] = None  # while a frame is drawn
    holder: Optional[_OwnHolder] = None

    @property
    def own(self) -> Optional[OwnContext]:
        return self.holder.context if self.holder else None


_here = _Here()
_ending = False


def leave_the_rest() -> None:
    """At the end of the interpreter: contexts that are left go with the process."""
    global _ending
    _ending = True


def own_context() -> OwnContext:
    if is_forked():
        use_process()
    if _here.current is not None:
        raise StateError("A frame is being drawn on this thread: draw() draws into it, a picture of its own is for later or "
                         "for another thread.")
    if _here.holder is None:
        _here.holder = _OwnHolder()
    return _here.holder.context


class Home:
    """Where a renderer has its OpenGL objects: nowhere at first, then in the context of its first frame."""

    def __init__(self) -> None:
        self._context: Optional[Context] = None

    def enter(self, what: str) -> bool:
        """With a context current. Tells whether the renderer has to be initialised here. A renderer whose context is gone
        moves; one whose context lives stays there."""
        here = _here.current
        if here is None:
            raise StateError(f"{what}.draw() draws into the frame of a loop, and no frame is being drawn on this thread. "
                             f"{what}.render() gives a picture.")
        if self._context is here:
            return False
        if self._context is not None and self._context.alive:
            raise StateError(f"This {what} draws on {self._context.owner} and cannot draw on {here.owner}: its OpenGL objects "
                             "belong to the context of its first frame. Make one for each thread.")
        return True

    def settle(self) -> None:
        self._context = _here.current

    def discard(self, uninit: Callable[[], None], free: Callable[[], None]) -> None:
        if self._context is None:
            free()  # may be in the midst of a call, whose error must stay
        else:
            self._context.discard(Discarded(uninit, free))
