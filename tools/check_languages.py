#!/usr/bin/env python3
"""Checks the translations of the programs, and exchanges them with translators.

    tools/check_languages.py               checks resources/languages/PROGRAM/CODE.rc against the English of the program
    tools/check_languages.py --complete    a missing text, which the program shows in English, is an error, too
    tools/check_languages.py --sheet CODE  writes CODE.tsv, a table for a spreadsheet: English, translation, where, note
    tools/check_languages.py --read FILE   takes the translations over from such a table
    tools/check_languages.py --keep NAME.. records that the translations of these texts also fit the changed English

Above each translated text its script has the English text from which it was made, as a comment. It may be missing where
the translation equals the English. The check reports

- outdated translations: the English has changed since;
- texts that English does not have or that are defined twice, and placeholders (%s, %d) that do not match or that lost
  the word or sign between them;
- access keys (&) that two controls of a window, a control and the menu bar, or two items of a menu share, and those
  that cannot be typed without Shift;
- two labels of a window with one translation, one English text or term with two, and texts that most languages leave
  in English;
- missing punctuation and direction marks;
- pages of the gallery without a topic in a help file.

English texts are those of a program's string tables, menus and controls; a language script translates the latter two as
KV_TEXT_OF(id). Texts of the library itself are in kv/resource.h.
"""

import argparse
import csv
import re
import sys
import unicodedata
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parent.parent
LANGUAGES = ROOT / "resources" / "languages"
PROGRAMS = ("gallery", "camview")

TEXT = r'"((?:[^"\\]|\\.|"")*)"'
ID = r"(ID\w+(?: \+ \d+)?)"
STRING = re.compile(r"\s*((?:IDS|KV_REASON)_[\w +*]+?|KV_TEXT_OF\([\w +]+\))\s*,?\s*" + TEXT)
MENU_ITEM = re.compile(r"(?:POPUP|MENUITEM)\s+" + TEXT + r"\s*,\s*" + ID)
CONTROL = re.compile(
    r"(?:[LCR]TEXT|\w*PUSHBUTTON|GROUPBOX|AUTO\w+|CHECKBOX|RADIOBUTTON|STATE3|CONTROL)\s+" + TEXT + r"\s*,\s*" + ID
)
VALUE = re.compile(r"%[-+ #0-9.]*(?:l?[duxf]|[sc])")

# The texts of the library itself, which any program can translate: #define KV_REASON_... 1  // "English"
LIBRARY_TEXT = re.compile(r'#define (KV_REASON_\w+) \d+\s+// ' + TEXT)

# Texts of which a control shows one at a time: they may share an access key.
ALTERNATIVES = (
    {"KV_TEXT_OF(IDC_PLAY)", "IDS_PLAY", "IDS_PAUSE", "IDS_FREEZE", "IDS_RESUME"},
    {"KV_TEXT_OF(IDC_RECORD)", "IDS_RECORD", "IDS_STOP_RECORDING"},
)
# Beside a to z and digits, the letters that a keyboard of the language types with one key and without Shift.
KEYS = {
    "AR": "ضصثقفغعهخحجدشسيبلاتنمكطئءؤرىةوزظذ", "BU": "абвгдежзийклмнопрстуфхцчшщъьюя", "ES": "ñç", "FI": "åäö",
    "FR": "àçèéù", "GE": "äöüß", "GR": "αβγδεζηθικλμνξοπρσςτυφχψω", "IT": "àèìòù", "NO": "åæø", "PG": "ç",
    "RU": "абвгдеёжзийклмнопрстуфхцчшщъыьэюя", "SW": "åäö",
}
# Terms that occur in several texts of a window: their translations share a part of four letters, or of this many,
# ignoring case.
TERMS = ("clipboard", "conversation", "globe", "icon", "notes", "waypoint")
PART = {"CH": 1, "JP": 2, "KO": 1, "HI": 3, "AR": 3}

DIRECTION_MARKS = "\u200e\u200f"
# Units that a right-to-left text needs marks around: a placeholder, numbers with a sign between them, a word with one
# before or behind it.
DIRECTED = re.compile(r"(?:%s|%d|\d+)(?:\s*[×,]\s*|  )(?:%s|%d|\d+)|%s|\$\w+|[A-Za-z]+-\d+")
HALF_WIDTH = re.compile(r"[:;?!]|(?<=[\u3040-\u9fff]),|,(?=[\u3040-\u9fff])")


