// Kinds of controls, told apart by what their window class name contains. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

enum ControlKind {
  kControlOther = 0,
  kControlStatic = 1,
  kControlButton = 2,
  kControlEdit = 3,
  kControlComboBox = 4,
  kControlListBox = 5,
  kControlTab = 6,
  kControlTreeView = 7,
  kControlSimpleBitmap = 8,
};

// Styles of the bitmap control (controls/simple_bitmap.h). Scaled with its dialog, its height follows the width's
// scale, or its width the height's, so that the picture keeps its proportions.
inline constexpr DWORD kBitmapSquareByWidth = 0x0010;
inline constexpr DWORD kBitmapSquareByHeight = 0x0020;

// Only this many characters of a class name are looked at, the terminator included.
inline constexpr int kClassNameCharacters = 64;

// The kind that a class name stands for, whatever its case. Containing the kind's text is enough ("MyEditBox" is an
// edit, and so are the rich edits); with several texts in one name the last of STATIC, BUTTON, EDIT, COMBOBOX, LISTBOX,
// SYSTABCONTROL32, KVSIMPLEBITMAP, SYSTREEVIEW32 decides. kControlOther for an unreadable name.
ControlKind ClassifyClassName(const char* className);

// The kind of a window; kControlOther when it does not exist.
ControlKind ClassifyControl(HWND window);

}  // namespace kv
