#include "app/start_up.h"

#include <commctrl.h>

#include "app/app_context.h"
#include "app/main_dialog.h"
#include "camera/optical_flow_chart.h"
#include "kv/controls/display_instrument.h"
#include "kv/controls/simple_bitmap.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/dialog.h"
#include "kv/framework/modules.h"
#include "kv/framework/window_state.h"

namespace kv {

namespace {

void RegisterClasses(HINSTANCE instance) {
  RegisterDialogClass(instance, TRUE);
  RegisterSimpleBitmapClass(instance, TRUE);
  RegisterDisplayInstrumentClass(instance, TRUE);
  RegisterLineRecorderClass(instance, TRUE);
  RegisterChartClass(instance, TRUE);
}

void UnregisterClasses(HINSTANCE instance) {
  // Quirk: registers again instead of unregistering; the main dialog, which closing does not destroy, still has a
  // chart.
  RegisterChartClass(instance, TRUE);
  RegisterLineRecorderClass(instance, FALSE);
  RegisterDisplayInstrumentClass(instance, FALSE);
  RegisterSimpleBitmapClass(instance, FALSE);
  RegisterDialogClass(instance, FALSE);
}

AppContext* MakeContext() {
  auto* context = CreateLocked<AppContext>();
  if (!context) return nullptr;
  context->hQuitEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  context->nPort = -1;
  context->hPort = INVALID_HANDLE_VALUE;
  context->bConnected = FALSE;
  return context;
}

void FreeContext(AppContext* context) {
  CloseHandle(context->hQuitEvent);
  context->hDlg = nullptr;
  FreeLocked(context);
}

// Ends with the quit message, or when the dialog has released its context at closing: the quit message has the lowest
// priority, and commands posted continuously by other threads would prevent the end.
void RunMessageLoop(HWND dialog) {
  MSG message;
  static_assert(sizeof(message) == 28);
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    if (!ModelessDialogs(nullptr, &message, kModelessDispatch) &&
        // There is no accelerator table, so this does nothing.
        !TranslateAcceleratorA(message.hwnd, nullptr, &message)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
    if (!GetWindowLongA(dialog, DWL_USER)) break;
  }
}

void RunMainDialog(HINSTANCE instance, AppContext* context) {
  DataFolderSetting(context, FALSE);
  ModelessDialogs(nullptr, nullptr, kModelessReset);
  HWND dialog = CreateDialogParamW(instance, kMainDialogTemplate, nullptr, MainDialogProcedure,
                                   reinterpret_cast<LPARAM>(context));
  if (dialog) {
    ShowWindow(dialog, SW_SHOW);
    UpdateWindow(dialog);
    RunMessageLoop(dialog);
  }
  DataFolderSetting(context, TRUE);
}

}  // namespace

void RunTarnwick(HINSTANCE instance) {
  RestrictLibrarySearch();
  modules = {.resources = instance, .application = instance};
  char directory[MAX_PATH] = "";
  GetCurrentDirectoryA(ARRAYSIZE(directory), directory);
  // Never unloaded: it registers the window class of rich edit controls for every dialog of the process.
  LoadLibraryA("RichEd32.dll");
  InitCommonControls();
  RegisterClasses(instance);
  if (AppContext* context = MakeContext()) {
    RunMainDialog(instance, context);
    FreeContext(context);
  }
  UnregisterClasses(instance);
  SetCurrentDirectoryA(directory);
}

}  // namespace kv
