#include "kv/framework/dialog.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <climits>
#include <string>
#include <vector>

#include "kv/framework/dialog_texts.h"
#include "kv/framework/guards.h"
#include "tests/support/running_program.h"
#include "tests/support/scarce_objects.h"
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

TEST(DialogClass, IsRegisteredForTemplatesAndErasesNothing) {
  WNDCLASSEXA info{sizeof(info)};
  EXPECT_FALSE(GetClassInfoExA(kModule, "kvDialog", &info));
  const OpenDialog dialog;
  {
    const kvtest::ScarceObjects scarce(20);
    for (int i = 0; i < 50; ++i) EXPECT_FALSE(kv::RegisterDialogClass(kModule, TRUE));  // again
    EXPECT_NE(nullptr, static_cast<HBRUSH>(kv::OwnedBrush(CreateSolidBrush(7))));
  }
  ASSERT_TRUE(GetClassInfoExA(kModule, "kvDialog", &info));
  EXPECT_TRUE(info.style == 0x48 && info.cbWndExtra == 30);
  EXPECT_EQ(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)), info.hCursor);
  LOGBRUSH brush{};
  GetObjectA(info.hbrBackground, sizeof(brush), &brush);
  EXPECT_EQ(0xFF4141u, brush.lbColor);

  kvtest::TestBitmap bitmap(50, 50);
  EXPECT_EQ(1, SendMessageA(dialog, WM_ERASEBKGND, reinterpret_cast<WPARAM>(bitmap.dc()), 0));
  EXPECT_EQ(50 * 50, bitmap.CountOf(0xCCCCCC));
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
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(kv::ModelessDialogs(window(8), nullptr, 2));
  EXPECT_FALSE(kv::ModelessDialogs(window(8), nullptr, 2));
  for (const int unknown : {-1, 4}) EXPECT_FALSE(kv::ModelessDialogs(window(9), nullptr, unknown));
  EXPECT_TRUE(kv::ModelessDialogs(nullptr, nullptr, 0));
  EXPECT_FALSE(kv::ModelessDialogs(window(9), nullptr, 2));
}

TEST(ModelessDialogs, DispatchOffersEachMessageToEveryOpenDialog) {
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
    MSG tab{GetFocus(), WM_KEYDOWN, VK_TAB};
    EXPECT_EQ(times > 0, kv::ModelessDialogs(nullptr, &tab, kv::kModelessDispatch));
    return GetDlgCtrlID(GetFocus());
  };
  EXPECT_EQ(1101, focusAfterTab(0));
  EXPECT_EQ(1102, focusAfterTab(1));
  EXPECT_EQ(1103, focusAfterTab(2));  // a dialog entered twice is asked twice

  kvtest::GuardedBytes tooShort(sizeof(MSG) - 1);
  EXPECT_FALSE(kv::ModelessDialogs(nullptr, tooShort.as<MSG>(), kv::kModelessDispatch));
  EXPECT_FALSE(kv::ModelessDialogs(nullptr, nullptr, kv::kModelessDispatch));
  kv::ModelessDialogs(nullptr, nullptr, kv::kModelessReset);
}

TEST(DialogControls, TicksCountFromZero) {
  RecordingParent trackbar;  // records the messages to a trackbar
  const auto ticks = [&](int minimum, int maximum, int intervals) {
    trackbar.seen().clear();
    EXPECT_TRUE(kv::SetTrackbarTicks(trackbar, minimum, maximum, intervals));
    const auto& seen = trackbar.seen();
    EXPECT_TRUE(seen[0].message == TBM_SETRANGEMIN && seen[0].lParam == minimum);
    EXPECT_TRUE(seen[1].message == TBM_SETRANGEMAX && seen[1].lParam == maximum && seen[2].message == TBM_CLEARTICS);
    std::vector<LPARAM> at;
    for (const auto& message : seen) {
      if (message.message == TBM_SETTIC) at.push_back(message.lParam);
    }
    return at;
  };
  using Ticks = std::vector<LPARAM>;
  EXPECT_EQ((Ticks{0, 10, 20, 30, 40}), ticks(10, 50, 4));
  EXPECT_EQ((Ticks{0, 3, 7, 10}), ticks(5, -5, 3));
  EXPECT_EQ((Ticks{0}), ticks(0, 100, 0));
  EXPECT_EQ((Ticks{}), ticks(0, 100, -1));
  EXPECT_EQ((Ticks{0, 0x7FFFFFFF}), ticks(INT_MIN, INT_MAX, 1));
  EXPECT_FALSE(kv::SetTrackbarTicks(nullptr, 0, 10, 2));
}

TEST(DialogControls, ScrollBarIsSetImmediately) {
  // The system decides the appearance of a bar that cannot scroll; this tests its parameters.
  RecordingParent bar;
  SCROLLINFO asked{};
  bar.Answer([&](HWND, UINT message, WPARAM redraw, LPARAM lParam, LRESULT*) {
    if (message == SBM_SETSCROLLINFO && redraw) asked = *reinterpret_cast<const SCROLLINFO*>(lParam);
    return false;
  });
  EXPECT_TRUE(kv::SetScrollBarControl(bar, -10, 90, 20, 33));
  EXPECT_EQ(static_cast<UINT>(SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL), asked.fMask);
  EXPECT_TRUE(asked.nMin == -10 && asked.nMax == 90 && asked.nPage == 20 && asked.nPos == 33);
  EXPECT_FALSE(kv::SetScrollBarControl(nullptr, 0, 1, 1, 0));
}

TEST(DialogTexts, AreReadFromExtendedAndClassicTemplates) {
  const OpenDialog dialog;
  const auto set = [&](int id) { return kv::SetDialogTexts(dialog, kModule, MAKEINTRESOURCEW(id)); };
  const auto texts = [&] {
    std::wstring all = kvtest::TextOf(dialog);
    for (const int id : {1101, 1102, 1103, 1104, -1}) all += L"|" + kvtest::TextOf(GetDlgItem(dialog, id));
    return all;
  };
  EXPECT_TRUE(set(102));
  EXPECT_EQ(L"Größe|eins|Übergang|three|typed in|a label", texts());
  EXPECT_TRUE(set(103));
  EXPECT_EQ(L"Größe|un|deux|three|typed in|a label", texts());
  EXPECT_FALSE(set(104) || set(105) || set(106));  // too short
  EXPECT_EQ(L"Cut|before the end|deux|three|typed in|a label", texts());
  EXPECT_FALSE(set(999) || set(0));
  EXPECT_FALSE(kv::SetDialogTexts(dialog, kModule, L"NO_SUCH_DIALOG"));
  EXPECT_FALSE(kv::SetDialogTexts(nullptr, kModule, MAKEINTRESOURCEW(102)));
}

}  // namespace
