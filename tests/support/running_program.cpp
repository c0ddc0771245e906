#include "tests/support/running_program.h"

#include <filesystem>
#include <string>

#include "kv/framework/file_path.h"

namespace kvtest {

namespace {

constexpr DWORD kTimeoutMs = 20000;

}  // namespace

RunningProgram::RunningProgram(const std::filesystem::path& program, const std::wstring& arguments,
                               const wchar_t* directory) {
  std::wstring command = L"\"" + program.wstring() + L"\" " + arguments;
  STARTUPINFOW startUp{};
  startUp.cb = sizeof(startUp);
  CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, directory, &startUp, &process_);
}

RunningProgram::~RunningProgram() {
  if (isRunning()) TerminateProcess(process_.hProcess, 99);
  WaitForSingleObject(process_.hProcess, kTimeoutMs);
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
}

HWND RunningProgram::Find(const wchar_t* windowClass, const wchar_t* title) const {
  HWND found = nullptr;
  DWORD owner = 0;
  do {
    found = FindWindowExW(nullptr, found, windowClass, title);
    GetWindowThreadProcessId(found, &owner);
  } while (found && (owner != process_.dwProcessId || !IsWindowVisible(found)));
  return found;
}

DWORD RunningProgram::Close(HWND window) const {
  PostMessageW(window, WM_CLOSE, 0, 0);
  WaitForSingleObject(process_.hProcess, kTimeoutMs);
  DWORD code = 0;
  GetExitCodeProcess(process_.hProcess, &code);
  return code;
}

std::filesystem::path BuildFolder(const wchar_t* name) {
  wchar_t testPrograms[kv::kPathCharacters] = L"";
  kv::ProgramDirectory(testPrograms);
  std::filesystem::path folder(testPrograms);
  while (folder.has_relative_path() && !exists(folder / L"CMakeCache.txt")) folder = folder.parent_path();
  return folder / name;
}

std::wstring TextOf(HWND window) {
  wchar_t text[1024] = L"";
  SendMessageW(window, WM_GETTEXT, ARRAYSIZE(text), reinterpret_cast<LPARAM>(text));
  return text;
}

}  // namespace kvtest
