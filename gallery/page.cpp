#include "gallery/page.h"

#include "framework/dialog_layout.h"
#include "framework/dialog_texts.h"
#include "framework/guards.h"
#include "framework/modules.h"
#include "framework/painting.h"
#include "gallery/drawing.h"
#include "gallery/pages.h"
#include "gallery/resource_ids.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

constexpr char kLayoutProperty[] = "kvPageLayout";
constexpr size_t kMaxControls = 256;

struct PageLayout {
  kv::LayoutSlot slots[1 + kMaxControls];
};

PageLayout* LayoutOf(HWND page) {
  return static_cast<PageLayout*>(GetPropA(page, kLayoutProperty));
}

INT_PTR OnInit(HWND page) {
  auto* layout = new PageLayout{};
  kv::CaptureLayout(page, layout->slots, IDC_PAGE_FIRST, IDC_PAGE_LAST);
  SetPropA(page, kLayoutProperty, layout);
  SendMessageA(page, kTextsChanged, 0, 0);
  return FALSE;
}

INT_PTR OnSize(HWND page) {
  if (PageLayout* layout = LayoutOf(page)) {
    kv::ApplyLayout(page, 0, 0, 0, IDC_PAGE_FIRST, IDC_PAGE_LAST, layout->slots, nullptr, nullptr, FALSE);
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
  return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
}

void TranslateControls(HWND page) {
  for (HWND control = GetWindow(page, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
    const std::wstring text = Text(TEXT_OF(GetDlgCtrlID(control)));
    if (!text.empty()) SetWindowTextW(control, text.c_str());
  }
}

INT_PTR OnTextsChanged(HWND page) {
  if (const Page* description = PageOf(page)) {
    // English first: it shows where the language lacks a text, also after another language was shown.
    kv::SetDialogTexts(page, kv::modules.application, description->dialogTemplate);
    TranslateControls(page);
  }
  return TRUE;
}

INT_PTR OnDestroyed(HWND page) {
  delete static_cast<PageLayout*>(RemovePropA(page, kLayoutProperty));
  return TRUE;
}

}  // namespace

INT_PTR HandlePageMessage(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case WM_SIZE: return OnSize(page);
    case WM_PAINT: return OnPaint(page);
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: return OnStaticColor(reinterpret_cast<HDC>(wParam));
    case kTextsChanged: return OnTextsChanged(page);
    case WM_NCDESTROY: return OnDestroyed(page);
    default: return FALSE;
  }
}

COLORREF PageColor() {
  return GetSysColor(COLOR_BTNFACE);
}

void SetListFont(HWND page, int controlId) {
  static const HFONT font = MakeFont(-13, FW_NORMAL).Release();
  SendDlgItemMessageW(page, controlId, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

void SetPageText(HWND page, int controlId, UINT textId) {
  SetDlgItemTextW(page, controlId, Text(textId).c_str());
}

}  // namespace gallery
