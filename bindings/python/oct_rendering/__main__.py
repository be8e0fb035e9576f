"""python -m oct_rendering: what pictures are drawn with."""
import ctypes
import sys

from . import __version__, library_path, raw
from ._calls import checked
from ._library import library
from .errors import OctError


def main() -> int:
    print(f"oct_rendering {__version__} for Python {sys.version.split()[0]}")
    try:
        path = library_path()
        print(f"library:  {path}, version {raw.getRendererVersion().decode()}")
    except OctError as error:
        print(f"error: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
