#!/usr/bin/env python3
"""Builds the wheel: build_wheel.py --source DIR --libraries DIR --version X.Y.Z --platform TAG --output DIR [--unpack DIR]

The libraries are the installed ones, whose search path is their own folder alone. The same files give the same wheel: entries
are sorted, and their time is SOURCE_DATE_EPOCH. Needs nothing but Python.
"""
import argparse
import base64
import hashlib
import os
import shutil
import tempfile
import time
import zipfile
from pathlib import Path

from generate import generate

HERE = Path(__file__).resolve().parent
FIRST_TIME_OF_ZIP = 315532800  # 1980

METADATA = """\
Metadata-Version: 2.1
Name: oct-rendering
Version: {version}
Summary: Rendering of optical coherence tomography images
Requires-Python: >=3.9
Requires-Dist: numpy >=1.21
Classifier: Programming Language :: Python :: 3
Classifier: Topic :: Scientific/Engineering :: Visualization
Classifier: Typing :: Typed
License-File: LICENSE
Description-Content-Type: text/markdown

"""


def libraries(folder):
    """The shared libraries by the names that they have in the wheel."""
    found = {}
    for name in ("oct_rendering", "oct_device"):
        files = [path for path in sorted(folder.iterdir())
                 if not path.is_symlink() and path.name.startswith((f"lib{name}.so", f"{name}.dll"))]
        if len(files) != 1:
            raise SystemExit(f"build_wheel: {folder} has {len(files)} libraries {name}")
        windows = files[0].suffix == ".dll"
        found[f"oct_rendering/lib/{name}.dll" if windows else f"oct_rendering/lib/lib{name}.so"] = files[0].read_bytes()
    return found


def contents(arguments):
    package = {}
    with tempfile.TemporaryDirectory() as folder:
        generate(arguments.source, arguments.version, Path(folder))
        for path in [*Path(folder).iterdir(), *(HERE / "oct_rendering").iterdir()]:
            if path.suffix in (".py", ".pyi") or path.name == "py.typed":
                package[f"oct_rendering/{path.name}"] = path.read_bytes()
    package.update(libraries(arguments.libraries))
    info = f"oct_rendering-{arguments.version}.dist-info"
    package[f"{info}/METADATA"] = (METADATA.format(version=arguments.version) +
                                   (HERE / "README.md").read_text(encoding="utf-8")).encode()
    package[f"{info}/WHEEL"] = (f"Wheel-Version: 1.0\nGenerator: build_wheel\nRoot-Is-Purelib: false\n"
                                f"Tag: py3-none-{arguments.platform}\n").encode()
    for name in ("LICENSE", "THIRD-PARTY-NOTICES"):
        if (arguments.source / name).exists():
            package[f"{info}/{name}"] = (arguments.source / name).read_bytes()
    record = [f"{name},sha256={digest(data)},{len(data)}" for name, data in sorted(package.items())]
    package[f"{info}/RECORD"] = "\n".join(record + [f"{info}/RECORD,,", ""]).encode()
    return package


def digest(data):
    return base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()


def write(path, package):
    moment = max(int(os.environ.get("SOURCE_DATE_EPOCH", FIRST_TIME_OF_ZIP)), FIRST_TIME_OF_ZIP)
    partial = path.with_suffix(".part")
    with zipfile.ZipFile(partial, "w", zipfile.ZIP_DEFLATED) as wheel:
        for name, data in sorted(package.items()):
            entry = zipfile.ZipInfo(name, time.gmtime(moment)[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 3
            entry.external_attr = (0o100755 if name.endswith((".so", ".dll")) else 0o100644) << 16
            wheel.writestr(entry, data)
    os.replace(partial, path)


def main():
    parser = argparse.ArgumentParser(description="Builds the wheel of oct_rendering.")
    for name in ("source", "libraries", "output"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--platform", required=True, help="tag, as manylinux_2_35_x86_64")
    parser.add_argument("--unpack", type=Path, help="folder that has the contents afterwards, and nothing else")
    arguments = parser.parse_args()
    arguments.output.mkdir(parents=True, exist_ok=True)
    wheel = arguments.output / f"oct_rendering-{arguments.version}-py3-none-{arguments.platform}.whl"
    write(wheel, contents(arguments))
    if arguments.unpack:
        shutil.rmtree(arguments.unpack, ignore_errors=True)
        with zipfile.ZipFile(wheel) as packed:
            packed.extractall(arguments.unpack)


if __name__ == "__main__":
    main()
