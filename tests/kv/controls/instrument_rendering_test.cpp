// The display instrument's images: complete, and without remains of earlier ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <random>
#include <span>
#include <thread>
#include <utility>
#include <vector>

#include "kv/controls/display_instrument.h"
#include "kv/controls/instrument/cache.h"
#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument/state.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/control_class.h"
#include "tests/kv/controls/instrument_test.h"

namespace kv {
namespace {

class InstrumentRendering : public InstrumentTest {};

TEST_F(InstrumentRendering, EveryModeShowsValueColorZoneDisabledAndMissingValue) {
  for (const DWORD mode : kModes) {
    HWND control = Create(mode, 100, 160);
    InstrumentBlock block = BlockOf(control);
    block.color = 0x02000000 | kOrange;
    block.current = block.maximum * 0.8f;
    Send(control, kCommandBlock | kCommandRedraw, &block);
    const Shown first(control, 100, 160);
    EXPECT_TRUE(mode == kModeCenterBar || first.CountOf(kOrange) > 4) << mode;
    EXPECT_EQ(0, first.CountOf(RGB(0xCC, 0xCC, 0xCC))) << mode;
    // A dial has an index on its rim.
    const auto index = [](COLORREF color, int x, int y) { return color == kOrange && std::hypot(x - 50, y - 80) > 42; };
    EXPECT_TRUE((mode != kModeGauge && mode != kModeCompass) || first.CountWhere(index) > 3) << mode;
    for (const float other : {block.maximum * 0.3f, NAN}) {
      SetValue(control, other);
      EXPECT_GT(Shown(control, 100, 160).DifferencesFrom(first), 40) << mode;
    }
    SetValue(control, block.current);
    EXPECT_EQ(0, Shown(control, 100, 160).DifferencesFrom(first)) << mode;
    if (mode == kModeGauge || mode == kModeSegmentBar || mode == kModeCompass) {
      const InstrumentZone zone{20, 90, RGB(20, 220, 240), {}, 0};
      const auto bluish = [](COLORREF color, int, int) { return GetBValue(color) > 140 && GetRValue(color) < 60; };
      EXPECT_EQ(0, first.CountWhere(bluish)) << mode;
      Send(control, MAKEWPARAM(kCommandZone | kCommandRedraw | kZoneEnable, 1), &zone);
      EXPECT_GT(Shown(control, 100, 160).CountWhere(bluish), 50) << mode;
    }
    EnableWindow(control, FALSE);
    const auto colored = [](COLORREF color, int, int) { return abs(GetRValue(color) - GetBValue(color)) > 40; };
    EXPECT_EQ(0, Shown(control, 100, 160).CountWhere(colored)) << mode;
    EnableWindow(control, TRUE);
    EXPECT_GT(Shown(control, 100, 160).CountWhere(colored), 0) << mode;
    DestroyWindow(control);
  }
}

TEST_F(InstrumentRendering, NewSystemColorsAreUsedAtTheNextPaint) {
  HWND control = Create(kModeGauge);
  const INT element = COLOR_BTNFACE;
  const COLORREF before = GetSysColor(element), other = RGB(11, 99, 33);
  for (const COLORREF color : {other, before}) {
    SetSysColors(1, &element, &color);
    RepaintNow(control);
    EXPECT_EQ(color, Shown(control, 120, 120).At(2, 2));
  }
  const DWORD renderings = Renderings(control);
  SendMessageA(control, WM_SYSCOLORCHANGE, 0, 0);
  EXPECT_EQ(renderings + 1, Renderings(control));
}

// A hash of the control's back buffer.
DWORD RenderingOf(HWND control) {
  const InstrumentState& state = Record(control);
  GdiFlush();
  return HashOf(state.work.cache->buffer.Row(0), sizeof(DWORD) * state.nWidth * state.nHeight);
}

// Sends several controls the same random command that changes their image.
void Change(std::mt19937& random, std::span<const HWND> controls) {
  const auto upTo = [&random](int most) { return static_cast<int>(random() % (most + 1)); };
  const auto send = [&](WPARAM wParam, const auto& item) {
    for (HWND control : controls) Send(control, wParam | kCommandRedraw, &item);
  };
  InstrumentBlock block = BlockOf(controls[0]);
  const float range = block.maximum - block.minimum;
  switch (upTo(9)) {
    case 0: {
      const float ends[] = {-360, -100, -9.5, 0, 0, 50, 100, 1234.5, NAN, INFINITY, -3.4e38f, 1e-38f};
      const float steps[] = {0, 1, 5, 20, 1e-30f, NAN};
      block.minimum = ends[upTo(11)], block.maximum = ends[upTo(11)], block.step = steps[upTo(5)];
      if (!upTo(3)) memset(block.szName, 'W', sizeof(block.szName));
      block.format = static_cast<BYTE>(upTo(7) | (upTo(1) ? kFormatSign : 0)), block.state = upTo(7);
      block.color = random() & kRgbBits;
      return send(kCommandBlock, block);
    }
    case 1: {
      const SIZE size{upTo(150), upTo(200)};
      for (HWND control : controls) MoveWindow(control, 0, 0, size.cx, size.cy, TRUE);
      return;
    }
    case 2:
      return send(MAKEWPARAM(kCommandZone | (upTo(1) ? kZoneEnable : 0), upTo(2)),
                  InstrumentZone{block.minimum + range * upTo(9) / 9, block.maximum, random() & kRgbBits, {}, 0});
    case 3: return send(kCommandTime, SYSTEMTIME{2026, 1, 2, 3, 4, 5, static_cast<WORD>(upTo(59)), 0});
    case 4: return send(kCommandValue, upTo(2) ? block.minimum + range * static_cast<float>(upTo(1)) : NAN);
    case 5: return send(kCommandValue, block.minimum + range * static_cast<float>(upTo(10000)) / 10000);
    case 6:
      send(kCommandValue | kValueAnimate, block.current + range * static_cast<float>(upTo(20) - 10) / 100);
      [[fallthrough]];
    default:
      for (HWND control : controls) SendMessageA(control, WM_TIMER, 5, 0);
  }
}

// KV_REDRAWS sets the number of steps for each of three seeds.
TEST_F(InstrumentRendering, PartialRedrawEqualsFullRedraw) {
  const DWORD styles[] = {kModeGauge,
                          kModeDigital,
                          kModeDigital | kInstrumentShowTime,
                          kModeDigital | kInstrumentShowAngle,
                          kModeSegmentBar,
                          kModeSegmentBar | kInstrumentReversed,
                          kModeCompass,
                          kModeCenterBar,
                          kModeDigital | kInstrumentFitted,
                          kModeSegmentBar | kInstrumentFitted,
                          kModeCenterBar | kInstrumentFitted};
  const int steps = RedrawCount(160) / static_cast<int>(std::size(styles));
  for (unsigned seed = 1; seed <= 3; ++seed) {
    for (const DWORD style : styles) {
      std::mt19937 random(seed);
      const HWND controls[] = {Create(style), Create(style)};
      for (HWND control : controls) {
        Record(control).time = {};
        UpdateWindow(control);
      }
      for (int step = 0; step < steps; ++step) {
        Change(random, controls);
        Send(controls[1], kCommandRender, nullptr);
        ASSERT_EQ(RenderingOf(controls[1]), RenderingOf(controls[0]))
            << style << ", seed " << seed << ", step " << step;
      }
      for (HWND control : controls) DestroyWindow(control);
    }
  }
}

// Images of a large compass of the calling thread at headings from `first` on. All threads start each image together.
std::vector<DWORD> TurnCard(float first, std::barrier<>& together) {
  HWND control = CreateWindowExA(0, kDisplayInstrumentClass, "", WS_POPUP | kModeCompass, 0, 0, 400, 400, nullptr,
                                 nullptr, GetModuleHandleA(nullptr), nullptr);
  std::vector<DWORD> renderings;
  for (int i = 0; i < 60; ++i) {
    together.arrive_and_wait();
    SetValue(control, first + static_cast<float>(i));
    renderings.push_back(RenderingOf(control));
  }
  DestroyWindow(control);
  return renderings;
}

TEST_F(InstrumentRendering, SeveralThreadsDrawCorrectImages) {
  std::barrier alone(1), both(2);
  const std::vector<DWORD> east = TurnCard(60, alone), west = TurnCard(240, alone);
  EXPECT_NE(east[0], east[1]);
  std::vector<DWORD> others;
  std::thread other([&] { others = TurnCard(240, both); });
  EXPECT_EQ(east, TurnCard(60, both));
  other.join();
  EXPECT_EQ(west, others);
}

// A wide center-zero bar is empty without kInstrumentFitted.
TEST_F(InstrumentRendering, FittedBarsAreDrawnAtEveryShape) {
  for (const SIZE& size : {SIZE{60, 20}, {120, 40}, {240, 60}, {40, 120}, {90, 90}}) {
    for (const DWORD fitted : {DWORD{0}, kInstrumentFitted}) {
      HWND bar = Create(kModeCenterBar | fitted, size.cx, size.cy);
      SetValue(bar, 60);
      const Shown shown(bar, size.cx, size.cy);
      const auto isColored = [](COLORREF color, int, int) { return GetRValue(color) > GetBValue(color) + 100; };
      const auto isRight = [&](COLORREF color, int x, int y) { return isColored(color, x, y) && x > size.cx / 2; };
      const bool wide = size.cx > size.cy, empty = wide && !fitted;
      const int colored = shown.CountWhere(isColored);
      EXPECT_EQ(empty, colored < size.cx * size.cy / 10) << size.cx;
      EXPECT_TRUE(!wide || colored == shown.CountWhere(isRight)) << size.cx;
      const auto isInk = [&](COLORREF color, int x, int y) {
        return color == RGB(255, 255, 255) && x > 3 && y > 3 && x < size.cx - 3 && y < size.cy - 3;
      };
      EXPECT_EQ(empty, shown.CountWhere(isInk) < 10) << size.cx;
      DestroyWindow(bar);
    }
  }
}

TEST_F(InstrumentRendering, NeedlesReachTheMarks) {
  HWND gauge = Create(kModeGauge, 200, 200);
  SetValue(gauge, 50);  // straight up, over the label
  const Shown shown(gauge, 200, 200);
  const auto isRed = [](COLORREF color) { return GetRValue(color) > 150 && GetGValue(color) < 110; };
  for (int y = 20; y < 80; ++y) EXPECT_TRUE(isRed(shown.At(99, y)) || isRed(shown.At(100, y))) << y;
}

TEST_F(InstrumentRendering, SegmentBarsHaveAMarkerOnlyWithinTheRange) {
  HWND bar = Create(kModeSegmentBar, 60, 200);
  InstrumentBlock block = BlockOf(bar);
  block.state = ZoneEnabledBit(0);
  for (const float lower : {0.0f, 50.0f, 100.0f}) {
    block.zones[0] = {lower, 100, kOrange, {}, 0};
    Send(bar, kCommandBlock | kCommandRedraw, &block);
    const auto isMarker = [](COLORREF color, int x, int y) {
      return color == RGB(255, 255, 255) && x > 3 && x < 56 && y < 196;
    };
    EXPECT_EQ(lower == 50, Shown(bar, 60, 200).CountWhere(isMarker) > 20) << lower;
  }
}

TEST_F(InstrumentRendering, NumbersOfSmallSegmentBarsAreReadable) {
  for (const SIZE size : {SIZE{48, 48}, SIZE{24, 90}}) {
    HWND bar = Create(kModeSegmentBar | kInstrumentFitted, size.cx, size.cy);
    SetValue(bar, 42);
    EXPECT_LT(10, Shown(bar, size.cx, size.cy).CountWhere([&](COLORREF color, int x, int y) {
      return x > 3 && x < size.cx - 4 && y > 20 && y < size.cy - 4 && GetGValue(color) > 220;
    })) << size.cx;
  }
}

TEST_F(InstrumentRendering, SegmentsStartAtTheConfiguredEnd) {
  HWND bar = Create(kModeSegmentBar, 60, 200);
  SetValue(bar, 30);
  const auto redsAbove = [&] {
    return Shown(bar, 60, 200).CountWhere([](COLORREF color, int, int y) {
      return y < 100 && GetRValue(color) > 200 && GetGValue(color) < 100;
    });
  };
  EXPECT_EQ(0, redsAbove());
  const DWORD reversed = kInstrumentReversed;
  Send(bar, kCommandStyle | kCommandRedraw, &reversed);
  EXPECT_GT(redsAbove(), 500);
}

}  // namespace
}  // namespace kv
