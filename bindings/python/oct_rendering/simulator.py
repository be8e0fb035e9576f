"""The simulated device: volumes of phantoms, or of recordings, as an instrument would deliver them."""
import contextlib
import ctypes
from typing import Any, Callable, Iterator, Optional, Tuple

import numpy as np

from . import _device
from ._calls import Handle, use_process
from ._library import device_library
from .arrays import address, as_samples
from .errors import ArgumentError, DeviceError

_PHANTOMS = {"finger pad": _device.OCT_PHANTOM_FINGER_PAD, "retina": _device.OCT_PHANTOM_RETINA,
             "mirror": _device.OCT_PHANTOM_MIRROR}


def _checked(function: Callable[..., Any], *arguments: Any) -> Any:
    result = function(*arguments)
    text = ctypes.create_string_buffer(512)
    if _device.getError(text, len(text)):
        raise DeviceError("The device failed: " + text.value.decode("utf-8", "replace"))
    return result


class SimulatedDevice:
    """A device for Live, with one processing and one scan pattern.

    `phantom`: "finger pad", "retina" or "mirror". A spectrum of n pixels gives n / 2 depth samples. `extent`: millimetres
    along A-scans and B-scans. `rate`: A-scans per second in real time; None: as fast as they can be computed. `recording`:
    samples (B-scans, A-scans, depth) in decibels that are played back instead; `extent` is then that of depth, A-scans and
    B-scans."""

    def __init__(self, phantom: str = "finger pad", spectrum_length: int = 256, a_scans: int = 64, b_scans: int = 64,
                 extent: Tuple[float, ...] = (3.0, 3.0), seed: int = 1, rate: Optional[float] = None, recording: Any = None) -> None:
        use_process()
        if recording is not None:
            samples = as_samples(recording, "B-scan, A-scan, depth")
            depth_mm, width, length = extent if len(extent) == 3 else (2.0, *extent)
            b_scans, a_scans, depth = samples.shape
            value = _checked(_device.createSimulatedPlayback, address(samples), depth, a_scans, b_scans, 1, depth_mm, width,
                             length, 0, seed)
        else:
            if phantom not in _PHANTOMS:
                raise ArgumentError(f"There is no phantom {phantom!r}: {', '.join(_PHANTOMS)}.")
            width, length = extent[-2:]
            value = _checked(_device.createSimulatedDevice, _PHANTOMS[phantom], spectrum_length, seed)
        self._device = Handle(value, _device.clearSimulatedDevice, "SimulatedDevice")
        self._processing = Handle(_checked(_device.createSimulatedProcessing, value), _device.clearSimulatedProcessing,
                                  "SimulatedDevice")
        pattern = _checked(_device.createSimulatedScanPattern, value, a_scans, b_scans, width, length)
        self._pattern = Handle(pattern, _device.clearSimulatedScanPattern, "SimulatedDevice")
        if rate is not None:
            _checked(_device.setSimulatedScanRate, value, rate, _device.OCT_PACING_REAL_TIME)

    def __enter__(self) -> "SimulatedDevice":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        for handle in (self._pattern, self._processing, self._device):
            handle.close()

    def __del__(self) -> None:
        if hasattr(self, "_pattern"):
            self.close()

    @contextlib.contextmanager
    def borrowed(self) -> Iterator[Tuple[int, int, int]]:
        """Device, processing and scan pattern, as the library takes them; they live until the end of the `with` statement,
        whoever closes this object."""
        with self._device as device, self._processing as processing, self._pattern as pattern:
            yield device, processing, pattern

    @property
    def library(self) -> str:
        """The file of the device library."""
        device_library.load()
        return device_library.path

    def measure(self) -> Any:
        """One volume in decibels, of the shape (B-scans, A-scans, depth). Not while a Live is running."""
        with self.borrowed() as (device, processing, pattern):
            spectra, data = _checked(_device.createRawData), _checked(_device.createData)
            try:
                _checked(_device.startMeasurement, device, pattern, 0)
                try:
                    _checked(_device.getRawDataEx, device, spectra, 0)
                finally:
                    _checked(_device.stopMeasurement, device)
                _checked(_device.setProcessedDataOutput, processing, data)
                _checked(_device.executeProcessing, processing, spectra)
                sizes = [_checked(_device.getDataPropertyInt, data, axis)
                         for axis in (_device.OCT_DATA_SIZE_3, _device.OCT_DATA_SIZE_2, _device.OCT_DATA_SIZE_1)]
                samples = ctypes.cast(_checked(_device.getDataPtr, data), ctypes.POINTER(ctypes.c_float))
                return np.ctypeslib.as_array(samples, sizes).copy()
            finally:
                _device.clearData(data)
                _device.clearRawData(spectra)
