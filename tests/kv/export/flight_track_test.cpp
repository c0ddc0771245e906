#include "kv/export/flight_track.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <numbers>

#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr double kRadian = std::numbers::pi / 180;

// The earth-centered x, y, z of a position.
std::array<double, 3> CenteredFrom(double latitude, double longitude, double height) {
  constexpr double kRadius = 6378137.0, kFlat = 1 / 298.257223563, kE2 = kFlat * (2 - kFlat);
  const double sine = std::sin(latitude * kRadian);
  const double normal = kRadius / std::sqrt(1 - kE2 * sine * sine);
  const double out = (normal + height) * std::cos(latitude * kRadian);
  return {out * std::cos(longitude * kRadian), out * std::sin(longitude * kRadian),
          (normal * (1 - kE2) + height) * sine};
}

void ExpectPosition(double latitude, double longitude, GeodeticPosition found, double tolerance = 1e-11) {
  EXPECT_NEAR(latitude, found.latitude, tolerance);
  EXPECT_NEAR(longitude, found.longitude, tolerance);
}

TEST(EarthCentered, KnownPositions) {
  ExpectPosition(0, 180, PositionFromEarthCentered(-6378137, 0, 0));
  ExpectPosition(90, 0, PositionFromEarthCentered(0, 0, 6356752.314245179));
  ExpectPosition(-90, 0, PositionFromEarthCentered(0, 0, -1e9));
  ExpectPosition(0, 0, PositionFromEarthCentered(0, 0, 0));
  ExpectPosition(0, 0, PositionFromEarthCentered(1000, 0, 0));  // not unique at this depth, but a position
  EXPECT_TRUE(std::isnan(PositionFromEarthCentered(NAN, 0, 1).latitude));
}

TEST(EarthCentered, RoundTrip) {
  for (const double height : {-6.3e6, -5e6, -1e4, 0.0, 9e3, 4e5, 3.6e7, 1e12}) {
    for (double latitude = -90; latitude <= 90; latitude += 0.25) {
      const double longitude = latitude * 1.99;
      const auto [x, y, z] = CenteredFrom(latitude, longitude, height);
      const GeodeticPosition found = PositionFromEarthCentered(x, y, z);
      ASSERT_NEAR(latitude, found.latitude, 1e-11) << height;
      ASSERT_NEAR(std::fabs(latitude) < 90 ? longitude : found.longitude, found.longitude, 1e-11) << height;
    }
  }
}

TEST(LocalFrame, EastIsPositiveXAndSouthIsPositiveY) {
  FlightTrack track{};
  track.dReferenceLatitude = 60;
  track.dReferenceLongitude = 179;
  const LocalFrame frame = LocalFrameOf(track);
  ExpectPosition(60, 179, PositionFromLocal(frame, 0, 0));
  // Two degrees east, at half the length that a degree has at the equator, not wrapped; one degree south.
  ExpectPosition(59, 181, PositionFromLocal(frame, 111319.49079327358, 110946.25761734763), 1e-9);

  track.dReferenceLatitude = 90;
  EXPECT_GT(PositionFromLocal(LocalFrameOf(track), 1, 0).longitude, 1e9);
}

TEST(ReadablePoints, TestsRecordCountAndPoints) {
  kvtest::GuardedBytes points(2 * sizeof(FlightTrackPoint)), shortRecord(sizeof(FlightTrack) - 8);
  FlightTrack track{.nPoints = 2, .lpPoints = points.as<FlightTrackPoint>()};
  std::memcpy(shortRecord.data(), &track, sizeof(track) - 8);
  EXPECT_TRUE(ReadablePoints(nullptr).empty() && ReadablePoints(shortRecord.as<FlightTrack>()).empty());
  points.MakeReadOnly();
  EXPECT_EQ(2u, ReadablePoints(&track).size());
  for (const LONG badCount : {0L, -1L, 3L, 0x7FFFFFFFL, 59652324L}) {  // the last one: slightly more than 2^32 bytes
    track.nPoints = badCount;
    EXPECT_TRUE(ReadablePoints(&track).empty()) << badCount;
  }
  track = {.nPoints = 2};
  EXPECT_TRUE(ReadablePoints(&track).empty());
}

}  // namespace
}  // namespace kv
