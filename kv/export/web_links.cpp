#include "kv/export/web_links.h"

#include "kv/framework/shell_launch.h"

namespace kv {

unsigned openMakerWebPage(UINT page) {
  const char* address = page == kWaypointPage ? kWaypointPageAddress : kHomePageAddress;
  shellCalls.executeA(nullptr, "open", "IExplore.exe", address, nullptr, SW_SHOWNORMAL);
  return 1;
}

}  // namespace kv
