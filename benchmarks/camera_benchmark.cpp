// What we promise about the camera's road, measured on a COM pair: no record lost, how soon a point is seen, and that
// connecting and unplugging never hang.
//
//   camera_benchmark records [SECONDS]   full line rate, every record different, counted at the reader's output
//   camera_benchmark latency [COUNT]     last byte written to marker's pixel changed, in the real program
//   camera_benchmark cycles [CONNECTS] [UNPLUGS]
//                                        connects and disconnects under streaming, unplugs in mid-record, in the real
//                                        program
//   camera_benchmark start [COUNT]       start of the process to first paint, and its memory
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "app/app_context.h"
#include "app/camera_link.h"
#include "app/camera_record.h"
#include "camera/ports.h"
#include "tests/e2e/tarnwick_process.h"
#include "tests/support/serial_line.h"

namespace {

using camera::Now;
using camera::SleepUntil;
using kvtest::PlayedCamera;
using kvtest::SerialLine;
using kvtest::TarnwickProcess;

// 41 bytes of 10 bits each at 38400 bits a second.
constexpr double kRecordSeconds = 41 * 10 / 38400.0;

// ---- No record lost ------------------------------------------------------------------------------------------------

// The number that a record carries in its points.
void Number(long n, kv::CameraPoint (&points)[kv::kPointCount]) {
  points[0] = {n % 1000, n / 1000};
  for (int i = 1; i < kv::kPointCount; ++i) points[i] = {n % 1000, i};
}

int MeasureRecords(double seconds) {
  SerialLine line;
  PlayedCamera camera(4);
  static kv::AppContext context{};
  context.hQuitEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  context.hPort = kv::OpenCameraPort(3);
  HANDLE reader = CreateThread(nullptr, 0, kv::CameraReaderThread, &context, 0, nullptr);
  std::atomic<bool> sending{true};
  long sent = 0;
  std::thread sender([&] {
    const double start = Now();
    while (Now() - start < seconds) {
      SleepUntil(start + sent * kRecordSeconds);
      kv::CameraPoint points[kv::kPointCount];
      Number(sent + 1, points);
      camera.SendRecord(points);
      ++sent;
    }
    Sleep(200);
    sending = false;
  });
  long seen = 0, last = 0, jumps = 0;
  while (sending) {
    // The last point is stored last, so once it has changed the first one has, too.
    const long low = context.points[3].x;
    const long now = context.points[0].x == low ? context.points[0].y * 1000 + low : last;
    if (now != last) {
      ++seen;
      if (now != last + 1) ++jumps;
      last = now;
    }
    // Never sleeps: on a busy machine a sleep may last longer than a record stands.
    SwitchToThread();
  }
  sender.join();
  CloseHandle(context.hPort);
  SetEvent(context.hQuitEvent);
  WaitForSingleObject(reader, 1000);
  std::printf("records: %ld sent in %.0f s (%.1f a second), %ld seen by the reader, %ld gaps\n", sent, seconds,
              sent / seconds, seen, jumps);
  return sent == seen ? 0 : 1;
}

// ---- Latency -------------------------------------------------------------------------------------------------------

int MeasureLatency(int count) {
  SerialLine line;
  PlayedCamera camera(4);
  TarnwickProcess tool;
  std::atomic<bool> chatter{true};
  std::thread knock([&] {
    const kv::CameraPoint points[kv::kPointCount] = {{500, 700}, {1, 1}, {1023, 1023}, {1023, 1023}};
    while (chatter) {
      camera.SendRecord(points);
      Sleep(20);
    }
  });
  tool.ClickConnect();
  const bool connected = tool.WaitForPortText("COM3");
  chatter = false;
  knock.join();
  if (!connected) return std::puts("latency: not connected"), 1;
  Sleep(500);
  constexpr kv::CameraPoint kPlaces[] = {{200, 300}, {800, 500}};
  std::vector<double> delays;
  for (int i = 0; i < count; ++i) {
    const kv::CameraPoint place = kPlaces[i % 2];
    const kv::CameraPoint points[kv::kPointCount] = {place, {1, 1}, {1023, 1023}, {1023, 1023}};
    // Not in step with the tool's timer.
    Sleep(70 + (i * 37) % 50);
    camera.SendRecord(points);
    const double start = Now();
    while (tool.ChartPixel(place) == RGB(0, 0, 0) && Now() - start < 2) {
    }
    delays.push_back((Now() - start) * 1000);
  }
  tool.CloseAndWait();
  std::ranges::sort(delays);
  std::printf("latency of %d records, last byte written to pixel changed: median %.1f ms, worst %.1f ms\n", count,
              delays[delays.size() / 2], delays.back());
  return 0;
}

// ---- Cycles --------------------------------------------------------------------------------------------------------

class Stream {
 public:
  explicit Stream(PlayedCamera* camera)
      : thread_([this, camera] {
          for (long n = 1; !stop_; ++n) {
            kv::CameraPoint points[kv::kPointCount];
            Number(n % 700, points);
            camera->SendRecord(points);
            Sleep(11);
          }
        }) {}
  ~Stream() {
    stop_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

int MeasureCycles(int connects, int unplugs) {
  SerialLine line;
  PlayedCamera camera(4);
  int failures = 0;
  DWORD longestClose = 0;
  {
    TarnwickProcess tool;
    const Stream stream(&camera);
    for (int i = 0; i < connects; ++i) {
      tool.ClickConnect();
      failures += !tool.WaitForPortText("COM3");
      tool.ClickConnect();
      failures += !tool.WaitForPortText("-");
    }
    const DWORD close = tool.CloseAndWait();
    failures += close == INFINITE;
    longestClose = std::max(longestClose, close);
    std::printf("%d connects and disconnects under streaming, then closed in %lu ms: %d failures\n", connects, close,
                failures);
  }
  for (int i = 0; i < unplugs; ++i) {
    TarnwickProcess tool;
    {
      const Stream stream(&camera);
      tool.ClickConnect();
      failures += !tool.WaitForPortText("COM3");
    }
    camera.Send("0001,0002,0003,00");
    line.Unplug();
    // Every other time the user disconnects first; else the tool closes on the dead port.
    if (i % 2) {
      tool.ClickConnect();
      failures += !tool.WaitForPortText("-");
    }
    const DWORD close = tool.CloseAndWait();
    failures += close == INFINITE;
    longestClose = std::max(longestClose, close);
    line.PlugIn();
    camera.Reopen();
  }
  std::printf("%d unplugs in mid-record; longest close of all runs %lu ms; %d failures in all\n", unplugs, longestClose,
              failures);
  return failures != 0;
}

// ---- Start ---------------------------------------------------------------------------------------------------------

PROCESS_MEMORY_COUNTERS MemoryOf(HANDLE process) {
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(process, &memory, sizeof(memory));
  return memory;
}

int MeasureStart(int count) {
  std::vector<DWORD> times;
  SIZE_T workingSet = 0, pages = 0;
  for (int i = 0; i < count; ++i) {
    const DWORD begin = GetTickCount();
    TarnwickProcess tool;
    times.push_back(GetTickCount() - begin);
    workingSet = MemoryOf(tool.process()).WorkingSetSize;
    pages = MemoryOf(tool.process()).PagefileUsage;
    tool.CloseAndWait();
  }
  std::ranges::sort(times);
  std::printf("start to first paint: median %lu ms, worst %lu ms; working set %lu KiB, private %lu KiB\n",
              times[times.size() / 2], times.back(), static_cast<unsigned long>(workingSet / 1024),
              static_cast<unsigned long>(pages / 1024));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const auto number = [&](int index, int preset) { return index < argc ? std::atoi(argv[index]) : preset; };
  const char* verb = argc > 1 ? argv[1] : "";
  setvbuf(stdout, nullptr, _IONBF, 0);
  if (!std::strcmp(verb, "records")) return MeasureRecords(number(2, 60));
  if (!std::strcmp(verb, "latency")) return MeasureLatency(number(2, 200));
  if (!std::strcmp(verb, "cycles")) return MeasureCycles(number(2, 200), number(3, 50));
  if (!std::strcmp(verb, "start")) return MeasureStart(number(2, 10));
  std::fputs(
      "usage: camera_benchmark records [SECONDS] | latency [COUNT] | cycles [CONNECTS] [UNPLUGS] | start [COUNT]\n",
      stderr);
  return 2;
}
