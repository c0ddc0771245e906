// camtool info: properties, figures and events of a recording.
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/events.h"
#include "camera/files.h"
#include "camera/line_model.h"
#include "camera/noise.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/statistics.h"
#include "camera/text.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

struct Settings {
  double rate = 0;  // 0 = estimated
  bool json = false, events = false, csv = false;
} settings;

const kv::Option kOptions[] = {
    {"--rate", "RATE", "records a second that the camera sends, to count lost ones (default: estimated)",
     kv::NumberOption{&settings.rate, camera::kLowestRate, camera::kHighestRate}},
    {"--events", nullptr, "list silences, losses, malformed bytes, damage and points that are not seen",
     &settings.events},
    {"--csv", nullptr, "list the events as comma-separated values", &settings.csv},
    {"--json", nullptr, "print one JSON object instead of text; with --events, they are in it", &settings.json}};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kDamaged, kEmpty};

struct Facts {
  camera::RecordingFile file;
  camera::RecordIntake intake;
  camera::LineModel line;
  camera::RecordMeter meter;
  camera::RecordSums sums;
  camera::EventLog log;
  // When the recording was read:
  double seconds = 0;  // duration
  camera::LineFigures figures;
  std::vector<camera::Event> events;
  long long omittedEvents = 0;
};

// Returns "" when the header has no start time.
std::string StartOf(const Facts& facts, const char* format) {
  const std::uint64_t start = facts.file.decoder.header.startTime;
  const FILETIME time = {static_cast<DWORD>(start), static_cast<DWORD>(start >> 32)};
  SYSTEMTIME utc{};
  if (start == 0 || !FileTimeToSystemTime(&time, &utc)) return {};
  return camera::Format(format, utc.wYear, utc.wMonth, utc.wDay, utc.wHour, utc.wMinute, utc.wSecond);
}

double Percent(double part, double whole) {
  return whole > 0 ? part / whole * 100 : 0;
}

std::string Number(long long number) {
  return std::to_string(number);
}

// Returns the number with that format, or `none` if it is not known.
std::string KnownOr(const char* none, bool isKnown, const char* format, double number) {
  return isKnown ? camera::Format(format, number) : none;
}

// Returns what is known of lost records, as a sentence or two.
std::string DescribeLosses(const camera::LineFigures& figures) {
  const long long lost = std::max(figures.lost, 0LL);
  const std::string most = Number(figures.lostAtMost);
  if (figures.basis == camera::LossBasis::kTooFew) return "unknown: too few records";
  if (figures.basis == camera::LossBasis::kIrregular) {
    return "unknown, at most " + most + ": records arrive too irregularly to count single losses; give --rate";
  }
  const bool isEstimated = figures.basis == camera::LossBasis::kEstimated;
  std::string text = isEstimated ? "about " : "";
  text += Number(lost);
  if (figures.lostAtLeast != figures.lostAtMost) text += " (" + Number(figures.lostAtLeast) + " to " + most + ")";
  text += camera::Format(" of %s, %.1f %%, at %s%.2f records/s",
                         camera::Counted(static_cast<unsigned long long>(figures.records + lost), "record").c_str(),
                         Percent(static_cast<double>(lost), static_cast<double>(figures.records + lost)),
                         isEstimated ? "about " : "", figures.rate);
  if (figures.mayLoseRegularly) {
    text +=
        "\n             a loss of every second record would look the same, because the line carries more; give --rate";
  }
  return text;
}

std::string DescribeSilence(const camera::LineFigures& figures) {
  if (figures.silences == 0) return "never";
  return camera::Format("%s, %.3f s, %.1f %% of the time; longest %.3f s, at %.3f s",
                        camera::Counted(static_cast<unsigned long long>(figures.silences), "time").c_str(),
                        figures.silentSeconds, Percent(figures.silentSeconds, figures.seconds), figures.longestSilence,
                        figures.longestSilenceFrom);
}

std::string DescribeNoise(const camera::CoordinateNoise& sums) {
  const camera::NoiseFigure figure = NoiseOf(sums);
  return figure.differences == 0 ? "-" : camera::Format("%s%.2f", figure.isBelow ? "<" : "", figure.noise);
}

std::string DescribeSpread(const camera::Spread& spread, long long seen) {
  return KnownOr("-", seen >= 2, "%.2f", Deviation(spread, seen));
}

