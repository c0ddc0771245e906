#include <windows.h>

#include <commctrl.h>

#include <string>

#include "kv/framework/bounded_format.h"
#include "kv/framework/dialog.h"
#include "kv/framework/dialog_template.h"
#include "kv/framework/modules.h"
#include "kv/framework/window_position.h"
#include "kv/toolkit/classes.h"
#include "kv/toolkit/dialog_state.h"
#include "kv/toolkit/keyboard.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace kv {

namespace {

constexpr int kNotOpened = -1;

// The toolkit's dialogs receive Unicode characters; the table's dispatch is 8-bit.
bool TakenByDialog(MSG* message) {
  if (message->message == WM_TIMER || message->message == WM_PAINT) return false;
  HWND root = GetAncestor(message->hwnd, GA_ROOT);
  if (DialogStateOf(root)) {
    return TakeAccelerator(root, message) || TakeKey(root, message) || IsDialogMessageW(root, message);
  }
  return ModelessDialogs(nullptr, message, kModelessDispatch);
}

bool IsKnownClass(const wchar_t* name) {
  WNDCLASSEXW found{.cbSize = sizeof(found)};
  return !name[0] || GetClassInfoExW(modules.application, name, &found);
}

template <class... Values>
void PrintToDebugger(DWORD error, const wchar_t* format, Values... values) {
  wchar_t text[512];
  FormatBounded(text, sizeof(text), format, values...);
  OutputDebugStringW(text);
  SetLastError(error);
}

}  // namespace

void ReportMissing(const wchar_t* templateName) {
  const std::wstring name =
      IS_INTRESOURCE(templateName) ? L"#" + std::to_wstring(LOWORD(templateName)) : std::wstring(templateName);
  DialogTemplate read;
  if (!ReadDialogTemplate(modules.application, templateName, &read)) {
    return PrintToDebugger(ERROR_RESOURCE_NAME_NOT_FOUND, L"kv: the program has no dialog template \"%.100s\"\n",
                           name.c_str());
  }
  if (!IsKnownClass(read.windowClass)) {
    return PrintToDebugger(ERROR_CANNOT_FIND_WND_CLASS,
                           L"kv: the dialog template \"%.100s\" has the class \"%.100s\", which is not registered\n",
                           name.c_str(), read.windowClass);
  }
  for (const TemplateControl& control : read.controls) {
    if (IsKnownClass(control.windowClass)) continue;
    return PrintToDebugger(ERROR_CANNOT_FIND_WND_CLASS,
                           L"kv: control %d of the dialog template \"%.100s\" has the class \"%.100s\", which is not "
                           L"registered\n",
                           control.id, name.c_str(), control.windowClass);
  }
}

int RunMessageLoop(HWND window) {
  MSG message{};
  while (IsWindow(window)) {
    const BOOL got = GetMessageW(&message, nullptr, 0, 0);
    if (got <= 0) return got < 0 ? kNotOpened : static_cast<int>(message.wParam);
    if (TakenByDialog(&message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return 0;
}

int RunDialog(HINSTANCE instance, const ScaledDialog& dialog) {
  RestrictLibrarySearch();
  modules = {.resources = instance, .application = instance};
  // Not unloaded: rich edit controls of every dialog need it.
  LoadLibraryA("RichEd32.dll");
  InitCommonControls();
  if (!RegisterAllClasses(instance, TRUE)) {
    PrintToDebugger(GetLastError(), L"kv: the window classes could not be registered; are they already?\n");
    return kNotOpened;
  }
  ModelessDialogs(nullptr, nullptr, kModelessReset);
  if (dialog.settingsKey) SetSettingsKey(dialog.settingsKey);
  if (dialog.languages) LoadLanguages(dialog.languages, dialog.language);
  HWND window = OpenDialog(nullptr, dialog);
  const DWORD error = GetLastError();
  const int exitCode = window ? RunMessageLoop(window) : kNotOpened;
  // The dialog is still open after a quit message.
  if (IsWindow(window)) DestroyWindow(window);
  UnloadLanguages();
  RegisterAllClasses(instance, FALSE);
  if (!window) SetLastError(error);
  return exitCode;
}

}  // namespace kv
