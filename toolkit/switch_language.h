// The language of the whole program, changed while its dialogs are open. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "framework/language.h"

namespace kv {

// Takes up the stored language: `modules.resources` becomes the library of that language, or the program's own module.
// `stem` names the libraries (framework/language.h) and the place where the choice is stored. RunDialog does this for a
// dialog with languages. Returns the language.
int BeginLanguages(const wchar_t* stem);

// Frees the language library; the program's own resources are in use again.
void EndLanguages();

// Shows `dialog` in another language: loads its library, sets the caption and the texts of the controls from the
// template, makes the tool tips anew, and frees the former library. Dialogs of toolkit/scaled_dialog.h that are open
// follow with their own templates. A text that the language lacks is English.
//
// `templateName` may be null for a dialog of toolkit/scaled_dialog.h. Any other dialog gets its texts only. Returns the
// language that is shown: 0 when the library is missing or no languages have begun.
int SwitchLanguage(HWND dialog, const wchar_t* templateName, int language);

int CurrentLanguage();

// A string resource in the language that is shown, or in English if it lacks there; empty if it lacks there too.
std::wstring ResourceText(UINT id);

}  // namespace kv
