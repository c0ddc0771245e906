// How long camview takes to open a recording and to make the curves, statistics and distributions of it, and how much
// memory that needs. The recordings are made in the folder for temporary files, and removed.
//
//   camview_benchmark            an hour and a day at 93 records a second
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>

#include "camera/camera_record.h"
#include "camera/files.h"
#include "camera/ports.h"
#include "camera/recording.h"
#include "camview/distributions.h"
#include "camview/record_store.h"
#include "camview/recording_loader.h"
#include "camview/statistics.h"

namespace {

constexpr double kRate = 93;
constexpr int kColumns = 2000;

// A chunk for each record, as a line brings them.
bool MakeRecording(const std::string& path, long records) {
  std::mt19937 random(1);
  camera::OutputFile out;
  std::string error, buffer = camera::EncodeHeader({133801632000000000, 38400, 3});
  if (!camera::OpenOutput(path, true, nullptr, &out, &error)) return false;
  std::uint64_t microseconds = 0;
  for (long i = 0; i < records; ++i) {
    kv::CameraPoint points[kv::kPointCount];
    for (kv::CameraPoint& point : points)
      point = {static_cast<LONG>(random() % 1024), static_cast<LONG>(random() % 768)};
    char record[kv::kRecordLength];
    kv::WriteRecord(points, record);
    microseconds = static_cast<std::uint64_t>(static_cast<double>(i) * 1e6 / kRate);
    buffer += camera::EncodeChunks(microseconds, std::string_view(record, sizeof(record)));
    if (buffer.size() < 1 << 20) continue;
    if (!camera::AppendToOutput(&out, buffer, &error)) break;
    buffer.clear();
  }
  const bool isMade = camera::AppendToOutput(&out, buffer + camera::EncodeEnd(microseconds), &error) &&
                      camera::PublishOutput(&out, &error);
  camera::CloseOutput(&out);
  return isMade;
}

template <class Function>
double Milliseconds(Function function) {
  const double begin = camera::Now();
  function();
  return (camera::Now() - begin) * 1000;
}

void Measure(const char* name, const std::string& path) {
  camview::RecordingLoader loader;
  const double begin = camera::Now();
  loader.Start(path);
  while (!loader.IsDone()) Sleep(5);
  const double seconds = camera::Now() - begin;
  const camview::LoadedRecording loaded = loader.Take();
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
  std::printf("%s: %lld records opened in %.2f s; memory %.0f MB, largest working set %.0f MB\n", name, loaded.records,
              seconds, static_cast<double>(memory.PagefileUsage) / 1e6,
              static_cast<double>(memory.PeakWorkingSetSize) / 1e6);
  const camview::RecordStore& store = *loaded.store;
  // As the charts ask for the columns of eight curves.
  long long sum = 0;
  const auto curve = [&](double from, double to) {
    return Milliseconds([&] {
      for (int column = 0; column < kColumns; ++column) {
        const double width = (to - from) / kColumns;
        const long long first = store.Find(from + column * width), end = store.Find(from + (column + 1) * width);
        for (int channel = 0; channel < camview::kChannels; ++channel) {
          sum += store.ExtremesOf(first, end, channel).highest;
        }
      }
    });
  };
  const double whole = curve(0, loaded.seconds);
  const double middle = loaded.seconds / 2, hour = curve(std::max(middle - 1800, 0.0), middle + 1800);
  const double minute = curve(middle - 30, middle + 30);
  const double statistics = Milliseconds([&] { camview::ComputeStatistics(store, 0, loaded.seconds); });
  // As the window counts: in parts, between which it handles messages.
  constexpr long long kPart = 1 << 20;
  camview::Distributions distributions;
  double counting = 0, longest = 0;
  for (bool isCounted = false; !isCounted;) {
    const double part = Milliseconds([&] { isCounted = distributions.Count(store, 0, store.End(), kPart); });
    counting += part;
    longest = std::max(longest, part);
  }
  const double showing = Milliseconds([&] {
    for (int point = 0; point < kv::kPointCount; ++point) {
      const camview::CountGrid places = distributions.PlacesOf(point);
      for (const int coordinate : {0, 1}) sum += camview::FiguresOf(camview::HistogramOf(places, coordinate)).highest;
    }
  });
  if (sum < 0) std::printf("  no points\n");
  std::printf("  eight curves: all %.1f ms, an hour %.1f ms, a minute %.1f ms; statistics of all %.0f ms\n", whole,
              hour, minute, statistics);
  std::printf("  distributions of all: counted in %.0f ms, the longest part %.0f ms; histograms of that %.1f ms\n",
              counting, longest, showing);
}

}  // namespace

int main() {
  char folder[MAX_PATH];
  GetTempPathA(sizeof(folder), folder);
  const struct {
    const char* name;
    long seconds;
  } cases[] = {{"an hour", 3600}, {"a day", 86400}};
  for (const auto& [name, seconds] : cases) {
    const std::string path = std::string(folder) + "camview benchmark.twr";
    if (MakeRecording(path, static_cast<long>(kRate * seconds))) Measure(name, path);
    DeleteFileA(path.c_str());
  }
}
