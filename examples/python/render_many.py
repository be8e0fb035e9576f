"""Draws every volume of a folder: a turntable, a map from above, and all of them on one contact sheet.

    python3 render_many.py VOLUMES PICTURES                             # on this machine, a process per core
    python3 render_many.py VOLUMES PICTURES --scheduler tcp://host:8786 # on a Dask cluster that sees both folders

Files end in .npy, .mat or .dcm; see formats.py. Each volume gets a folder of its own in PICTURES. What is finished there, of the
same file with the same settings, is not drawn again: a run that was interrupted goes on where it was. A volume that fails is
told, on the standard error stream and in report.json, and the others go on; the exit code is then 1.
"""
import argparse
import json
import os
import sys
from pathlib import Path

import numpy as np

import formats

THUMBNAIL = (240, 180)


def render_one(source, target, settings):
    """On a worker: draws one volume into its folder. Gives what was done, "drawn" or "kept"."""
    import oct_rendering
    source, target = Path(source), Path(target)
    state = source.stat()
    wanted = {"bytes": state.st_size, "modified": state.st_mtime_ns, **settings}
    done = target / "done.json"
    if done.exists() and json.loads(done.read_text()) == wanted:
        return "kept"
    target.mkdir(parents=True, exist_ok=True)
    done.unlink(missing_ok=True)
    samples, extent = formats.read_volume(source)
    if settings["octrender_axes"]:
        samples = samples.transpose(0, 2, 1)
    extent = tuple(settings["extent"]) if settings["extent"] else extent
    pictures = oct_rendering.render_turntable(samples, settings["turntable"], tuple(settings["size"]), extent=extent)
    for number, picture in enumerate(pictures):
        picture.save(target / f"turn-{number:03}.png")
    # From above: the mean over depth, A-scans to the right and B-scans downwards.
    oct_rendering.render_bscan(np.mean(samples, axis=2).T).save(target / "en_face.png")
    thumbnail = oct_rendering.render_volume(samples, THUMBNAIL, extent=extent, scale_marks=False)
    np.save(target / "thumbnail.npy", thumbnail)
    partial = target / "done.part"
    partial.write_text(json.dumps(wanted))
    os.replace(partial, done)
    return "drawn"


def contact_sheet(folders):
    import oct_rendering
    columns = max(1, round(len(folders) ** 0.5 * 1.2))
    rows = -(-len(folders) // columns)
    width, height = THUMBNAIL
    sheet = np.zeros((rows * height, columns * width, 4), np.uint8)
    sheet[:, :, 3] = 255
    for number, folder in enumerate(folders):
        row, column = divmod(number, columns)
        sheet[row * height:(row + 1) * height, column * width:(column + 1) * width] = np.load(folder / "thumbnail.npy")
    return sheet.view(oct_rendering.Picture)


def parse(words):
    parser = argparse.ArgumentParser(description="Draws every volume of a folder.")
    parser.add_argument("volumes", type=Path)
    parser.add_argument("pictures", type=Path)
    parser.add_argument("--scheduler", help="address of a Dask scheduler; without it processes of this machine")
    parser.add_argument("--workers", type=int, default=os.cpu_count(), help="how many, on this machine")
    parser.add_argument("--turntable", type=int, default=24, help="pictures of one turn")
    parser.add_argument("--size", type=int, nargs=2, default=(512, 384), metavar=("WIDTH", "HEIGHT"))
    parser.add_argument("--extent", type=float, nargs=3, metavar=("DEPTH", "ASCANS", "BSCANS"),
                        help="millimetres, where the files do not tell")
    parser.add_argument("--octrender-axes", action="store_true", help="arrays are B-scan, depth, A-scan, as octrender reads them")
    return parser.parse_args(words)


def main(words=None):
    from distributed import Client, LocalCluster, as_completed
    options = parse(words)
    sources = sorted(path for path in options.volumes.iterdir() if path.suffix.lower() in formats.READERS)
    if not sources:
        sys.exit(f"render_many: {options.volumes} has no volumes ({', '.join(formats.READERS)})")
    settings = {"turntable": options.turntable, "size": list(options.size), "extent": options.extent,
                "octrender_axes": options.octrender_axes}
    targets = {source: options.pictures.resolve() / source.name for source in sources}
    # One thread for each worker: a frame keeps several cores busy on its own where there is no graphics card.
    cluster = options.scheduler or LocalCluster(n_workers=min(options.workers, len(sources)), threads_per_worker=1,
                                                dashboard_address=None)
    report = {}
    with Client(cluster) as client:
        client.upload_file(formats.__file__)
        tasks = {client.submit(render_one, str(source.resolve()), str(target), settings, pure=False): source
                 for source, target in targets.items()}
        for task in as_completed(tasks):
            source = tasks[task]
            error = task.exception()
            report[source.name] = f"failed: {type(error).__name__}: {error}" if error else task.result()
            print(f"{len(report)}/{len(sources)} {source.name}: {report[source.name]}", file=sys.stderr if error else sys.stdout,
                  flush=True)
    if not options.scheduler:
        cluster.close()
    finished = [targets[source] for source in sources if not report[source.name].startswith("failed")]
    if finished:
        contact_sheet(finished).save(options.pictures / "contact_sheet.png")
    options.pictures.mkdir(parents=True, exist_ok=True)
    (options.pictures / "report.json").write_text(json.dumps(report, indent=2, sort_keys=True))
    return 1 if len(finished) < len(sources) else 0


if __name__ == "__main__":
    sys.exit(main())
