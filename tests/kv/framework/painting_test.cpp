#include "kv/framework/painting.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>
#include <tuple>

#include "kv/framework/bitmaps.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::TestBitmap;

constexpr COLORREF kUntouched = 0xCCCCCC;

// Fails if a pixel outside `area` was drawn.
void ExpectOnlyWithin(const TestBitmap& bitmap, const RECT& area) {
  for (int i = 0; i < bitmap.width() * bitmap.height(); ++i) {
    const POINT at{i % bitmap.width(), i / bitmap.width()};
    ASSERT_TRUE(PtInRect(&area, at) || bitmap.At(at.x, at.y) == kUntouched) << at.x << "," << at.y;
  }
}

TEST(Painting, BlendTruncatesTowardZeroAndMasks) {
  const COLORREF start = RGB(0, 255, 10), end = RGB(255, 0, 20);
  COLORREF color = kUntouched;
  const std::tuple<int, int, COLORREF> cases[] = {{8, 0, start},
                                                  {8, 8, end},
                                                  {8, 3, RGB(95, 160, 13)},
                                                  {8, 16, RGB(254, 255, 30)},  // 510, -255, 30
                                                  {8, -3, RGB(95, 94, 7)},     // -95, 350, 7
                                                  {-8, -3, RGB(95, 160, 13)}};
  for (const auto& [steps, step, expected] : cases) {
    EXPECT_TRUE(kv::BlendColor(start, end, steps, step, &color));
    EXPECT_EQ(expected, color) << step;
  }
  EXPECT_TRUE(kv::BlendColor(start, end, -1, INT_MIN, &color) && kv::BlendColor(start, end, 1, INT_MAX, &color));
  color = kUntouched;
  EXPECT_FALSE(kv::BlendColor(start, end, 0, 1, &color) || kv::BlendColor(start, end, 8, 1, nullptr));
  EXPECT_EQ(kUntouched, color);
}

TEST(Painting, ShadesAndSeverities) {
  EXPECT_EQ(RGB(50, 100, 255), kv::ShadeColor(RGB(100, 200, 255), 0.5) | RGB(0, 0, 255));
  EXPECT_EQ(RGB(255, 2, 0), kv::ShadeColor(RGB(200, 1, 0), 2.0));
  EXPECT_EQ(RGB(0, 0, 0), kv::ShadeColor(RGB(9, 9, 9), NAN));

  const COLORREF green = kv::SeverityColor(0, 10), amber = kv::SeverityColor(5, 10), red = kv::SeverityColor(10, 10);
  EXPECT_TRUE(GetRValue(green) < 64 && GetRValue(amber) > 192 && GetGValue(amber) > 128 && GetGValue(red) < 64);
  const std::tuple<double, double, COLORREF> cases[] = {{-5, 10, amber}, {HUGE_VAL, 10, red}, {5, 0, green},
                                                        {5, -1, green},  {5, NAN, green},     {NAN, 10, green}};
  for (const auto& [value, full, color] : cases) EXPECT_EQ(color, kv::SeverityColor(value, full)) << value;
}

TEST(Painting, FillsAndFramesStayWithinTheirArea) {
  constexpr RECT kArea{10, 5, 50, 35};
  const auto drawn = [&](auto draw) {
    auto bitmap = std::make_unique<TestBitmap>(64, 48);
    draw(bitmap->dc());
    ExpectOnlyWithin(*bitmap, kArea);
    return bitmap;
  };
  EXPECT_EQ(40 * 30, drawn([&](HDC dc) { kv::FillSolid(dc, kArea, RGB(1, 2, 3)); })->CountOf(RGB(1, 2, 3)));

  constexpr COLORREF kGray = RGB(200, 200, 200);
  const auto across = drawn([&](HDC dc) { kv::FillHorizontalGradient(dc, kArea, 0, kGray); });
  const auto down = drawn([&](HDC dc) { kv::FillVerticalGradient(dc, kArea, 0, kGray); });
  EXPECT_TRUE(GetRValue(across->At(10, 20)) < 12 && GetRValue(across->At(49, 20)) > 188);
  EXPECT_TRUE(GetRValue(down->At(30, 5)) < 12 && GetRValue(down->At(30, 34)) > 188);

  RECT inside = kArea, tiny{20, 20, 21, 21};
  const auto sunken = drawn([&](HDC dc) {
    kv::DrawSunkenFrame(dc, &inside);
    kv::DrawSunkenFrame(dc, &tiny);
  });
  const RECT expected{12, 7, 48, 33};
  EXPECT_TRUE(EqualRect(&expected, &inside));
  EXPECT_NE(kUntouched, sunken->At(10, 5));
  EXPECT_EQ(kUntouched, sunken->At(12, 7));
  EXPECT_TRUE(tiny.right >= tiny.left && tiny.bottom >= tiny.top && IsRectEmpty(&tiny));

  const auto rounded = drawn([&](HDC dc) { kv::DrawRoundedFrame(dc, kArea, 6, 2, RGB(255, 255, 255)); });
  EXPECT_EQ(RGB(255, 255, 255), rounded->At(30, 6));
  EXPECT_EQ(kUntouched, rounded->At(30, 20));
  EXPECT_EQ(kUntouched, rounded->At(10, 5));  // the corner is rounded off
}

