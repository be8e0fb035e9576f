"""Pictures of the package against those of octrender, and arrays on their way in."""
import os
import subprocess

import numpy as np
import pytest

import oct_rendering as oct
from oct_rendering.arrays import address, as_samples
from conftest import blob_volume, read_png

pytestmark = pytest.mark.filterwarnings("error")
VOLUME = blob_volume()
IMAGE = VOLUME[10]
GAPS = VOLUME.copy()
GAPS[3:6, 4:9, 10:14] = np.nan
GAPS[7, 7, 7] = np.inf
MAP = VOLUME.max(axis=2)
HEIGHTS = np.argmax(VOLUME, axis=2).astype(np.float32)

BSCANS = {
    "plain": ((), {}),
    "colours and filters": (("--range", "25", "60", "--colormap", "viridis", "--blur", "both", "--pepper", "--flip", "--size",
                             "70x50"), dict(range=(25, 60), colormap="viridis", blur="both", pepper=True, flip=True, size=(70, 50))),
    "overlay, spacing": (("--overlay", "OVERLAY", "--overlay-threshold", "30", "--overlay-opacity", "0.3", "--spacing", "2", "5"),
                         dict(overlay=VOLUME[4], overlay_threshold=30, overlay_opacity=0.3, spacing=(2, 5))),
    "inverted": (("--range", "60", "25"), dict(range=(60, 25))),
}

SMALL = ("--size", "120x90")
VOLUMES = {
    "composite in millimetres": (("--extent", "2", "3", "4"), dict(extent=(2, 3, 4)), {}),
    "maximum": (("--mode", "maximum", "--angles", "10", "70", "--orthographic"),
                dict(mode="maximum", angles=(10, 70), perspective=False), {}),
    "mean": (("--mode", "mean", "--background", "102030", "FFEEDD", "--foreground", "00FF00", "--no-edges"),
             dict(mode="mean", background=("102030", 0xFFEEDD), foreground=(0, 255, 0), edges=False), {}),
    "sections": (("--mode", "sections", "--sections", "0.2", "off", "0.8"), dict(mode="sections", sections=(0.2, None, 0.8)), {}),
    "light, clip": (("--light", "0.3", "0.7", "0.2", "--jitter", "--slices", "80", "--clip", "0.4", "--opacity-length", "3",
                     "--opacity", "0.6", "--zoom", "30", "--colormap", "magma", "--range", "25", "60"),
                    dict(light=(0.3, 0.7, 0.2), jitter=True, slices=80, clip=0.4, opacity_length=3, opacity=0.6, zoom=30,
                         colormap="magma", range=(25, 60)), {}),
    "overlay": (("--overlay", "OVERLAY"), dict(overlay=VOLUME[::-1]), {"OVERLAY": VOLUME[::-1].transpose(0, 2, 1)}),
    "secondary": (("--secondary", "OVERLAY"), dict(secondary=MAP), {"OVERLAY": MAP}),
    "surface": (("--surface", "OVERLAY"), dict(surface=HEIGHTS), {"OVERLAY": HEIGHTS}),
}


def octrender(folder, verb, samples, options, other=None):
    np.save(folder / "in.npy", np.ascontiguousarray(samples))
    if other is not None:
        np.save(folder / "other.npy", np.ascontiguousarray(other))
    words = [str(folder / "other.npy") if word == "OVERLAY" else word for word in options]
    subprocess.run([os.environ["OCT_TEST_OCTRENDER"], verb, folder / "in.npy", "-o", folder / "out.png", *words], check=True,
                   capture_output=True, timeout=60)
    return read_png(folder / "out.png")


@pytest.mark.parametrize("name", BSCANS)
def test_bscans_are_those_of_octrender(name, tmp_path):
    options, arguments = BSCANS[name]
    expected = octrender(tmp_path, "bscan", IMAGE.T, options, VOLUME[4].T)
    picture = oct.render_bscan(IMAGE, **arguments)
    assert np.array_equal(picture[:, :, :3], expected) and (picture[:, :, 3] == 255).all() and len(np.unique(picture)) > 30


@pytest.mark.parametrize("name", VOLUMES)
def test_volumes_are_those_of_octrender(name, tmp_path):
    options, arguments, other = VOLUMES[name]
    samples = GAPS if name.startswith("composite") else VOLUME
    expected = octrender(tmp_path, "volume", samples.transpose(0, 2, 1), (*SMALL, *options), other.get("OVERLAY"))
    assert np.array_equal(oct.render_volume(samples, (120, 90), **arguments)[:, :, :3], expected)


