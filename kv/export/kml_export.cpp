#include "kv/export/kml_export.h"

#include <shlobj.h>

#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "kv/export/flight_track.h"
#include "kv/export/text_file.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"
#include "kv/framework/shell_launch.h"

namespace kv {

namespace {

constexpr char kKey[] = "Software\\korvel\\Configuration";
constexpr DWORD kValueSize = 4;

struct SettingField {
  const char* name;
  size_t offset;
};

constexpr SettingField kFields[] = {
    {"KMLFlags", offsetof(KmlSettings, dwFlags)},
    {"KMLLineWidth", offsetof(KmlSettings, dwLineWidth)},
    {"KMLLineColor", offsetof(KmlSettings, dwLineColor)},
    {"KMLPolygonColor", offsetof(KmlSettings, dwPolygonColor)},
    {"KMLTransparency", offsetof(KmlSettings, fTransparency)},
    {"KMLAltitude", offsetof(KmlSettings, fAltitude)},
    {"KMLRange", offsetof(KmlSettings, fRange)},
    {"KMLTilt", offsetof(KmlSettings, fTilt)},
    {"KMLHeading", offsetof(KmlSettings, fHeading)},
};
static_assert(sizeof(KmlSettings) == std::size(kFields) * kValueSize);

// Read into a copy, because a value that is too long leaves undefined contents.
void ReadFourBytes(HKEY key, const char* name, void* setting) {
  BYTE bytes[kValueSize];
  DWORD size = kValueSize;
  if (RegQueryValueExA(key, name, nullptr, nullptr, bytes, &size) == ERROR_SUCCESS) std::memcpy(setting, bytes, size);
}

DWORD WithAlpha(DWORD color, DWORD alpha) {
  return (color & 0x00FFFFFF) | (alpha << 24);
}

}  // namespace

KmlSettings ReadKmlSettings() {
  KmlSettings settings;
  const RegistryKey key = RegistryKey::Open(kKey);
  if (!key) return settings;
  for (const SettingField& field : kFields) {
    ReadFourBytes(key, field.name, reinterpret_cast<BYTE*>(&settings) + field.offset);
  }
  settings.dwPolygonColor = WithAlpha(settings.dwPolygonColor, FillAlpha(settings.fTransparency));
  settings.dwLineColor = WithAlpha(settings.dwLineColor, 0xFF);
  return settings;
}

DWORD FillAlpha(float transparencyPercent) {
  return static_cast<DWORD>(ToInt(255 - double{transparencyPercent} * 256 / 100)) & 0xFF;
}

namespace {

constexpr const wchar_t* kTemplates[] = {
    // kHeader
    LR"(<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://earth.google.com/kml/2.0">
<Folder>
 <name>3D Flight route</name>

  <LookAt>
   <longitude>%.10f</longitude>
   <latitude>%.10f</latitude>
   <altitude>%.1f</altitude>
   <range>%.1f</range>
   <tilt>%.1f</tilt>
   <heading>%.1f</heading>
  </LookAt>

)",
    // kFooter
    LR"( </Folder>
</kml>
)",
    // kTrackHead
    LR"( <Placemark>
  <Style id="kvDronePoly">
   <LineStyle>
    <color>%-8.8lX</color>
    <width>%ld</width>
   </LineStyle>
   <PolyStyle>
    <color>%-8.8lX</color>
   </PolyStyle>
  </Style>

  <LineString>
   <extrude>%ld</extrude>
   <tessellate>%ld</tessellate>
   <altitudeMode>relativeToGround</altitudeMode>
   <coordinates>
)",
    // kTrackTail
    LR"(    </coordinates>
   </LineString>
  </Placemark>
)",
    // kPointHead
    LR"( <Folder>
  <Placemark>
   <name>%s</name>
   <Style>
    <IconStyle>
     <scale>1.0</scale>
     <Icon><href>http://maps.google.com/mapfiles/kml/shapes/placemark_circle.png</href></Icon>
    </IconStyle>
   </Style>
)",
    // kPoint
    LR"(   <Point>
    <altitudeMode>clampToGround</altitudeMode>
    <coordinates>%.15f,%.15f,%.2f</coordinates>
   </Point>
)",
    // kPointTail
    LR"(  </Placemark>
 </Folder>
)",
};
static_assert(std::size(kTemplates) == static_cast<size_t>(KmlTemplate::kCount));

}  // namespace

const wchar_t* KmlTemplateText(KmlTemplate which) {
  return kTemplates[static_cast<size_t>(which)];
}

