#include "kv/toolkit/instruments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <tuple>

#include "kv/controls/display_instrument.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/control_class.h"
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
    style_ = style;
  }
  InstrumentBlock Block() {
    InstrumentBlock block{};
    SendMessageA(control_, kControlCommand, kCommandBlock | kCommandRead, reinterpret_cast<LPARAM>(&block));
    return block;
  }
  HWND control_ = nullptr;
  DWORD style_ = 0;
};

TEST_F(Instruments, ReadoutsShowAllDigitsOfEveryValue) {
  Make(kModeDigital);
  // The range, and the decimals that result from a hundredth of it.
  const std::tuple<double, double, int> ranges[] = {{0, 250, 0},   {0, 100, 0},   {0, 99, 1},    {0, 9.99, 2},
                                                    {0, 1, 2},     {-10, 10, 1},  {-500, 50, 0}, {-5, -1, 2},
                                                    {0, 31622, 0}, {0, 999.6, 0}, {0, 0.05, 4}};
  for (const auto& [minimum, maximum, decimals] : ranges) {
    ASSERT_TRUE(SetInstrumentRange(parent_, kId, {.minimum = minimum, .maximum = maximum}));
    for (double value : {minimum, maximum, 0.77 * maximum + 0.23 * minimum}) {
      ASSERT_TRUE(SetInstrumentValue(parent_, kId, value, FALSE));
      wchar_t expected[40];
      FormatBounded(expected, sizeof(expected), minimum < 0 ? L"%+.*f" : L"%.*f", decimals,
                    static_cast<double>(static_cast<float>(value)));
      EXPECT_EQ(expected, WithoutPadding(DigitalText(Block(), style_, {}))) << minimum << ".." << maximum;
    }
  }
  EXPECT_EQ(317, ReadableMaximum(250, 250));
  EXPECT_EQ(999, ReadableMaximum(999, 999));
  Make(kModeGauge);  // a scale's range is not extended
  SetInstrumentRange(parent_, kId, {.maximum = 250, .unit = L"°C", .step = 0.25, .decimals = 9});
  EXPECT_EQ(std::tuple(250, 0.25f, 7), std::tuple(Block().maximum, Block().step, Block().format));
  EXPECT_EQ(L"°C", InstrumentUnit(Block()));
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
      SetInstrumentStyle(parent_, kId, kInstrumentShowTime | kModeCentreBar, TRUE));  // the mode does not change
  const SYSTEMTIME time{.wHour = 7, .wMinute = 8};
  EXPECT_TRUE(SetInstrumentTime(parent_, kId, time));
  SYSTEMTIME stored{};
  SendMessageA(control_, kControlCommand, kCommandTime | kCommandRead, reinterpret_cast<LPARAM>(&stored));
  EXPECT_EQ(0, memcmp(&time, &stored, sizeof(time)));

  CreateControl(parent_, "BUTTON", "", 0, {0, 0, 9, 9}, kId + 1);
  for (int id : {kId + 1, kId + 2}) {
    EXPECT_FALSE(SetInstrumentValue(parent_, id, 1, FALSE) || SetInstrumentName(parent_, id, L"x") ||
                 SetInstrumentTime(parent_, id, time) || SetInstrumentZones(parent_, id, zones) ||
                 GetInstrumentValue(parent_, id, &value) || SetInstrumentStyle(parent_, id, 64, TRUE));
  }
}

TEST_F(Instruments, ShowsTheLastValueSet) {
  const auto set = [this](double value, BOOL glide) { EXPECT_TRUE(SetInstrumentValue(parent_, kId, value, glide)); };
  const auto ends = [this](float value) {
    EXPECT_TRUE(kvtest::WaitUntil([&] { return Block().current == value; })) << value << ", not " << Block().current;
    for (int i = 0; i < 30; ++i) SendMessageA(control_, WM_TIMER, 5, 0);  // no glide to another value continues
    EXPECT_EQ(value, Block().current);
  };
  Make(kModeCompass);
  set(3, TRUE);
  EXPECT_EQ(0, Block().current);  // still gliding
  ends(3);
  Make(kModeGauge);
  for (const BOOL glide : {FALSE, TRUE}) {
    set(20, TRUE);
    set(0, glide);
    ends(0);
  }
  set(40, FALSE);
  set(60, TRUE);
  EXPECT_TRUE(SetInstrumentName(parent_, kId, L"Speed") && SetInstrumentRange(parent_, kId, {.maximum = 55}));
  ends(55);
}

}  // namespace
}  // namespace kv
