// Draws contact sheets of the display instrument into bitmap files, for looking at: every layout in several states at
// the size given, or a sheet of odd shapes. `benchmarks/sheets` runs it and turns the files into PNG pictures.
//   instrument_sheets FOLDER
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "controls/display_instrument.h"
#include "controls/instrument_block.h"
#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/picture.h"

namespace {

constexpr int kGap = 8;

struct Sample {
  const char* name;
  DWORD style;
  float minimum, maximum, step, value;
  BYTE format;
  COLORREF color;
  const char* unit;
  DWORD zones;  // how many are shown
};

constexpr COLORREF kRed = RGB(255, 0, 0), kOrange = RGB(255, 150, 20), kGreen = RGB(0, 230, 60),
                   kCyan = RGB(60, 200, 255);

constexpr Sample kSamples[] = {
    {"Relative", kv::kModeGauge, 0, 100, 1, 42, 0, kRed, "%", 0},
    {"Airspeed", kv::kModeGauge, 0, 180, 5, 127, 0, kOrange, "km/h", 3},
    {"Pressure", kv::kModeGauge, -2500, 12500, 100, 9870, 0, kCyan, "hPa", 2},
    {"Altitude", kv::kModeDigital, 0, 10000, 1, 1634, 0, kGreen, "m", 0},
    {"Climb", kv::kModeDigital, -10, 10, 0.1f, -3.25f, 0x12, kRed, "m/s", 0},
    {"Time", kv::kModeDigital | kv::kInstrumentShowTime, 0, 100, 1, 0, 0, kOrange, "", 0},
    {"Latitude", kv::kModeDigital | kv::kInstrumentShowAngle, -90, 90, 0.1f, 52.511f, 0, kCyan, "NS", 0},
    {"Fuel", kv::kModeSegmentBar, 0, 100, 5, 65, 0, kGreen, "l", 1},
    {"Power", kv::kModeSegmentBar | kv::kInstrumentReversed, 0, 100, 1, 30, 1, kRed, "%", 3},
    {"Heading", kv::kModeCompass, -360, 360, 1, 32, 0, kOrange, "\xB0", 0},
    {"Course", kv::kModeCompass, -360, 360, 1, 215.5f, 1, kRed, "\xB0", 1},
    {"Drift", kv::kModeCentreBar, -100, 100, 1, 37, 0, kRed, "%", 0},
    {"Slip", kv::kModeCentreBar, -100, 100, 1, -82, 1, kRed, "%", 0},
};

enum State { kShown, kDisabled, kWithoutValue };

HWND Create(HWND parent, const Sample& sample, SIZE size, State state) {
  HWND control = CreateWindowExA(0, kv::kDisplayInstrumentClass, sample.name, WS_CHILD | WS_VISIBLE | sample.style, 0,
                                 0, size.cx, size.cy, parent, nullptr, GetModuleHandleA(nullptr), nullptr);
  kv::InstrumentBlock block = kv::BuildDefaultBlock(
      {sample.minimum, sample.maximum, sample.step, sample.format, sample.color, sample.unit, sample.name});
  constexpr COLORREF kZoneColors[] = {RGB(60, 190, 60), RGB(240, 200, 40), RGB(240, 60, 50)};
  for (DWORD i = 0; i < sample.zones; ++i) {
    block.state |= kv::ZoneEnabledBit(static_cast<int>(i));
    block.zones[i].lower = sample.minimum + (sample.maximum - sample.minimum) * (0.4f + 0.2f * static_cast<float>(i));
    block.zones[i].upper = block.zones[i].lower + (sample.maximum - sample.minimum) * 0.2f;
    block.zones[i].color = kZoneColors[i];
  }
  block.current = sample.value;
  if (state == kWithoutValue) block.state |= kv::kInstrumentNoValue;
  const auto send = [control](WPARAM code, const void* item) {
    SendMessageA(control, kv::kControlCommand, code, reinterpret_cast<LPARAM>(item));
  };
  send(kv::kCommandBlock, &block);
  const SYSTEMTIME noon{2026, 3, 0, 7, 12, 41, 7, 0};
  send(kv::kCommandTime, &noon);
  EnableWindow(control, state != kDisabled);
  send(kv::kCommandRender, nullptr);
  return control;
}

struct Sheet {
  Sheet(int widthPx, int heightPx) : width(widthPx), height(heightPx), dc(nullptr) {
    const BITMAPINFO info = kv::TopDownBitmapInfo(width, height);
    bitmap.Reset(CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    previous = SelectObject(dc, bitmap);
    const RECT whole{0, 0, width, height};
    FillRect(dc, &whole, GetSysColorBrush(COLOR_BTNFACE));
  }
  ~Sheet() { SelectObject(dc, previous); }

  // One control at a time stands in the parent: so a sheet may be larger than the screen.
  void Add(HWND parent, const Sample& sample, SIZE size, State state, int left, int top) {
    HWND control = Create(parent, sample, size, state);
    {
      const kv::WindowDc window(control);
      BitBlt(dc, left, top, size.cx, size.cy, window, 0, 0, SRCCOPY);
    }
    DestroyWindow(control);
  }

  bool Write(const std::string& path) {
    GdiFlush();
    FILE* file = fopen(path.c_str(), "wb");
    if (!file) return false;
    const BITMAPINFO info = kv::TopDownBitmapInfo(width, height);
    const DWORD bytes = static_cast<DWORD>(width) * height * 4;
    BITMAPFILEHEADER header{};
    header.bfType = 0x4D42;
    header.bfOffBits = sizeof(header) + sizeof(info.bmiHeader);
    header.bfSize = header.bfOffBits + bytes;
    const bool written = fwrite(&header, sizeof(header), 1, file) == 1 &&
                         fwrite(&info.bmiHeader, sizeof(info.bmiHeader), 1, file) == 1 &&
                         fwrite(bits, 1, bytes, file) == bytes;
    return fclose(file) == 0 && written;
  }

  int width, height;
  kv::MemoryDc dc;
  kv::OwnedBitmap bitmap;
  HGDIOBJ previous = nullptr;
  void* bits = nullptr;
};

// Every layout as it is shown, and from small sizes on a row disabled and a row without a value.
bool WriteSizeSheet(HWND parent, const std::string& folder, int size) {
  const int columns = static_cast<int>(std::size(kSamples)), pitch = size + kGap;
  const int perRow = size > 300 ? 5 : columns, states = size > 300 ? 1 : 3;
  const int rows = (columns + perRow - 1) / perRow;
  Sheet sheet(perRow * pitch + kGap, rows * states * pitch + kGap);
  for (int state = 0; state < states; ++state) {
    for (int i = 0; i < columns; ++i) {
      sheet.Add(parent, kSamples[i], {size, size}, static_cast<State>(state), kGap + i % perRow * pitch,
                kGap + (state * rows + i / perRow) * pitch);
    }
  }
  return sheet.Write(folder + "/sheet_" + std::to_string(size) + ".bmp");
}

bool WriteShapeSheet(HWND parent, const std::string& folder) {
  constexpr SIZE kShapes[] = {{16, 16}, {24, 60}, {40, 200}, {80, 200}, {60, 22}, {120, 40}, {240, 60}, {300, 100}};
  int height = kGap;
  for (const SIZE& shape : kShapes) height += (shape.cx > 120 ? 3 : 1) * (shape.cy + kGap);
  const int columns = static_cast<int>(std::size(kSamples));
  Sheet sheet(columns * (120 + kGap) + kGap, height);
  int top = kGap;
  for (const SIZE& shape : kShapes) {
    int left = kGap;
    for (const Sample& sample : kSamples) {
      if (left + shape.cx > sheet.width) {
        left = kGap;
        top += shape.cy + kGap;
      }
      sheet.Add(parent, sample, shape, kShown, left, top);
      left += shape.cx + kGap;
    }
    top += shape.cy + kGap;
  }
  return sheet.Write(folder + "/sheet_shapes.bmp");
}

}  // namespace

int main(int count, char** arguments) {
  const std::string folder = count > 1 ? arguments[1] : ".";
  HINSTANCE instance = GetModuleHandleA(nullptr);
  if (!kv::RegisterDisplayInstrumentClass(instance, TRUE)) return 1;
  HWND parent = CreateWindowExA(0, "STATIC", "sheets", WS_POPUP | WS_VISIBLE, 0, 0, 640, 640, nullptr, nullptr,
                                instance, nullptr);
  bool written = WriteShapeSheet(parent, folder);
  for (const int size : {48, 64, 90, 120, 200, 330, 600}) written = WriteSizeSheet(parent, folder, size) && written;
  DestroyWindow(parent);
  if (!written) printf("cannot write into %s\n", folder.c_str());
  return written ? 0 : 1;
}
