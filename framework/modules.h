// The modules whose resources the process uses, and where libraries of the system come from.
#pragma once

#include <windows.h>

namespace kv {

// Start-up sets both to the program's own; a program that changes its language replaces `resources` by the language
// library. Main thread only; modules are owned by who loaded them.
struct Modules {
  HINSTANCE resources;    // where texts, menus and dialog templates come from
  HINSTANCE application;  // the program itself: classes, icons
};

extern Modules modules;

// From here on the process looks for libraries that it names without a path in Windows' own folder only, and so for
// those which they need: one that somebody put beside the program, or into the working folder, is not run. (Systems
// without that choice leave out the working folder.) To be called first of all; libraries that are loaded stay.
void RestrictLibrarySearch();

// Finds a procedure of a library by its name, or by its number as MAKEINTRESOURCEA; null when the library is null or
// has none. Any thread.
template <class Function>
void FindProcedure(HMODULE library, const char* name, Function* procedure) {
  *procedure = library ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name))) : nullptr;
}

}  // namespace kv
