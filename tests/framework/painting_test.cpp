#include "framework/painting.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "framework/guards.h"
#include "framework/picture.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::Picture;

constexpr COLORREF kUntouched = 0xCCCCCC;

// No pixel outside `area` was drawn.
void ExpectOnlyWithin(const Picture& picture, const RECT& area) {
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if (!PtInRect(&area, {x, y})) {
        ASSERT_EQ(kUntouched, picture.At(x, y)) << x << "," << y;
      }
    }
  }
}

COLORREF Blend(COLORREF start, COLORREF end, int steps, int step) {
  COLORREF color = kUntouched;
  EXPECT_TRUE(kv::BlendColor(start, end, steps, step, &color));
  return color;
}

TEST(Painting, BlendTruncatesTowardsZeroAndMasks) {
  const COLORREF start = RGB(0, 255, 10), end = RGB(255, 0, 20);
  EXPECT_EQ(start, Blend(start, end, 8, 0));
  EXPECT_EQ(end, Blend(start, end, 8, 8));
  EXPECT_EQ(RGB(95, 160, 13), Blend(start, end, 8, 3));
  EXPECT_EQ(RGB(254, 255, 30), Blend(start, end, 8, 16));  // 510, -255, 30
  EXPECT_EQ(RGB(95, 94, 7), Blend(start, end, 8, -3));     // -95, 350, 7
  EXPECT_EQ(RGB(95, 160, 13), Blend(start, end, -8, -3));
  Blend(start, end, -1, INT_MIN);
  Blend(start, end, 1, INT_MAX);

  COLORREF color = kUntouched;
  EXPECT_FALSE(kv::BlendColor(start, end, 0, 1, &color));
  EXPECT_EQ(kUntouched, color);
  EXPECT_FALSE(kv::BlendColor(start, end, 8, 1, nullptr));
}

TEST(Painting, ShadesAndSeverities) {
  EXPECT_EQ(RGB(50, 100, 255), kv::ShadeColor(RGB(100, 200, 255), 0.5) | RGB(0, 0, 255));
  EXPECT_EQ(RGB(255, 2, 0), kv::ShadeColor(RGB(200, 1, 0), 2.0));
  EXPECT_EQ(RGB(0, 0, 0), kv::ShadeColor(RGB(9, 9, 9), -1e300));
  EXPECT_EQ(RGB(0, 0, 0), kv::ShadeColor(RGB(9, 9, 9), std::nan("")));

  const COLORREF green = kv::SeverityColor(0, 10), amber = kv::SeverityColor(5, 10), red = kv::SeverityColor(10, 10);
  EXPECT_LT(GetRValue(green), 64);
  EXPECT_GT(GetRValue(amber), 192);
  EXPECT_GT(GetGValue(amber), 128);
  EXPECT_LT(GetGValue(red), 64);
  EXPECT_EQ(amber, kv::SeverityColor(-5, 10));
  EXPECT_EQ(red, kv::SeverityColor(HUGE_VAL, 10));
  for (const double full : {0.0, -1.0, std::nan("")}) EXPECT_EQ(green, kv::SeverityColor(5, full));
  EXPECT_EQ(green, kv::SeverityColor(std::nan(""), 10));
}

