#include "tests/support/message_storm.h"

#include <cstdlib>
#include <random>

#include "tests/support/test_window.h"

namespace kvtest {

namespace {

constexpr UINT kCommand = WM_USER + 3;

constexpr UINT kMessages[] = {kCommand,        kCommand,          kCommand,
                              kCommand,        WM_PAINT,          WM_SIZE,
                              WM_TIMER,        WM_ENABLE,         WM_MOUSEMOVE,
                              WM_LBUTTONDOWN,  WM_LBUTTONUP,      WM_RBUTTONDOWN,
                              WM_RBUTTONUP,    WM_MBUTTONDOWN,    WM_MBUTTONUP,
                              WM_GETDLGCODE,   WM_ERASEBKGND,     WM_COMMAND,
                              WM_HSCROLL,      WM_VSCROLL,        WM_KEYDOWN,
                              LB_SETCOUNT,     WM_SETFOCUS,       WM_KILLFOCUS,
                              LB_RESETCONTENT, WM_CAPTURECHANGED, LB_SETHORIZONTALEXTENT,
                              WM_CANCELMODE};

}  // namespace

int StormLength() {
  const char* length = std::getenv("KV_STORM");
  return length ? std::atoi(length) : 20000;
}

void SendMessageStorm(HWND control) {
  std::mt19937 random(20080714);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  GuardedBytes readOnly(512);
  readOnly.MakeReadOnly();
  GuardedBytes writable(512);
  for (unsigned i = 0; i < 512; ++i) writable.as<unsigned char>()[i] = static_cast<unsigned char>(random());
  for (int i = 0, length = StormLength(); i < length && IsWindow(control); ++i) {
    const LPARAM addresses[] = {0,
                                1,
                                static_cast<LPARAM>(0xFFFFFFFF),
                                static_cast<LPARAM>(random()),
                                reinterpret_cast<LPARAM>(readOnly.data()),
                                reinterpret_cast<LPARAM>(writable.data()),
                                reinterpret_cast<LPARAM>(writable.as<char>() + 500)};
    const UINT message = kMessages[below(ARRAYSIZE(kMessages))];
    const LPARAM lParam = message == WM_SIZE ? MAKELPARAM(below(300), below(300)) : addresses[below(7)];
    if (below(500) == 0) MoveWindow(control, 0, 0, below(300), below(300), TRUE);
    SendMessageA(control, message, random(), lParam);
    if (i % 64 == 0) PumpMessages();
  }
}

}  // namespace kvtest
