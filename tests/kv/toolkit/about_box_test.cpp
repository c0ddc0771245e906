#include "kv/toolkit/about_box.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>

#include "kv/framework/modules.h"
#include "kv/framework/shell_launch.h"
#include "tests/support/running_program.h"

namespace kv {
namespace {

std::set<std::wstring> shown;
std::wstring opened;

HINSTANCE WINAPI RecordFile(HWND, LPCWSTR, LPCWSTR file, LPCWSTR, LPCWSTR, INT) {
  opened = file;
  return reinterpret_cast<HINSTANCE>(33);
}

// Reads the box, presses the button with the address, and closes it.
void CALLBACK OperateBox(HWND, UINT, UINT_PTR timer, DWORD) {
  HWND box = FindWindowW(L"#32770", L"About it");
  if (!box) return;
  KillTimer(nullptr, timer);
  EXPECT_EQ(GetDlgItem(box, IDOK), GetFocus());
  RECT client{};
  GetClientRect(box, &client);
  for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    const std::wstring text = kvtest::TextOf(child);
    shown.insert(text);
    RECT place{}, inside{};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, box, reinterpret_cast<POINT*>(&place), 2);
    EXPECT_TRUE(IntersectRect(&inside, &place, &client) && EqualRect(&inside, &place));
    if (text == L"https://x.example") SendMessageW(child, BM_CLICK, 0, 0);
  }
  PostMessageW(GetDlgItem(box, IDOK), BM_CLICK, 0, 0);
}

TEST(AboutBox, ShowsItsTextsAndOpensTheAddress) {
  modules = {.resources = GetModuleHandleA(nullptr), .application = GetModuleHandleA(nullptr)};
  shellCalls.executeW = RecordFile;
  SetTimer(nullptr, 0, 20, OperateBox);
  const std::wstring lines = L"Many words about what it is good for, and how\nΩ";
  ShowAboutBox(nullptr, {.caption = L"About it",
                         .name = L"It 1.2",
                         .description = lines,
                         .rights = L"\u00A9 2026",
                         .address = L"https://x.example"});
  shellCalls.executeW = ShellExecuteW;
  for (const std::wstring& text : {std::wstring(L"It 1.2"), lines, std::wstring(L"\u00A9 2026"), std::wstring(L"OK")}) {
    EXPECT_TRUE(shown.contains(text));
  }
  EXPECT_EQ(L"https://x.example", opened);
}

}  // namespace
}  // namespace kv
