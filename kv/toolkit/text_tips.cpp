#include "kv/toolkit/text_tips.h"

#include <commctrl.h>

#include <algorithm>
#include <string>

#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/tooltips.h"
#include "kv/toolkit/dialog_state.h"

namespace kv {

namespace {

// The size in pixels of the parts of a control besides its text: a button's edges, a check box and its gap, a combo
// box's arrow and edges.
constexpr int kButtonEdges = 6, kBoxAndGap = 17, kFieldEdges = 6, kTabEdges = 8, kHeaderEdges = 10;

std::wstring WindowText(HWND control) {
  std::wstring text(GetWindowTextLengthW(control) + 1, L'\0');
  text.resize(GetWindowTextW(control, text.data(), static_cast<int>(text.size())));
  return text;
}

SIZE TextSize(HWND control, const std::wstring& text, int width, UINT format) {
  const WindowDc dc(control);
  const HGDIOBJ font = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
  const SelectedObject selected(dc, font ? font : GetStockObject(SYSTEM_FONT));
  RECT area{0, 0, width, 0};
  DrawTextW(dc, text.c_str(), -1, &area, format | DT_CALCRECT);
  return {area.right, area.bottom};
}

bool IsOneLineTooWide(HWND control, const std::wstring& text, int width) {
  return TextSize(control, text, 0, DT_SINGLELINE).cx > width;
}

std::wstring TruncatedLabelText(HWND control, SIZE place) {
  const LONG style = GetWindowLongW(control, GWL_STYLE);
  const LONG type = style & SS_TYPEMASK;
  if (type > SS_RIGHT && type != SS_LEFTNOWORDWRAP) return {};
  const std::wstring text = WindowText(control);
  UINT format = style & SS_NOPREFIX ? DT_NOPREFIX : 0;
  const bool isOneLine = style & SS_CENTERIMAGE || type == SS_LEFTNOWORDWRAP;
  format |= isOneLine ? DT_SINGLELINE : DT_WORDBREAK | DT_EXPANDTABS;
  const SIZE size = TextSize(control, text, isOneLine ? 0 : place.cx, format);
  // The lower part of the last line's cell may be truncated.
  const int spare = 2;
  return size.cx > place.cx || size.cy > place.cy + spare ? text : std::wstring();
}

std::wstring TruncatedButtonText(HWND control, SIZE place) {
  const LONG style = GetWindowLongW(control, GWL_STYLE);
  int edges = kBoxAndGap;
  if ((style & BS_TYPEMASK) <= BS_DEFPUSHBUTTON) edges = kButtonEdges;
  const std::wstring text = WindowText(control);
  if (!(style & BS_MULTILINE)) return IsOneLineTooWide(control, text, place.cx - edges) ? text : std::wstring();
  const SIZE size = TextSize(control, text, place.cx - edges, DT_WORDBREAK);
  return size.cx > place.cx - edges || size.cy > place.cy ? text : std::wstring();
}

std::wstring TruncatedItemText(HWND control, UINT countMessage, UINT lengthMessage, UINT textMessage, int width) {
  const LRESULT count = SendMessageW(control, countMessage, 0, 0);
  for (LRESULT i = 0; i < count; ++i) {
    std::wstring text(SendMessageW(control, lengthMessage, i, 0) + 1, L'\0');
    text.resize(SendMessageW(control, textMessage, i, reinterpret_cast<LPARAM>(text.data())));
    if (IsOneLineTooWide(control, text, width)) return text;
  }
  return {};
}

std::wstring TruncatedTabText(HWND control, int width) {
  wchar_t text[256] = L"";
  TCITEMW item{};
  item.mask = TCIF_TEXT;
  item.pszText = text;
  item.cchTextMax = ARRAYSIZE(text);
  const LRESULT count = SendMessageW(control, TCM_GETITEMCOUNT, 0, 0);
  for (LRESULT i = 0; i < count; ++i) {
    SendMessageW(control, TCM_GETITEMW, i, reinterpret_cast<LPARAM>(&item));
    RECT place{};
    SendMessageW(control, TCM_GETITEMRECT, i, reinterpret_cast<LPARAM>(&place));
    const int room = place.right - place.left - kTabEdges;
    if (place.right > width || IsOneLineTooWide(control, text, room)) return text;
  }
  return {};
}

std::wstring TruncatedHeaderText(HWND list) {
  const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
  wchar_t text[256] = L"";
  HDITEMW item{};
  item.mask = HDI_TEXT | HDI_WIDTH;
  item.pszText = text;
  item.cchTextMax = ARRAYSIZE(text);
  const LRESULT count = header ? SendMessageW(header, HDM_GETITEMCOUNT, 0, 0) : 0;
  for (LRESULT i = 0; i < count; ++i) {
    SendMessageW(header, HDM_GETITEMW, i, reinterpret_cast<LPARAM>(&item));
    if (IsOneLineTooWide(header, text, item.cxy - kHeaderEdges)) return text;
  }
  return {};
}

bool HasTip(HWND control) {
  const ControlKind kind = ClassifyControl(control);
  return kind == kControlStatic || kind == kControlButton;
}

// A label is transparent for the mouse, so its tool is a rectangle of the dialog; a button's tool is its window.
TTTOOLINFOW ToolOf(HWND dialog, HWND control) {
  TTTOOLINFOW tool{};
  tool.cbSize = TTTOOLINFOW_V1_SIZE;
  tool.hwnd = dialog;
  tool.uFlags = TTF_SUBCLASS | (ClassifyControl(control) == kControlButton ? TTF_IDISHWND : 0);
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  tool.lpszText = LPSTR_TEXTCALLBACKW;
  GetWindowRect(control, &tool.rect);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&tool.rect), 2);
  return tool;
}

