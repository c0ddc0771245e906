// A recorded flight: the record that its owner fills, where its points lie on the earth, and the state of the window
// that shows it. Metres and degrees. Pure functions of their arguments; any thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>

namespace kv {

// How a point states its position for the waypoints text. The views and the KML document always use the local x and y.
inline constexpr BYTE kPointGeodetic = 0;      // dLatitude, dLongitude
inline constexpr BYTE kPointEarthCentred = 1;  // dCentredX, dCentredY, dCentredZ
inline constexpr BYTE kPointLocal = 2;         // dX, dY

struct FlightTrackPoint {
  double dX;         // metres east of the track's origin
  double dY;         // metres south of the track's origin
  double dAltitude;  // metres above ground, whatever the kind
  BYTE bKind;        // kPoint...
  BYTE reserved[7];
  double dLatitude, dLongitude;  // degrees, WGS-84
  // Metres from the centre of the earth: x towards latitude 0, longitude 0; y towards longitude 90 east; z towards the
  // north pole.
  double dCentredX, dCentredY, dCentredZ;
};
static_assert(sizeof(FlightTrackPoint) == 72 && offsetof(FlightTrackPoint, bKind) == 24 &&
              offsetof(FlightTrackPoint, dLatitude) == 32 && offsetof(FlightTrackPoint, dCentredX) == 48);

// The record and its points belong to whoever hands the track to a view.
struct FlightTrack {
  LONG nPoints;
  DWORD dwReserved;
  double dReferenceLatitude, dReferenceLongitude;  // origin of the local frame
  FlightTrackPoint* lpPoints;                      // nPoints of them, in flight order
  BYTE reserved[612];                              // not used; zero
};
static_assert(sizeof(FlightTrack) == 640 && offsetof(FlightTrack, dReferenceLatitude) == 8 &&
              offsetof(FlightTrack, lpPoints) == 24);

// A temporary folder's path and a short file name.
inline constexpr size_t kKmlPathLength = MAX_PATH + 16;

// The state of a flight track view (export/flight_track_view.h makes and owns it).
struct FlightTrackViewState {
  HGLOBAL hMemory;
  FlightTrack* lpTrack;  // the newest track handed to the view, or null; its owner's memory
  BOOL bAutoExport;      // each new track is exported at once
  wchar_t szKmlPath[kKmlPathLength];
  BYTE reserved[508];
};
static_assert(sizeof(FlightTrackViewState) == 1072 && offsetof(FlightTrackViewState, szKmlPath) == 12);

// The points of a track, or none: when the record is not writable over its whole size, when it has no points or a count
// below zero, and when the points are not readable over their whole length.
std::span<const FlightTrackPoint> ReadablePoints(const FlightTrack* track);

struct GeodeticPosition {
  double longitude, latitude;  // degrees, WGS-84
};

// The flat frame around a track's origin. Longitudes beyond 180 degrees are not wrapped, so that a line which crosses
// that meridian stays one line. At a pole the frame has no meaning and longitudes grow without measure.
struct LocalFrame {
  double longitude, latitude;
  double latitudeCosine;
};
LocalFrame LocalFrameOf(const FlightTrack& track);
GeodeticPosition PositionFromLocal(const LocalFrame& frame, double x, double y);

// The position on the WGS-84 ellipsoid, to better than 1e-11 degrees from 60 km above the earth's centre outwards
// (further in, a position is not unique; the result is then finite but arbitrary). Longitude -180..180; at a pole and
// at the centre it is what the signs of x and y say.
GeodeticPosition PositionFromEarthCentred(double x, double y, double z);

// The position that a point states by its kind, or `previous` for a kind that is not known.
GeodeticPosition GeodeticPositionOf(const LocalFrame& frame, const FlightTrackPoint& point, GeodeticPosition previous);

}  // namespace kv
