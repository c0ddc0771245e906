#!/usr/bin/env python3
"""Compares the gallery's language scripts (resources/languages/*.rc) with its English texts.

    tools/check_languages.py             errors: texts that English does not have, texts given twice, values that do not
                                         match (%s, %d), keys (&) given to two controls of a page, to a control and the
                                         menu bar, or to two items of a menu, texts left in English; gaps are only
                                         counted
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
    r"^\s*(?:[LCR]TEXT|\w*PUSHBUTTON|GROUPBOX|AUTO\w+|CHECKBOX|RADIOBUTTON|STATE3|CONTROL)\s+"
    + TEXT + r"\s*,\s*(IDC_\w+(?: \+ \d+)?)"
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


# What of its menu each item stands in, by the part of its name before the item's own.
HELP_MENU = ("IDM_GALLERY_HELP", "IDM_GALLERY_ABOUT")


def key_places(name):
    """The places in which the key of a text must be the only one of its kind: a page (its controls are IDC_PAGE_NAME,
    and texts that its controls are given IDS_PAGE_NAME), the menu bar, which is there with every page, or a menu."""
    if re.match(r"TEXT_OF\(IDM_\w+_MENU\)", name):
        return "menu bar"
    if match := re.match(r"TEXT_OF\((IDM_\w+)\)", name):
        return "help menu" if match[1] in HELP_MENU else "file menu"
    match = re.match(r"(?:TEXT_OF\(IDC|IDS)_([A-Z]+)", name)
    return "page " + match[1] if match else None


def check_keys(script, texts, errors):
    taken = {}
    for name, text in sorted(texts.items(), key=lambda item: "_MENU)" not in item[0]):
        place, key = key_places(name), re.search(r"&(\w)", text)
        if not place or not key:
            continue
        key = key[1].lower()
        others = [taken.get((place, key))]
        if place.startswith("page"):
            others.append(taken.get(("menu bar", key)))
        for other in filter(None, others):
            errors.append(f"{script}: {name} has the key of {other}: {key}")
        taken[(place, key)] = name


def check_english(english, all_texts, errors):
    """A text that most languages have in the same words as English was not translated; names like x1 are."""
    for name, text in english.items():
        words = re.findall(r"[^\W\d_]{3,}", VALUE.sub("", text.replace("&", "").replace("\\n", " ")))
        plain = text.replace("&", "")
        same = [code for code, texts in all_texts.items() if texts.get(name, "").replace("&", "") == plain]
        if words and len(same) > len(all_texts) / 2:
            errors.append(f"{name} is English in {', '.join(same)}: {text}")


def check(script, texts, english, errors):
    # What a language lacks is shown in English, with its key.
    check_keys(script.name, english | texts, errors)
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

    english, errors, all_texts = english_texts(), [], {}
    check_keys("English", english, errors)
    for script in sorted((ROOT / "resources" / "languages").glob("[A-Z][A-Z].rc")):
        all_texts[script.stem] = language_texts(script, errors)
        gaps = check(script, all_texts[script.stem], english, errors)
        print(f"{script.name}: {len(english) - len(gaps)} of {len(english)} texts")
        if options.gaps or options.complete:
            for name in gaps:
                print(f"  lacks {name}: {english[name]}")
        if options.complete and gaps:
            errors.append(f"{script.name}: {len(gaps)} texts are missing")
    check_english(english, all_texts, errors)
    for error in errors:
        print(error, file=sys.stderr)
    return 1 if errors else 0


sys.exit(main())
