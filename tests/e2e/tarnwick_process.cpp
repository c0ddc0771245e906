#include "tests/e2e/tarnwick_process.h"
#include <string>

#include "app/resource_ids.h"
#include "camera/camera_record.h"
#include "tests/support/running_program.h"
#include "tools/uidriver/driver.h"

namespace kvtest {

constexpr DWORD kStartTimeoutMs = 20000;

TarnwickProcess::TarnwickProcess(const wchar_t* directory)
    : RunningProgram("Z:" KV_TARNWICK_EXE, L"and arguments that it ignores", directory) {
  WaitForInputIdle(process(), kStartTimeoutMs);
  window_ = uidriver::WaitForTarnwick(kStartTimeoutMs);
  // Only a running message loop handles this; start-up forces the first paint before the loop.
  DWORD_PTR answer = 0;
  SendMessageTimeoutA(window_, WM_NULL, 0, 0, SMTO_NORMAL, kStartTimeoutMs, &answer);
}

bool TarnwickProcess::ClickConnect() const {
  return uidriver::ClickAt(GetDlgItem(window_, IDC_TOOLBAR), uidriver::ToolbarButtonCenter(window_, IDM_CONNECT));
}

bool TarnwickProcess::WaitForPortText(const std::string& text, DWORD timeoutMs) const {
  for (const DWORD start = GetTickCount(); GetTickCount() - start < timeoutMs; Sleep(10)) {
    if (uidriver::TextOf(window_, IDC_PORT) == text) return true;
  }
  return false;
}

COLORREF TarnwickProcess::ChartPixel(const kv::CameraPoint& point) const {
  HWND chart = GetDlgItem(window_, IDC_CHART);
  RECT client{};
  GetClientRect(chart, &client);
  return uidriver::PixelOf(chart, MulDiv(point.x, client.right, kv::kFieldWidth),
                           MulDiv(point.y, client.bottom, kv::kFieldHeight));
}

DWORD TarnwickProcess::CloseAndWait() const {
  const DWORD start = GetTickCount();
  return Close(window_) == 0 ? GetTickCount() - start : INFINITE;
}

void ForgetUserSettings() {
  HKEY root = nullptr;
  RegOpenCurrentUser(KEY_ALL_ACCESS, &root);
  RegDeleteTreeA(root, "Software\\korvel");
  RegCloseKey(root);
}

}  // namespace kvtest
