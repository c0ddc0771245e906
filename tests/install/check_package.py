#!/usr/bin/env python3
"""Makes the package, checks its checksums, unpacks it into a difficult path, checks its pages' links, starts each
program.

    check_package.py BUILD_FOLDER VERSION WORK_FOLDER UIDRIVER [EMULATOR]
"""
import hashlib
import re
import shutil
import subprocess
import sys
import zipfile
from html import unescape
from pathlib import Path

build, version, work, uidriver = sys.argv[1], sys.argv[2], Path(sys.argv[3]), sys.argv[4]
emulator = sys.argv[5:]
PATIENCE_S = 60


def make_package() -> Path:
    subprocess.run(["cmake", "--build", build, "--target", "package"], check=True, stdout=subprocess.DEVNULL)
    return Path(build) / f"tarnwick-{version}-win32.zip"


def check_sums(folder: Path) -> None:
    lines = (folder / "SHA256SUMS.txt").read_text(encoding="utf-8").splitlines()
    listed = {name: total for total, name in (line.split(" *", 1) for line in lines)}
    present = {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}
    assert present == listed.keys() | {"SHA256SUMS.txt"}, present ^ listed.keys()
    for name, total in listed.items():
        assert hashlib.sha256((folder / name).read_bytes()).hexdigest() == total, name


def check_pages(folder: Path) -> None:
    """Every link and image refers to a file of the package, and every anchor to an id of its page."""
    pages = {page.resolve(): page.read_text(encoding="utf-8") for page in folder.rglob("*.html")}
    assert len(pages) > 30 and (folder / "docs" / "reference" / "index.html").resolve() in pages, pages.keys()
    readme = Path(__file__).resolve().parents[2] / "README.md"
    assert f"{folder.name}.zip" in readme.read_text(encoding="utf-8"), "README names another version"
    for page, text in pages.items():
        for link in re.findall(r'<[^>]* (?:href|src)="([^":]*)"', text):
            name, _, anchor = link.partition("#")
            target = (page.parent / unescape(name)).resolve() if name else page
            assert target.is_file() and target.is_relative_to(folder.resolve()), (page, link)
            assert not anchor or f'id="{anchor}"' in pages[target], (page, link)


def check_camtool(folder: Path) -> None:
    command = [*emulator, folder / "camtool.exe", "--help"]
    shown = subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE_S)
    assert "simulate" in shown.stdout + shown.stderr, shown


def check_camview(folder: Path) -> None:
    """Its window has tests of its own; here it starts where it was unpacked, and says what it does not understand."""
    for arguments, code in (["--help"], 0), (["--language", "xx"], 2):
        command = [*emulator, folder / "camview.exe", *arguments]
        shown = subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE_S)
        assert shown.returncode == code and "COMn" in shown.stdout + shown.stderr, shown
    assert (folder / "camviewGE.dll").is_file()


def check_gallery(folder: Path) -> None:
    """Shows every page; the gallery prints each page's name and waits for a line."""
    walk = subprocess.run(
        [*emulator, folder / "kvgallery.exe", "--walk"],
        input="\n" * 100,
        capture_output=True,
        text=True,
        timeout=PATIENCE_S,
        check=True,
    )
    pages = walk.stdout.split()
    assert len(pages) >= 14, pages


def check_tarnwick(folder: Path) -> None:
    with subprocess.Popen([*emulator, folder / "tarnwick.exe"], cwd=folder) as tool:
        for verb in ("button", "close"):
            subprocess.run([*emulator, uidriver, verb], check=True, timeout=PATIENCE_S, stdout=subprocess.DEVNULL)
        assert tool.wait(PATIENCE_S) == 0


first = make_package()
content = first.read_bytes()
assert make_package().read_bytes() == content, "two packages of the same build differ"

shutil.rmtree(work, ignore_errors=True)
place = work / "a place with blanks – Ταχύ и снег"
with zipfile.ZipFile(first) as archive:
    archive.extractall(place)
home = place / first.stem
check_sums(home)
check_pages(home)
check_camtool(home)
check_camview(home)
check_gallery(home)
check_tarnwick(home)
