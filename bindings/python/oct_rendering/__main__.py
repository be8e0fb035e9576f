"""python -m oct_rendering: what pictures are drawn with."""
import ctypes
import sys

from . import __version__, library_path, raw
from ._calls import checked
from .errors import OctError


def main() -> int:
    print(f"oct_rendering {__version__} for Python {sys.version.split()[0]}")
    try:
        path = library_path()
        print(f"library: {path}, version {raw.getRendererVersion().decode()}")
        info = raw.OctRendererInfo()
        info.size = ctypes.sizeof(info)
        checked(raw.getRendererInfo, ctypes.pointer(info))
    except OctError as error:
        print(f"error: {error}", file=sys.stderr)
        return 1
    print(f"OpenGL: {_text(info.version)}, {_text(info.renderer)}, {_text(info.vendor)}")
    print(f"largest image {info.max_texture_size} samples a side, largest volume {info.max_3d_texture_size} voxels a side")
    kinds = [name for bit, name in enumerate(("Direct3D surfaces", "host memory")) if info.sharings >> bit & 1]
    print("surfaces of loops: " + (", ".join(kinds) or "none"))
    if info.free_video_memory:
        print(f"free video memory: {info.free_video_memory / 2**20:.0f} MB")
    return 0


def _text(data: bytes) -> str:
    return data.decode("utf-8", "replace")


if __name__ == "__main__":
    sys.exit(main())
