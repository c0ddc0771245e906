#include "framework/dialog_layout.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <algorithm>
#include <climits>
#include <string>

#include "framework/control_kind.h"
#include "tests/support/test_window.h"

namespace {

using kv::LayoutSlot;
using kvtest::CreateControl;
using kvtest::RecordingParent;

constexpr int kLowest = 1010, kHighest = 1999;

std::string Place(HWND dialog, int id) {
  RECT r{};
  GetWindowRect(GetDlgItem(dialog, id), &r);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
  return std::to_string(r.left) + "," + std::to_string(r.top) + " " + std::to_string(r.right - r.left) + "x" +
         std::to_string(r.bottom - r.top);
}

HFONT FontOf(HWND dialog, int id) {
  return reinterpret_cast<HFONT>(SendDlgItemMessageA(dialog, id, WM_GETFONT, 0, 0));
}

// Height x width and weight of a control's font.
std::string Font(HWND dialog, int id) {
  LOGFONTA font{};
  if (!GetObjectA(FontOf(dialog, id), sizeof(font), &font)) return "none";
  EXPECT_STREQ("Arial Unicode MS", font.lfFaceName);
  return std::to_string(font.lfHeight) + "x" + std::to_string(font.lfWidth) + " " + std::to_string(font.lfWeight);
}

// Takes whatever size it is given, has a field of 17 pixels and keeps the field height it was told last.
LRESULT CALLBACK PlainComboBox(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == CB_GETITEMHEIGHT) return 17;
  if (message == CB_SETITEMHEIGHT) return SetWindowLongA(window, GWL_USERDATA, lParam);
  return DefWindowProcA(window, message, wParam, lParam);
}

// A dialog of 400 x 300 with one control of each kind.
class Dialog : public RecordingParent {
 public:
  Dialog() : RecordingParent(false, 400, 300) {
    WNDCLASSA bitmapClass{};
    bitmapClass.lpfnWndProc = DefWindowProcA;
    bitmapClass.lpszClassName = "kvSimpleBitmap";
    RegisterClassA(&bitmapClass);
    Add("STATIC", "text", 0, 1010);
    Add("STATIC", "", 0, 1011);
    Add("BUTTON", "text", 0, 1012);
    Add("EDIT", "text", 0, 1013);
    Add("EDIT", "text", ES_MULTILINE, 1014);
    Add("COMBOBOX", "", CBS_DROPDOWNLIST, 1015);
    Add("COMBOBOX", "", CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED, 1016);
    Add("LISTBOX", "", LBS_NOINTEGRALHEIGHT, 1017);
    Add("SysTabControl32", "", 0, 1018);
    Add("SysTreeView32", "", 0, 1019);
    Add("kvSimpleBitmap", "text", 16, 1020);
    Add("kvSimpleBitmap", "text", 32, 1021);
    WNDCLASSA comboClass{};
    comboClass.lpfnWndProc = PlainComboBox;
    comboClass.lpszClassName = "kvTestComboBox";
    RegisterClassA(&comboClass);
    Add("kvTestComboBox", "", 0, 1022);
    Add("kvTestComboBox", "", CBS_OWNERDRAWFIXED, 1023);
    Add("STATIC", "outside", 0, 2000);
    Add("STATIC", "last", 0, 1999);
  }
  void Resize(int width, int height) { SetWindowPos(*this, nullptr, 0, 0, width, height, SWP_NOMOVE); }
  BOOL Apply(int bottom = 0, int left = 0, int top = 0) {
    return kv::ApplyLayout(*this, bottom, left, top, kLowest, kHighest, slots, &scaleX, &scaleY, FALSE);
  }

  LayoutSlot slots[20]{};
  float scaleX = -1, scaleY = -1;

 private:
  void Add(const char* className, const char* text, DWORD style, int id) {
    CreateControl(*this, className, text, style, {40, 30, 140, 50}, id);
  }
};

TEST(ControlKind, ByContainedTextTheLastWins) {
  EXPECT_EQ(3, kv::ClassifyClassName("MyEditBox"));
  EXPECT_EQ(3, kv::ClassifyClassName("RICHEDIT50W"));
  EXPECT_EQ(7, kv::ClassifyClassName("SysTreeView32"));
  EXPECT_EQ(4, kv::ClassifyClassName("ComboBoxEx32 with a Static"));
  EXPECT_EQ(7, kv::ClassifyClassName("systreeview32kvsimplebitmap"));
  EXPECT_EQ(0, kv::ClassifyClassName("SCROLLBAR"));
  EXPECT_EQ(0, kv::ClassifyClassName((std::string(60, 'x') + "EDIT").c_str()));
  EXPECT_EQ(3, kv::ClassifyClassName((std::string(59, 'x') + "EDIT").c_str()));
  EXPECT_EQ(0, kv::ClassifyClassName(nullptr));

  const Dialog dialog;
  const int kinds[] = {1, 1, 2, 3, 3, 4, 4, 5, 6, 7, 8, 8};
  for (int i = 0; i < 12; ++i) EXPECT_EQ(kinds[i], kv::ClassifyControl(GetDlgItem(dialog, 1010 + i)));
  EXPECT_EQ(0, kv::ClassifyControl(dialog));
  EXPECT_EQ(0, kv::ClassifyControl(nullptr));
}

