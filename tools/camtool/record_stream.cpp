#include "tools/camtool/record_stream.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "app/camera_record.h"

namespace camtool {

namespace {

constexpr size_t kFieldBytes = 39;  // fields and commas, without the closing bytes

bool HasOddCharacters(const char* record) {
  return std::string_view(record, kFieldBytes).find_first_not_of("0123456789 +-,") != std::string_view::npos;
}

// Besides the shape: no comma in place of a closing byte. There it stands when a record was cut off behind a field and
// the next one follows; taken together they would be a record that no camera sent.
bool IsRecord(const char* bytes) {
  return kv::HasRecordShape(bytes) && bytes[kFieldBytes] != ',';
}

void CloseStretch(RecordStream* stream) {
  MalformedStretch& open = stream->open;
  if (open.bytes == 0) return;
  const bool isLead =
      stream->records == 0 && stream->malformedStretches == 0 && open.bytes < static_cast<long long>(kv::kRecordLength);
  if (isLead) {
    stream->leadBytes = open.bytes;
  } else {
    stream->malformedBytes += open.bytes;
    ++stream->malformedStretches;
    if (stream->stretches.size() < kStretchesKept) stream->stretches.push_back(open);
  }
  open = {};
}

void TakeRecord(RecordStream* stream, const char* bytes, double seconds, std::vector<FoundRecord>* found) {
  CloseStretch(stream);
  char text[kv::kRecordLength + 1] = "";
  std::memcpy(text, bytes, kv::kRecordLength);
  // A field that cannot be read (behind a zero byte) keeps its last value, as in Tarnwick.
  FoundRecord record = stream->last;
  record.seconds = seconds;
  record.isOdd = HasOddCharacters(text);
  kv::ParseRecord(text, record.points);
  if (stream->records++ == 0) stream->firstSeconds = seconds;
  stream->lastSeconds = seconds;
  stream->oddRecords += record.isOdd;
  stream->last = record;
  if (found) found->push_back(record);
}

void SkipByte(MalformedStretch* open, char byte, double seconds) {
  if (open->bytes++ == 0) open->seconds = seconds;
  if (open->sample.size() < kStretchSample) open->sample += byte;
}

}  // namespace

void FeedStream(RecordStream* stream, double seconds, std::string_view bytes, std::vector<FoundRecord>* found) {
  if (bytes.empty()) return;
  if (stream->lastArrival >= 0) stream->longestGap = std::max(stream->longestGap, seconds - stream->lastArrival);
  stream->lastArrival = seconds;
  stream->bytes += static_cast<long long>(bytes.size());
  stream->pending += bytes;
  stream->pendingSeconds.insert(stream->pendingSeconds.end(), bytes.size(), seconds);
  size_t at = 0;
  while (stream->pending.size() - at >= kv::kRecordLength) {
    const char* here = stream->pending.data() + at;
    if (IsRecord(here)) {
      TakeRecord(stream, here, stream->pendingSeconds[at + kv::kRecordLength - 1], found);
      at += kv::kRecordLength;
    } else {
      SkipByte(&stream->open, *here, stream->pendingSeconds[at]);
      ++at;
    }
  }
  stream->pending.erase(0, at);
  stream->pendingSeconds.erase(stream->pendingSeconds.begin(),
                               stream->pendingSeconds.begin() + static_cast<std::ptrdiff_t>(at));
}

void EndStream(RecordStream* stream) {
  // Behind garbage the rest is garbage as well; behind a record it is one that was cut off.
  if (stream->open.bytes > 0 || stream->records == 0) {
    for (size_t i = 0; i < stream->pending.size(); ++i) {
      SkipByte(&stream->open, stream->pending[i], stream->pendingSeconds[i]);
    }
    stream->pending.clear();
  }
  CloseStretch(stream);
}

double RecordRate(const RecordStream& stream) {
  const double seconds = stream.lastSeconds - stream.firstSeconds;
  return seconds > 0 ? static_cast<double>(stream.records - 1) / seconds : 0;
}

double WellFormedShare(const RecordStream& stream) {
  const auto length = static_cast<double>(kv::kRecordLength);
  const auto good = static_cast<double>(stream.records);
  const double bad =
      std::max(static_cast<double>(stream.malformedBytes) / length, static_cast<double>(stream.malformedStretches));
  return good > 0 ? good / (good + bad) : 0;
}

std::string DescribeMalformed(const RecordStream& stream) {
  if (stream.malformedStretches == 0) return "no malformed stretches";
  return std::to_string(stream.malformedStretches) +
         (stream.malformedStretches == 1 ? " malformed stretch, " : " malformed stretches, ") +
         std::to_string(stream.malformedBytes) + " bytes";
}

}  // namespace camtool
