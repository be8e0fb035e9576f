"""B-scans."""
import functools
from typing import Any, Optional, Tuple

from . import raw
from ._calls import Handle, checked, explanation, is_forked
from ._contexts import Home, own_context
from ._scene import Size
from .arrays import IMAGE_SHARES, Range, address, as_samples, chosen_range, without_gaps
from .colors import Color, Colormap, colormap, on_background, packed, with_opacity
from .errors import ArgumentError
from .pictures import Picture

_AXES = "A-scan, depth"
_MAX_SIDE = 4096.0
_EVERYWHERE = -3.4028234663852886e38


def natural_size(shape: Tuple[int, int], spacing: Tuple[float, float] = (1, 1)) -> Size:
    """Width and height of a picture with one pixel per sample along the axis of the finer spacing. `shape`: A-scans, depth;
    `spacing`: the distance between samples along depth, and between A-scans."""
    if not all(0 < distance < float("inf") for distance in spacing):
        raise ArgumentError("Distances between samples are above zero.")
    finest = min(spacing)
    height, width = (count * min(distance / finest, _MAX_SIDE) for count, distance in zip(reversed(shape), spacing))
    scale = min(1.0, _MAX_SIDE / max(width, height))
    return tuple(max(1, int(side * scale + 0.5)) for side in (width, height))  # type: ignore[return-value]


def _free_display(home: Home, value: int) -> None:
    home.discard(lambda: raw.uninitDisplayRendering(value), lambda: raw.clearDisplayRendering(value))


class Display:
    """A picture of a B-scan: depth downwards, A-scans to the right. Settings may be made from any thread and show in the next
    frame; frames are drawn on one thread, that of the first one. Close it, or use it in a `with` statement; it is also closed
    when nobody refers to it any more."""

    def __init__(self, image: Any = None, range: Optional[Range] = None, colormap: Colormap = "gray",
                 background: Color = 0) -> None:
        self._home = Home()
        self._display = Handle(checked(raw.createDisplayRendering), functools.partial(_free_display, self._home), "Display")
        self._size: Size = (0, 0)
        if image is not None:
            self.set_image(image, range, colormap, background)

    def __enter__(self) -> "Display":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        if not is_forked() and hasattr(self, "_display"):
            self.close()

    def close(self) -> None:
        """Frees everything; again: nothing."""
        self._display.close()

    def set_image(self, image: Any, range: Optional[Range] = None, colormap: Colormap = "gray", background: Color = 0) -> None:
        """`image`: samples of the shape (A-scans, depth), which the library copies. `range`: the values of the first and the last
        colour; None: the 1st and the 99.5th percentile. `background` shows through where the colour map has alpha."""
        samples = as_samples(image, _AXES)
        chosen = chosen_range(range, samples, IMAGE_SHARES)
        behind = packed(background)
        colors = on_background(_colors(colormap), behind)
        samples = without_gaps(samples, chosen)
        self._display.call(raw.setDisplayData, samples.shape[1], samples.shape[0], address(samples))
        self._display.call(raw.setDisplayColormap, colors.ctypes.data, len(colors))
        self._display.call(raw.setDisplayColoringBoundaries, *chosen)
        self._display.call(raw.setBackgroundColor, behind)
        self._size = natural_size(samples.shape)

    def set_overlay(self, image: Any, range: Optional[Range] = None, colormap: Colormap = "inferno", opacity: float = 0.5,
                    threshold: Optional[float] = None) -> None:
        """An image that is stretched over the first one. `threshold`: it is drawn where the first image is at least this; None:
        everywhere. No image takes the overlay away."""
        if image is None:
            self._display.call(raw.setDisplayNumberOverlays, 0, 0)
            return
        samples = as_samples(image, _AXES)
        chosen = chosen_range(range, samples, IMAGE_SHARES)
        colors = with_opacity(_colors(colormap), opacity)
        samples = without_gaps(samples, chosen)
        self._display.call(raw.setDisplayOverlayData, samples.shape[1], samples.shape[0], address(samples))
        self._display.call(raw.setDisplayOverlayColormap, 0, colors.ctypes.data, len(colors))
        self._display.call(raw.setDisplayOveralyColoringBoundaries, 0, *chosen)
        self._display.call(raw.setDisplayOveralyThreshold, _EVERYWHERE if threshold is None else threshold)
        self._display.call(raw.setDisplayNumberOverlays, 0, 1)

    def set_filters(self, blur: str = "", pepper: bool = False) -> None:
        """`blur`: smooths before ("first") or after ("second") the pepper filter, or both times ("both"). `pepper`: raises samples
        that are darker than their surroundings."""
        if blur not in ("", "first", "second", "both"):
            raise ArgumentError(f"There is no blur {blur!r}: first, second, both.")
        self._display.call(raw.setDisplayBlur, int(blur in ("first", "both")), int(blur in ("second", "both")))
        self._display.call(raw.setDisplayPepperFilter, int(pepper))

    def set_flip(self, flip: bool = True) -> None:
        """Depth upwards."""
        self._display.call(raw.setDisplayFlip, int(flip))

    def draw(self, _id: int = 0) -> None:
        """Draws into the frame of the loop in whose draw function it is called."""
        with self._display as display:
            if self._home.enter("Display"):
                checked(raw.initDisplayRendering, display)
                self._home.settle()
            checked(raw.renderDisplay, display)

    def explain(self) -> str:
        """Why the last frame shows nothing or almost nothing, and what to do about it; "" when it shows something."""
        return explanation(self._display, raw.explainDisplay)

    def render(self, size: Optional[Size] = None) -> Picture:
        """A picture of so many pixels, width and height; None: one pixel per sample, at most 4096 a side."""
        return own_context().picture(*(size or self._size), self.draw)


def _colors(chosen: Colormap) -> Any:
    return colormap(chosen)
