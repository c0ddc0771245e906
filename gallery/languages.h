// The gallery's language: which one is shown, the menu to choose another one, and help in it. The languages' libraries
// and help files lie beside the program (kvgalleryGE.dll, kvgalleryGE.chm ...). Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

inline constexpr wchar_t kFileStem[] = L"kvgallery";

// Makes modules.resources that of a language, or with kStoredLanguage that of the one chosen last. Before the frame
// exists.
void BeginLanguages(int language);

// Shows the frame and its pages in another language at once; in English when its library is missing or damaged.
void ChooseLanguage(HWND frame, int language);

// The index of the language that is shown.
int CurrentLanguage();

// The language with that code of ours or of ISO 639, in any case; -1 when there is none.
int LanguageOfCode(const wchar_t* code);

// The language's code of ISO 639 ("de").
std::wstring IsoCode(int language);

// Whether the language that is shown is written from right to left.
bool IsRightToLeft();

// The system's locale for numbers, dates and times in the language that is shown.
LCID CurrentLocale();

// The popup menu of languages (commands IDM_LANGUAGE_FIRST + index), made when first asked for. It belongs to the menu
// bar that it is put into.
HMENU LanguageMenu();

// Opens the help file of the language at the topic of the page with that name. Always 1.
BOOL OpenGalleryHelp(HWND frame, const char* page);

// Frees the library and the menu's bitmaps. After the frame is gone.
void EndLanguages();

}  // namespace gallery