class English(NamedTuple):
    text: str
    place: str  # the window or menu that shows it


class Translation(NamedTuple):
    text: str
    source: str  # the English text from which it was made
    line: int


def normal(name):
    return re.sub(r"\s+", " ", name.strip())


class Program:
    """The English texts of a program, and the windows whose controls are visible with the menu bar."""

    def __init__(self, name):
        self.name, self.texts, self.windows, self.with_menu_bar = name, {}, {}, set()
        strings, self.main_window = dict(LIBRARY_TEXT.findall((ROOT / "kv" / "resource.h").read_text())), ""
        for script in sorted((ROOT / name).rglob("*.rc")):
            self.read(script.read_text(encoding="utf-8").splitlines(), strings)
        for name, text in strings.items():
            # The texts of a page are named like its controls: IDS_PAGE_NAME, IDC_PAGE_NAME.
            page = re.match(r"IDS_([A-Z]+)", name)
            self.texts[name] = English(text, self.windows.get(page and page[1], self.main_window))

    def read(self, lines, strings):
        places, place, is_program_window, caption = [], "", False, ""
        for line in map(str.strip, lines):
            if match := re.match(r"(\w+)\s+(DIALOG|MENU)EX\b|STRINGTABLE", line):
                place = "menu bar" if match[2] == "MENU" else match[1] or ""
                is_program_window, caption = False, ""
            elif line.startswith("EXSTYLE") and "WS_EX_APPWINDOW" in line:
                is_program_window = True
            elif match := re.match(r"CAPTION\s+" + TEXT, line):
                caption = match[1]
            elif line == "BEGIN":
                places.append(place)
                if is_program_window:
                    self.main_window = place
                # A page has no caption; another dialog with a caption has no menu bar.
                if is_program_window or not caption and not place.startswith("menu"):
                    self.with_menu_bar.add(place)
            elif line == "END":
                places.pop()
            elif match := STRING.match(line):
                strings[normal(match[1])] = match[2]
            elif match := MENU_ITEM.match(line) or CONTROL.match(line):
                if line.startswith("POPUP"):
                    place = "menu " + plain(match[1])
                elif page := re.match(r"IDC_([A-Z]+)", match[2]):
                    self.windows.setdefault(page[1], places[-1])
                # The text of a bitmap control is the name of a resource.
                if re.search(r"[A-Za-z]", match[1]) and "KV_SIMPLE_BITMAP" not in line:
                    self.texts[f"KV_TEXT_OF({match[2]})"] = English(match[1], places[-1])

    def scripts(self):
        return sorted((LANGUAGES / self.name).glob("[A-Z][A-Z].rc"))


def translations(script, errors):
    texts, above = {}, ""
    for number, line in enumerate(script.read_text(encoding="utf-8").splitlines(), 1):
        if match := STRING.match(line):
            name = normal(match[1])
            if name in texts:
                errors.append(f"{label(script)}:{number}: {name} is defined twice")
            texts[name] = Translation(match[2], above, number)
        above = line.strip()[2:].strip() if line.strip().startswith("//") else ""
    return texts


def label(script):
    return f"{script.parent.name}/{script.name}"


def outdated(translation, english):
    return translation.text != english.text and translation.source != english.text.strip()


def plain(text):
    """The text without its access key, which follows it in some scripts."""
    return re.sub(r"\s?\(&\w\)|&", "", text).strip()


def values(text):
    return VALUE.findall(text.replace("%%", ""))


def separators(text):
    """For each pair of neighboring placeholders, whether something visible is between them."""
    return [bool(re.search(rf"[^\s{DIRECTION_MARKS}]", between)) for between in VALUE.split(text)[1:-1]]


def check_keys(code, program, texts, errors):
    taken = {}
    in_menu_bar_first = sorted(program.texts.items(), key=lambda item: item[1].place != "menu bar")
    for name, english in in_menu_bar_first:
        key = re.search(r"&(\w)", texts.get(name, english.text))
        if not key:
            continue
        where, key = f"{program.name}/{code}: {name}", key[1].lower()
        others = taken.get((english.place, key), [])
        if english.place in program.with_menu_bar:
            others = others + taken.get(("menu bar", key), [])
        for other in others:
            if not any({name, other} <= group for group in ALTERNATIVES):
                errors.append(f"{where} has the access key of {other}: {key}")
        taken.setdefault((english.place, key), []).append(name)
        if not re.match("[a-z0-9]", key) and key not in KEYS.get(code, ""):
            errors.append(f"{where} has an access key that cannot be typed without Shift: {key}")


