#!/usr/bin/env python3
"""Checks the rules of this project that no other tool checks: includes between folders, file sizes, and forbidden
words. clang-tidy checks the size of functions (readability-function-size).

Usage: tools/lint_rules.py FILE...   prints one line per finding and ends with 1 if there are any."""
import re
import sys
from pathlib import Path

LONGEST_FILE = 500

# A room, the deepest of these folders that holds a file, may include itself and the rooms listed here. Tests and
# benchmarks may include everything.
CONTROLS = {"kv/controls", "kv/lists", "kv/views3d", "kv/capture", "kv/export"}
LIBRARY = CONTROLS | {"kv/framework", "kv/toolkit", "kv"}
MAY_INCLUDE = {
    "kv/framework": set(),
    **{room: {"kv/framework"} for room in CONTROLS},
    "kv/toolkit": CONTROLS | {"kv/framework", "kv"},
    "kv": LIBRARY,
    "samples": LIBRARY,
    "camera": LIBRARY,
    "app": {"camera", "kv/framework", *CONTROLS},
    "gallery": LIBRARY | {"camera"},
    "camtool": LIBRARY | {"camera"},
    "camview": LIBRARY | {"camera"},
    "tools": LIBRARY | {"camera", "app"},
}

# Marks of unfinished work, invented history, and machines or papers that a reader of this tree does not have. Split, so
# that this file does not match.
WORDS = re.compile("|".join([
    r"\bTO" r"DO\b", r"\bFIX" r"ME\b", r"\bX" r"XX\b", r"\bHA" r"CK\b",
    r"\bolder " r"builds?\b", r"\bfor the day " r"when\b",
    r"^\s*type" r"def\b",  # clang-tidy finds it as well, but takes half a minute for the tree
    r"\bspeci" r"fication\b", r"\bPa" r"rt [0-9]+\.[0-9]", r"/wo" r"rk/", r"/tm" r"p/",
]), re.IGNORECASE)
# Words for which the project has others: American spelling, and the glossary of CONTRIBUTING.md.
OTHER_WORDS = re.compile("|".join([
    "colo" "ur", "cent" "re(?!l)", "behavio" "ur", "neighbo" "ur", "favo" "ur", r"\bgr" r"ey", "lice" "nce", "met" "re",
    "(?:initial|normal|recogn|optim|maxim|minim|synchron|summar|raster|organ|general|special)is"
    r"(?:e|ed|es|er|ing|ation)\b",
    "cance" "ll(?:ed|ing)", "labe" "ll(?:ed|ing)", "signa" "ll(?:ed|ing)", "judge" "ment", "anti-" "aliased",
    r"\bplug b" r"utton", r"-aware h" r"ost\b", "own a" "xes", r"\bodd r" r"ecord", r"\bben" r"eath\b",
    r"\bgl" r"id(?:e|es|ed|ing)\b", "tool " r"tips?\b", "read-" "out", r"\bmak" r"er's\b", "time-" "out",
]), re.IGNORECASE)
# Texts in other languages, and the glossary itself.
FOREIGN = re.compile(r"CONTRIBUTING\.md|resources/(?:languages|help/(?!english))|"
                     r"samples/.*/(?:arabic|german)\.rc|tests/.*(?:german|GR)\.rc")
TEXT = {".cpp", ".h", ".rc", ".py", ".sh", ".md", ".cmake", ".txt", ".yml", ".json", ".csv", ""}


def room_of(path):
    parts = path.split("/")
    return "/".join(parts[:2]) if parts[0] == "kv" and len(parts) > 2 else parts[0]


def findings(path):
    text = Path(path).read_text(encoding="utf-8", errors="replace")
    lines = text.splitlines()
    suffix = Path(path).suffix
    if suffix in {".cpp", ".h", ".py", ".sh", ".cmake"} and len(lines) > LONGEST_FILE:
        yield 1, f"{len(lines)} lines; past {LONGEST_FILE} a file is two things"
    allowed = MAY_INCLUDE.get(room_of(path))
    for number, line in enumerate(lines, 1):
        word = WORDS.search(line) if suffix in TEXT else None
        if word:
            yield number, f"'{word.group()}' does not belong here"
        other = OTHER_WORDS.search(line) if suffix in TEXT and not FOREIGN.match(path) else None
        if other:
            yield number, f"'{other.group()}': the glossary of CONTRIBUTING.md has another word"
        included = re.match(r'\s*#\s*include\s+"([^"]+)"', line)
        if included and suffix in {".cpp", ".h"} and allowed is not None:
            target = room_of(included.group(1))
            known = target in MAY_INCLUDE or target in {"tests", "benchmarks"}
            if known and target != room_of(path) and target not in allowed:
                yield number, f"{room_of(path)} must not include {target}"


def main(paths):
    found = 0
    for path in paths:
        if not Path(path).is_file() or Path(path).suffix not in TEXT:
            continue
        for number, message in findings(path):
            print(f"{path}:{number}: {message}")
            found += 1
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
