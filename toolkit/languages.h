// The language of the whole program, changed while its dialogs are open. Main thread only.
//
// A language library (framework/language.h) gives the texts of a dialog in one of two ways, or in both: by a template
// of the dialog's name, which repeats the ids of its controls, or by strings numbered KV_TEXT_OF(id of the control or
// menu item); resource.h has that name. What it lacks is shown in English.
//
// Arabic mirrors dialogs: their controls of the system's classes, too, but no pictures, no instruments, no lists of
// kvExtList, nothing that draws itself, and no control with the style KV_KEEPS_DIRECTION, which only begins at the
// right. Edit controls begin at the right and are not mirrored, because what is typed may be of any language.
#pragma once

#include <windows.h>

#include <string>

#include "framework/language.h"

namespace kv {

// Takes up a language, or with kStoredLanguage the stored one: `modules.resources` becomes its library, or the
// program's own module. `stem` names the libraries and the place where the choice is stored. RunDialog does this for a
// dialog with languages. Returns the language.
int LoadLanguages(const wchar_t* stem, int language = kStoredLanguage);

// Frees the language library; the program's own resources are in use again.
void UnloadLanguages();

// Shows the program in another language: loads its library, and gives every open dialog of toolkit/scaled_dialog.h and
// its pages their texts, menu, tool tips and direction. `dialog` and `templateName` may be null; a dialog that is not
// the toolkit's gets its texts by them, and nothing else. Returns the language that is shown: 0 when the library is
// missing or no languages have been loaded.
int SwitchLanguage(HWND dialog, const wchar_t* templateName, int language);

int CurrentLanguage();

// The language with that code of framework/language.h or of ISO 639, in any case; -1 when there is none.
int LanguageOfCode(const wchar_t* code);

// The language's code of ISO 639 ("de").
std::wstring IsoCode(int language);

// Whether the language that is shown is written from right to left.
bool IsRightToLeft();

// The system's locale for numbers, dates and times in the language that is shown.
LCID CurrentLocale();

// A message box in the direction of the language; returns what MessageBoxW returns.
int ShowMessage(HWND owner, const std::wstring& text, const std::wstring& caption, UINT flags);

// A string resource in the language that is shown, or in English if it lacks there; empty if it lacks there too.
std::wstring ResourceText(UINT id);

}  // namespace kv
