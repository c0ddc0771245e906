#include "toolkit/scaled_dialog.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "framework/dialog.h"
#include "framework/dialog_layout.h"
#include "framework/guards.h"
#include "framework/modules.h"
#include "framework/tool_tips.h"
#include "framework/window_position.h"
#include "lists/extended_list.h"
#include "toolkit/dialog_record.h"
#include "toolkit/switch_language.h"

namespace kv {

namespace {

constexpr wchar_t kRecordProperty[] = L"kvScaledDialog";

// What a dialog is opened with; lives until WM_INITDIALOG has been handled.
struct Opening {
  const ScaledDialog& what;
  bool isModal;
};

INT_PTR AskProcedure(HWND dialog, const DialogRecord& record, UINT message, WPARAM wParam, LPARAM lParam) {
  return record.what.procedure ? record.what.procedure(dialog, message, wParam, lParam) : FALSE;
}

// Windows of the dialog class speak the code page, where a caption in another script ends as question marks: what
// concerns the caption goes past the class.
LRESULT CALLBACK WideCaptionProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  DialogRecord* record = DialogRecordOf(dialog);
  if (!record) return DefWindowProcW(dialog, message, wParam, lParam);
  switch (message) {
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH: return DefWindowProcW(dialog, message, wParam, lParam);
    default: break;
  }
  const LRESULT result = CallWindowProcW(record->classProcedure, dialog, message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    RemovePropW(dialog, kRecordProperty);
    delete record;
  }
  return result;
}

// ---- Layout ---------------------------------------------------------------------------------------------------------

template <class Visit>
void VisitChildren(HWND dialog, Visit visit) {
  for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) visit(child);
}

HFONT FontOf(HWND control) {
  return reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0));
}

// Scaling deletes the fonts that it replaces, but controls share the template's font, and some keep it: lists, controls
// outside the range, labels that are still empty. So each gets a copy of its own first.
void GiveEachItsFont(HWND dialog) {
  VisitChildren(dialog, [](HWND child) {
    LOGFONTW description{};
    if (!GetObjectW(FontOf(child), sizeof(description), &description)) return;
    if (HFONT copy = CreateFontIndirectW(&description)) {
      SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(copy), FALSE);
    }
  });
}

void Capture(HWND dialog, DialogRecord& record) {
  size_t children = 0;
  VisitChildren(dialog, [&](HWND) { ++children; });
  record.slots.resize(children + 1);
  CaptureLayout(dialog, record.slots.data(), record.what.lowestId, record.what.highestId);
}

void PlaceControls(HWND dialog, DialogRecord& record) {
  if (record.slots.empty()) return;
  const ScaledDialog& what = record.what;
  ApplyLayout(dialog, what.bottomMargin, what.leftMargin, what.topMargin, what.lowestId, what.highestId,
              record.slots.data(), &record.scale.x, &record.scale.y, FALSE);
  RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

SIZE SizeOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return {place.right - place.left, place.bottom - place.top};
}

