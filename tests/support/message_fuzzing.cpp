#include "tests/support/message_storm.h"

#include <gtest/gtest.h>
#include <psapi.h>

#include <cstdlib>
#include <iterator>
#include <random>
#include <vector>

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
  return length ? std::atoi(length) : 10000;
}

SIZE_T MemoryInUse() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return counters.PagefileUsage;
}

void SendMessageStorm(HWND control, const std::vector<UINT>& own) {
  std::vector<UINT> messages(std::begin(kMessages), std::end(kMessages));
  messages.insert(messages.end(), own.begin(), own.end());
  std::mt19937 random(20080714);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  GuardedBytes readOnly(512);
  readOnly.MakeReadOnly();
  GuardedBytes writable(512);
  for (unsigned i = 0; i < 512; ++i) writable.as<unsigned char>()[i] = static_cast<unsigned char>(random());
  // Wild addresses lie where nobody's memory is: a control that may write to what it is given must not hit the test's.
  constexpr unsigned kWildSize = 1 << 20;
  void* const wild = VirtualAlloc(nullptr, kWildSize, MEM_RESERVE, PAGE_NOACCESS);
  const auto address = [](const void* pointer) { return reinterpret_cast<LPARAM>(pointer); };
  const auto memoryInUse = [&] {
    MoveWindow(control, 0, 0, 64, 64, TRUE);  // else the size of its pictures is what is measured
    return MemoryInUse();
  };
  SIZE_T inUse = 0;
  for (int i = 0, length = StormLength(); i < length && IsWindow(control); ++i) {
    const LPARAM addresses[] = {0,
                                1,
                                -1,
                                address(wild) + static_cast<LPARAM>(below(kWildSize)),
                                address(readOnly.data()),
                                address(writable.data()),
                                address(writable.as<char>() + 500)};
    constexpr WPARAM kMasks[] = {0xFFFFFFFF, 0xFFFFFF1F, 0x1F};  // small numbers more often: most codes are
    const UINT message = messages[below(static_cast<unsigned>(messages.size()))];
    const bool isSize = message == WM_SIZE || message == WM_COPY;
    const LPARAM lParam = isSize ? MAKELPARAM(below(300), below(300)) : addresses[below(ARRAYSIZE(addresses))];
    if (below(500) == 0) MoveWindow(control, 0, 0, below(300), below(300), TRUE);
    SendMessageA(control, message, random() & kMasks[below(ARRAYSIZE(kMasks))], lParam);
    writable.as<unsigned char>()[below(512)] = static_cast<unsigned char>(random());
    if (i % 64 == 0) PumpMessages();
    if (i == length / 2) inUse = memoryInUse();
  }
  EXPECT_TRUE(IsWindow(control));
  EXPECT_LT(memoryInUse(), inUse + (4 << 20));  // some room for what the system keeps for itself
  VirtualFree(wild, 0, MEM_RELEASE);
}

}  // namespace kvtest
