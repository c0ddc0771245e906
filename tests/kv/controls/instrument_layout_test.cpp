// Number text, block arithmetic and layout geometry of the display instrument, without a window.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "kv/controls/instrument/center_bar.h"
#include "kv/controls/instrument/compass.h"
#include "kv/controls/instrument/digital.h"
#include "kv/controls/instrument/gauge_layout.h"
#include "kv/controls/instrument/segment_bar.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument/view.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/coverage.h"

namespace kv {
namespace {

constexpr float kInfinite = std::numeric_limits<float>::infinity();

InstrumentBlock Block(float minimum, float maximum, float step, BYTE format, float current) {
  InstrumentBlock block = BuildDefaultBlock({minimum, maximum, step, format, 0, "%", "Relative"});
  block.minimum = minimum;
  block.maximum = maximum;
  block.step = step;
  block.current = current;
  return block;
}

TEST(InstrumentBlock, DefaultsReplaceMissingParameters) {
  const InstrumentBlock plain = BuildDefaultBlock({5, 5, 0, 3, 0, nullptr, nullptr});
  EXPECT_EQ(std::tuple(kInstrumentVersion, 0x020000FFu, 3, 0.0f, 100.0f, 1.0f, 50.0f),
            std::tuple(plain.version, plain.color, plain.format, plain.minimum, plain.maximum, plain.step,
                       plain.zones[1].lower));
  EXPECT_EQ("Relative %", std::string(plain.szName) + " " + plain.szUnit);
  const InstrumentBlock given =
      BuildDefaultBlock({3, 8, 0.5, 0, 0x12345678, "\xB0gdefgh", std::string(40, 'n').c_str()});
  EXPECT_EQ(std::tuple(0x02345678u, 3.0f), std::tuple(given.color, given.current));
  EXPECT_EQ(std::string(31, 'n') + "\xB0gdef", std::string(given.szName) + given.szUnit);
}

TEST(InstrumentBlock, RangeArithmeticAcceptsEveryInput) {
  const InstrumentBlock backwards = Block(100, 0, 1, 0, 30);
  for (const auto& [value, clamped] : {std::pair{kInfinite, 100.0f}, {-5.0f, 0.0f}, {NAN, 0.0f}}) {
    EXPECT_EQ(clamped, ClampToRange(backwards, value));
  }
  EXPECT_DOUBLE_EQ(0.7, FractionOf(ReadingOf(backwards), 30));
  for (const InstrumentBlock& block : {Block(5, 5, 1, 0, 5), Block(NAN, 7, 1, 0, 5), Block(0, kInfinite, 1, 0, 5)}) {
    EXPECT_EQ(0.0, ReadingOf(block).minimum);
    EXPECT_DOUBLE_EQ(0.05, FractionOf(ReadingOf(block), 5));
  }
  EXPECT_FALSE(ReadingOf(Block(0, 10, 1, 0, NAN)).valid);
  EXPECT_EQ(10.0, ReadingOf(Block(0, 10, 1, 0, kInfinite)).value);
  EXPECT_EQ(0.0, FractionOf(ReadingOf(Block(0, 10, 1, 0, 0)), NAN));
}

// A step finer than the value's resolution reaches the target and does not keep the timer running.
TEST(InstrumentBlock, AnimationEndsForEveryStep) {
  for (const float tiny : {1e-30f, 0.0f, NAN, kInfinite}) {
    for (const auto& [from, target] : {std::pair{45.0f, 50.0f}, {-1e-38f, 3.0f}, {NAN, 7.0f}}) {
      InstrumentBlock block = Block(-100, 100, tiny, 0, from);
      AnimationStep step = NextAnimationStep(block, target);
      for (int ticks = 0; step.moving && ticks < 1200; ++ticks, step = NextAnimationStep(block, target)) {
        block.current = step.current;
      }
      EXPECT_FALSE(step.moving);
      EXPECT_EQ(target, block.current) << from << " step " << tiny;
    }
  }
  EXPECT_FALSE(NextAnimationStep(Block(0, 1, 1, 0, NAN), NAN).moving);
}

TEST(InstrumentText, NamesAndUnitsAreDecoded) {
  InstrumentBlock block = Block(0, 1, 1, 0, 0);
  memcpy(block.szUnit, "\xB5m/s\xB2!", 6);  // no terminator
  EXPECT_EQ(L"\u00B5m/s\u00B2!", InstrumentUnit(block));
  strcpy(block.szUnit, "m/s\xC2\xB2");
  EXPECT_EQ(L"m/s\u00B2", InstrumentUnit(block));
  memcpy(block.szName, "01234567890123456789012345678\xC3\xBC\xC3", 32);  // the field ends within a character
  EXPECT_EQ(L"01234567890123456789012345678\u00FC", InstrumentName(block));
}

TEST(InstrumentText, FixedWidthKeepsTheLowOrderDigits) {
  // 9.996 rounds to 10.00 and loses the 1.
  const std::tuple<const wchar_t*, double, int, int> cases[] = {{L"00", 100, 2, 0},
                                                                {L" 7", 7, 2, 0},
                                                                {L" 42.50", 42.5, 6, 2},
                                                                {L"0.00", 9.996, 4, 2},
                                                                {L"9.99", 9.994, 4, 2},
                                                                {L"-3.5", -3.5, 4, 1},
                                                                {L"3.5", -3.5, 3, 1},
                                                                {L" +7", 7, 3, kFormatSign},
                                                                {L"  -12", -12.4, 5, kFormatSign},
                                                                {L"1.2345679", 1.23456789, 9, 7},
                                                                {L"5", 5, -4, 0},
                                                                {L"2.5", 12.5, 0, 1}};
  for (const auto& [text, value, width, format] : cases) {
    EXPECT_EQ(text, FixedWidthNumber(value, width, static_cast<BYTE>(format)));
  }
  EXPECT_GE(60u, FixedWidthNumber(3.4e38, 4, 2).size());
  for (const double wild : {1e300, static_cast<double>(NAN)}) EXPECT_FALSE(FixedWidthNumber(wild, 5, 7).empty());
  using Forms = std::vector<std::wstring>;
  const auto forms = [](double maximum, double value, int format) {
    const NumberFormList list = NumberForms({0, maximum, value, true}, static_cast<BYTE>(format));
    return Forms(list.begin(), list.end());
  };
  EXPECT_EQ((Forms{L"1013.28", L"1013.3", L"1013"}), forms(2000, 1013.28, 2));
  EXPECT_EQ((Forms{L"1234567890", L"1.23e9"}), forms(2e9, 1234567890, 0));
  EXPECT_EQ((Forms{L"-0.3", L"0"}), forms(-10, -0.3, kFormatSign | 1));  // no sign if rounded to zero
  EXPECT_EQ((Forms{L"0.00330", L"0.0033"}), forms(0.0042, 0.0033, 5));   // not "0.0"
}

TEST(InstrumentText, WidthFollowsTheMaximum) {
  const std::tuple<float, BYTE, int> widths[] = {
      {100, 0, 2}, {999, 0, 3}, {100, kFormatSign | 2, 6}, {0, 0, 0}, {kInfinite, 0, 0}};
  for (const auto& [maximum, format, width] : widths) EXPECT_EQ(width, NumberWidth(Block(0, maximum, 1, format, 0)));
  EXPECT_EQ(L"--", NoValueNumber(Block(0, 100, 1, 0, 0), 0));
  EXPECT_EQ(L"---", NoValueNumber(Block(0, 100, 1, 0, 0), kInstrumentFitted));
  // One dash after the point for any number of decimals.
  EXPECT_EQ(L"----.-", NoValueNumber(Block(0, 100, 1, 2, 0), 0));
  for (const DWORD style : {DWORD{0}, kInstrumentFitted}) {
    EXPECT_GE(16u, NoValueNumber(Block(0, 3e38f, 1, 7, 0), style).size());
  }
}

TEST(InstrumentText, AnglesTimesAndDates) {
  const char hemispheres[6] = "NS";
  const std::pair<double, const wchar_t*> angles[] = {
      {52.5, L" 52.30.00.00.N"},  {-5.25, L"  5.15.00.00.S"},
      {0, L"  0.00.00.00.N"},     {179 + 59 / 60.0 + 59.5 / 3600, L"179.59.59.50.N"},
      {10.35, L" 10.21.00.00.N"}, {-59.9999999999, L" 60.00.00.00.S"}};
  for (const auto& [angle, text] : angles) EXPECT_EQ(text, AngleText(angle, hemispheres));
  EXPECT_FALSE(AngleText(1e300, hemispheres).empty());

  const std::tuple<DWORD, BYTE, const wchar_t*, const wchar_t*> cases[] = {
      {kInstrumentShowTime, 0, L"06.05.04", L"--.--.--"},
      {kInstrumentShowTime, 1, L"21904089", L"---"},
      {kInstrumentShowTime, 2, L"05.04", L"--.--"},
      {kInstrumentShowTime, 3, L"06.05", L"--.--"},
      {kInstrumentShowTime, 4, L"06.05.04.0089", L"--.--.--"},
      {kInstrumentShowDate, 0, L"2026.03.07", L"--.--.--"},
      {kInstrumentShowAngle, 0, L"  0.00.00.00.%", L"--.--.--.--"}};
  for (const auto& [style, format, text, withoutValue] : cases) {
    InstrumentBlock block = Block(0, 100, 1, format, 0);
    EXPECT_EQ(text, DigitalText(block, style, {2026, 3, 0, 7, 6, 5, 4, 89}));
    block.state = kInstrumentNoValue;
    EXPECT_EQ(withoutValue, DigitalText(block, style, {})) << text;
  }
  SYSTEMTIME wild;
  memset(&wild, 0xFF, sizeof(wild));
  EXPECT_FALSE(DigitalText(Block(0, 100, 1, 1, 0), kInstrumentShowTime, wild).empty());
}

TEST(InstrumentGauge, ScalesHaveRoundNumbersInEveryRange) {
  // The range, the maximum number of steps, then the step, its decimals, the labels' power of ten and the number of
  // steps.
  const std::tuple<double, double, int, double, int, int, int> cases[] = {
      {0, 100, 10, 10, 0, 0, 10},     {93, 7, 10, 10, 0, 0, 8},        {0, 1, 10, 0.1, 1, 0, 10},
      {0, 10, 4, 2.5, 1, 0, 4},       {0, 120000, 6, 20000, 0, 3, 6},  {0, 0.00042, 10, 0.00005, 0, -6, 8},
      {99990, 100010, 4, 5, 0, 0, 4}, {1e9, 1e9 + 64, 10, 10, 0, 0, 6}};
  for (const auto& [low, high, most, step, decimals, exponent, steps] : cases) {
    const GaugeScale scale = ChooseScale(low, high, most);
    EXPECT_NEAR(step, scale.step, step * 1e-9) << high;
    EXPECT_EQ(std::tuple(decimals, exponent, steps),
              std::tuple(scale.labelDecimals, scale.exponent, static_cast<int>(scale.last - scale.first)))
        << high;
  }
}

// A font with typical proportions.
SIZE MeasureByCount(std::wstring_view text, int height, int weight) {
  return {std::lround(text.size() * height * (weight > FW_NORMAL ? 0.49 : 0.45)), height};
}

TEST(InstrumentGauge, NoTwoTextsTouchAtAnySizeAndRange) {
  const std::tuple<float, float, int, float> ranges[] = {{99990, 100010, 2, 100003},
                                                         {-500, 500, 0x10, 0},
                                                         {0, 1e6, 0, 4e5f},
                                                         {0.001f, 0.002f, 4, 0.0011f},
                                                         {40, -10, 1, 0}};
  for (int side = 4; side <= 620; side += side < 130 ? 1 : 35) {
    for (const auto& [minimum, maximum, format, value] : ranges) {
      InstrumentBlock block = Block(minimum, maximum, 1, static_cast<BYTE>(format), value);
      strcpy(block.szName, "Barometer");
      strcpy(block.szUnit, "ft/m");
      const GaugeLayout layout = LayOutGauge({0, 0, side, side}, block, MeasureByCount);
      const std::string what = std::to_string(side) + " px from " + std::to_string(minimum);
      std::vector<RECT> boxes;
      if (layout.dial.innerRadius >= kMinRadiusWithWindow) boxes.push_back(GaugeValueBox(layout.dial));
      std::vector<GaugeText> texts(layout.labels.begin(), layout.labels.end());
      for (const GaugeText& text : {layout.name, layout.unit}) {
        if (!text.height) continue;
        texts.push_back(text);
        // The needle passes or stops above the corner of a text, also at the ends of the scale.
        const double top = text.box.top - layout.dial.center.y + text.height * 0.22;
        const double right = text.box.right - layout.dial.center.x;
        EXPECT_TRUE(top > layout.reach * std::sqrt(0.5) || right + layout.dial.innerRadius * 0.03 < top) << what;
      }
      for (const GaugeText& text : texts) {
        boxes.push_back(text.box);
        InflateRect(&boxes.back(), 0, -text.height / 10 - 1);  // internal leading of the font
        EXPECT_GE(text.height, 9);
        EXPECT_NE(L"+0", text.text);
        EXPECT_LE(MeasureByCount(text.text, text.height, text.weight).cx, text.box.right - text.box.left) << what;
      }
      for (size_t i = 0; i < boxes.size(); ++i) {
        for (size_t k = 0; k < i; ++k) {
          RECT common;
          EXPECT_FALSE(IntersectRect(&common, &boxes[i], &boxes[k])) << what;
        }
      }
      const PointD center = layout.dial.center;
      for (const GaugeText& label : layout.labels) {  // none overlaps the needle
        const double across = std::max({label.box.left - center.x, center.x - label.box.right, 0.0});
        const double down = std::max({label.box.top - center.y, center.y - label.box.bottom, 0.0}) + label.height * 0.1;
        EXPECT_GT(std::hypot(across, down), layout.reach) << what;
      }
      EXPECT_GT(layout.reach, layout.dial.innerRadius * 0.25) << what;
      EXPECT_TRUE(!layout.name.height || layout.name.box.top > center.y) << what;
      EXPECT_TRUE(side < 115 || layout.unit.height) << what;
      if (side >= 130) {
        EXPECT_GE(layout.labels.size(), 3u) << what;
        EXPECT_TRUE(side < 200 || (layout.name.height && layout.unit.box.top > layout.dial.center.y)) << what;
      }
      if (side < 48) continue;
      const GaugeText shown = LayOutGaugeValue(layout.dial, block, layout.valueExponent, MeasureByCount);
      EXPECT_GE(shown.height, 7) << what;
      EXPECT_LE(MeasureByCount(shown.text, shown.height, shown.weight).cx, shown.box.right - shown.box.left) << what;
      // At the ends of the scale the needle ends above a value of maximum width, or passes beside it.
      const bool wide = layout.dial.innerRadius < kMinRadiusWithLabels;
      EXPECT_LT(wide ? layout.reach * std::sqrt(0.5) : 0, shown.box.top - center.y + shown.height * 0.1) << what;
    }
  }
}

// Scale, unit and value agree: a prefix applies to all of them, a power of ten only to the scale.
TEST(InstrumentGauge, LongNumbersGetAPrefixOrAPowerOfTen) {
  const std::tuple<float, float, int, const char*, const wchar_t*, const wchar_t*> cases[] = {
      {0.0042f, 0.0033f, 4, "A", L"mA", L"3.3"},
      {5e-5f, 1.5e-5f, 7, "m/s", L"\u00B5m/s", L"15.0"},
      {2e6f, 1.5e6f, 0, "Pa", L"MPa", L"1.500000"},
      {9e6f, 4.5e6f, 0, "kn", L"\u00D710\u2076 kn", L"4500000"},
      {3e-10f, 1e-10f, 7, "%", L"\u00D710\u207B\u00B9\u00B2 %", L"1e-10"},
      {20000, 1500, 0, "ft", L"\u00D71000 ft", L"1500"},
      {250, 100, 0, "V", L"V", L"100"}};
  for (const auto& [maximum, value, format, unit, shownUnit, shownValue] : cases) {
    InstrumentBlock block = Block(0, maximum, maximum / 100, static_cast<BYTE>(format), value);
    strcpy(block.szUnit, unit);
    const GaugeLayout layout = LayOutGauge({0, 0, 400, 400}, block, MeasureByCount);
    EXPECT_EQ(shownUnit, layout.unit.text);
    EXPECT_EQ(shownValue, LayOutGaugeValue(layout.dial, block, layout.valueExponent, MeasureByCount).text);
  }
}

TEST(InstrumentCompass, HeadingsWrapAndTheCardTurnsInTheOppositeDirection) {
  EXPECT_DOUBLE_EQ(0, CardAngle(90, 90));  // heading east: E at the top, N at the left
  EXPECT_DOUBLE_EQ(270, CardAngle(0, 90));
  EXPECT_EQ(L"007", HeadingText(7.2, 0));
  EXPECT_EQ(L"000", HeadingText(359.7, 0));
  EXPECT_EQ(L"359.7", HeadingText(-0.3, 1));
  for (const double north : {-0.0, -360.0, 360.0}) EXPECT_EQ(L"000.0", HeadingText(north, 1));
  EXPECT_EQ(10, MarkSpacing(22));
  EXPECT_EQ(5, MarkSpacing(50));
  EXPECT_EQ(1, MarkSpacing(280));
  std::wstring all;
  for (const Direction& direction : Directions()) all.append(direction.letters, direction.count);
  EXPECT_EQ(kDirectionLetters, all);
}

TEST(InstrumentDigits, CharactersAndSeparators) {
  EXPECT_EQ((std::tuple{0x7Fu, 0x06u, 0u}),
            std::tuple(SegmentsOf('8'), SegmentsOf('1'), SegmentsOf(' ') | SegmentsOf('%')));
  std::set<unsigned> shapes{0, SegmentsOf('-'), SegmentsOf('+')};
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    EXPECT_TRUE(shapes.insert(SegmentsOf(letter)).second) << letter;
    EXPECT_EQ(SegmentsOf(letter), SegmentsOf(static_cast<char>(letter + 'a' - 'A')));
  }
  const std::tuple<const char*, DWORD, std::string> texts[] = {{"12.5", 0, " . "},
                                                               {"12.30", kInstrumentShowTime, " :  "},
                                                               {" 52.23.45.96.N", kInstrumentShowAngle, "  d m . s "},
                                                               {"..", 0, ".."},
                                                               {"", 0, ""}};
  for (const auto& [text, style, separators] : texts) {
    std::string found;
    for (const DigitCell& cell : CellsOf(text, style)) found += " .:dms"[static_cast<int>(cell.separator)];
    EXPECT_EQ(separators, found);
  }
}

TEST(InstrumentBars, SegmentsFollowRangeAndStep) {
  const std::tuple<int, float, float, float> cases[] = {{100, 0, 100, 1}, {20, 0, 100, 5},  {3, 0, 100, 80},
                                                        {3, 100, 0, 1},   {100, 0, 100, 0}, {100, 0, NAN, 1}};
  for (const auto& [count, minimum, maximum, step] : cases) {
    EXPECT_EQ(count, SegmentCount(Block(minimum, maximum, step, 0, 0), 0));
    EXPECT_EQ(-count, SegmentCount(Block(minimum, maximum, step, 0, 0), kInstrumentReversed));
  }
  InstrumentBlock block = Block(0, 200, 1, 0, 0);
  block.zones[0].lower = 50;
  EXPECT_EQ(kNoMarker, MarkerPercent(block));
  block.state = ZoneEnabledBit(0);
  EXPECT_DOUBLE_EQ(25, MarkerPercent(block));
}

TEST(InstrumentBars, CenterZeroGrowsFromTheMiddle) {
  const RECT display{10, 20, 50, 120}, turned{20, 10, 120, 50};
  // The value in a range up to 100, the bar's ends, and the top of the text.
  const std::tuple<float, LONG, LONG, LONG> cases[] = {
      {70, 50, 70, 74}, {30, 70, 90, 54}, {50, 70, 70, 54}, {100, 20, 70, 74}};
  for (const auto& [value, top, bottom, text] : cases) {
    const double deviation = CenterDeviation(ReadingOf(Block(0, 100, 1, 0, value)));
    const RECT bar = CenterBar(display, deviation, false);
    EXPECT_EQ(std::tuple(top, bottom, text),
              std::tuple(bar.top, bar.bottom, CenterValueBox(display, deviation, false, 12).top));
    // A wide bar grows to the right; its text ends or begins at the center line.
    const RECT wide = CenterBar(turned, deviation, true), place = CenterValueBox(turned, deviation, true, 12);
    EXPECT_EQ(std::tuple(140 - bottom, 140 - top), std::tuple(wide.left, wide.right));
    EXPECT_EQ(deviation > 0 ? std::tuple(20L, 66L) : std::tuple(74L, 120L), std::tuple(place.left, place.right));
  }
}

}  // namespace
}  // namespace kv
