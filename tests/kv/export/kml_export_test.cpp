#include "kv/export/kml_export.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "kv/export/flight_track.h"
#include "kv/export/flight_track_view.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/shell_launch.h"
#include "kv/framework/window_state.h"
#include "tests/support/comma_locale.h"
#include "tests/support/files.h"
#include "tests/support/replaced_import.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

std::vector<std::wstring> launched;  // "verb|program|parameter" of each shell call

HINSTANCE WINAPI NoteLaunch(HWND, LPCWSTR verb, LPCWSTR program, LPCWSTR parameter, LPCWSTR, INT show) {
  launched.push_back(std::wstring(verb) + L"|" + program + L"|" + parameter + (show == 1 ? L"" : L"|not shown"));
  return nullptr;
}

using std::filesystem::exists;

// Without the bytes that end a line in front of "\n".
std::string Contents(const std::filesystem::path& path) {
  std::string text = kvtest::BytesOf(path);
  std::erase(text, '\r');
  return text;
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != text.npos;
}

constexpr char kSettingsKey[] = "Software\\korvel\\Configuration";

template <class Value>
void Store(const char* name, Value value, DWORD type = REG_DWORD, DWORD size = sizeof(Value)) {
  RegSetValueExA(RegistryKey::Create(kSettingsKey), name, 0, type, reinterpret_cast<const BYTE*>(&value), size);
}

class KmlExport : public testing::Test {
 protected:
  KmlExport() : realExecute_(std::exchange(shellCalls.executeW, NoteLaunch)) {
    launched.clear();
    RegDeleteKeyA(HKEY_CURRENT_USER, kSettingsKey);
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    temporary = folder;
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
  std::wstring temporary;

 private:
  decltype(ShellCalls::executeW) realExecute_;
};

TEST_F(KmlExport, WholeDocumentOfThreePoints) {
  const kvtest::CommaLocale commas;
  EXPECT_EQ(R"(<?xml version="1.0" encoding="UTF-8"?>
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
)",
            Exported());
  ASSERT_EQ(1u, launched.size());
  EXPECT_EQ(L"open|C:\\Program Files\\Google\\Google Earth\\GoogleEarth.exe|" + std::wstring(view.szKmlPath),
            launched[0]);
}

TEST_F(KmlExport, SettingsAreUsedInTheDocument) {
  Store("KMLFlags", DWORD{2}, REG_SZ);
  Store("KMLLineWidth", DWORD{0xFFFFFFFF});
  Store("KMLLineColor", DWORD{0x12345678}, REG_BINARY);
  Store("KMLPolygonColor", DWORD{0x9A0B0C0D}, REG_BINARY, 1);  // the other bytes are unchanged
  Store("KMLAltitude", 7.0, REG_BINARY);                       // eight bytes
  Store("KMLRange", 1500.25f, REG_BINARY);
  Store("KMLTilt", -60.0f);
  const std::string text = Exported();
  for (const char* part : {"<altitude>0.0<", "<range>1500.", "<tilt>-60.0<", "<color>FF345678<", "<width>-1<",
                           "<color>BF2FFF0D<", "<extrude>1<", "<tessellate>0<"}) {
    EXPECT_PRED2(Has, text, part);
  }
  Store("KMLTransparency", 100.0f);
  EXPECT_EQ(0xFF2FFF0Du, ReadKmlSettings().dwPolygonColor);
}

TEST(FillAlpha, LowByteOfTheTruncatedValueAndNothingUndefined) {
  const std::pair<float, DWORD> known[] = {{0, 255},      {25, 0xBF},        {0.1f, 254},  {99.7f, 0},
                                           {100, 0xFF},   {200, 0xFF},       {-100, 0xFF}, {NAN, 0},
                                           {INFINITY, 0}, {-INFINITY, 0xFF}, {1e9f, 0},    {-3e38f, 0xFF}};
  for (const auto& [transparency, alpha] : known) EXPECT_EQ(alpha, FillAlpha(transparency)) << transparency;
}

TEST_F(KmlExport, OmitsInvalidPoints) {
  SetPoints({{NAN, 1, 1}, {5e7, 1e7, 0.25}, {-1e300, 1e300, 1e300}, {0, INFINITY, 1}, {0, 0, -0.0}, {1, 1, NAN}});
  for (const double latitude : {0.0, 89.9999, 90.0, -90.0}) {
    track.dReferenceLatitude = latitude;
    const std::string text = Exported();
    EXPECT_TRUE(exportWaypointsText(&view));
    const std::string all = text + Contents(kWaypointsPath);
    EXPECT_FALSE(Has(all, "nan") || Has(all, "inf")) << latitude;
    EXPECT_PRED2(Has, text, ",-0.0\n");
  }
}

