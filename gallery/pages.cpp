#include "gallery/pages.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string>
#include <string_view>

#include "gallery/resource_ids.h"
#include "kv/framework/tooltips.h"
#include "kv/framework/utf8.h"

namespace gallery {

namespace {

// Tooltips of the dialog services page, in the order of IDS_SERVICES_TIP.
const kv::TooltipEntry kServicesTips[] = {
    {IDC_SERVICES_BUTTON, MAKEINTRESOURCEW(IDS_SERVICES_TIP)},
    {IDC_SERVICES_EDIT, MAKEINTRESOURCEW(IDS_SERVICES_TIP + 1)},
    {IDC_SERVICES_TRACKBAR, MAKEINTRESOURCEW(IDS_SERVICES_TIP + 2)},
    {IDC_SERVICES_SCROLL, MAKEINTRESOURCEW(IDS_SERVICES_TIP + 3)},
    {IDC_SERVICES_REMEMBER, MAKEINTRESOURCEW(IDS_SERVICES_TIP + 4)},
    {IDC_SERVICES_RETURN, MAKEINTRESOURCEW(IDS_SERVICES_TIP + 5)},
};

// In the order of the PAGE_INDEX_ constants in resource_ids.h.
const Page kPages[] = {
    {"overview", {.templateName = L"PAGE_OVERVIEW", .procedure = OverviewPageProcedure}},
    {"dialog-services",
     {.templateName = L"PAGE_DIALOG_SERVICES", .procedure = DialogServicesPageProcedure, .tips = kServicesTips}},
    {"chart", {.templateName = L"PAGE_CHART", .procedure = ChartPageProcedure, .tickMs = kChartTickMs}},
    {"bitmap", {.templateName = L"PAGE_BITMAP", .procedure = BitmapPageProcedure}},
    {"instruments", {.templateName = L"PAGE_INSTRUMENTS", .procedure = InstrumentsPageProcedure, .tickMs = 250}},
    {"flight-deck", {.templateName = L"PAGE_FLIGHT_DECK", .procedure = FlightDeckPageProcedure, .tickMs = 50}},
    {"list", {.templateName = L"PAGE_LIST", .procedure = ListPageProcedure}},
    {"mesh", {.templateName = L"PAGE_MESH", .procedure = MeshPageProcedure, .tickMs = 1000}},
    {"capture", {.templateName = L"PAGE_CAPTURE", .procedure = CapturePageProcedure, .tickMs = 66}},
    {"flight", {.templateName = L"PAGE_FLIGHT", .procedure = FlightPageProcedure}},
    {"nmea", {.templateName = L"PAGE_NMEA_SENTENCE", .procedure = NmeaPageProcedure, .tickMs = 500}},
    {"dde", {.templateName = L"PAGE_DDE_LINK", .procedure = DdePageProcedure, .tickMs = 500}},
    {"language", {.templateName = L"PAGE_LANGUAGE", .procedure = LanguagePageProcedure}},
    {"files", {.templateName = L"PAGE_FILES", .procedure = FilesPageProcedure}},
    {"notices", {.templateName = L"PAGE_NOTICES", .procedure = NoticesPageProcedure}},
};

}  // namespace

std::span<const Page> AllPages() {
  return kPages;
}

int PageIndex(std::string_view name) {
  const auto* page = std::ranges::find(kPages, name, [](const Page& each) { return std::string_view(each.name); });
  return page == std::end(kPages) ? -1 : static_cast<int>(page - kPages);
}

std::wstring PageNames() {
  std::wstring names;
  for (const Page& page : kPages) names += (names.empty() ? L"" : L" ") + kv::Wide(page.name);
  return names;
}

}  // namespace gallery
