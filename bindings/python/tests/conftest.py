"""Tests of the package as it lies in the wheel. A test that is skipped is a failure: what it needs was to be there."""
import os
import struct
import subprocess
import sys
import zlib

import numpy as np
import pytest


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    report = (yield).get_result()
    if report.skipped:
        report.outcome = "failed"
        report.longrepr = f"{item.nodeid} was skipped: {report.longrepr}"


def run_python(code, *arguments, environment=None, timeout=60):
    """Runs a program of its own: (exit code, standard output, standard error)."""
    done = subprocess.run([sys.executable, "-c", code, *map(str, arguments)], capture_output=True, text=True, timeout=timeout,
                          env={**os.environ, **(environment or {})})
    return done.returncode, done.stdout, done.stderr


def read_png(path):
    """Red, green and blue of an 8-bit PNG file without interlacing."""
    with open(path, "rb") as file:
        data = file.read()
    position, packed = 8, b""
    while position < len(data):
        length, name = struct.unpack(">I4s", data[position:position + 8])
        body = data[position + 8:position + 8 + length]
        if name == b"IHDR":
            width, height, depth, kind = struct.unpack(">IIBB", body[:10])
        elif name == b"IDAT":
            packed += body
        position += length + 12
    assert depth == 8 and kind in (2, 6)
    channels = 3 if kind == 2 else 4
    rows = np.frombuffer(zlib.decompress(packed), np.uint8).reshape(height, 1 + width * channels)
    picture = np.zeros((height, width, channels), np.int32)
    above = np.zeros((width, channels), np.int32)
    for y, row in enumerate(rows):
        line, kind = row[1:].reshape(width, channels).astype(np.int32), row[0]
        if kind == 0:
            above = line
        elif kind == 2:
            above = (line + above) & 255
        else:
            left = corner = np.zeros(channels, np.int32)
            for x in range(width):
                up = above[x].copy()
                if kind == 1:
                    guess = left
                elif kind == 3:
                    guess = (left + up) // 2
                else:
                    by_left, by_up, by_corner = abs(up - corner), abs(left - corner), abs(left + up - 2 * corner)
                    guess = np.where((by_left <= by_up) & (by_left <= by_corner), left, np.where(by_up <= by_corner, up, corner))
                left = line[x] = (line[x] + guess) & 255
                corner = up
            above = line
        picture[y] = above
    return picture[:, :, :3].astype(np.uint8)


def blob_volume(b_scans=20, a_scans=24, depth=32, seed=1):
    """Samples (B-scans, A-scans, depth): a bright shell in noise."""
    z, y, x = np.meshgrid(*(np.linspace(-1, 1, size, dtype=np.float32) for size in (b_scans, a_scans, depth)), indexing="ij")
    noise = np.random.default_rng(seed).normal(0, 3, z.shape)
    return (40 * np.exp(-40 * (np.sqrt(z * z + y * y + x * x) - 0.7) ** 2) + 20 + noise).astype(np.float32)
