#include "gallery/pages/mesh_page.h"

#include <string>

#include "gallery/numbers.h"
#include "gallery/page.h"
#include "gallery/pages/mesh_ids.h"
#include "gallery/pages/mesh_view.h"
#include "gallery/resource_ids.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

constexpr UINT_PTR kFiguresTimer = 1;
constexpr UINT kFiguresMs = 1000;

int picturesBefore = 0;

void ShowFigures(HWND page) {
  MeshViewFigures figures{};
  if (!GetMeshViewFigures(GetDlgItem(page, IDC_MESH_VIEW), &figures)) return;
  const std::wstring text =
      TextWith(IDS_MESH_FIGURES, NumberText(figures.triangles).c_str(),
               NumberText(figures.pictures - picturesBefore).c_str(), NumberText(figures.pictureMs, 1).c_str());
  picturesBefore = figures.pictures;
  SetDlgItemTextW(page, IDC_MESH_FIGURES, text.c_str());
}

void ShowTexts(HWND page) {
  SetPageText(page, IDC_MESH_HINT, IDS_MESH_HINT);
  NameControl(page, IDC_MESH_VIEW, Text(IDS_TITLE_FIRST + PAGE_INDEX_MESH));
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

INT_PTR CALLBACK MeshPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case kTextsChanged: ShowTexts(page); break;
    case kPageShown: Run(page, wParam != 0); return TRUE;
    case WM_TIMER: ShowFigures(page); return TRUE;
    default: break;
  }
  return HandlePageMessage(page, message, wParam, lParam);
}

}  // namespace gallery
