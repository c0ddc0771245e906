#include "camera/camera_record.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace kv {

bool HasRecordShape(const char* record) {
  constexpr int kCommas[] = {4, 9, 14, 19, 24, 29, 34};
  return std::ranges::all_of(kCommas, [&](int offset) { return record[offset] == ','; });
}

void ParseRecord(char* record, CameraPoint (&points)[kPointCount]) {
  char* cursor = record;
  for (CameraPoint& point : points) {
    char* comma = std::strchr(cursor, ',');
    if (!comma) return;
    *comma = '\0';
    // The format follows the rules of atol: blanks and leading zeros are padding, and a number ends at the first other
    // character.
    point = {std::atol(cursor), std::atol(comma + 1)};
    comma = std::strchr(comma + 1, ',');
    if (!comma) return;
    cursor = comma + 1;
  }
}

void WriteRecord(const CameraPoint (&points)[kPointCount], char (&record)[kRecordLength]) {
  char text[kRecordLength + 1];
  std::snprintf(text, sizeof(text), "%04ld,%04ld,%04ld,%04ld,%04ld,%04ld,%04ld,%04ld\r\n", points[0].x, points[0].y,
                points[1].x, points[1].y, points[2].x, points[2].y, points[3].x, points[3].y);
  std::memcpy(record, text, sizeof(record));
}

}  // namespace kv
