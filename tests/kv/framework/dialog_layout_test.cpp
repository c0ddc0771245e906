#include "kv/framework/dialog_layout.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>

#include "kv/framework/control_class.h"
#include "tests/support/test_window.h"

namespace {

using kv::LayoutSlot;
using kvtest::CreateControl;
using kvtest::RecordingParent;

constexpr int kFirstId = 1010, kLastId = 1999;

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

// Height x width and weight of the font created for a control.
std::string Font(HWND dialog, int id) {
  LOGFONTA font{};
  if (!GetObjectA(FontOf(dialog, id), sizeof(font), &font)) return "none";
  if (std::string("Arial Unicode MS") != font.lfFaceName) return font.lfFaceName;
  return std::to_string(font.lfHeight) + "x" + std::to_string(font.lfWidth) + " " + std::to_string(font.lfWeight);
}

// Accepts any size, has a field of 17 pixels and stores the field height that was set last.
LRESULT CALLBACK PlainComboBox(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == CB_GETITEMHEIGHT) return 17;
  if (message == CB_SETITEMHEIGHT) return SetWindowLongA(window, GWL_USERDATA, lParam);
  return DefWindowProcA(window, message, wParam, lParam);
}

struct Control {
  const char *className, *text;
  DWORD style;
  int id, kind;
  const char *scaled, *font;  // rectangle and font in a dialog twice as wide and 1.5 times as high
};

constexpr char kTwice[] = "80,45 200x30";
const Control kControls[] = {
    {"STATIC", "text", 0, 1010, 1, kTwice, "21x12 600"},
    {"STATIC", "", 0, 1011, 1, kTwice, "none"},
    {"BUTTON", "text", 0, 1012, 2, kTwice, "21x12 600"},
    {"EDIT", "text", 0, 1013, 3, kTwice, "25x9 600"},
    {"EDIT", "text", ES_MULTILINE, 1014, 3, kTwice, "System"},
    // How a real combo box uses the field height and the height of its list is not tested.
    {"COMBOBOX", "", CBS_DROPDOWNLIST, 1015, 4, nullptr, "21x12 600"},
    {"COMBOBOX", "", CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED, 1016, 4, nullptr, "none"},
    {"LISTBOX", "", LBS_NOINTEGRALHEIGHT, 1017, 5, kTwice, "none"},
    {"SysTabControl32", "", 0, 1018, 6, kTwice, "21x9 500"},
    {"SysTreeView32", "", 0, 1019, 7, kTwice, "21x9 400"},
    {"kvSimpleBitmap", "text", 16, 1020, 8, "80,45 200x40", "none"},  // height follows the width's scale
    {"kvSimpleBitmap", "text", 32, 1021, 8, "80,45 150x30", "none"},  // width follows the height's scale
    {"kvTestComboBox", "", 0, 1022, 4, "80,45 200x512", "none"},
    {"kvTestComboBox", "", CBS_OWNERDRAWFIXED, 1023, 4, "80,45 200x512", "none"},
    {"STATIC", "outside", 0, 2000, 1, "40,30 100x20", "none"},
    {"STATIC", "last", 0, 1999, 1, kTwice, "21x12 600"},
};

// A dialog of 400 x 300 with one control of each kind.
class Dialog : public RecordingParent {
 public:
  Dialog() : RecordingParent(false, 400, 300) {
    const WNDCLASSA bitmapClass{.lpfnWndProc = DefWindowProcA, .lpszClassName = "kvSimpleBitmap"};
    RegisterClassA(&bitmapClass);
    const WNDCLASSA comboClass{.lpfnWndProc = PlainComboBox, .lpszClassName = "kvTestComboBox"};
    RegisterClassA(&comboClass);
    for (const Control& control : kControls) {
      CreateControl(*this, control.className, control.text, control.style, {40, 30, 140, 50}, control.id);
    }
  }
  void Resize(int width, int height) { SetWindowPos(*this, nullptr, 0, 0, width, height, SWP_NOMOVE); }
  BOOL Apply(int bottom = 0, int left = 0, int top = 0) {
    return kv::ApplyLayout(*this, bottom, left, top, kFirstId, kLastId, slots, &scaleX, &scaleY, FALSE);
  }

  LayoutSlot slots[20]{};
  float scaleX = -1, scaleY = -1;
};