TEST(DialogLayout, CapturesTheRangeInWindowOrder) {
  Dialog dialog;
  EXPECT_TRUE(kv::CaptureLayout(dialog, dialog.slots, kLowest, kHighest));
  EXPECT_EQ(400, dialog.slots[0].width);
  EXPECT_EQ(300, dialog.slots[0].height);
  EXPECT_EQ(40, dialog.slots[1].x);
  EXPECT_EQ(30, dialog.slots[1].y);
  EXPECT_EQ(100, dialog.slots[1].width);
  EXPECT_EQ(20, dialog.slots[1].height);
  EXPECT_EQ(SendDlgItemMessageA(dialog, 1015, CB_GETITEMHEIGHT, -1, 0), dialog.slots[6].height);
  EXPECT_EQ(17, dialog.slots[13].height);
  EXPECT_EQ(15, kv::LayoutSlotOf(dialog, kLowest, kHighest, 1999));  // 2000 takes no slot
  EXPECT_EQ(1, kv::LayoutSlotOf(dialog, kLowest, kHighest, 1010));
  EXPECT_EQ(-1, kv::LayoutSlotOf(dialog, kLowest, kHighest, 2000));
  EXPECT_EQ(-1, kv::LayoutSlotOf(nullptr, kLowest, kHighest, 1010));

  // A record that ends early: what fits is captured and scaled, the rest stays.
  const kvtest::GuardedBytes memory(3 * sizeof(LayoutSlot) + 1);
  auto* slots = reinterpret_cast<LayoutSlot*>(memory.as<char>() + 1);
  EXPECT_TRUE(kv::CaptureLayout(dialog, slots, kLowest, kHighest));
  EXPECT_EQ(100, slots[2].width);
  dialog.Resize(800, 300);
  EXPECT_TRUE(kv::ApplyLayout(dialog, 0, 0, 0, kLowest, kHighest, slots, nullptr, nullptr, FALSE));
  EXPECT_EQ("80,30 200x20", Place(dialog, 1011));
  EXPECT_EQ("40,30 100x20", Place(dialog, 1012));

  EXPECT_FALSE(kv::CaptureLayout(dialog, nullptr, kLowest, kHighest));
  EXPECT_FALSE(kv::CaptureLayout(nullptr, slots, kLowest, kHighest));
  EXPECT_FALSE(kv::ApplyLayout(dialog, 0, 0, 0, kLowest, kHighest, nullptr, nullptr, nullptr, FALSE));
  EXPECT_FALSE(kv::ApplyLayout(nullptr, 0, 0, 0, kLowest, kHighest, slots, nullptr, nullptr, FALSE));
}

TEST(DialogLayout, ScalesEachKindWithItsFont) {
  Dialog dialog;
  kv::CaptureLayout(dialog, dialog.slots, kLowest, kHighest);
  dialog.Resize(800, 450);
  EXPECT_TRUE(dialog.Apply());
  EXPECT_EQ(2.0f, dialog.scaleX);
  EXPECT_EQ(1.5f, dialog.scaleY);
  for (const int id : {1010, 1011, 1012, 1013, 1014, 1017, 1018, 1019}) EXPECT_EQ("80,45 200x30", Place(dialog, id));
  EXPECT_EQ("40,30 100x20", Place(dialog, 2000));
  EXPECT_EQ("80,45 200x40", Place(dialog, 1020));  // height follows the width's scale
  EXPECT_EQ("80,45 150x30", Place(dialog, 1021));  // width follows the height's scale

  EXPECT_EQ("21x12 600", Font(dialog, 1010));
  EXPECT_EQ("none", Font(dialog, 1011));
  EXPECT_EQ("21x12 600", Font(dialog, 1012));
  EXPECT_EQ("25x9 600", Font(dialog, 1013));
  EXPECT_EQ(GetStockObject(SYSTEM_FONT), FontOf(dialog, 1014));
  EXPECT_EQ("21x12 600", Font(dialog, 1015));
  EXPECT_EQ("none", Font(dialog, 1016));
  EXPECT_EQ("none", Font(dialog, 1017));
  EXPECT_EQ("21x9 500", Font(dialog, 1018));
  EXPECT_EQ("21x9 400", Font(dialog, 1019));

  // What a real combo box makes of the field height and of the room for its list is its own affair.
  EXPECT_EQ("80,45 200x512", Place(dialog, 1022));
  EXPECT_EQ(21, GetWindowLongA(GetDlgItem(dialog, 1022), GWL_USERDATA));
  EXPECT_EQ("80,45 200x512", Place(dialog, 1023));
  EXPECT_EQ(25, GetWindowLongA(GetDlgItem(dialog, 1023), GWL_USERDATA));
}

