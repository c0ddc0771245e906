#!/usr/bin/env python3
"""Compares the gallery's language scripts (resources/languages/*.rc) with its English texts.

    tools/check_languages.py             errors: texts that English does not have, texts given twice, values that do not
                                         match (%s, %d), keys (&) given to two controls of a page, to a control and the
                                         menu bar, or to two items of a menu, texts left in English, two fields of a
                                         page with one label, one English text or term in two ways, punctuation and
                                         marks of direction that the script wants; gaps are only counted
    tools/check_languages.py --gaps      also lists what each language lacks (it is shown in English until then)
    tools/check_languages.py --complete  a gap is an error, too

A page without a topic of its own in a help file is an error as well.

English texts are those of the gallery's string tables, and those of its menu and of its pages' controls that have a
name, which a language script calls TEXT_OF(name).
"""

import argparse
import re
import sys
import unicodedata
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
                if re.search(r"[A-Za-z]{2}", match[1]) and 'KV_SIMPLE_BITMAP' not in line:
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


def plain(text):
    """The text without its key, which some scripts have behind it."""
    return re.sub(r"\(&\w\)|&", "", text).strip()


# Terms that a page's texts have in common: their translations share a part of this many letters, whatever the case.
TERMS = ("clipboard", "conversation", "globe", "icon", "notes", "waypoint")
SCRIPTS = {"CH": 1, "JP": 2, "KO": 1, "HI": 3, "AR": 3}


def share_a_part(texts, letters):
    first, *others = (unicodedata.normalize("NFD", text.casefold()) for text in texts)
    parts = {first[i : i + letters] for i in range(len(first) - letters + 1)}
    return any(not set(part) & set(" %.,:") and all(part in other for other in others) for part in parts)


def check_terms(script, texts, english, errors):
    """On one page, what English says once is said in one way, and what it says in two ways is told apart."""
    pages = {}
    for name, text in texts.items():
        if page := key_places(name):
            pages.setdefault(page, []).append((plain(english.get(name, "")), plain(text)))
    for page, pairs in pages.items():
        said, labels = {}, {}
        for original, text in pairs:
            if said.setdefault(original, text) != text:
                errors.append(f"{script}: on the {page} {original} is {said[original]} and {text}")
            if labels.setdefault(text, original) != original:
                errors.append(f"{script}: on the {page} {labels[text]} and {original} are both {text}")
        for term in TERMS:
            said_as = [text for original, text in pairs if re.search(rf"\b{term}", original.casefold())]
            if len(said_as) > 1 and not share_a_part(said_as, SCRIPTS.get(script[:2], 4)):
                errors.append(f"{script}: on the {page} {term} is said in several ways: {' | '.join(said_as)}")


LEFT_TO_RIGHT = "\u200e"
# What is read from left to right as a whole: a value put in, numbers with a sign between them, a word with one before.
DIRECTED = re.compile(r"(?:%s|%d|\d+)(?:\s*[×,]\s*|  )(?:%s|%d|\d+)|%s|\$\w+|[A-Za-z]+-\d+")
FULL_WIDTH = re.compile(r"[:;?!]|(?<=[\u3040-\u9fff]),|,(?=[\u3040-\u9fff])")


def check_script(script, texts, errors):
    for name, text in texts.items():
        if script == "AR.rc":
            for match in DIRECTED.finditer(text):
                if text[match.start() - 1] != LEFT_TO_RIGHT or text[match.end() : match.end() + 1] != LEFT_TO_RIGHT:
                    errors.append(f"{script}: {name} needs U+200E on both sides of {match[0]}")
        if script == "CH.rc" and FULL_WIDTH.search(text):
            errors.append(f"{script}: {name} has punctuation that is not full width: {text}")
        if script == "FR.rc" and re.search(r" [:;?!»]|« ", text):
            errors.append(f"{script}: {name} needs U+00A0 beside its punctuation: {text}")


def check_english(english, all_texts, errors):
    """A text that most languages have in the same words as English was not translated; names like x1 are."""
    for name, text in english.items():
        words = re.findall(r"[^\W\d_]{3,}", VALUE.sub("", text.replace("&", "").replace("\\n", " ")))
        same = [code for code, texts in all_texts.items() if plain(texts.get(name, "")) == plain(text)]
        if words and len(same) > len(all_texts) / 2:
            errors.append(f"{name} is English in {', '.join(same)}: {text}")


def check_help(errors):
    """Each page has a topic of its name in every help file, which F1 opens."""
    pages = re.findall(r'\{"([\w-]+)", L"PAGE_', (ROOT / "gallery" / "pages.cpp").read_text(encoding="utf-8"))
    for project in sorted((ROOT / "resources" / "help").glob("*/help.hhp")):
        listed = project.read_text(encoding="utf-8") + project.with_suffix(".hhc").read_text(encoding="utf-8")
        for topic in (f"{page}.html" for page in pages):
            if not (project.parent / topic).exists() or listed.count(topic) < 2:
                errors.append(f"{project.parent.name} help: {topic} is missing, or not in the project and the contents")


def check(script, texts, english, errors):
    # What a language lacks is shown in English, with its key.
    check_keys(script.name, english | texts, errors)
    check_terms(script.name, texts, english, errors)
    check_script(script.name, texts, errors)
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
    check_help(errors)
    for error in errors:
        print(error, file=sys.stderr)
    return 1 if errors else 0


sys.exit(main())
