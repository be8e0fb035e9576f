"""The wheel as a person gets it."""
import os
import re
import subprocess
import sys
import zipfile
from pathlib import Path

import numpy as np

from conftest import blob_volume, read_png

HERE = Path(__file__).resolve().parent


def test_the_wheel_alone_draws_what_its_readme_shows(tmp_path):
    wheel = Path(os.environ["OCT_TEST_WHEEL"])
    subprocess.run([sys.executable, "-m", "venv", "--system-site-packages", "--without-pip", tmp_path / "venv"], check=True)
    python = tmp_path / "venv/bin/python"
    own = {key: value for key, value in os.environ.items() if not key.startswith(("OCT_", "PYTHONPATH"))}
    site = subprocess.run([python, "-c", "import sysconfig; print(sysconfig.get_path('purelib'))"], capture_output=True, text=True,
                          check=True, env=own).stdout.strip()
    with zipfile.ZipFile(wheel) as packed:
        packed.extractall(site)
    readme = (HERE.parent / "README.md").read_text(encoding="utf-8")
    program = re.search(r"```python\n(.*?)```", readme, re.DOTALL)[1]
    assert len(program.strip().split("\n")) <= 10 and "bscan.npy" in program and "volume.npy" in program
    volume = blob_volume()
    np.save(tmp_path / "bscan.npy", volume[10])
    np.save(tmp_path / "volume.npy", volume)
    done = subprocess.run([python, "-c", program], cwd=tmp_path, env=own, capture_output=True, text=True, timeout=60)
    assert done.returncode == 0, done.stderr
    assert len(np.unique(read_png(tmp_path / "bscan.png"))) > 50
    assert len(np.unique(read_png(tmp_path / "volume.png").reshape(-1, 3), axis=0)) > 500
    done = subprocess.run([python, "-m", "oct_rendering"], cwd=tmp_path, env=own, capture_output=True, text=True, timeout=60)
    assert done.returncode == 0 and f"{site}/oct_rendering/lib" in done.stdout and "OpenGL: " in done.stdout, done.stderr


def test_the_wheel_is_whole_and_made_the_same_again(tmp_path):
    wheel = Path(os.environ["OCT_TEST_WHEEL"])
    with zipfile.ZipFile(wheel) as packed:
        names = packed.namelist()
        record = packed.read(next(name for name in names if name.endswith("RECORD"))).decode()
        libraries = tmp_path / "libraries"
        libraries.mkdir()
        for name in names:
            if "/lib/" in name:
                (libraries / Path(name).name).write_bytes(packed.read(name))
    assert names == sorted(names) and sorted(line.split(",")[0] for line in record.split()) == names
    version, platform = re.match(r"oct_rendering-(.*)-py3-none-(.*)", wheel.stem).groups()
    pattern = "{}.dll" if platform == "win_amd64" else "lib{}.so"
    assert {Path(name).name for name in names if "/lib/" in name} == {pattern.format("oct_rendering"), pattern.format("oct_device")}
    assert "oct_rendering/py.typed" in names and not any("libEGL" in name or "libGL" in name for name in names)
    subprocess.run([sys.executable, HERE.parent / "build_wheel.py", "--source", HERE.parents[2], "--libraries", libraries,
                    "--version", version, "--platform", platform, "--output", tmp_path], check=True, timeout=60)
    assert (tmp_path / wheel.name).read_bytes() == wheel.read_bytes()