std::string DescribePeaks(const camera::Spread& spread, long long seen) {
  return KnownOr("-", seen >= 2, "%.0f", static_cast<double>(spread.highest - spread.lowest));
}

void PrintPoints(const Facts& facts) {
  std::puts("  point  seen     x             y             peak-to-peak  spread x, y      noise x, y");
  for (int i = 0; i < kv::kPointCount; ++i) {
    const camera::PointSummary& point = facts.sums.points[i];
    const camera::PointNoise& noise = facts.sums.noise[i];
    const double seen = SeenShare(facts.sums, i);
    std::printf("  %-5d  %7s", i + 1, KnownOr("-", seen >= 0, "%.1f %%", camera::PercentOf(seen)).c_str());
    if (point.seen > 0) {
      const std::string spread = DescribeSpread(point.x, point.seen) + ", " + DescribeSpread(point.y, point.seen);
      std::printf("  %4ld to %4ld  %4ld to %4ld  %4s, %4s    %-15s  %s, %s", point.x.lowest, point.x.highest,
                  point.y.lowest, point.y.highest, DescribePeaks(point.x, point.seen).c_str(),
                  DescribePeaks(point.y, point.seen).c_str(), spread.c_str(), DescribeNoise(noise.x).c_str(),
                  DescribeNoise(noise.y).c_str());
    }
    std::puts("");
  }
}

// The amount with its unit; "" if the event has none.
std::string DescribeAmount(const camera::Event& event) {
  const auto amount = static_cast<unsigned long long>(event.amount);
  switch (event.kind) {
    case camera::EventKind::kLoss: return camera::Counted(amount, "record");
    case camera::EventKind::kMalformed:
    case camera::EventKind::kDamage: return camera::Counted(amount, "byte");
    case camera::EventKind::kUnseen: return "point " + std::to_string(event.point + 1);
    default: return {};
  }
}

void PrintEvents(const Facts& facts) {
  std::puts("      seconds    duration  event");
  for (const camera::Event& event : facts.events) {
    const std::string amount = DescribeAmount(event);
    std::printf("  %11.3f  %10.3f  %s%s%s\n", event.from, event.to - event.from, EventName(event.kind),
                amount.empty() ? "" : ", ", amount.c_str());
  }
  if (facts.omittedEvents > 0) std::printf("  and at least %lld more\n", facts.omittedEvents);
}

void PrintEventRows(const Facts& facts) {
  std::string rows = camera::EventCsvHeader();
  for (const camera::Event& event : facts.events) camera::AppendEventCsvRow(event, &rows);
  std::fputs(rows.c_str(), stdout);
}

void PrintText(const Facts& facts) {
  const camera::RecordingDecoder& decoder = facts.file.decoder;
  const camera::RecordStream& stream = facts.intake.stream;
  const camera::LineFigures& figures = facts.figures;
  const std::string start = StartOf(facts, "%04u-%02u-%02u %02u:%02u:%02u UTC"), damage = DescribeDamage(facts.file);
  std::printf("%s\n", facts.file.path.c_str());
  if (start.empty()) {
    std::puts("  recorded   unknown");
  } else {
    std::printf("  recorded   %s, COM%u, %u baud\n", start.c_str(), static_cast<unsigned>(decoder.header.port),
                static_cast<unsigned>(decoder.header.baudRate));
  }
  std::printf("  length     %.3f s", facts.seconds);
  if (stream.records > 0) std::printf("; records from %.3f s to %.3f s", stream.firstSeconds, stream.lastSeconds);
  std::printf("\n  records    %lld, %s%s\n", stream.records,
              KnownOr("", facts.seconds > 0, "%.1f a second, ", figures.recordsPerSecond).c_str(),
              camera::Counted(static_cast<unsigned long long>(stream.bytes), "byte").c_str());
  std::printf("  lost       %s\n  silent     %s\n", DescribeLosses(figures).c_str(), DescribeSilence(figures).c_str());
  std::printf("  malformed  %s\n", DescribeMalformed(stream).c_str());
  if (stream.invalidRecords > 0) {
    std::printf("  invalid    %s; %lld of them with a coordinate that is not within 0 to 1023\n",
                camera::Counted(static_cast<unsigned long long>(stream.invalidRecords), "record").c_str(),
                stream.outOfRange);
  }
  std::printf("  damage     %s\n", damage.empty() ? "none" : damage.c_str());
  PrintPoints(facts);
  if (settings.events) PrintEvents(facts);
}

