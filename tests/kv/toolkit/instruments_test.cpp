#include "kv/toolkit/instruments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "kv/controls/display_instrument.h"
#include "kv/controls/instrument/center_bar.h"
#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/gauge_layout.h"
#include "kv/controls/instrument/segment_bar.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument/view.h"
#include "kv/controls/instrument_block.h"
#include "kv/resource.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr int kId = 31;

class Instruments : public kvtest::ControlTest<RegisterDisplayInstrumentClass> {
 protected:
  void Make(DWORD style) {
    if (control_) DestroyWindow(control_);
    control_ = CreateControl(parent_, kDisplayInstrumentClass, "", style, {0, 0, 80, 60}, kId);
  }
  InstrumentBlock Block() { return kvtest::Read<InstrumentBlock>(control_, kCommandBlock); }
  HWND control_ = nullptr;
};

constexpr SIZE kSizes[] = {{80, 60}, {60, 200}, {20, 90}, {300, 40}, {16, 16}};

// The number that an instrument of this size shows; empty if it shows none.
std::wstring ShownNumber(const InstrumentBlock& block, DWORD style, SIZE size) {
  const RECT area{0, 0, size.cx, size.cy};
  const auto measure = [](std::wstring_view text, int height, int) {
    return SIZE{static_cast<LONG>(text.size()) * height / 2, height};
  };
  FixedText text;
  switch (style & kInstrumentModeBits) {
    case kModeDigital: text = DigitalText(block, style, {}); break;
    case kModeSegmentBar: text = SegmentBarNumber(area, block, style); break;
    case kModeCenterBar: text = CenterNumber(area, block, style, size.cx > size.cy); break;
    default: text = LayOutGaugeValue(DialIn(area), block, 0, measure).text; break;
  }
  return std::wstring(WithoutPadding(text));
}

// Whether the text is the number, rounded to its last digit.
bool IsNumber(const std::wstring& text, double number) {
  const size_t power = text.find(L'e'), point = text.find(L'.'), end = std::min(power, text.size());
  const int decimals = point < end ? static_cast<int>(end - point) - 1 : 0;
  const double unit = std::pow(10, (power < text.size() ? std::stoi(text.substr(power + 1)) : 0) - decimals);
  return std::fabs(std::stod(text) - number) <= 0.5001 * unit;
}

// In every mode, a typed call and a template of the toolkit alone are enough for correct numbers.
TEST_F(Instruments, ShowNoNumberThatDiffersFromTheValue) {
  const std::tuple<double, double> ranges[] = {
      {0, 100},    {0, 250},     {0, 99},      {0, 9.99},  {0, 1},       {-10, 10},    {100, -100}, {200, 50},
      {-500, 50},  {-5, -1},     {0, 31622},   {0, 999.6}, {0, 0.05},    {1e-7, 2e-7}, {0, 3.2e7},  {-3e38, 3e38},
      {-0.4, 0.4}, {90000, 1e5}, {-1000, 999}, {0, 1e15},  {31.6, 31.7}, {-12.34, 50}};
  const DWORD modes[] = {kModeDigital, kModeSegmentBar, kModeCenterBar, kModeGauge};
  for (const DWORD mode : modes) {
    Make(mode);
    for (const auto& [minimum, maximum] : ranges) {
      ASSERT_TRUE(SetInstrumentRange(parent_, kId, {.minimum = minimum, .maximum = maximum}));
      for (const double part : {0.0, 0.003, 0.23, 0.5, 0.77, 1.0}) {
        ASSERT_TRUE(SetInstrumentValue(parent_, kId, minimum + (maximum - minimum) * part, FALSE));
        const InstrumentBlock block = Block();
        const auto style = kvtest::Read<DWORD>(control_, kCommandStyle);
        for (const SIZE& size : kSizes) {
          const std::wstring text = ShownNumber(block, style, size);
          EXPECT_TRUE(text.empty() || IsNumber(text, block.current)) << mode << ": " << block.current << " " << text;
          const bool isSigned = mode == kModeDigital && std::min(minimum, maximum) < 0 && block.current > 0;
          EXPECT_TRUE(!isSigned || text.starts_with(L'+') || text.find(L'e') != text.npos) << text;
          const bool absent = mode == kModeSegmentBar && part == 0;
          EXPECT_TRUE(!text.empty() || absent || size.cx < 60 || mode == kModeGauge) << mode << ": " << block.current;
        }
      }
    }
  }
  const std::tuple<DWORD, float, std::wstring> alone[] = {{KV_READOUT, 100, L"100"},
                                                          {KV_SEGMENT_BAR, 100, L"100"},
                                                          {KV_CENTER_ZERO_BAR, -100, L"-100"},
                                                          {KV_READOUT | KV_SHOW_ANGLE, 7.5, L"7.30.00.00.%"}};
  for (const auto& [style, value, text] : alone) {
    Make(style);
    kvtest::Send(control_, kCommandValue, &value);
    EXPECT_EQ(text, ShownNumber(Block(), style, {80, 60}));
    Make(style & kInstrumentModeBits);
    ASSERT_TRUE(SetInstrumentValue(parent_, kId, value, FALSE));
    EXPECT_TRUE(kvtest::Read<DWORD>(control_, kCommandStyle) & kInstrumentFitted);
  }
  InstrumentBlock west = Block();
  west.minimum = -180, west.current = -7.5f;  // the unit has no letters for hemispheres
  EXPECT_EQ(L"-7.30.00.00.", ShownNumber(west, KV_READOUT | KV_SHOW_ANGLE, {80, 60}).substr(0, 12));
}

