#include <windows.h>

#include <commctrl.h>

#include "framework/dialog.h"
#include "framework/modules.h"
#include "toolkit/classes.h"
#include "toolkit/scaled_dialog.h"
#include "toolkit/switch_language.h"

namespace kv {

int RunMessageLoop(HWND window) {
  MSG message;
  while (IsWindow(window)) {
    if (GetMessageA(&message, nullptr, 0, 0) <= 0) return static_cast<int>(message.wParam);
    if (ModelessDialogs(nullptr, &message, kModelessDispatch)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  return 0;
}

int RunDialog(HINSTANCE instance, const ScaledDialog& dialog) {
  constexpr int kNotOpened = -1;
  modules = {.resources = instance, .application = instance};
  // Stays loaded: rich edit controls of any dialog need it, and one load is enough.
  LoadLibraryA("RichEd32.dll");
  InitCommonControls();
  if (!RegisterAllClasses(instance, TRUE)) return kNotOpened;
  ModelessDialogs(nullptr, nullptr, kModelessReset);
  if (dialog.languages) BeginLanguages(dialog.languages);
  HWND window = OpenDialog(nullptr, dialog);
  const int exitCode = window ? RunMessageLoop(window) : kNotOpened;
  // A quit message leaves the dialog open.
  if (IsWindow(window)) DestroyWindow(window);
  EndLanguages();
  RegisterAllClasses(instance, FALSE);
  return exitCode;
}

}  // namespace kv
