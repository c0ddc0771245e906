// The about box of a program: icon, name, version, rights, and a button that opens an address. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

struct AboutBox {
  std::wstring caption;
  std::wstring name;         // and the version: "Plot 1.2"
  std::wstring description;  // may have several lines
  std::wstring rights;       // "© 2026 ...", and a line with the license
  std::wstring address;      // of a web page, opened by a button with this text; empty: no button
  WORD icon = 1;             // resource of the program's module; shown in 32 by 32 pixels at 96 DPI
};

// Shows the box over its owner, in the direction of the current language, until the user closes it.
void ShowAboutBox(HWND owner, const AboutBox& about);

}  // namespace kv