TEST_F(Instruments, RejectRangesWithoutValues) {
  Make(kModeGauge);
  SetInstrumentRange(parent_, kId, {.maximum = 250, .unit = L"°C", .step = 0.25, .decimals = 9});
  const InstrumentBlock before = Block();
  EXPECT_EQ(std::tuple(250, 0.25f, 7), std::tuple(before.maximum, before.step, before.format));
  EXPECT_EQ(L"°C", InstrumentUnit(before));
  const InstrumentRange ranges[] = {
      {.maximum = NAN},  {.minimum = NAN}, {.minimum = 5, .maximum = 5},           {.maximum = INFINITY},
      {.maximum = 1e39}, {.step = NAN},    {.minimum = 1e9 + 0.01, .maximum = 1e9}};
  for (const InstrumentRange& range : ranges) EXPECT_FALSE(SetInstrumentRange(parent_, kId, range));
  for (const auto& [step, decimals] : {std::pair{0.01, 2}, {0.25, 1}, {4.0, 0}, {1e-9, 7}}) {
    EXPECT_TRUE(SetInstrumentRange(parent_, kId, {.step = step}));
    EXPECT_EQ(decimals, Block().format) << step;
  }
  SetInstrumentRange(parent_, kId, {.maximum = 250, .step = 0.25, .decimals = 9});
  const InstrumentZone zone{0, NAN, RGB(1, 2, 3)};
  EXPECT_FALSE(SetInstrumentZones(parent_, kId, {&zone, 1}));
  const InstrumentBlock after = Block();
  EXPECT_EQ(0, memcmp(&before, &after, sizeof(before)));
  Make(kModeDigital | kInstrumentShowTime);  // hours, minutes, seconds whatever the step
  EXPECT_TRUE(SetInstrumentRange(parent_, kId, {.maximum = 1}));
  EXPECT_EQ(0, Block().format);
}

TEST_F(Instruments, SetsNamesZonesAndValues) {
  Make(kModeGauge);
  const std::wstring name(16, L'ä');  // 32 bytes of UTF-8, one too many
  EXPECT_TRUE(SetInstrumentName(parent_, kId, name.c_str()));
  EXPECT_EQ(std::wstring(15, L'ä'), InstrumentName(Block()));
  const InstrumentZone zones[] = {{-5, 20, RGB(1, 2, 3)}, {20, 120, RGB(4, 5, 6)}};
  EXPECT_TRUE(SetInstrumentZones(parent_, kId, zones));
  EXPECT_EQ(std::tuple(3u, 0, 100), std::tuple(Block().state, Block().zones[0].lower, Block().zones[1].upper));
  EXPECT_TRUE(SetInstrumentZones(parent_, kId, {}));
  EXPECT_EQ(0u, Block().state);
  EXPECT_TRUE(SetInstrumentColor(parent_, kId, RGB(7, 8, 9)));
  EXPECT_EQ(0x02000000u | RGB(7, 8, 9), Block().color);

  double value = 0;
  EXPECT_TRUE(SetInstrumentValue(parent_, kId, 1e30, FALSE) && SetInstrumentRange(parent_, kId, {.maximum = 50}));
  EXPECT_TRUE(GetInstrumentValue(parent_, kId, &value) && ClearInstrumentValue(parent_, kId));
  EXPECT_FALSE(GetInstrumentValue(parent_, kId, &value));
  EXPECT_EQ(std::tuple(50.0, kInstrumentNoValue), std::tuple(value, Block().state));

  Make(kModeDigital);
  EXPECT_TRUE(
      SetInstrumentStyle(parent_, kId, kInstrumentShowTime | kModeCenterBar, TRUE));  // the mode does not change
  const SYSTEMTIME time{.wHour = 7, .wMinute = 8};
  EXPECT_TRUE(SetInstrumentTime(parent_, kId, time));
  const auto stored = kvtest::Read<SYSTEMTIME>(control_, kCommandTime);
  EXPECT_EQ(0, memcmp(&time, &stored, sizeof(time)));

  CreateControl(parent_, "BUTTON", "", 0, {0, 0, 9, 9}, kId + 1);
  for (int id : {kId + 1, kId + 2}) {
    EXPECT_FALSE(SetInstrumentValue(parent_, id, 1, FALSE) || SetInstrumentName(parent_, id, L"x") ||
                 SetInstrumentTime(parent_, id, time) || SetInstrumentZones(parent_, id, zones) ||
                 GetInstrumentValue(parent_, id, &value) || SetInstrumentStyle(parent_, id, 64, TRUE));
  }
}

TEST_F(Instruments, ShowsTheLastValueSet) {
  const auto set = [this](double value, BOOL animate) {
    EXPECT_TRUE(SetInstrumentValue(parent_, kId, value, animate));
  };
  const auto ends = [this](float value) {
    EXPECT_TRUE(kvtest::WaitUntil([&] { return Block().current == value; })) << value << ", not " << Block().current;
    for (int i = 0; i < 30; ++i) SendMessageA(control_, WM_TIMER, 5, 0);  // no animation to another value continues
    EXPECT_EQ(value, Block().current);
  };
  Make(kModeCompass);
  set(3, TRUE);
  EXPECT_EQ(0, Block().current);  // still moving
  ends(3);
  Make(kModeGauge);
  for (const BOOL animate : {FALSE, TRUE}) {
    set(20, TRUE);
    set(0, animate);
    ends(0);
  }
  set(40, FALSE);
  set(60, TRUE);
  EXPECT_TRUE(SetInstrumentName(parent_, kId, L"Speed") && SetInstrumentRange(parent_, kId, {.maximum = 55}));
  ends(55);
}

}  // namespace
}  // namespace kv
