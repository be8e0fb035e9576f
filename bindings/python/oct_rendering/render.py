"""Pictures by one call."""
import warnings
from typing import Any, List, Optional, Tuple

from ._scene import Size
from .arrays import Range, as_samples
from .colors import Color, Colormap
from .display import Display, natural_size
from .errors import ArgumentError, EmptyPicture
from .pictures import Picture
from .volume import Extent, Volume


def render_bscan(image: Any, size: Optional[Size] = None, *, spacing: Optional[Tuple[float, float]] = None,
                 range: Optional[Range] = None, colormap: Colormap = "gray", background: Color = 0, blur: str = "",
                 pepper: bool = False, flip: bool = False, overlay: Any = None, overlay_range: Optional[Range] = None,
                 overlay_colormap: Colormap = "inferno", overlay_opacity: float = 0.5,
                 overlay_threshold: Optional[float] = None) -> Picture:
    """A picture of a B-scan of the shape (A-scans, depth): depth downwards, A-scans to the right.

    `size`: width and height in pixels; None: one pixel per sample, at most 4096 a side. `spacing`: the distance between samples
    along depth and between A-scans, for the true aspect. A picture that shows nothing comes with a warning, EmptyPicture, that
    says why. The others are those of Display.set_image, set_filters, set_flip and
    set_overlay."""
    if size is not None and spacing is not None:
        raise ArgumentError("A picture has either a size or a spacing.")
    samples = as_samples(image, "A-scan, depth")
    with Display(samples, range, colormap, background) as display:
        if overlay is not None:
            display.set_overlay(overlay, overlay_range, overlay_colormap, overlay_opacity, overlay_threshold)
        display.set_filters(blur, pepper)
        display.set_flip(flip)
        picture = display.render(size or natural_size(samples.shape, spacing or (1, 1)))
        _warn(display.explain())
        return picture


def render_volume(samples: Any, size: Size = (1024, 768), *, extent: Optional[Extent] = None, mode: str = "composite",
                  angles: Tuple[float, float] = (25, -35), zoom: Optional[float] = None, perspective: bool = True,
                  slices: int = 256, light: Optional[Tuple[float, float, float]] = None, jitter: bool = False,
                  opacity_length: float = 0, colormap: Colormap = None, range: Optional[Range] = None, opacity: float = 0.25,
                  clip: Optional[float] = None, sections: Tuple[Optional[float], ...] = (0.5, 0.5, 0.5), overlay: Any = None,
                  secondary: Any = None, surface: Any = None, edges: bool = True, scale_marks: Optional[bool] = None,
                  background: Tuple[Color, Color] = (0x000066, 0x000019), foreground: Color = 0xFFFFFF) -> Picture:
    """A picture of a volume of the shape (B-scans, A-scans, depth).

    `extent`: millimetres along depth, A-scans and B-scans; without it voxels count as cubes and there are no scale marks. A
    picture that shows nothing comes with a warning, EmptyPicture, that says why. The others are those of the functions of
    Volume; for more of them, make one."""
    with _volume(samples, extent, mode, perspective, zoom, angles, slices, light, jitter, opacity_length, colormap, range, opacity) as volume:
        volume.set_clip(clip)
        volume.set_sections(*sections)
        volume.set_box(edges, extent is not None if scale_marks is None else scale_marks)
        volume.set_background(*background, foreground)
        if overlay is not None:
            volume.set_overlay(overlay)
        if secondary is not None:
            volume.set_secondary(secondary)
        if surface is not None:
            volume.set_surface(surface)
        picture = volume.render(size)
        _warn(volume.explain())
        return picture


def render_turntable(samples: Any, count: int, size: Size = (512, 384), *, extent: Optional[Extent] = None,
                     angle: float = 25, first: float = -35, mode: str = "composite", colormap: Colormap = None,
                     range: Optional[Range] = None, opacity: float = 0.25, slices: int = 256) -> List[Picture]:
    """`count` pictures that turn a volume once about its depth axis, seen from `angle` degrees above."""
    with _volume(samples, extent, mode, True, None, (angle, first), slices, None, False, 0, colormap, range, opacity) as volume:
        volume.set_box(scale_marks=extent is not None)
        pictures = []
        for step in _steps(count):
            volume.turn(angle, first + 360.0 * step / count)
            pictures.append(volume.render(size))
        _warn(volume.explain())
        return pictures


_steps = range


def _warn(explanation: str) -> None:
    if explanation:
        warnings.warn(explanation, EmptyPicture, stacklevel=3)


def _volume(samples: Any, extent: Optional[Extent], mode: str, perspective: bool, zoom: Optional[float],
            angles: Tuple[float, float], slices: int, light: Optional[Tuple[float, float, float]], jitter: bool,
            opacity_length: float, colormap: Colormap, range: Optional[Range], opacity: float) -> Volume:
    volume = Volume(samples, extent, colormap, range, opacity)
    try:
        volume.set_look(mode, slices, light, jitter, opacity_length)
        volume.set_view(angles, zoom, perspective)
    except BaseException:
        volume.close()
        raise
    return volume
