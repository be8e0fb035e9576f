"""Live volumes: from a device that measures to the picture."""
import contextlib
import ctypes
import time
from typing import Any, Callable, Dict, Optional, Set, Tuple

from . import raw
from ._calls import Handle, Reporting, Reports, checked, is_forked, use_process
from ._scene import Owner, Scene, Size
from .arrays import COMPOSITE_SHARES, MEAN_SHARES, VOLUME_SHARES, Range, automatic_range
from .colors import Colormap
from .errors import ArgumentError, DeviceError, StateError

_SHARES = {"composite": COMPOSITE_SHARES, "mean": MEAN_SHARES}

open_lives: Set["Live"] = set()


class _LiveRendering(Owner):
    def __init__(self, value: int) -> None:
        self._value = value

    def uninit(self) -> None:
        raw.renderVolume(self._value)  # the source has stopped: frees its OpenGL objects and draws nothing

    def free(self) -> None:
        raw.clearLiveRendering(self._value)


class Live(Reporting, Scene):
    """Draws the volumes of a device while it measures.

    `device`: a SimulatedDevice, or the handles of another device library: device, processing and scan pattern as numbers, with
    `library`, its name or path. `range`: the values of the first and the last colour; None, with a simulated device only:
    percentiles of one volume, measured before. `intensity` gets the reference intensity after every volume but the first, on
    the acquisition thread; its exceptions are raised by the next call.

        with SimulatedDevice() as device, Live(device) as live:
            live.start()
            picture = live.wait_for_volumes(1)

    Frames are drawn by render(), or by draw() within a loop; without them no volumes arrive."""

    def __init__(self, device: Any, colormap: Colormap = None, range: Optional[Range] = None, opacity: float = 0.25,
                 refractive_index: float = 1.0, depth_samples: Optional[int] = None, library: Optional[str] = None,
                 intensity: Optional[Callable[[float], Any]] = None) -> None:
        use_process()
        self._ranges: Dict[str, Range] = {}
        handles: Tuple[int, int, int]
        self._borrowed = contextlib.ExitStack()
        if isinstance(device, tuple):
            if range is None:
                raise ArgumentError("Live needs a range for the values of this device.")
            handles = (device[0], device[1], device[2])
        else:
            handles = self._borrowed.enter_context(device.borrowed())
            library = library or device.library
            if range is None:
                samples = device.measure()
                self._ranges = {mode: automatic_range(samples, _SHARES.get(mode, VOLUME_SHARES))
                                for mode in ("composite", "maximum", "mean", "sections")}
        self._pattern = handles[2]
        self._reports = Reports()
        self._errors = raw.OctErrorFunction(self._reports.guard(self._on_error))
        self._intensities = raw.OctIntensityFunction(self._reports.guard(intensity or (lambda value: None)))
        if library:
            checked(raw.setDeviceLibrary, library.encode())
        source = checked(raw.createOnlineDataSource, handles[0], handles[1])
        self._source = Handle(source, raw.clearDataSource, "Live")
        value = checked(raw.createLiveRendering)
        self._live = Handle(value, lambda _: None, "Live")  # freed with the renderer
        super().__init__(_LiveRendering(value))
        with self._renderer as renderer:
            self._live.call(raw.setLiveVolumeRenderingRenderer, renderer)
        self._source.call(raw.setErrorCallback, self._errors)
        if intensity:
            self._source.call(raw.setRefIntensityCallback, self._intensities)
        self._source.call(raw.setOnlineRefractiveIndex, refractive_index)
        if depth_samples is not None:
            self._source.call(raw.setSizeZ, depth_samples)
        self.set_colors(colormap, range, opacity)
        self._change("elements", self._show)
        open_lives.add(self)

    def start(self) -> None:
        """Starts the acquisition; the first frame makes what it needs."""
        with self._live as live, self._source as source:
            checked(raw.startDataSource, live, source, self._pattern)

    def stop(self) -> None:
        """Ends the acquisition when the volume under way has arrived."""
        self._source.call(raw.stopDataSource)
        self._reports.raise_first()

    @property
    def running(self) -> bool:
        return bool(self._source.call(raw.isDataSourceRunning))

    def statistics(self) -> raw.OctLiveStatistics:
        """What became of the volumes; see help(raw.OctLiveStatistics)."""
        numbers = raw.OctLiveStatistics()
        numbers.size = ctypes.sizeof(numbers)
        self._live.call(raw.getLiveStatistics, ctypes.pointer(numbers))
        return numbers

    def wait_for_volumes(self, count: int = 1, timeout: float = 30.0, size: Size = (640, 480)) -> Any:
        """Draws frames until one shows the volume of that number, counted from the making of this object, and gives it."""
        end = time.monotonic() + timeout
        while True:
            picture = self.render(size)
            if self.statistics().shown >= count:
                return picture
            if not self.running:
                raise StateError("The acquisition is not running.")
            if time.monotonic() > end:
                raise DeviceError(f"No {count} volumes came within {timeout:g} seconds.")
            time.sleep(0.002)

    def close(self) -> None:
        """Stops the acquisition without waiting for the volume under way, and frees everything."""
        if is_forked() or not hasattr(self, "_source"):
            return
        if not self._source.closed:
            with contextlib.suppress(StateError):
                self._source.call(raw.cancelDataSource)
        self._source.close()
        self._source.wait_until_freed()
        self._borrowed.close()
        self._live.close()
        super().close()
        open_lives.discard(self)

    def _show(self) -> None:
        self._renderer.call(raw.setRenderElements, 1, 0)

    def _settled(self) -> None:
        super()._settled()
        self._change("elements", self._show)

    def _draw_frame(self) -> None:
        self._reports.raise_first()
        self._live.call(raw.renderVolume)

    def _automatic_range(self, mode: str) -> Range:
        return self._ranges[mode]

    def _on_error(self, message: bytes) -> None:
        self._reports.add(DeviceError("The acquisition failed: " + message.decode("utf-8", "replace").strip()))
