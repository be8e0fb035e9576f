#!/usr/bin/env python3
"""Makes the package for NuGet, the same bytes from the same files.

    pack.py VERSION SOURCE_FOLDER ASSEMBLY RID=LIBRARY... OUTPUT.nupkg

The assembly's documentation lies beside it. A native library that is not there is left out, which is said.
"""
import sys
import zipfile
from pathlib import Path

RELATIONS = "http://schemas.openxmlformats.org/package/2006/relationships"
TYPES = "http://schemas.openxmlformats.org/package/2006/content-types"
NUSPEC = "http://schemas.microsoft.com/packaging/2010/07/manifest"
DECLARATION = '<?xml version="1.0" encoding="utf-8"?>\n'
EPOCH = (1980, 1, 1, 0, 0, 0)  # the first day that a zip knows


def contents(version, source, assembly, libraries):
    nuget = source / "bindings/csharp/nuget"
    files = {
        "OctRendering.nuspec": (nuget / "OctRendering.nuspec").read_text().replace("@VERSION@", version).encode(),
        "lib/net45/OctRendering.dll": assembly.read_bytes(),
        "lib/net45/OctRendering.xml": assembly.with_suffix(".xml").read_bytes(),
        "build/net45/OctRendering.targets": (nuget / "OctRendering.targets").read_bytes(),
        "wpf/OctImage.cs": (source / "bindings/csharp/wpf/OctImage.cs").read_bytes(),
        "README.md": (source / "bindings/csharp/README.md").read_bytes(),
    }
    for name in ("LICENSE", "THIRD-PARTY-NOTICES"):
        if (source / name).exists():
            files[name] = (source / name).read_bytes()
    for rid, library in libraries:
        if library.exists():
            # The name that programs ask for, without the version of a shared object.
            name = "oct_rendering.dll" if library.suffix == ".dll" else "liboct_rendering.so"
            files[f"runtimes/{rid}/native/{name}"] = library.read_bytes()
        else:
            print(f"Without {rid}: there is no {library}")
    return files


def add_package_parts(files):
    extensions = sorted({Path(name).suffix[1:] for name in files if Path(name).suffix})
    types = "".join(f'  <Default Extension="{name}" ContentType="application/octet" />\n' for name in extensions)
    types += "".join(f'  <Override PartName="/{name}" ContentType="application/octet" />\n'
                     for name in sorted(files) if not Path(name).suffix)
    relations = "application/vnd.openxmlformats-package.relationships+xml"
    files["[Content_Types].xml"] = (DECLARATION + f'<Types xmlns="{TYPES}">\n  <Default Extension="rels" '
                                    f'ContentType="{relations}" />\n{types}</Types>\n').encode()
    files["_rels/.rels"] = (DECLARATION + f'<Relationships xmlns="{RELATIONS}">\n  <Relationship Type="{NUSPEC}" '
                            'Target="/OctRendering.nuspec" Id="R0" />\n</Relationships>\n').encode()


def main():
    version, source, assembly, *libraries, output = sys.argv[1:]
    pairs = [(rid, Path(library)) for rid, _, library in (text.partition("=") for text in libraries)]
    files = contents(version, Path(source), Path(assembly), pairs)
    add_package_parts(files)
    with zipfile.ZipFile(output, "w") as package:
        for name in sorted(files):
            entry = zipfile.ZipInfo(name, EPOCH)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            package.writestr(entry, files[name])


if __name__ == "__main__":
    main()
