#include "tests/fuzz/targets.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_record.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camtool/point_paths.h"
#include "kv/framework/window_position.h"
#include "tests/support/read_recording.h"
#include "tests/support/test_window.h"

namespace fuzz {

namespace {

// No field of four characters has this value.
constexpr LONG kKept = 123456;
constexpr char kRecord[] = "0100,0200,0300,0400,1023,1023,0512,0384\r\n";

// ---- The record reader ----------------------------------------------------------------------------------------------

std::vector<std::string> Records() {
  return {kRecord, "   1,  20, 300,4000,-123,+045,1023,1023xx", "0000,0000,0000,0000,0000,0000,0000,0000\r\n"};
}

const char* FeedRecord(std::string_view input, bool* accepted) {
  static const kvtest::GuardedBytes area(kAreaSize);
  // Tarnwick passes 41 bytes, padded with zeros, and a terminator.
  std::string padded(input);
  padded.resize(kv::kRecordLength + 1);
  padded.back() = '\0';
  char* record = const_cast<char*>(PutAtEnd(area, padded).data());
  *accepted = kv::HasRecordShape(record);
  kv::CameraPoint points[kv::kPointCount];
  std::ranges::fill(points, kv::CameraPoint{kKept, kKept});
  kv::ParseRecord(record, points);
  // A zero byte ends the text for the parser: points after it are unchanged.
  const bool hasText = padded.find('\0') == kv::kRecordLength;
  const bool isKept = std::ranges::any_of(points, [](kv::CameraPoint p) { return p.x == kKept; });
  if (*accepted && hasText && isKept) return "a record of the right shape is read";
  return nullptr;
}

const char* FeedStreamOfRecords(std::string_view input, bool* accepted) {
  camera::RecordStream whole, pieces;
  camera::FeedStream(&whole, 0, input, nullptr);
  for (size_t at = 0; at < input.size(); at += 7) camera::FeedStream(&pieces, 0, input.substr(at, 7), nullptr);
  camera::EndStream(&whole);
  camera::EndStream(&pieces);
  *accepted = whole.records > 0;
  const auto all =
      whole.records * 41 + whole.leadBytes + whole.malformedBytes + static_cast<long long>(whole.pending.size());
  if (all != static_cast<long long>(input.size())) return "every byte is counted once";
  if (whole.records != pieces.records || whole.malformedBytes != pieces.malformedBytes) {
    return "pieces give what the whole gives";
  }
  return nullptr;
}

std::vector<std::string> Streams() {
  const std::string record = kRecord;
  return {record + record + record, record + "noise" + record, record.substr(20) + record + record.substr(0, 39)};
}

// ---- Recordings and paths -------------------------------------------------------------------------------------------

std::vector<std::string> Recordings() {
  std::string file = camera::EncodeHeader({1, 38400, 3});
  for (int i = 0; i < 4; ++i) file += camera::EncodeChunks(static_cast<std::uint64_t>(i) * 11000, kRecord);
  return {file + camera::EncodeEnd(50000), file, file.substr(0, 60)};
}

const char* FeedRecording(std::string_view input, bool* accepted) {
  const kvtest::Read whole = kvtest::ReadAll(input, 100000), pieces = kvtest::ReadAll(input, 37);
  *accepted = whole.isRecording && whole.decoder.hasEnd && whole.decoder.damageCount == 0;
  if (whole.bytes.size() > input.size()) return "no more comes out than went in";
  if (whole.isRecording != pieces.isRecording || whole.bytes != pieces.bytes || whole.truncated != pieces.truncated) {
    return "pieces give what the whole gives";
  }
  return nullptr;
}

std::vector<std::string> Paths() {
  return {"seconds,x1,y1,x2,y2,x3,y3,x4,y4\n0.5,1,2,3,4,5,6,7,8\n1.5,1023,1023,3,4,5,6,7,8\n", "1;2\r\n3;4\r\n",
          "\xEF\xBB\xBF"
          "1\t2\t3\t4\n\n\"5\"\t6\t\t\n"};
}

const char* FeedPath(std::string_view input, bool* accepted) {
  camtool::PointPath path;
  std::string error;
  *accepted = camtool::ParsePath(input, &path, &error);
  if (*accepted != error.empty()) return "a refusal has a reason, and only that";
  for (int record = 0; *accepted && record < 5; ++record) {
    kv::CameraPoint points[kv::kPointCount];
    camtool::PointsOnPath(path, record * 1e6, record, points);
    for (const kv::CameraPoint& point : points) {
      if (point.x < 0 || point.x > 1023 || point.y < 0 || point.y > 1023) return "points are in range";
    }
  }
  return nullptr;
}

// ---- Position texts -------------------------------------------------------------------------------------------------

std::vector<std::string> Positions() {
  return {"100,200,800,600", "-30,-20,770,580", "10,20", "120", "2147483647,-2147483648,0,0"};
}

const char* FeedPosition(std::string_view input, bool* accepted) {
  static const kvtest::GuardedBytes area(kAreaSize);
  const std::string terminated = std::string(input) + '\0';
  const RECT position = kv::ParsePosition(PutAtEnd(area, terminated).data());
  const RECT clamped = kv::ClampPosition(position);
  *accepted = position.right > position.left && position.bottom > position.top;
  const bool isRight =
      clamped.left >= 0 && clamped.top >= 0 && clamped.right == position.right && clamped.bottom == position.bottom;
  return isRight ? nullptr : "a clamped position begins on the screen and ends where it did";
}

const std::vector<std::string> kNumberWords = {
    "99999999999",        "-",    "-1",   ",",  ";", "\t", "\n", "1e308", "0x10", "nan",
    std::string(1, '\0'), "1023", "1024", "\"", "+", " "};

}  // namespace

const std::vector<std::string> kByteWords = {std::string(2, '\0'), "\xFF\xFF", std::string("\x01\0\xFF\xFF", 4),
                                             "\xEF\xBB\xBF",       "\xC0\x80", "\xED\xA0\x80",
                                             "\xF4\x90\x80\x80",   "\x80"};

std::string_view PutAtEnd(const kvtest::GuardedBytes& area, std::string_view bytes) {
  const size_t size = std::min(bytes.size(), kAreaSize);
  char* const begin = area.as<char>() + kAreaSize - size;
  std::memcpy(begin, bytes.data(), size);
  return {begin, size};
}

std::vector<Target> PlainTargets() {
  return {
      {"record reader", 60, Records, kNumberWords, FeedRecord},
      {"stream of records", 400, Streams, kNumberWords, FeedStreamOfRecords},
      {"recording format", 1000, Recordings, kByteWords, FeedRecording},
      {"path files (CSV)", 400, Paths, kNumberWords, FeedPath},
      {"position texts", 300, Positions, kNumberWords, FeedPosition},
  };
}

}  // namespace fuzz
