#include "framework/control_kind.h"

#include <algorithm>
#include <cstring>

namespace kv {

namespace {

// In the order of the tests: the last text that a name contains decides.
constexpr struct {
  const char* text;
  ControlKind kind;
} kClassTexts[] = {
    {"STATIC", kControlStatic},
    {"BUTTON", kControlButton},
    {"EDIT", kControlEdit},
    {"COMBOBOX", kControlComboBox},
    {"LISTBOX", kControlListBox},
    {"SYSTABCONTROL32", kControlTab},
    {"KVSIMPLEBITMAP", kControlSimpleBitmap},
    {"SYSTREEVIEW32", kControlTreeView},
};

}  // namespace

ControlKind ClassifyClassName(const char* className) {
  if (IsBadStringPtrA(className, kClassNameCharacters - 1)) return kControlOther;
  char name[kClassNameCharacters];
  lstrcpynA(name, className, kClassNameCharacters);
  CharUpperA(name);
  ControlKind kind = kControlOther;
  for (const auto& known : kClassTexts) {
    if (std::strstr(name, known.text)) kind = known.kind;
  }
  return kind;
}

ControlKind ClassifyControl(HWND window) {
  char name[kClassNameCharacters] = "";
  if (!IsWindow(window)) return kControlOther;
  GetClassNameA(window, name, kClassNameCharacters);
  return ClassifyClassName(name);
}

}  // namespace kv
