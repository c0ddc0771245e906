#include "app/main_dialog_layout.h"

#include <commctrl.h>

#include "app/main_dialog_geometry.h"
#include "app/resource_ids.h"
#include "framework/picture.h"

namespace kv {

namespace {

void LayOutStatusBar(HWND dialog, SIZE client) {
  HWND bar = GetDlgItem(dialog, IDC_STATUS_BAR);
  const int height = StatusHeight(dialog);
  MoveWindow(bar, 0, client.cy - height, client.cx, height, TRUE);
  auto edges = StatusPartEdges(client.cx);
  SendMessageA(bar, SB_SETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(edges.data()));
  for (int i = 0; i < kStatusPartCount; ++i) {
    const RECT place = StatusButtonPlace(i, client);
    MoveWindow(GetDlgItem(dialog, IDC_PORT + i), place.left, place.top, place.right - place.left,
               place.bottom - place.top, TRUE);
  }
}

}  // namespace

int ToolbarHeight(HWND dialog) {
  RECT place{};
  GetWindowRect(GetDlgItem(dialog, IDC_TOOLBAR), &place);
  return place.bottom - place.top;
}

int StatusHeight(HWND dialog) {
  return ClientSize(GetDlgItem(dialog, IDC_STATUS_BAR)).cy;
}

void LayOutMainDialog(HWND dialog, AppContext* context) {
  const SIZE client = ClientSize(dialog);
  HWND toolbar = GetDlgItem(dialog, IDC_TOOLBAR);
  RECT lastButton{};
  SendMessageA(toolbar, TB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&lastButton));
  const int toolbarHeight = ToolbarHeight(dialog);
  MoveWindow(toolbar, -8, -2, lastButton.right + 4, toolbarHeight, TRUE);
  LayOutStatusBar(dialog, client);
  ApplyLayout(dialog, StatusHeight(dialog), 0, toolbarHeight, kScaledIdFirst, kScaledIdLast, context->layout,
              &context->fScaleX, &context->fScaleY, FALSE);
  InvalidateRect(dialog, nullptr, TRUE);
}

}  // namespace kv
