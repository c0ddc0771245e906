// The gallery in a process of its own, and folders to run it in.
#pragma once

#include <windows.h>

#include <chrono>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <system_error>

#include "tests/support/running_program.h"
#include "tests/support/test_window.h"

namespace kvtest {

// A copy of the gallery's program with those of its libraries that are named, in a folder of its own.
class GalleryCopy {
 public:
  explicit GalleryCopy(std::initializer_list<const wchar_t*> libraries)
      : folder_(std::filesystem::temp_directory_path() / (L"kv gallery " + std::to_wstring(GetCurrentProcessId()))) {
    std::filesystem::create_directories(folder_);
    const auto copy = [this](const wchar_t* name) {
      CopyFileW((BuildFolder(L"gallery") / name).c_str(), (folder_ / name).c_str(), FALSE);
    };
    copy(L"kvgallery.exe");
    for (const wchar_t* library : libraries) copy(library);
  }
  ~GalleryCopy() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  GalleryCopy(const GalleryCopy&) = delete;
  GalleryCopy& operator=(const GalleryCopy&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

// A running gallery that shows the page of that name, or with null the one that was shown last.
class RunningGallery : public RunningProgram {
 public:
  RunningGallery(const std::filesystem::path& folder, const wchar_t* page)
      : RunningProgram(folder / L"kvgallery.exe", page ? L"--page " + std::wstring(page) : L"") {
    WaitUntil(
        [this] {
          frame_ = Find(L"kvDialog", nullptr);
          page_ = frame_ ? FindWindowExW(frame_, nullptr, L"kvDialog", nullptr) : nullptr;
          return page_ && IsWindowVisible(page_);
        },
        std::chrono::seconds(20));
  }

  HWND frame() const { return frame_; }
  HWND page() const { return page_; }
  // Sends a menu command or a click; a click is posted, because the answer may be a dialog, which would keep a sent
  // message from returning.
  void Command(int id) const { SendMessageW(frame_, WM_COMMAND, static_cast<WPARAM>(id), 0); }
  void Press(int controlId) const { PostMessageW(GetDlgItem(page_, controlId), BM_CLICK, 0, 0); }
  std::wstring Caption() const { return TextOf(frame_); }
  std::wstring ControlText(int controlId) const { return TextOf(GetDlgItem(page_, controlId)); }
  DWORD Close() const { return RunningProgram::Close(frame_); }

 private:
  HWND frame_ = nullptr, page_ = nullptr;
};

}  // namespace kvtest
