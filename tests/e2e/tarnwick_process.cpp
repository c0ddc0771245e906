#include "tests/e2e/tarnwick_process.h"
#include <string>

#include "app/camera_record.h"
#include "app/resource_ids.h"
#include "tools/uidriver/driver.h"

namespace kvtest {

namespace {

constexpr DWORD kStartPatienceMs = 20000;

HKEY UserRoot() {
  HKEY root = nullptr;
  RegOpenCurrentUser(KEY_ALL_ACCESS, &root);
  return root;
}

}  // namespace

TarnwickProcess::TarnwickProcess(const char* directory) {
  char command[] = "\"Z:" KV_TARNWICK_EXE "\" and arguments that it ignores";
  STARTUPINFOA start{};
  start.cb = sizeof(start);
  PROCESS_INFORMATION info{};
  const DWORD begin = GetTickCount();
  if (!CreateProcessA(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, directory, &start, &info)) return;
  CloseHandle(info.hThread);
  process_ = info.hProcess;
  WaitForInputIdle(process_, kStartPatienceMs);
  window_ = uidriver::WaitForTarnwick(kStartPatienceMs);
  // Answered only by a message loop that runs; by then the first paint is done, which start-up forces before the loop.
  DWORD_PTR answer = 0;
  SendMessageTimeoutA(window_, WM_NULL, 0, 0, SMTO_NORMAL, kStartPatienceMs, &answer);
  startUpMs_ = GetTickCount() - begin;
}

TarnwickProcess::~TarnwickProcess() {
  if (process_ && isRunning()) TerminateProcess(process_, 99);
  CloseHandle(process_);
}

bool TarnwickProcess::ClickConnect() const {
  return uidriver::ClickAt(GetDlgItem(window_, IDC_TOOLBAR), uidriver::ToolbarButtonCentre(window_, IDM_CONNECT));
}

bool TarnwickProcess::WaitForPortText(const std::string& text, DWORD patienceMs) const {
  for (const DWORD start = GetTickCount(); GetTickCount() - start < patienceMs; Sleep(10)) {
    if (uidriver::TextOf(window_, IDC_PORT) == text) return true;
  }
  return false;
}

POINT TarnwickProcess::ChartPlace(const kv::CameraPoint& point) const {
  RECT client{};
  GetClientRect(GetDlgItem(window_, IDC_CHART), &client);
  return {MulDiv(point.x, client.right, kv::kFieldWidth), MulDiv(point.y, client.bottom, kv::kFieldHeight)};
}

COLORREF TarnwickProcess::ChartPixel(const kv::CameraPoint& point) const {
  const POINT place = ChartPlace(point);
  return uidriver::PixelOf(GetDlgItem(window_, IDC_CHART), place.x, place.y);
}

DWORD TarnwickProcess::CloseAndWait(DWORD patienceMs) {
  const DWORD start = GetTickCount();
  PostMessageA(window_, WM_CLOSE, 0, 0);
  if (WaitForSingleObject(process_, patienceMs) != WAIT_OBJECT_0) return INFINITE;
  DWORD code = 1;
  GetExitCodeProcess(process_, &code);
  return code == 0 ? GetTickCount() - start : INFINITE;
}

std::string UserRegistryText(const char* key, const char* value) {
  HKEY root = UserRoot(), opened = nullptr;
  char text[512] = "";
  DWORD size = sizeof(text) - 1;
  if (RegOpenKeyExA(root, key, 0, KEY_READ, &opened) == ERROR_SUCCESS) {
    if (RegQueryValueExA(opened, value, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size)) text[0] = '\0';
    RegCloseKey(opened);
  }
  RegCloseKey(root);
  return text;
}

void ForgetUserSettings() {
  HKEY root = UserRoot();
  RegDeleteTreeA(root, "Software\\korvel");
  RegCloseKey(root);
}

}  // namespace kvtest
