#include "tests/gallery/running_gallery.h"
#include <chrono>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <system_error>

#include "framework/file_path.h"
#include "tests/support/test_window.h"

namespace kvtest {

namespace {

constexpr DWORD kPatienceMs = 10000;

std::wstring TextOf(HWND window) {
  wchar_t text[1024] = L"";
  SendMessageW(window, WM_GETTEXT, ARRAYSIZE(text), reinterpret_cast<LPARAM>(text));
  return text;
}

}  // namespace

std::filesystem::path GalleryFolder() {
  wchar_t testPrograms[kv::kPathCharacters] = L"";
  kv::ProgramDirectory(testPrograms);
  return (std::filesystem::path(testPrograms) / L"../../gallery").lexically_normal();
}

GalleryCopy::GalleryCopy(std::initializer_list<const wchar_t*> libraries)
    : folder_(std::filesystem::temp_directory_path() / (L"kv gallery " + std::to_wstring(GetCurrentProcessId()))) {
  std::filesystem::create_directories(folder_);
  const auto copy = [this](const std::wstring& name) {
    CopyFileW((GalleryFolder() / name).c_str(), (folder_ / name).c_str(), FALSE);
  };
  copy(L"kvgallery.exe");
  for (const wchar_t* library : libraries) copy(library);
}

GalleryCopy::~GalleryCopy() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

RunningGallery::RunningGallery(const std::filesystem::path& folder, const wchar_t* page) {
  std::wstring command =
      L"\"" + (folder / L"kvgallery.exe").wstring() + L"\"" + (page ? L" --page " + std::wstring(page) : L"");
  STARTUPINFOW startUp{};
  startUp.cb = sizeof(startUp);
  CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startUp, &process_);
  WaitUntil(
      [this] {
        frame_ = Find(L"kvDialog", nullptr);
        page_ = frame_ ? FindWindowExW(frame_, nullptr, L"kvDialog", nullptr) : nullptr;
        return page_ && IsWindowVisible(page_);
      },
      std::chrono::milliseconds(kPatienceMs));
}

RunningGallery::~RunningGallery() {
  if (WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT) TerminateProcess(process_.hProcess, 99);
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
}

HWND RunningGallery::Find(const wchar_t* windowClass, const wchar_t* title) const {
  HWND found = nullptr;
  DWORD owner = 0;
  do {
    found = FindWindowExW(nullptr, found, windowClass, title);
    GetWindowThreadProcessId(found, &owner);
  } while (found && (owner != process_.dwProcessId || !IsWindowVisible(found)));
  return found;
}

void RunningGallery::Press(int controlId) const {
  // Posted: the answer may be a dialog, which would keep a sent message from returning.
  PostMessageW(GetDlgItem(page_, controlId), BM_CLICK, 0, 0);
}

std::wstring RunningGallery::Caption() const {
  return TextOf(frame_);
}

std::wstring RunningGallery::ControlText(int controlId) const {
  return TextOf(GetDlgItem(page_, controlId));
}

DWORD RunningGallery::Close() {
  PostMessageW(frame_, WM_CLOSE, 0, 0);
  WaitForSingleObject(process_.hProcess, kPatienceMs);
  DWORD code = 0;
  GetExitCodeProcess(process_.hProcess, &code);
  return code;
}

}  // namespace kvtest
