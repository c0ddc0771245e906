// Number text, block arithmetic and the geometry of the display instrument's layouts: no window needed.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "controls/instrument_centre_bar.h"
#include "controls/instrument_compass.h"
#include "controls/instrument_dial.h"
#include "controls/instrument_digital.h"
#include "controls/instrument_digits.h"
#include "controls/instrument_gauge.h"
#include "controls/instrument_segment_bar.h"
#include "controls/instrument_text.h"

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

TEST(InstrumentBlock, DefaultsFillWhatTheCallerLeftOpen) {
  const InstrumentBlock plain = BuildDefaultBlock({5, 5, 0, 3, 0, nullptr, nullptr});
  EXPECT_EQ(kInstrumentVersion, plain.version);
  EXPECT_STREQ("Relative", plain.szName);
  EXPECT_STREQ("%", plain.szUnit);
  EXPECT_EQ(0x020000FFu, plain.color);
  EXPECT_EQ(0.0f, plain.minimum);
  EXPECT_EQ(100.0f, plain.maximum);
  EXPECT_EQ(1.0f, plain.step);
  EXPECT_EQ(3, plain.format);
  EXPECT_EQ(50.0f, plain.zones[1].lower);
  EXPECT_EQ(75.0f, plain.zones[2].upper);
  EXPECT_EQ(0u, plain.state);

  const InstrumentBlock given = BuildDefaultBlock({-4, 8, 0.5, 0, 0x12345678,
                                                   "ab\xB0"
                                                   "defgh",
                                                   "123456789 123456789 123456789 123456789"});
  EXPECT_EQ(0x02345678u, given.color);
  EXPECT_EQ(0.0f, given.current);
  EXPECT_STREQ("123456789 123456789 123456789 1", given.szName);
  EXPECT_STREQ(
      "ab\xB0"
      "de",
      given.szUnit);
  EXPECT_EQ(3.0f, BuildDefaultBlock({3, 8, 1, 0, 0, "", ""}).current);
}

TEST(InstrumentBlock, RangeArithmeticBearsEveryInput) {
  const InstrumentBlock backwards = Block(100, 0, 1, 0, 30);
  EXPECT_EQ(100.0f, ClampToRange(backwards, kInfinite));
  EXPECT_EQ(0.0f, ClampToRange(backwards, -5));
  EXPECT_EQ(0.0f, ClampToRange(backwards, NAN));
  EXPECT_DOUBLE_EQ(0.7, FractionOf(ReadingOf(backwards), 30));
  for (const InstrumentBlock& block : {Block(5, 5, 1, 0, 5), Block(NAN, 7, 1, 0, 5), Block(0, kInfinite, 1, 0, 5)}) {
    const InstrumentReading reading = ReadingOf(block);
    EXPECT_EQ(0.0, reading.minimum);
    EXPECT_EQ(100.0, reading.maximum);
    EXPECT_DOUBLE_EQ(0.05, FractionOf(reading, 5));
  }
  EXPECT_FALSE(ReadingOf(Block(0, 10, 1, 0, NAN)).valid);
  EXPECT_EQ(10.0, ReadingOf(Block(0, 10, 1, 0, kInfinite)).value);
  EXPECT_EQ(0.0, FractionOf(ReadingOf(Block(0, 10, 1, 0, 0)), NAN));
  EXPECT_DOUBLE_EQ(2.0, EffectiveStep(Block(0, 200, 0, 0, 0)));
  EXPECT_DOUBLE_EQ(3.0, EffectiveStep(Block(0, 200, -3, 0, 0)));
}

TEST(InstrumentBlock, GlidingShortensTheWayByATenthAndJumpsOverAFifth) {
  GlideStep step = NextGlideStep(Block(0, 100, 1, 0, 50), 60);
  EXPECT_FLOAT_EQ(51.0f, step.current);
  EXPECT_TRUE(step.moving);
  step = NextGlideStep(Block(0, 100, 1, 0, 50), 71);
  EXPECT_EQ(71.0f, step.current);
  step = NextGlideStep(Block(0, 100, 1, 0, 59.5f), 60);
  EXPECT_EQ(59.5f, step.current);  // stays where it came to rest
  EXPECT_FALSE(step.moving);
  // A step finer than the value's resolution must not keep the timer going for ever, nor a step of 0.
  for (const float tiny : {1e-30f, 0.0f}) {
    InstrumentBlock block = Block(0, 100, tiny, 0, 50);
    int ticks = 0;
    for (step = NextGlideStep(block, 60); step.moving && ticks < 1000; ++ticks) {
      block.current = step.current;
      step = NextGlideStep(block, 60);
    }
    EXPECT_LT(ticks, 400);
    EXPECT_NEAR(60, block.current, 1);
  }
}

