"""Colour maps and colours."""
from typing import Any, Tuple, Union

import numpy as np

from ._tables import TABLES
from .errors import ArgumentError

Color = Union[int, str, Tuple[int, int, int]]
Colormap = Any  # the name of one, or an array (colours, 3 or 4)


def colormap_names() -> Tuple[str, ...]:
    return ("gray", *TABLES)


def colormap(chosen: Colormap) -> Any:
    """An array (colours, 4) of bytes: red, green, blue, alpha. `chosen` is a name, or an array (colours, 3 or 4) of bytes,
    or of floats from 0 to 1."""
    if isinstance(chosen, str):
        return _named(chosen)
    given = np.asarray(chosen)
    if given.ndim != 2 or given.shape[1] not in (3, 4) or len(given) < 1:
        raise ArgumentError(f"A colour map has the shape (colours, 3) or (colours, 4), not {given.shape}.")
    if given.dtype.kind == "f":
        if not bool(((given >= 0) & (given <= 1)).all()):
            raise ArgumentError("Colours that are floats lie between 0 and 1.")
        given = np.floor(given * 255 + 0.5)
    elif given.dtype.kind not in "iu" or not bool(((given >= 0) & (given <= 255)).all()):
        raise ArgumentError("Colours are whole numbers from 0 to 255, or floats from 0 to 1.")
    colors = np.full((len(given), 4), 255, np.uint8)
    colors[:, :given.shape[1]] = given
    return colors


def _named(name: str) -> Any:
    colors = np.full((256, 4), 255, np.uint8)
    if name == "gray":
        colors[:, :3] = np.arange(256, dtype=np.uint8)[:, None]
    elif name in TABLES:
        colors[:, :3] = np.frombuffer(bytes.fromhex(TABLES[name]), np.uint8).reshape(-1, 3)
    else:
        raise ArgumentError(f"There is no colour map {name!r}: {', '.join(colormap_names())}.")
    return colors


def with_opacity_ramp(colors: Any, opacity: float) -> Any:
    """Opacity that rises with the square of the value."""
    ramp = np.arange(len(colors)) / max(len(colors) - 1, 1)
    return _with_alpha(colors, 255 * opacity * ramp * ramp)


def with_opacity(colors: Any, factor: float) -> Any:
    return _with_alpha(colors, colors[:, 3] * factor)


def on_background(colors: Any, background: int) -> Any:
    """What shows when the map lies on this colour; the result is opaque."""
    alpha = colors[:, 3:4] / 255.0
    behind = np.array([background >> 16 & 0xFF, background >> 8 & 0xFF, background & 0xFF])
    flat = np.full_like(colors, 255)
    flat[:, :3] = np.floor(colors[:, :3] * alpha + behind * (1 - alpha) + 0.5)
    return flat


def _with_alpha(colors: Any, alpha: Any) -> Any:
    changed = colors.copy()
    changed[:, 3] = np.floor(alpha + 0.5)
    return changed


def packed(color: Color) -> int:
    """0xRRGGBB of a number, of "RRGGBB" or "#RRGGBB", or of three numbers from 0 to 255."""
    try:
        if isinstance(color, str):
            digits = color[1:] if color.startswith("#") else color
            number = int(digits, 16) if len(digits) == 6 else -1
        elif isinstance(color, (tuple, list)):
            red, green, blue = (int(part) for part in color)
            number = red << 16 | green << 8 | blue if all(0 <= part <= 255 for part in (red, green, blue)) else -1
        else:
            number = int(color)
    except ValueError:
        number = -1
    if not 0 <= number <= 0xFFFFFF:
        raise ArgumentError(f"{color!r} is no colour: 0xRRGGBB, 'RRGGBB' or three numbers from 0 to 255.")
    return number
