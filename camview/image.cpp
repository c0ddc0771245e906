#include "camview/image.h"

#include <windows.h>

#include <utility>

#include "camview/resource_ids.h"
#include "kv/framework/canvas.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"

namespace camview {

namespace {

constexpr int kParts[] = {IDC_FIELD,       IDC_SCATTER,     IDC_CHART_X,   IDC_CHART_Y,
                          IDC_HISTOGRAM_X, IDC_HISTOGRAM_Y, IDC_INTERVALS, IDC_TIMELINE};
constexpr int kMargin = 8;

bool IsShown(HWND window, int id) {
  return GetWindowLongW(GetDlgItem(window, id), GWL_STYLE) & WS_VISIBLE;
}

RECT RectOf(HWND window, int id) {
  RECT rect{};
  GetWindowRect(GetDlgItem(window, id), &rect);
  MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&rect), 2);
  // In a mirrored window left and right are exchanged.
  if (rect.left > rect.right) std::swap(rect.left, rect.right);
  return rect;
}

}  // namespace

bool DrawImage(HWND window, kv::Surface* image) {
  RECT all{};
  for (const int id : kParts) {
    const RECT rect = RectOf(window, id), before = all;
    UnionRect(&all, &before, &rect);
  }
  InflateRect(&all, kMargin, kMargin);
  if (!image->Create({all.right - all.left, all.bottom - all.top})) return false;
  const kv::MemoryDc dc(nullptr);
  const kv::SelectedObject selected(dc, image->bitmap());
  kv::FillSolid(dc, {0, 0, image->size().cx, image->size().cy}, GetSysColor(COLOR_BTNFACE));
  for (const int id : kParts) {
    if (!IsShown(window, id)) continue;
    const RECT rect = RectOf(window, id);
    SetViewportOrgEx(dc, rect.left - all.left, rect.top - all.top, nullptr);
    SendDlgItemMessageW(window, id, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(static_cast<HDC>(dc)), PRF_CLIENT);
  }
  GdiFlush();
  return true;
}

}  // namespace camview
