#include "gallery/pages.h"

#include <algorithm>

#include "gallery/pages/mesh_view.h"
#include "gallery/resource_ids.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/pages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

// The time of the last statistics, and the number of frames until then.
DWORD shownAt = 0;
int shownFrames = 0;

double FramesPerSecond(int frames) {
  const DWORD now = GetTickCount();
  const double rate = (frames - shownFrames) * 1000.0 / std::max<DWORD>(now - shownAt, 1);
  shownAt = now;
  shownFrames = frames;
  return rate;
}

void ShowStatistics(HWND page) {
  MeshViewStatistics statistics{};
  if (!GetMeshViewStatistics(GetDlgItem(page, IDC_MESH_VIEW), &statistics) || statistics.frames == shownFrames) return;
  kv::SetControlText(page, IDC_MESH_STATISTICS, IDS_MESH_STATISTICS, kv::NumberText(statistics.triangles),
                     kv::NumberText(FramesPerSecond(statistics.frames)), kv::NumberText(statistics.frameMs, 1));
}

void ShowTexts(HWND page) {
  kv::SetControlText(page, IDC_MESH_HINT, IDS_MESH_HINT);
  kv::NameControl(page, IDC_MESH_VIEW, kv::ResourceText(IDS_TITLE_FIRST + PAGE_INDEX_MESH).c_str());
}

void Run(HWND page, bool shown) {
  MeshViewStatistics statistics{};
  if (GetMeshViewStatistics(GetDlgItem(page, IDC_MESH_VIEW), &statistics)) FramesPerSecond(statistics.frames);
  RunMeshView(GetDlgItem(page, IDC_MESH_VIEW), shown);
}

}  // namespace

INT_PTR CALLBACK MeshPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case kv::kLanguageChanged: ShowTexts(page); break;
    case kv::kPageShown: Run(page, wParam != 0); return TRUE;
    case WM_TIMER: ShowStatistics(page); return TRUE;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