TEST(Painting, FillsAndFramesStayInTheirArea) {
  const RECT area{10, 5, 50, 35};
  Picture solid(64, 48);
  kv::FillSolid(solid.dc(), area, RGB(1, 2, 3));
  EXPECT_EQ(40 * 30, solid.CountOf(RGB(1, 2, 3)));
  ExpectOnlyWithin(solid, area);

  Picture across(64, 48), down(64, 48);
  kv::FillHorizontalGradient(across.dc(), area, RGB(0, 0, 0), RGB(200, 200, 200));
  kv::FillVerticalGradient(down.dc(), area, RGB(0, 0, 0), RGB(200, 200, 200));
  EXPECT_LT(GetRValue(across.At(10, 20)), 12);
  EXPECT_GT(GetRValue(across.At(49, 20)), 188);
  EXPECT_EQ(across.At(30, 5), across.At(30, 34));
  EXPECT_LT(GetRValue(down.At(30, 5)), 12);
  EXPECT_GT(GetRValue(down.At(30, 34)), 188);
  ExpectOnlyWithin(across, area);
  ExpectOnlyWithin(down, area);

  Picture sunken(64, 48);
  RECT inside = area;
  kv::DrawSunkenFrame(sunken.dc(), &inside);
  const RECT expected{12, 7, 48, 33};
  EXPECT_TRUE(EqualRect(&expected, &inside));
  EXPECT_NE(kUntouched, sunken.At(10, 5));
  EXPECT_EQ(kUntouched, sunken.At(12, 7));
  ExpectOnlyWithin(sunken, area);
  RECT tiny{3, 3, 4, 4};
  kv::DrawSunkenFrame(sunken.dc(), &tiny);
  EXPECT_TRUE(tiny.right >= tiny.left && tiny.bottom >= tiny.top && IsRectEmpty(&tiny));

  Picture rounded(64, 48);
  kv::DrawRoundedFrame(rounded.dc(), area, 6, 2, RGB(255, 255, 255));
  EXPECT_EQ(RGB(255, 255, 255), rounded.At(30, 6));
  EXPECT_EQ(kUntouched, rounded.At(30, 20));
  EXPECT_EQ(kUntouched, rounded.At(10, 5));  // the corner is cut
  ExpectOnlyWithin(rounded, area);
}

TEST(Painting, ReplacesExactlyOneColourOfABitmap) {
  const kv::WindowDc screen(nullptr);
  const kv::MemoryDc dc(screen);
  const kv::OwnedBitmap bitmap(CreateCompatibleBitmap(screen, 3, 1));
  {
    const kv::SelectedObject selected(dc, bitmap);
    SetPixelV(dc, 0, 0, RGB(255, 0, 255));
    SetPixelV(dc, 1, 0, RGB(255, 0, 254));
    SetPixelV(dc, 2, 0, RGB(255, 0, 255));
  }
  EXPECT_TRUE(kv::ReplaceBitmapColor(dc, bitmap, RGB(255, 0, 255), RGB(10, 20, 30)));
  {
    const kv::SelectedObject selected(dc, bitmap);
    EXPECT_EQ(RGB(10, 20, 30), GetPixel(dc, 0, 0));
    EXPECT_EQ(RGB(255, 0, 254), GetPixel(dc, 1, 0));
    EXPECT_EQ(RGB(10, 20, 30), GetPixel(dc, 2, 0));
  }
  EXPECT_FALSE(kv::ReplaceBitmapColor(dc, nullptr, 0, 0));
}

