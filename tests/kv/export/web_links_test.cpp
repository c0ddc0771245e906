#include "kv/export/web_links.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "kv/framework/shell_launch.h"

namespace {

std::string launched;

HINSTANCE WINAPI NoteLaunch(HWND owner, LPCSTR verb, LPCSTR file, LPCSTR parameters, LPCSTR directory, INT show) {
  launched = std::string(verb) + " " + file + " " + parameters + " " + std::to_string(show);
  if (owner || directory) launched += " and more";
  return nullptr;  // failure is ignored
}

TEST(WebLinks, OpenTheChosenPage) {
  const auto previous = std::exchange(kv::shellCalls.executeA, NoteLaunch);
  EXPECT_EQ(1u, kv::openMakerWebPage(1));
  EXPECT_EQ("open IExplore.exe http://www.korvel.example/waypoints/ 1", launched);
  for (UINT page : {0u, 2u, 0xFFFFFFFFu}) {
    EXPECT_EQ(1u, kv::openMakerWebPage(page));
    EXPECT_EQ("open IExplore.exe http://www.korvel.example/ 1", launched);
  }
  kv::shellCalls.executeA = previous;
}

}  // namespace