namespace {

constexpr wchar_t kPositionFile[] = L"kvHelmsdeckTemp.kml";
constexpr DWORD kPositionFolderCapacity = 228;
constexpr wchar_t kViewerBelowProgramFiles[] = L"Google\\Google Earth\\GoogleEarth.exe";
constexpr char kHelmsdeckMutex[] = "kvHelmsdeck_Process_Mutex";

constexpr int kAngleDecimals = 10;
constexpr int kAltitudeDecimals = 1;
constexpr std::string_view kCoordinateIndent = "    ";

// One or two numbers as text, cached while lines are written.
struct NumberText {
  char text[2 * kFixedNumberCapacity];
  size_t length;

  std::string_view view() const { return {text, length}; }
};
static_assert(kCoordinateIndent.size() + 3 * kFixedNumberCapacity + 3 <= TextFile::kLineCapacity);

// Returns false for a point without finite coordinates (a receiver without a fix, a missing measurement).
bool IsSomewhere(GeodeticPosition position, double altitude) {
  return std::isfinite(position.longitude) && std::isfinite(position.latitude) && std::isfinite(altitude);
}

GeodeticPosition LocalPosition(const LocalFrame& frame, const FlightTrackPoint& point) {
  return PositionFromLocal(frame, point.dX, point.dY);
}

void AppendPosition(NumberText& to, GeodeticPosition position) {
  char* end = FormatFixed(to.text, position.longitude, kAngleDecimals);
  *end++ = ',';
  end = FormatFixed(end, position.latitude, kAngleDecimals);
  to.length = static_cast<size_t>(end - to.text);
}

void AppendAltitude(NumberText& to, double altitude) {
  to.length = static_cast<size_t>(FormatFixed(to.text, altitude, kAltitudeDecimals) - to.text);
}

char* AppendText(char* to, std::string_view text) {
  std::memcpy(to, text.data(), text.size());
  return to + text.size();
}

// Writes one line of coordinates, "%.10f,%.10f,%.1f" after the indent, from formatted numbers.
void WriteLine(TextFile& file, std::string_view indent, const NumberText& position, const NumberText& altitude) {
  char* end = AppendText(file.LineBuffer(), indent);
  end = AppendText(end, position.view());
  *end++ = ',';
  end = AppendText(end, altitude.view());
  *end++ = '\n';
  file.CommitLine(end);
}

// Templates and arguments are ASCII, so each character is one byte of the file.
void WriteFormatted(TextFile& file, const wchar_t* format, ...) {
  wchar_t text[4096];
  va_list arguments;
  va_start(arguments, format);
  FormatPlainV(text, std::size(text), format, arguments);
  va_end(arguments);
  for (const wchar_t* from = text; *from; ++from) {
    const char character = static_cast<char>(*from);
    file.Write({&character, 1});
  }
}

void WriteHeader(TextFile& file, GeodeticPosition at, double altitude, double range, double tilt, double heading) {
  WriteFormatted(file, KmlTemplateText(KmlTemplate::kHeader), at.longitude, at.latitude, altitude, range, tilt,
                 heading);
}

void WriteTrackHead(TextFile& file, const KmlSettings& settings) {
  WriteFormatted(file, KmlTemplateText(KmlTemplate::kTrackHead), settings.dwLineColor, settings.dwLineWidth,
                 settings.dwPolygonColor, settings.dwFlags & kKmlExtrude ? 1L : 0L,
                 settings.dwFlags & kKmlTessellate ? 1L : 0L);
}

// Every change of altitude becomes a vertical step at the previous position. Nearly all the time is spent formatting
// numbers, so each number is formatted once.
void WriteCoordinates(TextFile& file, const LocalFrame& frame, std::span<const FlightTrackPoint> points) {
  NumberText positions[2], altitude;
  NumberText *position = &positions[0], *previous = &positions[1];
  const FlightTrackPoint& first = points.front();
  AppendPosition(*previous, LocalPosition(frame, first));
  AppendAltitude(altitude, first.dAltitude);
  double previousAltitude = first.dAltitude;
  for (const FlightTrackPoint& point : points) {
    const GeodeticPosition at = LocalPosition(frame, point);
    if (!IsSomewhere(at, point.dAltitude)) continue;
    AppendPosition(*position, at);
    const bool step = point.dAltitude != previousAltitude;
    // Zeros of different sign are equal, but not their texts.
    if (step || std::signbit(point.dAltitude) != std::signbit(previousAltitude))
      AppendAltitude(altitude, point.dAltitude);
    if (step) WriteLine(file, kCoordinateIndent, *previous, altitude);
    previousAltitude = point.dAltitude;
    WriteLine(file, kCoordinateIndent, *position, altitude);
    std::swap(position, previous);
  }
}

}  // namespace

