// A program in a process of its own, driven from outside.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace kvtest {

// Ended with the object if it does not end by itself.
class RunningProgram {
 public:
  // In `directory`, or with null in that of the tests.
  RunningProgram(const std::filesystem::path& program, const std::wstring& arguments,
                 const wchar_t* directory = nullptr);
  ~RunningProgram();
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  HANDLE process() const { return process_.hProcess; }
  bool isRunning() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT; }
  // A visible top-level window of the process with this class and, unless that is null, this title; null when there is
  // none.
  HWND Find(const wchar_t* windowClass, const wchar_t* title) const;
  // Closes the window as a user does, waits for the end of the process and gives its exit code.
  DWORD Close(HWND window) const;

 private:
  PROCESS_INFORMATION process_{};
};

// The folder of a program of the build, from that of the tests' program.
std::filesystem::path BuildFolder(const wchar_t* name);

// The text of another process's window or control.
std::wstring TextOf(HWND window);

}  // namespace kvtest
