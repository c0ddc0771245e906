// The modules whose resources the process uses. Start-up sets both to the program's own; a program that changes its
// language replaces `resources` by the language library. Main thread only; modules are owned by who loaded them.
#pragma once

#include <windows.h>

namespace kv {

struct Modules {
  HINSTANCE resources;    // where texts, menus and dialog templates come from
  HINSTANCE application;  // the program itself: classes, icons
};

extern Modules modules;

}  // namespace kv