TEST(InstrumentBlock, TextsAreReadInTheirEncodings) {
  InstrumentBlock block = Block(0, 1, 1, 0, 0);
  memcpy(block.szUnit, "\xB5m/s\xB2!", 6);  // no terminator
  EXPECT_EQ(L"\u00B5m/s\u00B2!", InstrumentUnit(block));
  strcpy(block.szUnit, "m/s\xC2\xB2");
  EXPECT_EQ(L"m/s\u00B2", InstrumentUnit(block));
  memcpy(block.szName, "0123456789012345678901234567890\xC3", 32);  // a character cut in two by the end
  EXPECT_EQ(L"0123456789012345678901234567890", InstrumentName(block));
  strcpy(block.szName, "Fl\xC3\xBCgel");
  EXPECT_EQ(L"Fl\u00FCgel", InstrumentName(block));
  strcpy(block.szName, "");
  EXPECT_EQ(L"", InstrumentName(block));
}

TEST(InstrumentText, FixedWidthKeepsTheLowDigits) {
  EXPECT_EQ(L"00", FixedWidthNumber(100, 2, 0));
  EXPECT_EQ(L" 7", FixedWidthNumber(7, 2, 0));
  EXPECT_EQ(L" 42.50", FixedWidthNumber(42.5, 6, 2));
  EXPECT_EQ(L"0.00", FixedWidthNumber(9.996, 4, 2));  // rounds to 10.00 and loses the 1
  EXPECT_EQ(L"9.99", FixedWidthNumber(9.994, 4, 2));
  EXPECT_EQ(L"-3.5", FixedWidthNumber(-3.5, 4, 1));
  EXPECT_EQ(L"3.5", FixedWidthNumber(-3.5, 3, 1));
  EXPECT_EQ(L" +7", FixedWidthNumber(7, 3, kFormatSign));
  EXPECT_EQ(L"  -12", FixedWidthNumber(-12.4, 5, kFormatSign));
  EXPECT_EQ(L"1.2345679", FixedWidthNumber(1.23456789, 9, 7));
  EXPECT_EQ(L"5", FixedWidthNumber(5, -4, 0));  // at least one digit
  EXPECT_EQ(L"2.5", FixedWidthNumber(12.5, 0, 1));
  EXPECT_GE(60u, FixedWidthNumber(3.4e38, 4, 2).size());
  EXPECT_FALSE(FixedWidthNumber(1e300, 5, 7).empty());
  EXPECT_FALSE(FixedWidthNumber(NAN, 5, 2).empty());
  EXPECT_EQ(L"1.2e9", ShortNumber(1.2e9));
  EXPECT_EQ(L"-1.1e-7", ShortNumber(-1.1e-7));
}

TEST(InstrumentText, WidthFollowsTheMaximum) {
  EXPECT_EQ(2, NumberWidth(Block(0, 100, 1, 0, 0)));
  EXPECT_EQ(3, NumberWidth(Block(0, 999, 1, 0, 0)));
  EXPECT_EQ(6, NumberWidth(Block(0, 100, 1, kFormatSign | 2, 0)));
  EXPECT_EQ(0, NumberWidth(Block(0, 0, 1, 0, 0)));
  EXPECT_EQ(0, NumberWidth(Block(0, kInfinite, 1, 0, 0)));
  EXPECT_EQ(L"--", NoValueNumber(Block(0, 100, 1, 0, 0)));
  EXPECT_EQ(L"---.-", NoValueNumber(Block(0, 100, 1, 1, 0)));
  EXPECT_EQ(L"----.-", NoValueNumber(Block(0, 100, 1, 2, 0)));  // one dash behind the point whatever the places
  EXPECT_GE(16u, NoValueNumber(Block(0, 3e38f, 1, 7, 0)).size());
}

TEST(InstrumentText, AnglesAreSplitAndCarried) {
  const char hemispheres[6] = "NS";
  EXPECT_EQ(L" 52.30.00.00.N", AngleText(52.5, hemispheres));
  EXPECT_EQ(L"  5.15.00.00.S", AngleText(-5.25, hemispheres));
  EXPECT_EQ(L"  0.00.00.00.N", AngleText(0, hemispheres));
  EXPECT_EQ(L"179.59.59.50.N", AngleText(179 + 59 / 60.0 + 59.5 / 3600, hemispheres));
  EXPECT_EQ(L" 10.21.00.00.N", AngleText(10.35, hemispheres));
  EXPECT_EQ(L" 60.00.00.00.S", AngleText(-59.9999999999, hemispheres));
  EXPECT_FALSE(AngleText(1e300, hemispheres).empty());
}