def share_a_part(texts, letters):
    first, *others = (unicodedata.normalize("NFD", text.casefold()) for text in texts)
    parts = {first[i : i + letters] for i in range(len(first) - letters + 1)}
    return any(not set(part) & set(" %.,:") and all(part in other for other in others) for part in parts)


def check_terms(code, program, texts, errors):
    """In each window, equal English texts have equal translations, and different ones have different translations."""
    windows = {}
    for name, text in texts.items():
        if english := program.texts.get(name):
            windows.setdefault(english.place, []).append((plain(english.text), plain(text)))
    for window, pairs in windows.items():
        where, said, labels = f"{program.name}/{code}: in {window}", {}, {}
        for english, text in pairs:
            if said.setdefault(english, text) != text:
                errors.append(f"{where} {english} is translated as {said[english]} and {text}")
            if labels.setdefault(text, english) != english:
                errors.append(f"{where} {labels[text]} and {english} are both translated as {text}")
        for term in TERMS:
            said_as = [text for english, text in pairs if re.search(rf"\b{term}", english.casefold())]
            if len(said_as) > 1 and not share_a_part(said_as, PART.get(code, 4)):
                errors.append(f"{where} {term} has several translations: {' | '.join(said_as)}")


def check_marks(code, where, text, errors):
    if code == "AR":
        for match in DIRECTED.finditer(text):
            before, behind = text[: match.start()][-1:], text[match.end() :][:1]
            if not before or not behind or before not in DIRECTION_MARKS or behind not in DIRECTION_MARKS:
                errors.append(f"{where} needs U+200E (or U+200F, where it is Arabic) on both sides of {match[0]}")
    if code == "CH" and HALF_WIDTH.search(text):
        errors.append(f"{where} has punctuation that is not full width: {text}")
    if code == "FR" and re.search(r" [:;?!»]|« ", text):
        errors.append(f"{where} needs U+00A0 beside its punctuation: {text}")


def check_script(program, script, errors):
    """Returns the names of missing texts."""
    code, found = script.stem, translations(script, errors)
    texts = {name: translation.text for name, translation in found.items()}
    check_keys(code, program, texts, errors)
    check_terms(code, program, texts, errors)
    for name, translation in found.items():
        where, english, text = f"{label(script)}:{translation.line}: {name}", program.texts.get(name), translation.text
        if not english:
            errors.append(f"{where} is not among the English texts")
            continue
        check_marks(code, where, text, errors)
        if outdated(translation, english):
            errors.append(f"{where} is outdated: made from “{translation.source}”, the English is “{english.text}”")
        if values(text) != values(english.text):
            errors.append(f"{where} has placeholders {values(text)}, in English {values(english.text)}")
        elif any(there and not here for there, here in zip(separators(english.text), separators(text))):
            errors.append(f"{where} has nothing between two placeholders: {text}")
    return [name for name in program.texts if name not in found]


def check_english(program, errors):
    """Reports texts that most languages leave in English. Texts without words, such as x1, are exempt."""
    scripts = {script.stem: translations(script, []) for script in program.scripts()}
    for name, english in program.texts.items():
        words = re.findall(r"[^\W\d_]{3,}", VALUE.sub("", english.text.replace("&", "").replace("\\n", " ")))
        same = [code for code, texts in scripts.items()
                if name in texts and plain(texts[name].text) == plain(english.text)]
        if words and len(scripts) > 2 and len(same) > len(scripts) / 2:
            errors.append(f"{program.name}: {name} is English in {', '.join(same)}: {english.text}")


def check_help(errors):
    """Every help file has a topic for each page, which F1 opens."""
    pages = re.findall(r'\{"([\w-]+)", L"PAGE_', (ROOT / "gallery" / "pages.cpp").read_text(encoding="utf-8"))
    for project in sorted((ROOT / "resources" / "help").glob("*/help.hhp")):
        listed = project.read_text(encoding="utf-8") + project.with_suffix(".hhc").read_text(encoding="utf-8")
        for topic in (f"{page}.html" for page in pages):
            if not (project.parent / topic).exists() or listed.count(topic) < 2:
                errors.append(f"{project.parent.name} help: {topic} is missing, or not in the project and the contents")


