#include "kv/toolkit/track_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include "kv/export/flight_track.h"
#include "tests/support/files.h"

namespace kv {
namespace {

TEST(TrackFiles, WriteAWholeTrackOrNothing) {
  const std::filesystem::path path = std::filesystem::temp_directory_path() / L"kv toolkit Ω.txt";
  FlightTrackPoint points[] = {{.dAltitude = 12.5, .bKind = kPointLocal},
                               {.dAltitude = 9, .bKind = kPointGeodetic, .dLatitude = 1, .dLongitude = -2}};
  const FlightTrack track = MakeFlightTrack(46, 8, points);
  EXPECT_TRUE(WriteWaypoints(path.c_str(), track));
  EXPECT_EQ("8.0000000000,46.0000000000,12.5\r\n-2.0000000000,1.0000000000,9.0\r\n", kvtest::BytesOf(path));
  EXPECT_TRUE(WriteKml(path.c_str(), track, {.dwLineWidth = 3}));
  EXPECT_NE(std::string::npos, kvtest::BytesOf(path).find("<width>3</width>"));
  std::filesystem::remove(path);
  EXPECT_FALSE(WriteWaypoints(path.c_str(), MakeFlightTrack(46, 8, {})));
  EXPECT_FALSE(WriteKml(path.c_str(), MakeFlightTrack(46, 8, {})));
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_FALSE(WriteWaypoints(nullptr, track));
}

}  // namespace
}  // namespace kv
