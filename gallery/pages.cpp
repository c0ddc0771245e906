#include "gallery/pages.h"

#include <array>
#include <cstring>

#include "framework/modules.h"
#include "gallery/pages/chart_page.h"
#include "gallery/pages/dialog_services_page.h"
#include "gallery/pages/files_page.h"
#include "gallery/pages/language_page.h"
#include "gallery/pages/notices_page.h"
#include "gallery/pages/overview_page.h"

namespace gallery {

namespace {

// The order is that of the texts in resource_ids.h.
constexpr Page kPages[] = {
    {"overview", L"PAGE_OVERVIEW", OverviewPageProcedure},
    {"dialog-services", L"PAGE_DIALOG_SERVICES", DialogServicesPageProcedure},
    {"chart", L"PAGE_CHART", ChartPageProcedure},
    {"language", L"PAGE_LANGUAGE", LanguagePageProcedure},
    {"files", L"PAGE_FILES", FilesPageProcedure},
    {"notices", L"PAGE_NOTICES", NoticesPageProcedure},
};

std::array<HWND, std::size(kPages)> windows;
// The page whose window is being created: it is asked for before the handle is known.
const Page* pageInCreation = nullptr;

}  // namespace

std::span<const Page> AllPages() {
  return kPages;
}

int PageIndex(const char* name) {
  for (size_t i = 0; i < std::size(kPages); ++i) {
    if (std::strcmp(kPages[i].name, name) == 0) return static_cast<int>(i);
  }
  return -1;
}

HWND PageWindow(HWND frame, int index) {
  HWND& window = windows[index];
  if (!window) {
    pageInCreation = &kPages[index];
    window =
        CreateDialogParamW(kv::modules.application, kPages[index].dialogTemplate, frame, kPages[index].procedure, 0);
    pageInCreation = nullptr;
  }
  return window;
}

HWND ExistingPageWindow(int index) {
  return windows[index];
}

const Page* PageOf(HWND window) {
  for (size_t i = 0; i < std::size(kPages); ++i) {
    if (windows[i] == window) return &kPages[i];
  }
  return pageInCreation;
}

}  // namespace gallery
