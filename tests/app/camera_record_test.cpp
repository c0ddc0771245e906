#include "app/camera_record.h"

#include <gtest/gtest.h>

#include <string>

namespace kv {
namespace {

struct Parsed {
  CameraPoint points[kPointCount];
};

Parsed Parse(std::string record) {
  Parsed parsed;
  for (CameraPoint& point : parsed.points) point = {1024, 768};
  ParseRecord(record.data(), parsed.points);
  return parsed;
}

void ExpectPoint(const CameraPoint& point, LONG x, LONG y) {
  EXPECT_EQ(x, point.x);
  EXPECT_EQ(y, point.y);
}

TEST(CameraRecord, EveryCommaCountsAndNothingElse) {
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

TEST(CameraRecord, NumbersAreReadLeniently) {
  const Parsed padded = Parse("0100,0767,  12,   3,1023,1023,0000,0001\r\n");
  ExpectPoint(padded.points[0], 100, 767);
  ExpectPoint(padded.points[1], 12, 3);
  ExpectPoint(padded.points[2], 1023, 1023);
  ExpectPoint(padded.points[3], 0, 1);

  const Parsed odd = Parse("-001,+002,12x4,abcd,    ,0x10,7   ,  08??");
  ExpectPoint(odd.points[0], -1, 2);
  ExpectPoint(odd.points[1], 12, 0);
  ExpectPoint(odd.points[2], 0, 0);
  ExpectPoint(odd.points[3], 7, 8);
}

TEST(CameraRecord, CommasInsideFieldsShiftTheNumbers) {
  const Parsed shifted = Parse("1,23,0200,0300,0400,0500,0600,0700,0800\r\n");
  ExpectPoint(shifted.points[0], 1, 23);
  ExpectPoint(shifted.points[1], 200, 300);
  ExpectPoint(shifted.points[3], 600, 700);
}

TEST(CameraRecord, PointsWithoutNumbersKeepTheirValue) {
  const Parsed cut = Parse("0001,0002,0003");
  ExpectPoint(cut.points[0], 1, 2);
  ExpectPoint(cut.points[1], 1024, 768);
  ExpectPoint(cut.points[3], 1024, 768);
}

TEST(CameraRecord, WrittenRecordsReadBack) {
  const CameraPoint points[kPointCount] = {{0, 0}, {1023, 767}, {512, 7}, {9, 1023}};
  char record[kRecordLength];
  WriteRecord(points, record);
  EXPECT_EQ("0000,0000,1023,0767,0512,0007,0009,1023\r\n", std::string(record, sizeof(record)));
  const Parsed parsed = Parse(std::string(record, sizeof(record)));
  for (int i = 0; i < kPointCount; ++i) ExpectPoint(parsed.points[i], points[i].x, points[i].y);
}

}  // namespace
}  // namespace kv
