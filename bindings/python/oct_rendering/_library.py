"""The shared libraries: where they are found, and their functions by name."""
import ctypes
import os
import sys
import threading
from pathlib import Path
from typing import Any, Callable, Dict, List, Mapping, Optional, Tuple

from .errors import LibraryNotFound

# What the library writes when it is loaded has no place among the output of a program in Python.
os.environ.setdefault("OCT_RENDERING_QUIET", "1")

Prototype = Tuple[str, Any, Tuple[Any, ...]]  # the version it came with, result, arguments

_WINDOWS = sys.platform == "win32"


class Library(Dict[str, Callable[..., Any]]):
    """A shared library that is loaded when its first function is asked for. Functions are entries."""

    def __init__(self, name: str, variable: str) -> None:
        super().__init__()
        self._name = name
        self._variable = variable
        self._prototypes: Dict[str, Prototype] = {}
        self._version = ""
        self._lock = threading.Lock()
        self._loaded: Optional[ctypes.CDLL] = None
        self.path = ""  # of the library that is loaded

    def declare(self, version: str, prototypes: Mapping[str, Prototype]) -> None:
        """Tells which functions the library has in the version that the package was made from."""
        self._version = version
        self._prototypes.update(prototypes)

    def load(self) -> ctypes.CDLL:
        with self._lock:
            if self._loaded is None:
                self._loaded = self._find()
            return self._loaded

    def __missing__(self, name: str) -> Callable[..., Any]:
        since, result, arguments = self._prototypes[name]
        loaded = self.load()
        try:
            function = getattr(loaded, name)
        except AttributeError:
            raise LibraryNotFound(f"The library {self.path} has no function {name}, which came with version {since}."
                                  ) from None
        function.restype = result
        function.argtypes = arguments
        self[name] = function
        return function  # type: ignore[no-any-return]

    def _candidates(self) -> List[str]:
        chosen = os.environ.get(self._variable)
        if chosen:
            return [chosen]
        file = f"{self._name}.dll" if _WINDOWS else f"lib{self._name}.so"
        inside = Path(__file__).parent / "lib" / file
        if inside.exists():
            return [str(inside)]
        major, minor = self._version.split(".")[:2]
        abi = f"0.{minor}" if major == "0" else major
        return [file] if _WINDOWS else [f"{file}.{abi}", file]

    def _find(self) -> ctypes.CDLL:
        reasons = []
        for candidate in self._candidates():
            try:
                loaded = ctypes.CDLL(candidate)
            except OSError as error:
                reasons.append(str(error))
                continue
            self.path = candidate
            return loaded
        text = f"The library {self._name} could not be loaded: " + "; ".join(reasons)
        if not _WINDOWS:
            text += (". It needs libEGL.so.1, libOpenGL.so.0, libfreetype.so.6 and libfontconfig.so.1 of the system (Debian:"
                     " libegl1 libopengl0 libfreetype6 libfontconfig1)")
        raise LibraryNotFound(f"{text}. {self._variable} chooses another file.")


library = Library("oct_rendering", "OCT_RENDERING_LIBRARY")
device_library = Library("oct_device", "OCT_DEVICE_LIBRARY")
