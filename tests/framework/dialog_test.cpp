#include "framework/dialog.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "framework/dialog_texts.h"
#include "framework/painting.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::RecordingParent;

const HINSTANCE kModule = GetModuleHandleA(nullptr);

INT_PTR CALLBACK NoProcedure(HWND, UINT, WPARAM, LPARAM) {
  return FALSE;
}

// A dialog of template 101, of class kvDialog.
class OpenDialog {
 public:
  OpenDialog() {
    kv::RegisterDialogClass(kModule, TRUE);
    window_ = CreateDialogParamW(kModule, MAKEINTRESOURCEW(101), nullptr, NoProcedure, 0);
  }
  ~OpenDialog() {
    DestroyWindow(window_);
    kv::RegisterDialogClass(kModule, FALSE);
  }
  operator HWND() const { return window_; }

 private:
  HWND window_;
};

std::wstring TextOf(HWND window) {
  wchar_t text[64] = L"";
  GetWindowTextW(window, text, ARRAYSIZE(text));
  return text;
}

TEST(DialogClass, IsRegisteredAsTemplatesNeedIt) {
  EXPECT_TRUE(kv::RegisterDialogClass(kModule, TRUE));
  EXPECT_FALSE(kv::RegisterDialogClass(kModule, TRUE));
  WNDCLASSEXA info{sizeof(info)};
  ASSERT_TRUE(GetClassInfoExA(kModule, "kvDialog", &info));
  EXPECT_EQ(0x48u, info.style);
  EXPECT_EQ(30, info.cbWndExtra);
  EXPECT_EQ(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)), info.hCursor);
  LOGBRUSH brush{};
  GetObjectA(info.hbrBackground, sizeof(brush), &brush);
  EXPECT_EQ(0xFF4141u, brush.lbColor);
  EXPECT_TRUE(kv::RegisterDialogClass(kModule, FALSE));
  EXPECT_FALSE(GetClassInfoExA(kModule, "kvDialog", &info));
}

TEST(DialogClass, ErasesNothingAndIsADialogOtherwise) {
  const OpenDialog dialog;
  kvtest::Picture picture(50, 50);
  EXPECT_EQ(1, SendMessageA(dialog, WM_ERASEBKGND, reinterpret_cast<WPARAM>(picture.dc()), 0));
  EXPECT_EQ(50 * 50, picture.CountOf(0xCCCCCC));
  SendMessageA(dialog, DM_SETDEFID, 1102, 0);
  EXPECT_EQ(MAKELONG(1102, DC_HASDEFID), SendMessageA(dialog, DM_GETDEFID, 0, 0));
}

TEST(ModelessDialogs, TableOf256Slots) {
  const auto window = [](int i) { return reinterpret_cast<HWND>(0x10000 + i); };
  EXPECT_TRUE(kv::ModelessDialogs(nullptr, nullptr, 0));
  EXPECT_FALSE(kv::ModelessDialogs(window(0), nullptr, 2));
  for (int i = 0; i < 256; ++i) EXPECT_TRUE(kv::ModelessDialogs(window(i), nullptr, 1));
  EXPECT_FALSE(kv::ModelessDialogs(window(256), nullptr, 1));
  EXPECT_TRUE(kv::ModelessDialogs(window(7), nullptr, 2));
  EXPECT_TRUE(kv::ModelessDialogs(window(8), nullptr, 1));  // a second time, into the freed slot
  EXPECT_TRUE(kv::ModelessDialogs(window(8), nullptr, 2));
  EXPECT_TRUE(kv::ModelessDialogs(window(8), nullptr, 2));
  EXPECT_FALSE(kv::ModelessDialogs(window(8), nullptr, 2));
  for (const int unknown : {-1, 4, 1000}) EXPECT_FALSE(kv::ModelessDialogs(window(9), nullptr, unknown));
  EXPECT_TRUE(kv::ModelessDialogs(nullptr, nullptr, 0));
  EXPECT_FALSE(kv::ModelessDialogs(window(9), nullptr, 2));
}

TEST(ModelessDialogs, DispatchOffersEachMessageToEveryLiveDialog) {
  kv::ModelessDialogs(nullptr, nullptr, kv::kModelessReset);
  MSG message{};
  EXPECT_FALSE(kv::ModelessDialogs(nullptr, &message, kv::kModelessDispatch));
  {
    const OpenDialog gone;
    kv::ModelessDialogs(gone, nullptr, kv::kModelessAdd);
  }
  const OpenDialog dialog;
  ShowWindow(dialog, SW_SHOW);
  const auto focusAfterTab = [&](int times) {
    kv::ModelessDialogs(nullptr, nullptr, kv::kModelessReset);
    for (int i = 0; i < times; ++i) kv::ModelessDialogs(dialog, nullptr, kv::kModelessAdd);
    SetFocus(GetDlgItem(dialog, 1101));
    MSG tab{};
    tab.hwnd = GetFocus();
    tab.message = WM_KEYDOWN;
    tab.wParam = VK_TAB;
    EXPECT_EQ(times > 0, kv::ModelessDialogs(nullptr, &tab, kv::kModelessDispatch));
    return GetDlgCtrlID(GetFocus());
  };
  EXPECT_EQ(1101, focusAfterTab(0));
  EXPECT_EQ(1102, focusAfterTab(1));
  EXPECT_EQ(1103, focusAfterTab(2));  // a dialog that stands twice is asked twice: nobody stops at the first

  kvtest::GuardedBytes tooShort(sizeof(MSG) - 1);
  EXPECT_FALSE(kv::ModelessDialogs(nullptr, tooShort.as<MSG>(), kv::kModelessDispatch));
  EXPECT_FALSE(kv::ModelessDialogs(nullptr, nullptr, kv::kModelessDispatch));

  // Whatever is posted, the loop goes on. Messages of the system carry its own pointers and stay out.
  std::mt19937 random(1);
  const char* count = getenv("KV_STORM");
  for (int i = 0; i < (count ? atoi(count) : 20000); ++i) {
    MSG any{};
    any.hwnd = i % 3 ? GetDlgItem(dialog, 1101) : static_cast<HWND>(dialog);
    any.message = WM_USER + 2 + random() % 0x7000;
    any.wParam = random();
    any.lParam = static_cast<LPARAM>(random());
    EXPECT_TRUE(kv::ModelessDialogs(nullptr, &any, kv::kModelessDispatch));
  }
  EXPECT_TRUE(IsWindow(dialog));
  kv::ModelessDialogs(nullptr, nullptr, kv::kModelessReset);
}

