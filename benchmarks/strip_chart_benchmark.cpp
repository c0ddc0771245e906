// Measures the strip chart's processor time, one line for each requirement: a full redraw, a zoom step and appending a
// million samples, each with ten million samples in eight channels at 800 x 400; and live updates, with a thousand
// samples a second in four channels at twenty frames a second, compared with copying the same area. The last line is
// the artificial horizon's.
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

#include "benchmarks/processor_time.h"
#include "kv/controls/horizon/horizon.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr SIZE kSize{800, 400};
constexpr DWORD kSamples = 10000000, kMillion = 1000000;
constexpr double kRate = 1000;  // samples a second

HWND CreateChart(HWND parent) {
  return CreateWindowExA(0, kv::kStripChartClass, "", WS_CHILD | WS_VISIBLE, 0, 0, kSize.cx, kSize.cy, parent, nullptr,
                         GetModuleHandleA(nullptr), nullptr);
}

void Send(HWND chart, WPARAM wParam, const void* item, DWORD channel = 0) {
  SendMessageA(chart, kv::kControlCommand, wParam | channel << 16, reinterpret_cast<LPARAM>(item));
}

// A measured value: a slow movement, noise, occasionally a gap.
std::vector<kv::StripSample> MakeSamples(DWORD count, double start, int channel) {
  std::mt19937 random(static_cast<unsigned>(channel));
  std::vector<kv::StripSample> samples(count);
  for (DWORD i = 0; i < count; ++i) {
    const double time = start + i / kRate, noise = static_cast<double>(random() % 1000) / 500 - 1;
    samples[i] = {time, i % 50000 < 50 ? NAN : 10 * channel + 30 * std::sin(time / (20 + 9 * channel)) + 4 * noise};
  }
  return samples;
}

void Append(HWND chart, const std::vector<kv::StripSample>& samples, DWORD channel, WPARAM flags = 0) {
  const kv::StripSamples item{static_cast<DWORD>(samples.size()), samples.data()};
  Send(chart, kv::kStripAppend | flags, &item, channel);
}

void MeasureMany(HWND parent) {
  HWND chart = CreateChart(parent);
  const DWORD each = kSamples / kv::kStripChannels, capacity = each + kMillion;
  Send(chart, kv::kStripCapacity, &capacity);
  for (int i = 0; i < kv::kStripChannels; ++i) Append(chart, MakeSamples(each, 0, i), static_cast<DWORD>(i));
  const double full = MillisecondsEach([&](int) { Send(chart, kv::kStripRender, nullptr); });
  printf("full redraw, 10 million samples       %8.2f ms   (required: 8)\n", full);
  double most = 0;
  for (double span = each / kRate; span > 1; span /= 1.25) {
    const double step = MillisecondsEach([&](int i) {
      const kv::StripView view{kv::kStripVersion, 0, span * (1 + i % 2 * 0.25), each / kRate / 2, 0, 0, 1, 0};
      Send(chart, kv::kStripViewItem | kv::kCommandRedraw, &view);
    });
    most = std::max(most, step);
    span /= 2;
  }
  printf("zoom step, slowest of all spans       %8.2f ms   (required: 8)\n", most);
  DestroyWindow(chart);
}

void MeasureAppending(HWND parent) {
  const std::vector<kv::StripSample> million = MakeSamples(kMillion, 0, 0);
  HWND chart = CreateChart(parent);
  Send(chart, kv::kStripCapacity, &kMillion);
  const double cpu = CpuSeconds();
  for (DWORD channel = 0; channel < kv::kStripChannels; ++channel) Append(chart, million, channel);
  printf("appending a million samples           %8.0f ms   (required: 200)\n",
         (CpuSeconds() - cpu) * 1000 / kv::kStripChannels);
  DestroyWindow(chart);
}

// ---- Live -----------------------------------------------------------------------------------------------------------

constexpr char kFloorClass[] = "kvCopiedPicture";

