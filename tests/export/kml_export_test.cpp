#include "export/kml_export.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "export/flight_track_view.h"
#include "export/kml_templates.h"
#include "export/text_file.h"
#include "framework/bounded_format.h"
#include "framework/guards.h"
#include "framework/painting.h"
#include "framework/shell_launch.h"
#include "framework/window_record.h"
#include "tests/support/test_window.h"

#include <psapi.h>

namespace kv {
namespace {

constexpr char kSettingsKey[] = "Software\\korvel\\Configuration";

std::vector<std::wstring> launched;  // "verb|program|parameter" of each shell call

HINSTANCE WINAPI NoteLaunch(HWND, LPCWSTR verb, LPCWSTR program, LPCWSTR parameter, LPCWSTR, INT show) {
  launched.push_back(std::wstring(verb) + L"|" + program + L"|" + parameter + (show == 1 ? L"" : L"|not shown"));
  return nullptr;
}

std::string Contents(const std::wstring& path) {
  std::string text;
  FILE* file = _wfopen(path.c_str(), L"rb");
  if (!file) return "no file";
  char piece[4096];
  while (const size_t count = fread(piece, 1, sizeof(piece), file)) text.append(piece, count);
  fclose(file);
  return text;
}

bool Exists(const std::wstring& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string WithFileLineEnds(std::string text) {
  for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) text.insert(at, 1, '\r');
  return text;
}

// The value of an element's first occurrence.
std::string Element(const std::string& text, const std::string& name) {
  const size_t from = text.find("<" + name + ">") + name.size() + 2;
  return text.substr(from, text.find("</" + name + ">") - from);
}

// Every element is closed in its order, there is one root, and no character data holds a bare "<" or "&".
bool IsWellFormed(const std::string& text) {
  std::vector<std::string> open;
  bool rootSeen = false;
  size_t at = text.starts_with("<?xml ") ? text.find("?>") + 2 : 0;
  while ((at = text.find_first_of("<&", at)) != std::string::npos) {
    const size_t end = text.find('>', at);
    if (text[at] == '&' || end == std::string::npos) return false;
    std::string tag = text.substr(at + 1, end - at - 1);
    if (tag.starts_with('/')) {
      if (open.empty() || tag != "/" + open.back()) return false;
      open.pop_back();
    } else {
      if (open.empty() && rootSeen) return false;
      rootSeen = true;
      open.push_back(tag.substr(0, tag.find(' ')));
    }
    at = end + 1;
  }
  return rootSeen && open.empty();
}

void Store(const char* name, const void* data, DWORD size, DWORD type = REG_DWORD) {
  RegSetValueExA(RegistryKey::Create(kSettingsKey), name, 0, type, static_cast<const BYTE*>(data), size);
}

void StoreFloat(const char* name, float value) {
  Store(name, &value, sizeof(value), REG_BINARY);
}

class KmlExport : public testing::Test {
 protected:
  KmlExport() : realExecute_(std::exchange(shellCalls.executeW, NoteLaunch)) {
    launched.clear();
    RegDeleteKeyA(HKEY_CURRENT_USER, kSettingsKey);
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    temporary_ = folder;
    FormatBounded(view.szKmlPath, sizeof(view.szKmlPath), L"%skvTest%lu.kml", folder, GetCurrentProcessId());
    CreateDirectoryW(L"C:\\Temp", nullptr);
    DeleteFileW(kWaypointsPath);
    view.lpTrack = &track;
    track.dReferenceLatitude = 47;
    track.dReferenceLongitude = 8;
    SetPoints({{0, 0, 10}, {100, 0, 10}, {100, -200, 20}});
  }
  ~KmlExport() override {
    DeleteFileW(view.szKmlPath);
    DeleteFileW(kWaypointsPath);
    shellCalls.executeW = realExecute_;
  }

  void SetPoints(std::vector<FlightTrackPoint> newPoints) {
    points = std::move(newPoints);
    track.nPoints = static_cast<LONG>(points.size());
    track.lpPoints = points.data();
  }
  std::string Exported() { return exportTrackKml(&view) ? Contents(view.szKmlPath) : "refused"; }

  std::vector<FlightTrackPoint> points;
  FlightTrack track{};
  FlightTrackViewState view{};
  std::wstring temporary_;