TEST(ControlKind, LastContainedNameWins) {
  kvtest::GuardedBytes unterminated(4);
  std::memcpy(unterminated.data(), "EDIT", 4);
  EXPECT_EQ(0, kv::ClassifyClassName(unterminated.as<char>()));
  EXPECT_EQ(3, kv::ClassifyClassName("MyEditBox"));
  EXPECT_EQ(4, kv::ClassifyClassName("ComboBoxEx32 with a Static"));
  EXPECT_EQ(7, kv::ClassifyClassName("systreeview32kvsimplebitmap"));
  EXPECT_EQ(0, kv::ClassifyClassName((std::string(60, 'x') + "EDIT").c_str()));
  EXPECT_EQ(3, kv::ClassifyClassName((std::string(59, 'x') + "EDIT").c_str()));

  const Dialog dialog;
  for (const Control& control : kControls) {
    EXPECT_EQ(control.kind, kv::ClassifyControl(GetDlgItem(dialog, control.id))) << control.id;
  }
  EXPECT_EQ(0, kv::ClassifyControl(dialog));
  EXPECT_EQ(0, kv::ClassifyControl(nullptr));
}

TEST(DialogLayout, CapturesTheRangeInWindowOrder) {
  Dialog dialog;
  EXPECT_TRUE(kv::CaptureLayout(dialog, dialog.slots, kFirstId, kLastId));
  const LayoutSlot expected[] = {{0, 0, 400, 300}, {40, 30, 100, 20}};
  EXPECT_EQ(0, memcmp(expected, dialog.slots, sizeof(expected)));
  EXPECT_EQ(SendDlgItemMessageA(dialog, 1015, CB_GETITEMHEIGHT, -1, 0), dialog.slots[6].height);
  EXPECT_EQ(17, dialog.slots[13].height);
  EXPECT_EQ(15, kv::LayoutSlotOf(dialog, kFirstId, kLastId, 1999));  // 2000 has no slot
  EXPECT_EQ(-1, kv::LayoutSlotOf(dialog, kFirstId, kLastId, 2000));
  EXPECT_EQ(-1, kv::LayoutSlotOf(nullptr, kFirstId, kLastId, 1010));

  // A layout array that ends early: controls that fit are captured and scaled, others stay.
  const kvtest::GuardedBytes memory(3 * sizeof(LayoutSlot) + 1);
  auto* slots = reinterpret_cast<LayoutSlot*>(memory.as<char>() + 1);
  EXPECT_TRUE(kv::CaptureLayout(dialog, slots, kFirstId, kLastId));
  EXPECT_EQ(100, slots[2].width);
  dialog.Resize(800, 300);
  EXPECT_TRUE(kv::ApplyLayout(dialog, 0, 0, 0, kFirstId, kLastId, slots, nullptr, nullptr, FALSE));
  EXPECT_EQ("80,30 200x20", Place(dialog, 1011));
  EXPECT_EQ("40,30 100x20", Place(dialog, 1012));

  for (const auto& [window, given] : {std::pair<HWND, LayoutSlot*>{dialog, nullptr}, {nullptr, slots}}) {
    EXPECT_FALSE(kv::CaptureLayout(window, given, kFirstId, kLastId));
    EXPECT_FALSE(kv::ApplyLayout(window, 0, 0, 0, kFirstId, kLastId, given, nullptr, nullptr, FALSE));
  }
}

TEST(DialogLayout, ScalesEachKindWithItsFont) {
  Dialog dialog;
  kv::CaptureLayout(dialog, dialog.slots, kFirstId, kLastId);
  dialog.Resize(800, 450);
  EXPECT_TRUE(dialog.Apply());
  EXPECT_EQ(2.0f, dialog.scaleX);
  EXPECT_EQ(1.5f, dialog.scaleY);
  for (const Control& control : kControls) {
    EXPECT_TRUE(!control.scaled || control.scaled == Place(dialog, control.id)) << Place(dialog, control.id);
    EXPECT_EQ(control.font, Font(dialog, control.id)) << control.id;
  }
  EXPECT_EQ(21, GetWindowLongA(GetDlgItem(dialog, 1022), GWL_USERDATA));
  EXPECT_EQ(25, GetWindowLongA(GetDlgItem(dialog, 1023), GWL_USERDATA));
}

