#!/usr/bin/env python3
"""Converts the documents to the HTML pages of the package.

    make_pages.py FOLDER VERSION

docs/package/start.md becomes FOLDER/index.html, in place of README.md; the other pages and all images keep their
relative paths. Links to headers, samples and the license are changed to their paths in the package; a link to a file
that is not in the package becomes plain text. A missing image is an error. Uses cmark-gfm; the same documents give the
same bytes.
"""
import posixpath
import re
import shutil
import subprocess
import sys
from html import escape, unescape
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
STYLE = ROOT / "docs" / "package" / "style.css"
START = "docs/package/start.md"
# Pages that the menu of each page links.
MENU = {
    "Tarnwick": START,
    "camview": "docs/camview.md",
    "camtool": "docs/camtool.md",
    "First panel": "docs/first-panel.md",
    "Keys": "docs/keys.md",
    "Troubleshooting": "docs/troubleshooting.md",
    "Questions": "docs/faq.md",
    "Glossary": "docs/glossary.md",
    "Translating": "docs/translating.md",
    "Reference": "docs/reference/index.md",
    "Samples": "samples/README.md",
    "Architecture": "docs/architecture.md",
    "Changes": "CHANGELOG.md",
}
# Files of the package outside of its pages, relative to the folder of the pages.
ELSEWHERE = {"LICENSE": "../LICENSE.txt"}
HEADER = re.compile(r"kv/.*\.h")


def slug(heading: str) -> str:
    """A heading's anchor: lower case, blanks as dashes, without punctuation."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def documents() -> list[str]:
    pages = [ROOT / "CHANGELOG.md", ROOT / "samples" / "README.md", *sorted((ROOT / "docs").rglob("*.md"))]
    return [page.relative_to(ROOT).as_posix() for page in pages]


def place_of(source: str) -> str:
    """The path of a page or an image of the tree in the folder of the pages."""
    if source in (START, "README.md"):
        return "index.html"
    place = source.removeprefix("docs/").replace("README.md", "index.md")
    return place.removesuffix(".md") + ".html" if place.endswith(".md") else place


def target_of(source: str, pages: list[str]) -> str | None:
    """The target of a link to a file of the tree, relative to the folder of the pages; None if it is not packaged."""
    if source in pages or source == "README.md" or source.endswith(".png"):
        return place_of(source)
    if source in ELSEWHERE:
        return ELSEWHERE[source]
    if HEADER.fullmatch(source):
        return "../sdk/include/" + source
    if source == "samples":
        return place_of("samples/README.md")
    return "../sdk/share/kv/" + source if source.startswith("samples/") else None


class Page:
    def __init__(self, source: str, pages: list[str]) -> None:
        self.source, self.pages, self.place = source, pages, place_of(source)
        self.images: set[str] = set()

    def relative(self, target: str) -> str:
        return posixpath.relpath(target, posixpath.dirname(self.place) or ".")

    def link(self, found: re.Match) -> str:
        url, text = unescape(found.group(1)), found.group(2)
        name, mark, anchor = url.partition("#")
        if re.match(r"\w+:", url) or not name:
            return found.group()
        target = target_of(posixpath.normpath(posixpath.join(posixpath.dirname(self.source), name)), self.pages)
        return f'<a href="{escape(self.relative(target) + mark + anchor)}">{text}</a>' if target else text

    def image(self, found: re.Match) -> str:
        source = posixpath.normpath(posixpath.join(posixpath.dirname(self.source), unescape(found.group(1))))
        if not (ROOT / source).is_file():
            sys.exit(f"{self.source}: there is no image {source}")
        self.images.add(source)
        return f'<img src="{escape(self.relative(place_of(source)))}"'

    def html(self, version: str) -> str:
        body = subprocess.run(
            ["cmark-gfm", "--extension", "table", str(ROOT / self.source)], capture_output=True, check=True
        ).stdout.decode("utf-8")
        body = re.sub(r'<a href="([^"]*)">(.*?)</a>', self.link, body, flags=re.DOTALL)
        body = re.sub(r'<img src="([^"]*)"', self.image, body)
        body = re.sub(r"<h(\d)>(.*?)</h", lambda found: '<h{0} id="{2}">{1}</h'.format(
            *found.groups(), slug(unescape(re.sub(r"<[^>]*>", "", found.group(2))))), body)
        body = re.sub(r"<thead>\s*<tr>\s*(<th[^>]*></th>\s*)+</tr>\s*</thead>\s*", "", body)
        title = unescape(re.sub(r"<[^>]*>", "", re.search(r"<h1[^>]*>(.*?)</h1>", body).group(1)))
        if not title.startswith("Tarnwick"):
            title += " - Tarnwick"
        menu = " ".join(f'<a href="{self.relative(place_of(page))}">{name}</a>' for name, page in MENU.items())
        return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{escape(title)} {version}</title>
<link rel="stylesheet" href="{self.relative('style.css')}">
</head>
<body>
<nav>{menu} <span>{version}</span></nav>
<main>
{body}</main>
</body>
</html>
"""


def main() -> int:
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    folder = Path(sys.argv[1])
    shutil.rmtree(folder, ignore_errors=True)
    pages = documents()
    images: set[str] = set()
    for source in pages:
        page = Page(source, pages)
        path = folder / page.place
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(page.html(sys.argv[2]), encoding="utf-8", newline="\n")
        images |= page.images
    for image in images:
        path = folder / place_of(image)
        path.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(ROOT / image, path)
    shutil.copyfile(STYLE, folder / "style.css")
    return 0


if __name__ == "__main__":
    sys.exit(main())
