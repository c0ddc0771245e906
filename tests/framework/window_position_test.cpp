#include "framework/window_position.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "framework/guards.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::RecordingParent;

constexpr char kName[] = "Test.Window";

std::string Text(const RECT& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
         std::to_string(r.bottom);
}

RECT Place(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

// Empty when there is no text value; its terminator must be stored.
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
  void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\korvel"); }
};

TEST(ParsePosition, EveryTextGivesFourNumbers) {
  const auto parsed = [](const char* text) { return Text(kv::ParsePosition(text)); };
  EXPECT_EQ("-30,-20,770,580", parsed("-30,-20,770,580"));
  EXPECT_EQ("10,20,10,10", parsed("10,20"));
  EXPECT_EQ("10,20,30,10", parsed("10,20,30"));
  EXPECT_EQ("120,120,120,120", parsed("120"));
  EXPECT_EQ("1,2,3,4", parsed(" 1,+2, 3px,4,5,6"));
  EXPECT_EQ("0,0,0,0", parsed(""));
  EXPECT_EQ("0,0,0,0", parsed("junk,,--7,x9"));
  EXPECT_EQ("2147483647,-2147483648,0,0", parsed("99999999999999,-99999999999999,,"));
}

TEST(ParsePosition, ClampAndCentre) {
  EXPECT_EQ("0,0,770,580", Text(kv::ClampPosition({-30, -20, 770, 580})));
  EXPECT_EQ("5,6,-7,-8", Text(kv::ClampPosition({5, 6, -7, -8})));
  EXPECT_EQ("490,362,791,663", Text(kv::CentredPosition({1281, 1024}, {301, 301})));
}

TEST_F(WindowPositionTest, SavesAndRestores) {
  const RecordingParent window(false, 300, 200);
  SetWindowPos(window, nullptr, 40, 50, 310, 210, 0);
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionSave));
  EXPECT_EQ("40,50,350,260", Stored());

  SetWindowPos(window, nullptr, 1, 2, 100, 100, 0);
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestorePlace));
  EXPECT_EQ("40,50,140,150", Text(Place(window)));
  EXPECT_FALSE(IsWindowVisible(window));
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestore));
  EXPECT_EQ("40,50,350,260", Text(Place(window)));
  EXPECT_TRUE(IsWindowVisible(window));

  ShowWindow(window, SW_SHOWMAXIMIZED);
  EXPECT_FALSE(kv::WindowPosition(window, kName, kv::kPositionSave));
  ShowWindow(window, SW_SHOWMINIMIZED);
  EXPECT_FALSE(kv::WindowPosition(window, kName, kv::kPositionSave));
  EXPECT_EQ("40,50,350,260", Stored());
}

TEST_F(WindowPositionTest, OddTextsAndModes) {
  const RecordingParent window(false, 300, 200);
  Store("-30,-20,770,580");
  EXPECT_TRUE(kv::WindowPosition(window, kName, 5));
  EXPECT_EQ("0,0,770,580", Stored());
  EXPECT_EQ("0,0,300,200", Text(Place(window)));
  Store("7,8,99,88xyz", REG_BINARY, false);  // no terminator
  kv::WindowPosition(window, kName, kv::kPositionRestorePlace);
  EXPECT_EQ("7,8,307,208", Text(Place(window)));

  Store("-30,-20,770,580");
  kv::WindowPosition(window, kName, kv::kPositionRestore);
  EXPECT_EQ("0,0,770,580", Text(Place(window)));
  Store("10,20");
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestore));
  EXPECT_EQ(10, Place(window).left);
  EXPECT_EQ(Place(window).left, Place(window).right);
  Store("99999999999,-99999999999,-99999999999,99999999999");
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestore));
}

TEST_F(WindowPositionTest, CentresWithoutAUsableText) {
  const RecordingParent window(false, 301, 201);
  RECT desktop{};
  GetClientRect(GetDesktopWindow(), &desktop);
  const std::string centred = Text(kv::CentredPosition({desktop.right, desktop.bottom}, {301, 201}));
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestorePlace));
  EXPECT_EQ(centred, Text(Place(window)));
  EXPECT_EQ("", Stored());

  SetWindowPos(window, nullptr, 1, 2, 0, 0, SWP_NOSIZE);
  Store(std::string(300, '9'));  // longer than is ever read
  EXPECT_TRUE(kv::WindowPosition(window, kName, kv::kPositionRestorePlace));
  EXPECT_EQ(centred, Text(Place(window)));
  EXPECT_TRUE(kv::WindowPosition(window, kName, 3));
  EXPECT_EQ(centred, Stored());
}

TEST_F(WindowPositionTest, RefusesBadArguments) {
  const RecordingParent window;
  const auto* bad = reinterpret_cast<const char*>(16);
  for (const int mode : {0, 1, 2, 3}) {
    EXPECT_FALSE(kv::WindowPosition(nullptr, kName, mode));
    EXPECT_FALSE(kv::WindowPosition(window, bad, mode));
  }
  EXPECT_FALSE(kv::WindowPosition(window, kName, -1));
  EXPECT_EQ("", Stored());
}

TEST_F(WindowPositionTest, Numbers) {
  DWORD number = 77;
  EXPECT_TRUE(kv::WindowNumber(kName, &number, kv::kPositionRestore));
  EXPECT_EQ(77u, number);
  EXPECT_TRUE(kv::WindowNumber(kName, &number, kv::kPositionSave));
  number = 5;
  EXPECT_TRUE(kv::WindowNumber(kName, &number, kv::kPositionRestorePlace));
  EXPECT_EQ(77u, number);
  Store("ab", REG_BINARY, false);  // any type does, and what it does not cover stays
  number = 0x12345678;
  EXPECT_TRUE(kv::WindowNumber(kName, &number, kv::kPositionRestore));
  EXPECT_EQ(0x12346261u, number);
  Store("too long", REG_BINARY);
  EXPECT_TRUE(kv::WindowNumber(kName, &number, kv::kPositionRestore));
  EXPECT_EQ(0x12346261u, number);

  kvtest::GuardedBytes readOnly(sizeof(DWORD));
  readOnly.MakeReadOnly();
  EXPECT_FALSE(kv::WindowNumber(kName, &number, 3));
  EXPECT_FALSE(kv::WindowNumber(kName, readOnly.as<DWORD>(), kv::kPositionSave));
  EXPECT_FALSE(kv::WindowNumber(nullptr, &number, kv::kPositionSave));
}

}  // namespace
