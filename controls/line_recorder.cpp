#include "controls/line_recorder.h"

#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/painting.h"

namespace kv {

namespace {

LRESULT OnPaint(HWND window) {
  const PaintScope paint(window);
  RECT client{};
  GetClientRect(window, &client);
  FillSolid(paint.dc(), client, GetSysColor(COLOR_BTNFACE));
  return 0;
}

LRESULT CALLBACK RecorderProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: return OnPaint(window);
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterLineRecorderClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, "kvLineRecorder", RecorderProcedure, registerIt);
}

}  // namespace kv
