#!/usr/bin/env python3
"""Tests tools/check_languages.py with a small program and its translations."""

import contextlib
import io
import os
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import check_languages  # noqa: E402

PROGRAM = '''
PANEL DIALOGEX 0, 0, 100, 100
EXSTYLE WS_EX_APPWINDOW
CAPTION "Panel"
BEGIN
  PUSHBUTTON "&Start", IDC_START, 0, 0, 50, 14
  PUSHBUTTON "S&top", IDC_STOP, 0, 20, 50, 14
END
PANEL MENUEX
BEGIN
  POPUP "&File", IDM_FILE
  BEGIN
    MENUITEM "&Open", IDM_OPEN
  END
END
STRINGTABLE
BEGIN
  IDS_RANGE "From %d to %d"
END
'''
SCRIPT = '''STRINGTABLE
BEGIN
  // &Start
  KV_TEXT_OF(IDC_START) "&Beginnen"
  // S&top
  KV_TEXT_OF(IDC_STOP) "&Anhalten"
  // &File
  KV_TEXT_OF(IDM_FILE) "&Datei"
  // &Open
  KV_TEXT_OF(IDM_OPEN) "&Anzeigen"
  // From %d to %d
  IDS_RANGE "Von %d bis %d"
END
'''


class Checks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        root = check_languages.ROOT = Path(folder.name)
        check_languages.LANGUAGES = root / "languages"
        for name in ("kv", "panel", "languages/panel"):
            (root / name).mkdir(parents=True)
        (root / "kv" / "resource.h").write_text("")
        self.english, self.german = root / "panel" / "panel.rc", root / "languages" / "panel" / "GE.rc"
        self.english.write_text(PROGRAM)
        self.german.write_text(SCRIPT)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(root)

    def errors(self):
        found = []
        missing = check_languages.check_script(check_languages.Program("panel"), self.german, found)
        return " ".join(found + [f"{name} is missing" for name in missing])

    def replace(self, script, old, new):
        text = script.read_text(encoding="utf-8")
        self.assertIn(old, text)
        script.write_text(text.replace(old, new), encoding="utf-8")

    def sheet(self, code="GE"):
        with contextlib.redirect_stdout(io.StringIO()):
            check_languages.write_sheet(code, [check_languages.Program("panel")])
        return Path(f"{code}.tsv")

    def read(self, sheet):
        with contextlib.redirect_stdout(io.StringIO()):
            check_languages.read_sheet(sheet, [check_languages.Program("panel")])

    def test_faults_are_named(self):
        self.assertEqual("", self.errors())
        for script, old, new, error in (
            (self.english, "From %d to", "Between %d and", "IDS_RANGE is outdated"),
            (self.german, "%d bis %d", "%d  %d", "nothing between two placeholders"),
            (self.german, "bis %d", "bis %s", "has placeholders"),
            (self.german, "&Beginnen", "&Éinschalten", "cannot be typed without Shift"),
            (self.german, "&Anhalten", "An&bhalten", "has the access key of"),
            (self.german, "&Anhalten", "An&dhalten", "has the access key of KV_TEXT_OF(IDM_FILE)"),
            (self.german, '  KV_TEXT_OF(IDC_STOP) "&Anhalten"\n', "", "KV_TEXT_OF(IDC_STOP) is missing"),
            (self.german, "IDC_STOP", "IDC_PAUSE", "KV_TEXT_OF(IDC_PAUSE) is not among the English texts"),
        ):
            self.english.write_text(PROGRAM)
            self.german.write_text(SCRIPT)
            self.replace(script, old, new)
            with self.subTest(new=new):
                self.assertIn(error, self.errors())

    def test_unchanged_sheet_changes_nothing(self):
        self.read(self.sheet())
        self.assertEqual(SCRIPT, self.german.read_text(encoding="utf-8"))

    def test_changed_english_stays_outdated_until_the_translator_acts(self):
        self.replace(self.english, "From %d to", "Between %d and")
        sheet = self.sheet()
        self.read(sheet)
        self.assertIn("outdated", self.errors())
        self.replace(sheet, "Von %d bis", "Zwischen %d und")
        self.read(sheet)
        self.assertEqual("", self.errors())
        self.replace(self.english, "Between", "Amid")
        sheet = self.sheet()
        self.replace(sheet, "changed, was: Between %d and %d", "")
        self.read(sheet)
        self.assertEqual("", self.errors())

    def test_keep_and_a_new_language(self):
        self.replace(self.english, "From %d", "From: %d")
        check_languages.keep(["IDS_RANGE"], [check_languages.Program("panel")])
        self.assertEqual("", self.errors())
        sheet = self.sheet("FR")
        self.replace(sheet, "From: %d to %d\t\t", "From: %d to %d\tDe %d à %d\t")
        self.read(sheet)
        script = check_languages.LANGUAGES / "panel" / "FR.rc"
        self.assertIn('  // From: %d to %d\n  IDS_RANGE "De %d à %d"\n', script.read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main()
