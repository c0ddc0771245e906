// The maker's pages in a browser. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr UINT kWaypointPage = 1;  // every other selector is the home page
inline constexpr char kHomePageAddress[] = "http://www.korvel.example/";
inline constexpr char kWaypointPageAddress[] = "http://www.korvel.example/waypoints/";

// Opens a page in the browser. Always 1: whether a browser came up is not examined.
unsigned openMakerWebPage(UINT page);

}  // namespace kv