 private:
  decltype(ShellCalls::executeW) realExecute_;
};

TEST_F(KmlExport, WholeDocumentOfThreePoints) {
  EXPECT_EQ(WithFileLineEnds(R"(<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://earth.google.com/kml/2.0">
<Folder>
 <name>3D Flight route</name>

  <LookAt>
   <longitude>8.0000000000</longitude>
   <latitude>47.0000000000</latitude>
   <altitude>0.0</altitude>
   <range>0.0</range>
   <tilt>0.0</tilt>
   <heading>0.0</heading>
  </LookAt>

 <Placemark>
  <Style id="kvDronePoly">
   <LineStyle>
    <color>FF00FF00</color>
    <width>5</width>
   </LineStyle>
   <PolyStyle>
    <color>C02FFF2F</color>
   </PolyStyle>
  </Style>

  <LineString>
   <extrude>0</extrude>
   <tessellate>1</tessellate>
   <altitudeMode>relativeToGround</altitudeMode>
   <coordinates>
    8.0000000000,47.0000000000,10.0
    8.0013171810,47.0000000000,10.0
    8.0013171810,47.0000000000,20.0
    8.0013171810,47.0018026746,20.0
    </coordinates>
   </LineString>
  </Placemark>
 </Folder>
</kml>
)"),
            Exported());
  ASSERT_EQ(1u, launched.size());
  EXPECT_EQ(L"open|C:\\Program Files\\Google\\Google Earth\\GoogleEarth.exe|" + std::wstring(view.szKmlPath),
            launched[0]);
}

TEST_F(KmlExport, SettingsShapeTheDocument) {
  const DWORD flags = 2, width = 0xFFFFFFFF, line = 0x12345678, fill = 0x9A0B0C0D;
  const std::uint64_t tooLong = 7;
  Store("KMLFlags", &flags, 4, REG_SZ);
  Store("KMLLineWidth", &width, 4);
  Store("KMLLineColor", &line, 4, REG_BINARY);
  Store("KMLPolygonColor", &fill, 4);
  Store("KMLAltitude", &tooLong, 8, REG_BINARY);
  Store("KMLHeading", &tooLong, 2, REG_BINARY);
  StoreFloat("KMLRange", 1500.25f);
  StoreFloat("KMLTilt", -60);
  const std::string text = Exported();
  EXPECT_NE(std::string::npos, text.find("<color>FF345678</color>\r\n    <width>-1</width>"));
  EXPECT_EQ("BF0B0C0D", Element(text.substr(text.find("<PolyStyle>")), "color"));
  EXPECT_EQ("1", Element(text, "extrude"));
  EXPECT_EQ("0", Element(text, "tessellate"));
  EXPECT_EQ("0.0", Element(text, "altitude"));
  EXPECT_EQ("0.0", Element(text, "heading"));
  EXPECT_EQ("1500.3", Element(text, "range"));
  EXPECT_EQ("-60.0", Element(text, "tilt"));

  StoreFloat("KMLTransparency", 100);
  EXPECT_EQ(0xFF0B0C0Du, ReadKmlSettings().dwPolygonColor);
}

TEST(FillAlpha, LowByteOfTheTruncatedValueAndNothingUndefined) {
  EXPECT_EQ(255u, FillAlpha(0));
  EXPECT_EQ(0xBFu, FillAlpha(25));
  EXPECT_EQ(254u, FillAlpha(0.1f));  // 254.744
  EXPECT_EQ(0u, FillAlpha(99.7f));   // -0.232 is truncated towards zero
  EXPECT_EQ(0xFFu, FillAlpha(100));
  EXPECT_EQ(0xFFu, FillAlpha(200));   // -257
  EXPECT_EQ(0xFFu, FillAlpha(-100));  // 511
  const float infinity = std::numeric_limits<float>::infinity();
  for (const float none : {infinity, -infinity, NAN, 1e9f, -1e9f, 3e38f}) EXPECT_EQ(0u, FillAlpha(none));
}

TEST_F(KmlExport, CoordinateLinesAreWhatTheTemplatePrints) {
  SetPoints({{5e7, 1e7, 0.25}, {-1e300, 1e300, 1e300}, {0, 0, -0.0}, {INFINITY, 1, -INFINITY}, {1, NAN, NAN}});
  for (const double latitude : {0.0, 89.9999, 90.0, -90.0}) {
    track.dReferenceLatitude = latitude;
    const std::string text = Exported();
    for (const FlightTrackPoint& point : points) {
      const GeodeticPosition at = PositionFromLocal(LocalFrameOf(track), point.dX, point.dY);
      wchar_t wide[1024];
      FormatBounded(wide, sizeof(wide), KmlTemplateText(KmlTemplate::kCoordinateLine), at.longitude, at.latitude,
                    point.dAltitude);
      const std::wstring line = wide;
      EXPECT_NE(std::string::npos, text.find(WithFileLineEnds({line.begin(), line.end()}))) << latitude;
    }
    EXPECT_TRUE(IsWellFormed(text));
  }
}

TEST_F(KmlExport, OnePointIsOneLineAndNoPointIsNoFile) {
  SetPoints({{0, 0, 7}});
  EXPECT_EQ("\r\n    8.0000000000,47.0000000000,7.0\r\n    ", Element(Exported(), "coordinates"));
  DeleteFileW(view.szKmlPath);
  launched.clear();
  track.nPoints = 0;
  EXPECT_TRUE(exportTrackKml(&view));
  EXPECT_TRUE(exportWaypointsText(&view));
  EXPECT_FALSE(Exists(view.szKmlPath));
  EXPECT_FALSE(Exists(kWaypointsPath));
  EXPECT_TRUE(launched.empty());
}

TEST_F(KmlExport, TemplatesOfTheSinglePointAreWellFormed) {
  std::wstring wide;
  for (const auto which : {KmlTemplate::kPointHead, KmlTemplate::kPoint, KmlTemplate::kPointTail}) {
    wchar_t text[1024];
    if (which == KmlTemplate::kPointHead) FormatBounded(text, sizeof(text), KmlTemplateText(which), L"Start");
    if (which == KmlTemplate::kPoint) FormatBounded(text, sizeof(text), KmlTemplateText(which), 8.5, 47.25, 1.5);
    if (which == KmlTemplate::kPointTail) FormatBounded(text, sizeof(text), KmlTemplateText(which));
    wide += text;
  }
  const std::string text(wide.begin(), wide.end());
  EXPECT_TRUE(IsWellFormed(text));
  EXPECT_EQ("Start", Element(text, "name"));
  EXPECT_EQ("8.500000000000000,47.250000000000000,1.50", Element(text, "coordinates"));
  EXPECT_FALSE(IsWellFormed("<a><b></a></b>"));
}

TEST_F(KmlExport, RefusesABadStateAndAFileThatCannotBeCreated) {
  kvtest::GuardedBytes small(sizeof(view) - 1);
  EXPECT_FALSE(exportTrackKml(small.as<FlightTrackViewState>()));
  EXPECT_FALSE(exportWaypointsText(small.as<FlightTrackViewState>()));
  EXPECT_FALSE(exportTrackKml(nullptr));
  FormatBounded(view.szKmlPath, sizeof(view.szKmlPath), L"%sno such folder\\a.kml", temporary_.c_str());
  EXPECT_FALSE(exportTrackKml(&view));
  CreateDirectoryW(kWaypointsPath, nullptr);  // in the file's place
  EXPECT_TRUE(exportWaypointsText(&view));
  RemoveDirectoryW(kWaypointsPath);
  EXPECT_TRUE(launched.empty());
}

// A pipe whose reader goes away stands for the disk that fills up.
TEST_F(KmlExport, AFailedWriteStartsNoViewer) {
  SetPoints(std::vector<FlightTrackPoint>(3000));
  FormatBounded(view.szKmlPath, sizeof(view.szKmlPath), L"\\\\.\\pipe\\kvTest%lu", GetCurrentProcessId());
  HANDLE pipe =
      CreateNamedPipeW(view.szKmlPath, PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE | PIPE_WAIT, 1, 512, 512, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, pipe);
  std::thread reader([pipe] {
    ConnectNamedPipe(pipe, nullptr);
    CloseHandle(pipe);
  });
  EXPECT_FALSE(exportTrackKml(&view));
  reader.join();
  EXPECT_TRUE(launched.empty());

  const std::wstring path = temporary_ + L"kvTestGivenUp.txt";
  {
    TextFile file(path.c_str());
    file.Write("half a line");
    EXPECT_TRUE(Exists(path));
  }
  EXPECT_FALSE(Exists(path));
}

TEST_F(KmlExport, WaypointsComeFromWhatTheKindSays) {
  SetPoints(std::vector<FlightTrackPoint>(6, {.dX = 100, .dY = -200, .dAltitude = 5}));
  points[0].bKind = 9;
  points[1].bKind = kPointLocal;
  points[2].bKind = kPointGeodetic;
  points[2].dLongitude = -12.5;
  points[2].dLatitude = 33.25;
  points[3].bKind = 3;
  points[3].dAltitude = 6;
  points[4].bKind = kPointEarthCentred;
  points[4].dCentredX = points[4].dCentredY = 3194419.1450605732;
  points[4].dCentredZ = 4487348.408865919;
  points[5].bKind = 255;
  EXPECT_TRUE(exportWaypointsText(&view));
  EXPECT_EQ(
      "8.0000000000,47.0000000000,5.0\r\n"
      "8.0013171810,47.0018026746,5.0\r\n"
      "-12.5000000000,33.2500000000,5.0\r\n"
      "-12.5000000000,33.2500000000,6.0\r\n"
      "45.0000000000,45.0000000000,5.0\r\n"
      "45.0000000000,45.0000000000,5.0\r\n",
      Contents(kWaypointsPath));
  EXPECT_TRUE(launched.empty());
}

TEST_F(KmlExport, PositionIsWrittenShownAndTheParentActivated) {
  const std::wstring path = temporary_ + L"kvHelmsdeckTemp.kml";
  kvtest::RecordingParent parent, other;
  HWND child = kvtest::CreateControl(parent, "STATIC", "", 0, {0, 0, 9, 9}, 1);
  SetActiveWindow(other);
  ASSERT_EQ(static_cast<HWND>(other), GetActiveWindow());
  EXPECT_TRUE(showPositionInGlobe(child, -70.5, -33.25, 1234.5));
  EXPECT_EQ(static_cast<HWND>(parent), GetActiveWindow());
  const std::string text = Contents(path);
  EXPECT_TRUE(IsWellFormed(text));
  EXPECT_EQ("-70.5000000000", Element(text, "longitude"));
  EXPECT_EQ("-33.2500000000", Element(text, "latitude"));
  EXPECT_EQ("1234.5", Element(text, "range"));
  EXPECT_NE(std::string::npos, text.find("  </LookAt>\r\n\r\n </Folder>\r\n</kml>\r\n"));

  DeleteFileW(path.c_str());
  CreateDirectoryW(path.c_str(), nullptr);  // the file cannot be created; the viewer starts nevertheless
  EXPECT_TRUE(showPositionInGlobe(nullptr, 0, 0, 0));
  RemoveDirectoryW(path.c_str());
  ASSERT_EQ(2u, launched.size());
  EXPECT_EQ(launched[0], launched[1]);
  EXPECT_TRUE(launched[0].ends_with(L"GoogleEarth.exe|" + path));
}

TEST(Helmsdeck, RunsWhileItsMutexExists) {
  EXPECT_FALSE(isHelmsdeckRunning());
  HANDLE mutex = CreateMutexA(nullptr, FALSE, "kvHelmsdeck_Process_Mutex");
  EXPECT_TRUE(isHelmsdeckRunning());
  CloseHandle(mutex);
  EXPECT_FALSE(isHelmsdeckRunning());
}

class FlightTrackView : public KmlExport {
 protected:
  FlightTrackView() {
    RegisterFlightTrackView(GetModuleHandleA(nullptr), TRUE);
    window = Create();
    state = WindowRecord<FlightTrackViewState>(window);
  }
  ~FlightTrackView() override {
    if (state) DeleteFileW(state->szKmlPath);
    DestroyWindow(window);
    RegisterFlightTrackView(GetModuleHandleA(nullptr), FALSE);
  }

