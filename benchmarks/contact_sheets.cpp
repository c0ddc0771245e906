// Draws contact sheets, for looking at many images at once: each mode of the display instrument at many sizes and
// ranges, as dialogs of the toolkit show it, and the horizon at many attitudes.
//   contact_sheets FOLDER [SHEET]     writes all sheets, or one, as SHEET.png
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "kv/controls/display_instrument.h"
#include "kv/controls/horizon/horizon.h"
#include "kv/controls/horizon/horizon_renderer.h"
#include "kv/controls/instrument/state.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/framework/window_state.h"
#include "kv/resource.h"
#include "kv/toolkit/instruments.h"
#include "kv/toolkit/png_file.h"

namespace {

struct Case {
  double minimum, maximum, value;
  const wchar_t* unit = L"%";
  double step = 0;
};
constexpr Case kRanges[] = {
    {0, 100, 100},          {0, 250, 230},           {100, -100, 33},           {-20, 20, -6.25},
    {-1, 1, 0.42},          {0, 9999999, 9999999},   {-200000, 200000, 123456}, {0, 0.0042, 0.0033, L"A"},
    {0, 9e6, 4.5e6, L"kn"}, {0, 3e-10, 1e-10, L"%"}, {0, 10, 0.4, L"bar"},      {-50, 150, 7, L"\u00B0C"}};

struct Sheet {
  const char* name;
  DWORD style;
  std::vector<SIZE> sizes;
  bool zones = true;
};
const Sheet kSheets[] = {
    {"gauge", KV_GAUGE, {{48, 48}, {64, 64}, {96, 96}, {140, 140}, {200, 200}, {300, 300}}},
    {"readout", KV_READOUT, {{48, 20}, {60, 36}, {150, 60}, {240, 60}, {200, 120}, {400, 160}}},
    {"segment_bar", KV_SEGMENT_BAR, {{24, 90}, {40, 150}, {60, 240}, {120, 240}, {150, 40}, {300, 90}}},
    {"compass", KV_COMPASS, {{48, 48}, {64, 64}, {96, 96}, {140, 140}, {200, 200}, {300, 300}}},
    {"center_bar",
     KV_CENTER_ZERO_BAR,
     {{24, 90},
      {40, 150},
      {60, 240},
      {120, 120},
      {150, 240},
      {50, 20},
      {90, 24},
      {150, 40},
      {240, 60},
      {200, 120},
      {400, 60},
      {300, 150}}}};

constexpr int kGap = 8;

// Lays out images from left to right in rows, and copies them to one bitmap.
class SheetBitmap {
 public:
  explicit SheetBitmap(SIZE size) : size_(size) {
    surface_.Create(size);
    const kv::SelectedObject selected(dc_, surface_.bitmap());
    kv::FillSolid(dc_, {0, 0, size.cx, size.cy}, GetSysColor(COLOR_BTNFACE));
  }
  void Add(HBITMAP image, SIZE size) {
    if (x_ + size.cx + kGap > size_.cx) EndRow();
    const kv::MemoryDc source(nullptr);
    const kv::SelectedObject target(dc_, surface_.bitmap()), from(source, image);
    BitBlt(dc_, x_, y_, size.cx, size.cy, source, 0, 0, SRCCOPY);
    x_ += size.cx + kGap;
    rowHeight_ = std::max(rowHeight_, size.cy);
  }
  void EndRow() {
    x_ = kGap;
    y_ += rowHeight_ + kGap;
    rowHeight_ = 0;
  }
  bool Save(const std::string& path) const {
    return kv::SaveBitmapAsPng(surface_.bitmap(), std::wstring(path.begin(), path.end()).c_str()) != FALSE;
  }

