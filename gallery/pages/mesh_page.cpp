#include "gallery/pages.h"

#include <string>

#include "gallery/pages/mesh_view.h"
#include "gallery/resource_ids.h"
#include "toolkit/languages.h"
#include "toolkit/locale_text.h"
#include "toolkit/pages.h"
#include "toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr UINT_PTR kFiguresTimer = 1;
constexpr UINT kFiguresMs = 1000;

int picturesBefore = 0;

void ShowFigures(HWND page) {
  MeshViewFigures figures{};
  if (!GetMeshViewFigures(GetDlgItem(page, IDC_MESH_VIEW), &figures)) return;
  const std::wstring text =
      TextWith(IDS_MESH_FIGURES, kv::NumberText(figures.triangles).c_str(),
               kv::NumberText(figures.pictures - picturesBefore).c_str(), kv::NumberText(figures.pictureMs, 1).c_str());
  picturesBefore = figures.pictures;
  SetDlgItemTextW(page, IDC_MESH_FIGURES, text.c_str());
}

void ShowTexts(HWND page) {
  SetPageText(page, IDC_MESH_HINT, IDS_MESH_HINT);
  kv::NameControl(page, IDC_MESH_VIEW, kv::ResourceText(IDS_TITLE_FIRST + PAGE_INDEX_MESH).c_str());
}

void Run(HWND page, bool shown) {
  RunMeshView(GetDlgItem(page, IDC_MESH_VIEW), shown);
  if (shown) {
    SetTimer(page, kFiguresTimer, kFiguresMs, nullptr);
  } else {
    KillTimer(page, kFiguresTimer);
  }
}

}  // namespace

INT_PTR CALLBACK MeshPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case kv::kLanguageChanged: ShowTexts(page); break;
    case kv::kPageShown: Run(page, wParam != 0); return TRUE;
    case WM_TIMER: ShowFigures(page); return TRUE;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
