// uidriver: operates a running Tarnwick for ./run without a display.
//
//   uidriver button    prints "X Y", the position of the connect button on the screen
//   uidriver points    waits for moving points, prints the port and the points
//   uidriver close     closes the window like its close box, and waits until it is destroyed
#include <windows.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "app/resource_ids.h"
#include "tools/uidriver/driver.h"

namespace {

constexpr DWORD kTimeoutMs = 30000;

int Fail(const char* message) {
  std::fprintf(stderr, "uidriver: %s\n", message);
  return 1;
}

int PrintButton(HWND window) {
  const POINT center = uidriver::ToolbarButtonCenter(window, IDM_CONNECT);
  if (center.x < 0) return Fail("the toolbar has no connect button");
  std::printf("%ld %ld\n", center.x, center.y);
  return 0;
}

bool ShowsPoints(const std::array<std::string, 5>& texts) {
  return texts[0].starts_with("COM") && texts[1].find(',') != std::string::npos;
}

int PrintPoints(HWND window) {
  std::array<std::string, 5> first{};
  for (DWORD start = GetTickCount(); GetTickCount() - start < kTimeoutMs; Sleep(50)) {
    const auto texts = uidriver::StatusTexts(window);
    if (!ShowsPoints(texts)) continue;
    if (first[0].empty()) first = texts;
    if (texts == first) continue;
    std::printf("port %s, points %s %s %s %s\n", texts[0].c_str(), texts[1].c_str(), texts[2].c_str(), texts[3].c_str(),
                texts[4].c_str());
    return 0;
  }
  return Fail(first[0].empty() ? "the tool found no port on which a camera sends"
                               : "points arrived but did not move; is the camera still sending?");
}

int Close(HWND window) {
  PostMessageA(window, WM_CLOSE, 0, 0);
  for (DWORD start = GetTickCount(); GetTickCount() - start < kTimeoutMs; Sleep(20)) {
    if (!IsWindow(window)) return 0;
  }
  return Fail("the window did not close");
}

}  // namespace

int main(int argc, char** argv) {
  constexpr struct {
    const char* name;
    int (*run)(HWND);
  } kCommands[] = {{"button", PrintButton}, {"points", PrintPoints}, {"close", Close}};
  for (const auto& command : kCommands) {
    if (argc != 2 || std::strcmp(argv[1], command.name) != 0) continue;
    HWND window = uidriver::WaitForTarnwick(kTimeoutMs);
    return window ? command.run(window) : Fail("no Tarnwick window appeared");
  }
  return Fail("usage: uidriver button | points | close");
}
