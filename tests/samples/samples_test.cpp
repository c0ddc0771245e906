// Starts, checks, operates and closes each sample.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <utility>

#include "kv/framework/guards.h"
#include "kv/toolkit/dde_conversation.h"
#include "samples/instrument_panel/ids.h"
#include "tests/support/running_program.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::TextOf;
using kvtest::WaitUntil;
constexpr std::chrono::seconds kTimeout(20);

// A running sample and its window.
class Sample : public kvtest::RunningProgram {
 public:
  Sample(const std::wstring& name, const wchar_t* caption)
      : RunningProgram(kvtest::BuildFolder(L"samples") / (name + L".exe"), L"") {
    EXPECT_TRUE(WaitUntil([&] { return (window_ = Find(L"kvDialog", caption)) != nullptr; }, kTimeout));
  }
  HWND window() const { return window_; }
  HWND Control(int id) const { return GetDlgItem(window_, id); }
  // Whether a part of the client area has at least that many colors.
  bool Shows(RECT part, size_t colors) const {
    return WaitUntil(
        [&] {
          const kv::WindowDc dc(window_);
          std::set<COLORREF> seen;
          for (int y = part.top; y < part.bottom; y += 3) {
            for (int x = part.left; x < part.right; x += 2) seen.insert(GetPixel(dc, x, y));
          }
          return seen.size() >= colors;
        },
        kTimeout);
  }
  RECT PlaceOf(int id) const { return kvtest::PlaceOf(window_, id); }
  DWORD Close() const { return RunningProgram::Close(window_); }

 private:
  HWND window_ = nullptr;
};

