#include "kv/toolkit/track_files.h"
#include <span>

#include "kv/export/flight_track.h"
#include "kv/export/kml_export.h"
#include "kv/framework/file_path.h"

namespace kv {

FlightTrack MakeFlightTrack(double latitude, double longitude, std::span<FlightTrackPoint> points) {
  return {.nPoints = static_cast<LONG>(points.size()),
          .dReferenceLatitude = latitude,
          .dReferenceLongitude = longitude,
          .lpPoints = points.data()};
}

bool WriteKml(const wchar_t* path, const FlightTrack& track, const KmlSettings& settings) {
  const std::span<const FlightTrackPoint> points = ReadablePoints(&track);
  return IsReadableText(path) && !points.empty() && WriteTrackKml(path, track, points, settings);
}

bool WriteWaypoints(const wchar_t* path, const FlightTrack& track) {
  const std::span<const FlightTrackPoint> points = ReadablePoints(&track);
  return IsReadableText(path) && !points.empty() && WriteTrackWaypoints(path, track, points);
}

}  // namespace kv
