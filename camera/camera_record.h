// The camera's wire format: 41 bytes of 8-bit text, "XXXX,YYYY,XXXX,YYYY,XXXX,YYYY,XXXX,YYYY" and two closing bytes,
// one (x, y) pair for each of the four points. See docs/wire-format.md. Pure functions, any thread.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kv {

// A point in camera coordinates: x 0..1023 to the right, y 0..767 downwards.

struct CameraPoint {
  LONG x, y;
};
static_assert(sizeof(CameraPoint) == 8);

inline constexpr int kPointCount = 4;
inline constexpr int kFieldWidth = 1024;
inline constexpr int kFieldHeight = 768;
// A coordinate with this value means "no point".
inline constexpr LONG kNoPoint = 1023;

inline constexpr size_t kRecordLength = 41;

// Returns true if the seven commas between the eight number fields are at their positions. Nothing else is checked:
// number fields are parsed leniently, and the closing bytes may have any value.
bool HasRecordShape(const char* record);

// Parses the points of a record that has the right shape. `record` must be terminated after its 41 bytes and is
// modified (commas become terminators). A point without a pair of numbers keeps its value in `points`.
void ParseRecord(char* record, CameraPoint (&points)[kPointCount]);

// Writes the record of four points as the camera sends it: numbers with leading zeros, CR LF as closing bytes. Each
// coordinate must have at most four characters, including its sign. `record` is not terminated.
void WriteRecord(const CameraPoint (&points)[kPointCount], char (&record)[kRecordLength]);

}  // namespace kv
