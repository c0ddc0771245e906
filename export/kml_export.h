// Flight tracks as KML documents and as waypoints text, and the globe viewer that shows the documents.
//
// The operations run on the thread of the flight track view, show no message and start the viewer only through
// framework/shell_launch.h. A file is written and closed before the viewer starts. A file that could not be written
// whole (a full disk) is removed: the viewer never reads half a document, and nobody takes half a flight for a whole
// one.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>

#include "export/flight_track.h"

namespace kv {

// What the user's registry says about the look of an exported track. Read on every call.

inline constexpr DWORD kKmlExtrude = 2;     // bits of dwFlags
inline constexpr DWORD kKmlTessellate = 4;  // (bit 1 means nothing to the export)

// Colours in KML's order: alpha, blue, green, red from the highest byte to the lowest.
struct KmlSettings {
  DWORD dwFlags = 5;
  DWORD dwLineWidth = 5;
  DWORD dwLineColor = 0xFF00FF00;
  DWORD dwPolygonColor = 0xC02FFF2F;
  float fTransparency = 25;                                  // of the fill, percent
  float fAltitude = 0, fRange = 0, fTilt = 0, fHeading = 0;  // of the view point
};

// Reads HKEY_CURRENT_USER "Software\korvel\Configuration": four bytes of each value, whatever its type. A value that is
// missing or longer leaves the default; a shorter one leaves the default's bytes that it does not cover. When the key
// could be opened, the line's alpha becomes 0xFF and the fill's alpha follows from the transparency; otherwise both
// colours are the defaults as they stand.
KmlSettings ReadKmlSettings();

// The fill's alpha, 0..255: the low byte of 255 - transparency * 256 / 100, truncated towards zero and limited to 32
// bits. 0 percent gives 255, 25 gives 191, and 100 gives 255 again (the low byte of -1). Not a number and plus infinity
// give 0 (nothing is filled), minus infinity 255.
DWORD FillAlpha(float transparencyPercent);

// The texts that KML documents are put together from, in one table. Wide printf formats for ASCII text; every line ends
// in one line feed.

enum class KmlTemplate : size_t {
  kHeader,     // longitude, latitude, altitude, range, tilt, heading (double)
  kFooter,     // closes what the header opened
  kTrackHead,  // line colour, line width, fill colour, extrude, tessellate (long)
  kTrackTail,  // closes what the track head opened
  // A placemark for a single point. No operation of ours writes one; a host may.
  kPointHead,  // name (wide text)
  kPoint,      // longitude, latitude, altitude (double)
  kPointTail,  // closes what the point head opened
  kCount,
};

const wchar_t* KmlTemplateText(KmlTemplate which);

// Where exportWaypointsText writes, replacing what is there. The folder is not created.
inline constexpr wchar_t kWaypointsPath[] = L"C:\\Temp\\Waypoints.txt";

// Points that are nowhere (a coordinate that is not a finite number) are left out of both documents.
//
// Writes the view's track to the view's KML path and opens it in the globe viewer. Returns 0 when the state is not
// writable, no point is anywhere, or the file cannot be created or written whole; then no viewer starts. A track that
// is missing, empty or not accessible writes nothing, starts nothing and returns 1.
BOOL exportTrackKml(FlightTrackViewState* view);

// Writes the view's track to kWaypointsPath: one line of longitude, latitude and altitude for each point, taken from
// what the point's kind says. Returns 0 when the state is not writable, else 1, also when nothing could be written. A
// point of unknown kind repeats the position before it; the first one then stands at the track's origin.
BOOL exportWaypointsText(FlightTrackViewState* view);

// Opens the globe viewer at a position (degrees; range in metres), through a document in the temporary folder, and then
// makes the window's parent the active window. The viewer is started even if the document could not be written; it
// then shows the one from last time, if any. Returns 1.
BOOL showPositionInGlobe(HWND window, double longitude, double latitude, double range);

// Whether the ground-station program of the same house is running.
BOOL isHelmsdeckRunning();

// Writes the document itself; returns 0 when no point is anywhere or the file cannot be created or written whole.
BOOL WriteTrackKml(const wchar_t* path, const FlightTrack& track, std::span<const FlightTrackPoint> points,
                   const KmlSettings& settings);

// Writes the waypoints text itself, as exportWaypointsText does; returns 0 when the file cannot be created or written
// whole.
BOOL WriteTrackWaypoints(const wchar_t* path, const FlightTrack& track, std::span<const FlightTrackPoint> points);

}  // namespace kv
