"""Pictures: NumPy arrays that show themselves in notebooks."""
import os
import struct
import zlib
from typing import Any, Optional, Union

import numpy as np


class Picture(np.ndarray):  # type: ignore[type-arg]
    """8-bit red, green, blue and alpha, the top row first: an array of the shape (height, width, 4)."""

    def png(self) -> bytes:
        """The picture as a PNG file; without alpha where it is opaque."""
        if self.ndim != 3 or self.shape[2] != 4 or self.dtype != np.uint8 or self.size == 0:
            raise ValueError("a PNG file needs a picture of the shape (height, width, 4)")
        channels = 3 if bool((self[:, :, 3] == 255).all()) else 4
        height, width = self.shape[:2]
        rows: Any = np.zeros((height, 1 + width * channels), np.uint8)
        rows[:, 1:] = np.asarray(self)[:, :, :channels].reshape(height, -1)
        rows[1:, 1:] -= rows[:-1, 1:].copy()  # each row but the first as its difference to the one above
        rows[1:, 0] = 2
        header = struct.pack(">IIBBBBB", width, height, 8, 2 if channels == 3 else 6, 0, 0, 0)
        return b"".join((b"\x89PNG\r\n\x1a\n", _chunk(b"IHDR", header),
                         _chunk(b"IDAT", zlib.compress(rows.tobytes(), 6)), _chunk(b"IEND", b"")))

    def save(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes a PNG file, under a temporary name first: a file is there whole or not at all."""
        data = self.png()
        temporary = f"{os.fspath(path)}.{os.getpid()}.part"
        try:
            with open(temporary, "wb") as file:
                file.write(data)
            os.replace(temporary, path)
        except BaseException:
            if os.path.exists(temporary):
                os.remove(temporary)
            raise

    def _repr_png_(self) -> Optional[bytes]:
        try:
            return self.png()
        except ValueError:
            return None  # a part of a picture, or numbers made of one


def _chunk(name: bytes, data: bytes) -> bytes:
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def new_picture(width: int, height: int) -> Picture:
    picture: Picture = np.empty((height, width, 4), np.uint8).view(Picture)
    return picture
