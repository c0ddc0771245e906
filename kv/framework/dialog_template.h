// Reads dialog templates, classic or extended, from a module's resources. For the library only. Any thread.
#pragma once

#include <windows.h>

#include <vector>

namespace kv {

// Texts and class names point into the resource. A text that is missing, or replaced by a resource number, is empty.
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

// Reads the template with this name, or MAKEINTRESOURCEW id. Returns 0 when the module has none or the template is
// truncated; `read` then contains what precedes the end.
BOOL ReadDialogTemplate(HINSTANCE module, const wchar_t* templateName, DialogTemplate* read);

}  // namespace kv
