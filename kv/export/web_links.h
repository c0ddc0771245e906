// Opens the vendor's web pages. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr UINT kWaypointPage = 1;  // every other selector is the home page
inline constexpr char kHomePageAddress[] = "http://www.korvel.example/";
inline constexpr char kWaypointPageAddress[] = "http://www.korvel.example/waypoints/";

// Opens a page in the browser. Always returns 1, whether or not a browser starts.
unsigned openMakerWebPage(UINT page);

}  // namespace kv
