// Parts of a path, and the folder of the running program. Any thread; no state.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kv {

// The size of every path buffer of the framework: 260 wide characters, the terminator included.
inline constexpr size_t kPathCharacters = MAX_PATH;

// Whether `text` can be read up to its terminator or, without one, over kPathCharacters characters.
BOOL IsReadableText(const wchar_t* text);

// Where the name begins in a path: behind its last separator or its drive's colon. What is before it is drive and
// directory, so name and extension are the rest.
const wchar_t* FileNameOf(const wchar_t* path);

// Where the extension begins, at the last dot of the name; the path's end when the name has no dot.
const wchar_t* ExtensionOf(const wchar_t* path);

// Copies drive and directory of `path` and ends them with a backslash. Returns 0, with nothing written, when they do
// not fit into `characters`.
BOOL DirectoryOf(const wchar_t* path, wchar_t* directory, size_t characters);

// Writes the folder of the program's own file, with a backslash at its end, to a buffer of kPathCharacters. Always 1;
// the buffer is left alone when it is not writable over the length of that text, or when the folder does not fit.
BOOL ProgramDirectory(wchar_t* directory);

}  // namespace kv