TEST(InstrumentText, TimesDatesAndTheirDashes) {
  const SYSTEMTIME time{2026, 3, 0, 7, 6, 5, 4, 89};
  const auto shown = [&](DWORD style, BYTE format, bool valid) {
    InstrumentBlock block = Block(0, 100, 1, format, 0);
    if (!valid) block.state = kInstrumentNoValue;
    return DigitalText(block, style, time);
  };
  EXPECT_EQ(L"06.05.04", shown(kInstrumentShowTime, 0, true));
  EXPECT_EQ(L"21904089", shown(kInstrumentShowTime, 1, true));
  EXPECT_EQ(L"05.04", shown(kInstrumentShowTime, 2, true));
  EXPECT_EQ(L"06.05", shown(kInstrumentShowTime, 3, true));
  EXPECT_EQ(L"06.05.04.0089", shown(kInstrumentShowTime, 4, true));
  EXPECT_EQ(L"---", shown(kInstrumentShowTime, 1, false));
  EXPECT_EQ(L"--.--", shown(kInstrumentShowTime, 3, false));
  EXPECT_EQ(L"--.--.--", shown(kInstrumentShowTime, 4, false));
  EXPECT_EQ(L"2026.03.07", shown(kInstrumentShowDate, 0, true));
  EXPECT_EQ(L"--.--.--", shown(kInstrumentShowDate, 0, false));
  EXPECT_EQ(L"--.--.--.--", shown(kInstrumentShowAngle, 0, false));
  SYSTEMTIME wild;
  memset(&wild, 0xFF, sizeof(wild));
  EXPECT_FALSE(DigitalText(Block(0, 100, 1, 1, 0), kInstrumentShowTime, wild).empty());
}

TEST(InstrumentGauge, ScalesStandAtRoundNumbersInEveryRange) {
  GaugeScale scale = ChooseScale(0, 100, 10);
  EXPECT_DOUBLE_EQ(10, scale.step);
  EXPECT_EQ(0, scale.first);
  EXPECT_EQ(10, scale.last);
  EXPECT_EQ(0, scale.labelPlaces);
  scale = ChooseScale(93, 7, 10);  // backwards and not round
  EXPECT_DOUBLE_EQ(10, scale.step);
  EXPECT_EQ(1, scale.first);
  EXPECT_EQ(9, scale.last);
  scale = ChooseScale(0, 1, 10);
  EXPECT_DOUBLE_EQ(0.1, scale.step);
  EXPECT_EQ(10, scale.last);
  EXPECT_EQ(1, scale.labelPlaces);
  EXPECT_DOUBLE_EQ(2.5, ChooseScale(0, 10, 4).step);
  scale = ChooseScale(0, 120000, 6);
  EXPECT_EQ(3, scale.exponent);
  EXPECT_DOUBLE_EQ(120, LabelValue(scale, scale.last));
  EXPECT_EQ(-6, ChooseScale(0, 0.00042, 10).exponent);
  for (const auto& [low, high] : {std::pair{-3.4e38, 3.4e38}, {1e9, 1e9 + 64}, {-1e-38, 1e-38}, {0.0, 7e-5}}) {
    scale = ChooseScale(low, high, 10);
    EXPECT_GE(scale.last - scale.first, 2) << low;
    EXPECT_LE(scale.last - scale.first, 10) << low;
    EXPECT_GE(static_cast<double>(scale.first) * scale.step, low - scale.step * 1e-5);
  }
}