TEST(Samples, InstrumentPanelShowsItsInstrumentsInThreeLanguages) {
  RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\korvel\\Configuration\\instrument_panel");
  Sample panel(L"instrument_panel", L"Instrument panel");
  for (int id = IDC_SPEED; id <= IDC_CLOCK; ++id) EXPECT_TRUE(panel.Shows(panel.PlaceOf(id), 5)) << id;
  const auto leftOf = [&](int id) { return panel.PlaceOf(id).left; };
  const LONG speed = leftOf(IDC_SPEED);
  const auto show = [&](int language) {
    SendMessageW(panel.window(), WM_COMMAND, IDM_FIRST_LANGUAGE + language, 0);
    return TextOf(panel.window());
  };
  EXPECT_EQ(L"Instrumententafel", show(1));
  EXPECT_EQ(L"Ein Doppelklick kopiert das Bild eines Instruments.", TextOf(panel.Control(IDC_HINT)));
  EXPECT_EQ(L"لوحة العدادات", show(15));
  EXPECT_TRUE(GetWindowLongW(panel.window(), GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
  EXPECT_FALSE(GetWindowLongW(panel.Control(IDC_SPEED), GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
  EXPECT_EQ(L"Instrument panel", show(0));
  EXPECT_EQ(speed, leftOf(IDC_SPEED));
  EXPECT_EQ(0u, panel.Close());
}

TEST(Samples, FirstPanelShowsAndSavesWhatItsThreadReads) {
  Sample panel(L"first_panel", L"First panel");
  constexpr int kGauge = 101, kChart = 102, kSave = 103, kNameField = 0x47C;
  EXPECT_TRUE(panel.Shows(panel.PlaceOf(kGauge), 5) && panel.Shows(panel.PlaceOf(kChart), 4));
  const std::filesystem::path file = std::filesystem::temp_directory_path() / L"kv first panel.csv";
  std::filesystem::remove(file);
  HWND dialog = nullptr;
  PostMessageW(panel.Control(kSave), BM_CLICK, 0, 0);
  ASSERT_TRUE(WaitUntil([&] { return (dialog = FindWindowW(L"#32770", L"Save the values")) != nullptr; }, kTimeout));
  ASSERT_TRUE(WaitUntil([&] { return !TextOf(GetDlgItem(dialog, kNameField)).empty(); }, kTimeout));
  SendDlgItemMessageW(dialog, kNameField, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(file.c_str()));
  PostMessageW(dialog, WM_COMMAND, IDOK, 0);
  EXPECT_TRUE(
      WaitUntil([&] { return std::filesystem::exists(file) && std::filesystem::file_size(file) > 100; }, kTimeout));
  EXPECT_EQ(0u, panel.Close());
  std::filesystem::remove(file);
}

TEST(Samples, MillionRowsAreShownSortedAndNavigatedByKeys) {
  Sample readings(L"million_rows", L"A million readings");
  constexpr int kRows = 101, kStatus = 102;
  HWND list = readings.Control(kRows);
  EXPECT_TRUE(readings.Shows(readings.PlaceOf(kRows), 5));
  SendMessageW(list, WM_KEYDOWN, VK_END, 0);
  const auto status = [&](const wchar_t* wanted) {
    return WaitUntil([&] { return TextOf(readings.Control(kStatus)) == wanted; }, kTimeout);
  };
  EXPECT_TRUE(status(L"Row 1000000 of 1000000: reading 1000000"));
  for (UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP}) SendMessageW(list, message, 0, MAKELPARAM(3, 3));
  EXPECT_TRUE(status(L"Row 1000000 of 1000000: reading 1"));  // now in descending order
  EXPECT_EQ(0u, readings.Close());
}

TEST(Samples, TrackIsExportedInThreeWays) {
  Sample track(L"track_export", L"Track export");
  constexpr int kKml = 101, kWaypoints = 102, kSpreadsheet = 103, kStatus = 104, kNameField = 0x47C;
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / L"kv track Ω";
  std::filesystem::create_directory(folder);
  const auto says = [&](const wchar_t* text) {  // dispatches messages: connecting queries this process's windows, too
    return WaitUntil([&] { return TextOf(track.Control(kStatus)) == text; }, kTimeout);
  };
  // Without an extension: the dialog appends the proposed one.
  for (const auto& [button, file] : {std::pair(kKml, L"flight.kml"), {kWaypoints, L"flight.txt"}}) {
    HWND dialog = nullptr;
    PostMessageW(track.Control(button), BM_CLICK, 0, 0);
    ASSERT_TRUE(WaitUntil([&] { return (dialog = FindWindowW(L"#32770", L"Save the flight")) != nullptr; }, kTimeout));
    ASSERT_TRUE(WaitUntil([&] { return TextOf(GetDlgItem(dialog, kNameField)) == file; }, kTimeout));
    const std::wstring name = (folder / L"flight").wstring();
    SendDlgItemMessageW(dialog, kNameField, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
    PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(says((L"Written: " + (folder / file).wstring()).c_str()));
    EXPECT_LT(5000u, std::filesystem::file_size(folder / file));
  }
  PostMessageW(track.Control(kSpreadsheet), BM_CLICK, 0, 0);
  EXPECT_TRUE(says(L"No spreadsheet is open."));

  const kvtest::RunningProgram spreadsheet(kvtest::BuildFolder(L"tests") / L"kv\\export\\dde_server.exe",
                                           L"dde_server.log Excel System,[Book1]Sheet1");
  EXPECT_TRUE(WaitUntil([] { return kv::DdeConversation("Excel", "System").Poke("Selection", "[Book1]Sheet1!R1C1"); },
                        kTimeout));
  PostMessageW(track.Control(kSpreadsheet), BM_CLICK, 0, 0);
  EXPECT_TRUE(says(L"180 of 180 points sent."));
  EXPECT_EQ(0u, track.Close());
  std::filesystem::remove_all(folder);
}

TEST(Samples, SensorValuesAreRecorded) {
  Sample recorder(L"sensor_recorder", L"Sensor recorder");
  constexpr int kChart = 101, kPort = 102, kConnect = 103, kStatus = 105;
  const auto connect = [&](const std::wstring& port) {
    SendMessageW(recorder.Control(kPort), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(port.c_str()));
    SendMessageW(recorder.Control(kConnect), BM_CLICK, 0, 0);
    return TextOf(recorder.Control(kStatus));
  };
  EXPECT_EQ(L"This port cannot be opened.", connect(L"COM97"));
  const kvtest::ComPair pair = kvtest::GivenComPair();
  const kvtest::SerialLine line(pair);
  if (line.isPlugged()) {
    EXPECT_EQ(L"Waiting for a value.", connect(L"COM" + std::to_wstring(pair.port)));
    kvtest::PlayedCamera sensor(pair.farPort);
    EXPECT_TRUE(sensor.Send("nothing\r\n21.5\r\n"));
    EXPECT_TRUE(WaitUntil([&] { return TextOf(recorder.Control(kStatus)) == L"21.5"; }, kTimeout));
  }
  EXPECT_TRUE(recorder.Shows(recorder.PlaceOf(kChart), 4));
  EXPECT_EQ(0u, recorder.Close());
}

}  // namespace
