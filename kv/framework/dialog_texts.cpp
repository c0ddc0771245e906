#include "kv/framework/dialog_texts.h"

#include "kv/framework/dialog_template.h"

namespace kv {

BOOL SetDialogTexts(HWND dialog, HINSTANCE module, const wchar_t* templateName) {
  DialogTemplate read;
  if (!IsWindow(dialog)) return FALSE;
  const BOOL whole = ReadDialogTemplate(module, templateName, &read);
  if (read.caption[0]) SetWindowTextW(dialog, read.caption);
  for (const TemplateControl& control : read.controls) {
    const HWND window = control.text[0] && control.id != -1 ? GetDlgItem(dialog, control.id) : nullptr;
    if (window) SetWindowTextW(window, control.text);
  }
  return whole;
}

}  // namespace kv