// A status button of 60 x 20, drawn at (10, 10) of a bitmap.
class StatusButton : public testing::Test {
 protected:
  void Draw(const char* text, int scheme, UINT flags, UINT state = 0) {
    SetWindowTextA(item_.hwndItem, text);
    item_.itemState = state;
    kv::DrawStatusButton(item_, scheme, flags);
  }

  const kvtest::RecordingParent parent_;
  const TestBitmap bitmap_{80, 40};
  DRAWITEMSTRUCT item_{.hwndItem = kvtest::CreateControl(parent_, "BUTTON", "", BS_OWNERDRAW, {0, 0, 60, 20}, 9),
                       .hDC = bitmap_.dc(),
                       .rcItem = {10, 10, 70, 30}};
};

TEST_F(StatusButton, DrawsItsSchemeAndRestoresTheDc) {
  SetTextColor(bitmap_.dc(), RGB(7, 8, 9));
  Draw("WWWWWWWWWWWWWWWWWWWW", kv::kSchemeGreen, kv::kButtonLit);
  ExpectOnlyWithin(bitmap_, item_.rcItem);
  EXPECT_TRUE(GetTextColor(bitmap_.dc()) == RGB(7, 8, 9) && GetBkMode(bitmap_.dc()) == OPAQUE);
  EXPECT_EQ(GetStockObject(SYSTEM_FONT), GetCurrentObject(bitmap_.dc(), OBJ_FONT));

  const auto at = [&](int y, int scheme, UINT flags, UINT state = 0) {
    Draw("", scheme, flags, state);
    return bitmap_.At(40, y);
  };
  EXPECT_EQ(0x009FDFu, at(20, kv::kSchemeAmber, kv::kButtonLit));
  EXPECT_EQ(0x00EF00u, at(20, kv::kSchemeGreen, kv::kButtonLit));
  EXPECT_EQ(0xFF7F4Fu, at(20, kv::kSchemeBlue, kv::kButtonLit));
  EXPECT_LT(GetBValue(at(20, kv::kSchemeBlue, 0)), 0xFF);
  constexpr UINT kBoth = kv::kButtonLit | kv::kButtonGradient;
  for (const UINT state : {0u, UINT{ODS_SELECTED}}) {  // lighter at the top, or pressed at the bottom
    const int top = GetGValue(at(12, kv::kSchemeGreen, kBoth, state));
    EXPECT_EQ(state == 0, top > GetGValue(at(27, kv::kSchemeGreen, kBoth, state)));
  }
}

double Luminance(COLORREF color) {
  const auto linear = [](BYTE channel) {
    const double share = channel / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(GetRValue(color)) + 0.7152 * linear(GetGValue(color)) + 0.0722 * linear(GetBValue(color));
}

TEST_F(StatusButton, IsReadableInEveryStateAndShowsFocusAndPause) {
  constexpr COLORREF kWhite = RGB(255, 255, 255);
  for (const int scheme : {kv::kSchemeAmber, kv::kSchemeGreen, kv::kSchemeBlue}) {
    for (const UINT lit : {0u, kv::kButtonLit}) {
      Draw("COM3", scheme, kv::kButtonGradient | lit);
      for (int i = 0; i < 56 * 16; ++i) {
        const int x = 12 + i % 56, y = 12 + i / 56;
        for (int n = 0; bitmap_.At(x, y) == kWhite && n < 9; ++n) {
          const COLORREF beside = bitmap_.At(x - 1 + n % 3, y - 1 + n / 3);
          ASSERT_TRUE(beside == kWhite || 1.05 / (Luminance(beside) + 0.05) >= 4.5)
              << scheme << " at " << x << "," << y;
        }
      }
    }
  }
  const auto whites = [&](UINT state, UINT flags) {
    Draw("COM3", kv::kSchemeAmber, flags, state);
    return bitmap_.CountOf(kWhite);
  };
  const int plain = whites(0, 0);
  EXPECT_GT(plain, 20);
  EXPECT_EQ(plain, whites(ODS_FOCUS | ODS_NOFOCUSRECT, 0)) << "not before the keyboard is used";
  EXPECT_NE(kWhite, bitmap_.At(20, 11));
  whites(ODS_FOCUS, 0);
  for (const POINT at : {POINT{20, 11}, {20, 28}, {11, 20}, {68, 20}}) EXPECT_EQ(kWhite, bitmap_.At(at.x, at.y));
  EXPECT_GT(whites(0, kv::kButtonPaused), plain + 20);
}

TEST(Pictures, ClipboardOwnsTheBitmap) {
  const kvtest::RecordingParent parent, other;
  EXPECT_FALSE(kv::PutBitmapOnClipboard(parent, nullptr));
  EXPECT_TRUE(kv::PutBitmapOnClipboard(parent, kv::CreateWindowBitmap(parent, {5, 6})));
  const SIZE size = kvtest::ClipboardBitmapSize(parent);
  EXPECT_TRUE(size.cx == 5 && size.cy == 6);
  ASSERT_TRUE(OpenClipboard(parent));
  // While another window has the clipboard open, the bitmap is rejected and deleted.
  const HBITMAP rejected = kv::CreateWindowBitmap(parent, {5, 6});
  EXPECT_FALSE(kv::PutBitmapOnClipboard(other, rejected));
  EXPECT_EQ(0u, GetObjectType(rejected));
  EmptyClipboard();
  CloseClipboard();
}

}  // namespace
