#include "toolkit/pages.h"

#include <memory>

#include "toolkit/dialog_state.h"
#include "toolkit/scaled_dialog.h"

namespace kv {

namespace {

void SetShown(HWND page, bool shown) {
  ShowWindow(page, shown ? SW_SHOW : SW_HIDE);
  SendMessageW(page, kPageShown, shown, 0);
}

}  // namespace

void PlacePage(HWND parent, const DialogRecord& record) {
  if (!record.shownPage) return;
  RECT place{};
  GetWindowRect(GetDlgItem(parent, record.pagePlace), &place);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
  SetWindowPos(record.shownPage, HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

HWND ShowPage(HWND parent, int placeId, const ScaledDialog& page) {
  const std::shared_ptr<DialogRecord> record = DialogRecordOf(parent);
  if (!record) return nullptr;
  HWND window = PageWindow(parent, page), former = record->shownPage;
  if (window && window == former) return window;
  if (!window) {
    window = CreateScaledDialog(parent, page, DialogKind::kPage);
    if (!window) return nullptr;
    record->pages.push_back({&page, window});
  }
  // A hidden page must not keep the focus.
  const bool hadFocus = former && IsChild(former, GetFocus());
  if (hadFocus) SetFocus(parent);
  if (former) SetShown(former, false);
  record->shownPage = window;
  record->pagePlace = placeId;
  PlacePage(parent, *record);
  SetShown(window, true);
  if (hadFocus && !FocusFirstControl(window)) FocusFirstControl(parent);
  return window;
}

HWND ShownPage(HWND parent) {
  const std::shared_ptr<DialogRecord> record = DialogRecordOf(parent);
  return record ? record->shownPage : nullptr;
}

HWND PageWindow(HWND parent, const ScaledDialog& page) {
  const std::shared_ptr<DialogRecord> record = DialogRecordOf(parent);
  if (!record) return nullptr;
  for (const DialogPage& each : record->pages) {
    if (each.what == &page && IsWindow(each.window)) return each.window;
  }
  return nullptr;
}

}  // namespace kv