TEST(DialogLayout, MarginsStayAndTheirExtremesAreDefined) {
  Dialog dialog;
  kv::CaptureLayout(dialog, dialog.slots, kLowest, kHighest);
  dialog.Resize(20 + 190, 10 + 50 + 480);
  dialog.Apply(50, 20, 10);  // 190 / 380, 480 / 240
  EXPECT_EQ(0.5f, dialog.scaleX);
  EXPECT_EQ(2.0f, dialog.scaleY);
  EXPECT_EQ("30,50 50x40", Place(dialog, 1011));

  dialog.Resize(20, 60);  // nothing but margins
  dialog.Apply(50, 20, 10);
  EXPECT_EQ(0.0f, dialog.scaleX);
  EXPECT_EQ(0.0f, dialog.scaleY);
  EXPECT_EQ("20,10 0x0", Place(dialog, 1011));

  dialog.Resize(800, 600);
  dialog.Apply(300, 400, 0);  // the captured area is nothing but margins
  EXPECT_EQ(1.0f, dialog.scaleX);
  EXPECT_EQ(1.0f, dialog.scaleY);
  EXPECT_EQ("40,30 100x20", Place(dialog, 1011));

  EXPECT_TRUE(dialog.Apply(INT_MAX, INT_MIN, INT_MAX));
  for (LayoutSlot& slot : dialog.slots) slot = {INT_MIN, INT_MAX, INT_MIN, INT_MAX};
  dialog.slots[0] = {0, 0, 1, 1};
  EXPECT_TRUE(dialog.Apply());
  EXPECT_TRUE(dialog.Apply(INT_MIN, INT_MIN, INT_MIN));
}

TEST(DialogLayout, DeletesTheFontsItReplaces) {
  Dialog dialog;
  kv::CaptureLayout(dialog, dialog.slots, kLowest, kHighest);
  const HFONT shared = CreateFontA(11, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
  for (const int id : {1010, 1012, 1015})
    SendDlgItemMessageA(dialog, id, WM_SETFONT, reinterpret_cast<WPARAM>(shared), 0);
  dialog.Apply();
  EXPECT_EQ(0u, GetObjectType(shared));
  EXPECT_NE(0u, GetObjectType(FontOf(dialog, 1015)));
  for (int i = 0; i < 3; ++i) {
    const HFONT before[] = {FontOf(dialog, 1010), FontOf(dialog, 1013), FontOf(dialog, 1018), FontOf(dialog, 1019)};
    dialog.Apply();
    for (const HFONT font : before) EXPECT_EQ(0u, GetObjectType(font));
  }
}

TEST(DialogLayout, RedrawsOnRequest) {
  Dialog dialog;
  ShowWindow(dialog, SW_SHOWNA);
  kv::CaptureLayout(dialog, dialog.slots, kLowest, kHighest);
  const auto paintsOf = [&](BOOL redraw) {
    dialog.CountOf(WM_PAINT);  // pumps
    dialog.seen().clear();
    kv::ApplyLayout(dialog, 0, 0, 0, kLowest, kHighest, dialog.slots, nullptr, nullptr, redraw);
    return std::count_if(dialog.seen().begin(), dialog.seen().end(),
                         [](const kvtest::SeenMessage& seen) { return seen.message == WM_PAINT; });
  };
  EXPECT_EQ(0, paintsOf(FALSE));
  EXPECT_EQ(1, paintsOf(TRUE));
}

TEST(LimitSizing, MovesTheDraggedEdges) {
  const auto limited = [](UINT edge, RECT window) {
    const BOOL changed = kv::LimitSizing(edge, &window, 412, 300);
    return std::to_string(changed) + ": " + std::to_string(window.left) + "," + std::to_string(window.top) + "," +
           std::to_string(window.right) + "," + std::to_string(window.bottom);
  };
  const RECT small{1000, 800, 1100, 900};
  EXPECT_EQ("0: 1000,800,1100,900", limited(0, small));
  EXPECT_EQ("1: 688,800,1100,900", limited(1, small));
  EXPECT_EQ("1: 1000,800,1412,900", limited(2, small));
  EXPECT_EQ("1: 1000,600,1100,900", limited(3, small));
  EXPECT_EQ("1: 688,600,1100,900", limited(4, small));
  EXPECT_EQ("1: 1000,600,1412,900", limited(5, small));
  EXPECT_EQ("1: 1000,800,1100,1100", limited(6, small));
  EXPECT_EQ("1: 688,800,1100,1100", limited(7, small));
  EXPECT_EQ("1: 1000,800,1412,1100", limited(8, small));
  EXPECT_EQ("0: 1000,800,1100,900", limited(9, small));
  EXPECT_EQ("0: 0,0,412,300", limited(8, {0, 0, 412, 300}));
  EXPECT_EQ("1: 0,0,412,400", limited(8, {0, 0, 411, 400}));
  limited(4, {INT_MAX, INT_MAX, INT_MIN, INT_MIN});
  EXPECT_FALSE(kv::LimitSizing(1, nullptr, 412, 300));
}

}  // namespace
