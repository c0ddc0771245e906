#include "gallery/pages/capture_page.h"

#include <algorithm>

#include "capture/video_capture.h"
#include "framework/bounded_format.h"
#include "framework/guards.h"
#include "framework/painting.h"
#include "gallery/drawing.h"
#include "gallery/page.h"
#include "gallery/pages/capture_ids.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

constexpr UINT_PTR kPictureTimer = 1;
constexpr UINT kPictureMs = 66;
constexpr COLORREF kScreenTop = RGB(0x14, 0x18, 0x22), kScreenBottom = RGB(0x26, 0x2E, 0x3E);

// The link lives while the page is shown: a camera that nobody looks at belongs to others.
kv::VideoLink* link = nullptr;

// The largest area of the picture's proportions in the middle of `area`.
RECT FittingArea(const RECT& area, int pictureWidth, int pictureHeight) {
  const int width = area.right - area.left, height = area.bottom - area.top;
  const int fitWidth = std::min(width, MulDiv(height, pictureWidth, pictureHeight));
  const int fitHeight = std::min(height, MulDiv(width, pictureHeight, pictureWidth));
  const int left = area.left + (width - fitWidth) / 2, top = area.top + (height - fitHeight) / 2;
  return {left, top, left + fitWidth, top + fitHeight};
}

void DrawMessage(HDC dc, RECT area) {
  const kv::OwnedFont font = MakeFont(22, FW_NORMAL);
  const kv::SelectedObject selected(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0xB4, 0xC0, 0xD2));
  DrawTextW(dc, Text(IDS_CAPTURE_NO_DEVICE).c_str(), -1, &area, DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX);
}

void DrawScreen(HDC dc, RECT area) {
  kv::DrawSunkenFrame(dc, &area);
  kv::FillVerticalGradient(dc, area, kScreenTop, kScreenBottom);
  const RECT picture = link ? FittingArea(area, link->frameWidth, link->frameHeight) : RECT{};
  if (!kv::DrawVideoFrame(link, dc, picture.left, picture.top, picture.right - picture.left,
                          picture.bottom - picture.top)) {
    DrawMessage(dc, area);
  }
}

// Drawn aside and shown at once, so that nothing flickers between two pictures.
INT_PTR OnDrawItem(const DRAWITEMSTRUCT* item) {
  const RECT& area = item->rcItem;
  const kv::OwnedBitmap bitmap(CreateCompatibleBitmap(item->hDC, area.right, area.bottom));
  const kv::MemoryDc dc(item->hDC);
  const kv::SelectedObject selected(dc, bitmap);
  DrawScreen(dc, area);
  BitBlt(item->hDC, 0, 0, area.right, area.bottom, dc, 0, 0, SRCCOPY);
  return TRUE;
}

void ShowState(HWND page) {
  wchar_t text[128] = L"";
  if (link) {
    kv::FormatBounded(text, sizeof(text), Text(IDS_CAPTURE_STATE).c_str(), link->frameWidth, link->frameHeight,
                      link->sourceFormat.header.biBitCount);
  }
  SetDlgItemTextW(page, IDC_CAPTURE_STATE, text);
  ShowWindow(GetDlgItem(page, IDC_CAPTURE_SEARCH), link ? SW_HIDE : SW_SHOW);
  InvalidateRect(GetDlgItem(page, IDC_CAPTURE_SCREEN), nullptr, FALSE);
}

void Disconnect(HWND page) {
  KillTimer(page, kPictureTimer);
  kv::CloseVideoLink(link);
  link = nullptr;
}

INT_PTR Connect(HWND page) {
  Disconnect(page);
  link = kv::OpenVideoLink(GetDlgItem(page, IDC_CAPTURE_SCREEN));
  if (link) SetTimer(page, kPictureTimer, kPictureMs, nullptr);
  ShowState(page);
  return TRUE;
}

void OnTextsChanged(HWND page) {
  SetPageText(page, IDC_CAPTURE_SEARCH, IDS_CAPTURE_SEARCH);
  ShowState(page);
}

void OnShown(HWND page, bool shown) {
  if (shown) {
    Connect(page);
  } else {
    Disconnect(page);
  }
}

}  // namespace

INT_PTR CALLBACK CapturePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case kTextsChanged: OnTextsChanged(page); break;
    case kPageShown: OnShown(page, wParam != 0); return TRUE;
    case WM_TIMER: InvalidateRect(GetDlgItem(page, IDC_CAPTURE_SCREEN), nullptr, FALSE); return TRUE;
    case WM_DRAWITEM: return OnDrawItem(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_COMMAND: return LOWORD(wParam) == IDC_CAPTURE_SEARCH ? Connect(page) : FALSE;
    case WM_DESTROY: Disconnect(page); break;
    default: break;
  }
  return HandlePageMessage(page, message, wParam, lParam);
}

}  // namespace gallery
