// The camera's wire format: 41 bytes of 8-bit text, "XXXX,YYYY,XXXX,YYYY,XXXX,YYYY,XXXX,YYYY" and two closing bytes,
// one (x, y) pair for each of the four points. docs/wire-format.md tells the whole story. Pure functions, any thread.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kv {

// A point as the camera reports it.

// Camera coordinates: x 0..1023 to the right, y 0..767 downwards.
struct CameraPoint {
  LONG x, y;
};
static_assert(sizeof(CameraPoint) == 8);

inline constexpr int kPointCount = 4;
inline constexpr int kFieldWidth = 1024;
inline constexpr int kFieldHeight = 768;
// A coordinate of this value stands for "no point".
inline constexpr LONG kNoPoint = 1023;

inline constexpr size_t kRecordLength = 41;

// True if the seven commas between the eight number fields stand where they belong. Nothing else of a record is
// checked: the number fields are read leniently, and the closing bytes are the camera's own affair.
bool HasRecordShape(const char* record);

// Reads the points of a record that has the right shape. `record` needs a terminator behind its 41 bytes and is used
// up: commas become terminators. A point for which no number pair is left keeps the value that `points` holds.
void ParseRecord(char* record, CameraPoint (&points)[kPointCount]);

// Writes the record of four points, as the camera would send it: numbers with leading zeros, CR LF as closing bytes.
// Each coordinate must have at most four characters, its sign included. `record` gets no terminator.
void WriteRecord(const CameraPoint (&points)[kPointCount], char (&record)[kRecordLength]);

}  // namespace kv
