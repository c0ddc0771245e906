// Asking the user for a file to open or to save. Main thread only; the default paths that callers propose are built on
// ProgramDirectory of framework/file_path.h.
//
// In a DPI-aware host: the dialog is the system's own and looks as in any other program.
#pragma once

#include <windows.h>

#include "framework/file_path.h"

namespace kv {

// Shows the system's save (`save` not 0) or open dialog, starting from the whole path that `path`, a buffer of
// kPathCharacters, proposes, with two filters: the type of the proposed file and all files. 1 and the chosen path in
// `path` when the user chose one; the file need not exist, and an existing one may have been chosen for saving, so the
// caller asks before it overwrites.
//
// 0 when the user cancelled, when the dialog failed (a message box "Error" with the dialog's code says so), and when
// path or title is not readable or the path not writable. `path` is then as it was.
//
// Saving first makes a folder of the proposed path's whole text, name included, if nothing has that name: callers put
// what belongs to the proposed file into it. The proposed name itself can then not be saved to; the user picks another.
BOOL ChooseFile(HWND owner, wchar_t* path, const wchar_t* title, BOOL save);

// The dialog's filter list for files with an extension (with its dot; may be empty): pairs of shown text and pattern,
// each ended by a zero, and a zero behind the last. Only the first 256 characters are such a list: an extension of some
// 75 characters, which no file type has, leaves a filter that shows nothing.
struct FilterText {
  wchar_t text[1024];
};
FilterText BuildFilterText(const wchar_t* extension);

}  // namespace kv
