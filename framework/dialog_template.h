// A dialog template as its resource holds it, classic or extended, for the files of the library only. Any thread.
#pragma once

#include <windows.h>

#include <vector>

namespace kv {

// Texts and class names point into the resource. One that is absent, or a number in place of a text, is empty.
struct TemplateControl {
  int id;  // -1 for none
  const wchar_t* windowClass;
  const wchar_t* text;
};
struct DialogTemplate {
  const wchar_t* windowClass = L"";
  const wchar_t* caption = L"";
  std::vector<TemplateControl> controls;
};

// Reads the template of that name, or MAKEINTRESOURCEW id. Returns 0 when the module has none or it ends too early;
// `read` then holds what came before.
BOOL ReadDialogTemplate(HINSTANCE module, const wchar_t* templateName, DialogTemplate* read);

}  // namespace kv