TEST(InstrumentGauge, AnglesAndLabels) {
  const InstrumentReading reading = ReadingOf(Block(-50, 50, 1, 0, 0));
  EXPECT_DOUBLE_EQ(-135, GaugeAngle(reading, -50));
  EXPECT_DOUBLE_EQ(0, GaugeAngle(reading, 0));
  EXPECT_DOUBLE_EQ(135, GaugeAngle(reading, 5000));
  // A label touches its circle from within, wherever it stands.
  const PointD top = LabelCentre({100, 100}, 80, 0, {30, 10});
  EXPECT_NEAR(100, top.x, 1e-9);
  EXPECT_NEAR(24, top.y, 1e-9);
  EXPECT_NEAR(165, LabelCentre({100, 100}, 80, 90, {30, 10}).x, 1e-9);
  const PointD places[] = {{0, 0}, {20, 0}, {35, 9}};
  const SIZE small[] = {{14, 8}, {14, 8}, {14, 8}}, wide[] = {{14, 8}, {24, 8}, {14, 8}};
  EXPECT_FALSE(LabelsCollide(places, small, 2));
  EXPECT_TRUE(LabelsCollide(places, wide, 2));

  const Dial dial = DialIn({10, 20, 310, 140});
  EXPECT_DOUBLE_EQ(160, dial.centre.x);
  EXPECT_DOUBLE_EQ(80, dial.centre.y);
  EXPECT_LT(dial.faceRadius, dial.radius);
  EXPECT_LE(dial.radius, 60);
  EXPECT_EQ(0, DialIn({0, 0, 3, 100}).radius);
}

TEST(InstrumentCompass, HeadingsWrapAndTheCardTurnsAgainstThem) {
  EXPECT_DOUBLE_EQ(270, NormalHeading(-90));
  EXPECT_DOUBLE_EQ(0, NormalHeading(360));
  EXPECT_DOUBLE_EQ(0, NormalHeading(-1e-20));
  EXPECT_DOUBLE_EQ(0, NormalHeading(NAN));
  EXPECT_DOUBLE_EQ(0, CardAngle(90, 90));  // heading east: E at the top, N at the left
  EXPECT_DOUBLE_EQ(270, CardAngle(0, 90));
  EXPECT_EQ(L"007", HeadingText(7.2, 0));
  EXPECT_EQ(L"000", HeadingText(359.7, 0));
  EXPECT_EQ(L"359.7", HeadingText(-0.3, 1));
  EXPECT_EQ(L"007.25", HeadingText(7.25, 2));
  EXPECT_EQ(10, MarkSpacing(22));
  EXPECT_EQ(5, MarkSpacing(50));
  EXPECT_EQ(1, MarkSpacing(280));
  std::wstring all;
  for (const Direction& direction : Directions()) {
    all.append(direction.letters, direction.count);
    EXPECT_NE(nullptr, wcschr(kDirectionLetters, *direction.letters));
  }
  EXPECT_EQ(kDirectionLetters, all);
}

TEST(InstrumentDigits, CharactersAndSeparators) {
  EXPECT_EQ(0x7Fu, SegmentsOf('8'));
  EXPECT_EQ(0x06u, SegmentsOf('1'));
  EXPECT_EQ(static_cast<unsigned>(kSegmentMiddle), SegmentsOf('-'));
  EXPECT_NE(SegmentsOf('-'), SegmentsOf('+'));
  EXPECT_EQ(0u, SegmentsOf(' '));
  EXPECT_EQ(0u, SegmentsOf('%'));
  EXPECT_NE(SegmentsOf('N'), SegmentsOf('W'));

  const auto cells = CellsOf("12.5", 0);
  ASSERT_EQ(3u, cells.size());
  EXPECT_EQ(Separator::kPoint, cells[1].separator);
  EXPECT_EQ(Separator::kNone, cells[2].separator);
  EXPECT_EQ(Separator::kColon, CellsOf("12.30", kInstrumentShowTime)[1].separator);
  const auto angle = CellsOf(" 52.23.45.96.N", kInstrumentShowAngle);
  ASSERT_EQ(10u, angle.size());
  EXPECT_EQ(Separator::kDegree, angle[2].separator);
  EXPECT_EQ(Separator::kMinute, angle[4].separator);
  EXPECT_EQ(Separator::kPoint, angle[6].separator);
  EXPECT_EQ(Separator::kSecond, angle[8].separator);
  EXPECT_EQ(2u, CellsOf("..", 0).size());
  EXPECT_TRUE(CellsOf("", 0).empty());
}

