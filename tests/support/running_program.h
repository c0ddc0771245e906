// A program in a separate process, driven from outside.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace kvtest {

// The destructor ends the process if it is still running.
class RunningProgram {
 public:
  // Starts in `directory`; null: in that of the tests.
  RunningProgram(const std::filesystem::path& program, const std::wstring& arguments,
                 const wchar_t* directory = nullptr);
  ~RunningProgram();
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  HANDLE process() const { return process_.hProcess; }
  bool isRunning() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT; }
  // A visible top-level window of the process with this class and title (null: any title); null when there is none.
  HWND Find(const wchar_t* windowClass, const wchar_t* title) const;
  // Closes the window as a user does, waits for the process to end and returns its exit code.
  DWORD Close(HWND window) const;

 private:
  PROCESS_INFORMATION process_{};
};

// The folder of one of the build's programs, relative to that of the test program.
std::filesystem::path BuildFolder(const wchar_t* name);

// The text of another process's window or control.
std::wstring TextOf(HWND window);

}  // namespace kvtest
