// Flight tracks as KML documents and as waypoints text, and the globe viewer that shows the documents.
//
// The operations run on the thread of the flight track view, show no message and start the viewer only through
// framework/shell_launch.h. A file is written and closed before the viewer starts. A file that could not be written
// whole (a full disk) is removed: the viewer never reads half a document, and nobody takes half a flight for a whole
// one.
#pragma once

#include <windows.h>

#include <span>

#include "export/flight_track.h"
#include "export/kml_settings.h"

namespace kv {

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