TEST(InstrumentDigits, CharactersFillTheAreaWithoutLeavingIt) {
  for (const RECT& area : {RECT{3, 5, 203, 45}, RECT{0, 0, 60, 300}, RECT{0, 0, 9, 4}}) {
    for (const int count : {1, 4, 31}) {
      const DigitLayout layout = LayOutDigits(area, count);
      double left = 1e9, right = 0, top = 1e9, bottom = 0;
      for (int stroke = 0; stroke < kAllStrokes; ++stroke) {
        for (int cell : {0, count - 1}) {
          for (const auto& part : CornersOf(layout, cell, stroke)) {
            for (const PointD& corner : part) {
              left = std::min(left, corner.x), right = std::max(right, corner.x);
              top = std::min(top, corner.y), bottom = std::max(bottom, corner.y);
            }
          }
        }
      }
      EXPECT_GE(left, area.left);
      EXPECT_LE(right, area.right);
      EXPECT_GE(top, area.top);
      EXPECT_LE(bottom, area.bottom);
      EXPECT_NEAR(left - area.left, area.right - right, 0.15 * layout.height + 0.5);
    }
  }
  // Slanted to the right, with a gap between neighbours.
  const DigitLayout layout = LayOutDigits({0, 0, 200, 100}, 2);
  const auto upper = CornersOf(layout, 0, 5)[0], lower = CornersOf(layout, 0, 4)[0];
  EXPECT_GT(upper[0].x, lower[0].x + 1);
  EXPECT_GT(lower[0].y, upper[3].y + 0.5);
}

TEST(InstrumentBars, SegmentsMarkerAndDirection) {
  EXPECT_EQ(100, SegmentCount(Block(0, 100, 1, 0, 0), 0));
  EXPECT_EQ(20, SegmentCount(Block(0, 100, 5, 0, 0), 0));
  EXPECT_EQ(-20, SegmentCount(Block(0, 100, 5, 0, 0), kInstrumentReversed));
  EXPECT_EQ(3, SegmentCount(Block(0, 100, 80, 0, 0), 0));
  EXPECT_EQ(3, SegmentCount(Block(100, 0, 1, 0, 0), 0));
  EXPECT_EQ(100, SegmentCount(Block(0, 100, 0, 0, 0), 0));
  EXPECT_EQ(100, SegmentCount(Block(0, NAN, 1, 0, 0), 0));
  InstrumentBlock block = Block(0, 200, 1, 0, 0);
  block.zones[0].lower = 50;
  EXPECT_EQ(kNoMarker, MarkerPercent(block));
  block.state = ZoneEnabledBit(0);
  EXPECT_DOUBLE_EQ(25, MarkerPercent(block));
  EXPECT_EQ(0, LitSegments(0, 20));
  EXPECT_EQ(10, LitSegments(50, 20));
  EXPECT_EQ(20, LitSegments(100, 20));
  for (const double length : {17.0, 100.0, 599.0}) {
    double end = 0;
    for (int i = 0; i < 20; ++i) {
      const BarSpan span = SegmentSpan(length, 20, i);
      EXPECT_GE(span.from, end);
      EXPECT_GE(span.to, span.from);
      end = span.to;
    }
    EXPECT_LE(end, length);
    EXPECT_GE(end, length - 5);
  }
}

TEST(InstrumentBars, CentreZeroGrowsFromTheMiddle) {
  EXPECT_DOUBLE_EQ(0, CentreDeviation(ReadingOf(Block(-100, 100, 1, 0, 0))));
  EXPECT_DOUBLE_EQ(100, CentreDeviation(ReadingOf(Block(0, 10, 1, 0, 10))));
  EXPECT_DOUBLE_EQ(-50, CentreDeviation(ReadingOf(Block(0, 100, 1, 0, 25))));
  const RECT display{10, 20, 50, 120};
  const RECT up = CentreBar(display, 40), down = CentreBar(display, -40), none = CentreBar(display, 0);
  EXPECT_EQ(50, up.top);
  EXPECT_EQ(70, up.bottom);
  EXPECT_EQ(11, up.left);
  EXPECT_EQ(49, up.right);
  EXPECT_EQ(70, down.top);
  EXPECT_EQ(90, down.bottom);
  EXPECT_EQ(none.top, none.bottom);
  EXPECT_EQ(74, CentreValueBox(display, 40, 12).top);
  EXPECT_EQ(66, CentreValueBox(display, -40, 12).bottom);
}

TEST(InstrumentDigital, CaptionAppearsWithTheHeight) {
  EXPECT_EQ(0, LayOutDigital({0, 0, 100, 23}, 0).captionHeight);
  EXPECT_EQ(9, LayOutDigital({0, 0, 100, 24}, 0).captionHeight);
  EXPECT_EQ(14, LayOutDigital({0, 0, 100, 32}, 0).captionHeight);
  EXPECT_EQ(0, LayOutDigital({0, 0, 100, 60}, kInstrumentNoCaption).captionHeight);
  const DigitalParts parts = LayOutDigital({0, 0, 100, 60}, 0);
  EXPECT_EQ(96, parts.caption.right);
  EXPECT_EQ(14, parts.display.top);
}

}  // namespace
}  // namespace kv
