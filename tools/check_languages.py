#!/usr/bin/env python3
"""Compares the gallery's language scripts (resources/languages/*.rc) with its English texts.

    tools/check_languages.py             reports texts that English does not have, duplicate texts, placeholders that do
                                         not match (%s, %d), access keys (&) used by two controls of a page, by a
                                         control and the menu bar, or by two items of a menu, untranslated texts, two
                                         fields of a page with one label, two translations of one English text or
                                         term, and missing punctuation and direction marks; missing texts are only
                                         counted
    tools/check_languages.py --gaps      also lists the missing texts of each language (they are shown in English)
    tools/check_languages.py --complete  a missing text is an error, too

A page without a topic in a help file is an error, too.

English texts are those of the gallery's string tables, and those of menu items and controls with a name; a language
script translates the latter as TEXT_OF(name).
"""

import argparse
import re
import sys
import unicodedata
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TEXT = r'"((?:[^"\\]|\\.|"")*)"'
STRING = re.compile(r"^\s*((?:IDS|KV_REASON)_[\w +*]+?|TEXT_OF\([\w +]+\))\s*,?\s*" + TEXT)
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
                # The text of a bitmap control is the name of a resource.
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
                errors.append(f"{script.name}:{number}: {name} is defined twice")
            texts[name] = match[2]
    return texts


def values(text):
    return VALUE.findall(text.replace("%%", ""))


# The items of the help menu; other items are in the file menu.
HELP_MENU = ("IDM_GALLERY_HELP", "IDM_GALLERY_ABOUT")


def key_places(name):
    """The scope in which the access key of a text must be unique: a page (its controls are IDC_PAGE_NAME, and the texts
    of its controls IDS_PAGE_NAME), the menu bar, which is visible with every page, or a menu."""
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
            errors.append(f"{script}: {name} has the access key of {other}: {key}")
        taken[(place, key)] = name


def plain(text):
    """The text without its access key, which follows it in some scripts."""
    return re.sub(r"\(&\w\)|&", "", text).strip()


# Terms that occur in several texts of a page: their translations share a part of this many letters, ignoring case.
TERMS = ("clipboard", "conversation", "globe", "icon", "notes", "waypoint")
SCRIPTS = {"CH": 1, "JP": 2, "KO": 1, "HI": 3, "AR": 3}


def share_a_part(texts, letters):
    first, *others = (unicodedata.normalize("NFD", text.casefold()) for text in texts)
    parts = {first[i : i + letters] for i in range(len(first) - letters + 1)}
    return any(not set(part) & set(" %.,:") and all(part in other for other in others) for part in parts)


def check_terms(script, texts, english, errors):
    """On each page, equal English texts have equal translations, and different ones have different translations."""
    pages = {}
    for name, text in texts.items():
        if page := key_places(name):
            pages.setdefault(page, []).append((plain(english.get(name, "")), plain(text)))
    for page, pairs in pages.items():
        said, labels = {}, {}
        for original, text in pairs:
            if said.setdefault(original, text) != text:
                errors.append(f"{script}: on the {page} {original} is translated as {said[original]} and {text}")
            if labels.setdefault(text, original) != original:
                errors.append(f"{script}: on the {page} {labels[text]} and {original} are both translated as {text}")
        for term in TERMS:
            said_as = [text for original, text in pairs if re.search(rf"\b{term}", original.casefold())]
            if len(said_as) > 1 and not share_a_part(said_as, SCRIPTS.get(script[:2], 4)):
                errors.append(f"{script}: on the {page} {term} has several translations: {' | '.join(said_as)}")


LEFT_TO_RIGHT = "\u200e"
# Left-to-right units: a placeholder, numbers with a sign between them, a word with one before.
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
    """Reports texts that most languages leave in English. Texts without words, such as x1, are exempt."""
    for name, text in english.items():
        words = re.findall(r"[^\W\d_]{3,}", VALUE.sub("", text.replace("&", "").replace("\\n", " ")))
        same = [code for code, texts in all_texts.items() if plain(texts.get(name, "")) == plain(text)]
        if words and len(same) > len(all_texts) / 2:
            errors.append(f"{name} is English in {', '.join(same)}: {text}")


def check_help(errors):
    """Every help file has a topic for each page, which F1 opens."""
    pages = re.findall(r'\{"([\w-]+)", L"PAGE_', (ROOT / "gallery" / "pages.cpp").read_text(encoding="utf-8"))
    for project in sorted((ROOT / "resources" / "help").glob("*/help.hhp")):
        listed = project.read_text(encoding="utf-8") + project.with_suffix(".hhc").read_text(encoding="utf-8")
        for topic in (f"{page}.html" for page in pages):
            if not (project.parent / topic).exists() or listed.count(topic) < 2:
                errors.append(f"{project.parent.name} help: {topic} is missing, or not in the project and the contents")


def check(script, texts, english, errors):
    # Missing texts are shown in English, with their access key.
    check_keys(script.name, english | texts, errors)
    check_terms(script.name, texts, english, errors)
    check_script(script.name, texts, errors)
    for name, text in texts.items():
        if name not in english:
            errors.append(f"{script.name}: {name} is not among the English texts")
        elif values(text) != values(english[name]):
            errors.append(f"{script.name}: {name} has placeholders {values(text)}, in English {values(english[name])}")
    return [name for name in english if name not in texts]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--gaps", action="store_true", help="list the missing texts of each language")
    parser.add_argument("--complete", action="store_true", help="fail when a text is missing")
    options = parser.parse_args()

    english, errors, all_texts = english_texts(), [], {}
    check_keys("English", english, errors)
    for script in sorted((ROOT / "resources" / "languages").glob("[A-Z][A-Z].rc")):
        all_texts[script.stem] = language_texts(script, errors)
        gaps = check(script, all_texts[script.stem], english, errors)
        print(f"{script.name}: {len(english) - len(gaps)} of {len(english)} texts")
        if options.gaps or options.complete:
            for name in gaps:
                print(f"  missing: {name}: {english[name]}")
        if options.complete and gaps:
            errors.append(f"{script.name}: {len(gaps)} texts are missing")
    check_english(english, all_texts, errors)
    check_help(errors)
    for error in errors:
        print(error, file=sys.stderr)
    return 1 if errors else 0


sys.exit(main())
