#include "kv/toolkit/about_box.h"

#include <algorithm>
#include <string>

#include "kv/framework/guards.h"
#include "kv/framework/modules.h"
#include "kv/framework/shell_launch.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/languages.h"

namespace kv {

namespace {

// At 96 DPI.
constexpr int kMargin = 16, kGap = 10, kIconPx = 32, kTextPx = 15, kNamePx = 20, kMinTextWidth = 230;
constexpr int kButtonWidth = 80, kButtonHeight = 25;
constexpr int kAddress = 100;

// The open box. It lies on the stack of ShowAboutBox.
struct Box {
  const AboutBox& about;
  int dpi = USER_DEFAULT_SCREEN_DPI;
  OwnedFont font, nameFont;

  int Scaled(int px) const { return MulDiv(px, dpi, USER_DEFAULT_SCREEN_DPI); }
};

SIZE TextSize(HWND box, HFONT font, const std::wstring& text) {
  const WindowDc dc(box);
  const SelectedObject selected(dc, font);
  RECT area{};
  DrawTextW(dc, text.c_str(), -1, &area, DT_CALCRECT | DT_NOPREFIX);
  return {area.right, area.bottom};
}

HWND AddControl(HWND box, const wchar_t* className, const std::wstring& text, DWORD style, int id, RECT place) {
  const DWORD direction = IsRightToLeft() ? WS_EX_LAYOUTRTL | WS_EX_RTLREADING : 0;
  return CreateWindowExW(direction, className, text.c_str(), WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                         place.right - place.left, place.bottom - place.top, box,
                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
}

// Adds the controls from top to bottom, and returns the size of the client area.
SIZE AddControls(HWND window, const Box& box) {
  const AboutBox& about = box.about;
  const int margin = box.Scaled(kMargin), gap = box.Scaled(kGap), iconPx = box.Scaled(kIconPx);
  const int left = margin + iconPx + margin, buttonHeight = box.Scaled(kButtonHeight);
  int top = margin, width = box.Scaled(kMinTextWidth);
  const HICON icon = static_cast<HICON>(
      LoadImageW(modules.application, MAKEINTRESOURCEW(about.icon), IMAGE_ICON, iconPx, iconPx, LR_SHARED));
  const HWND image = AddControl(window, L"STATIC", L"", SS_ICON | SS_REALSIZEIMAGE, -1,
                                {margin, margin, margin + iconPx, margin + iconPx});
  SendMessageW(image, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);

  for (const std::wstring* text : {&about.name, &about.description, &about.rights}) {
    if (text->empty()) continue;
    const HFONT font = text == &about.name ? box.nameFont : box.font;
    const SIZE size = TextSize(window, font, *text);
    width = std::max<int>(width, size.cx + 2);
    const HWND label =
        AddControl(window, L"STATIC", *text, SS_NOPREFIX, -1, {left, top, left + size.cx + 2, top + size.cy});
    SendMessageW(label, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    top += size.cy + gap;
  }
  const auto addButton = [&](const std::wstring& text, DWORD style, int id, int x, int buttonWidth) {
    const HWND button =
        AddControl(window, L"BUTTON", text, style | WS_TABSTOP, id, {x, top, x + buttonWidth, top + buttonHeight});
    SendMessageW(button, WM_SETFONT, reinterpret_cast<WPARAM>(static_cast<HFONT>(box.font)), FALSE);
  };
  if (!about.address.empty()) {
    const int buttonWidth = TextSize(window, box.font, about.address).cx + 2 * gap;
    width = std::max(width, buttonWidth);
    addButton(about.address, BS_PUSHBUTTON, kAddress, left, buttonWidth);
    top += buttonHeight + gap;
  }
  top += gap;
  addButton(L"OK", BS_DEFPUSHBUTTON, IDOK, left + width - box.Scaled(kButtonWidth), box.Scaled(kButtonWidth));
  return {left + width + margin, top + buttonHeight + margin};
}

// In the middle of the owner, within the desktop.
void Place(HWND window, SIZE client) {
  RECT place{0, 0, client.cx, client.cy}, over{}, desktop{};
  AdjustWindowRectEx(&place, GetWindowLongW(window, GWL_STYLE), FALSE, GetWindowLongW(window, GWL_EXSTYLE));
  const SIZE size{place.right - place.left, place.bottom - place.top};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &desktop, 0);
  const HWND owner = GetWindow(window, GW_OWNER);
  if (!owner || !GetWindowRect(owner, &over)) over = desktop;
  const LONG x =
      std::clamp((over.left + over.right - size.cx) / 2, desktop.left, std::max(desktop.left, desktop.right - size.cx));
  const LONG y =
      std::clamp((over.top + over.bottom - size.cy) / 2, desktop.top, std::max(desktop.top, desktop.bottom - size.cy));
  SetWindowPos(window, nullptr, x, y, size.cx, size.cy, SWP_NOZORDER);
}

INT_PTR OnInit(HWND window, Box& box) {
  SetWindowLongW(window, DWL_USER, reinterpret_cast<LONG>(&box));
  SetWindowTextW(window, box.about.caption.c_str());
  box.dpi = GetDeviceCaps(WindowDc(window), LOGPIXELSY);
  box.font = MakeFont(box.Scaled(kTextPx), FW_NORMAL);
  box.nameFont = MakeFont(box.Scaled(kNamePx), FW_SEMIBOLD);
  Place(window, AddControls(window, box));
  SetFocus(GetDlgItem(window, IDOK));
  return FALSE;
}

INT_PTR CALLBACK AboutProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(window, *reinterpret_cast<Box*>(lParam));
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) return EndDialog(window, IDOK);
      if (LOWORD(wParam) == kAddress) {
        const auto& box = *reinterpret_cast<const Box*>(GetWindowLongW(window, DWL_USER));
        shellCalls.executeW(window, L"open", box.about.address.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
      }
      return TRUE;
    default: return FALSE;
  }
}

}  // namespace

void ShowAboutBox(HWND owner, const AboutBox& about) {
  // An empty template without menu, class, title and font.
  struct {
    DLGTEMPLATE head;
    WORD menu, className, title;
  } form{};
  form.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
  form.head.dwExtendedStyle = IsRightToLeft() ? WS_EX_LAYOUTRTL | WS_EX_RTLREADING : 0;
  Box box{.about = about, .font = {}, .nameFont = {}};
  DialogBoxIndirectParamW(modules.application, &form.head, owner, AboutProcedure, reinterpret_cast<LPARAM>(&box));
}

}  // namespace kv
