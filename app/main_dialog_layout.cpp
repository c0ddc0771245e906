#include "app/main_dialog_layout.h"

#include <commctrl.h>

#include "app/app_context.h"
#include "app/main_dialog_geometry.h"
#include "framework/dialog_layout.h"
#include "framework/picture.h"

namespace kv {

namespace {

void LayOutStatusBar(const MainControls& controls, SIZE client) {
  const int height = StatusHeight(controls);
  MoveWindow(controls.statusBar, 0, client.cy - height, client.cx, height, TRUE);
  auto edges = StatusPartEdges(client.cx);
  SendMessageA(controls.statusBar, SB_SETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(edges.data()));
  for (int i = 0; i < kStatusPartCount; ++i) {
    const RECT place = StatusButtonPlace(i, client);
    MoveWindow(controls.statusButtons[i], place.left, place.top, place.right - place.left, place.bottom - place.top,
               TRUE);
  }
}

}  // namespace

int ToolbarHeight(const MainControls& controls) {
  RECT place{};
  GetWindowRect(controls.toolbar, &place);
  return place.bottom - place.top;
}

int StatusHeight(const MainControls& controls) {
  return ClientSize(controls.statusBar).cy;
}

void LayOutMainDialog(HWND dialog, AppContext* context) {
  const SIZE client = ClientSize(dialog);
  const MainControls& controls = context->controls;
  RECT lastButton{};
  SendMessageA(controls.toolbar, TB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&lastButton));
  const int toolbarHeight = ToolbarHeight(controls);
  MoveWindow(controls.toolbar, -8, -2, lastButton.right + 4, toolbarHeight, TRUE);
  LayOutStatusBar(controls, client);
  ApplyLayout(dialog, StatusHeight(controls), 0, toolbarHeight, kScaledIdFirst, kScaledIdLast, context->layout,
              &context->fScaleX, &context->fScaleY, FALSE);
  InvalidateRect(dialog, nullptr, TRUE);
}

}  // namespace kv