TEST(DialogLayout, MarginsKeepTheirSizeAndExtremesAreDefined) {
  const struct {
    int width, height, bottom, left, top;
    float scaleX, scaleY;
    const char* place;
  } samples[] = {{20 + 190, 10 + 50 + 480, 50, 20, 10, 0.5f, 2.0f, "30,50 50x40"},  // 190 / 380, 480 / 240
                 {20, 60, 50, 20, 10, 0.0f, 0.0f, "20,10 0x0"},                     // only margins
                 {800, 600, 300, 400, 0, 1.0f, 1.0f, "40,30 100x20"}};              // the captured size
  Dialog dialog;
  kv::CaptureLayout(dialog, dialog.slots, kFirstId, kLastId);
  for (const auto& sample : samples) {
    dialog.Resize(sample.width, sample.height);
    dialog.Apply(sample.bottom, sample.left, sample.top);
    EXPECT_EQ(sample.scaleX, dialog.scaleX);
    EXPECT_EQ(sample.scaleY, dialog.scaleY);
    EXPECT_EQ(sample.place, Place(dialog, 1011));
  }
  EXPECT_TRUE(dialog.Apply(INT_MAX, INT_MIN, INT_MAX));
  for (LayoutSlot& slot : dialog.slots) slot = {INT_MIN, INT_MAX, INT_MIN, INT_MAX};
  dialog.slots[0] = {0, 0, 1, 1};
  EXPECT_TRUE(dialog.Apply());
  EXPECT_TRUE(dialog.Apply(INT_MIN, INT_MIN, INT_MIN));
}

TEST(DialogLayout, AControlAsLargeAsTheDialogRemainsAsLarge) {
  Dialog dialog;
  dialog.slots[0] = dialog.slots[1] = {0, 0, 413, 300};
  for (int width = 1; width <= 1100; ++width) {
    dialog.Resize(width, 300);
    kv::ApplyLayout(dialog, 0, 0, 0, 1011, 1011, dialog.slots, nullptr, nullptr, FALSE);
    ASSERT_EQ("0,0 " + std::to_string(width) + "x300", Place(dialog, 1011));
  }
}

TEST(DialogLayout, DeletesTheFontsItReplaces) {
  Dialog dialog;
  kv::CaptureLayout(dialog, dialog.slots, kFirstId, kLastId);
  const HFONT shared = CreateFontA(11, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
  for (const int id : {1010, 1012, 1015})
    SendDlgItemMessageA(dialog, id, WM_SETFONT, reinterpret_cast<WPARAM>(shared), 0);
  dialog.Apply();
  EXPECT_EQ(0u, GetObjectType(shared));
  EXPECT_NE(0u, GetObjectType(FontOf(dialog, 1015)));
  const HFONT before[] = {FontOf(dialog, 1010), FontOf(dialog, 1013), FontOf(dialog, 1018), FontOf(dialog, 1019)};
  dialog.Apply();
  for (const HFONT font : before) EXPECT_EQ(0u, GetObjectType(font));
}

TEST(DialogLayout, RedrawsOnRequest) {
  Dialog dialog;
  ShowWindow(dialog, SW_SHOWNA);
  kv::CaptureLayout(dialog, dialog.slots, kFirstId, kLastId);
  for (const BOOL redraw : {FALSE, TRUE}) {
    const int before = dialog.CountOf(WM_PAINT);
    kv::ApplyLayout(dialog, 0, 0, 0, kFirstId, kLastId, dialog.slots, nullptr, nullptr, redraw);
    ValidateRect(dialog, nullptr);  // discards pending paints
    EXPECT_EQ(before + redraw, dialog.CountOf(WM_PAINT));
  }
}

TEST(LimitSizing, MovesTheDraggedEdges) {
  const auto limited = [](UINT edge, RECT window, const RECT& expected) {
    const BOOL changed = kv::LimitSizing(edge, &window, 412, 300);
    EXPECT_TRUE(EqualRect(&expected, &window)) << edge;
    return changed;
  };
  constexpr RECT kSmall{1000, 800, 1100, 900};
  for (UINT edge = 0; edge < 10; ++edge) {
    const auto isOneOf = [&](const char* edges) { return std::strchr(edges, static_cast<int>('0' + edge)) != nullptr; };
    const RECT expected{isOneOf("147") ? 688 : 1000, isOneOf("345") ? 600 : 800, isOneOf("258") ? 1412 : 1100,
                        isOneOf("678") ? 1100 : 900};
    EXPECT_EQ(edge % 9 != 0, limited(edge, kSmall, expected)) << edge;
  }
  EXPECT_FALSE(limited(8, {0, 0, 412, 300}, {0, 0, 412, 300}));
  EXPECT_TRUE(limited(8, {0, 0, 411, 400}, {0, 0, 412, 400}));
  RECT wild{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
  kv::LimitSizing(4, &wild, 412, 300);
  EXPECT_FALSE(kv::LimitSizing(1, nullptr, 412, 300));
}

}  // namespace
