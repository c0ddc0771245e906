#include "framework/bounded_format.h"

#include <cstdio>

namespace kv {

HRESULT FormatBounded(wchar_t* buffer, size_t sizeBytes, const wchar_t* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const HRESULT result = FormatBoundedV(buffer, sizeBytes / sizeof(wchar_t), format, arguments);
  va_end(arguments);
  return result;
}

HRESULT FormatBoundedV(wchar_t* buffer, size_t sizeCharacters, const wchar_t* format, va_list arguments) {
  if (sizeCharacters == 0) return kFormatNoRoom;
  const size_t room = sizeCharacters - 1;
  // The run-time's own function and not the standard one: only its wide "%s" reads wide text in every tool chain. It
  // answers -1 when the text is longer than the room or cannot be formatted, and leaves a text of exactly `room`
  // characters without a terminator.
  const int length = _vsnwprintf(buffer, room, format, arguments);
  if (length < 0 || static_cast<size_t>(length) > room) {
    buffer[room] = L'\0';
    return kFormatCut;
  }
  if (static_cast<size_t>(length) == room) buffer[room] = L'\0';
  return kFormatDone;
}

}  // namespace kv
