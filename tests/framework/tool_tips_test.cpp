#include "framework/tool_tips.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "tests/support/test_window.h"

namespace {

struct Tool {
  UINT flags;
  UINT_PTR id;
  RECT place;
  std::wstring text;
};

std::vector<Tool> ToolsOf(HWND tips) {
  std::vector<Tool> tools(SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0));
  for (size_t i = 0; i < tools.size(); ++i) {
    wchar_t text[2048] = L"";
    TTTOOLINFOW info{};
    info.cbSize = 44;
    info.lpszText = text;
    SendMessageW(tips, TTM_ENUMTOOLSW, i, reinterpret_cast<LPARAM>(&info));
    SendMessageW(tips, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&info));
    tools[i] = {info.uFlags, info.uId, info.rect, text};
  }
  return tools;
}

TEST(ToolTips, OfAToolbarCoverButtonsByIndex) {
  HWND tips = nullptr;
  {
    const kvtest::RecordingParent parent;
    const HWND toolbar = kvtest::CreateControl(parent, "ToolbarWindow32", "", CCS_NORESIZE, {0, 0, 200, 30}, 1001);
    SendMessageA(toolbar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    const TBBUTTON buttons[] = {{.fsState = TBSTATE_ENABLED, .fsStyle = TBSTYLE_SEP},
                                {.idCommand = 3001, .fsState = TBSTATE_ENABLED},
                                {.idCommand = 3002, .fsState = TBSTATE_ENABLED}};
    SendMessageA(toolbar, TB_ADDBUTTONSA, 3, reinterpret_cast<LPARAM>(buttons));

    const kv::ToolTipEntry entries[] = {{0, nullptr}, {3001, L"Connect / Disconnect"}, {3002, nullptr}, {3003, L""}};
    tips = kv::CreateToolTips(nullptr, toolbar, entries, 4);
    ASSERT_TRUE(IsWindow(tips));
    EXPECT_NE(0, GetWindowLongA(tips, GWL_STYLE) & TTS_ALWAYSTIP);
    const auto tools = ToolsOf(tips);
    ASSERT_EQ(2u, tools.size());
    RECT second{};
    SendMessageA(toolbar, TB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&second));
    EXPECT_EQ(static_cast<UINT>(TTF_SUBCLASS), tools[0].flags);
    EXPECT_EQ(3001u, tools[0].id);
    EXPECT_TRUE(EqualRect(&second, &tools[0].place));
    EXPECT_EQ(L"Connect / Disconnect", tools[0].text);
    EXPECT_EQ(L"Verbinden / Trennen", tools[1].text);  // no text: the string resource of the id
    EXPECT_GE(tools[1].place.left, second.right);
  }
  EXPECT_FALSE(IsWindow(tips));
}

TEST(ToolTips, OfADialogCoverControls) {
  const kvtest::RecordingParent parent;
  const HWND button = kvtest::CreateControl(parent, "BUTTON", "", 0, {0, 0, 50, 20}, 1011);
  kvtest::CreateControl(parent, "BUTTON", "", 0, {0, 30, 50, 50}, 1013);
  const std::wstring longText(1500, L'x');
  const kv::ToolTipEntry entries[] = {{1011, L"the button"},
                                      {1012, longText.c_str()},
                                      {1013, MAKEINTRESOURCEW(3010)},
                                      {1011, MAKEINTRESOURCEW(3999)},
                                      {3999, nullptr}};
  const auto tools = ToolsOf(kv::CreateToolTips(GetModuleHandleA(nullptr), parent, entries, 5));
  ASSERT_EQ(3u, tools.size());
  EXPECT_EQ(17u, tools[0].flags);
  EXPECT_EQ(reinterpret_cast<UINT_PTR>(button), tools[0].id);
  EXPECT_EQ(L"the button", tools[0].text);
  EXPECT_EQ(0u, tools[1].id);  // no such control: a tool for no window
  EXPECT_EQ(1023u, tools[1].text.size());
  EXPECT_EQ(L"By number", tools[2].text);

  const kvtest::GuardedBytes memory(sizeof(kv::ToolTipEntry));
  auto* one = memory.as<kv::ToolTipEntry>();
  *one = {1, L"one"};
  EXPECT_EQ(nullptr, kv::CreateToolTips(nullptr, parent, nullptr, 1));
  for (const int tooMany : {2, 0x7FFFFFFF}) EXPECT_EQ(nullptr, kv::CreateToolTips(nullptr, parent, one, tooMany));
  for (const int harmless : {1, -1}) EXPECT_NE(nullptr, kv::CreateToolTips(nullptr, parent, one, harmless));
}

}  // namespace
