// A recorded flight as a file: KML for globe viewers, or waypoints as text. Any thread; each call writes one file,
// which is either whole or not there.
#pragma once

#include <windows.h>

#include <span>

#include "export/flight_track.h"
#include "export/kml_export.h"

namespace kv {

// A track about an origin in degrees. The points stay the caller's and must live as long as the track is used.
FlightTrack MakeFlightTrack(double latitude, double longitude, std::span<FlightTrackPoint> points);

// Both functions write the track to `path`, replacing a file that is there. They return 0, and leave no file behind,
// when the track has no readable points, the path cannot be read, or the file cannot be created or written whole.

// A KML document, which takes its look from `settings`, by default those of the user.
BOOL WriteKml(const wchar_t* path, const FlightTrack& track, const KmlSettings& settings = ReadKmlSettings());

// One line of longitude, latitude (degrees) and altitude (metres) for each point, from what the point's kind says. A
// point of unknown kind repeats the position before it; the first one then stands at the track's origin.
BOOL WriteWaypoints(const wchar_t* path, const FlightTrack& track);

}  // namespace kv
