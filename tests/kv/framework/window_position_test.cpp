#include "kv/framework/window_position.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "kv/framework/guards.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::RecordingParent;

constexpr char kName[] = "Test.Window";

std::string Text(const RECT& r) {
  char text[64];
  sprintf(text, "%ld,%ld,%ld,%ld", r.left, r.top, r.right, r.bottom);
  return text;
}

std::string Place(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return Text(place);
}

// Empty when there is no text value. Fails if the value is stored without its terminator.
std::string Stored() {
  char text[300] = "";
  DWORD size = sizeof(text), type = 0;
  const auto key = kv::RegistryKey::Open(kv::kWindowPositionsKey);
  if (RegQueryValueExA(key, kName, nullptr, &type, reinterpret_cast<BYTE*>(text), &size) != ERROR_SUCCESS) return {};
  EXPECT_EQ(static_cast<DWORD>(REG_SZ), type);
  EXPECT_EQ(strlen(text) + 1, size);
  return text;
}

void Store(const std::string& text, DWORD type = REG_SZ, bool terminated = true) {
  const auto key = kv::RegistryKey::Create(kv::kWindowPositionsKey);
  RegSetValueExA(key, kName, 0, type, reinterpret_cast<const BYTE*>(text.c_str()), text.size() + terminated);
}

class WindowPositionTest : public testing::Test {
 protected:
  WindowPositionTest() { RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\korvel"); }

  const RecordingParent window{false, 300, 200};
};

TEST(ParsePosition, EveryTextGivesFourNumbers) {
  const std::pair<const char*, const char*> samples[] = {
      {"-30,-20,770,580", "-30,-20,770,580"},
      {"10,20", "10,20,10,10"},
      {"120", "120,120,120,120"},
      {" 1,+2, 3px,4,5,6", "1,2,3,4"},
      {"", "0,0,0,0"},
      {"junk,,--7,x9", "0,0,0,0"},
      {"99999999999999,-99999999999999,,", "2147483647,-2147483648,0,0"}};
  for (const auto& [text, position] : samples) EXPECT_EQ(position, Text(kv::ParsePosition(text)));
  EXPECT_EQ("0,0,770,580", Text(kv::ClampPosition({-30, -20, 770, 580})));
  EXPECT_EQ("490,362,791,663", Text(kv::CenteredPosition({1281, 1024}, {301, 301})));
}

TEST_F(WindowPositionTest, SavesAndRestores) {
  SetWindowPos(window, nullptr, 40, 50, 310, 210, 0);
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionSave));
  EXPECT_EQ("40,50,350,260", Stored());

  SetWindowPos(window, nullptr, 1, 2, 100, 100, 0);
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestoreOnly));
  EXPECT_EQ("40,50,140,150", Place(window));
  EXPECT_FALSE(IsWindowVisible(window));
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestore));
  EXPECT_EQ("40,50,350,260", Place(window));
  EXPECT_TRUE(IsWindowVisible(window));

  for (const int state : {SW_SHOWMAXIMIZED, SW_SHOWMINIMIZED}) {
    ShowWindow(window, state);
    EXPECT_FALSE(kv::WindowPosition(window, kName, kv::kPositionSave));
  }
  EXPECT_EQ("40,50,350,260", Stored());
}

TEST_F(WindowPositionTest, UnusualTextsAndModes) {
  Store("7,8,99,88xyz", REG_BINARY, false);  // no terminator
  kv::WindowPosition(window, kName, kv::kPositionRestoreOnly);
  EXPECT_EQ("7,8,307,208", Place(window));
  Store("-30,-20,770,580");
  EXPECT_TRUE(kv::WindowPosition(window, kName, 5));
  EXPECT_EQ("0,0,770,580|7,8,307,208", Stored() + "|" + Place(window));
  Store("-30,-20,770,580");
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestore));
  EXPECT_EQ("0,0,770,580", Place(window));
  Store("10,20");
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestore));
  EXPECT_TRUE(Place(window).starts_with("10,20,10,"));
}

