// The language of the whole program, which can change while dialogs are open. Main thread only.
//
// A language library (kv/framework/language.h) contains the texts of a dialog in one or both of two forms: a template
// with the dialog's name and the ids of its controls, or strings with the ids KV_TEXT_OF(id of the control or menu
// item) (resource.h). Texts missing from the library are shown in English.
//
// Arabic mirrors dialogs, controls of the system's classes and kvExtList. It does not mirror images, instruments, other
// controls that draw themselves, and controls with the style KV_KEEPS_DIRECTION, whose text is only right-aligned: also
// a trackbar that moves something which is not mirrored. Edit controls are right-aligned and not mirrored, because
// their text may be in any language.
#pragma once

#include <windows.h>

#include <string>

#include "kv/framework/bounded_format.h"
#include "kv/framework/language.h"

namespace kv {

// Loads a language, or the stored one (kStoredLanguage), and returns it: sets `modules.resources` to its library or,
// for English, to the program's module. `stem` is the beginning of the libraries' names, and the name under which the
// choice is stored. RunDialog calls this for a dialog with languages.
int LoadLanguages(const wchar_t* stem, int language = kStoredLanguage);

// Frees the language library and returns to the program's own resources.
void UnloadLanguages();

// Changes the language: loads its library, and updates texts, menu, tooltips and direction of every open dialog of
// kv/toolkit/scaled_dialog.h and its pages. `dialog` and `templateName` may be null; they name a dialog that is not the
// toolkit's, of which only the texts are updated. Returns the current language: 0 when the library is missing or no
// languages have been loaded.
int SwitchLanguage(HWND dialog, const wchar_t* templateName, int language);

int CurrentLanguage();

// The language with that code of kv/framework/language.h or ISO 639, ignoring case; -1 if there is none.
int LanguageOfCode(const wchar_t* code);

// The language's ISO 639 code ("de").
std::wstring IsoCode(int language);

// Whether the current language is written from right to left.
bool IsRightToLeft();

// The system's locale for numbers, dates and times in the current language.
LCID CurrentLocale();

// Shows a message box in the direction of the current language; returns the result of MessageBoxW.
int ShowMessage(HWND owner, const std::wstring& text, const std::wstring& caption, UINT flags);

// Writes UTF-8 to a standard stream (STD_OUTPUT_HANDLE, STD_ERROR_HANDLE). Returns false if there is none, as in a
// windowed program whose output is not redirected.
bool PrintText(DWORD stream, const std::wstring& text);

// A string resource in the current language; if missing, in English; empty if missing there, too.
std::wstring ResourceText(UINT id);

// A string resource with values (numbers, texts) inserted by FormatBounded, truncated to 1,000 characters.
inline const wchar_t* FormatArgument(const std::wstring& text) {
  return text.c_str();
}
template <class Value>
Value FormatArgument(Value value) {
  return value;
}
template <class... Values>
std::wstring TextWith(UINT id, const Values&... values) {
  wchar_t text[1000];
  FormatBounded(text, sizeof(text), ResourceText(id).c_str(), FormatArgument(values)...);
  return text;
}

// Sets the text of a control to such a text.
template <class... Values>
void SetControlText(HWND dialog, int controlId, UINT textId, const Values&... values) {
  SetDlgItemTextW(dialog, controlId,
                  sizeof...(values) ? TextWith(textId, values...).c_str() : ResourceText(textId).c_str());
}

}  // namespace kv
