#include "camera/record_stream.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_record.h"
#include "camera/text.h"

namespace camera {

namespace {

constexpr size_t kFieldBytes = 39;  // fields and commas, without the closing bytes
constexpr size_t kFieldPitch = 5;

// Returns whether a field is a number as the camera writes it: digits, preceded only by blanks or a plus.
bool IsNumber(std::string_view field) {
  field.remove_prefix(std::min(field.find_first_not_of(' '), field.size()));
  if (field.starts_with('+')) field.remove_prefix(1);
  return !field.empty() && std::ranges::all_of(field, [](char byte) { return byte >= '0' && byte <= '9'; });
}

// Returns whether Tarnwick reads other points than a record contains. The last number continues into the closing bytes
// if they begin with a digit.
bool HasInvalidNumbers(std::string_view record) {
  for (size_t at = 0; at < kFieldBytes; at += kFieldPitch) {
    if (!IsNumber(record.substr(at, kFieldPitch - 1))) return true;
  }
  return record[kFieldBytes] >= '0' && record[kFieldBytes] <= '9';
}

// Parses a record with four digits for each number, as a camera sends it. Returns false for any other, which takes
// longer to parse.
bool ParseDigits(const char* record, kv::CameraPoint (&points)[kv::kPointCount]) {
  LONG numbers[2 * kv::kPointCount];
  for (LONG& number : numbers) {
    number = 0;
    for (size_t i = 0; i < kFieldPitch - 1; ++i) {
      const unsigned digit = static_cast<unsigned char>(record[i]) - unsigned{'0'};
      if (digit > 9) return false;
      number = number * 10 + static_cast<LONG>(digit);
    }
    record += kFieldPitch;
  }
  if (record[-1] >= '0' && record[-1] <= '9') return false;  // the last number would continue there
  for (int i = 0; i < kv::kPointCount; ++i) points[i] = {numbers[2 * i], numbers[2 * i + 1]};
  return true;
}

bool IsInRange(const kv::CameraPoint& point) {
  return std::min(point.x, point.y) >= 0 && std::max(point.x, point.y) <= kv::kNoPoint;
}

// In addition to the shape, there must be no comma in place of a closing byte: that happens when a record is truncated
// after a field and followed by the next one, and no camera sends such a record.
bool IsRecord(const char* bytes) {
  return kv::HasRecordShape(bytes) && bytes[kFieldBytes] != ',';
}

// Returns its number of malformed bytes.
long long CloseSection(RecordStream* stream) {
  MalformedSection& open = stream->open;
  const long long bytes = open.bytes;
  if (bytes == 0) return 0;
  const bool isLead =
      stream->records == 0 && stream->malformedSections == 0 && open.bytes < static_cast<long long>(kv::kRecordLength);
  if (isLead) {
    stream->leadBytes = open.bytes;
  } else {
    stream->malformedBytes += open.bytes;
    ++stream->malformedSections;
    if (stream->sections.size() < kMaxSections) stream->sections.push_back(open);
  }
  open.bytes = 0;
  open.sample.clear();
  return isLead ? 0 : bytes;
}

void AddRecord(RecordStream* stream, const char* bytes, double seconds, std::vector<FoundRecord>* found) {
  // A field that cannot be parsed (after a zero byte) keeps its last value, as in Tarnwick.
  FoundRecord& record = stream->last;
  record.seconds = seconds;
  record.malformedSince = stream->open.seconds;
  record.malformedBytes = CloseSection(stream);
  record.isInvalid = !ParseDigits(bytes, record.points);
  if (record.isInvalid) {
    char text[kv::kRecordLength + 1] = "";
    std::memcpy(text, bytes, kv::kRecordLength);
    record.isInvalid = HasInvalidNumbers({bytes, kv::kRecordLength});
    kv::ParseRecord(text, record.points);
  }
  record.isInRange = std::ranges::all_of(record.points, IsInRange);
  record.isInvalid |= !record.isInRange;
  if (stream->records++ == 0) stream->firstSeconds = seconds;
  stream->lastSeconds = seconds;
  stream->invalidRecords += record.isInvalid;
  stream->outOfRange += !record.isInRange;
  if (found) found->push_back(record);
}

void SkipByte(MalformedSection* open, char byte, double seconds) {
  if (open->bytes++ == 0) open->seconds = seconds;
  if (open->sample.size() < kSectionSample) open->sample += byte;
}

}  // namespace

void FeedStream(RecordStream* stream, double seconds, std::string_view bytes, std::vector<FoundRecord>* found) {
  if (bytes.empty()) return;
  const double gap = stream->lastArrival >= 0 ? seconds - stream->lastArrival : 0;
  stream->longestGap = std::max(stream->longestGap, gap);
  stream->lastArrival = seconds;
  stream->bytes += static_cast<long long>(bytes.size());
  stream->pending += bytes;
  stream->pieces.push_back({stream->pending.size(), seconds});
  const RecordStream::Piece* piece = stream->pieces.data();
  // Returns the time of the byte at that offset; called in ascending order.
  const auto secondsAt = [&](size_t offset) {
    while (piece->end <= offset) ++piece;
    return piece->seconds;
  };
  size_t at = 0;
  while (stream->pending.size() - at >= kv::kRecordLength) {
    const char* here = stream->pending.data() + at;
    if (IsRecord(here)) {
      AddRecord(stream, here, secondsAt(at + kv::kRecordLength - 1), found);
      at += kv::kRecordLength;
    } else {
      SkipByte(&stream->open, *here, secondsAt(at));
      ++at;
    }
  }
  stream->pending.erase(0, at);
  std::erase_if(stream->pieces, [&](const RecordStream::Piece& p) { return p.end <= at; });
  for (RecordStream::Piece& rest : stream->pieces) rest.end -= at;
}

void EndStream(RecordStream* stream) {
  // After malformed bytes the rest is malformed as well; after a record it is a truncated record.
  if (stream->open.bytes > 0 || stream->records == 0) {
    size_t at = 0;
    for (const RecordStream::Piece& piece : stream->pieces) {
      for (; at < piece.end; ++at) SkipByte(&stream->open, stream->pending[at], piece.seconds);
    }
    stream->pending.clear();
    stream->pieces.clear();
  }
  CloseSection(stream);
}

void InterruptStream(RecordStream* stream) {
  EndStream(stream);
  stream->pending.clear();
  stream->pieces.clear();
}

double RecordRate(const RecordStream& stream) {
  const double seconds = stream.lastSeconds - stream.firstSeconds;
  return seconds > 0 ? static_cast<double>(stream.records - 1) / seconds : 0;
}

double WellFormedShare(const RecordStream& stream) {
  const auto length = static_cast<double>(kv::kRecordLength);
  const auto good = static_cast<double>(stream.records);
  const double bad =
      std::max(static_cast<double>(stream.malformedBytes) / length, static_cast<double>(stream.malformedSections));
  return good > 0 ? good / (good + bad) : 0;
}

std::string DescribeMalformed(const RecordStream& stream) {
  if (stream.malformedSections == 0) return "no malformed sections";
  return Counted(static_cast<unsigned long long>(stream.malformedSections), "malformed section") + ", " +
         Counted(static_cast<unsigned long long>(stream.malformedBytes), "byte");
}

std::string CsvHeader() {
  return "seconds,x1,y1,x2,y2,x3,y3,x4,y4\n";
}

void AppendCsvRow(const FoundRecord& record, std::string* text) {
  // For millions of rows, printf would take most of the time of an export.
  char row[32 + kv::kPointCount * 24];
  const auto microseconds = std::llround(record.seconds * 1e6);
  char* end = std::to_chars(row, std::end(row), microseconds / 1000000).ptr;
  *end = '.';
  for (long long rest = microseconds % 1000000, digit = 6; digit > 0; --digit, rest /= 10) {
    end[digit] = static_cast<char>('0' + rest % 10);
  }
  end += 7;
  for (const kv::CameraPoint& point : record.points) {
    for (const LONG coordinate : {point.x, point.y}) {
      *end++ = ',';
      end = std::to_chars(end, std::end(row), coordinate).ptr;
    }
  }
  *end++ = '\n';
  text->append(row, end);
}

// ---- Statistics of a point ------------------------------------------------------------------------------------------

namespace {

void AddValue(LONG value, bool isFirst, Spread* spread) {
  spread->lowest = isFirst ? value : std::min(spread->lowest, value);
  spread->highest = isFirst ? value : std::max(spread->highest, value);
  spread->sum += value;
  spread->squares += static_cast<long long>(value) * value;
}

}  // namespace

void AddPoint(const kv::CameraPoint& point, PointSummary* summary) {
  if (!IsSeen(point)) return;
  const bool isFirst = summary->seen++ == 0;
  AddValue(point.x, isFirst, &summary->x);
  AddValue(point.y, isFirst, &summary->y);
}

void AddSummary(const PointSummary& other, PointSummary* summary) {
  if (other.seen == 0) return;
  const bool isFirst = summary->seen == 0;
  summary->seen += other.seen;
  for (Spread PointSummary::* const axis : {&PointSummary::x, &PointSummary::y}) {
    const Spread& from = other.*axis;
    Spread& to = summary->*axis;
    to.lowest = isFirst ? from.lowest : std::min(to.lowest, from.lowest);
    to.highest = isFirst ? from.highest : std::max(to.highest, from.highest);
    to.sum += from.sum;
    to.squares += from.squares;
  }
}

double Mean(const Spread& spread, long long count) {
  return count > 0 ? static_cast<double>(spread.sum) / static_cast<double>(count) : 0;
}

double Deviation(const Spread& spread, long long count) {
  if (count < 2) return 0;
  const double squares = static_cast<double>(spread.squares) - Mean(spread, count) * static_cast<double>(spread.sum);
  return std::sqrt(std::max(squares, 0.0) / static_cast<double>(count - 1));
}

}  // namespace camera
