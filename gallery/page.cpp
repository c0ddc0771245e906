#include "gallery/page.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "framework/control_kind.h"
#include "framework/dialog_layout.h"
#include "framework/dialog_texts.h"
#include "framework/guards.h"
#include "framework/modules.h"
#include "framework/painting.h"
#include "framework/picture.h"
#include "gallery/drawing.h"
#include "gallery/languages.h"
#include "gallery/mirroring.h"
#include "gallery/pages.h"
#include "gallery/resource_ids.h"
#include "gallery/text_fit.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

constexpr char kLayoutProperty[] = "kvPageLayout";
constexpr size_t kMaxControls = 256;

// Lists, and edit controls of many lines, get no font that scales from the framework.
constexpr int kListTextPx = 14;

struct PageLayout {
  kv::LayoutSlot slots[1 + kMaxControls];
  kv::OwnedFont listFont;
  HWND textTips;
};

PageLayout* LayoutOf(HWND page) {
  return static_cast<PageLayout*>(GetPropA(page, kLayoutProperty));
}

INT_PTR OnInit(HWND page) {
  auto* layout = new PageLayout{};
  kv::CaptureLayout(page, layout->slots, IDC_PAGE_FIRST, IDC_PAGE_LAST);
  layout->textTips = CreateTextTips(page);
  SetPropA(page, kLayoutProperty, layout);
  SendMessageA(page, kTextsChanged, 0, 0);
  return FALSE;
}

bool IsClass(HWND control, const char* name) {
  char className[32] = "";
  GetClassNameA(control, className, sizeof(className));
  return lstrcmpiA(className, name) == 0;
}

// Calls visit(control) for all controls of the page.
template <class Visit>
void VisitControls(HWND page, Visit visit) {
  for (HWND control = GetWindow(page, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) visit(control);
}

// Scaling passes over a label without a text, which would then show its next text in the font of its template. A line
// or a rectangle must not get one: it keeps no font, so the pass would make it one more each time.
void FillEmptyLabel(HWND control) {
  const bool isLabel = kv::ClassifyControl(control) == kv::kControlStatic &&
                       (GetWindowLongW(control, GWL_STYLE) & SS_TYPEMASK) <= SS_RIGHT;
  if (isLabel && GetWindowTextLengthW(control) == 0) SetWindowTextW(control, L" ");
}

bool TakesListFont(HWND control) {
  switch (kv::ClassifyControl(control)) {
    case kv::kControlListBox: return !(GetWindowLongW(control, GWL_STYLE) & LBS_OWNERDRAWFIXED);
    case kv::kControlEdit: return GetWindowLongW(control, GWL_STYLE) & ES_MULTILINE && !IsClass(control, "RICHEDIT");
    default: return IsClass(control, WC_LISTVIEWA);
  }
}

void ScaleLists(HWND page, PageLayout* layout) {
  const LONG height = kv::ClientSize(page).cy, designHeight = layout->slots[0].height;
  const int textPx = MulDiv(kListTextPx, height, std::max(designHeight, 1L));
  kv::OwnedFont font = MakeFont(std::max(textPx, 1), FW_NORMAL);
  VisitControls(page, [&font, textPx](HWND control) {
    if (!TakesListFont(control)) return;
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(static_cast<HFONT>(font)), FALSE);
    if (kv::ClassifyControl(control) == kv::kControlListBox) {
      SendMessageW(control, LB_SETITEMHEIGHT, 0, std::max(textPx + 2, 1));
    }
  });
  layout->listFont = std::move(font);
}

INT_PTR OnSize(HWND page) {
  if (PageLayout* layout = LayoutOf(page)) {
    VisitControls(page, FillEmptyLabel);
    kv::ApplyLayout(page, 0, 0, 0, IDC_PAGE_FIRST, IDC_PAGE_LAST, layout->slots, nullptr, nullptr, FALSE);
    ScaleLists(page, layout);
    if (IsRightToLeft()) MendMirroredPage(page);
    MoveTextTips(page, layout->textTips);
    // The page clips its children, so they have to be named: each has been moved without being painted.
    RedrawWindow(page, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
  }
  return TRUE;
}

INT_PTR OnPaint(HWND page) {
  const kv::PaintScope paint(page);
  RECT client{};
  GetClientRect(page, &client);
  kv::FillSolid(paint.dc(), client, PageColor());
  return TRUE;
}

INT_PTR OnStaticColor(HDC dc) {
  SetBkColor(dc, PageColor());
  SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
  return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
}

INT_PTR OnColorsChanged(HWND page) {
  VisitControls(page, [](HWND control) { SendMessageW(control, WM_SYSCOLORCHANGE, 0, 0); });
  return TRUE;
}

INT_PTR OnTextsChanged(HWND page) {
  if (const Page* description = PageOf(page)) {
    // English first: it shows where the language lacks a text, also after another language was shown.
    kv::SetDialogTexts(page, kv::modules.application, description->dialogTemplate);
    VisitControls(page, [](HWND control) {
      const std::wstring text = Text(TEXT_OF(GetDlgCtrlID(control)));
      if (!text.empty()) SetWindowTextW(control, text.c_str());
    });
  }
  if (MirrorPage(page)) OnSize(page);
  return TRUE;
}

INT_PTR OnNotifyFormat(HWND page) {
  // Tips would ask for 8-bit text: the class of the page is an 8-bit one.
  SetWindowLongW(page, DWL_MSGRESULT, NFR_UNICODE);
  return TRUE;
}

INT_PTR OnDestroyed(HWND page) {
  delete static_cast<PageLayout*>(RemovePropA(page, kLayoutProperty));
  return TRUE;
}

}  // namespace

INT_PTR HandlePageMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case WM_SIZE: return OnSize(page);
    case WM_PAINT: return OnPaint(page);
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: return OnStaticColor(reinterpret_cast<HDC>(wParam));
    case WM_SYSCOLORCHANGE: return OnColorsChanged(page);
    case WM_NOTIFYFORMAT: return OnNotifyFormat(page);
    case WM_NOTIFY: return NotificationOf(lParam).code == TTN_GETDISPINFOW && AnswerTextTip(page, lParam);
    case kTextsChanged: return OnTextsChanged(page);
    case WM_NCDESTROY: return OnDestroyed(page);
    default: return FALSE;
  }
}

COLORREF PageColor() {
  return GetSysColor(COLOR_BTNFACE);
}

void EnableControl(HWND page, int controlId, bool enabled) {
  const HWND control = GetDlgItem(page, controlId);
  if (!enabled && GetFocus() == control) SetFocus(GetNextDlgTabItem(page, control, FALSE));
  EnableWindow(control, enabled);
}

void NameControl(HWND page, int controlId, const std::wstring& name) {
  DefWindowProcW(GetDlgItem(page, controlId), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
}

NMHDR NotificationOf(LPARAM lParam) {
  NMHDR head;
  std::memcpy(&head, reinterpret_cast<const void*>(lParam), sizeof(head));
  return head;
}

void SetPageText(HWND page, int controlId, UINT textId) {
  SetDlgItemTextW(page, controlId, Text(textId).c_str());
}

}  // namespace gallery