TEST_F(KmlExport, EveryPointIsOneLineAndNoPointsAreNoFile) {
  track.nPoints = 0;
  EXPECT_TRUE(exportTrackKml(&view) && exportWaypointsText(&view));
  EXPECT_FALSE(exists(view.szKmlPath) || exists(kWaypointsPath) || !launched.empty());

  SetPoints({{0, 0, 7}});
  EXPECT_PRED2(Has, Exported(), "<coordinates>\n    8.0000000000,47.0000000000,7.0\n    </coordinates>");

  SetPoints(std::vector<FlightTrackPoint>(5000, {.bKind = kPointGeodetic}));
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    points[i].dAltitude = i;
    expected += "0.0000000000,0.0000000000," + std::to_string(i) + ".0\n";
  }
  EXPECT_TRUE(exportWaypointsText(&view));
  EXPECT_EQ(expected, Contents(kWaypointsPath));
  EXPECT_EQ(expected.size() + 5000, std::filesystem::file_size(kWaypointsPath)) << "a line ends in two bytes";
}

TEST_F(KmlExport, RejectsABadStateAndAFileThatCannotBeCreated) {
  kvtest::GuardedBytes small(sizeof(view) - 4);
  auto* bad = small.as<FlightTrackViewState>();
  EXPECT_FALSE(exportTrackKml(bad) || exportWaypointsText(bad));
  FormatBounded(view.szKmlPath, sizeof(view.szKmlPath), L"%sno such folder\\a.kml", temporary.c_str());
  EXPECT_FALSE(exportTrackKml(&view));
  CreateDirectoryW(kWaypointsPath, nullptr);  // with the file's name
  EXPECT_TRUE(exportWaypointsText(&view));
  RemoveDirectoryW(kWaypointsPath);
  EXPECT_TRUE(launched.empty());
}

BOOL WINAPI WriteNothing(HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) {
  *written = 0;
  return TRUE;
}

TEST_F(KmlExport, AFailedWriteStartsNoViewer) {
  const kvtest::ReplacedImport fullDisk("WriteFile", reinterpret_cast<void*>(WriteNothing));
  EXPECT_TRUE(fullDisk.isInPlace() && !exportTrackKml(&view));
  EXPECT_TRUE(launched.empty());
}

TEST_F(KmlExport, WaypointsAreComputedByKind) {
  SetPoints({{.dAltitude = 5, .bKind = 9},
             {.dX = 100, .dY = -200, .dAltitude = 5, .bKind = kPointLocal},
             {.dAltitude = 5, .bKind = kPointGeodetic, .dLatitude = 33.25, .dLongitude = -12.5},
             {.dAltitude = 6, .bKind = 3},
             {.bKind = kPointEarthCentered, .dCenteredY = 7e6}});
  EXPECT_TRUE(exportWaypointsText(&view));
  EXPECT_EQ(
      "8.0000000000,47.0000000000,5.0\n8.0013171810,47.0018026746,5.0\n"
      "-12.5000000000,33.2500000000,5.0\n-12.5000000000,33.2500000000,6.0\n"
      "90.0000000000,0.0000000000,0.0\n",
      Contents(kWaypointsPath));
  EXPECT_EQ(Contents(kWaypointsPath).size() + 5, std::filesystem::file_size(kWaypointsPath));  // "\r\n" ends a line
  EXPECT_TRUE(launched.empty());
}

