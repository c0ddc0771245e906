#include "gallery/frame.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <string>

#include "gallery/drawing.h"
#include "gallery/pages.h"
#include "gallery/resource_ids.h"
#include "kv/export/web_links.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/language.h"
#include "kv/framework/numbers.h"
#include "kv/framework/painting.h"
#include "kv/framework/tooltips.h"
#include "kv/framework/version.h"
#include "kv/framework/window_position.h"
#include "kv/toolkit/about_box.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/pages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr char kLastPageName[] = "Gallery.LastPage";  // index in the list
constexpr UINT_PTR kWalkTimer = 1;
constexpr UINT kSettleMs = 1500;

int selectedPage = -1;

HWND ListOf(HWND frame) {
  return GetDlgItem(frame, IDC_PAGE_LIST);
}

// ---- Layout and painting --------------------------------------------------------------------------------------------

INT_PTR OnSize(HWND frame, WPARAM kind) {
  if (kind == SIZE_MINIMIZED) return TRUE;
  const SIZE client = kv::ClientSize(frame);
  const FrameLayout layout = LayoutFor(client);
  SendMessageA(ListOf(frame), LB_SETITEMHEIGHT, 0, layout.rowHeight);
  MoveWindow(ListOf(frame), 0, 0, layout.listWidth, client.cy, TRUE);
  const int left = layout.listWidth + 1, top = layout.headerHeight + 1;
  MoveWindow(GetDlgItem(frame, IDC_PAGE_PLACE), left, top, client.cx - left, client.cy - top, FALSE);
  InvalidateRect(frame, nullptr, TRUE);
  return TRUE;
}

INT_PTR OnPaint(HWND frame) {
  const kv::PaintScope paint(frame);
  const SIZE client = kv::ClientSize(frame);
  const FrameLayout layout = LayoutFor(client);
  kv::FillSolid(paint.dc(), {layout.listWidth, 0, client.cx, client.cy}, GetSysColor(COLOR_BTNFACE));
  DrawHeader(paint.dc(), {layout.listWidth, 0, client.cx, layout.headerHeight}, layout, selectedPage);
  return TRUE;
}

INT_PTR OnDrawItem(HWND frame, const DRAWITEMSTRUCT* item) {
  if (item->CtlID != IDC_PAGE_LIST || item->itemID >= AllPages().size()) return FALSE;
  const FrameLayout layout = LayoutFor(kv::ClientSize(frame));
  RECT area = item->rcItem;
  const COLORREF color = DrawRowBackground(*item);
  area.left += layout.margin;
  DrawLine(item->hDC, kv::ResourceText(IDS_TITLE_FIRST + item->itemID), area,
           {layout.textPx, item->itemState & ODS_SELECTED ? FW_SEMIBOLD : FW_NORMAL, color});
  return TRUE;
}

// ---- Life -----------------------------------------------------------------------------------------------------------

int FirstPage(const StartOptions& options) {
  DWORD last = 0;
  if (options.walk) return 0;
  if (options.page >= 0) return options.page;
  kv::WindowNumber(kLastPageName, &last, kv::kPositionRestore);
  return last < AllPages().size() ? static_cast<int>(last) : 0;
}

INT_PTR OnInit(HWND frame, const StartOptions& options) {
  HWND list = ListOf(frame);
  for (size_t i = 0; i < AllPages().size(); ++i) SendMessageA(list, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
  selectedPage = -1;
  SelectPage(frame, FirstPage(options));
  if (options.walk) SetTimer(frame, kWalkTimer, kSettleMs, nullptr);
  return TRUE;
}

INT_PTR OnSave() {
  auto page = static_cast<DWORD>(selectedPage);
  kv::WindowNumber(kLastPageName, &page, kv::kPositionSave);
  return TRUE;
}

INT_PTR OnLanguageChanged(HWND frame) {
  SetWindowTextW(frame, kv::ResourceText(IDS_GALLERY_CAPTION).c_str());
  SetWindowTextW(ListOf(frame), kv::ResourceText(IDS_LIST_TIP).c_str());  // its name for screen readers
  return TRUE;
}

void WaitForLine() {
  char character = 0;
  DWORD read = 0;
  while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), &character, 1, &read, nullptr) && read && character != '\n') {
  }
}

// The page is complete: prints its name and continues after a line of input.
INT_PTR OnTimer(HWND frame) {
  KillTimer(frame, kWalkTimer);
  const char* name = AllPages()[selectedPage].name;
  kv::PrintText(STD_OUTPUT_HANDLE, std::wstring(name, name + std::strlen(name)) + L"\n");
  WaitForLine();
  if (selectedPage + 1 == static_cast<int>(AllPages().size())) return PostMessageW(frame, WM_CLOSE, 0, 0);
  SelectPage(frame, selectedPage + 1);
  SetTimer(frame, kWalkTimer, kSettleMs, nullptr);
  return TRUE;
}

INT_PTR OnHelp(HWND frame) {
  constexpr UINT kDisplayTopic = 0;  // HH_DISPLAY_TOPIC
  const char* page = AllPages()[selectedPage].name;
  const std::wstring topic = std::wstring(page, page + std::strlen(page)) + L".html";
  return kv::OpenHelp(frame, kv::CurrentLanguage(), kFileStem, kDisplayTopic,
                      reinterpret_cast<DWORD_PTR>(topic.c_str()));
}

