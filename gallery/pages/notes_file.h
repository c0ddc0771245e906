// Notes as UTF-8 text files. Any thread; no state.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace gallery {

inline constexpr DWORD kMaxNotesBytes = 1024 * 1024;  // bytes

// The text in a file's bytes: UTF-8, with or without a byte order mark. False, with `text` as it was, when it is not.
bool DecodeNotes(std::string_view bytes, std::wstring* text);

// Reads a file of at most kMaxNotesBytes bytes of UTF-8, with or without a byte order mark. False, with `text` as it
// was, when it cannot be read, is larger, or is not UTF-8.
bool ReadNotes(const wchar_t* path, std::wstring* text);

// Writes the file anew without a byte order mark, beside it first, so that a disk that is full leaves the old one
// whole.
bool WriteNotes(const wchar_t* path, const std::wstring& text);

}  // namespace gallery
