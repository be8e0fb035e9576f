"""Calls of the library that raise its errors, handles that are freed, and processes that were forked."""
import contextlib
import ctypes
import os
import threading
from typing import Any, Callable, Optional, Protocol, Set, Tuple

from . import raw
from .errors import StateError, error_of

_TEXT_BYTES = 4096


class _Process:
    """Whether this process is the one in which the library's threads and contexts are."""

    used = False
    forked = False


def _after_fork() -> None:
    _Process.forked = _Process.used


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_after_fork)


def is_forked() -> bool:
    return _Process.forked


def use_process() -> None:
    """Called before anything is made that a fork would tear apart."""
    if _Process.forked:
        raise StateError(
            "This process was forked from one that had used oct_rendering, and OpenGL does not survive that. Start "
            "processes with the method 'spawn' or 'forkserver', or before the first object of oct_rendering is made.")
    _Process.used = True


class _Calls(threading.local):
    depth = 0


_calls = _Calls()


def is_calling() -> bool:
    """Whether this thread is between a call and the look at its error: what Python's garbage collector does meanwhile must
    not take that error away."""
    return _calls.depth > 0


def checked(function: Callable[..., Any], *arguments: Any) -> Any:
    """Calls a function of `raw` and raises its error."""
    if _Process.forked:
        use_process()
    _calls.depth += 1
    try:
        result = function(*arguments)
        _raise_pending()
    finally:
        _calls.depth -= 1
    return result


def _raise_pending() -> None:
    text = ctypes.create_string_buffer(_TEXT_BYTES)
    if raw.getOwnRendererError(text, len(text)):
        raise error_of(raw.getRendererErrorKind(), text.value.decode("utf-8", "replace"))


def discard_pending() -> None:
    """For clean-up, which has nobody to report to: what stays pending would be taken for an error of the next call."""
    raw.getOwnRendererError(None, 0)


def explanation(handle: "Handle", function: Callable[..., int]) -> str:
    """What an explaining function of `raw` says of the last frame; "" when it shows something."""
    text = ctypes.create_string_buffer(_TEXT_BYTES)
    return text.value.decode("utf-8", "replace").strip() if handle.call(function, text, len(text)) else ""


class Handle:
    """A handle of the library that any thread may use and close. It is freed once, when nobody is inside of a call."""

    def __init__(self, value: Optional[int], free: Callable[[int], None], name: str) -> None:
        if not value:
            raise StateError(f"The library made no {name}.")
        self._value = value
        self._free = free
        self._name = name
        self._users = 0
        self._closed = False
        self._lock = threading.Lock()
        self._freed = threading.Event()

    @property
    def closed(self) -> bool:
        return self._closed

    def call(self, function: Callable[..., Any], *arguments: Any) -> Any:
        """Calls a function of `raw` with the handle as first argument."""
        with self as value:
            return checked(function, value, *arguments)

    def __enter__(self) -> int:
        if _Process.forked:
            use_process()
        with self._lock:
            if self._closed:
                raise StateError(f"This {self._name} is closed.")
            self._users += 1
        return self._value

    def __exit__(self, *_: object) -> None:
        with self._lock:
            self._users -= 1
            last = self._closed and self._users == 0
        if last:
            self._release()

    def close(self) -> None:
        """Lets no call begin any more. The handle is freed now, or when the last call returns."""
        with self._lock:
            if self._closed:
                return
            self._closed = True
            if self._users:
                return
        self._release()

    def wait_until_freed(self) -> None:
        self._freed.wait()

    def _release(self) -> None:
        try:
            if not _Process.forked:
                self._free(self._value)
        finally:
            self._freed.set()


class Reports:
    """Exceptions of callbacks, which must not get into the library: the first waits for the next call of the object that
    owns the callbacks, others go to sys.unraisablehook, and what is said already is not said with every frame."""

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._first: Optional[BaseException] = None
        self._told: Set[Tuple[type, str]] = set()

    def guard(self, function: Callable[..., Any]) -> Callable[..., None]:
        def guarded(*arguments: Any) -> None:
            try:
                function(*arguments)
            except BaseException as error:  # whatever it is, C has no use for it
                self.add(error)
        return guarded

    def add(self, error: BaseException) -> None:
        words = type(error), str(error)
        with self._lock:
            if words in self._told:
                return
            self._told.add(words)
            if self._first is None:
                self._first = error
                return
        _report(error)

    def _take(self) -> Optional[BaseException]:
        with self._lock:
            first, self._first = self._first, None
            self._told.clear()
        return first

    def raise_first(self) -> None:
        first = self._take()
        if first is not None:
            raise first

    def report_first(self) -> None:
        """For an end that must not raise."""
        first = self._take()
        if first is not None:
            _report(first)


class _Closable(Protocol):
    _reports: Reports

    def close(self) -> None: ...


class Reporting:
    """The end of what has callbacks: their exceptions that no call has raised are raised or told then."""

    def __exit__(self: _Closable, kind: object = None, *_: object) -> None:
        self.close()
        if kind is None:
            self._reports.raise_first()
        else:
            self._reports.report_first()

    def finish(self: _Closable) -> None:
        """At the end of the program: closes, and lets no exception out."""
        with contextlib.suppress(Exception):
            self.close()
        self._reports.report_first()


def _report(error: BaseException) -> None:
    """To sys.unraisablehook, whose argument only Python itself can make: it does so for the callbacks of ctypes."""
    def callback_of_oct_rendering() -> None:
        raise error
    ctypes.CFUNCTYPE(None)(callback_of_oct_rendering)()
