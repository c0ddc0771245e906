#include "framework/bounded_format.h"

#include <cstdio>

namespace kv {

namespace {

// What the run-time's bounded formatters leave to do. They answer -1 when the text is longer than the room or cannot be
// formatted, and leave a text of exactly `room` characters without a terminator.
template <class Character>
HRESULT Terminate(Character* buffer, size_t room, int length) {
  if (length < 0 || static_cast<size_t>(length) > room) {
    buffer[room] = 0;
    return kFormatCut;
  }
  if (static_cast<size_t>(length) == room) buffer[room] = 0;
  return kFormatDone;
}

}  // namespace

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
  // The run-time's own function and not the standard one: only its wide "%s" reads wide text in every tool chain.
  return Terminate(buffer, room, _vsnwprintf(buffer, room, format, arguments));
}

HRESULT FormatBoundedA(char* buffer, size_t sizeBytes, const char* format, ...) {
  if (sizeBytes == 0) return kFormatNoRoom;
  const size_t room = sizeBytes - 1;
  va_list arguments;
  va_start(arguments, format);
  const int length = _vsnprintf(buffer, room, format, arguments);
  va_end(arguments);
  return Terminate(buffer, room, length);
}

}  // namespace kv
