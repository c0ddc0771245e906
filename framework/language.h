// The languages of a user interface: the program's own module holds the English resources, and each other language has
// a resource library beside the program, named stem + code + ".dll" (so "plotGE.dll" is the German one of "plot").
//
// A language index is 0 to 23; 0 is English. Indexes 19 to 22 are reserved places without a code, and 23 shares its
// code, and so its files, with 3. Main thread only.
//
// In a DPI-aware host: the menu's bitmaps stay those of the resources; which size they should have there,
// GetSystemMetrics(SM_CXMENUCHECK) says.
#pragma once

#include <windows.h>

#include <array>

#include "framework/file_path.h"

namespace kv {

inline constexpr int kLanguageCount = 24;
inline constexpr int kStoredLanguage = -1;  // stands for the choice that is stored in the registry

struct Language {
  const wchar_t* code;
  const wchar_t* menuName;
};

inline constexpr std::array<Language, kLanguageCount> kLanguages = {{
    {L"EN", L"English"},
    {L"GE", L"Deutsch"},
    {L"FR", L"Français"},
    {L"ES", L"Español"},
    {L"IT", L"Italiano"},
    {L"NL", L"Nederlands"},
    {L"PG", L"Portugués"},
    {L"PL", L"Polski"},
    {L"RU", L"Русский"},
    {L"GR", L"Ελληνική"},
    {L"BU", L"български"},
    {L"HI", L"हिन्दी"},
    {L"JP", L"日本語"},
    {L"CH", L"中国"},
    {L"KO", L"한국어"},
    {L"AR", L"العربية"},
    {L"SW", L"Svenska"},
    {L"NO", L"Norsk"},
    {L"FI", L"Suomi"},
    {L"", L""},
    {L"", L""},
    {L"", L""},
    {L"", L""},
    {L"ES", L"México"},
}};

// What a search for a language's file found.
inline constexpr int kLanguageFileNone = 0;
inline constexpr int kLanguageFileOwn = 1;    // the file of the language that was asked for
inline constexpr int kLanguageFileOther = 2;  // the first file of any language

// Finds the file stem + code + extension beside the program (".dll" for an extension that is not readable). English is
// taken without a look whether its file is there. When the language has no file, the first one of any language is
// taken, unless `mustExist`. The path goes to `path`, a buffer of kPathCharacters, which may be absent and is written
// only when something was found. A path that does not fit there is no file, but English is taken even so, with its path
// cut at the end.
int FindLanguageFile(int language, const wchar_t* stem, const wchar_t* extension, wchar_t* path, BOOL mustExist);

// The same in a folder of the caller's choice, which ends with a backslash.
int FindLanguageFileIn(const wchar_t* directory, int language, const wchar_t* stem, const wchar_t* extension,
                       wchar_t* path, BOOL mustExist);

// Returns the module that holds the resources of `*language`: a library that the caller frees once it switches language
// or ends, or `ownModule` (English). A negative language stands for the one stored for `application` ("CommonLanguage"
// when that is absent); one out of range is English. The outcome is stored, and written back to `*language`.
//
// A library that is missing, damaged or made for another kind of machine gives English, with language 0. When the
// library of another language had to stand in, the language stays the one that was asked for, so that its own library
// is taken as soon as it is there.
HMODULE LoadLanguageResources(HMODULE ownModule, const wchar_t* stem, const wchar_t* application, int* language);

// The bitmaps of a language menu: 0 to 23 for items that are not checked, 24 to 47 for checked ones.
inline constexpr int kLanguageBitmapCount = 2 * kLanguageCount;
// The bytes that BuildLanguageMenu requires to be writable at `handles`: six times what it fills, the rest being left
// to the caller.
inline constexpr size_t kLanguageBitmapArea = 1152;

// Makes a popup menu of the languages that have a library beside the program (English always), with the commands
// firstCommand + language, `current` checked, and the images from the bitmap resources firstBitmap + 0 to + 47 (modulo
// 65536) of `instance`; an item whose bitmap does not load has none. The caller destroys the menu.
//
// The 48 bitmap handles are copied to `handles` if kLanguageBitmapArea bytes are writable there; otherwise they live as
// long as the process. With a stem that is not readable the menu is empty and no bitmap is loaded.
HMENU BuildLanguageMenu(int current, HINSTANCE instance, UINT firstCommand, UINT firstBitmap, const wchar_t* stem,
                        HBITMAP* handles);

// Deletes the bitmaps of a language menu that no longer needs them: the first 32 of the 48, as far as they can be read
// and are not 0. The last 16 (the checked images of the languages 8 to 23) are left to the caller. Always 1.
BOOL FreeLanguageMenuBitmaps(const HBITMAP* handles);

// Whether a text that the user typed means "yes". Any thread; no state.

// 1 if the first word of `text` is a word for yes, enabled, positive, on or true in the language (an index of the
// language table), or if it contains "1", "+" or "yes". Letters count without their case as far as the C runtime's
// locale knows it: where nobody calls setlocale, letters of plain ASCII only ("JA" is a yes, "ДА" is not). The first
// word ends at the first space or control character and has at most 256 characters. Language -1 takes the languages 0
// to 16 together; Norwegian and Finnish only count when asked for. An index that no language has knows no words of its
// own.
//
// A text that is empty or begins with a space affirms, too: whoever only presses Enter agrees. A text that is not
// readable does not.
inline constexpr int kEveryLanguage = -1;
BOOL IsAffirmative(int language, const wchar_t* text);

// Compiled HTML help in the user's language. Main thread only.

// Opens the help file stem + code + ".chm" of the language (see FindLanguageFile; another language's file stands in for
// a missing one) with an HTML help command (HH_DISPLAY_TOPIC is 0) and its data. Without a file, or without an HTML
// help facility on the machine, nothing opens. In every case the window is repainted, since help may have covered it.
// Always 1.
BOOL OpenHelp(HWND window, int language, const wchar_t* stem, UINT command, DWORD_PTR data);

// The system's HTML help, loaded when it is first called. A test puts another function here; production code never
// does.
using HtmlHelpCall = HWND(WINAPI*)(HWND caller, const wchar_t* file, UINT command, DWORD_PTR data);
extern HtmlHelpCall htmlHelp;

}  // namespace kv
