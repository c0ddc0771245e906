#include "app/start_up.h"

#include <commctrl.h>

#include "app/app_context.h"
#include "app/main_dialog.h"
#include "app/optical_flow_chart.h"
#include "controls/display_instrument.h"
#include "controls/line_recorder.h"
#include "controls/simple_bitmap.h"
#include "framework/dialog.h"
#include "framework/locked_record.h"
#include "framework/modules.h"

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
  // Registered again instead of unregistered: the chart's class stays until the process ends, so that a chart that is
  // still on its way out keeps its procedure.
  RegisterChartClass(instance, TRUE);
  RegisterLineRecorderClass(instance, FALSE);
  RegisterDisplayInstrumentClass(instance, FALSE);
  RegisterSimpleBitmapClass(instance, FALSE);
  RegisterDialogClass(instance, FALSE);
}

AppContext* MakeContext() {
  auto* context = CreateLockedRecord<AppContext>();
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
  FreeLockedRecord(context);
}

void RunMessageLoop() {
  MSG message;
  static_assert(sizeof(message) == 28);
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    if (ModelessDialogs(nullptr, &message, kModelessDispatch)) continue;
    // There is no accelerator table; the step keeps its place for a dialog that brings one.
    if (TranslateAcceleratorA(message.hwnd, nullptr, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
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
    RunMessageLoop();
  }
  DataFolderSetting(context, TRUE);
}

}  // namespace

void RunTarnwick(HINSTANCE instance) {
  modules = {.resources = instance, .application = instance};
  char directory[MAX_PATH] = "";
  GetCurrentDirectoryA(ARRAYSIZE(directory), directory);
  // Stays loaded: rich edit controls of any dialog need it, and one load is enough.
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
