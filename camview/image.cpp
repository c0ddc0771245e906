// An image of field, charts and timeline, for the clipboard and for a file.
#include <windows.h>

#include <cstddef>
#include <string>
#include <utility>

#include "camera/text.h"
#include "camview/resource_ids.h"
#include "camview/settings.h"
#include "camview/status_line.h"
#include "camview/view.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/ask_path.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/png_file.h"

namespace camview {

namespace {

constexpr int kParts[] = {IDC_FIELD, IDC_CHART_X, IDC_CHART_Y, IDC_TIMELINE};
constexpr int kMargin = 8;

RECT RectOf(HWND window, int id) {
  RECT rect{};
  GetWindowRect(GetDlgItem(window, id), &rect);
  MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&rect), 2);
  // In a mirrored window left and right are exchanged.
  if (rect.left > rect.right) std::swap(rect.left, rect.right);
  return rect;
}

// Draws the parts at their positions in the window. Returns false when allocation fails.
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
  ShowLine(view, copied ? StatusMark::kGood : StatusMark::kError,
           kv::ResourceText(copied ? IDS_COPIED : IDS_NOT_COPIED));
}

void SaveImage(View& view) {
  kv::Surface image;
  const bool drawn = DrawImage(view.window, &image);  // before the file dialog
  const std::wstring source =
      view.live ? L"COM" + std::to_wstring(view.status.port) : camera::Wide(view.recording.path);
  std::wstring name = kv::FileNameOf(source.c_str());
  name.erase(static_cast<size_t>(kv::ExtensionOf(name.c_str()) - name.c_str()));
  std::wstring path = FolderOf(Setting::kImages) + (name.empty() ? L"camview" : name) + L".png";
  if (!kv::AskSavePath(view.window, kv::ResourceText(IDS_IMAGE_TITLE).c_str(), &path)) return;
  RememberFolder(Setting::kImages, path);
  const bool saved = drawn && kv::SaveBitmapAsPng(image.bitmap(), path.c_str());
  ShowLine(view, saved ? StatusMark::kGood : StatusMark::kError,
           TextWith(saved ? IDS_SAVED : IDS_NOT_SAVED, kv::FileNameOf(path.c_str())));
}

}  // namespace camview
