#!/usr/bin/env python3
"""Packs twice and looks into the package as NuGet and MSBuild do.

    package_test.py VERSION PACK_COMMAND...
"""
import hashlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml
import zipfile
from pathlib import Path


def expect(condition, what):
    if not condition:
        sys.exit("expected: " + what)


def local(element):
    return element.tag.rpartition("}")[2]


def main():
    version, *command = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        packages = [Path(folder) / name for name in ("first.nupkg", "second.nupkg")]
        for package in packages:
            subprocess.run([*command, str(package)], check=True)
        expect(len({hashlib.sha256(package.read_bytes()).digest() for package in packages}) == 1, "twice the same bytes")

        with zipfile.ZipFile(packages[0]) as package:
            expect(package.testzip() is None, "sound entries")
            files = {name: package.read(name) for name in package.namelist()}
    parsed = {name: xml.fromstring(data) for name, data in files.items() if re.search(r"xml$|rels$|nuspec$|targets$", name)}
    for name in ("lib/net45/OctRendering.dll", "lib/net45/OctRendering.xml", "wpf/OctImage.cs", "README.md", "LICENSE",
                 "runtimes/linux-x64/native/liboct_rendering.so"):
        expect(len(files[name]) > 500, name)
    expect(files["lib/net45/OctRendering.dll"][:2] == b"MZ", "an assembly")
    expect(files["runtimes/linux-x64/native/liboct_rendering.so"][:4] == b"\x7fELF", "a library")

    with tempfile.NamedTemporaryFile() as library:
        library.write(files["runtimes/linux-x64/native/liboct_rendering.so"])
        library.flush()
        dynamic = subprocess.run(["readelf", "-d", library.name], check=True, capture_output=True, text=True).stdout
    paths = [line.partition("[")[2] for line in dynamic.splitlines() if "PATH" in line]
    expect(all(path.startswith("$ORIGIN]") for path in paths), f"a library that searches its own folder only: {paths}")

    types = parsed["[Content_Types].xml"]
    known = {item.get("Extension") for item in types} | {item.get("PartName") for item in types}
    for name in files:
        expect(name == "[Content_Types].xml" or Path(name).suffix[1:] in known or name.startswith("_rels/")
               or "/" + name in known, "a content type of " + name)
    target = parsed["_rels/.rels"][0].get("Target")
    expect(target[1:] in files, target)
    metadata = {local(item): item.text for item in parsed[target[1:]][0]}
    expect((metadata["id"], metadata["version"]) == ("OctRendering", version), "id and version")
    expect(metadata["readme"] in files and metadata["license"] in files, "readme and licence")

    targets = "build/net45/OctRendering.targets"
    for item in parsed[targets].iter():
        path = (item.text or "") + item.get("Include", "")
        if path.startswith("$(MSBuildThisFileDirectory)"):
            parts = path.partition(")")[2].replace("\\", "/")
            expect(parts.startswith("../../"), path)
            name = parts[6:]
            expect(name in files or name.startswith("runtimes/win-x64/"), path + " is in the package")
    documented = parsed["lib/net45/OctRendering.xml"]
    members = {item.get("name"): "".join(item.itertext()).strip() for item in documented.iter("member")}
    expect(len(members) > 200 and all(members.values()), "a text for every member")


if __name__ == "__main__":
    main()