TEST_F(WindowPositionTest, CentersWithoutAValidText) {
  RECT desktop{};
  GetClientRect(GetDesktopWindow(), &desktop);
  const std::string centered = Text(kv::CenteredPosition({desktop.right, desktop.bottom}, {300, 200}));
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestoreOnly));
  EXPECT_EQ(centered + "|", Place(window) + "|" + Stored());
  SetWindowPos(window, nullptr, 1, 2, 0, 0, SWP_NOSIZE);
  Store(std::string(300, '9'));  // longer than the read limit
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestoreOnly));
  EXPECT_EQ(centered, Place(window));
  EXPECT_TRUE(kv::WindowPosition(window, kName, 3));
  EXPECT_EQ(centered, Stored());
}

TEST_F(WindowPositionTest, RejectsBadArguments) {
  kvtest::GuardedBytes endless(3);
  std::fill_n(endless.as<char>(), 3, 'a');
  for (const int mode : {0, 1, 2, 3}) {
    EXPECT_FALSE(kv::WindowPosition(nullptr, kName, mode) || kv::WindowPosition(window, endless.as<char>(), mode));
  }
  EXPECT_FALSE(kv::WindowPosition(window, kName, -1));
  EXPECT_EQ("", Stored());
}

TEST_F(WindowPositionTest, Numbers) {
  DWORD number = 77;
  const auto restored = [&](DWORD preset) {
    number = preset;
    EXPECT_TRUE(kv::WindowNumber(kName, &number, preset % 2 ? kv::kPositionRestore : kv::kPositionRestoreOnly));
    return number;
  };
  EXPECT_EQ(5u, restored(5));  // nothing stored
  number = 77;
  EXPECT_TRUE(kv::WindowNumber(kName, &number, kv::kPositionSave));
  EXPECT_TRUE(restored(4) == 77 && restored(5) == 77);
  Store("ab", REG_BINARY, false);  // of any type; bytes beyond its size are unchanged
  EXPECT_EQ(0x12346261u, restored(0x12345678));
  Store("too long", REG_BINARY);
  EXPECT_EQ(5u, restored(5));

  kvtest::GuardedBytes readOnly(sizeof(DWORD));
  readOnly.MakeReadOnly();
  EXPECT_FALSE(kv::WindowNumber(kName, &number, 3) || kv::WindowNumber(nullptr, &number, kv::kPositionSave));
  EXPECT_FALSE(kv::WindowNumber(kName, readOnly.as<DWORD>(), kv::kPositionSave));
}

TEST_F(WindowPositionTest, WindowsOffScreenOrTooSmallAreCorrected) {
  const SIZE screen{GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  // The stored text, and whether the corrected window keeps its left edge. Two are from a monitor that was
  // disconnected.
  const std::pair<std::string, bool> samples[] = {{"-1200,10,-200,500", true},
                                                  {"0,0,0,0", true},
                                                  {"a,b,c,d", true},
                                                  {"20,30,620,530", true},
                                                  {std::to_string(screen.cx + 50) + ",0,9999,400", false},
                                                  {"10," + std::to_string(screen.cy + 5) + ",700,1600", false}};
  for (const auto& [stored, keepsLeft] : samples) {
    Store(stored);
    kv::WindowPosition(window, kName, kv::kPositionRestore);
    RECT before{}, after{};
    GetWindowRect(window, &before);
    kv::KeepInSight(window, {412, 400});
    GetWindowRect(window, &after);
    EXPECT_LE(412, after.right - after.left) << stored;
    EXPECT_LE(400, after.bottom - after.top) << stored;
    EXPECT_TRUE(after.left >= 0 && after.left < screen.cx && after.top >= 0 && after.top < screen.cy) << stored;
    EXPECT_EQ(keepsLeft, before.left == after.left) << stored;
  }
  Store("20,30,620,530");
  kv::WindowPosition(window, kName, kv::kPositionRestore);
  kv::KeepInSight(window, {412, 400});
  EXPECT_EQ("20,30,620,530", Place(window));
  // From a larger screen.
  SetWindowPos(window, nullptr, 300, 30, screen.cx + 400, screen.cy + 200, SWP_NOZORDER);
  kv::KeepInSight(window, {412, 400});
  RECT work{}, shrunk{};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
  GetWindowRect(window, &shrunk);
  EXPECT_TRUE(EqualRect(&work, &shrunk)) << Place(window);
  // Neither does a minimum size that the screen has no space for push it over the edge.
  kv::KeepInSight(window, {screen.cx + 80, screen.cy + 60});
  GetWindowRect(window, &shrunk);
  EXPECT_TRUE(EqualRect(&work, &shrunk)) << Place(window);
}

}  // namespace
