// Parts of a path, and the program's folder. Any thread; no state.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kv {

// The size of all path buffers in the framework: 260 wide characters, terminator included.
inline constexpr size_t kPathCharacters = MAX_PATH;

// Returns whether `text` is readable up to its terminator or, without one, for kPathCharacters characters.
BOOL IsReadableText(const wchar_t* text);

// Returns the start of the file name: behind the last separator or the drive's colon. Everything before it is drive and
// directory, and the rest is name and extension.
const wchar_t* FileNameOf(const wchar_t* path);

// Returns the start of the extension, the last dot of the name; the end of the path when the name has no dot.
const wchar_t* ExtensionOf(const wchar_t* path);

// Copies drive and directory of `path`, with a trailing backslash. Returns 0, and writes nothing, when they do not fit
// into `characters`.
BOOL DirectoryOf(const wchar_t* path, wchar_t* directory, size_t characters);

// Writes the folder of the program's file, with a trailing backslash, to a buffer of kPathCharacters. Always returns 1;
// the buffer does not change when it is too small for the text or not writable.
BOOL ProgramDirectory(wchar_t* directory);

}  // namespace kv
