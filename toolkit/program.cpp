#include <windows.h>

#include <commctrl.h>

#include "framework/dialog.h"
#include "framework/modules.h"
#include "toolkit/classes.h"
#include "toolkit/dialog_record.h"
#include "toolkit/scaled_dialog.h"
#include "toolkit/switch_language.h"

namespace kv {

namespace {

// Our own dialogs take letters of every script, for which the table's dispatch has no room.
bool TakenByDialog(MSG* message) {
  HWND root = GetAncestor(message->hwnd, GA_ROOT);
  if (DialogRecordOf(root)) return IsDialogMessageW(root, message);
  return ModelessDialogs(nullptr, message, kModelessDispatch);
}

}  // namespace

int RunMessageLoop(HWND window) {
  MSG message;
  while (IsWindow(window)) {
    if (GetMessageW(&message, nullptr, 0, 0) <= 0) return static_cast<int>(message.wParam);
    if (TakenByDialog(&message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
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
