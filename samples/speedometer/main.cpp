// A gauge that scales with its window. The window reopens where it was closed.
#include "kv/kv.h"

namespace {

constexpr int kSpeed = 1001;  // the control's id in speedometer.rc

INT_PTR CALLBACK Speedometer(HWND dialog, UINT message, WPARAM, LPARAM) {
  if (message != WM_INITDIALOG) return FALSE;
  kv::SetInstrumentName(dialog, kSpeed, L"Speed");
  kv::SetInstrumentRange(dialog, kSpeed, {.maximum = 250, .unit = L"km/h"});
  kv::SetInstrumentValue(dialog, kSpeed, 130, FALSE);
  return TRUE;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  return kv::RunDialog(instance, {.templateName = L"SPEEDOMETER",
                                  .procedure = Speedometer,
                                  .positionName = "Samples.Speedometer",
                                  .version = L"1.0"});
}