std::string Axis(const char* name, const camera::Spread& spread, long long seen, const camera::CoordinateNoise& sums) {
  const camera::NoiseFigure noise = NoiseOf(sums);
  std::string text = camera::Format(",\"%s\":{\"lowest\":%ld,\"highest\":%ld,\"mean\":%.3f,\"deviation\":", name,
                                    spread.lowest, spread.highest, Mean(spread, seen));
  text += KnownOr("null", seen >= 2, "%.3f", Deviation(spread, seen));
  text += ",\"noise\":" + KnownOr("null", noise.differences > 0, "%.3f", noise.noise);
  return text + (noise.isBelow ? ",\"noiseIsBelow\":true}" : "}");
}

void PrintLineJson(const camera::LineFigures& figures) {
  constexpr const char* kBases[] = {"too few records", "too irregular", "estimated", "given"};
  const bool isKnown = figures.basis >= camera::LossBasis::kEstimated;
  std::printf(",\"silences\":%lld,\"silentSeconds\":%.6f,\"longestSilenceSeconds\":%.6f,\"longestSilenceStart\":%s",
              figures.silences, figures.silentSeconds, figures.longestSilence,
              KnownOr("null", figures.silences > 0, "%.6f", figures.longestSilenceFrom).c_str());
  std::printf(
      ",\"lost\":{\"basis\":\"%s\",\"records\":%s,\"atLeast\":%lld,\"atMost\":%lld,\"rate\":%s,"
      "\"mayBeRegular\":%s}",
      kBases[static_cast<int>(figures.basis)], isKnown ? Number(std::max(figures.lost, 0LL)).c_str() : "null",
      figures.lostAtLeast, figures.lostAtMost, KnownOr("null", isKnown, "%.3f", figures.rate).c_str(),
      figures.mayLoseRegularly ? "true" : "false");
}

void PrintEventsJson(const Facts& facts) {
  std::printf(",\"omittedEvents\":%lld,\"events\":[", facts.omittedEvents);
  const char* separator = "";
  for (const camera::Event& event : facts.events) {
    std::printf("%s{\"seconds\":%.6f,\"duration\":%.6f,\"event\":\"%s\"", separator, event.from, event.to - event.from,
                EventName(event.kind));
    if (event.amount > 0) std::printf(",\"amount\":%lld", event.amount);
    if (event.point >= 0) std::printf(",\"point\":%d", event.point + 1);
    std::printf("}");
    separator = ",";
  }
  std::printf("]");
}

void PrintJson(const Facts& facts) {
  const camera::RecordingDecoder& decoder = facts.file.decoder;
  const camera::RecordStream& stream = facts.intake.stream;
  const std::string start = StartOf(facts, "\"%04u-%02u-%02uT%02u:%02u:%02uZ\"");
  std::printf("{\"file\":%s,\"start\":%s,\"port\":%u,\"baudRate\":%u,\"seconds\":%.6f,\"complete\":%s,\"bytes\":%lld",
              camera::JsonString(facts.file.path).c_str(), start.empty() ? "null" : start.c_str(),
              static_cast<unsigned>(decoder.header.port), static_cast<unsigned>(decoder.header.baudRate), facts.seconds,
              decoder.hasEnd ? "true" : "false", stream.bytes);
  const bool hasRecords = stream.records > 0;
  std::printf(",\"records\":%lld,\"recordsPerSecond\":%s,\"firstSeconds\":%s,\"lastSeconds\":%s", stream.records,
              KnownOr("null", facts.seconds > 0, "%.3f", facts.figures.recordsPerSecond).c_str(),
              KnownOr("null", hasRecords, "%.6f", stream.firstSeconds).c_str(),
              KnownOr("null", hasRecords, "%.6f", stream.lastSeconds).c_str());
  PrintLineJson(facts.figures);
  std::printf(",\"malformedSections\":%lld,\"malformedBytes\":%lld,\"invalidRecords\":%lld,\"outOfRangeRecords\":%lld",
              stream.malformedSections, stream.malformedBytes, stream.invalidRecords, stream.outOfRange);
  std::printf(",\"damagedPlaces\":%llu,\"damagedBytes\":%llu,\"truncatedBytes\":%zu,\"points\":[",
              static_cast<unsigned long long>(decoder.damageCount),
              static_cast<unsigned long long>(decoder.damagedBytes), facts.file.truncatedBytes);
  for (int i = 0; i < kv::kPointCount; ++i) {
    const camera::PointSummary& point = facts.sums.points[i];
    const camera::PointNoise& noise = facts.sums.noise[i];
    const double seen = SeenShare(facts.sums, i);
    std::printf("%s{\"seen\":%s", i > 0 ? "," : "", KnownOr("null", seen >= 0, "%.6f", seen).c_str());
    if (point.seen > 0) {
      std::printf("%s%s", Axis("x", point.x, point.seen, noise.x).c_str(),
                  Axis("y", point.y, point.seen, noise.y).c_str());
    }
    std::printf("}");
  }
  std::printf("]");
  if (settings.events) PrintEventsJson(facts);
  std::puts("}");
}