TEST(Painting, StatusButtonShowsItsSchemeAndLeavesTheDcAlone) {
  const kvtest::RecordingParent parent;
  const HWND button = kvtest::CreateControl(parent, "BUTTON", "WWWWWWWWWWWWWWWWWWWW", BS_OWNERDRAW, {0, 0, 60, 20}, 9);
  Picture picture(80, 40);
  SetTextColor(picture.dc(), RGB(7, 8, 9));
  DRAWITEMSTRUCT item{};
  item.hwndItem = button;
  item.hDC = picture.dc();
  item.rcItem = {10, 10, 70, 30};
  kv::DrawStatusButton(item, kv::kSchemeGreen, kv::kButtonLit);
  EXPECT_GT(picture.CountOf(0x00EF00), 0);
  EXPECT_GT(picture.CountOf(RGB(255, 255, 255)), 10);  // the text
  ExpectOnlyWithin(picture, item.rcItem);
  EXPECT_EQ(RGB(7, 8, 9), GetTextColor(picture.dc()));
  EXPECT_EQ(OPAQUE, GetBkMode(picture.dc()));
  EXPECT_EQ(GetStockObject(SYSTEM_FONT), GetCurrentObject(picture.dc(), OBJ_FONT));

  SetWindowTextA(button, "");
  const auto middle = [&](int scheme, UINT flags, UINT state, int y) {
    item.itemState = state;
    kv::DrawStatusButton(item, scheme, flags);
    return picture.At(40, y);
  };
  EXPECT_EQ(0x009FDFu, middle(kv::kSchemeAmber, kv::kButtonLit, 0, 20));
  EXPECT_EQ(0xFF7F4Fu, middle(kv::kSchemeBlue, kv::kButtonLit, 0, 20));
  EXPECT_LT(GetBValue(middle(kv::kSchemeBlue, 0, 0, 20)), 0xFF);
  constexpr UINT kBoth = kv::kButtonLit | kv::kButtonGradient;
  EXPECT_GT(GetGValue(middle(kv::kSchemeGreen, kBoth, 0, 12)), GetGValue(middle(kv::kSchemeGreen, kBoth, 0, 27)));
  EXPECT_LT(GetGValue(middle(kv::kSchemeGreen, kBoth, ODS_SELECTED, 12)),
            GetGValue(middle(kv::kSchemeGreen, kBoth, ODS_SELECTED, 27)));
}

TEST(Pictures, SizesAndBuffers) {
  const kvtest::RecordingParent parent(false, 40, 30);
  const SIZE client = kv::ClientSize(parent);
  EXPECT_TRUE(client.cx == 40 && client.cy == 30);
  EXPECT_EQ(nullptr, kv::CreateWindowBitmap(parent, {0, 30}));
  EXPECT_EQ(nullptr, kv::CreateWindowBitmap(parent, {40, -1}));

  const auto requested = [](LPARAM lParam) { return kv::RequestedPictureSize(lParam, {7, 9000}, 32, 2048); };
  EXPECT_TRUE(requested(0).cx == 7 && requested(0).cy == 9000);
  EXPECT_TRUE(requested(MAKELPARAM(1, 0xFFFF)).cx == 32 && requested(MAKELPARAM(1, 0xFFFF)).cy == 2048);

  const kv::OwnedBitmap bitmap(kv::CreateWindowBitmap(parent, {2, 1}));
  {
    const kv::WindowDc screen(nullptr);
    const kv::MemoryDc dc(screen);
    const kv::SelectedObject selected(dc, bitmap);
    SetPixelV(dc, 0, 0, RGB(255, 0, 0));
    SetPixelV(dc, 1, 0, RGB(0, 0, 255));
  }
  Picture picture(40, 10);
  kv::ShowBitmap(picture.dc(), {4, 2, 36, 8}, bitmap, {2, 1});
  EXPECT_EQ(16 * 6, picture.CountOf(RGB(255, 0, 0)));
  EXPECT_EQ(16 * 6, picture.CountOf(RGB(0, 0, 255)));
}

TEST(Pictures, ClipboardOwnsWhatItTook) {
  const kvtest::RecordingParent parent;
  EXPECT_FALSE(kv::GiveBitmapToClipboard(parent, nullptr));
  EXPECT_TRUE(kv::GiveBitmapToClipboard(parent, kv::CreateWindowBitmap(parent, {5, 6})));
  ASSERT_TRUE(OpenClipboard(parent));
  BITMAP shape{};
  EXPECT_NE(0, GetObjectA(GetClipboardData(CF_BITMAP), sizeof(shape), &shape));
  EXPECT_TRUE(shape.bmWidth == 5 && shape.bmHeight == 6);
  // While another window holds the clipboard the bitmap is refused and deleted.
  const HBITMAP refused = kv::CreateWindowBitmap(parent, {5, 6});
  const kvtest::RecordingParent other;
  EXPECT_FALSE(kv::GiveBitmapToClipboard(other, refused));
  EXPECT_EQ(0u, GetObjectType(refused));
  EmptyClipboard();
  CloseClipboard();
}

}  // namespace
