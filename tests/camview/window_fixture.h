// camview's window in a test program: opened, driven and read as by its user.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <commdlg.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwctype>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ios>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camview/commands.h"
#include "camview/live_source.h"
#include "camview/record_store.h"
#include "camview/recording_loader.h"
#include "camview/resource_ids.h"
#include "camview/source.h"
#include "camview/view_time.h"
#include "camview/window.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/file_path.h"
#include "kv/framework/modules.h"
#include "kv/toolkit/classes.h"
#include "kv/toolkit/keyboard.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"
#include "kv/toolkit/strip_charts.h"
#include "kv/toolkit/text_tips.h"
#include "tests/support/files.h"
#include "tests/support/replaced_import.h"
#include "tests/support/running_program.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"

namespace camview {

namespace fs = std::filesystem;
using kvtest::TextOf;

inline std::wstring chosenPath;              // what the user chooses in a file dialog
inline std::function<void()> whileChoosing;  // what happens meanwhile
inline std::vector<std::wstring> boxes;      // what message boxes said

inline BOOL WINAPI ChoosePath(OPENFILENAMEW* request) {
  // As a modal dialog does.
  EnableWindow(request->hwndOwner, FALSE);
  if (whileChoosing) std::exchange(whileChoosing, nullptr)();
  EnableWindow(request->hwndOwner, TRUE);
  lstrcpynW(request->lpstrFile, chosenPath.c_str(), static_cast<int>(request->nMaxFile));
  return TRUE;
}

inline int WINAPI AnswerBox(HWND, const wchar_t* text, const wchar_t*, UINT) {
  boxes.emplace_back(text);
  return IDYES;
}

inline std::string BytesOf(const fs::path& path) {
  return kvtest::BytesOf(path);
}

inline HANDLE exportMayEnd = nullptr;

inline BOOL WINAPI FlushLast(HANDLE) {
  return WaitForSingleObject(exportMayEnd, INFINITE) == WAIT_OBJECT_0;
}

inline std::string RecordBytes(int number) {
  const kv::CameraPoint points[kv::kPointCount] = {{number % 1000, 300}, {500, 400}, {1023, 1023}, {20, 700}};
  char record[kv::kRecordLength];
  kv::WriteRecord(points, record);
  return {record, sizeof(record)};
}

// A hundred records a second; those for which `isMissing` holds are left out.
inline std::string Recording(int count, const std::function<bool(int)>& isMissing = [](int) { return false; }) {
  std::string bytes = camera::EncodeHeader({132'000'000'000'000'000, 38400, 3});
  for (int i = 0; i < count; ++i) {
    if (!isMissing(i)) bytes += camera::EncodeChunks(static_cast<std::uint64_t>(i) * 10'000, RecordBytes(i));
  }
  return bytes + camera::EncodeEnd(static_cast<std::uint64_t>(count) * 10'000);
}

class CamviewWindow : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    kv::modules = {.resources = GetModuleHandleW(nullptr), .application = GetModuleHandleW(nullptr)};
    kv::RegisterAllClasses(kv::modules.application, TRUE);
    RegisterControls(kv::modules.application, TRUE);
  }
  static void TearDownTestSuite() {
    RegisterControls(kv::modules.application, FALSE);
    kv::RegisterAllClasses(kv::modules.application, FALSE);
  }
  void SetUp() override {
    SetCursorPos(0, 0);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\korvel");
    kv::LoadLanguages(kFileStem, 0);
    boxes.clear();
  }
  void TearDown() override {
    if (IsWindow(window_)) DestroyWindow(window_);
    kv::UnloadLanguages();
    for (const fs::path& file : files_) fs::remove(file);
  }

  void Open(const StartOptions& options) {
    options_ = options;
    window_ = kv::OpenDialog(nullptr, MainWindow(options_));
    Pump();
  }
  void OpenFile(const std::string& bytes) {
    const fs::path path = File(L"camview test.twr");
    std::ofstream(path, std::ios::binary) << bytes;
    Open({.path = path.wstring()});
    ASSERT_TRUE(Soon([&] { return Records() && !view().display.IsPending(); }));
  }
  fs::path File(const wchar_t* name) {
    files_.push_back(fs::temp_directory_path() / name);
    return files_.back();
  }
  void Pump() const {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (kv::TakeAccelerator(window_, &message) || kv::TakeKey(window_, &message) ||
          IsDialogMessageW(window_, &message)) {
        continue;
      }
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
  bool Soon(const std::function<bool()>& condition, DWORD ms = 20000) const {
    for (const DWORD start = GetTickCount(); GetTickCount() - start < ms; Sleep(5)) {
      Pump();
      if (condition()) return true;
    }
    return false;
  }
  void Press(WPARAM key, int heldKey = 0) const {
    kvtest::HoldKey(heldKey);
    PostMessageW(GetFocus(), WM_KEYDOWN, key, 1);
    Pump();
    kvtest::HoldKey(0);
  }
  void TypeTime(const wchar_t* time) const {
    Press('G', VK_CONTROL);
    SetDlgItemTextW(window_, IDC_TIME, time);
    Press(VK_RETURN);
  }
  void Load(const fs::path& path) const {
    camview::OpenFile(view(), path.wstring());
    EXPECT_TRUE(EndsWork());
  }
  void Rest(DWORD ms) const {
    Soon([] { return false; }, ms);
  }
  // Whether the records are the same until the end of an export, which reads them.
  bool KeepsRecordsDuringExport(const std::function<void()>& arrive) {
    Command(IDM_SELECT_SHOWN);
    chosenPath = File(L"camview range.csv");
    const kvtest::ReplacedImport flush("FlushFileBuffers", reinterpret_cast<void*>(FlushLast));
    exportMayEnd = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    Command(IDM_EXPORT);
    const auto isDifferent = [&, end = Records()->End()] { return !IsWorking() || Records()->End() != end; };
    arrive();
    const bool isSame = !Soon(isDifferent, 1200);
    SetEvent(exportMayEnd);
    return EndsWork() && CloseHandle(exportMayEnd) && isSame;
  }
  void Command(int id) const {
    SendMessageW(window_, WM_COMMAND, static_cast<WPARAM>(id), 0);
    Pump();
  }
  void GoTo(double time) const {
    Seek(&view().time, time);
    Update(view());
  }
  // Until the table is up to date.
  void Settle() const {
    EXPECT_TRUE(Soon([&] { return !view().display.IsPending(); }));
  }
  HWND Control(int id) const { return GetDlgItem(window_, id); }
  void Draw(int id, const kvtest::TestBitmap& bitmap) const {
    SendMessageW(Control(id), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(bitmap.dc()), 0);
  }
  std::wstring Text(int id) const { return TextOf(Control(id)); }
  bool Says(const wchar_t* part) const { return Text(IDC_STATUS).find(part) != std::wstring::npos; }
  std::wstring Field() const { return kvtest::ReadAccessible(Control(IDC_FIELD)).value; }
  // The letters that are the access keys of two controls, or of a control and the menu bar.
  std::wstring RepeatedKeys() const {
    std::wstring keys, repeated;
    const auto add = [&](const std::wstring& text) {
      const size_t mark = text.find(L'&');
      if (mark == text.npos || mark + 1 == text.size()) return;
      const auto key = static_cast<wchar_t>(std::towlower(text[mark + 1]));
      (keys.find(key) == keys.npos ? keys : repeated) += key;
    };
    for (int i = 0; i < GetMenuItemCount(GetMenu(window_)); ++i) {
      wchar_t text[64] = L"";
      GetMenuStringW(GetMenu(window_), i, text, ARRAYSIZE(text), MF_BYPOSITION);
      add(text);
    }
    for (HWND child = GetWindow(window_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) add(TextOf(child));
    return repeated;
  }
  double ChartCount() const {
    kv::StripStatistics statistics{};
    kv::GetStripChartStatistics(window_, IDC_CHART_X, 0, &statistics);
    return statistics.count;
  }
  View& view() const { return *ViewOf(window_); }
  const RecordStore* Records() const { return view().source.Records(); }
  bool IsWorking() const { return view().source.IsWorking(); }
  bool EndsWork() const {
    return Soon([&] { return !IsWorking(); });
  }

  const kvtest::ReplacedImport save_{"GetSaveFileNameW", reinterpret_cast<void*>(ChoosePath)},
      open_{"GetOpenFileNameW", reinterpret_cast<void*>(ChoosePath)},
      box_{"MessageBoxW", reinterpret_cast<void*>(AnswerBox)};
  HWND window_ = nullptr;
  StartOptions options_;
  std::vector<fs::path> files_;
};

// As the shell sends it; the window frees it.
inline HDROP DroppedFile(const std::wstring& path) {
  const DROPFILES head{.pFiles = sizeof(DROPFILES), .fWide = TRUE};
  const SIZE_T text = (path.size() + 2) * sizeof(wchar_t);
  const HGLOBAL memory = GlobalAlloc(GHND, sizeof(head) + text);
  auto* bytes = static_cast<char*>(GlobalLock(memory));
  std::memcpy(bytes, &head, sizeof(head));
  std::memcpy(bytes + sizeof(head), path.c_str(), text - sizeof(wchar_t));
  GlobalUnlock(memory);
  return static_cast<HDROP>(memory);
}

}  // namespace camview
