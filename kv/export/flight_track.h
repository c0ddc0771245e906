// A recorded flight: the data that the owner provides, the positions of its points on the earth, and the state of the
// window that shows it. Meters and degrees. Pure functions; any thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>

namespace kv {

// Which fields of a point contain its position for the waypoints text. The views and the KML document always use dX and
// dY.
inline constexpr BYTE kPointGeodetic = 0;       // dLatitude, dLongitude
inline constexpr BYTE kPointEarthCentered = 1;  // dCenteredX, dCenteredY, dCenteredZ
inline constexpr BYTE kPointLocal = 2;          // dX, dY

struct FlightTrackPoint {
  double dX;         // meters east of the track's origin
  double dY;         // meters south of the track's origin
  double dAltitude;  // meters above ground, whatever the kind
  BYTE bKind;        // kPoint...
  BYTE reserved[7];
  double dLatitude, dLongitude;  // degrees, WGS-84
  // Meters from the center of the earth: x toward latitude 0, longitude 0; y toward longitude 90 east; z toward the
  // north pole.
  double dCenteredX, dCenteredY, dCenteredZ;
};
static_assert(sizeof(FlightTrackPoint) == 72 && offsetof(FlightTrackPoint, bKind) == 24 &&
              offsetof(FlightTrackPoint, dLatitude) == 32 && offsetof(FlightTrackPoint, dCenteredX) == 48);

// The track and its points belong to the caller that passes it to a view.
struct FlightTrack {
  LONG nPoints;
  DWORD dwReserved;
  double dReferenceLatitude, dReferenceLongitude;  // origin of the local frame
  FlightTrackPoint* lpPoints;                      // nPoints of them, in flight order
  BYTE reserved[612];                              // not used; zero
};
static_assert(sizeof(FlightTrack) == 640 && offsetof(FlightTrack, dReferenceLatitude) == 8 &&
              offsetof(FlightTrack, lpPoints) == 24);

// The path of a temporary folder and a short file name.
inline constexpr size_t kKmlPathLength = MAX_PATH + 16;

// The state of a flight track view, created and owned by kv/export/flight_track_view.h.
struct FlightTrackViewState {
  HGLOBAL hMemory;
  FlightTrack* lpTrack;  // the current track, or null; memory of its owner
  BOOL bAutoExport;      // each new track is exported at once
  wchar_t szKmlPath[kKmlPathLength];
  BYTE reserved[508];
};
static_assert(sizeof(FlightTrackViewState) == 1072 && offsetof(FlightTrackViewState, szKmlPath) == 12);

// Returns the points of a track; none when the track is not writable over its whole size, its count is not positive, or
// the points are not readable over their whole length.
std::span<const FlightTrackPoint> ReadablePoints(const FlightTrack* track);

struct GeodeticPosition {
  double longitude, latitude;  // degrees, WGS-84
};

// A flat coordinate frame around a track's origin. Longitudes beyond 180 degrees are not wrapped, so that a line across
// that meridian stays one line. At a pole the frame is undefined and longitudes grow without bound.
struct LocalFrame {
  double longitude, latitude;
  double latitudeCosine;
};
LocalFrame LocalFrameOf(const FlightTrack& track);
GeodeticPosition PositionFromLocal(const LocalFrame& frame, double x, double y);

// Returns the position on the WGS-84 ellipsoid, accurate to 1e-11 degrees from 60 km above the earth's center outwards
// (further in, positions are not unique and the result is finite but arbitrary). Longitude -180..180; at a pole and at
// the center it follows from the signs of x and y.
GeodeticPosition PositionFromEarthCentered(double x, double y, double z);

// Returns the position that a point's kind selects; `previous` for an unknown kind.
GeodeticPosition GeodeticPositionOf(const LocalFrame& frame, const FlightTrackPoint& point, GeodeticPosition previous);

}  // namespace kv
