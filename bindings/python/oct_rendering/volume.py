"""Volumes that are there as arrays."""
from typing import Any, Optional, Tuple

from . import raw
from ._calls import Handle, checked
from ._scene import Owner, Scene
from .arrays import (COMPOSITE_SHARES, MAP_SHARES, MEAN_SHARES, VOLUME_SHARES, Range, address, as_samples, chosen_range,
                     without_gaps)
from .colors import Colormap, colormap, with_opacity_ramp
from .errors import ArgumentError

Extent = Tuple[float, float, float]

_AXES = "B-scan, A-scan, depth"
_SHARES = {"composite": COMPOSITE_SHARES, "mean": MEAN_SHARES}


class _Offline(Owner):
    def __init__(self, value: int) -> None:
        self._value = value

    def free(self) -> None:
        raw.clearOfflineRendering(self._value)


class Volume(Scene):
    """A volume of samples of the shape (B-scans, A-scans, depth). Contiguous 32-bit floats are uploaded from where they lie, by
    the next frame; anything else is copied once. The array is kept, and must not change before that frame."""

    def __init__(self, samples: Any = None, extent: Optional[Extent] = None, colormap: Colormap = None,
                 range: Optional[Range] = None, opacity: float = 0.25) -> None:
        value = checked(raw.createOfflineRendering)
        self._offline = Handle(value, lambda _: None, "Volume")  # freed with the renderer
        super().__init__(_Offline(value))
        self._samples: Any = None
        self._extent: Extent = (1, 1, 1)
        self._overlay: Any = None
        self._map: Any = None
        self._surface: Any = None
        self._show_volume = True
        self.set_colors(colormap, range, opacity)
        if samples is not None:
            self.set_samples(samples, extent)

    def close(self) -> None:
        super().close()
        self._offline.close()
        self._samples = self._overlay = self._map = self._surface = None

    def set_samples(self, samples: Any, extent: Optional[Extent] = None) -> None:
        """`extent`: millimetres along depth, A-scans and B-scans; None: voxels count as cubes."""
        voxels = as_samples(samples, _AXES)
        b_scans, a_scans, depth = voxels.shape
        chosen = (float(depth), float(a_scans), float(b_scans)) if extent is None else extent
        if len(chosen) != 3 or not all(1e-6 <= length <= 1e6 for length in chosen):
            raise ArgumentError("An extent is three lengths, each from 0.000001 to 1000000 millimetres.")
        self._samples, self._extent = voxels, chosen
        self._change("data", self._upload)
        self._change("colors", self._apply_colors)

    def set_overlay(self, samples: Any, range: Optional[Range] = None, colormap: Colormap = "inferno") -> None:
        """A second volume of the same size, laid over; None takes it away."""
        if samples is None:
            self._overlay = None
        else:
            voxels = as_samples(samples, _AXES)
            chosen = chosen_range(range, voxels, COMPOSITE_SHARES, quick=True)
            self._overlay = voxels, chosen, _with_ramp(colormap)
        self._change("overlay", self._upload_overlay)

    def set_secondary(self, values: Any, range: Optional[Range] = None, colormap: Colormap = "viridis") -> None:
        """A quantity of the shape (B-scans, A-scans), of any size, that colours the composite; None takes it away."""
        if values is None:
            self._map = None
        else:
            samples = as_samples(values, "B-scan, A-scan")
            self._map = samples, chosen_range(range, samples, MAP_SHARES), _colors(colormap)
        self._secondary = self._map is not None
        self._change("secondary", self._upload_secondary)
        self._change("mode", self._apply_mode)
        self._change("colors", self._apply_colors)

    def set_surface(self, depths: Any, range: Optional[Range] = None, colormap: Colormap = "viridis",
                    with_volume: bool = True) -> None:
        """A height map of the shape (B-scans, A-scans): depths in samples; what is not finite is a hole. None takes it away."""
        if depths is None:
            self._surface, self._show_volume = None, True
        else:
            heights = as_samples(depths, "B-scan, A-scan")
            self._surface = heights, chosen_range(range, heights, MAP_SHARES), _colors(colormap)
            self._show_volume = with_volume
        self._change("surface", self._send_surface)
        self._change("elements", self._apply_elements)

    def _settled(self) -> None:
        super()._settled()
        self._offline.call(raw.setOfflineRenderingRenderer, self._renderer_value())
        for name, apply, wanted in (("data", self._upload, self._samples), ("overlay", self._upload_overlay, self._overlay),
                                    ("secondary", self._upload_secondary, self._map),
                                    ("surface", self._send_surface, self._surface)):
            if wanted is not None:
                self._change(name, apply)

    def _renderer_value(self) -> int:
        with self._renderer as value:
            return value

    def _upload(self) -> None:
        voxels = without_gaps(self._samples, self._range or self._automatic_range(self._mode))
        b_scans, a_scans, depth = voxels.shape
        self._offline.call(raw.setOfflineAspectRatio, *self._extent)
        self._offline.call(raw.allocateOfflineVolume, depth, a_scans, b_scans)
        self._offline.call(raw.uploadOfflineVolume, address(voxels))
        self._change("elements", self._apply_elements)  # an upload shows the volume

    def _upload_overlay(self) -> None:
        if self._overlay is None:
            self._offline.call(raw.uploadOverlayOfflineVolume, None)
            return
        voxels, chosen, colors = self._overlay
        if self._samples is None or voxels.shape != self._samples.shape:
            raise ArgumentError("The overlay has another size than the volume.")
        self._offline.call(raw.uploadOverlayOfflineVolume, address(without_gaps(voxels, chosen)))
        self._send_colors(raw.setOverlayRendererColormap, colors)
        self._renderer.call(raw.setOverlayRendererColoringBoundaries, *chosen)

    def _upload_secondary(self) -> None:
        if self._map is None:
            self._offline.call(raw.uploadOfflineSecondaryData, 0, 0, 0, 0, 0, None)
            return
        values, chosen, colors = self._map
        b_scans, a_scans = values.shape
        data = without_gaps(values, chosen)
        self._offline.call(raw.uploadOfflineSecondaryData, a_scans, b_scans, 1, 0, b_scans, address(data))
        self._send_colors(raw.setRendererSecondaryColormap, colors)
        self._renderer.call(raw.setRendererSecondaryColoringBoundaries, *chosen)

    def _send_surface(self) -> None:
        if self._surface is None:
            self._renderer.call(raw.setSurface, 0, 0, 1, None)
            return
        heights, chosen, colors = self._surface
        depth = 1 if self._samples is None else self._samples.shape[2]
        self._renderer.call(raw.setSurface, heights.shape[1], heights.shape[0], depth, address(heights))
        self._send_colors(raw.setSurfaceColormap, colors)
        self._renderer.call(raw.setSurfaceDepths, *chosen)

    def _apply_elements(self) -> None:
        self._renderer.call(raw.setRenderElements, int(self._show_volume and self._samples is not None),
                            int(self._surface is not None))

    def _automatic_range(self, mode: str) -> Range:
        if self._samples is None:
            return 0.0, 1.0
        return chosen_range(None, self._samples, _SHARES.get(mode, VOLUME_SHARES), quick=True)

    def _draw_frame(self) -> None:
        self._offline.call(raw.renderOfflineVolume, 2 if self._overlay is not None else 0)


def _colors(chosen: Colormap) -> Any:
    return colormap(chosen)


def _with_ramp(chosen: Colormap) -> Any:
    colors = colormap(chosen)
    return with_opacity_ramp(colors, 1.0) if isinstance(chosen, str) else colors
