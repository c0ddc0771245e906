#include "kv/framework/tooltips.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/support/test_window.h"

namespace {

// Flags, id, rectangle and text of each tool.
using Tool = std::tuple<UINT, UINT_PTR, LONG, std::wstring>;

std::vector<Tool> ToolsOf(HWND tips) {
  std::vector<Tool> tools;
  for (int i = 0, count = SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0); i < count; ++i) {
    wchar_t text[2048] = L"";
    TTTOOLINFOW info{.cbSize = 44, .lpszText = text};
    SendMessageW(tips, TTM_ENUMTOOLSW, i, reinterpret_cast<LPARAM>(&info));
    SendMessageW(tips, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&info));
    tools.emplace_back(info.uFlags, info.uId, info.rect.left, text);
  }
  return tools;
}

TEST(Tooltips, OfAToolbarCoverButtonsByIndex) {
  HWND tips = nullptr;
  {
    const kvtest::RecordingParent parent;
    const HWND toolbar = kvtest::CreateControl(parent, "ToolbarWindow32", "", CCS_NORESIZE, {0, 0, 200, 30}, 1001);
    SendMessageA(toolbar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    const TBBUTTON buttons[] = {{.fsState = TBSTATE_ENABLED, .fsStyle = TBSTYLE_SEP},
                                {.idCommand = 3001, .fsState = TBSTATE_ENABLED},
                                {.idCommand = 3002, .fsState = TBSTATE_ENABLED}};
    SendMessageA(toolbar, TB_ADDBUTTONSA, 3, reinterpret_cast<LPARAM>(buttons));

    const kv::TooltipEntry entries[] = {{0, nullptr}, {3001, L"Connect / Disconnect"}, {3002, nullptr}, {3003, L""}};
    tips = kv::CreateTooltips(nullptr, toolbar, entries, 4);
    ASSERT_TRUE(IsWindow(tips));
    EXPECT_NE(0, GetWindowLongA(tips, GWL_STYLE) & TTS_ALWAYSTIP);
    RECT first{}, second{};
    SendMessageA(toolbar, TB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&first));
    SendMessageA(toolbar, TB_GETITEMRECT, 2, reinterpret_cast<LPARAM>(&second));
    EXPECT_LT(first.left, second.left);
    const std::vector<Tool> expected = {
        {TTF_SUBCLASS, 3001, first.left, L"Connect / Disconnect"},
        {TTF_SUBCLASS, 3002, second.left, L"Verbinden / Trennen"}};  // no text: the string resource of the id
    EXPECT_EQ(expected, ToolsOf(tips));
  }
  EXPECT_FALSE(IsWindow(tips));
}

TEST(Tooltips, OfADialogCoverControls) {
  const kvtest::RecordingParent parent;
  const HWND button = kvtest::CreateControl(parent, "BUTTON", "", 0, {0, 0, 50, 20}, 1011);
  kvtest::CreateControl(parent, "BUTTON", "", 0, {0, 30, 50, 50}, 1013);
  const std::wstring longText(1500, L'x');
  const kv::TooltipEntry entries[] = {{1011, L"the button"},
                                      {1012, longText.c_str()},
                                      {1013, MAKEINTRESOURCEW(3010)},
                                      {1011, MAKEINTRESOURCEW(3999)},
                                      {3999, nullptr}};
  const auto idOf = [](HWND window) { return reinterpret_cast<UINT_PTR>(window); };
  const std::vector<Tool> expected = {{17, idOf(button), 0, L"the button"},
                                      {17, 0, 0, longText.substr(0, 1023)},  // no such control: the tool has no window
                                      {17, idOf(GetDlgItem(parent, 1013)), 0, L"By number"}};
  EXPECT_EQ(expected, ToolsOf(kv::CreateTooltips(GetModuleHandleA(nullptr), parent, entries, 5)));

  const kvtest::GuardedBytes memory(sizeof(kv::TooltipEntry));
  auto* one = memory.as<kv::TooltipEntry>();
  *one = {1, L"one"};
  EXPECT_EQ(nullptr, kv::CreateTooltips(nullptr, parent, nullptr, 1));
  EXPECT_EQ(nullptr, kv::CreateTooltips(nullptr, nullptr, one, 1));
  for (const int tooMany : {2, 0x7FFFFFFF}) EXPECT_EQ(nullptr, kv::CreateTooltips(nullptr, parent, one, tooMany));
  for (const int harmless : {1, -1}) EXPECT_NE(nullptr, kv::CreateTooltips(nullptr, parent, one, harmless));
}

}  // namespace