// Wraps around at both ends.
INT_PTR StepPage(HWND frame, int step) {
  const int count = static_cast<int>(AllPages().size());
  SelectPage(frame, (selectedPage + step + count) % count);
  return TRUE;
}

INT_PTR OnCommand(HWND frame, UINT command, UINT code) {
  switch (command) {
    case IDC_PAGE_LIST:
      if (code == LBN_SELCHANGE) SelectPage(frame, SendDlgItemMessageA(frame, IDC_PAGE_LIST, LB_GETCURSEL, 0, 0));
      if (code == LBN_DBLCLK) kv::FocusFirstControl(kv::ShownPage(frame));
      return TRUE;
    case IDM_GALLERY_EXIT: return PostMessageA(frame, WM_CLOSE, 0, 0);
    case IDM_GALLERY_ABOUT:
      kv::ShowAboutBox(frame,
                       {.caption = kv::ResourceText(IDS_ABOUT_CAPTION),
                        .name = kv::ResourceText(IDS_GALLERY_CAPTION) + L" " KV_VERSION_TEXT,
                        .description = kv::ResourceText(IDS_ABOUT_TEXT),
                        .rights = L"\u00A9 2008-2026 korvel\nMIT License",
                        .address = std::wstring(std::begin(kv::kHomePageAddress), std::end(kv::kHomePageAddress) - 1),
                        .icon = IDI_GALLERY});
      return TRUE;
    case IDM_GALLERY_HELP: return OnHelp(frame);
    case IDM_GALLERY_NEXT_PAGE: return StepPage(frame, 1);
    case IDM_GALLERY_PREVIOUS_PAGE: return StepPage(frame, -1);
    default: return FALSE;
  }
}

INT_PTR CALLBACK FrameProcedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(frame, *reinterpret_cast<const StartOptions*>(lParam));
    case WM_SIZE: return OnSize(frame, wParam);
    case WM_PAINT: return OnPaint(frame);
    case WM_DRAWITEM: return OnDrawItem(frame, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_COMMAND: return OnCommand(frame, LOWORD(wParam), HIWORD(wParam));
    case WM_TIMER: return OnTimer(frame);
    case WM_HELP: return OnHelp(frame);
    case kv::kSaveState: return OnSave();
    case kv::kLanguageChanged: return OnLanguageChanged(frame);
    default: return FALSE;
  }
}

const kv::TooltipEntry kTips[] = {{IDC_PAGE_LIST, MAKEINTRESOURCEW(IDS_LIST_TIP)}};

}  // namespace

kv::ScaledDialog FrameDialog(const StartOptions& options) {
  return {
      .templateName = L"DLG_GALLERY",
      .procedure = FrameProcedure,
      .parameter = reinterpret_cast<LPARAM>(&options),
      .positionName = "Gallery.Main",
      .maximizedName = "Gallery.Maximized",
      .minimumSize = {760, 576},
      .tips = kTips,
      .menu = L"MENU_GALLERY",
      .languageMenu = {IDM_GALLERY_LANGUAGE_MENU, IDM_LANGUAGE_FIRST, IDB_LANGUAGE_FIRST},
      .accelerators = L"KEYS_GALLERY",
      // OnSize places its own controls.
      .firstId = IDC_PAGE_FIRST,
      .languages = kFileStem,
      .language = options.language,
  };
}

void SelectPage(HWND frame, int index) {
  if (index < 0 || index >= static_cast<int>(AllPages().size()) || index == selectedPage) return;
  selectedPage = index;
  SendMessageA(ListOf(frame), LB_SETCURSEL, index, 0);
  kv::ShowPage(frame, IDC_PAGE_PLACE, AllPages()[index].dialog);
  kv::RepaintNow(frame);
}

FrameLayout LayoutFor(SIZE client) {
  constexpr double kDesignWidth = 752, kDesignHeight = 528;  // client area of the minimum size
  const double scale = std::max(0.5, std::min(client.cx / kDesignWidth, client.cy / kDesignHeight));
  const auto scaled = [scale](int length) { return kv::ToInt(length * scale); };
  return {.listWidth = scaled(172),
          .rowHeight = scaled(27),
          .headerHeight = scaled(68),
          .titleHeight = scaled(34),
          .margin = scaled(12),
          .titlePx = scaled(22),
          .textPx = scaled(14)};
}

void DrawHeader(HDC dc, const RECT& header, const FrameLayout& layout, int page) {
  const bool plain = kv::IsHighContrast();
  if (plain) {
    kv::FillSolid(dc, header, GetSysColor(COLOR_BTNFACE));
  } else {
    kv::FillHorizontalGradient(dc, header, RGB(0x24, 0x35, 0x5A), RGB(0x3A, 0x55, 0x8A));
  }
  if (page < 0) return;
  const COLORREF color = plain ? GetSysColor(COLOR_BTNTEXT) : RGB(255, 255, 255);
  const int left = header.left + layout.margin, right = header.right - layout.margin;
  DrawLine(dc, kv::ResourceText(IDS_TITLE_FIRST + page), {left, layout.margin / 2, right, layout.titleHeight},
           {layout.titlePx, FW_SEMIBOLD, color});
  DrawLines(dc, kv::ResourceText(IDS_DESCRIPTION_FIRST + page),
            {left, layout.titleHeight + layout.margin / 6, right, layout.headerHeight},
            {layout.textPx, FW_NORMAL, color});
}

}  // namespace gallery
