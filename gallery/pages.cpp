#include "gallery/pages.h"

#include <array>
#include <cstring>
#include <span>
#include <string>

#include "framework/modules.h"
#include "gallery/page.h"
#include "gallery/pages/bitmap_page.h"
#include "gallery/pages/capture_page.h"
#include "gallery/pages/chart_page.h"
#include "gallery/pages/dde_page.h"
#include "gallery/pages/dialog_services_page.h"
#include "gallery/pages/files_page.h"
#include "gallery/pages/flight_page.h"
#include "gallery/pages/instruments_page.h"
#include "gallery/pages/language_page.h"
#include "gallery/pages/list_page.h"
#include "gallery/pages/mesh_page.h"
#include "gallery/pages/nmea_page.h"
#include "gallery/pages/notices_page.h"
#include "gallery/pages/overview_page.h"

namespace gallery {

namespace {

// In the order of PAGE_INDEX_... in resource_ids.h.
constexpr Page kPages[] = {
    {"overview", L"PAGE_OVERVIEW", OverviewPageProcedure},
    {"dialog-services", L"PAGE_DIALOG_SERVICES", DialogServicesPageProcedure},
    {"chart", L"PAGE_CHART", ChartPageProcedure},
    {"bitmap", L"PAGE_BITMAP", BitmapPageProcedure},
    {"instruments", L"PAGE_INSTRUMENTS", InstrumentsPageProcedure},
    {"list", L"PAGE_LIST", ListPageProcedure},
    {"mesh", L"PAGE_MESH", MeshPageProcedure},
    {"capture", L"PAGE_CAPTURE", CapturePageProcedure},
    {"flight", L"PAGE_FLIGHT", FlightPageProcedure},
    {"nmea", L"PAGE_NMEA_SENTENCE", NmeaPageProcedure},
    {"dde", L"PAGE_DDE_LINK", DdePageProcedure},
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

int PageIndex(const wchar_t* name) {
  for (size_t i = 0; i < std::size(kPages); ++i) {
    const char* own = kPages[i].name;
    if (std::wstring(own, own + std::strlen(own)) == name) return static_cast<int>(i);
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