template <class Visit>
void VisitTips(HWND dialog, Visit visit) {
  VisitChildren(dialog, [&](HWND control) {
    TTTOOLINFOW tool = ToolOf(dialog, control);
    if (HasTip(control)) visit(&tool);
  });
}

}  // namespace

std::wstring TruncatedTextOf(HWND control) {
  const SIZE place = ClientSize(control);
  const LONG style = GetWindowLongW(control, GWL_STYLE);
  switch (ClassifyControl(control)) {
    case kControlStatic: return TruncatedLabelText(control, place);
    case kControlButton: return TruncatedButtonText(control, place);
    case kControlComboBox:
      return TruncatedItemText(control, CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT,
                               place.cx - kFieldEdges - GetSystemMetrics(SM_CXVSCROLL));
    case kControlListBox:
      if (style & LBS_OWNERDRAWFIXED) return {};
      return TruncatedItemText(control, LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, place.cx);
    case kControlTab: return TruncatedTabText(control, place.cx);
    default: return TruncatedHeaderText(control);
  }
}

HWND CreateTextTips(HWND dialog) {
  const HWND tips = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0,
                                    dialog, nullptr, nullptr, nullptr);
  VisitTips(dialog, [tips](TTTOOLINFOW* tool) { SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(tool)); });
  SendMessageW(tips, TTM_SETMAXTIPWIDTH, 0, kMaxTipPx);
  return tips;
}

void MoveTextTips(HWND dialog, HWND tips) {
  VisitTips(dialog,
            [tips](TTTOOLINFOW* tool) { SendMessageW(tips, TTM_NEWTOOLRECTW, 0, reinterpret_cast<LPARAM>(tool)); });
}

void ProvideTextTip(const DialogState& state, LPARAM lParam) {
  auto* tip = reinterpret_cast<NMTTDISPINFOW*>(lParam);
  const HWND control = reinterpret_cast<HWND>(tip->hdr.idFrom);
  const auto id = static_cast<UINT>(GetDlgCtrlID(control));
  const bool hasOwnTip =
      std::ranges::any_of(state.options.tips, [id](const TooltipEntry& entry) { return entry.id == id; });
  static std::wstring text;  // the tooltip reads it after this function has returned
  text = hasOwnTip ? std::wstring() : TruncatedTextOf(control);
  tip->lpszText = text.data();
}

}  // namespace kv
