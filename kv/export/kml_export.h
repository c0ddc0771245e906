// Exports flight tracks as KML documents and waypoints text, and starts the globe viewer that shows the documents.
//
// Call on the thread of the flight track view. No messages are shown; the viewer is started through
// kv/framework/shell_launch.h after the file is written and closed. When a file cannot be written completely (a full
// disk), an existing one is left as it is, and GetLastError returns the reason.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>

#include "kv/export/flight_track.h"

namespace kv {

// The style of an exported track, from the user's registry. Read on every call.

inline constexpr DWORD kKmlExtrude = 2;     // bits of dwFlags
inline constexpr DWORD kKmlTessellate = 4;  // bit 1 is ignored

// Colors in KML's byte order: alpha, blue, green, red from the highest byte to the lowest.
struct KmlSettings {
  DWORD dwFlags = 5;
  DWORD dwLineWidth = 5;
  DWORD dwLineColor = 0xFF00FF00;
  DWORD dwPolygonColor = 0xC02FFF2F;
  float fTransparency = 25;                                  // of the fill, percent
  float fAltitude = 0, fRange = 0, fTilt = 0, fHeading = 0;  // of the view point
};

// Reads HKEY_CURRENT_USER "Software\korvel\Configuration": four bytes of each value, whatever its type. A value that is
// missing or longer leaves the default; a shorter one replaces only the bytes it has. If the key could be opened, the
// line's alpha is set to 0xFF and the fill's alpha is computed from the transparency; otherwise both colors are the
// defaults.
KmlSettings ReadKmlSettings();

// Returns the fill's alpha, 0..255: the low byte of 255 - transparency * 256 / 100, truncated toward zero and clamped
// to 32 bits. 0 percent gives 255, 25 gives 191, and 100 gives 255 again (the low byte of -1). NaN and plus infinity
// give 0 (no fill), minus infinity 255.
DWORD FillAlpha(float transparencyPercent);

// The parts of KML documents: wide printf formats for ASCII text; every line ends with a line feed.

enum class KmlTemplate : size_t {
  kHeader,     // longitude, latitude, altitude, range, tilt, heading (double)
  kFooter,     // closes what the header opened
  kTrackHead,  // line color, line width, fill color, extrude, tessellate (long)
  kTrackTail,  // closes what the track head opened
  // A placemark for a single point, for hosts; the library writes none.
  kPointHead,  // name (wide text)
  kPoint,      // longitude, latitude, altitude (double)
  kPointTail,  // closes what the point head opened
  kCount,
};

const wchar_t* KmlTemplateText(KmlTemplate which);

// The file that exportWaypointsText writes, replacing an existing one. The folder is not created.
inline constexpr wchar_t kWaypointsPath[] = L"C:\\Temp\\Waypoints.txt";

// Points with a coordinate that is not finite are omitted from both documents.
//
// Writes the view's track to the view's KML path and opens it in the globe viewer. Returns 0, without starting a
// viewer, when the state is not writable, no point has finite coordinates, or the file cannot be created or written
// completely. For a track that is missing, empty or not accessible, writes and starts nothing and returns 1.
BOOL exportTrackKml(FlightTrackViewState* view);

// Writes the view's track to kWaypointsPath: a line with longitude, latitude and altitude for each point, from the
// fields that its kind selects. Returns 0 when the state is not writable, otherwise 1, even if nothing could be
// written. A point of unknown kind repeats the previous position, or the track's origin if it is the first.
BOOL exportWaypointsText(FlightTrackViewState* view);

// Opens the globe viewer at a position (degrees; range in meters), using a document in the temporary folder, and then
// activates the window's parent. The viewer is started even if the document could not be written; it then shows the
// previous document, if there is one. Returns 1.
BOOL showPositionInGlobe(HWND window, double longitude, double latitude, double range);

// Opens a document in the globe viewer. Does nothing if that is not installed.
void OpenInGlobe(const wchar_t* document);

// Returns whether the vendor's ground-station program is running.
BOOL isHelmsdeckRunning();

// Writes a KML document. Returns 0 when no point has finite coordinates or the file cannot be created or written
// completely.
BOOL WriteTrackKml(const wchar_t* path, const FlightTrack& track, std::span<const FlightTrackPoint> points,
                   const KmlSettings& settings);

// Writes a waypoints text as exportWaypointsText does. Returns 0 when the file cannot be created or written completely.
BOOL WriteTrackWaypoints(const wchar_t* path, const FlightTrack& track, std::span<const FlightTrackPoint> points);

}  // namespace kv
