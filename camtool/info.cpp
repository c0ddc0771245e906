// camtool info: properties and statistics of a recording.
#include <windows.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/files.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

struct Settings {
  bool json = false;
} settings;

const kv::Option kOptions[] = {{"--json", nullptr, "print one JSON object instead of text", &settings.json}};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kDamaged, kEmpty};

struct Facts {
  camera::RecordingFile file;
  camera::RecordStream stream;
  camera::PointSummary points[kv::kPointCount];
};

// Returns "" when the header has no start time.
std::string StartOf(const Facts& facts, const char* format) {
  const std::uint64_t start = facts.file.decoder.header.startTime;
  const FILETIME time = {static_cast<DWORD>(start), static_cast<DWORD>(start >> 32)};
  SYSTEMTIME utc{};
  if (start == 0 || !FileTimeToSystemTime(&time, &utc)) return {};
  return camera::Format(format, utc.wYear, utc.wMonth, utc.wDay, utc.wHour, utc.wMinute, utc.wSecond);
}

double Share(const Facts& facts, const camera::PointSummary& point) {
  const long long records = facts.stream.records - facts.stream.outOfRange;
  return records > 0 ? static_cast<double>(point.seen) / static_cast<double>(records) : 0;
}

void PrintText(const Facts& facts) {
  const camera::RecordingDecoder& decoder = facts.file.decoder;
  const camera::RecordStream& stream = facts.stream;
  const std::string start = StartOf(facts, "%04u-%02u-%02u %02u:%02u:%02u UTC"), damage = DescribeDamage(facts.file);
  std::printf("%s\n", facts.file.path.c_str());
  if (start.empty()) {
    std::puts("  recorded   unknown");
  } else {
    std::printf("  recorded   %s, COM%u, %u baud\n", start.c_str(), static_cast<unsigned>(decoder.header.port),
                static_cast<unsigned>(decoder.header.baudRate));
  }
  std::printf("  length     %.3f s", static_cast<double>(decoder.endTime) / 1e6);
  if (stream.records > 0) std::printf("; records from %.3f s to %.3f s", stream.firstSeconds, stream.lastSeconds);
  std::printf("\n  records    %lld, %.1f records/s, %lld bytes\n", stream.records, RecordRate(stream), stream.bytes);
  std::printf("  gaps       longest %.3f s, at %.3f s; %lld longer than %.1f s\n", stream.longestGap,
              stream.longestGapStart, stream.gaps, camera::kGapSeconds);
  std::printf("  malformed  %s\n", DescribeMalformed(stream).c_str());
  if (stream.oddRecords > 0) {
    std::printf("  odd        %lld records; %lld of them have a coordinate not within 0 to 1023\n", stream.oddRecords,
                stream.outOfRange);
  }
  std::printf("  damage     %s\n", damage.empty() ? "none" : damage.c_str());
  std::puts("  point  seen     x             y             jitter x, y (standard deviation)");
  for (int i = 0; i < kv::kPointCount; ++i) {
    const camera::PointSummary& point = facts.points[i];
    std::printf("  %-5d  %5.1f %%", i + 1, Share(facts, point) * 100);
    if (point.seen > 0) {
      std::printf("  %4ld to %4ld  %4ld to %4ld  %.2f, %.2f", point.x.lowest, point.x.highest, point.y.lowest,
                  point.y.highest, Deviation(point.x, point.seen), Deviation(point.y, point.seen));
    }
    std::puts("");
  }
}

std::string Axis(const char* name, const camera::Spread& spread, long long seen) {
  return camera::Format(",\"%s\":{\"lowest\":%ld,\"highest\":%ld,\"mean\":%.3f,\"deviation\":%.3f}", name,
                        spread.lowest, spread.highest, Mean(spread, seen), Deviation(spread, seen));
}

void PrintJson(const Facts& facts) {
  const camera::RecordingDecoder& decoder = facts.file.decoder;
  const camera::RecordStream& stream = facts.stream;
  const std::string start = StartOf(facts, "\"%04u-%02u-%02uT%02u:%02u:%02uZ\"");
  std::printf("{\"file\":%s,\"start\":%s,\"port\":%u,\"baudRate\":%u,\"seconds\":%.6f,\"complete\":%s,\"bytes\":%lld",
              camera::JsonString(facts.file.path).c_str(), start.empty() ? "null" : start.c_str(),
              static_cast<unsigned>(decoder.header.port), static_cast<unsigned>(decoder.header.baudRate),
              static_cast<double>(decoder.endTime) / 1e6, decoder.hasEnd ? "true" : "false", stream.bytes);
  std::printf(",\"records\":%lld,\"recordsPerSecond\":%.3f,\"firstSeconds\":%.6f,\"lastSeconds\":%.6f", stream.records,
              RecordRate(stream), stream.firstSeconds, stream.lastSeconds);
  std::printf(",\"longestGapSeconds\":%.6f,\"longestGapStart\":%.6f,\"gaps\":%lld", stream.longestGap,
              stream.longestGapStart, stream.gaps);
  std::printf(",\"malformedStretches\":%lld,\"malformedBytes\":%lld,\"oddRecords\":%lld,\"outOfRangeRecords\":%lld",
              stream.malformedStretches, stream.malformedBytes, stream.oddRecords, stream.outOfRange);
  std::printf(",\"damagedPlaces\":%llu,\"damagedBytes\":%llu,\"truncatedBytes\":%zu,\"points\":[",
              static_cast<unsigned long long>(decoder.damageCount),
              static_cast<unsigned long long>(decoder.damagedBytes), facts.file.truncatedBytes);
  for (int i = 0; i < kv::kPointCount; ++i) {
    const camera::PointSummary& point = facts.points[i];
    std::printf("%s{\"seen\":%.6f", i > 0 ? "," : "", Share(facts, point));
    if (point.seen > 0)
      std::printf("%s%s", Axis("x", point.x, point.seen).c_str(), Axis("y", point.y, point.seen).c_str());
    std::printf("}");
  }
  std::puts("]}");
}

int RunInfo(const std::vector<std::string>& operands) {
  Facts facts;
  if (const int failure = OpenRecordingOrPrintError(operands[0], &facts.file); failure != kDone) return failure;
  std::vector<camera::FoundRecord> found;
  ProgressLine progress;
  facts.file.onPart = [&] {
    if (progress.IsDue()) progress.Show(std::to_string(facts.stream.records) + " records");
    return !IsStopRequested();
  };
  while (NextRecords(&facts.file, &facts.stream, &found)) {
    for (const camera::FoundRecord& record : found) {
      for (int i = 0; record.isInRange && i < kv::kPointCount; ++i) AddPoint(record.points[i], &facts.points[i]);
    }
  }
  progress.Clear();
  if (facts.file.error.empty() && facts.file.isStopped)
    facts.file.error = "interrupted before the end of the recording";
  if (!facts.file.error.empty()) {
    PrintError(facts.file.error);
    return kFailed;
  }
  settings.json ? PrintJson(facts) : PrintText(facts);
  return facts.file.decoder.damageCount > 0 ? kDamaged : kDone;
}

}  // namespace

const Command kInfoCommand = {
    "info",
    "FILE",
    "summarizes a recording: start, duration, rate, gaps, damage, and the range of each point",
    "FILE may be - for standard input. A point is seen in a record when neither coordinate is 1023.\n",
    kOptions,
    kExits,
    RunInfo};

}  // namespace camtool
