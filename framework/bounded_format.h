// Bounded string formatting: every formatted text of the program goes through here. Any thread; no state.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>

namespace kv {

inline constexpr HRESULT kFormatDone = 0;
inline constexpr HRESULT kFormatNoRoom = static_cast<HRESULT>(0x80070057);  // a size of no characters; nothing written
inline constexpr HRESULT kFormatCut = static_cast<HRESULT>(0x8007007A);     // did not fit, or the formatter failed

// Formats with the C run-time's wide printf rules ("%s" is a wide text). `sizeBytes` is the buffer's size in bytes; an
// odd byte is not used. A text that does not fit is cut, the last character being the terminator.
HRESULT FormatBounded(wchar_t* buffer, size_t sizeBytes, const wchar_t* format, ...);

// The same with an argument list and the buffer's size in characters.
HRESULT FormatBoundedV(wchar_t* buffer, size_t sizeCharacters, const wchar_t* format, va_list arguments);

// The same for 8-bit text, for the formats that other programs read as bytes.
HRESULT FormatBoundedA(char* buffer, size_t sizeBytes, const char* format, ...);

}  // namespace kv