void OpenInGlobe(const wchar_t* document) {
  wchar_t folder[MAX_PATH];
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, SHGFP_TYPE_CURRENT, folder))) return;
  const size_t length = std::wcslen(folder);
  const wchar_t* separator = length > 0 && folder[length - 1] == L'\\' ? L"" : L"\\";
  wchar_t program[2 * MAX_PATH];
  FormatBounded(program, sizeof(program), L"%s%s%s", folder, separator, kViewerBelowProgramFiles);
  shellCalls.executeW(nullptr, L"open", program, document, nullptr, SW_SHOWNORMAL);
}

BOOL WriteTrackKml(const wchar_t* path, const FlightTrack& track, std::span<const FlightTrackPoint> points,
                   const KmlSettings& settings) {
  const LocalFrame frame = LocalFrameOf(track);
  while (!points.empty() && !IsSomewhere(LocalPosition(frame, points.front()), points.front().dAltitude)) {
    points = points.subspan(1);
  }
  if (points.empty()) return FALSE;
  TextFile file(path);
  if (!file.IsOpen()) return FALSE;
  WriteHeader(file, LocalPosition(frame, points.front()), settings.fAltitude, settings.fRange, settings.fTilt,
              settings.fHeading);
  WriteTrackHead(file, settings);
  WriteCoordinates(file, frame, points);
  WriteFormatted(file, KmlTemplateText(KmlTemplate::kTrackTail));
  WriteFormatted(file, KmlTemplateText(KmlTemplate::kFooter));
  return file.Close();
}

BOOL exportTrackKml(FlightTrackViewState* view) {
  if (IsBadWritePtr(view, sizeof(*view))) return FALSE;
  const auto points = ReadablePoints(view->lpTrack);
  if (points.empty()) return TRUE;
  if (!WriteTrackKml(view->szKmlPath, *view->lpTrack, points, ReadKmlSettings())) return FALSE;
  // A copy, because starting a program may dispatch messages that destroy the view.
  const std::wstring document = view->szKmlPath;
  OpenInGlobe(document.c_str());
  return TRUE;
}

BOOL WriteTrackWaypoints(const wchar_t* path, const FlightTrack& track, std::span<const FlightTrackPoint> points) {
  TextFile file(path);
  if (!file.IsOpen()) return FALSE;
  const LocalFrame frame = LocalFrameOf(track);
  GeodeticPosition position{.longitude = frame.longitude, .latitude = frame.latitude};
  NumberText positionText, altitudeText;
  for (const FlightTrackPoint& point : points) {
    const GeodeticPosition geodetic = GeodeticPositionOf(frame, point, position);
    if (!IsSomewhere(geodetic, point.dAltitude)) continue;
    position = geodetic;
    AppendPosition(positionText, position);
    AppendAltitude(altitudeText, point.dAltitude);
    WriteLine(file, "", positionText, altitudeText);
  }
  return file.Close();
}

BOOL exportWaypointsText(FlightTrackViewState* view) {
  if (IsBadWritePtr(view, sizeof(*view))) return FALSE;
  const auto points = ReadablePoints(view->lpTrack);
  if (!points.empty()) WriteTrackWaypoints(kWaypointsPath, *view->lpTrack, points);
  return TRUE;
}

BOOL showPositionInGlobe(HWND window, double longitude, double latitude, double range) {
  wchar_t path[kPositionFolderCapacity + std::size(kPositionFile)] = L"";
  const DWORD length = GetTempPathW(kPositionFolderCapacity, path);
  // Without a folder the path is empty and no file can be created; a bare name would be written to the current folder.
  if (length > 0 && length < kPositionFolderCapacity) {
    std::wcscpy(path + length, kPositionFile);
  } else {
    path[0] = L'\0';
  }
  {
    TextFile file(path);
    if (file.IsOpen()) {
      WriteHeader(file, {.longitude = longitude, .latitude = latitude}, 0, range, 0, 0);
      WriteFormatted(file, KmlTemplateText(KmlTemplate::kFooter));
      file.Close();
    }
  }
  OpenInGlobe(path);
  if (IsWindow(window)) SetActiveWindow(GetParent(window));
  return TRUE;
}

BOOL isHelmsdeckRunning() {
  HANDLE mutex = OpenMutexA(MUTEX_ALL_ACCESS, TRUE, kHelmsdeckMutex);
  if (!mutex) return FALSE;
  CloseHandle(mutex);
  return TRUE;
}

}  // namespace kv