void AddBatch(const camera::IntakeBatch& batch, Facts* facts) {
  for (const camera::Section& section : batch.sections) {
    facts->log.AddSection(section);
    if (section.kind == camera::SectionKind::kSilent) facts->line.AddSilence({section.from, section.to});
  }
  for (size_t i = 0; i < batch.records.size(); ++i) {
    facts->line.AddRecord(batch.records[i].seconds, (batch.flags[i] & camera::kAfterSilence) != 0);
    facts->meter.Add(batch.records[i], batch.flags[i], &facts->sums);
    facts->log.AddRecord(batch.records[i]);
  }
}

// Reads the recording to its end. Returns false when stopped or when reading fails.
bool ReadAll(Facts* facts) {
  ProgressLine progress;
  facts->file.onPart = [&] {
    if (progress.IsDue())
      progress.Show(camera::Counted(static_cast<unsigned long long>(facts->sums.records), "record"));
    return true;
  };
  camera::IntakeBatch batch;
  for (bool isMore = true; isMore; ClearBatch(&batch)) {
    isMore = NextBatch(&facts->file, &facts->intake, &batch);
    AddBatch(batch, facts);
  }
  if (facts->file.isStopped || !facts->file.error.empty()) return false;
  const camera::RecordStream& stream = facts->intake.stream;
  facts->seconds = static_cast<double>(facts->file.decoder.endTime) / 1e6;
  facts->line.Finish();
  facts->figures =
      facts->line.Figures({0, facts->seconds, stream.records, -1, stream.firstSeconds, stream.lastSeconds});
  facts->events = facts->log.Events(facts->line, facts->seconds, &facts->omittedEvents);
  return true;
}

int RunInfo(const std::vector<std::string>& operands) {
  if (settings.csv && settings.json) {
    PrintError("--csv and --json exclude each other");
    return kUsageError;
  }
  Facts facts;
  facts.line = camera::LineModel(settings.rate);
  if (const int failure = OpenRecordingOrPrintError(operands[0], &facts.file); failure != kDone) return failure;
  if (!ReadAll(&facts)) {
    PrintError(facts.file.error.empty() ? "interrupted before the end of the recording" : facts.file.error);
    return kFailed;
  }
  if (settings.csv) {
    PrintEventRows(facts);
  } else if (settings.json) {
    PrintJson(facts);
  } else {
    PrintText(facts);
  }
  const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  // The reader of a pipe may end before the writer.
  if (!isWritten && GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) != FILE_TYPE_PIPE) {
    PrintError("cannot write to standard output: it is closed, or the disk is full");
    return kFailed;
  }
  return facts.file.decoder.damageCount > 0 ? kDamaged : kDone;
}

}  // namespace

const Command kInfoCommand = {
    "info",
    "FILE",
    "summarizes a recording: start, duration, rate, losses, silence, damage, and the range and noise of each point",
    "FILE may be - for standard input. A point is seen in a record when neither coordinate is 1023. Silent: no bytes "
    "for\n"
    "0.5 s or longer. Lost: missing in shorter pauses, counted by the regular times at which the camera sends.\n",
    kOptions,
    kExits,
    RunInfo};

}  // namespace camtool
