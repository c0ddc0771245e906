#include "camera/camera_record.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace kv {
namespace {

// The points after parsing, each as "x,y"; a point without numbers remains at 1024,768.
std::string Parse(std::string record) {
  CameraPoint points[kPointCount];
  for (CameraPoint& point : points) point = {1024, 768};
  ParseRecord(record.data(), points);
  std::string text;
  for (const CameraPoint& point : points) text += " " + std::to_string(point.x) + "," + std::to_string(point.y);
  return text.substr(1);
}

TEST(CameraRecord, OnlyTheCommasAreChecked) {
  const std::string good = "0100,0200,0300,0400,1023,1023,1023,1023\r\n";
  ASSERT_EQ(kRecordLength, good.size());
  EXPECT_TRUE(HasRecordShape(good.data()));
  for (const int comma : {4, 9, 14, 19, 24, 29, 34}) {
    std::string bad = good;
    bad[comma] = ';';
    EXPECT_FALSE(HasRecordShape(bad.data())) << comma;
  }
  EXPECT_TRUE(HasRecordShape("abcd,    ,+001,-002,,,,,,....,    ,9999??"));
}

TEST(CameraRecord, NumbersAreParsedLeniently) {
  const std::pair<const char*, const char*> cases[] = {
      {"0100,0767,  12,   3,1023,1023,0000,0001\r\n", "100,767 12,3 1023,1023 0,1"},
      {"-001,+002,12x4,abcd,    ,0x10,7   ,  08??", "-1,2 12,0 0,0 7,8"},
      {"1,23,0200,0300,0400,0500,0600,0700,0800\r\n", "1,23 200,300 400,500 600,700"},  // a comma within a field
      {"0001,0002,0003", "1,2 1024,768 1024,768 1024,768"}};
  for (const auto& [record, points] : cases) EXPECT_EQ(points, Parse(record)) << record;
}

TEST(CameraRecord, FormattedRecordsRoundTrip) {
  const CameraPoint points[kPointCount] = {{0, 0}, {1023, 767}, {512, 7}, {9, 1023}};
  char record[kRecordLength];
  WriteRecord(points, record);
  const std::string written(record, sizeof(record));
  EXPECT_EQ("0000,0000,1023,0767,0512,0007,0009,1023\r\n", written);
  EXPECT_EQ("0,0 1023,767 512,7 9,1023", Parse(written));
}

}  // namespace
}  // namespace kv
