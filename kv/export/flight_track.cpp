#include "kv/export/flight_track.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kv/framework/numbers.h"

namespace kv {

namespace {

constexpr double kMetersPerDegreeEast = 111319.49079327358;  // at the equator
constexpr double kMetersPerDegreeNorth = 110946.25761734763;

// WGS-84
constexpr double kEquatorRadius = 6378137.0;
constexpr double kFlattening = 1 / 298.257223563;
constexpr double kAxisRatio = 1 - kFlattening;  // polar to equatorial radius
constexpr double kPolarRadius = kEquatorRadius * kAxisRatio;
constexpr double kEccentricitySquared = kFlattening * (2 - kFlattening);
constexpr double kSecondEccentricitySquared = kEccentricitySquared / (1 - kEccentricitySquared);

double Cube(double value) {
  return value * value * value;
}

}  // namespace

std::span<const FlightTrackPoint> ReadablePoints(const FlightTrack* track) {
  if (IsBadWritePtr(const_cast<FlightTrack*>(track), sizeof(*track)) || track->nPoints <= 0) return {};
  const auto count = static_cast<size_t>(track->nPoints);
  if (count > SIZE_MAX / sizeof(FlightTrackPoint)) return {};
  if (IsBadReadPtr(track->lpPoints, count * sizeof(FlightTrackPoint))) return {};
  return {track->lpPoints, count};
}

LocalFrame LocalFrameOf(const FlightTrack& track) {
  return {.longitude = track.dReferenceLongitude,
          .latitude = track.dReferenceLatitude,
          .latitudeCosine = std::cos(Radians(track.dReferenceLatitude))};
}

GeodeticPosition PositionFromLocal(const LocalFrame& frame, double x, double y) {
  return {.longitude = x / kMetersPerDegreeEast / frame.latitudeCosine + frame.longitude,
          .latitude = frame.latitude - y / kMetersPerDegreeNorth};
}

// Bowring's method. Iterates the parametric latitude (the angle on the auxiliary sphere), stored as sine and cosine, so
// that poles and equator are not special cases. One iteration suffices near the surface; the others are for points deep
// below.
GeodeticPosition PositionFromEarthCentered(double x, double y, double z) {
  constexpr int kRounds = 6;
  const double fromAxis = std::hypot(x, y);
  double up = z, out = fromAxis;
  double sine = z, cosine = fromAxis * kAxisRatio;  // of the parametric latitude, times a common length
  for (int round = 0; round < kRounds; ++round) {
    const double length = std::hypot(sine, cosine);
    if (length == 0) break;
    up = z + kSecondEccentricitySquared * kPolarRadius * Cube(sine / length);
    out = fromAxis - kEccentricitySquared * kEquatorRadius * Cube(cosine / length);
    sine = up * kAxisRatio;
    cosine = out;
  }
  return {.longitude = Degrees(std::atan2(y, x)), .latitude = Degrees(std::atan2(up, out))};
}

GeodeticPosition GeodeticPositionOf(const LocalFrame& frame, const FlightTrackPoint& point, GeodeticPosition previous) {
  switch (point.bKind) {
    case kPointGeodetic: return {.longitude = point.dLongitude, .latitude = point.dLatitude};
    case kPointEarthCentered: return PositionFromEarthCentered(point.dCenteredX, point.dCenteredY, point.dCenteredZ);
    case kPointLocal: return PositionFromLocal(frame, point.dX, point.dY);
    default: return previous;
  }
}

}  // namespace kv