LRESULT CALLBACK FloorProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const auto bitmap = reinterpret_cast<HBITMAP>(GetWindowLongA(window, GWL_USERDATA));
  if (message == WM_CREATE) {
    SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(kv::CreateWindowBitmap(window, kSize)));
    return 0;
  }
  if (message == WM_DESTROY) DeleteObject(bitmap);
  if (message == WM_PAINT) {
    const kv::PaintScope paint(window);
    kv::ShowBitmap(paint.dc(), {0, 0, kSize.cx, kSize.cy}, bitmap, kSize);
    return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

// The share of a core in percent while `tick` is called every 50 ms.
template <class Tick>
double PercentOfACore(Tick tick) {
  constexpr std::chrono::seconds kSpan(10);
  const double cpu = CpuSeconds();
  const auto start = Clock::now();
  for (auto next = start; Clock::now() - start < kSpan;) {
    if (Clock::now() >= next) {
      tick(std::chrono::duration<double>(next - start).count());
      next += std::chrono::milliseconds(50);
    }
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
  }
  return (CpuSeconds() - cpu) / std::chrono::duration<double>(Clock::now() - start).count() * 100;
}

void MeasureLive(HWND parent) {
  HWND floor = CreateWindowExA(0, kFloorClass, "", WS_CHILD | WS_VISIBLE, 0, 0, kSize.cx, kSize.cy, parent, nullptr,
                               GetModuleHandleA(nullptr), nullptr);
  const double copying = PercentOfACore([&](double) {
    InvalidateRect(floor, nullptr, FALSE);
    UpdateWindow(floor);
  });
  DestroyWindow(floor);
  for (const DWORD style : {kv::kStripScroll, kv::kStripSweep}) {
    HWND chart = CreateChart(parent);
    Send(chart, kv::kStripStyle, &style);
    const kv::StripView view{kv::kStripVersion, kv::kStripFollow, 10, 0, -40, 80, 1, 0};
    Send(chart, kv::kStripViewItem, &view);
    const double live = PercentOfACore([&](double time) {
      for (DWORD i = 0; i < 4; ++i) {
        Append(chart, MakeSamples(50, time, static_cast<int>(i)), i, i == 3 ? kv::kCommandRedraw : 0);
      }
    });
    DestroyWindow(chart);
    printf("live, %-8s                        %8.2f %% of a core, copying the area %.2f %%: %.2f times (required: 2)\n",
           style == kv::kStripSweep ? "sweep" : "scroll", live, copying, live / copying);
  }
}

void MeasureHorizon(HWND parent) {
  constexpr int kSide = 600;
  HWND horizon = CreateWindowExA(0, kv::kHorizonClass, "", WS_CHILD | WS_VISIBLE | kv::kHorizonTape, 0, 0, kSide, kSide,
                                 parent, nullptr, GetModuleHandleA(nullptr), nullptr);
  const double value = MillisecondsEach([&](int i) {
    const float angle = static_cast<float>(i % 90);
    const kv::HorizonAttitude attitude{kv::kHorizonVersion, 0, angle / 5, angle, angle / 90, angle};
    Send(horizon, kv::kHorizonValue | kv::kCommandRedraw, &attitude);
  });
  DestroyWindow(horizon);
  printf("artificial horizon, new value, 600 px %8.2f ms   (required: 2)\n", value);
}

}  // namespace

int main() {
  setvbuf(stdout, nullptr, _IONBF, 0);
  HINSTANCE instance = GetModuleHandleA(nullptr);
  if (!kv::RegisterLineRecorderClass(instance, TRUE) || !kv::RegisterHorizonClass(instance, TRUE)) return 1;
  WNDCLASSA floor{};
  floor.lpfnWndProc = FloorProcedure;
  floor.hInstance = instance;
  floor.lpszClassName = kFloorClass;
  RegisterClassA(&floor);
  HWND parent = CreateWindowExA(0, "STATIC", "benchmark", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 800, 600,
                                nullptr, nullptr, instance, nullptr);
  MeasureMany(parent);
  MeasureAppending(parent);
  MeasureLive(parent);
  MeasureHorizon(parent);
  DestroyWindow(parent);
  return 0;
}
