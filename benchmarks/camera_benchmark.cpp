// Measures data flow from the camera on a null-modem pair: lost records, and latency.
//
//   camera_benchmark records [SECONDS]   counts lost records at full line rate; every record is different
//   camera_benchmark latency [COUNT]     time from the last byte written to the change of the marker's pixel in Tarnwick
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <vector>

#include "app/app_context.h"
#include "app/camera_link.h"
#include "camera/camera_record.h"
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

// ---- No record lost -------------------------------------------------------------------------------------------------

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
      ++sent;  // the first point contains the record's number, the last one a part of it
      camera.SendRecord({{sent % 1000, sent / 1000}, {0, 1}, {0, 2}, {sent % 1000, 3}});
    }
    Sleep(200);
    sending = false;
  });
  long seen = 0, last = 0, jumps = 0;
  while (sending) {
    // The last point is stored last: when it has changed, the first one has, too.
    const long low = context.points[3].x;
    const long now = context.points[0].x == low ? context.points[0].y * 1000 + low : last;
    if (now != last) {
      ++seen;
      if (now != last + 1) ++jumps;
      last = now;
    }
    // No Sleep: on a busy machine it may last longer than the interval between records.
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

// ---- Latency --------------------------------------------------------------------------------------------------------

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
  constexpr kv::CameraPoint kPoints[] = {{200, 300}, {800, 500}};
  std::vector<double> delays;
  for (int i = 0; i < count; ++i) {
    const kv::CameraPoint point = kPoints[i % 2];
    const kv::CameraPoint points[kv::kPointCount] = {point, {1, 1}, {1023, 1023}, {1023, 1023}};
    // Avoid synchronization with the tool's timer.
    Sleep(70 + (i * 37) % 50);
    camera.SendRecord(points);
    const double start = Now();
    while (tool.ChartPixel(point) == RGB(0, 0, 0) && Now() - start < 2) {
    }
    delays.push_back((Now() - start) * 1000);
  }
  tool.CloseAndWait();
  std::ranges::sort(delays);
  std::printf("latency of %d records, last byte written to pixel changed: median %.1f ms, worst %.1f ms\n", count,
              delays[delays.size() / 2], delays.back());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view what = argc > 1 ? argv[1] : "";
  const int amount = argc > 2 ? std::atoi(argv[2]) : 0;
  setvbuf(stdout, nullptr, _IONBF, 0);
  if (what == "records") return MeasureRecords(amount > 0 ? amount : 60);
  if (what == "latency") return MeasureLatency(amount > 0 ? amount : 200);
  std::fputs("usage: camera_benchmark records [SECONDS] | latency [COUNT]\n", stderr);
  return 2;
}
