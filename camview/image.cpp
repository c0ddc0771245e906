#include "camview/image.h"

#include <windows.h>

#include <string>
#include <utility>

#include "camview/commands.h"
#include "camview/resource_ids.h"
#include "camview/settings.h"
#include "camview/status_line.h"
#include "camview/window.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/error_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/png_file.h"

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

}  // namespace

void CopyImage(View& view) {
  kv::Surface image;
  const bool copied = DrawImage(view.window, &image) &&
                      kv::CopyBitmapToClipboard(view.window, image.bitmap(), image.size(), image.size());
  view.display.Say(copied ? StatusMark::kGood : StatusMark::kError,
                   kv::ResourceText(copied ? IDS_COPIED : IDS_NOT_COPIED));
}

void SaveImage(View& view) {
  kv::Surface image;
  const bool drawn = DrawImage(view.window, &image);  // before the file dialog
  const std::wstring whole = ProposedPath(view.source), name = kv::FileNameOf(whole.c_str());
  std::wstring path = FolderOf(Setting::kImages) + (name.empty() ? L"camview" : name) + L".png";
  if (!AskTarget(view, IDS_IMAGE_TITLE, &path)) return;
  StoreFolder(Setting::kImages, path);
  const wchar_t* file = kv::FileNameOf(path.c_str());
  if (drawn && kv::SaveBitmapAsPng(image.bitmap(), path.c_str()))
    return view.display.Say(StatusMark::kGood, kv::TextWith(IDS_SAVED, file));
  const std::wstring reason = kv::ErrorText();
  view.display.Say(StatusMark::kError, kv::TextWith(IDS_NOT_SAVED, file) + L" " + reason);
}

}  // namespace camview
