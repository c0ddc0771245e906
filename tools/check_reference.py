#!/usr/bin/env python3
"""Compares docs/reference with the library.

    check_reference.py HEADER...
    check_reference.py --refresh     takes every example anew from its file

Every constant, record and operation of the public headers given stands on a page that names the header; every example
is, word for word, a part of the file it says it is from; every link leads somewhere; the index names every page.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
REFERENCE = ROOT / "docs" / "reference"

CONSTANT = re.compile(r"\b(k[A-Z]\w*)(?:\[\])?\s*=[^=]")
RECORD = re.compile(r"^(?:struct|class) (\w+)[^;\n]*\{", re.MULTILINE)
OPERATION = re.compile(
    r"^(?!#|using|static_assert|inline constexpr|template|extern)[\w:<>*&]+(?: [\w:<>*&]+)*[ *&](\w+)\(", re.MULTILINE
)
EXAMPLE = re.compile(r"From \[`([^`]+)`\]\([^)]*\):\n\n```cpp\n(.*?)```", re.DOTALL)
LINK = re.compile(r"\]\(([^)#:]+)\)")


def names_of(header: Path) -> set[str]:
    code = re.sub(r"//[^\n]*", "", header.read_text(encoding="utf-8"))
    return {name for pattern in (CONSTANT, RECORD, OPERATION) for name in pattern.findall(code)}


def check_header(header: Path, pages: dict[Path, str]) -> list[str]:
    name = header.relative_to(ROOT).as_posix()
    about = [text for text in pages.values() if f"`{name}`" in text]
    if not about:
        return [f"no page names {name}"]
    words = set(re.findall(r"\w+", " ".join(about)))
    return [f"{name}: {missing} stands on no page of this header" for missing in sorted(names_of(header) - words)]


def check_page(page: Path, text: str) -> list[str]:
    where = page.relative_to(ROOT)
    targets = LINK.findall(text)
    faults = [f"{where}: {target} does not exist" for target in targets if not (page.parent / target).exists()]
    for source, example in EXAMPLE.findall(text):
        path = ROOT / source
        if path.exists() and example not in path.read_text(encoding="utf-8"):
            faults.append(f"{where}: the example {example.splitlines()[0]!r} is no longer so in {source} (--refresh)")
    return faults


def refreshed(found: re.Match) -> str:
    """The example as its file has it now: the function of the same head, with the comment above it."""
    source, example = found.groups()
    head = next(line for line in example.splitlines() if not line.startswith("//"))
    lines = (ROOT / source).read_text(encoding="utf-8").splitlines()
    if head not in lines:
        sys.exit(f"{source} has no function that begins with {head!r}; give its page the first line it has now")
    first = lines.index(head)
    last = lines.index("}", first)
    while lines[first - 1].startswith("//"):
        first -= 1
    return found.group(0).replace(example, "\n".join(lines[first : last + 1]) + "\n")


def main() -> int:
    if sys.argv[1:] == ["--refresh"]:
        for page in REFERENCE.glob("*.md"):
            page.write_text(EXAMPLE.sub(refreshed, page.read_text(encoding="utf-8")), encoding="utf-8")
        return 0
    pages = {page: page.read_text(encoding="utf-8") for page in sorted(REFERENCE.glob("*.md"))}
    index = pages[REFERENCE / "index.md"]
    others = [page.name for page in pages if page.stem != "index"]
    faults = [f"the index does not name {name}" for name in others if f"({name})" not in index]
    for page, text in pages.items():
        faults += check_page(page, text)
    for header in sys.argv[1:]:
        faults += check_header(Path(header).resolve(), pages)
    print("\n".join(faults) or f"{len(pages)} pages agree with {len(sys.argv) - 1} headers")
    return 1 if faults or len(sys.argv) < 2 else 0


if __name__ == "__main__":
    sys.exit(main())
