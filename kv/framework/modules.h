// The modules whose resources the process uses, and the search path for system libraries.
#pragma once

#include <windows.h>

namespace kv {

// Start-up sets both to the program's module; a program that changes its language sets `resources` to the language
// library. Main thread only. The modules belong to their loaders.
struct Modules {
  HINSTANCE resources;    // texts, menus and dialog templates
  HINSTANCE application;  // the program: classes, icons
};

extern Modules modules;

// From now on, libraries named without a path, and those that they depend on, are loaded from Windows' system folder
// only, not from the program's or the current folder. (Systems without that option exclude only the current folder.)
// Call first; loaded libraries stay.
void RestrictLibrarySearch();

// Finds a procedure by name, or by ordinal as MAKEINTRESOURCEA. Sets null when the library is null or does not export
// it. Any thread.
template <class Function>
void FindProcedure(HMODULE library, const char* name, Function* procedure) {
  *procedure = library ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name))) : nullptr;
}

}  // namespace kv
