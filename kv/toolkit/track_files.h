// Saves a recorded flight as a KML document for globe viewers, or as waypoints text. Any thread.
#pragma once

#include <windows.h>

#include <span>

#include "kv/export/flight_track.h"
#include "kv/export/kml_export.h"

namespace kv {

// A track with an origin in degrees. It refers to the caller's points, which must exist as long as the track is used.
FlightTrack MakeFlightTrack(double latitude, double longitude, std::span<FlightTrackPoint> points);

// Both functions write the track to `path`, replacing an existing file. If the track has no readable points, the path
// is not readable, or the file cannot be written completely, they return false and leave files as they are;
// GetLastError then returns the reason (kv/toolkit/error_text.h).

// Writes a KML document with the appearance in `settings`; the default are the user's settings.
bool WriteKml(const wchar_t* path, const FlightTrack& track, const KmlSettings& settings = ReadKmlSettings());

// Writes one line for each point: longitude and latitude in degrees, altitude in meters, from the fields that the
// point's kind selects. A point of unknown kind repeats the previous position; for the first point, that is the track's
// origin.
bool WriteWaypoints(const wchar_t* path, const FlightTrack& track);

}  // namespace kv