  HWND Create() { return kvtest::CreateControl(parent, kFlightTrackClass, "", 0, {0, 0, 40, 30}, 5); }
  LRESULT Send(WPARAM wParam, const void* lParam) {
    return SendMessageA(window, kControlCommand, wParam, reinterpret_cast<LPARAM>(lParam));
  }
  LRESULT Export(WPARAM flags, LPARAM what) { return SendMessageA(window, kControlCommand, 12 | flags, what); }

  kvtest::RecordingParent parent;
  HWND window;
  FlightTrackViewState* state;
};

TEST_F(FlightTrackView, FixesItsPathAtCreation) {
  ASSERT_NE(nullptr, state);
  const std::wstring path = state->szKmlPath;
  EXPECT_TRUE(path.starts_with(temporary_));
  const std::wstring name = path.substr(temporary_.size());
  EXPECT_EQ(12u, name.size());
  EXPECT_EQ(8u, name.find_first_not_of(L"0123456789ABCDEF"));
  const DWORD age = GetTickCount() - std::wcstoul(name.c_str(), nullptr, 16);
  EXPECT_LT(age, 10000u);
}

TEST_F(FlightTrackView, ExportsOnRequestAndByItself) {
  EXPECT_EQ(1, Send(19, &track));
  EXPECT_TRUE(launched.empty());
  EXPECT_EQ(1, Export(0x8000 | 0x0100, 7));  // neither document: nothing is done, nothing switched
  EXPECT_FALSE(state->bAutoExport);
  EXPECT_FALSE(Exists(state->szKmlPath));

  EXPECT_EQ(1, Export(0x8000, 0));
  EXPECT_TRUE(Exists(kWaypointsPath));
  EXPECT_TRUE(launched.empty());
  EXPECT_EQ(1, Export(0x8000 | 0x0100, 1));
  EXPECT_TRUE(IsWellFormed(Contents(state->szKmlPath)));
  EXPECT_EQ(1, Send(19, &track));
  EXPECT_EQ(2u, launched.size());
  EXPECT_EQ(1, Export(0x4000, 0));
  EXPECT_EQ(1, Send(19, &track));
  EXPECT_EQ(2u, launched.size());

  state->szKmlPath[0] = L'\0';
  EXPECT_EQ(0, Export(0x8000, 1));
  EXPECT_EQ(0, Send(13, &track));
}

TEST_F(FlightTrackView, HoldsTheTrackOfItsOwner) {
  FlightTrack copy{};
  EXPECT_EQ(0, Send(19 | 0x8000, &copy));
  EXPECT_EQ(1, Send(19, &track));
  kvtest::GuardedBytes small(sizeof(FlightTrack) - 1);
  for (const void* bad : {static_cast<const void*>(nullptr), static_cast<const void*>(small.data())}) {
    EXPECT_EQ(0, Send(19, bad));
    EXPECT_EQ(0, Send(19 | 0x8000, bad));
  }
  EXPECT_EQ(1, Send(19 | 0x8000, &copy));
  EXPECT_EQ(points.data(), copy.lpPoints);
  EXPECT_EQ(1, Send(19 | 0x4000, nullptr));
  EXPECT_EQ(nullptr, state->lpTrack);
  EXPECT_EQ(1, Export(0x8000, 1));
  EXPECT_FALSE(Exists(state->szKmlPath));
}

TEST_F(FlightTrackView, FillsItsBackground) {
  ShowWindow(parent, SW_SHOWNOACTIVATE);
  UpdateWindow(window);
  const WindowDc dc(window);
  EXPECT_EQ(kDialogBlue, GetPixel(dc, 20, 15));
}

SIZE_T MemoryInUse() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return counters.PagefileUsage;
}

TEST_F(FlightTrackView, OutlivesAStormAndLeavesNoMemoryBehind) {
  const char* wanted = std::getenv("KV_STORM_MESSAGES");
  const int count = wanted ? std::atoi(wanted) : 20000;
  kvtest::GuardedBytes readOnly(sizeof(FlightTrack)), small(16);
  readOnly.MakeReadOnly();
  const LPARAM addresses[] = {0,
                              1,
                              2,
                              -1,
                              0x10,
                              reinterpret_cast<LPARAM>(&track),
                              reinterpret_cast<LPARAM>(readOnly.data()),
                              reinterpret_cast<LPARAM>(small.data())};
  const UINT messages[] = {WM_PAINT,         WM_ERASEBKGND, WM_SIZE,  WM_COPY,    WM_KEYDOWN,  WM_MOUSEMOVE,
                           WM_LBUTTONDBLCLK, WM_ENABLE,     WM_TIMER, WM_COMMAND, WM_USER + 2, WM_USER + 4};
  const auto storm = [&](int messageCount) {
    for (int i = 0; i < messageCount; ++i) {
      const unsigned dice = static_cast<unsigned>(std::rand());
      const WPARAM flags = (dice & 7) << 13 | (dice & 0x100);
      const WPARAM operation = dice % 5 == 0 ? 12 : dice % 5 < 4 ? 19 : dice & 0xFF;
      const UINT message = dice % 3 ? kControlCommand : messages[dice / 3 % std::size(messages)];
      SendMessageA(window, message, flags | operation, addresses[dice / 64 % std::size(addresses)]);
      ASSERT_EQ(state, WindowRecord<FlightTrackViewState>(window));
      launched.clear();
    }
  };
  const auto windows = [&] {
    for (int i = 0; i < 3000; ++i) DestroyWindow(Create());
  };
  storm(1000);
  windows();
  const SIZE_T before = MemoryInUse();
  storm(count);
  windows();
  EXPECT_LT(MemoryInUse(), before + 1024 * 1024);
}

}  // namespace
}  // namespace kv
