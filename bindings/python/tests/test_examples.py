"""The examples as a person runs them, and the types that the package promises."""
import json
import re
import struct
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import oct_rendering as oct
from conftest import blob_volume, read_png

HERE = Path(__file__).resolve().parent
EXAMPLES = HERE.parents[2] / "examples/python"
VOLUME = blob_volume()
sys.path.insert(0, str(EXAMPLES))
import formats  # noqa: E402


def write_mat_5(path):
    import scipy.io
    scipy.io.savemat(path, {"scan": VOLUME.T, "note": "a text"})


def write_mat_73(path):
    import h5py
    with h5py.File(path, "w", userblock_size=512) as file:  # MATLAB's own block of text stands before the HDF5 file
        file["scan"] = VOLUME
    with open(path, "r+b") as file:
        file.write(b"MATLAB 7.3 MAT-file".ljust(124) + struct.pack("<HH", 0x0200, 0x4D49))


def write_dicom(path):
    from pydicom.dataset import FileDataset, FileMetaDataset
    meta = FileMetaDataset()
    meta.MediaStorageSOPClassUID = "1.2.840.10008.5.1.4.1.1.77.1.5.4"  # ophthalmic tomography
    meta.MediaStorageSOPInstanceUID = "1.2.3"
    meta.TransferSyntaxUID = "1.2.840.10008.1.2.1"
    data = FileDataset(str(path), {}, file_meta=meta, preamble=b"\0" * 128)
    data.is_little_endian, data.is_implicit_VR = True, False
    data.NumberOfFrames, data.Columns, data.Rows = VOLUME.shape
    data.SamplesPerPixel, data.PhotometricInterpretation = 1, "MONOCHROME2"
    data.BitsAllocated = data.BitsStored = 16
    data.HighBit, data.PixelRepresentation = 15, 0
    data.RescaleSlope, data.RescaleIntercept = "0.01", "-50"
    data.PixelSpacing, data.SpacingBetweenSlices = [0.1, 0.2], "0.3"
    data.PixelData = np.round((VOLUME.transpose(0, 2, 1) + 50) * 100).astype("<u2").tobytes()
    data.save_as(path, write_like_original=False)


@pytest.mark.parametrize("name, write, extent", [
    ("a.npy", lambda path: np.save(path, VOLUME), None), ("a.mat", write_mat_5, None), ("b.mat", write_mat_73, None),
    ("a.dcm", write_dicom, (3.2, 4.8, 6.0))])
def test_volumes_come_from_files_of_others(name, write, extent, tmp_path):
    write(tmp_path / name)
    samples, millimetres = formats.read_volume(tmp_path / name)
    assert samples.shape == VOLUME.shape and np.allclose(samples, VOLUME, atol=0.006)
    assert millimetres == extent or np.allclose(millimetres, extent)
    if extent is None:
        assert np.ascontiguousarray(samples, np.float32).ctypes.data == samples.ctypes.data  # nothing is copied
        assert np.array_equal(oct.render_volume(samples, (60, 40)), oct.render_volume(VOLUME, (60, 40)))


def test_a_part_of_a_raw_file_is_drawn_from_where_it_lies(tmp_path):
    VOLUME.tofile(tmp_path / "a.raw")
    samples, _ = formats.read_raw(tmp_path / "a.raw", VOLUME.shape)
    assert np.array_equal(oct.render_volume(samples[5:15], (60, 40)), oct.render_volume(VOLUME[5:15], (60, 40)))


def test_a_folder_is_drawn_by_two_workers_and_goes_on_where_it_was(tmp_path):
    volumes, pictures = tmp_path / "volumes", tmp_path / "pictures"
    volumes.mkdir()
    for seed in (1, 2):
        np.save(volumes / f"v{seed}.npy", blob_volume(seed=seed))
    write_mat_5(volumes / "m.mat")
    (volumes / "broken.npy").write_bytes(b"no array")
    np.save(volumes / "empty.npy", np.zeros((3, 0, 4), np.float32))
    arguments = [volumes, pictures, "--workers", 2, "--turntable", 3, "--size", 80, 60]

    def run():
        done = subprocess.run([sys.executable, EXAMPLES / "render_many.py", *map(str, arguments)], capture_output=True, text=True,
                              timeout=120)
        return done.returncode, json.loads((pictures / "report.json").read_text()), done.stderr
    code, report, errors = run()
    good = {"v1.npy": "drawn", "v2.npy": "drawn", "m.mat": "drawn"}
    assert code == 1 and {name: report[name] for name in good} == good, (report, errors)
    assert report["broken.npy"].startswith("failed: ") and "is empty" in report["empty.npy"] and "broken.npy: failed" in errors
    with oct.Volume(VOLUME) as volume:
        volume.set_box(scale_marks=False)
        for number in range(3):
            volume.turn(25, -35 + 120 * number)
            assert np.array_equal(read_png(pictures / f"v1.npy/turn-{number:03}.png"), volume.render((80, 60))[:, :, :3])
    assert read_png(pictures / "v2.npy/en_face.png").shape == (20, 24, 3)
    sheet = read_png(pictures / "contact_sheet.png")
    assert sheet.shape == (360, 480, 3) and np.array_equal(sheet[180:, :240], sheet[:180, 240:480]) is False
    written = (pictures / "v1.npy/turn-000.png").stat().st_mtime_ns
    (pictures / "v2.npy/done.json").unlink()  # as if that one had been interrupted
    (volumes / "broken.npy").unlink()
    (volumes / "empty.npy").unlink()
    code, report, errors = run()
    assert (code, report) == (0, {"v1.npy": "kept", "v2.npy": "drawn", "m.mat": "kept"}), errors
    assert (pictures / "v1.npy/turn-000.png").stat().st_mtime_ns == written


def test_types_hold(tmp_path):
    (tmp_path / "client.py").write_text("""
import oct_rendering as oct
from oct_rendering import raw
def draw(loop: oct.Loop, volume: oct.Volume) -> bytes:
    volume.set_look("maximum", slices=90)
    raw.setZoom(None, 4.5)
    return loop.snapshot(4, 5).png()
def wrong(volume: oct.Volume) -> None:
    volume.set_look(slices="many")
    raw.setZoom(None)
    raw.setAngle(None, 4, 5)
    oct.render_bscan(5, colourmap="gray")
""")
    # To read the types of numpy would take most of the time.
    (tmp_path / "mypy.ini").write_text("[mypy]\n[mypy-numpy.*]\nfollow_imports = skip\nfollow_imports_for_stubs = True\n")
    done = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--allow-subclassing-any", "--no-warn-unused-ignores",
                           "--cache-dir", tmp_path / "cache", "--python-version", "3.9", Path(oct.__file__).parent, "client.py"],
                          capture_output=True, text=True, timeout=300, cwd=tmp_path)
    wrong = re.findall(r"^client.py:(\d+): error", done.stdout, re.MULTILINE)
    assert wrong == ["9", "10", "11", "12"] and done.stdout.count("error: ") == 4, done.stdout