def test_a_picture_is_a_png_of_itself_wherever_it_shows(tmp_path):
    picture = oct.render_bscan(IMAGE)
    picture.save(tmp_path / "a.png")
    assert np.array_equal(read_png(tmp_path / "a.png"), picture[:, :, :3])
    assert picture._repr_png_() == (tmp_path / "a.png").read_bytes()
    translucent = picture.copy()
    translucent[:, :, 3] = 7
    translucent.save(tmp_path / "a.png")
    assert np.array_equal(read_png(tmp_path / "a.png"), picture[:, :, :3]) and b"\x08\x06" in (tmp_path / "a.png").read_bytes()[:30]
    assert picture[:, :, 0]._repr_png_() is None and os.listdir(tmp_path) == ["a.png"]


def test_contiguous_floats_go_in_from_where_they_lie():
    for array, copied in ((VOLUME, False), (VOLUME[2:9], False), (VOLUME.astype(np.float64), True), (VOLUME[:, ::2], True),
                          (VOLUME.transpose(0, 2, 1), True), (VOLUME.astype(">f4"), True)):
        samples = as_samples(array, "B-scan, A-scan, depth")
        assert (address(samples) != address(array)) == copied and np.array_equal(samples, array)


def test_an_empty_picture_comes_with_its_reason():
    with pytest.warns(oct.EmptyPicture, match="values from .*boundaries 500 to 600. Lower the boundaries"):
        oct.render_bscan(IMAGE, range=(500, 600))
    with pytest.warns(oct.EmptyPicture, match="lower colouring boundary"):
        oct.render_volume(VOLUME, (60, 40), range=(500, 600))


def test_a_pixel_leads_back_to_its_voxel():
    samples = np.zeros((20, 24, 32), np.float32)
    samples[5, 17, 9] = 3
    with oct.Volume(samples, (3.2, 2.4, 2.0), range=(0, 4)) as volume:
        volume.set_look("maximum", slices=400)
        volume.set_box(edges=False, scale_marks=False)
        with pytest.raises(oct.StateError, match="Draw a picture"):
            volume.pick(0, 0)
        picture = volume.render((200, 160)).astype(int)[:, :, 0]
        row, column = np.unravel_index(picture.argmax(), picture.shape)
        pick = volume.pick(int(column), int(row))
        assert pick.kind == "volume" and np.allclose(pick.voxel, (5, 17, 9), atol=0.6) and 2 < pick.value <= 3
        assert np.allclose(pick.millimetres, np.add(pick.voxel, 0.5) * 0.1, atol=1e-3)
        assert volume.pick(0, 0) is None and volume.pick(999, 0) is None


@pytest.mark.parametrize("call, words", [
    (lambda: oct.render_bscan(VOLUME), "shape (20, 24, 32)"),
    (lambda: oct.render_bscan(IMAGE.astype(complex)), "complex64" if IMAGE.dtype == "c8" else "complex128"),
    (lambda: oct.render_bscan(np.zeros((0, 4))), "empty"),
    (lambda: oct.render_bscan(np.full((4, 4), np.nan)), "no finite sample"),
    (lambda: oct.render_bscan(IMAGE, colormap="jet2"), "gray, viridis"),
    (lambda: oct.render_bscan(IMAGE, background="12345"), "no colour"),
    (lambda: oct.render_bscan(IMAGE, size=(0, 5)), "0 x 5"),
    (lambda: oct.render_volume(VOLUME, mode="sum"), "composite, maximum, mean, sections"),
    (lambda: oct.render_volume(VOLUME, sections=(2, 0, 0)), "Slice positions of sectional view are out of range."),
    (lambda: oct.render_volume(VOLUME, overlay=VOLUME[1:]), "another size"),
    (lambda: oct.render_volume(VOLUME, extent=(1, 0, 1)), "extent"),
])
def test_what_cannot_be_drawn_is_told(call, words):
    with pytest.raises(oct.ArgumentError) as raised:
        call()
    assert words in raised.value.text and raised.value.kind == oct.ErrorKind.ARGUMENT and isinstance(raised.value, ValueError)