// A remembered place may be too small, or on a screen that is gone.
void KeepUsable(HWND dialog, SIZE smallest) {
  const SIZE size = SizeOf(dialog);
  const SIZE wanted{std::max(size.cx, smallest.cx), std::max(size.cy, smallest.cy)};
  RECT place{};
  GetWindowRect(dialog, &place);
  if (!MonitorFromWindow(dialog, MONITOR_DEFAULTTONULL)) {
    place = CentredPosition({GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}, wanted);
  } else if (wanted.cx == size.cx && wanted.cy == size.cy) {
    return;
  }
  SetWindowPos(dialog, nullptr, place.left, place.top, wanted.cx, wanted.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

DialogRecord* MakeRecord(HWND dialog, const Opening& opening) {
  auto* record = new DialogRecord{};
  record->what = opening.what;
  record->isModal = opening.isModal;
  if (record->what.background != kFaceBackground)
    record->background = OwnedBrush(CreateSolidBrush(record->what.background));
  SetPropW(dialog, kRecordProperty, record);
  record->classProcedure =
      reinterpret_cast<WNDPROC>(SetWindowLongW(dialog, GWL_WNDPROC, reinterpret_cast<LONG>(WideCaptionProcedure)));
  return record;
}

INT_PTR OnInit(HWND dialog, const Opening& opening) {
  DialogRecord* record = MakeRecord(dialog, opening);
  const ScaledDialog& what = record->what;
  const SIZE asInTemplate = SizeOf(dialog);
  record->smallest = {what.smallest.cx ? what.smallest.cx : asInTemplate.cx,
                      what.smallest.cy ? what.smallest.cy : asInTemplate.cy};
  SetTextsOfLanguage(dialog, what.templateName);
  const INT_PTR result =
      AskProcedure(dialog, *record, WM_INITDIALOG, reinterpret_cast<WPARAM>(GetFocus()), what.parameter);
  // The procedure may have ended the dialog.
  if (!DialogRecordOf(dialog)) return result;
  ShowLanguage(dialog, *record);
  GiveEachItsFont(dialog);
  Capture(dialog, *record);
  if (!record->isModal) ModelessDialogs(dialog, nullptr, kModelessAdd);
  if (what.positionName) WindowPosition(dialog, what.positionName, kPositionRestore);
  KeepUsable(dialog, record->smallest);
  PlaceControls(dialog, *record);
  return result;
}

void OnPaint(HWND dialog, const DialogRecord& record) {
  const PaintScope paint(dialog);
  RECT client{};
  GetClientRect(dialog, &client);
  FillRect(paint.dc(), &client, record.background ? record.background : GetSysColorBrush(COLOR_BTNFACE));
}

// Texts in black or white, whichever reads better on the background.
INT_PTR OnControlColor(const DialogRecord& record, HDC dc) {
  if (!record.background) return FALSE;
  const COLORREF color = record.what.background;
  const int lightness = 30 * GetRValue(color) + 59 * GetGValue(color) + 11 * GetBValue(color);
  SetTextColor(dc, lightness < 100 * 128 ? RGB(255, 255, 255) : RGB(0, 0, 0));
  SetBkColor(dc, color);
  return reinterpret_cast<INT_PTR>(static_cast<HBRUSH>(record.background));
}

INT_PTR OnSizing(HWND dialog, const DialogRecord& record, WPARAM edge, LPARAM place) {
  const BOOL changed =
      LimitSizing(static_cast<UINT>(edge), reinterpret_cast<RECT*>(place), record.smallest.cx, record.smallest.cy);
  SetWindowLongA(dialog, DWL_MSGRESULT, changed);
  return TRUE;
}

// Rows of an extended list grow with the dialog.
INT_PTR OnMeasure(HWND dialog, const DialogRecord& record, MEASUREITEMSTRUCT* request) {
  char name[ARRAYSIZE(kExtendedListClass) + 1] = "";
  GetClassNameA(GetDlgItem(dialog, static_cast<int>(request->CtlID)), name, ARRAYSIZE(name));
  if (lstrcmpiA(name, kExtendedListClass) != 0) return FALSE;
  request->itemHeight = std::max(1u, static_cast<UINT>(static_cast<float>(request->itemHeight) * record.scale.y));
  return TRUE;
}

void End(HWND dialog, const DialogRecord& record, INT_PTR result) {
  if (record.isModal) {
    EndDialog(dialog, result);
  } else {
    DestroyWindow(dialog);
  }
}

INT_PTR OnCommand(HWND dialog, const DialogRecord& record, WORD id) {
  if (!record.isModal || (id != IDOK && id != IDCANCEL)) return FALSE;
  End(dialog, record, id);
  return TRUE;
}

// What the dialog's own procedure has left.
INT_PTR HandleTheRest(HWND dialog, DialogRecord& record, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: OnPaint(dialog, record); return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: return OnControlColor(record, reinterpret_cast<HDC>(wParam));
    case WM_SYSCOLORCHANGE:  // comes to top-level windows only
      VisitChildren(dialog, [&](HWND child) { SendMessageA(child, message, wParam, lParam); });
      return FALSE;
    case WM_SIZING: return OnSizing(dialog, record, wParam, lParam);
    case WM_MEASUREITEM: return OnMeasure(dialog, record, reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
    case WM_COMMAND: return OnCommand(dialog, record, LOWORD(wParam));
    case WM_CLOSE: End(dialog, record, IDCANCEL); return TRUE;
    default: return FALSE;
  }
}

void OnDestroy(HWND dialog, DialogRecord& record) {
  VisitChildren(dialog, [&](HWND child) { record.fonts.emplace_back(FontOf(child)); });
  if (record.what.positionName) WindowPosition(dialog, record.what.positionName, kPositionSave);
  if (!record.isModal) ModelessDialogs(dialog, nullptr, kModelessRemove);
}

INT_PTR CALLBACK ScaledDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) return OnInit(dialog, *reinterpret_cast<const Opening*>(lParam));
  DialogRecord* record = DialogRecordOf(dialog);
  if (!record) return FALSE;
  if (message == WM_SIZE && wParam != SIZE_MINIMIZED) PlaceControls(dialog, *record);
  if (message == WM_DESTROY) OnDestroy(dialog, *record);
  const INT_PTR result = AskProcedure(dialog, *record, message, wParam, lParam);
  record = DialogRecordOf(dialog);
  if (result || !record) return result;
  return HandleTheRest(dialog, *record, message, wParam, lParam);
}

