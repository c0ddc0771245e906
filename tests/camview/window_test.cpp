// camview's window with a recording: what its user sees and does.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ios>
#include <string>
#include <utility>
#include <vector>

#include "camera/line_model.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camview/recording_loader.h"
#include "camview/resource_ids.h"
#include "camview/statistics_table.h"
#include "camview/status_line.h"
#include "camview/view_time.h"
#include "camview/window.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/control_class.h"
#include "kv/framework/file_path.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/strip_charts.h"
#include "kv/toolkit/text_tips.h"
#include "tests/camview/window_fixture.h"
#include "tests/support/replaced_import.h"
#include "tests/support/running_program.h"
#include "tests/support/test_window.h"

namespace camview {
namespace {

TEST_F(CamviewWindow, OpensARecordingAndGoesToTimes) {
  std::string bytes = Recording(1000, [](int i) { return i >= 600 && i < 790; });
  const size_t chunk = camera::EncodeChunks(0, RecordBytes(0)).size();
  bytes[camera::kRecordingHeaderBytes + 700 * chunk + 20] ^= 1;
  OpenFile(bytes);
  EXPECT_EQ(L"camview test.twr – Camera viewer", TextOf(window_));
  EXPECT_TRUE(Says(L"809 records in 0:10.0: too irregular to count losses; 1 silence, 1.9 s. Recorded from COM3, ") &&
              Says(L"Damaged in 1 place."))
      << camera::Narrow(Text(IDC_STATUS));
  EXPECT_EQ(L"1: 0, 300; 2: 500, 400; 4: 20, 700", Field());
  EXPECT_EQ(L"of 0:10.000", Text(IDC_LENGTH));

  TypeTime(L"0:05");
  EXPECT_EQ(L"1: 500, 300; 2: 500, 400; 4: 20, 700", Field());
  double cursor = 0;
  EXPECT_TRUE(kv::GetStripChartCursor(window_, IDC_CHART_Y, &cursor));
  EXPECT_EQ(5, cursor);
  Press(VK_OEM_PERIOD);
  Press(VK_RIGHT);  // in the timeline
  EXPECT_EQ(5.02, view().time.position);
  EXPECT_EQ(L"0:05.020", Text(IDC_TIME));
  Press(VK_OEM_COMMA);
  TypeTime(L"6.5");
  EXPECT_EQ(L"1: 599, 300; 2: 500, 400; 4: 20, 700", Field());
  TypeTime(L"7.5");
  EXPECT_EQ(L"", Field()) << "long after the last record";
  TypeTime(L"5.01");
  TypeTime(L"soon");
  EXPECT_TRUE(Says(L"\"soon\" is not a time or range."));
  EXPECT_EQ(5.01, view().time.position);
  Press(VK_ESCAPE);
  EXPECT_EQ(L"0:05.010", Text(IDC_TIME));

  // From event to event.
  TypeTime(L"1");
  Press(VK_F3);
  EXPECT_EQ(5.99, view().time.position);
  EXPECT_TRUE(Says(L"silence of 1.910 s")) << camera::Narrow(Text(IDC_STATUS));
  Press(VK_F3);
  EXPECT_EQ(8.89, view().time.position);
  Press(VK_F3, VK_SHIFT);
  EXPECT_EQ(5.99, view().time.position);
  TypeTime(L"5.01");

  // The list, the keys and the position have one current event.
  SetFocus(Control(IDC_TIMELINE));
  Press(VK_F4);
  EXPECT_TRUE(GetFocus() == Control(IDC_EVENTS) && !IsWindowVisible(Control(IDC_STATISTICS)));
  EXPECT_EQ(0u, kv::SelectedListRow(Control(IDC_EVENTS))) << "point 3 is never seen";
  Press(VK_DOWN);
  EXPECT_EQ(5.99, view().time.position);
  Press(VK_F3);
  EXPECT_EQ(2u, kv::SelectedListRow(Control(IDC_EVENTS)));
  EXPECT_EQ(L"Events, Time: 0:08.890, Event: damage, Length: 0.020 s, Amount: 57 bytes", Text(IDC_EVENTS));
  Press('C', VK_CONTROL);
  EXPECT_EQ(
      L"Time\tEvent\tLength\tAmount\r\n0:00.000\tnot seen\t10.000 s\tpoint 3\r\n"
      L"0:05.990\tsilence\t1.910 s\t\r\n0:08.890\tdamage\t0.020 s\t57 bytes\r\n",
      kvtest::ClipboardText(window_));
  chosenPath = File(L"camview events.csv");
  Command(IDM_EXPORT_EVENTS);
  EXPECT_EQ("seconds,duration,event,amount,point\n0.000000,10.000000,not seen,,3\n", BytesOf(chosenPath).substr(0, 67));
  SetFocus(Control(IDC_TIMELINE));
  Press(VK_F4);
  TypeTime(L"5.01");

  // The pointer previews a time, a click goes there.
  const auto move = [&](int x) {
    POINT at{x, 50};
    ClientToScreen(Control(IDC_CHART_X), &at);
    SetCursorPos(at.x, at.y);
    SendMessageW(Control(IDC_CHART_X), WM_MOUSEMOVE, 0, MAKELPARAM(x, 50));
    Pump();
  };
  move(200);
  move(300);
  EXPECT_EQ(5.01, view().time.position);
  EXPECT_NE(L"1: 501, 300; 2: 500, 400; 4: 20, 700", Field());
  SendMessageW(Control(IDC_CHART_X), WM_KEYDOWN, VK_ADD, 0);
  Pump();
  double other = 0;
  EXPECT_TRUE(kv::GetStripChartCursor(window_, IDC_CHART_X, &cursor) &&
              kv::GetStripChartCursor(window_, IDC_CHART_Y, &other));
  EXPECT_NEAR(cursor, other, 0.02);
  EXPECT_NEAR(cursor, view().time.Shown(), 0.02);
  SendMessageW(Control(IDC_CHART_X), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(300, 50));
  SendMessageW(Control(IDC_CHART_X), WM_LBUTTONUP, 0, MAKELPARAM(300, 50));
  Pump();
  EXPECT_NE(5.01, view().time.position);

  // After the pointer has left, a notification of a chart that still shows the cursor is late.
  SetCursorPos(0, 0);
  EXPECT_TRUE(Soon([&] { return std::isnan(view().time.hovered); }));
  view().time.hovered = 3;
  Update(view());
  SendMessageW(window_, WM_COMMAND, MAKEWPARAM(IDC_CHART_Y, kv::kStripNotifyCursor), 0);
  EXPECT_TRUE(std::isnan(view().time.hovered));
}

std::function<void(HMENU)> onMenu;

BOOL WINAPI TrackMenu(HMENU menu, UINT, int, int, int, HWND window, const RECT*) {
  SendMessageW(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), 0);
  onMenu(menu);
  return TRUE;
}

TEST_F(CamviewWindow, HasMenusOfItsParts) {
  const kvtest::ReplacedImport track("TrackPopupMenu", reinterpret_cast<void*>(TrackMenu));
  OpenFile(Recording(1000));
  const auto ask = [&](int id) { SendMessageW(window_, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(Control(id)), -1); };
  onMenu = [&](HMENU menu) {
    EXPECT_EQ(Control(IDC_CHART_Y), GetFocus());
    EXPECT_EQ(0u, GetMenuState(menu, IDM_SELECT_SHOWN, MF_BYCOMMAND) & MF_GRAYED);
    EXPECT_NE(0u, GetMenuState(menu, IDM_EXPORT, MF_BYCOMMAND) & MF_GRAYED);
    EXPECT_NE(0u, GetMenuState(menu, IDM_SPAN_FIRST + 7, MF_BYCOMMAND) & MF_CHECKED);
    Command(IDM_CLOSE_SOURCE);  // meanwhile
    PostMessageW(window_, WM_COMMAND, IDM_SPAN_FIRST, 0);
  };
  ask(IDC_CHART_Y);
  Pump();
  EXPECT_FALSE(view().source.IsOpen());
  bool isShown = false;
  onMenu = [&](HMENU) { isShown = true; };
  ask(IDC_PLAY);
  EXPECT_FALSE(isShown);
  onMenu = [&](HMENU) { DestroyWindow(window_); };
  ask(IDC_TIMELINE);
}

TEST_F(CamviewWindow, ListsRecentFiles) {
  const std::wstring names[] = {L"camview a & b.twr", L"camview two.twr"};
  Open({});
  kv::StripView shown{};
  SendMessageW(Control(IDC_CHART_Y), kv::kControlCommand, kv::kStripViewItem | kv::kCommandRead,
               reinterpret_cast<LPARAM>(&shown));
  EXPECT_EQ(768, shown.maximum) << "the whole field, also without a source";
  const HMENU file = GetSubMenu(GetMenu(window_), 0);
  const auto listed = [&] {
    SendMessageW(window_, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(file), 0);
    std::wstring list;
    for (UINT id = IDM_RECENT_FIRST; id < IDM_RECENT_FIRST + 9; ++id) {
      wchar_t text[200] = L"";
      GetMenuStringW(file, id, text, ARRAYSIZE(text), MF_BYCOMMAND);
      list += std::wstring(text).substr(0, std::wstring(text).find(L'\t')) + L'|';
    }
    return list.substr(0, list.find(L"||"));
  };
  EXPECT_EQ(L"", listed());
  for (const std::wstring& name : names) {
    std::ofstream(File(name.c_str()), std::ios::binary) << Recording(50);
    Load(files_.back());
  }
  EXPECT_EQ(L"&1 camview two.twr|&2 camview a && b.twr", listed());
  // The list changes under the open menu; the command is that of what was shown.
  Load(files_[0]);
  Command(IDM_RECENT_FIRST + 1);
  EXPECT_TRUE(EndsWork());
  EXPECT_EQ(L"camview a & b.twr – Camera viewer", TextOf(window_));
  EXPECT_EQ(L"&1 camview a && b.twr|&2 camview two.twr", listed());
  fs::remove(files_[1]);
  Command(IDM_RECENT_FIRST + 1);
  EXPECT_TRUE(Soon([&] { return !IsWorking() && !boxes.empty(); }));
  EXPECT_EQ(L"&1 camview a && b.twr", listed());
  // No more than eight.
  for (int i = 0; i < 9; ++i) {
    std::ofstream(File((L"camview " + std::to_wstring(i) + L".twr").c_str()), std::ios::binary) << Recording(50);
    Load(files_.back());
  }
  EXPECT_NE(listed().find(L"|&8 camview 1.twr"), std::wstring::npos);
}

TEST_F(CamviewWindow, PlaysToTheEndAtAnySpeed) {
  OpenFile(Recording(1000));
  SetFocus(Control(IDC_TIMELINE));
  Press(VK_SPACE);
  EXPECT_EQ(L"Pa&use", Text(IDC_PLAY));
  EXPECT_TRUE(Soon([&] { return view().time.position > 0.3; }));
  Press(VK_SPACE);
  const double paused = view().time.position;
  for (int i = 0; i < 9; ++i) Press(VK_UP, VK_CONTROL);
  EXPECT_EQ(100, view().time.speed);
  EXPECT_EQ(L"100 ×", Text(IDC_SPEED));
  EXPECT_EQ(paused, view().time.position);
  Press(VK_SPACE);
  EXPECT_TRUE(Soon([&] { return Text(IDC_PLAY) == L"Pl&ay"; }));
  EXPECT_EQ(10, view().time.position);
  EXPECT_TRUE(Soon([&] { return view().tickMs == 0; })) << "no timer while nothing moves";
}

TEST_F(CamviewWindow, SumsUpAndExportsWhatIsSelected) {
  const std::string recording = Recording(1000, [](int i) { return i == 499 || i == 500; });
  OpenFile(recording);
  SetFocus(Control(IDC_TIMELINE));
  EXPECT_FALSE(IsWindowEnabled(Control(IDC_EXPORT)));
  Command(IDM_SPAN_FIRST);  // 1 s
  GoTo(5);
  Press('M', VK_CONTROL);
  Settle();
  EXPECT_EQ(L"Selected: 0:04.500 to 0:05.500 (1.000 s)", Text(IDC_SUMMARY));
  EXPECT_EQ(L"98 records, 98.0 a second; too irregular to count losses", Text(IDC_COUNTS)) << "no line is so fast";
  EXPECT_EQ(L"No silence", Text(IDC_SILENCES));
  EXPECT_EQ(L"1 record", RecordsAsText(1));
  const auto save = [&](const wchar_t* name, int command) {
    chosenPath = File(name);
    Command(command);
    EXPECT_TRUE(EndsWork());
  };
  save(L"camview range.csv", IDM_EXPORT);
  EXPECT_TRUE(Says(L"98 records written to camview range.csv.")) << camera::Narrow(Text(IDC_STATUS));
  const std::string csv = BytesOf(chosenPath);
  EXPECT_EQ(99, std::ranges::count(csv, '\n'));
  save(L"camview range.twr", IDC_EXPORT);
  EXPECT_EQ(camera::kRecordingMagic, BytesOf(chosenPath).substr(0, 8));
  save(L"camview image.png", IDM_SAVE_IMAGE);
  EXPECT_EQ("\x89PNG\r\n", BytesOf(chosenPath).substr(0, 6));
  EXPECT_LT(4000u, BytesOf(chosenPath).size());
  for (const int command : {IDM_SAVE_IMAGE, IDM_EXPORT_EVENTS, IDM_EXPORT}) {
    save(L"camview test.twr", command);
    EXPECT_TRUE(Says(L"camview test.twr was not written: It is the recording that is shown."));
  }
  EXPECT_EQ(recording, BytesOf(chosenPath));

  // What cannot be shown leaves what is.
  std::ofstream(File(L"camview foreign.twr")) << "no recording";
  chosenPath = files_.back();
  SetFocus(Control(IDC_CHART_X));
  SendMessageW(window_, WM_COMMAND, IDM_OPEN, 0);
  Press(VK_ESCAPE);
  EXPECT_TRUE(view().time.selection) << "cancels what runs first";
  EXPECT_TRUE(EndsWork());
  ASSERT_EQ(1u, boxes.size());
  EXPECT_EQ(L"camview foreign.twr is not a recording.", boxes[0]);
  EXPECT_EQ(L"camview test.twr – Camera viewer", TextOf(window_));
  EXPECT_TRUE(Records());
  Press(VK_ESCAPE);
  EXPECT_FALSE(view().time.selection);
  EXPECT_FALSE(IsWindowEnabled(Control(IDC_EXPORT)));
}

TEST_F(CamviewWindow, SelectsATypedRangeAndComparesWithASecondCursor) {
  OpenFile(Recording(1000));
  const ViewTime& time = view().time;
  TypeTime(L"2 \x2013 4.5");
  EXPECT_TRUE(time.selection == TimeRange(2, 4.5) && time.position == 2) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_NEAR(2.75, time.shown.Length(), 1e-9);
  TypeTime(L"4 - 2");
  EXPECT_TRUE(Says(L"\"4 - 2\" ends before it begins."));
  TypeTime(L"20 + 5");
  EXPECT_TRUE(Says(L"\"20 + 5\" is outside of 0:00.000 to 0:10.000."));
  EXPECT_TRUE(time.selection == TimeRange(2, 4.5) && time.position == 2);

  // Both charts show both cursors, wherever they are set.
  const auto cursorsOf = [&](int chart) {
    std::pair<double, double> times(-1, -1);
    kv::GetStripChartCursor(window_, chart, &times.first);
    kv::GetStripChartCursorB(window_, chart, &times.second);
    return times;
  };
  SetFocus(Control(IDC_TIMELINE));
  Press('B');
  GoTo(3);
  EXPECT_EQ(std::pair(3.0, 2.0), cursorsOf(IDC_CHART_X));
  EXPECT_EQ(cursorsOf(IDC_CHART_X), cursorsOf(IDC_CHART_Y));
  SendMessageW(Control(IDC_CHART_Y), WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL, MAKELPARAM(200, 50));
  SendMessageW(Control(IDC_CHART_Y), WM_LBUTTONUP, MK_CONTROL, MAKELPARAM(200, 50));
  Pump();
  EXPECT_NE(2, time.cursorB);
  EXPECT_EQ(cursorsOf(IDC_CHART_X), cursorsOf(IDC_CHART_Y));
  EXPECT_TRUE(time.selection);
  SendMessageW(Control(IDC_CHART_Y), WM_KEYDOWN, VK_ESCAPE, 0);
  Pump();
  EXPECT_EQ(std::pair(3.0, -1.0), cursorsOf(IDC_CHART_X));
  EXPECT_FALSE(time.selection);
}

TEST_F(CamviewWindow, WarnsOfARecordingWithLossesOrSilences) {
  LoadedRecording recording;
  recording.records = 100;
  recording.hasHeader = true;
  const auto markOf = [&](const camera::LineFigures& line) {
    return DescribeRecording(recording, DescribeLine(line)).mark;
  };
  EXPECT_EQ(StatusMark::kGood, markOf({.lost = 0, .lostAtMost = 1}));
  EXPECT_EQ(StatusMark::kWarning, markOf({.lost = 1, .lostAtLeast = 1, .lostAtMost = 1}));
  EXPECT_EQ(StatusMark::kWarning, markOf({.silences = 1, .silentSeconds = 2}));
  const camera::LineFigures given{.seconds = 10,
                                  .records = 890,
                                  .recordsPerSecond = 89,
                                  .basis = camera::LossBasis::kGiven,
                                  .lost = 40,
                                  .lostAtLeast = 38,
                                  .lostAtMost = 42};
  EXPECT_EQ(L"890 records, 89.0 a second; about 40 lost (38 to 42)", CountsAsText(given));
  EXPECT_EQ(L"1 record", CountsAsText({.records = 1}));
  EXPECT_EQ(L"1 byte", BytesAsText(1));
}

TEST_F(CamviewWindow, CountsLossesByTheCamerasRate) {
  OpenFile(Recording(4000, [](int i) { return i % 2 == 1 || i == 1000 || i == 1002 || (i > 2000 && i < 2400); }));
  EXPECT_EQ(L"1,799 records, 45.0 a second; about 2 lost", Text(IDC_COUNTS).substr(0, 42));
  EXPECT_EQ(L"1 silence of 4.000 s (10.0 %) at 0:20.0", Text(IDC_SILENCES));
  const auto enter = [&](const wchar_t* rate) {
    SetFocus(Control(IDC_RATE));
    SetDlgItemTextW(window_, IDC_RATE, rate);
    Press(VK_RETURN);
  };
  enter(L"200");
  EXPECT_TRUE(Says(L"\"200\" is not a rate from 2 to 94.6 records a second.")) << camera::Narrow(Text(IDC_STATUS));
  enter(L"50");
  Settle();
  EXPECT_EQ(L"1,799 records, 45.0 a second; 2 lost (0.1 %)", Text(IDC_COUNTS));
  SetDlgItemTextW(window_, IDC_RATE, L"92,9");
  Press(VK_ESCAPE);
  EXPECT_EQ(L"50", Text(IDC_RATE)) << "what counts, not what was not entered";
  enter(L"");
  Settle();
  EXPECT_NE(Text(IDC_COUNTS).find(L"about 2 lost"), std::wstring::npos);
  enter(L"50");
  Load(files_[0]);
  Settle();
  EXPECT_EQ(L"1,799 records, 45.0 a second; 2 lost (0.1 %)", Text(IDC_COUNTS)) << "of the next recording, too";
}

TEST_F(CamviewWindow, ChartsShowEachRecordOfALongRecordingOnceTheyAreZoomed) {
  OpenFile(Recording(200'000));
  Command(IDM_SPAN_FIRST + 7);  // the whole recording
  EXPECT_EQ(200'000, ChartCount());
  Command(IDM_SPAN_FIRST + 1);  // 5 s
  GoTo(1000);
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

TEST_F(CamviewWindow, OpensADroppedFileAndIsCanceled) {
  OpenFile(Recording(1000));
  std::ofstream(File(L"camview dropped.twr"), std::ios::binary) << Recording(300'000);
  SendMessageW(Control(IDC_CHART_Y), WM_DROPFILES, reinterpret_cast<WPARAM>(DroppedFile(files_.back())), 0);
  EXPECT_TRUE(IsWindowVisible(Control(IDC_PROGRESS)));
  SendMessageW(window_, WM_COMMAND, IDCANCEL, 0);
  EXPECT_TRUE(EndsWork());
  EXPECT_FALSE(IsWindowVisible(Control(IDC_PROGRESS)));
  EXPECT_TRUE(boxes.empty());
  EXPECT_EQ(L"Reading was canceled.", Text(IDC_STATUS));
  EXPECT_EQ(L"camview test.twr – Camera viewer", TextOf(window_));
  SendMessageW(window_, WM_DROPFILES, reinterpret_cast<WPARAM>(DroppedFile(files_.back())), 0);
  EXPECT_TRUE(EndsWork());
  EXPECT_EQ(L"camview dropped.twr – Camera viewer", TextOf(window_));
  EXPECT_EQ(300'000, Records()->End());
}

TEST_F(CamviewWindow, TheProgramTakesAFileAndALanguage) {
  std::ofstream(File(L"camview test.twr"), std::ios::binary) << Recording(1000);
  wchar_t folder[kv::kPathCharacters] = L"";
  kv::ProgramDirectory(folder);
  const kvtest::RunningProgram program(fs::path(folder) / L"camview.exe",
                                       L"\"" + files_.back().wstring() + L"\" --language de");
  HWND window = nullptr;
  EXPECT_TRUE(
      Soon([&] { return (window = program.Find(L"kvDialog", L"camview test.twr – Kamera-Viewer")) != nullptr; }));
  EXPECT_EQ(0u, program.Close(window));
}

TEST_F(CamviewWindow, AllTextsFitInBothLanguages) {
  OpenFile(Recording(1000));
  Command(IDM_SELECT_SHOWN);
  SetWindowPos(window_, nullptr, 0, 0, 1, 1, SWP_NOMOVE | SWP_NOZORDER);
  MINMAXINFO limits{};
  SendMessageW(window_, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
  SetWindowPos(window_, nullptr, 0, 0, limits.ptMinTrackSize.x, limits.ptMinTrackSize.y, SWP_NOMOVE | SWP_NOZORDER);
  for (const int language : {0, 1}) {
    std::vector<std::wstring> truncated;
    kv::CollectTruncatedTexts(&truncated);  // from now on: lists do not draw rows again that have not changed
    Command(IDM_LANGUAGE_FIRST + language);
    Settle();
    EXPECT_EQ(language ? L"camview test.twr – Kamera-Viewer" : L"camview test.twr – Camera viewer", TextOf(window_));
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    kv::CollectTruncatedTexts(nullptr);
    for (HWND child = GetWindow(window_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
      truncated.push_back(kv::TruncatedTextOf(child));
    }
    EXPECT_EQ(L"", RepeatedKeys());
    for (const std::wstring& text : truncated) EXPECT_EQ("", camera::Narrow(text)) << language;
  }
}

}  // namespace
}  // namespace camview
