#!/usr/bin/env python3
"""Compares the gallery's language scripts (resources/languages/*.rc) with its English texts.

    tools/check_languages.py             errors: texts that English does not have, texts given twice, values that do not
                                         match (%s, %d), keys (&) given to two controls of a page; gaps are only counted
    tools/check_languages.py --gaps      also lists what each language lacks (it is shown in English until then)
    tools/check_languages.py --complete  a gap is an error, too

English texts are those of the gallery's string tables, and those of its menu and of its pages' controls that have a
name, which a language script calls TEXT_OF(name).
"""

import argparse
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TEXT = r'"((?:[^"\\]|\\.|"")*)"'
STRING = re.compile(r"^\s*(IDS_[\w +*]+?|TEXT_OF\([\w +]+\))\s*,?\s*" + TEXT)
MENU = re.compile(r"^\s*(?:POPUP|MENUITEM)\s+" + TEXT + r"\s*,\s*(IDM_\w+)")
CONTROL = re.compile(
    r"^\s*(?:[LCR]TEXT|\w*PUSHBUTTON|GROUPBOX|AUTO\w+|CHECKBOX|RADIOBUTTON|STATE3|CONTROL)\s+" + TEXT + r"\s*,\s*(IDC_\w+(?: \+ \d+)?)"
)
VALUE = re.compile(r"%[-+ #0-9.]*(?:l?[duxf]|[sc])")


def english_texts():
    texts = {}
    for script in sorted((ROOT / "gallery").rglob("*.rc")):
        for line in script.read_text(encoding="utf-8").splitlines():
            if match := STRING.match(line):
                texts[normal(match[1])] = match[2]
            elif match := MENU.match(line) or CONTROL.match(line):
                # What stands in a control of the library's own is a name or a value, not a text to read.
                if re.search(r"[A-Za-z]{2}", match[1]) and '"kv' not in line:
                    texts[f"TEXT_OF({match[2]})"] = match[1]
    return texts


def normal(name):
    return re.sub(r"\s+", " ", name.strip())


def language_texts(script, errors):
    texts = {}
    for number, line in enumerate(script.read_text(encoding="utf-8").splitlines(), 1):
        if match := STRING.match(line):
            name = normal(match[1])
            if name in texts:
                errors.append(f"{script.name}:{number}: {name} is there twice")
            texts[name] = match[2]
    return texts


def values(text):
    return VALUE.findall(text.replace("%%", ""))


def check_keys(script, texts, errors):
    """Controls named IDC_PAGE_NAME stand on one page, items named IDM_..._MENU in one menu bar."""
    taken = {}
    for name, text in texts.items():
        place = re.match(r"TEXT_OF\((IDC_[A-Z]+_|IDM_(?=\w+_MENU\)))", name)
        key = re.search(r"&(\w)", text)
        if place and key:
            other = taken.setdefault((place[1], key[1].lower()), name)
            if other != name:
                errors.append(f"{script.name}: {name} has the key of {other}: {key[1]}")


def check(script, english, errors):
    texts = language_texts(script, errors)
    check_keys(script, texts, errors)
    for name, text in texts.items():
        if name not in english:
            errors.append(f"{script.name}: {name} is not among the English texts")
        elif values(text) != values(english[name]):
            errors.append(f"{script.name}: {name} takes {values(text)}, in English {values(english[name])}")
    return [name for name in english if name not in texts]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--gaps", action="store_true", help="list what each language lacks")
    parser.add_argument("--complete", action="store_true", help="fail when a language lacks a text")
    options = parser.parse_args()

    english, errors = english_texts(), []
    for script in sorted((ROOT / "resources" / "languages").glob("[A-Z][A-Z].rc")):
        gaps = check(script, english, errors)
        print(f"{script.name}: {len(english) - len(gaps)} of {len(english)} texts")
        if options.gaps or options.complete:
            for name in gaps:
                print(f"  lacks {name}: {english[name]}")
        if options.complete and gaps:
            errors.append(f"{script.name}: {len(gaps)} texts are missing")
    for error in errors:
        print(error, file=sys.stderr)
    return 1 if errors else 0


sys.exit(main())
