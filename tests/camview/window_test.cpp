// camview's window with a recorded file and with a port: what its user sees and does.
#include <gtest/gtest.h>
#include <windows.h>

#include <commdlg.h>
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
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camview/recording_loader.h"
#include "camview/resource_ids.h"
#include "camview/view.h"
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
#include "tests/support/replaced_import.h"
#include "tests/support/running_program.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"

namespace camview {
namespace {

namespace fs = std::filesystem;
using kvtest::TextOf;

std::wstring chosenPath;          // what the user answers to the question for a file
std::vector<std::wstring> boxes;  // what message boxes said

BOOL WINAPI ChoosePath(OPENFILENAMEW* request) {
  lstrcpynW(request->lpstrFile, chosenPath.c_str(), static_cast<int>(request->nMaxFile));
  return TRUE;
}

int WINAPI AnswerBox(HWND, const wchar_t* text, const wchar_t*, UINT) {
  boxes.emplace_back(text);
  return IDYES;
}

fs::path PathOf(const wchar_t* name) {
  return fs::temp_directory_path() / name;
}

std::string BytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string RecordBytes(int number) {
  const kv::CameraPoint points[kv::kPointCount] = {{number % 1000, 300}, {500, 400}, {1023, 1023}, {20, 700}};
  char record[kv::kRecordLength];
  kv::WriteRecord(points, record);
  return {record, sizeof(record)};
}

// A hundred records a second; those for which `isMissing` holds are left out.
std::string Recording(int count, const std::function<bool(int)>& isMissing = [](int) { return false; }) {
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
    ASSERT_TRUE(Soon([&] { return RecordsOf(view()) && std::isnan(view().statisticsDue); }));
  }
  fs::path File(const wchar_t* name) {
    files_.push_back(PathOf(name));
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
  bool Soon(const std::function<bool()>& condition) const {
    for (const DWORD start = GetTickCount(); GetTickCount() - start < 20000; Sleep(5)) {
      Pump();
      if (condition()) return true;
    }
    return false;
  }
  void Press(WPARAM key, int heldKey = 0) const {
    BYTE keys[256] = {};
    keys[heldKey] = 0x80;
    SetKeyboardState(keys);
    PostMessageW(GetFocus(), WM_KEYDOWN, key, 1);
    Pump();
    keys[heldKey] = 0;
    SetKeyboardState(keys);
  }
  void Command(int id) const {
    SendMessageW(window_, WM_COMMAND, static_cast<WPARAM>(id), 0);
    Pump();
  }
  // Until the table is up to date.
  void Settle() const {
    EXPECT_TRUE(Soon([&] { return std::isnan(view().statisticsDue); }));
  }
  HWND Control(int id) const { return GetDlgItem(window_, id); }
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

  const kvtest::ReplacedImport save_{"GetSaveFileNameW", reinterpret_cast<void*>(ChoosePath)},
      open_{"GetOpenFileNameW", reinterpret_cast<void*>(ChoosePath)},
      box_{"MessageBoxW", reinterpret_cast<void*>(AnswerBox)};
  HWND window_ = nullptr;
  StartOptions options_;
  std::vector<fs::path> files_;
};

TEST_F(CamviewWindow, OpensARecordingAndGoesToTimes) {
  std::string bytes = Recording(1000, [](int i) { return i >= 600 && i < 790; });
  const size_t chunk = camera::EncodeChunks(0, RecordBytes(0)).size();
  bytes[camera::kRecordingHeaderBytes + 700 * chunk + 20] ^= 1;
  OpenFile(bytes);
  EXPECT_EQ(L"camview test.twr – Camera viewer", TextOf(window_));
  EXPECT_TRUE(Says(L"809 records in 0:10.0. Damaged in 1 place.")) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_EQ(L"1: 0, 300; 2: 500, 400; 4: 20, 700", Field());
  EXPECT_EQ(L"of 0:10.000", Text(IDC_LENGTH));

  const auto goTo = [&](const wchar_t* time) {
    Press('G', VK_CONTROL);
    EXPECT_EQ(Control(IDC_TIME), GetFocus());
    SetDlgItemTextW(window_, IDC_TIME, time);
    Press(VK_RETURN);
  };
  goTo(L"0:05");
  EXPECT_EQ(L"1: 500, 300; 2: 500, 400; 4: 20, 700", Field());
  double cursor = 0;
  EXPECT_TRUE(kv::GetStripChartCursor(window_, IDC_CHART_Y, &cursor));
  EXPECT_EQ(5, cursor);
  Press(VK_OEM_PERIOD);
  Press(VK_RIGHT);  // in the timeline
  EXPECT_EQ(5.02, view().playback.position);
  EXPECT_EQ(L"0:05.020", Text(IDC_TIME));
  Press(VK_OEM_COMMA);
  goTo(L"6.5");
  EXPECT_EQ(L"1: 599, 300; 2: 500, 400; 4: 20, 700", Field());
  goTo(L"7.5");
  EXPECT_EQ(L"", Field()) << "long after the last record";
  goTo(L"5.01");
  goTo(L"soon");
  EXPECT_TRUE(Says(L"\"soon\" is not a time."));
  EXPECT_EQ(5.01, view().playback.position);
  Press(VK_ESCAPE);
  EXPECT_EQ(L"0:05.010", Text(IDC_TIME));

  // The pointer previews a time, a click goes there.
  const auto move = [&](int x) {
    SendMessageW(Control(IDC_CHART_X), WM_MOUSEMOVE, 0, MAKELPARAM(x, 50));
    Pump();
  };
  move(200);
  move(300);
  EXPECT_EQ(5.01, view().playback.position);
  EXPECT_NE(L"1: 501, 300; 2: 500, 400; 4: 20, 700", Field());
  SendMessageW(Control(IDC_CHART_X), WM_KEYDOWN, VK_ADD, 0);
  Pump();
  double other = 0;
  EXPECT_TRUE(kv::GetStripChartCursor(window_, IDC_CHART_X, &cursor) &&
              kv::GetStripChartCursor(window_, IDC_CHART_Y, &other));
  EXPECT_NEAR(cursor, other, 0.02);
  EXPECT_NEAR(cursor, ShownTime(view()), 0.02);
  SendMessageW(Control(IDC_CHART_X), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(300, 50));
  SendMessageW(Control(IDC_CHART_X), WM_LBUTTONUP, 0, MAKELPARAM(300, 50));
  Pump();
  EXPECT_NE(5.01, view().playback.position);
}

TEST_F(CamviewWindow, PlaysToTheEndAtAnySpeed) {
  OpenFile(Recording(1000));
  SetFocus(Control(IDC_TIMELINE));
  Press(VK_SPACE);
  EXPECT_EQ(L"Pa&use", Text(IDC_PLAY));
  EXPECT_TRUE(Soon([&] { return view().playback.position > 0.3; }));
  Press(VK_SPACE);
  const double paused = view().playback.position;
  for (int i = 0; i < 9; ++i) Press(VK_UP, VK_CONTROL);
  EXPECT_EQ(100, view().playback.speed);
  EXPECT_EQ(L"100 ×", Text(IDC_SPEED));
  EXPECT_EQ(paused, view().playback.position);
  Press(VK_SPACE);
  EXPECT_TRUE(Soon([&] { return Text(IDC_PLAY) == L"Pl&ay"; }));
  EXPECT_EQ(10, view().playback.position);
  EXPECT_TRUE(Soon([&] { return !view().isTicking; })) << "no timer while nothing moves";
}

TEST_F(CamviewWindow, SumsUpAndExportsWhatIsMarked) {
  const std::string recording = Recording(1000, [](int i) { return i == 499 || i == 500; });
  OpenFile(recording);
  SetFocus(Control(IDC_TIMELINE));
  EXPECT_FALSE(IsWindowEnabled(Control(IDC_EXPORT)));
  Command(IDM_SPAN_FIRST);  // 1 s
  SeekTo(view(), 5);
  Press('M', VK_CONTROL);
  Settle();
  EXPECT_EQ(L"Marked: 0:04.500 to 0:05.500 (1.000 s)", Text(IDC_SUMMARY));
  EXPECT_EQ(L"99 records, 98.0 a second, 2 lost", Text(IDC_COUNTS));
  const auto save = [&](const wchar_t* name, int command) {
    chosenPath = File(name);
    Command(command);
    EXPECT_TRUE(Soon([&] { return !view().isExporting; }));
  };
  save(L"camview stretch.csv", IDM_EXPORT);
  EXPECT_TRUE(Says(L"99 records were written to camview stretch.csv.")) << camera::Narrow(Text(IDC_STATUS));
  const std::string csv = BytesOf(chosenPath);
  EXPECT_EQ(100, std::ranges::count(csv, '\n'));
  save(L"camview stretch.twr", IDC_EXPORT);
  EXPECT_EQ(camera::kRecordingMagic, BytesOf(chosenPath).substr(0, 8));
  save(L"camview image.png", IDM_SAVE_IMAGE);
  EXPECT_EQ("\x89PNG\r\n", BytesOf(chosenPath).substr(0, 6));
  EXPECT_LT(4000u, BytesOf(chosenPath).size());
  Press(VK_ESCAPE);
  EXPECT_FALSE(view().isMarked);
  EXPECT_FALSE(IsWindowEnabled(Control(IDC_EXPORT)));

  EXPECT_EQ(recording, BytesOf(File(L"camview test.twr")));

  // What cannot be shown leaves what is.
  std::ofstream(File(L"camview foreign.twr")) << "no recording";
  chosenPath = files_.back();
  Press('O', VK_CONTROL);
  EXPECT_TRUE(Soon([&] { return !view().isLoading; }));
  ASSERT_EQ(1u, boxes.size());
  EXPECT_EQ(L"camview foreign.twr is not a recording.", boxes[0]);
  EXPECT_EQ(L"camview test.twr – Camera viewer", TextOf(window_));
  EXPECT_TRUE(RecordsOf(view()));
}

TEST_F(CamviewWindow, ChartsShowEachRecordOfALongRecordingOnceTheyAreZoomed) {
  OpenFile(Recording(200'000));
  Command(IDM_SPAN_FIRST + 7);  // the whole recording
  EXPECT_GT(60'000, ChartCount());
  Command(IDM_SPAN_FIRST + 1);  // 5 s
  SeekTo(view(), 1000);
  EXPECT_NEAR(500, ChartCount(), 2);
  // By hand: the wheel out and in again, which ends where it began.
  for (const int notches : {-20, 20}) {
    SendMessageW(Control(IDC_CHART_X), WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA * notches), 0);
    Pump();
  }
  EXPECT_NEAR(500, ChartCount(), 2);
  kv::StripTimeRange one{}, other{};
  EXPECT_TRUE(kv::GetStripChartTimes(window_, IDC_CHART_X, &one) &&
              kv::GetStripChartTimes(window_, IDC_CHART_Y, &other));
  EXPECT_NEAR(one.from, other.from, 1e-6);
  SetFocus(Control(IDC_TIMELINE));
  Press(VK_END);
  EXPECT_EQ(L"1: 999, 300; 2: 500, 400; 4: 20, 700", Field());
}

// As the shell sends it; the window frees it.
HDROP DroppedFile(const std::wstring& path) {
  const DROPFILES head{.pFiles = sizeof(DROPFILES), .fWide = TRUE};
  const SIZE_T text = (path.size() + 2) * sizeof(wchar_t);
  const HGLOBAL memory = GlobalAlloc(GHND, sizeof(head) + text);
  auto* bytes = static_cast<char*>(GlobalLock(memory));
  std::memcpy(bytes, &head, sizeof(head));
  std::memcpy(bytes + sizeof(head), path.c_str(), text - sizeof(wchar_t));
  GlobalUnlock(memory);
  return static_cast<HDROP>(memory);
}

TEST_F(CamviewWindow, OpensADroppedFileAndIsCancelled) {
  OpenFile(Recording(1000));
  std::ofstream(File(L"camview dropped.twr"), std::ios::binary) << Recording(300'000);
  SendMessageW(Control(IDC_CHART_Y), WM_DROPFILES, reinterpret_cast<WPARAM>(DroppedFile(files_.back())), 0);
  EXPECT_TRUE(IsWindowVisible(Control(IDC_PROGRESS)));
  SendMessageW(window_, WM_COMMAND, IDCANCEL, 0);
  EXPECT_TRUE(Soon([&] { return !view().isLoading; }));
  EXPECT_FALSE(IsWindowVisible(Control(IDC_PROGRESS)));
  EXPECT_TRUE(boxes.empty());
  EXPECT_EQ(L"Reading was cancelled.", Text(IDC_STATUS));
  EXPECT_EQ(L"camview test.twr – Camera viewer", TextOf(window_));
  SendMessageW(window_, WM_DROPFILES, reinterpret_cast<WPARAM>(DroppedFile(files_.back())), 0);
  EXPECT_TRUE(Soon([&] { return !view().isLoading; }));
  EXPECT_EQ(L"camview dropped.twr – Camera viewer", TextOf(window_));
  EXPECT_EQ(300'000, RecordsOf(view())->End());
}

TEST_F(CamviewWindow, TheProgramTakesAFileAndALanguage) {
  std::ofstream(File(L"camview test.twr"), std::ios::binary) << Recording(1000);
  wchar_t folder[kv::kPathCharacters] = L"";
  kv::ProgramDirectory(folder);
  const kvtest::RunningProgram program(fs::path(folder) / L"camview.exe",
                                       L"\"" + files_.back().wstring() + L"\" --language de");
  HWND window = nullptr;
  EXPECT_TRUE(
      Soon([&] { return (window = program.Find(L"kvDialog", L"camview test.twr – Kamerabetrachter")) != nullptr; }));
  EXPECT_EQ(0u, program.Close(window));
}

TEST_F(CamviewWindow, AllTextsFitInBothLanguages) {
  OpenFile(Recording(1000));
  Command(IDM_MARK_SHOWN);
  SetWindowPos(window_, nullptr, 0, 0, 1, 1, SWP_NOMOVE | SWP_NOZORDER);
  RECT smallest{0, 0, 1, 1};
  SendMessageW(window_, WM_SIZING, WMSZ_BOTTOMRIGHT, reinterpret_cast<LPARAM>(&smallest));
  SetWindowPos(window_, nullptr, 0, 0, smallest.right, smallest.bottom, SWP_NOMOVE | SWP_NOZORDER);
  for (const int language : {0, 1}) {
    Command(IDM_LANGUAGE_FIRST + language);
    Settle();
    EXPECT_EQ(language ? L"camview test.twr – Kamerabetrachter" : L"camview test.twr – Camera viewer", TextOf(window_));
    std::vector<std::wstring> truncated;
    kv::CollectTruncatedTexts(&truncated);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    kv::CollectTruncatedTexts(nullptr);
    for (HWND child = GetWindow(window_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
      truncated.push_back(kv::TruncatedTextOf(child));
    }
    EXPECT_EQ(L"", RepeatedKeys());
    for (const std::wstring& text : truncated) EXPECT_EQ("", camera::Narrow(text)) << language;
  }
}

TEST_F(CamviewWindow, LosesNothingOfAPortThatComesAndGoes) {
  if (!kvtest::SerialLine::CanUnplug()) GTEST_SKIP() << kvtest::kNoComPair;
  kvtest::SerialLine line;
  ASSERT_TRUE(line.isPlugged());
  const auto [port, farPort] = kvtest::GivenComPair();
  auto camera = std::make_unique<kvtest::PlayedCamera>(farPort);
  Open({.port = port});
  EXPECT_TRUE(Soon([&] { return Says(L"has sent nothing for"); })) << camera::Narrow(Text(IDC_STATUS));
  int sent = 0;
  const auto send = [&](int count) {
    for (int i = 0; i < count; ++i, ++sent) camera->Send(RecordBytes(sent));
    return Soon([&] { return RecordsOf(view()) && RecordsOf(view())->End() == sent; });
  };
  EXPECT_TRUE(send(10));
  EXPECT_TRUE(Soon([&] { return Says(L"records a second."); })) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_EQ(L"1: 9, 300; 2: 500, 400; 4: 20, 700", Field());

  chosenPath = File(L"camview live.twr");
  SetFocus(Control(IDC_TIMELINE));
  Press('R');
  EXPECT_NE(Text(IDC_RECORDING).find(L"Recording to camview live.twr"), std::wstring::npos);
  EXPECT_TRUE(send(5));
  Press(VK_SPACE);  // hold: nothing is lost behind it
  EXPECT_EQ(L"Resu&me", Text(IDC_PLAY));
  EXPECT_TRUE(send(5));
  EXPECT_EQ(L"1: 14, 300; 2: 500, 400; 4: 20, 700", Field());
  Press(VK_SPACE);
  EXPECT_TRUE(Soon([&] { return Field() == L"1: 19, 300; 2: 500, 400; 4: 20, 700"; }));

  camera.reset();
  line.Unplug();
  EXPECT_TRUE(Soon([&] { return Says(L"is gone; waiting for it"); })) << camera::Narrow(Text(IDC_STATUS));
  line.PlugIn();
  camera = std::make_unique<kvtest::PlayedCamera>(farPort);
  EXPECT_TRUE(Soon([&] { return Says(L"has sent nothing for"); })) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_TRUE(send(5));
  EXPECT_TRUE(Soon([&] {
    camera->Send("garbage ");
    return Says(L"sends bytes, but no records");
  }));
  DestroyWindow(window_);
  RecordingLoader loader;
  loader.Start(camera::Narrow(chosenPath));
  EXPECT_TRUE(Soon([&] { return loader.IsDone(); }));
  const LoadedRecording recorded = loader.Take();
  EXPECT_FALSE(recorded.isTruncated);
  EXPECT_EQ(15, recorded.records);
}

}  // namespace
}  // namespace camview