TEST_F(KmlExport, PositionIsWrittenShownAndTheParentActivated) {
  const std::wstring path = temporary + L"kvHelmsdeckTemp.kml";
  kvtest::RecordingParent parent, other;
  HWND child = kvtest::CreateControl(parent, "STATIC", "", 0, {0, 0, 9, 9}, 1);
  SetActiveWindow(other);
  EXPECT_TRUE(showPositionInGlobe(child, -70.5, -33.25, 1234.5));
  EXPECT_EQ(static_cast<HWND>(parent), GetActiveWindow());
  const std::string text = Contents(path);
  for (const char* part : {"<longitude>-70.5000000000<", "<latitude>-33.2500000000<", "<range>1234.5<", "<heading>0.0<",
                           "</LookAt>\n\n </Folder>\n</kml>\n"}) {
    EXPECT_PRED2(Has, text, part);
  }

  DeleteFileW(path.c_str());
  CreateDirectoryW(path.c_str(), nullptr);  // the file cannot be created; the viewer is started anyway
  EXPECT_TRUE(showPositionInGlobe(nullptr, 0, 0, 0));
  RemoveDirectoryW(path.c_str());
  ASSERT_EQ(2u, launched.size());
  EXPECT_EQ(launched[0], launched[1]);
  EXPECT_TRUE(launched[0].ends_with(L"GoogleEarth.exe|" + path));

  HANDLE mutex = CreateMutexA(nullptr, FALSE, "kvHelmsdeck_Process_Mutex");
  EXPECT_TRUE(isHelmsdeckRunning());
  CloseHandle(mutex);
  EXPECT_FALSE(isHelmsdeckRunning());
}

class FlightTrackView : public KmlExport {
 protected:
  FlightTrackView() {
    RegisterFlightTrackClass(GetModuleHandleA(nullptr), TRUE);
    window = Create();
    state = WindowState<FlightTrackViewState>(window);
  }
  ~FlightTrackView() override {
    DeleteFileW(state->szKmlPath);
    DestroyWindow(window);
    RegisterFlightTrackClass(GetModuleHandleA(nullptr), FALSE);
  }

  HWND Create() { return kvtest::CreateControl(parent, kFlightTrackClass, "", 0, {0, 0, 40, 30}, 5); }
  LRESULT Track(const void* address, WPARAM flags = 0) {
    return SendMessageA(window, kControlCommand, 19 | flags, reinterpret_cast<LPARAM>(address));
  }
  LRESULT Export(WPARAM flags, LPARAM what) { return SendMessageA(window, kControlCommand, 12 | flags, what); }

  kvtest::RecordingParent parent;
  HWND window;
  FlightTrackViewState* state;
};

TEST_F(FlightTrackView, ExportsOnRequestAndAutomatically) {
  const std::wstring path = state->szKmlPath;
  ASSERT_TRUE(path.starts_with(temporary) && path.substr(temporary.size() + 8) == L".kml");
  EXPECT_LT(GetTickCount() - std::wcstoul(path.c_str() + temporary.size(), nullptr, 16), 10000u);

  EXPECT_EQ(1, Track(&track));
  EXPECT_EQ(1, Export(0x8000 | 0x0100, 7));  // neither document: nothing is exported or changed
  EXPECT_FALSE(state->bAutoExport);
  EXPECT_EQ(1, Export(0x8000, 0));
  EXPECT_TRUE(exists(kWaypointsPath));
  EXPECT_FALSE(exists(path) || !launched.empty());

  EXPECT_EQ(1, Export(0x8000 | 0x0100, 1));
  EXPECT_TRUE(exists(path));
  EXPECT_TRUE(Track(&track) && launched.size() == 2);
  EXPECT_TRUE(Export(0x4000, 0) && Track(&track) && launched.size() == 2);
  state->szKmlPath[0] = L'\0';
  EXPECT_EQ(0, Export(0x8000, 1));
}

TEST_F(FlightTrackView, StoresTheTrackOfItsOwner) {
  FlightTrack copy{};
  EXPECT_EQ(0, Track(&copy, 0x8000));
  EXPECT_EQ(1, Track(&track));
  kvtest::GuardedBytes small(sizeof(FlightTrack) - 8), readOnly(sizeof(FlightTrack));
  readOnly.MakeReadOnly();
  for (const void* bad : {small.data(), static_cast<void*>(nullptr)}) EXPECT_FALSE(Track(bad) || Track(bad, 0x8000));
  EXPECT_EQ(0, Track(readOnly.data(), 0x8000));
  EXPECT_TRUE(Track(&copy, 0x8000) && copy.lpPoints == points.data());
  EXPECT_TRUE(Track(nullptr, 0x4000) && Export(0x8000, 1) && launched.empty());
}

TEST_F(FlightTrackView, AllocatesItsStateOnceAndFreesIt) {
  const auto makeMany = [&] {
    for (int i = 0; i < 1500; ++i) DestroyWindow(Create());
    return kvtest::MemoryInUse();
  };
  const SIZE_T before = makeMany();
  EXPECT_LT(makeMany(), before + 1024 * 1024);
  SendMessageA(window, WM_CREATE, 0, 0);
  EXPECT_EQ(state, WindowState<FlightTrackViewState>(window));
}

}  // namespace
}  // namespace kv