TEST(DialogControls, TicksCountFromZero) {
  RecordingParent trackbar;  // stands in for one and shows what a trackbar is told
  const auto ticks = [&](int minimum, int maximum, int intervals) {
    trackbar.seen().clear();
    EXPECT_TRUE(kv::SetTrackbarTicks(trackbar, minimum, maximum, intervals));
    std::vector<LPARAM> seen;
    for (const auto& message : trackbar.seen()) {
      if (message.message == TBM_SETTIC) seen.push_back(message.lParam);
    }
    return seen;
  };
  EXPECT_EQ((std::vector<LPARAM>{0, 10, 20, 30, 40}), ticks(10, 50, 4));
  EXPECT_EQ((std::vector<LPARAM>{0, 3, 7, 10}), ticks(5, -5, 3));
  ASSERT_EQ(4u + 3u, trackbar.seen().size());
  EXPECT_EQ(TBM_SETRANGEMIN, static_cast<int>(trackbar.seen()[0].message));
  EXPECT_EQ(TBM_SETRANGEMAX, static_cast<int>(trackbar.seen()[1].message));
  EXPECT_EQ(-5, trackbar.seen()[1].lParam);
  EXPECT_EQ(TBM_CLEARTICS, static_cast<int>(trackbar.seen()[2].message));
  EXPECT_EQ((std::vector<LPARAM>{0}), ticks(0, 100, 0));
  EXPECT_TRUE(ticks(0, 100, -1).empty());
  EXPECT_EQ((std::vector<LPARAM>{0, 0x7FFFFFFF}), ticks(INT_MIN, INT_MAX, 1));
  EXPECT_FALSE(kv::SetTrackbarTicks(nullptr, 0, 10, 2));
}

TEST(DialogControls, ScrollBarIsSetAtOnce) {
  RecordingParent parent;
  const HWND bar = kvtest::CreateControl(parent, "SCROLLBAR", "", SBS_HORZ, {0, 0, 100, 20}, 5);
  EXPECT_TRUE(kv::SetScrollBarControl(bar, -10, 90, 20, 33));
  SCROLLINFO info{sizeof(info), SIF_ALL};
  GetScrollInfo(bar, SB_CTL, &info);
  EXPECT_EQ(-10, info.nMin);
  EXPECT_EQ(90, info.nMax);
  EXPECT_EQ(20u, info.nPage);
  EXPECT_EQ(33, info.nPos);
  EXPECT_FALSE(kv::SetScrollBarControl(nullptr, 0, 1, 1, 0));

  // How a bar looks that cannot scroll is the system's affair; this is what it is asked for.
  UINT asked = 0;
  parent.Answer([&](HWND, UINT message, WPARAM redraw, LPARAM lParam, LRESULT*) {
    if (message == SBM_SETSCROLLINFO && redraw) asked = reinterpret_cast<const SCROLLINFO*>(lParam)->fMask;
    return false;
  });
  kv::SetScrollBarControl(parent, 0, 10, 11, 0);
  EXPECT_EQ(static_cast<UINT>(SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL), asked);
}

TEST(DialogTexts, ComeFromExtendedAndClassicTemplates) {
  const OpenDialog dialog;
  const auto text = [&](int id) { return TextOf(GetDlgItem(dialog, id)); };
  EXPECT_TRUE(kv::SetDialogTexts(dialog, kModule, MAKEINTRESOURCEW(102)));
  EXPECT_EQ(L"Größe", TextOf(dialog));
  EXPECT_EQ(L"eins", text(1101));
  EXPECT_EQ(L"Übergang", text(1102));
  EXPECT_EQ(L"three", text(1103));
  EXPECT_EQ(L"typed in", text(1104));
  EXPECT_EQ(L"a label", text(-1));
  EXPECT_TRUE(kv::SetDialogTexts(dialog, kModule, MAKEINTRESOURCEW(103)));
  EXPECT_EQ(L"Größe", TextOf(dialog));
  EXPECT_EQ(L"un", text(1101));
  EXPECT_EQ(L"deux", text(1102));
  for (const int tooShort : {104, 105, 106}) {
    EXPECT_FALSE(kv::SetDialogTexts(dialog, kModule, MAKEINTRESOURCEW(tooShort)));
  }
  EXPECT_EQ(L"Cut", TextOf(dialog));
  EXPECT_EQ(L"before the end", text(1101));
  EXPECT_EQ(L"deux", text(1102));
  EXPECT_FALSE(kv::SetDialogTexts(dialog, kModule, MAKEINTRESOURCEW(999)));
  EXPECT_FALSE(kv::SetDialogTexts(dialog, kModule, L"NO_SUCH_DIALOG"));
  EXPECT_FALSE(kv::SetDialogTexts(dialog, kModule, nullptr));
  EXPECT_FALSE(kv::SetDialogTexts(nullptr, kModule, MAKEINTRESOURCEW(102)));
}

}  // namespace
