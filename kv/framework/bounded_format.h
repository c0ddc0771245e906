// Bounded string formatting, used for every formatted text of the library. Any thread; no state.
//
// A buffer that is not writable over its whole size, or a format that is not readable up to its terminator, is rejected
// and nothing is written. Pointers among the arguments are not tested.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>

namespace kv {

inline constexpr HRESULT kFormatDone = 0;
inline constexpr HRESULT kFormatInvalid = static_cast<HRESULT>(0x80070057);    // bad pointer, or a buffer of size 0
inline constexpr HRESULT kFormatTruncated = static_cast<HRESULT>(0x8007007A);  // did not fit, or the formatter failed

// Formats by the rules of the C runtime's wide printf ("%s" is a wide text) in the locale set with setlocale.
// `sizeBytes` is the buffer's size in bytes; an odd last byte is not used. A text that does not fit is truncated and
// terminated.
HRESULT FormatBounded(wchar_t* buffer, size_t sizeBytes, const wchar_t* format, ...);

// Takes an argument list, and the buffer's size in characters.
HRESULT FormatBoundedV(wchar_t* buffer, size_t sizeCharacters, const wchar_t* format, va_list arguments);

// For numbers: formats them as in the "C" locale, with a decimal point, whatever setlocale has set.
HRESULT FormatPlain(wchar_t* buffer, size_t sizeBytes, const wchar_t* format, ...);
HRESULT FormatPlainV(wchar_t* buffer, size_t sizeCharacters, const wchar_t* format, va_list arguments);

// The same for 8-bit text, which is only written for other programs.
HRESULT FormatBoundedA(char* buffer, size_t sizeBytes, const char* format, ...);

}  // namespace kv
