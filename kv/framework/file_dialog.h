// Open and save dialogs for files. Main thread only. Callers build default paths on ProgramDirectory
// (kv/framework/file_path.h).
#pragma once

#include <windows.h>

#include "kv/framework/file_path.h"

namespace kv {

// Shows the system's save dialog (`save` not 0) or open dialog for the full path proposed in `path`, a buffer of
// kPathCharacters, with two filters: the type of the proposed file and all files. Returns 1, with the chosen path in
// `path`, when the user chose one. The file may not exist; a file chosen for saving may exist, and the caller confirms
// overwriting.
//
// Returns 0, with `path` unchanged, when the user canceled, when the dialog failed (a message box "Error" shows its
// code), or when path or title is not readable or the path not writable.
//
// Quirk: saving first creates a folder with the whole proposed path, name included, unless something has that name;
// callers put other files of the document there. The proposed name itself can then not be used for the file.
BOOL ChooseFile(HWND owner, wchar_t* path, const wchar_t* title, BOOL save);

// Builds the dialog's filter list for an extension (with its dot; may be empty): pairs of display text and pattern,
// each ended by a zero, with a second zero at the end. Only the first 256 characters are separated by zeros: an
// extension of about 75 characters, longer than any real one, gives a filter that shows nothing.
struct FilterText {
  wchar_t text[1024];
};
FilterText BuildFilterText(const wchar_t* extension);

}  // namespace kv
