// Notes in UTF-8 text files. Any thread.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace gallery {

inline constexpr DWORD kMaxNotesBytes = 1024 * 1024;  // bytes

// Decodes a file's bytes: UTF-8, with or without a byte order mark. Returns false, and does not change `text`, when
// they are not UTF-8.
bool DecodeNotes(std::string_view bytes, std::wstring* text);

// Reads a file of at most kMaxNotesBytes bytes of UTF-8, with or without a byte order mark. Returns false, and does not
// change `text`, when it cannot be read, is larger, or is not UTF-8.
bool ReadNotes(const wchar_t* path, std::wstring* text);

// Replaces the file, without a byte order mark. Returns false, and does not change it, on failure (GetLastError).
bool WriteNotes(const wchar_t* path, const std::wstring& text);

}  // namespace gallery
