#!/usr/bin/env python3
"""Checks or updates the parts of README.md, docs/keys.md and docs/reference that are copied from the tree, and checks
the links of all documents.

    check_reference.py HEADER...     checks that the pages are up to date and document every given header
    check_reference.py --refresh     updates the pages

A page begins with handwritten text: a description, a list "Headers:", and examples, each a literal copy from the file
that it names. The section "Interface" is generated from the headers (tools/header_pages.py).
"""
import re
import sys
from pathlib import Path

from header_pages import header_section
from keys_page import with_tables
from make_pages import slug

ROOT = Path(__file__).resolve().parent.parent
REFERENCE = ROOT / "docs" / "reference"
NAMES = REFERENCE / "names.md"  # generated as a whole
KEYS = ROOT / "docs" / "keys.md"

HEADERS = re.compile(r"^Headers:.*?\n\n", re.MULTILINE | re.DOTALL)
INTERFACE = re.compile(r"^## Interface\n.*?(?=^## |\Z)", re.MULTILINE | re.DOTALL)
EXAMPLE = re.compile(r"From \[`([^`]+)`\]\([^)]*\):\n\n```(?:cpp|rc)\n(.*?)```", re.DOTALL)
FILE = re.compile(r"(?<![\w/.])(?:app|cam\w+|cmake|docs|gallery|kv|samples|tests|tools|resources)/"
                  r"[\w/]*\w\.(?:h|cpp|rc|py|sh|cmake|txt|md)\b")
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s:]+)\)")


def without_examples(text: str) -> str:
    return re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)


def anchors(text: str) -> set[str]:
    return {slug(heading) for heading in re.findall(r"^#+ (.*)", without_examples(text), re.MULTILINE)}


def check_links(page: Path, text: str) -> list[str]:
    faults = []
    for link in LINK.findall(without_examples(text)):
        name, _, anchor = link.partition("#")
        target = page.parent / name if name else page
        if not target.exists():
            faults.append(f"{page.relative_to(ROOT)}: {link} does not exist")
        elif anchor and anchor not in anchors(target.read_text(encoding="utf-8")):
            faults.append(f"{page.relative_to(ROOT)}: {link} has no such heading")
    if page.name == "CHANGELOG.md":  # mentions removed files, too
        return faults
    for name in FILE.findall(without_examples(text)):
        if not (ROOT / name).exists() and not (ROOT / f"{name}.in").exists():
            faults.append(f"{page.relative_to(ROOT)}: {name} does not exist")
    return faults


def headers_of(text: str) -> list[str]:
    return [name for found in HEADERS.findall(text) for name in re.findall(r"`([\w/]+\.h)`", found)]


def example_now(found: re.Match) -> str:
    """The example's current text in its file: the whole file if the example begins like the file, otherwise the
    function with the same first line, and the comment above it."""
    source, example = found.groups()
    text = (ROOT / source).read_text(encoding="utf-8")
    lines = text.splitlines()
    if example.splitlines()[0] == lines[0]:
        return found.group().replace(example, text)
    head = next(line for line in example.splitlines() if not line.startswith("//"))
    if head not in lines:
        sys.exit(f"{source} has no function that begins with {head!r}; update the example's first line")
    first = lines.index(head)
    last = lines.index("}", first)
    while lines[first - 1].startswith("//"):
        first -= 1
    return found.group(0).replace(example, "\n".join(lines[first : last + 1]) + "\n")


def header_text(name: str) -> str:
    """A header's text; for a generated header, its template's."""
    path = ROOT / name
    return (path if path.exists() else path.with_suffix(".h.in")).read_text(encoding="utf-8")


def linked(text: str, page: Path, places: dict[str, Path]) -> str:
    """Links names of headers in prose to their sections."""
    def link(found: re.Match) -> str:
        name = found.group()
        place = places.get(name)
        return f"[{name}]({place.name if place != page else ''}#{slug(name)})" if place else name

    parts = re.split(r"(^```.*?^```|^#.*?$)", text, flags=re.MULTILINE | re.DOTALL)
    parts[::2] = [re.sub(r"(?<![\w/`])(?:\w+/)+\w+\.h\b(?!`)", link, part) for part in parts[::2]]
    return "".join(parts)


def refreshed(page: Path, text: str, places: dict[str, Path]) -> str:
    sections = [header_section(name, header_text(name)) for name in headers_of(text)]
    interface = "## Interface\n\n" + linked("\n\n".join(sections), page, places) + "\n\n"
    text = INTERFACE.sub(lambda _: interface, EXAMPLE.sub(example_now, text))
    return text.rstrip("\n") + "\n"


def name_index(pages: dict[Path, str]) -> str:
    """Every declared name with the place that describes it; one page, so that a browser's search finds them."""
    rows = []
    for page, text in pages.items():
        title = text.split("\n", 1)[0].removeprefix("# ")
        for heading in re.findall(r"^#### (.*)", without_examples(text), re.MULTILINE):
            rows += [(name.split("::")[-1], name, f"[{title}]({page.name}#{slug(heading)})")
                     for name in re.findall(r"`([\w:~]+)`", heading)]
    rows.sort(key=lambda row: (row[0].lower(), row))
    lines = [f"| `{name}` | {place} |" for _, name, place in rows]
    return "# All names\n\nFunctions, structs and constants of the library, with the page that describes each.\n\n" \
        "| Name | Page |\n|---|---|\n" + "\n".join(lines) + "\n"


def main() -> int:
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    files = [ROOT / "README.md", ROOT / "docs" / "first-panel.md", *sorted(REFERENCE.glob("*.md"))]
    pages = {page: page.read_text(encoding="utf-8") for page in files}
    places = {name: page for page, text in pages.items() for name in headers_of(text)}
    current = {page: refreshed(page, text, places) for page, text in pages.items() if page != NAMES}
    pages[KEYS] = KEYS.read_text(encoding="utf-8")
    current[KEYS] = with_tables(pages[KEYS], ROOT)
    current[NAMES] = name_index({page: text for page, text in current.items() if page.parent == REFERENCE})
    if sys.argv[1:] == ["--refresh"]:
        for page, text in current.items():
            page.write_text(text, encoding="utf-8")
        return 0
    index = pages[REFERENCE / "index.md"]
    faults = [f"the index does not name {page.name}" for page in pages
              if page.parent == REFERENCE and page.stem != "index" and f"({page.name})" not in index]
    faults += [f"{page.name} differs from the tree (--refresh)" for page, text in current.items()
               if pages.get(page) != text]
    wanted = {Path(header).resolve().relative_to(ROOT).as_posix() for header in sys.argv[1:]}
    faults += [f"no page names {name} among its headers" for name in sorted(wanted - places.keys())]
    documents = [*ROOT.glob("*.md")]
    for folder in ("docs", "samples", "resources"):
        documents += (ROOT / folder).rglob("*.md")
    for document in documents:
        faults += check_links(document, document.read_text(encoding="utf-8"))
    print("\n".join(faults) or f"{len(pages)} pages are up to date with {len(wanted)} headers, all links work")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