// Texts that are string resources are looked up here, so that English stands in for what the language lacks.
void MakeToolTips(HWND dialog, DialogRecord& record) {
  if (record.tips) DestroyWindow(record.tips);
  record.tips = nullptr;
  std::vector<ToolTipEntry> entries(record.what.tips.begin(), record.what.tips.end());
  std::vector<std::wstring> texts(entries.size());
  for (size_t i = 0; i < entries.size(); ++i) {
    if (!IS_INTRESOURCE(entries[i].text)) continue;
    texts[i] = ResourceText(entries[i].text ? LOWORD(entries[i].text) : entries[i].id);
    entries[i].text = texts[i].c_str();
  }
  if (!entries.empty()) {
    record.tips = CreateToolTips(modules.resources, dialog, entries.data(), static_cast<int>(entries.size()));
  }
}

}  // namespace

DialogRecord* DialogRecordOf(HWND dialog) {
  return static_cast<DialogRecord*>(GetPropW(dialog, kRecordProperty));
}

void ShowLanguage(HWND dialog, DialogRecord& record) {
  SetTextsOfLanguage(dialog, record.what.templateName);
  MakeToolTips(dialog, record);
  AskProcedure(dialog, record, kLanguageShown, static_cast<WPARAM>(CurrentLanguage()), 0);
}

HWND OpenDialog(HWND owner, const ScaledDialog& dialog) {
  const Opening opening{dialog, false};
  HWND window = CreateDialogParamW(modules.application, dialog.templateName, owner, ScaledDialogProcedure,
                                   reinterpret_cast<LPARAM>(&opening));
  if (window) ShowWindow(window, SW_SHOW);
  return window;
}

INT_PTR AskByDialog(HWND owner, const ScaledDialog& dialog) {
  const Opening opening{dialog, true};
  return DialogBoxParamW(modules.application, dialog.templateName, owner, ScaledDialogProcedure,
                         reinterpret_cast<LPARAM>(&opening));
}

DialogScale ScaleOf(HWND dialog) {
  const DialogRecord* record = DialogRecordOf(dialog);
  return record ? record->scale : DialogScale{1, 1};
}

}  // namespace kv