def change(script, program, changes):
    """Writes texts, {name: (text, English source)}, into a script, or into a new one."""
    if not script.exists():
        script.parent.mkdir(exist_ok=True)
        lines = [f"// {program.name} in {script.stem}. What is missing here is shown in English.",
                 "#pragma code_page(65001)", "#include <windows.h>", f'#include "{program.name}/resource_ids.h"', "",
                 "LANGUAGE 0, 0", "", "STRINGTABLE", "BEGIN", "END"]
    else:
        lines = script.read_text(encoding="utf-8").splitlines()
    names = list(program.texts)
    for name, (text, source) in sorted(changes.items(), key=lambda item: names.index(item[0])):
        entry = ([f"  // {source.strip()}"] if text != source else []) + [f'  {name} "{text}"']
        at = {normal(match[1]): index for index, line in enumerate(lines) if (match := STRING.match(line))}
        if name in at:
            first = at[name] - (1 if lines[at[name] - 1].lstrip().startswith("//") else 0)
            lines[first : at[name] + 1] = entry
        else:  # behind the text that precedes it in English
            before = [at[other] for other in names[: names.index(name)] if other in at]
            index = before[-1] + 1 if before else lines.index("BEGIN") + 1
            lines[index:index] = entry
    script.write_text("\n".join(lines) + "\n", encoding="utf-8")


CHANGED = "changed, was: "


def write_sheet(code, programs):
    with open(f"{code}.tsv", "w", encoding="utf-8-sig", newline="") as file:
        rows = csv.writer(file, dialect="excel-tab")
        rows.writerow(("English", code, "where", "note"))
        for program in programs:
            script = LANGUAGES / program.name / f"{code}.rc"
            found = translations(script, []) if script.exists() else {}
            for name, english in program.texts.items():
                translation = found.get(name)
                note = "" if translation else "missing"
                if translation and outdated(translation, english):
                    note = CHANGED + translation.source
                cells = (english.text, translation.text if translation else "")
                rows.writerow([cell.replace('""', '"') for cell in cells]
                              + [f"{program.name}, {english.place}, {name}", note])
    print(f"{code}.tsv")


def read_sheet(path, programs):
    """A row that is marked as changed counts as translated when its translation was changed or its mark deleted."""
    with open(path, encoding="utf-8-sig", newline="") as file:
        (_, code, *_), *rows = csv.reader(file, dialect="excel-tab")
    for program in programs:
        script, changes = LANGUAGES / program.name / f"{code}.rc", {}
        found = translations(script, []) if script.exists() else {}
        for english, text, where, *note in rows:
            owner, *_, name = where.split(", ")
            english, text = (cell.replace('"', '""') for cell in (english, text))
            old = found.get(name)
            left_as_changed = old and old.text == text and note and note[0].startswith(CHANGED)
            as_before = old and old.text == text and (old.source == english.strip() or text == english)
            if owner == program.name and name in program.texts and text and not left_as_changed and not as_before:
                changes[name] = (text, english)
        if changes:
            change(script, program, changes)
        print(f"{label(script)}: {len(changes)} texts changed")


def keep(names, programs):
    for program in programs:
        for script in program.scripts():
            found = translations(script, [])
            change(script, program, {name: (found[name].text, program.texts[name].text)
                                     for name in map(normal, names) if name in found and name in program.texts})


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--complete", action="store_true", help="a missing text is an error")
    parser.add_argument("--sheet", metavar="CODE", help="write the table CODE.tsv for a translator")
    parser.add_argument("--read", metavar="FILE", help="take over the translations of such a table")
    parser.add_argument("--keep", metavar="NAME", nargs="+", help="record that translations fit the changed English")
    options = parser.parse_args()

    programs, errors = [Program(name) for name in PROGRAMS], []
    if options.sheet:
        write_sheet(options.sheet, programs)
        return 0
    if options.read:
        read_sheet(options.read, programs)
    if options.keep:
        keep(options.keep, programs)
    for program in programs:
        check_keys("English", program, {}, errors)
        for script in program.scripts():
            missing = check_script(program, script, errors)
            print(f"{label(script)}: {len(program.texts) - len(missing)} of {len(program.texts)} texts")
            if options.complete:
                errors += [f"{label(script)}: {name} is missing: {program.texts[name].text}" for name in missing]
        check_english(program, errors)
    check_help(errors)
    for error in errors:
        print(error, file=sys.stderr)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
