#include "benchmarks/soak/program.h"

#include <cstring>
#include <iterator>
#include <random>
#include <string>

#include "camera/ports.h"

namespace soak {

namespace {

constexpr double kStartSeconds = 30;
constexpr DWORD kCloseMs = 10000;
constexpr int kColours[] = {COLOR_BTNFACE, COLOR_WINDOW, COLOR_WINDOWTEXT, COLOR_HIGHLIGHT};
COLORREF ownColours[std::size(kColours)];
bool areColoursChanged = false;

BOOL CALLBACK TakeMainWindow(HWND window, LPARAM parameter) {
  auto* program = reinterpret_cast<Program*>(parameter);
  DWORD id = 0;
  GetWindowThreadProcessId(window, &id);
  char name[32] = "";
  GetClassNameA(window, name, sizeof(name));
  if (id != program->id || !IsWindowVisible(window) || std::strcmp(name, "kvDialog") != 0) return TRUE;
  program->window = window;
  return FALSE;
}

void SendOne(INPUT input) {
  SendInput(1, &input, sizeof(input));
}

void SendKey(WORD key, bool up) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
  SendOne(input);
}

}  // namespace

Program StartProgram(const std::string& path, const char* folder) {
  Program program;
  std::string command = "\"" + (path.starts_with('/') ? "Z:" + path : path) + "\"";
  STARTUPINFOA start{};
  start.cb = sizeof(start);
  PROCESS_INFORMATION info{};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, folder, &start, &info)) {
    return program;
  }
  CloseHandle(info.hThread);
  program.process = info.hProcess;
  program.id = info.dwProcessId;
  for (const double end = camera::Now() + kStartSeconds; !program.window && camera::Now() < end; Sleep(20)) {
    if (!IsRunning(program)) break;
    EnumWindows(TakeMainWindow, reinterpret_cast<LPARAM>(&program));
  }
  return program;
}

bool IsRunning(const Program& program) {
  return program.process && WaitForSingleObject(program.process, 0) == WAIT_TIMEOUT;
}

long CloseProgram(Program* program) {
  const double start = camera::Now();
  PostMessageA(program->window, WM_CLOSE, 0, 0);
  DWORD code = 1;
  if (WaitForSingleObject(program->process, kCloseMs) != WAIT_OBJECT_0) return -1;
  GetExitCodeProcess(program->process, &code);
  return code == 0 ? static_cast<long>((camera::Now() - start) * 1000) : -1;
}

void DropProgram(Program* program) {
  if (IsRunning(*program)) {
    TerminateProcess(program->process, 99);
    WaitForSingleObject(program->process, kCloseMs);
  }
  if (program->process) CloseHandle(program->process);
  *program = {};
}

int Below(std::mt19937* random, int end) {
  return static_cast<int>((*random)() % static_cast<unsigned>(end));
}

void PressKey(WORD key, bool shift, bool control) {
  if (shift) SendKey(VK_SHIFT, false);
  if (control) SendKey(VK_CONTROL, false);
  SendKey(key, false);
  SendKey(key, true);
  if (control) SendKey(VK_CONTROL, true);
  if (shift) SendKey(VK_SHIFT, true);
}

void MoveMouse(POINT place) {
  SetCursorPos(place.x, place.y);
}

void PressMouse(DWORD flags, int wheel) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = flags;
  input.mi.mouseData = static_cast<DWORD>(wheel);
  SendOne(input);
}

void MoveWindowAbout(HWND window, std::mt19937* random) {
  constexpr UINT kFlags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS;
  switch (Below(random, 8)) {
    case 0: PostMessageA(window, WM_SYSCOMMAND, SC_MINIMIZE, 0); break;
    case 1: PostMessageA(window, WM_SYSCOMMAND, SC_MAXIMIZE, 0); break;
    case 2:
    case 3: PostMessageA(window, WM_SYSCOMMAND, SC_RESTORE, 0); break;
    case 4:
    case 5:
      SetWindowPos(window, nullptr, Below(random, 600) - 100, Below(random, 500) - 50, 0, 0, kFlags | SWP_NOSIZE);
      break;
    default:
      SetWindowPos(window, nullptr, 0, 0, 100 + Below(random, 1200), 100 + Below(random, 900), kFlags | SWP_NOMOVE);
      break;
  }
}

void ChangeSurroundings(HWND window, std::mt19937* random) {
  constexpr UINT kMessages[] = {WM_SYSCOLORCHANGE, WM_SETTINGCHANGE, WM_FONTCHANGE, WM_THEMECHANGED, WM_TIMECHANGE};
  if (Below(random, 4) != 0) {
    PostMessageA(window, kMessages[Below(random, static_cast<int>(std::size(kMessages)))], 0, 0);
    return;
  }
  if (!areColoursChanged) {
    for (size_t i = 0; i < std::size(kColours); ++i) ownColours[i] = GetSysColor(kColours[i]);
  }
  areColoursChanged = true;
  const COLORREF colours[] = {(*random)() & 0xFFFFFF, (*random)() & 0xFFFFFF, (*random)() & 0xFFFFFF,
                              (*random)() & 0xFFFFFF};
  SetSysColors(static_cast<int>(std::size(kColours)), kColours, colours);
}

void RestoreColours() {
  if (areColoursChanged) SetSysColors(static_cast<int>(std::size(kColours)), kColours, ownColours);
}

}  // namespace soak
