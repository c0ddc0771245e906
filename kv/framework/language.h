// The languages of a user interface. The program's own module contains the English resources; each other language has a
// resource library in the program's folder, named stem + code + ".dll" ("plotGE.dll" is the German one of "plot").
//
// A language index is 0 to 23; 0 is English. Indexes 19 to 22 are reserved and have no code; 23 has the same code, and
// so the same files, as 3. Main thread only.
//
// In a DPI-aware program, the menu's bitmaps keep the size of the resources; GetSystemMetrics(SM_CXMENUCHECK) returns
// the size that fits.
#pragma once

#include <windows.h>

#include <array>

#include "kv/framework/file_path.h"

namespace kv {

inline constexpr int kLanguageCount = 24;
inline constexpr int kStoredLanguage = -1;  // the language that is stored in the registry

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

// Results of a search for a language's file.
inline constexpr int kLanguageFileNone = 0;
inline constexpr int kLanguageFileOwn = 1;    // the file of the requested language
inline constexpr int kLanguageFileOther = 2;  // the first file of another language

// Finds the file stem + code + extension in the program's folder (".dll" for an unreadable extension). For English, the
// file need not exist. When the language has no file, returns the first file of any language, unless `mustExist`.
// `path`, a buffer of kPathCharacters, may be null and is written only when a file was found. A file whose path does
// not fit is skipped; the path for English is truncated instead.
int FindLanguageFile(int language, const wchar_t* stem, const wchar_t* extension, wchar_t* path, BOOL mustExist);

// The same in another folder, given with a trailing backslash.
int FindLanguageFileIn(const wchar_t* directory, int language, const wchar_t* stem, const wchar_t* extension,
                       wchar_t* path, BOOL mustExist);

// Returns the module with the resources of `*language`: a library, which the caller frees when it changes the language
// or ends, or `ownModule` (English). A negative language means the one stored for `application` (for "CommonLanguage"
// when that is not readable); one out of range is English. The result is stored in the registry and written to
// `*language`.
//
// A library that is missing, damaged or built for another machine type gives English, with language 0. When the library
// of another language is used instead, `*language` stays the requested one, so that its own library is used once it
// exists.
HMODULE LoadLanguageResources(HMODULE ownModule, const wchar_t* stem, const wchar_t* application, int* language);

// The bitmaps of a language menu: 0 to 23 for unchecked items, 24 to 47 for checked ones.
inline constexpr int kLanguageBitmapCount = 2 * kLanguageCount;
// The number of bytes that BuildLanguageMenu requires to be writable at `handles`: six times what it writes.
inline constexpr size_t kLanguageBitmapArea = 1152;

// Creates a popup menu of the languages that have a library in the program's folder (English always), with the commands
// firstCommand + language, `current` checked, and images from the bitmap resources firstBitmap + 0 to + 47 (modulo
// 65536) of `instance`; an item whose bitmap cannot be loaded has none. The caller destroys the menu.
//
// Copies the 48 bitmap handles to `handles` if kLanguageBitmapArea bytes are writable there; otherwise the bitmaps
// exist as long as the process. With an unreadable stem the menu is empty and no bitmap is loaded.
HMENU BuildLanguageMenu(int current, HINSTANCE instance, UINT firstCommand, UINT firstBitmap, const wchar_t* stem,
                        HBITMAP* handles);

// Deletes the bitmaps of a language menu that is no longer used: the first 32 of the 48 handles, those that are
// readable and not 0. Quirk: the last 16 (the checked images of the languages 8 to 23) are left to the caller. Always
// returns 1.
BOOL FreeLanguageMenuBitmaps(const HBITMAP* handles);

// Recognizes a "yes" that the user typed. Any thread; no state.

// Returns 1 if the first word of `text` means yes, enabled, positive, on or true in the language (an index of the
// language table), or if it contains "1", "+" or "yes". The comparison ignores case as far as the C runtime's locale
// supports it: in the "C" locale for ASCII letters only ("JA" is a yes, "ДА" is not). The first word ends at the first
// space or control character and has at most 256 characters. Language -1 means the languages 0 to 16 together;
// Norwegian and Finnish must be given by their index. An index out of range has no words.
//
// Quirk: a text that is empty or begins with a space is affirmative: pressing Enter without typing agrees. A text that
// is not readable is not.
inline constexpr int kEveryLanguage = -1;
BOOL IsAffirmative(int language, const wchar_t* text);

// Compiled HTML help in the user's language. Main thread only.

// Opens the language's help file stem + code + ".chm" (or another language's, see FindLanguageFile) with an HTML help
// command (HH_DISPLAY_TOPIC is 0) and its data. Does nothing without a file or without HTML help on the machine. The
// window is repainted in any case, because help may have covered it. Always returns 1.
BOOL OpenHelp(HWND window, int language, const wchar_t* stem, UINT command, DWORD_PTR data);

// The system's HTML help, loaded on the first call. Only tests replace it.
using HtmlHelpCall = HWND(WINAPI*)(HWND caller, const wchar_t* file, UINT command, DWORD_PTR data);
extern HtmlHelpCall htmlHelp;

}  // namespace kv
