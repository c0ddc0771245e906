#include "gallery/pages/overview_page.h"

#include "gallery/page.h"
#include "gallery/resource_ids.h"

namespace gallery {

INT_PTR CALLBACK OverviewPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case kTextsChanged: SetPageText(page, IDC_PAGE_FIRST, IDS_PAGE_FIRST); break;
    default: break;
  }
  return HandlePageMessage(page, message, wParam, lParam);
}

}  // namespace gallery
