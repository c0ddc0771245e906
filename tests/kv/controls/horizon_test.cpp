// The artificial horizon: geometry, image and commands.
#include "kv/controls/horizon/horizon.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <tuple>

#include "kv/controls/horizon/horizon_renderer.h"
#include "kv/framework/control_class.h"
#include "kv/framework/coverage.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

HorizonAttitude At(float pitch, float roll, float slip = 0, float heading = 0) {
  return {kHorizonVersion, 0, pitch, roll, slip, heading};
}

COLORREF PixelAt(const HorizonRenderer& renderer, int x, int y) {
  GdiFlush();
  const DWORD pixel = renderer.surface().Row(y)[x];
  return RGB(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF);
}

bool IsSky(COLORREF color) {
  return GetBValue(color) > GetRValue(color);
}

TEST(Horizons, RotateOppositeToTheRollAndSinkWithThePitch) {
  const HorizonLayout layout = LayoutHorizon({200, 200}, kHorizonRound);
  const PointD right = HorizonPoint(layout, 30, 50, 0);  // right wing down: the horizon rises at the right
  EXPECT_NEAR(100 + 50 * std::cos(std::acos(-1) / 6), right.x, 1e-9);
  EXPECT_NEAR(100 - 25, right.y, 1e-9);
  for (const DWORD style : {kHorizonRound, kHorizonRectangular}) {
    HorizonRenderer renderer;
    renderer.Update(At(0, 30), style, {200, 200}, true);
    // A few pixels on either side of the line, 40 pixels from its middle.
    for (const double along : {-62.0, 62.0}) {
      for (const double up : {-9.0, 9.0}) {
        const PointD place = HorizonPoint(layout, 30, along, up);
        const COLORREF color = PixelAt(renderer, static_cast<int>(place.x), static_cast<int>(place.y));
        EXPECT_EQ(up > 0, IsSky(color)) << style << ": " << along << ", " << up;
      }
    }
    renderer.Update(At(10, 0), style, {200, 200}, false);  // nose up: the horizon is below the middle
    const int line = static_cast<int>(100 + 10 * LayoutHorizon({200, 200}, style).pixelsPerDegree);
    EXPECT_TRUE(IsSky(PixelAt(renderer, 46, line - 6)));
    EXPECT_FALSE(IsSky(PixelAt(renderer, 46, line + 6)));
    renderer.Update(At(-80, 0), style, {200, 200}, false);
    EXPECT_FALSE(IsSky(PixelAt(renderer, 150, 60)));
  }
  const HorizonAttitude normal = NormalAttitude(At(120, 190, -9, -1e-6f));
  EXPECT_EQ(std::tuple(90, -170, -2, 0), std::tuple(normal.pitch, normal.roll, normal.slip, normal.heading));
}

// The number of pixels within a ring around the middle for which `test`, called with color and direction, is true.
template <class Test>
int CountInRing(const HorizonRenderer& renderer, double inner, double outer, Test test) {
  const SIZE size = renderer.surface().size();
  int count = 0;
  for (int y = 0; y < size.cy; ++y) {
    for (int x = 0; x < size.cx; ++x) {
      const double right = x + 0.5 - size.cx / 2.0, up = size.cy / 2.0 - y - 0.5, distance = std::hypot(right, up);
      if (distance < inner || distance > outer) continue;
      count += test(PixelAt(renderer, x, y), std::atan2(right, up) * 180 / std::acos(-1));
    }
  }
  return count;
}

TEST(Horizons, ShowSkyAndGroundAtEveryPitchAndChevronsWhenSteep) {
  for (const DWORD style : {kHorizonRound, kHorizonRectangular}) {
    HorizonRenderer renderer;
    const HorizonLayout layout = LayoutHorizon({200, 200}, style);
    for (const float pitch : {0.0f, 30.0f, 75.0f, 90.0f, -75.0f, -90.0f}) {
      renderer.Update(At(pitch, 20), style, {200, 200}, false);
      const auto count = [&](auto test) { return CountInRing(renderer, 0, layout.radius, test); };
      EXPECT_LT(200, count([](COLORREF color, double) { return color == RGB(54, 132, 206); })) << pitch;
      EXPECT_LT(200, count([](COLORREF color, double) { return color == RGB(136, 92, 46); })) << pitch;
      const int red = count([](COLORREF color, double) { return color == RGB(220, 40, 40); });
      EXPECT_EQ(std::fabs(pitch) > 60, red > 10) << pitch;
    }
  }
}

TEST(Horizons, RollScaleHasATriangleAtZeroAndLongerMarksAtThirty) {
  HorizonRenderer renderer;
  const HorizonLayout layout = LayoutHorizon({300, 300}, kHorizonRound);
  for (const float roll : {0.0f, 40.0f}) {
    renderer.Update(At(0, roll), kHorizonRound, {300, 300}, false);
    const auto inkAt = [&](double mark) {
      return CountInRing(renderer, layout.radius + 1, layout.ring, [&](COLORREF color, double direction) {
        return GetRValue(color) > 150 && std::fabs(std::remainder(direction - mark + roll, 360)) < 4;
      });
    };
    EXPECT_GT(inkAt(0), 1.5 * inkAt(30));
    EXPECT_GT(inkAt(-30), 1.5 * inkAt(-20));
    EXPECT_GT(inkAt(60), 1.5 * inkAt(45));
    EXPECT_LT(3, inkAt(10));
  }
}

