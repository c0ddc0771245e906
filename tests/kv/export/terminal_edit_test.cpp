#include "kv/export/terminal_edit.h"

#include <gtest/gtest.h>
#include <richedit.h>

#include "tests/support/test_window.h"

namespace {

using kvtest::RecordingParent;

// The library remains loaded, as in the program.
void ClearsAndColorsARealControl(RecordingParent& parent, const char* library, const char* className) {
  SCOPED_TRACE(className);
  ASSERT_TRUE(LoadLibraryA(library));
  HWND edit = kvtest::CreateControl(parent, className, "old text", ES_MULTILINE, {0, 0, 300, 200}, 7);
  ASSERT_TRUE(edit);
  SendMessageA(edit, EM_SETEVENTMASK, 0, ENM_SELCHANGE);
  UpdateWindow(edit);

  EXPECT_EQ(1, kv::styleTerminalEdit(edit));
  EXPECT_EQ(0, GetWindowTextLengthA(edit));
  EXPECT_TRUE(GetUpdateRect(edit, nullptr, FALSE));
  EXPECT_EQ(ENM_SELCHANGE | 0x130001, SendMessageA(edit, EM_GETEVENTMASK, 0, 0));
  // Whether it scrolls by itself depends on the scroll bars that the control was created with.
  constexpr LRESULT kOptions = ECO_AUTOWORDSELECTION | ECO_NOHIDESEL | ECO_WANTRETURN;
  EXPECT_EQ(kOptions, SendMessageA(edit, EM_GETOPTIONS, 0, 0) & ~(ECO_AUTOVSCROLL | ECO_AUTOHSCROLL));

  SendMessageA(edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>("$GPRMC"));
  SendMessageA(edit, EM_SETSEL, 0, -1);
  CHARFORMAT2A format{};
  format.cbSize = sizeof(format);
  SendMessageA(edit, EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
  EXPECT_TRUE(format.crTextColor == 0x80FF40 && format.crBackColor == 0);
  EXPECT_TRUE(format.yHeight == 192 && format.wWeight == FW_BOLD);
  EXPECT_STREQ("Terminal", format.szFaceName);
  SendMessageA(edit, EM_SETSEL, 6, 6);

  // Black outside of characters, which the format does not define.
  kvtest::PumpMessages();
  kvtest::TestBitmap seen(300, 200);
  HDC dc = GetDC(edit);
  BitBlt(seen.dc(), 0, 0, 300, 200, dc, 0, 0, SRCCOPY);
  ReleaseDC(edit, dc);
  EXPECT_EQ(0u, seen.At(250, 150));
  DestroyWindow(edit);
}

TEST(TerminalEdit, StylesEveryVersionAndLeavesOtherWindowsAlone) {
  RecordingParent parent(true, 300, 200);
  ClearsAndColorsARealControl(parent, "RichEd32.dll", "RICHEDIT");  // implemented by the newer one
  ClearsAndColorsARealControl(parent, "RichEd20.dll", "RichEdit20A");
  ClearsAndColorsARealControl(parent, "RichEd20.dll", "RichEdit20W");
  kvtest::PumpMessages();
  ASSERT_FALSE(GetUpdateRect(parent, nullptr, FALSE));
  EXPECT_EQ(1, kv::styleTerminalEdit(nullptr));
  EXPECT_EQ(1, kv::styleTerminalEdit(reinterpret_cast<HWND>(0x12345)));
  EXPECT_FALSE(GetUpdateRect(parent, nullptr, FALSE));  // a null window would repaint the whole screen
}

}  // namespace
