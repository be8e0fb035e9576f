"""Volumes from the files of researchers, as arrays for oct_rendering: axes B-scan, A-scan, depth.

    samples, extent = formats.read_volume("scan.mat")
    oct_rendering.render_volume(samples, extent=extent).save("scan.png")

As a program it draws one: python3 formats.py FILE OUT.png
"""
import sys
from pathlib import Path

import numpy as np


def read_npy(path):
    """A .npy file, of which only what is drawn is read: give a part of it, as samples[100:200], and no more comes from the disk.
    32-bit floats go to the graphics card from the file's own pages."""
    return np.load(path, mmap_mode="r"), None


def read_raw(path, shape, kind="f4"):
    """A file of samples without a header; `shape`: B-scans, A-scans, depth."""
    return np.memmap(path, dtype=kind, mode="r", shape=shape), None


def read_mat(path, name=None):
    """A three-dimensional array (depth, A-scans, B-scans) of a MATLAB file: `name`, or the only one there is. MATLAB's first
    axis is the fastest in memory, so that turning the axes round costs nothing."""
    import scipy.io
    try:
        arrays = {key: value.T for key, value in scipy.io.loadmat(path).items() if getattr(value, "ndim", 0) == 3}
    except NotImplementedError:  # version 7.3 is HDF5, whose axes are the other way round already
        import h5py
        with h5py.File(path, "r") as file:
            arrays = {key: value[()] for key, value in file.items() if getattr(value, "ndim", 0) == 3}
    if name is None and len(arrays) != 1:
        raise ValueError(f"{path} has {len(arrays)} arrays of three axes ({', '.join(arrays)}): name one")
    return arrays[name or next(iter(arrays))], None


def read_dicom(path):
    """A multi-frame DICOM image: frames are B-scans, rows depth, columns A-scans. The extent is known where the file tells the
    spacings."""
    import pydicom
    data = pydicom.dcmread(path)
    frames = data.pixel_array * np.float32(data.get("RescaleSlope", 1)) + np.float32(data.get("RescaleIntercept", 0))
    if frames.ndim != 3:
        raise ValueError(f"{path} has an image of the shape {frames.shape}, not frames of gray values")
    between = data.get("SpacingBetweenSlices") or data.get("SliceThickness")
    samples = frames.transpose(0, 2, 1)
    if between is None or "PixelSpacing" not in data:
        return samples, None
    depth_mm, a_scan_mm = (float(value) for value in data.PixelSpacing)
    return samples, (samples.shape[2] * depth_mm, samples.shape[1] * a_scan_mm, samples.shape[0] * float(between))


READERS = {".npy": read_npy, ".mat": read_mat, ".dcm": read_dicom}


def read_volume(path):
    """Samples, and the extent in millimetres along depth, A-scans and B-scans, or None."""
    samples, extent = READERS[Path(path).suffix.lower()](path)
    if samples.ndim != 3:
        raise ValueError(f"{path} has the shape {samples.shape}; a volume has three axes")
    return samples, extent


if __name__ == "__main__":
    import oct_rendering
    volume, millimetres = read_volume(sys.argv[1])
    oct_rendering.render_volume(volume, extent=millimetres).save(sys.argv[2])
