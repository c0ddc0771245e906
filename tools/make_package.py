#!/usr/bin/env python3
"""Makes the ZIP for distribution, with checksums of its files. The same content gives the same bytes.

    make_package.py NAME.zip PLACE=FOLDER...

The files of each FOLDER go into the archive under NAME/PLACE ("." is NAME itself). All files have the same time:
SOURCE_DATE_EPOCH, or the time of the last commit, or the earliest time of a ZIP. Also writes NAME.zip.sha256, and
SHA256SUMS.txt into the archive; `sha256sum --check` reads both.
"""
import hashlib
import os
import subprocess
import sys
import time
import zipfile
from pathlib import Path

FIRST_ZIP_TIME = 315532800  # 1980-01-01


def archive_time() -> int:
    given = os.environ.get("SOURCE_DATE_EPOCH")
    if given is None:
        git = subprocess.run(
            ["git", "-C", str(Path(__file__).parent), "log", "-1", "--format=%ct"], capture_output=True, text=True
        )
        given = git.stdout.strip() or FIRST_ZIP_TIME
    return max(int(given), FIRST_ZIP_TIME)


def collect(places: list[str]) -> dict[str, bytes]:
    files = {}
    for entry in places:
        place, _, folder = entry.partition("=")
        for path in Path(folder).rglob("*"):
            if path.is_file():
                name = (Path(place) / path.relative_to(folder)).as_posix()
                files[name] = path.read_bytes()
    return files


def write_zip(path: Path, files: dict[str, bytes]) -> None:
    when = time.gmtime(archive_time())[:6]
    with zipfile.ZipFile(path, "w") as archive:
        for name in sorted(files):
            info = zipfile.ZipInfo(f"{path.stem}/{name}", when)
            info.create_system = 0  # DOS attributes: no Unix permissions in a ZIP for Windows
            info.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(info, files[name], compresslevel=9)


def main() -> int:
    if len(sys.argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    path = Path(sys.argv[1])
    files = collect(sys.argv[2:])
    sums = [f"{hashlib.sha256(files[name]).hexdigest()} *{name}\n" for name in sorted(files)]
    files["SHA256SUMS.txt"] = "".join(sums).encode()
    write_zip(path, files)
    total = hashlib.sha256(path.read_bytes()).hexdigest()
    path.with_name(path.name + ".sha256").write_text(f"{total} *{path.name}\n", encoding="ascii", newline="\n")
    print(f"{path}: {len(files)} files, {path.stat().st_size} bytes, sha256 {total}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
