// Measures display instruments: the time in ms to render each mode completely and after a change of the value, the
// share of a core that twenty moving instruments use, and the GDI objects of two thousand. The floor is the cost of an
// empty control that shows a bitmap of the same size in the same way and renders nothing.
//   instrument_benchmark [animation]     only the moving ones, for tracing their system calls
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <vector>

#include "benchmarks/processor_time.h"
#include "kv/controls/display_instrument.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Mode {
  const char* name;
  DWORD style;
  float low, high;  // values between which it alternates
};
constexpr Mode kModes[] = {{"gauge", kv::kModeGauge, 20, 80},
                           {"readout", kv::kModeDigital, 20, 80},
                           {"segment bar", kv::kModeSegmentBar, 20, 80},
                           {"compass", kv::kModeCompass, 20, 80},
                           {"center bar", kv::kModeCenterBar, -60, 60}};

HWND Create(HWND parent, DWORD style, int left, int top, int size) {
  return CreateWindowExA(0, kv::kDisplayInstrumentClass, "Heading", WS_CHILD | WS_VISIBLE | style, left, top, size,
                         size, parent, nullptr, GetModuleHandleA(nullptr), nullptr);
}

void SetValue(HWND control, float value, WPARAM flags) {
  SendMessageA(control, kv::kControlCommand, kv::kCommandValue | flags, reinterpret_cast<LPARAM>(&value));
}

// ---- The empty control ----------------------------------------------------------------------------------------------

constexpr char kEmptyClass[] = "kvEmptyControl";

void Repaint(HWND control) {
  InvalidateRect(control, nullptr, FALSE);
  UpdateWindow(control);
}

LRESULT CALLBACK EmptyProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const auto bitmap = reinterpret_cast<HBITMAP>(GetWindowLongA(window, GWL_USERDATA));
  switch (message) {
    case WM_CREATE:
      SetWindowLongA(window, GWL_USERDATA,
                     reinterpret_cast<LONG>(kv::CreateWindowBitmap(window, kv::ClientSize(window))));
      return 0;
    case WM_DESTROY: DeleteObject(bitmap); return 0;
    case WM_TIMER: Repaint(window); return 0;
    case WM_PAINT: {
      const kv::PaintScope paint(window);
      const SIZE size = kv::ClientSize(window);
      kv::ShowBitmap(paint.dc(), {0, 0, size.cx, size.cy}, bitmap, size);
      return 0;
    }
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

HWND CreateEmpty(HWND parent, int left, int top, int size) {
  return CreateWindowExA(0, kEmptyClass, "", WS_CHILD | WS_VISIBLE, left, top, size, size, parent, nullptr,
                         GetModuleHandleA(nullptr), nullptr);
}

// ---- Measuring ------------------------------------------------------------------------------------------------------

void MeasureRendering(HWND parent) {
  printf("%-12s %6s %14s %14s %14s\n", "mode", "pixels", "full ms", "new value ms", "floor ms");
  for (const Mode& mode : kModes) {
    for (const int size : {64, 200, 600}) {
      HWND control = Create(parent, mode.style, 0, 0, size);
      const double anew =
          MillisecondsEach([control](int) { SendMessageA(control, kv::kControlCommand, kv::kCommandRender, 0); });
      const double changed = MillisecondsEach([&](int i) {
        SetValue(control, mode.low + (mode.high - mode.low) * static_cast<float>(i % 50) / 50, kv::kCommandRedraw);
      });
      DestroyWindow(control);
      HWND empty = CreateEmpty(parent, 0, 0, size);
      const double floor = MillisecondsEach([empty](int) { Repaint(empty); });
      DestroyWindow(empty);
      printf("%-12s %6d %14.2f %14.2f %14.2f\n", mode.name, size, anew, changed, floor);
    }
  }
}

constexpr int kInstruments = 20;

// The share of a core in percent while messages are dispatched and `often` is called four times a second.
template <class Work>
double PercentOfACore(Work often) {
  constexpr std::chrono::seconds kSpan(4);
  const double cpu = CpuSeconds();
  const auto start = Clock::now();
  auto next = start;
  while (Clock::now() - start < kSpan) {
    if (Clock::now() >= next) {
      often();
      next += std::chrono::milliseconds(250);
    }
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
  }
  return (CpuSeconds() - cpu) / std::chrono::duration<double>(Clock::now() - start).count() * 100;
}

void MeasureAnimation(HWND parent) {
  HWND controls[kInstruments];
  for (int i = 0; i < kInstruments; ++i) {
    controls[i] = Create(parent, kModes[i % std::size(kModes)].style, i % 5 * 130, i / 5 * 130, 120);
  }
  float value = 30;
  const double animation = PercentOfACore([&] {
    // New targets close enough to animate keep all instruments moving.
    value = value > 35 ? 30.0f : 40.0f;
    for (HWND control : controls) SetValue(control, value, kv::kValueAnimate);
  });
  for (HWND control : controls) DestroyWindow(control);
  for (int i = 0; i < kInstruments; ++i) {
    controls[i] = CreateEmpty(parent, i % 5 * 130, i / 5 * 130, 120);
    SetTimer(controls[i], 1, 20, nullptr);
  }
  const double floor = PercentOfACore([] {});
  for (HWND control : controls) DestroyWindow(control);
  printf("%d instruments of 120 pixels moving: %.1f %% of one core, floor %.1f %%\n", kInstruments, animation, floor);
}

// The number of GDI objects that can still be created.
int FreeObjects() {
  std::vector<kv::OwnedBrush> brushes;
  while (HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3))) brushes.emplace_back(brush);
  return static_cast<int>(brushes.size());
}

void MeasureMany(HWND parent) {
  constexpr int kMany = 2000;
  const int before = FreeObjects();
  const auto start = Clock::now();
  std::vector<HWND> controls;
  for (int i = 0; i < kMany; ++i) {
    controls.push_back(Create(parent, kModes[i % std::size(kModes)].style, i % 50 * 14, i / 50 * 17, 30 + i % 40));
    SetValue(controls.back(), 40, kv::kCommandRedraw);
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  printf("%d instruments: %d GDI objects, created and shown in %.1f s\n", kMany, before - FreeObjects(), seconds);
  for (HWND control : controls) DestroyWindow(control);
}

}  // namespace

int main(int count, char** arguments) {
  setvbuf(stdout, nullptr, _IONBF, 0);
  HINSTANCE instance = GetModuleHandleA(nullptr);
  if (!kv::RegisterDisplayInstrumentClass(instance, TRUE)) return 1;
  WNDCLASSA empty{};
  empty.lpfnWndProc = EmptyProcedure;
  empty.hInstance = instance;
  empty.lpszClassName = kEmptyClass;
  RegisterClassA(&empty);
  HWND parent = CreateWindowExA(0, "STATIC", "benchmark", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 700, 700,
                                nullptr, nullptr, instance, nullptr);
  const bool all = count < 2 || std::strcmp(arguments[1], "animation") != 0;
  if (all) MeasureRendering(parent);
  MeasureAnimation(parent);
  if (all) MeasureMany(parent);
  DestroyWindow(parent);
  return 0;
}