TEST(Horizons, TapesAreReadableOrOmitted) {
  for (const DWORD style : {kHorizonRound | kHorizonTape, kHorizonRectangular | kHorizonTape}) {
    for (LONG side = 0; side < 400; side += 7) {
      const HorizonLayout layout = LayoutHorizon({side, side + side % 3 * 20}, style);
      const RECT& tape = layout.tape;
      EXPECT_EQ(layout.radius < 60, IsRectEmpty(&tape) != FALSE) << side;
      if (IsRectEmpty(&tape)) continue;
      EXPECT_LE(15, tape.bottom - tape.top) << side;
      EXPECT_LE(40, tape.right - tape.left) << side;
      EXPECT_LE(tape.bottom, layout.area.bottom) << side;
      EXPECT_GT(tape.top, layout.center.y + layout.radius * 0.5) << side;
    }
  }
}

TEST(Horizons, PartialRedrawEqualsFullRedraw) {
  std::mt19937 random(5);
  const auto between = [&](float low, float high) {
    return low + (high - low) * static_cast<float>(random() % 1000) / 1000;
  };
  for (const DWORD style : {kHorizonRound | kHorizonTape, kHorizonRectangular | kHorizonTape, kHorizonRound}) {
    for (const SIZE size : {SIZE{260, 200}, {64, 64}, {33, 90}}) {
      HorizonRenderer partial, whole;
      HorizonAttitude attitude = At(0, 0);
      for (int i = 0; i < 60; ++i) {
        if (i % 3) {
          attitude.heading = between(0, 360);
        } else {
          attitude = At(between(-90, 90), between(-180, 180), between(-2, 2), attitude.heading);
          attitude.state = i % 7 ? 0 : kHorizonNoValue;
        }
        partial.Update(attitude, style, size, false);
        whole.Update(attitude, style, size, true);
        GdiFlush();
        ASSERT_EQ(0, std::memcmp(partial.surface().Row(0), whole.surface().Row(0), sizeof(DWORD) * size.cx * size.cy))
            << style << ", " << size.cx << ": " << i;
      }
    }
  }
}

using kvtest::Send;

class HorizonControls : public kvtest::ControlTest<RegisterHorizonClass> {
 protected:
  HWND Create(DWORD style, int width = 120, int height = 120) {
    return kvtest::CreateControl(parent_, kHorizonClass, "Attitude", style, {0, 0, width, height}, 77);
  }
  static HorizonAttitude Read(HWND horizon) { return kvtest::Read<HorizonAttitude>(horizon, kHorizonValue); }
};

TEST_F(HorizonControls, AcceptAttitudesAndRejectInvalidOnes) {
  HWND horizon = Create(kHorizonTape);
  EXPECT_EQ(kHorizonNoValue, Read(horizon).state);
  EXPECT_EQ(L"", kvtest::ReadAccessible(horizon).value);
  HorizonAttitude attitude = At(5, -10, 0, 275);
  EXPECT_EQ(1, Send(horizon, kHorizonValue | kCommandRedraw | kHorizonAnimate, &attitude));  // no value before: at once
  EXPECT_EQ(L"+5.0\xB0, -10.0\xB0, 275\xB0", kvtest::ReadAccessible(horizon).value);
  HorizonAttitude level = At(-0.04f, 0.04f, 0, 359.6f);
  EXPECT_EQ(1, Send(horizon, kHorizonValue, &level));
  EXPECT_EQ(L"+0.0\xB0, +0.0\xB0, 000\xB0", kvtest::ReadAccessible(horizon).value);
  EXPECT_EQ(1, Send(horizon, kHorizonValue, &attitude));
  for (float HorizonAttitude::* field : {&HorizonAttitude::pitch, &HorizonAttitude::heading}) {
    for (const float wrong : {std::nanf(""), std::numeric_limits<float>::infinity()}) {
      HorizonAttitude bad = attitude;
      bad.*field = wrong;
      EXPECT_EQ(0, Send(horizon, kHorizonValue, &bad));
    }
  }
  HorizonAttitude untagged = attitude;
  untagged.version = 1;
  EXPECT_EQ(0, Send(horizon, kHorizonValue, &untagged));
  kvtest::GuardedBytes shortOne(sizeof(attitude) - 1);
  for (const WPARAM code : {kHorizonValue, kHorizonValue | kCommandRead})
    EXPECT_EQ(0, Send(horizon, code, shortOne.data()));
  EXPECT_EQ(275, Read(horizon).heading);

  attitude.pitch = 10, attitude.roll = 178;  // too far: at once; then the shorter way through 180
  Send(horizon, kHorizonValue | kHorizonAnimate, &attitude);
  EXPECT_EQ(5, Read(horizon).pitch);
  EXPECT_TRUE(kvtest::WaitUntil([&] { return Read(horizon).roll == 178 && Read(horizon).pitch > 5; }));
  attitude.roll = -178;
  Send(horizon, kHorizonValue | kHorizonAnimate, &attitude);
  EXPECT_TRUE(kvtest::WaitUntil([&] { return std::fabs(Read(horizon).roll) >= 178 && Read(horizon).roll == -178; }));
  EXPECT_TRUE(kvtest::WaitUntil([&] { return Read(horizon).pitch == 10; }));
}

TEST_F(HorizonControls, SurviveUnusualSizes) {
  for (const int size : {0, 1, 3, 4, 9}) {
    HWND horizon = Create(kHorizonTape | (size % 2 ? kHorizonRectangular : 0), size, size);
    const HorizonAttitude attitude = At(5, 5);
    Send(horizon, kHorizonValue | kCommandRedraw, &attitude);
    DestroyWindow(horizon);
  }
}

}  // namespace
}  // namespace kv