 private:
  SIZE size_;
  kv::Surface surface_;
  kv::MemoryDc dc_{nullptr};
  LONG x_ = kGap, y_ = kGap, rowHeight_ = 0;
};

SIZE SizeOfSheet(std::span<const SIZE> sizes, int rows) {
  SIZE size{kGap, 0};
  for (const SIZE& each : sizes) {
    size.cx += each.cx + kGap;
    size.cy = std::max(size.cy, each.cy);
  }
  size.cy = (size.cy + kGap) * rows + kGap;
  return size;
}

bool Draw(HWND parent, const Sheet& sheet, const std::string& folder) {
  constexpr int kId = 7;
  SheetBitmap bitmap(SizeOfSheet(sheet.sizes, static_cast<int>(std::size(kRanges))));
  for (const Case& shown : kRanges) {
    for (const SIZE& size : sheet.sizes) {
      HWND control = CreateWindowExA(0, kv::kDisplayInstrumentClass, "", WS_CHILD | sheet.style, 0, 0, size.cx, size.cy,
                                     parent, reinterpret_cast<HMENU>(kId), GetModuleHandleA(nullptr), nullptr);
      const double span = shown.maximum - shown.minimum;
      kv::SetInstrumentRange(
          parent, kId,
          {.minimum = shown.minimum, .maximum = shown.maximum, .unit = shown.unit, .step = span / 40, .decimals = -1});
      kv::SetInstrumentName(parent, kId, L"Pressure");
      const auto at = [&](double part) { return static_cast<float>(shown.minimum + span * part); };
      const kv::InstrumentZone zones[] = {
          {at(0), at(0.6), RGB(0, 200, 80)}, {at(0.6), at(0.8), RGB(255, 190, 0)}, {at(0.8), at(1), RGB(240, 48, 32)}};
      if (sheet.zones) kv::SetInstrumentZones(parent, kId, zones);
      kv::SetInstrumentValue(parent, kId, shown.value, FALSE);
      SendMessageA(control, kv::kControlCommand, kv::kCommandRender, 0);
      const auto* state = kv::WindowState<kv::InstrumentState>(control);
      if (state->bRedraw) SendMessageA(control, WM_COPY, 0, 0);  // an invisible control is not painted
      bitmap.Add(state->hBuffer, size);
      DestroyWindow(control);
    }
    bitmap.EndRow();
  }
  return bitmap.Save(folder + sheet.name + ".png");
}

bool DrawHorizons(const std::string& folder) {
  constexpr SIZE kSizes[] = {{64, 64}, {120, 120}, {200, 200}, {320, 240}, {300, 300}};
  constexpr float kAttitudes[][2] = {{0, 0},    {10, -20}, {-7, 30},  {25, 60}, {-40, 5},
                                     {65, -10}, {80, 0},   {-85, 45}, {88, 170}};
  SheetBitmap bitmap(SizeOfSheet(kSizes, static_cast<int>(std::size(kAttitudes))));
  for (const auto& [pitch, roll] : kAttitudes) {
    for (const SIZE& size : kSizes) {
      kv::HorizonRenderer renderer;
      const DWORD style = kv::kHorizonTape | (size.cx == size.cy ? kv::kHorizonRound : kv::kHorizonRectangular);
      renderer.Update({kv::kHorizonVersion, 0, pitch, roll, 0.5f, 327}, style, size, true);
      bitmap.Add(renderer.surface().bitmap(), size);
    }
    bitmap.EndRow();
  }
  return bitmap.Save(folder + "horizon.png");
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) return 1;
  const std::string folder = std::string(arguments[1]) + "/";
  const auto wanted = [&](const char* name) { return count < 3 || std::strcmp(arguments[2], name) == 0; };
  if (!kv::RegisterDisplayInstrumentClass(GetModuleHandleA(nullptr), TRUE)) return 1;
  HWND parent = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 800, 800, nullptr, nullptr, nullptr, nullptr);
  bool saved = true;
  for (const Sheet& sheet : kSheets) {
    if (wanted(sheet.name)) saved &= Draw(parent, sheet, folder);
  }
  if (wanted("horizon")) saved &= DrawHorizons(folder);
  DestroyWindow(parent);
  return saved ? 0 : 1;
}
