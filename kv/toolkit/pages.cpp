#include "kv/toolkit/pages.h"

#include <memory>

#include "kv/toolkit/dialog_state.h"
#include "kv/toolkit/scaled_dialog.h"

namespace kv {

namespace {

void SetShown(HWND page, bool shown) {
  ShowWindow(page, shown ? SW_SHOW : SW_HIDE);
  SendMessageW(page, kPageShown, shown, 0);
  RunTicks(page, shown);
}

}  // namespace

void PlacePage(HWND parent, const DialogState& state) {
  if (!state.shownPage) return;
  RECT place{};
  GetWindowRect(GetDlgItem(parent, state.placeholderId), &place);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
  SetWindowPos(state.shownPage, HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

HWND ShowPage(HWND parent, int placeholderId, const ScaledDialog& page) {
  const std::shared_ptr<DialogState> state = DialogStateOf(parent);
  if (!state) return nullptr;
  HWND window = PageWindow(parent, page), former = state->shownPage;
  if (window && window == former) return window;
  if (!window) {
    window = CreateScaledDialog(parent, page, DialogKind::kPage);
    if (!window) return nullptr;
    state->pages.push_back({&page, window});
  }
  // A hidden page must not have the focus. A minimized parent cannot take it.
  const bool hadFocus = former && IsChild(former, GetFocus());
  if (hadFocus && !SetFocus(parent)) SetFocus(nullptr);
  if (former) SetShown(former, false);
  state->shownPage = window;
  state->placeholderId = placeholderId;
  PlacePage(parent, *state);
  SetShown(window, true);
  if (hadFocus && !FocusFirstControl(window)) FocusFirstControl(parent);
  return window;
}

HWND ShownPage(HWND parent) {
  const std::shared_ptr<DialogState> state = DialogStateOf(parent);
  return state ? state->shownPage : nullptr;
}

HWND PageWindow(HWND parent, const ScaledDialog& page) {
  const std::shared_ptr<DialogState> state = DialogStateOf(parent);
  if (!state) return nullptr;
  for (const DialogPage& each : state->pages) {
    if (each.options == &page && IsWindow(each.window)) return each.window;
  }
  return nullptr;
}

}  // namespace kv
