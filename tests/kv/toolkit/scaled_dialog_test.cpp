#include "kv/toolkit/scaled_dialog.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kv/framework/bitmaps.h"
#include "kv/framework/dialog.h"
#include "kv/framework/guards.h"
#include "kv/framework/modules.h"
#include "kv/framework/tooltips.h"
#include "kv/framework/window_position.h"
#include "kv/lists/extended_list.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/classes.h"
#include "kv/toolkit/empty_text.h"
#include "kv/toolkit/keyboard.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/pages.h"
#include "tests/kv/toolkit/ids.h"
#include "tests/support/replaced_import.h"
#include "tests/support/running_program.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

using kvtest::PlaceOf;
using kvtest::TextOf;

constexpr COLORREF kGround = RGB(10, 20, 200);

std::vector<UINT> seen;
UINT answered = 0;   // the message for which the procedure returns TRUE
UINT destroyAt = 0;  // the message at which it destroys the dialog
UINT postAtStart = 0;

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  seen.push_back(message);
  if (message == destroyAt) {
    DestroyWindow(dialog);
    return TRUE;
  }
  if (message == WM_INITDIALOG) {
    if (lParam != 77) return FALSE;
    PostMessageW(GetDlgItem(dialog, IDC_EDIT), WM_CHAR, L'Ω', 0);
    if (postAtStart) PostMessageA(dialog, postAtStart, IDOK, 0);
    return TRUE;
  }
  if (message == WM_APP) {
    EXPECT_EQ(L"Ω", TextOf(GetDlgItem(dialog, IDC_EDIT)));
    PostQuitMessage(static_cast<int>(wParam) + 6);
  }
  return message == answered;
}

const TooltipEntry kTips[] = {{IDC_LABEL, MAKEINTRESOURCEW(IDS_ENGLISH_ONLY)}};
const ScaledDialog kTest{.templateName = L"TEST",
                         .procedure = Procedure,
                         .parameter = 77,
                         .positionName = "Test.Toolkit",
                         .background = kGround,
                         .tips = kTips,
                         .firstId = 100,
                         .lastId = 199};

class ScaledDialogTest : public testing::Test {
 protected:
  void SetUp() override {
    modules = {.resources = GetModuleHandleA(nullptr), .application = GetModuleHandleA(nullptr)};
    ASSERT_TRUE(RegisterAllClasses(modules.application, TRUE));
    ModelessDialogs(nullptr, nullptr, kModelessReset);
    answered = destroyAt = postAtStart = 0;
    seen.clear();
  }
  void TearDown() override {
    UnloadLanguages();
    EXPECT_TRUE(RegisterAllClasses(modules.application, FALSE));
  }
};

TEST_F(ScaledDialogTest, ScalesKeepsItsMinimumSizeAndRestoresItsPosition) {
  HWND dialog = OpenDialog(nullptr, kTest);
  ASSERT_TRUE(dialog);
  const SIZE client = ClientSize(dialog);
  const RECT edit = PlaceOf(dialog, IDC_EDIT), outside = PlaceOf(dialog, IDC_OUTSIDE);
  RECT window{};
  GetWindowRect(dialog, &window);
  const int frameX = window.right - window.left - client.cx, frameY = window.bottom - window.top - client.cy;
  AddListNavigation(GetDlgItem(dialog, IDC_ROWS));
  MoveWindow(dialog, 40, 50, 2 * client.cx + frameX, 3 * client.cy + frameY, TRUE);
  const RECT grown = PlaceOf(dialog, IDC_EDIT), kept = PlaceOf(dialog, IDC_OUTSIDE);
  EXPECT_EQ(2 * edit.left, grown.left);
  EXPECT_NEAR(3 * (edit.top + edit.bottom), grown.top + grown.bottom, 2);
  EXPECT_NEAR(edit.bottom - edit.top + 14, grown.bottom - grown.top,
              1);  // the edges and its text, by the smaller scale
  EXPECT_TRUE(GetWindowLongW(GetDlgItem(dialog, IDC_LABEL), GWL_STYLE) & SS_CENTERIMAGE);  // on the field's line
  const RECT combo = PlaceOf(dialog, IDC_COMBO);
  EXPECT_NEAR(grown.top + grown.bottom, combo.top + combo.bottom, 8);  // so is a combo box
  EXPECT_TRUE(EqualRect(&outside, &kept));
  EXPECT_EQ(3, ScaleOf(dialog).y);
  const auto font = reinterpret_cast<HGDIOBJ>(SendDlgItemMessageA(dialog, IDC_OUTSIDE, WM_GETFONT, 0, 0));
  EXPECT_EQ(static_cast<DWORD>(OBJ_FONT), GetObjectType(font));  // shared with others, which got new ones
  for (const int id : {IDC_EMPTY, IDC_LABEL, IDC_EDIT}) {
    LOGFONTW look{};
    GetObjectW(reinterpret_cast<HGDIOBJ>(SendDlgItemMessageW(dialog, id, WM_GETFONT, 0, 0)), sizeof(look), &look);
    EXPECT_EQ(std::tuple(28, 0), std::tuple(look.lfHeight, look.lfWidth)) << id;
  }
  EXPECT_EQ(28, TextHeightOf(dialog));
  SendDlgItemMessageA(dialog, IDC_ROWS, LB_SETCOUNT, 5, 0);
  EXPECT_EQ(kHeaderRow, ListRowAt(GetDlgItem(dialog, IDC_ROWS), {0, 50}));  // a row of 3 x 17
  EXPECT_EQ(0u, ListRowAt(GetDlgItem(dialog, IDC_ROWS), {0, 51}));
  UpdateWindow(dialog);
  EXPECT_EQ(kGround, GetPixel(WindowDc(dialog), 2, 2));

  MINMAXINFO limits{};
  SendMessageA(dialog, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
  EXPECT_EQ(std::tuple(window.right - window.left, window.bottom - window.top),
            std::tuple(limits.ptMinTrackSize.x, limits.ptMinTrackSize.y));

  GetWindowRect(dialog, &window);
  answered = WM_CLOSE;
  SendMessageA(dialog, WM_CLOSE, 0, 0);
  EXPECT_TRUE(IsWindow(dialog));
  EXPECT_TRUE(ModelessDialogs(dialog, nullptr, kModelessRemove));  // the dialog was in the table
  answered = 0;
  SendMessageA(dialog, WM_CLOSE, 0, 0);
  EXPECT_FALSE(IsWindow(dialog));
  EXPECT_EQ(0u, GetObjectType(font));
  dialog = OpenDialog(nullptr, kTest);
  RECT restored{};
  GetWindowRect(dialog, &restored);
  EXPECT_TRUE(EqualRect(&window, &restored));
  DestroyWindow(dialog);
  EXPECT_FALSE(ModelessDialogs(dialog, nullptr, kModelessRemove));
}

TEST_F(ScaledDialogTest, TakesAcceleratorsThatTheFocusedControlDoesNotUse) {
  ScaledDialog keyed = kTest;
  keyed.accelerators = L"KEYS";
  HWND dialog = OpenDialog(nullptr, keyed);
  HWND button = CreateWindowA("BUTTON", "", WS_CHILD | WS_VISIBLE, 0, 0, 9, 9, dialog, nullptr, nullptr, nullptr);
  const auto isTaken = [&](HWND focused, WPARAM key, bool control) {
    kvtest::HoldKey(control ? VK_CONTROL : 0);
    MSG message{.hwnd = focused, .message = WM_KEYDOWN, .wParam = key};
    seen.clear();
    const bool taken = TakeAccelerator(dialog, &message);
    EXPECT_EQ(taken ? 1 : 0, std::ranges::count(seen, static_cast<UINT>(WM_COMMAND)));
    return taken;
  };
  HWND edit = GetDlgItem(dialog, IDC_EDIT), rows = GetDlgItem(dialog, IDC_ROWS);
  EXPECT_TRUE(isTaken(rows, 'K', false) && isTaken(rows, 'C', true) && isTaken(rows, VK_SPACE, false));
  EXPECT_TRUE(isTaken(edit, 'O', true) && isTaken(button, 'K', false));
  EXPECT_FALSE(isTaken(edit, 'K', false) || isTaken(edit, 'C', true) || isTaken(edit, VK_SPACE, false) ||
               isTaken(button, VK_SPACE, false) || isTaken(rows, 'X', false));
  EnableWindow(dialog, FALSE);
  EXPECT_FALSE(isTaken(rows, 'K', false));  // while a box is open
  DestroyWindow(dialog);
}

TEST_F(ScaledDialogTest, SwitchesTheLanguageOfEveryDialogAndFreesTheLibrary) {
  EXPECT_EQ(0, LoadLanguages(L"test_toolkit"));
  HWND dialog = OpenDialog(nullptr, kTest), other = OpenDialog(nullptr, kTest);
  const auto tips = [] {
    HWND tip = nullptr;
    // Only this process's: other programs have tooltips, too.
    do {
      tip = FindWindowExA(nullptr, tip, "tooltips_class32", nullptr);
    } while (tip && GetWindowThreadProcessId(tip, nullptr) != GetCurrentThreadId());
    return tip;
  };
  const HWND formerTips = tips();
  seen.clear();
  EXPECT_EQ(1, SwitchLanguage(dialog, L"TEST", 1));
  EXPECT_EQ(1, CurrentLanguage());
  EXPECT_EQ(2, std::count(seen.begin(), seen.end(), kLanguageChanged));
  EXPECT_FALSE(IsWindow(formerTips));
  EXPECT_EQ(1, SendMessageA(tips(), TTM_GETTOOLCOUNT, 0, 0));  // in English, because the language has no text
  for (HWND each : {dialog, other}) {
    EXPECT_EQ(L"Prüfung Ω", TextOf(each));
    EXPECT_EQ(L"Schild", TextOf(GetDlgItem(each, IDC_LABEL)));
    EXPECT_EQ(L"Outside", TextOf(GetDlgItem(each, IDC_OUTSIDE)));
  }
  EXPECT_EQ(L"ja", ResourceText(IDS_BOTH));
  EXPECT_EQ(L"only", ResourceText(IDS_ENGLISH_ONLY));
  EXPECT_TRUE(GetModuleHandleA("test_toolkitGE.dll"));

  EXPECT_EQ(0, SwitchLanguage(dialog, nullptr, 0));
  EXPECT_EQ(L"Label", TextOf(GetDlgItem(dialog, IDC_LABEL)));
  EXPECT_FALSE(GetModuleHandleA("test_toolkitGE.dll"));
  SwitchLanguage(dialog, nullptr, 1);
  DestroyWindow(dialog);
  DestroyWindow(other);
  UnloadLanguages();
  EXPECT_FALSE(GetModuleHandleA("test_toolkitGE.dll"));
  EXPECT_EQ(1, LoadLanguages(L"test_toolkit"));  // the choice was stored
}

TEST_F(ScaledDialogTest, RunsAWholeProgramWithAModalDialog) {
  postAtStart = WM_COMMAND;
  EXPECT_EQ(IDOK, RunModalDialog(nullptr, kTest));
  postAtStart = WM_CLOSE;
  EXPECT_EQ(IDCANCEL, RunModalDialog(nullptr, kTest));
  const HINSTANCE instance = modules.application;
  RegisterAllClasses(instance, FALSE);
  EXPECT_EQ(0, RunDialog(instance, kTest));
  postAtStart = WM_APP;
  EXPECT_EQ(IDOK + 6, RunDialog(instance, kTest));
  EXPECT_EQ(nullptr, FindWindowA("kvDialog", "Test"));
  EXPECT_EQ(-1, RunDialog(instance, {.templateName = L"MISSING"}));
  EXPECT_EQ(static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND), GetLastError());
  EXPECT_EQ(-1, RunDialog(instance, {.templateName = L"MISSPELT"}));
  EXPECT_EQ(static_cast<DWORD>(ERROR_CANNOT_FIND_WND_CLASS), GetLastError());
  WNDCLASSA ignored{};
  EXPECT_FALSE(GetClassInfoA(instance, kDialogClass, &ignored));
  ASSERT_TRUE(RegisterAllClasses(instance, TRUE));
  EXPECT_FALSE(RegisterAllClasses(instance, TRUE));  // already registered
}

RECT StoredPlace() {
  HWND window = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
  WindowPosition(window, kTest.positionName, kPositionRestore);
  RECT place{};
  GetWindowRect(window, &place);
  DestroyWindow(window);
  return place;
}

TEST_F(ScaledDialogTest, SavesItsStateWhenTheSessionEnds) {
  HWND dialog = OpenDialog(nullptr, kTest);
  EnableWindow(dialog, FALSE);  // a box is open
  SetWindowPos(dialog, nullptr, 61, 62, 500, 400, SWP_NOZORDER);
  const RECT expected{61, 62, 561, 462};
  EXPECT_TRUE(SendMessageW(dialog, WM_QUERYENDSESSION, 0, 0));
  seen.clear();
  SendMessageW(dialog, WM_ENDSESSION, FALSE, 0);  // another program has refused
  EXPECT_EQ(0, std::ranges::count(seen, kSaveState));
  SendMessageW(dialog, WM_ENDSESSION, TRUE, 0);
  EXPECT_EQ(1, std::ranges::count(seen, kSaveState));
  const RECT stored = StoredPlace();
  EXPECT_TRUE(EqualRect(&expected, &stored));
  MSG message{};
  EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  DestroyWindow(dialog);
  EXPECT_EQ(2, std::ranges::count(seen, kSaveState));
}

TEST_F(ScaledDialogTest, SavesTheNormalSizeOfAMaximizedOrMinimizedWindow) {
  for (const int state : {SW_MAXIMIZE, SW_MINIMIZE}) {
    HWND dialog = OpenDialog(nullptr, kTest);
    SetWindowPos(dialog, nullptr, 50 + state, 62, 500, 400, SWP_NOZORDER);
    RECT normal{};
    GetWindowRect(dialog, &normal);
    ShowWindow(dialog, state);
    DestroyWindow(dialog);
    const RECT stored = StoredPlace();
    EXPECT_TRUE(EqualRect(&normal, &stored)) << state << ": " << stored.left << ' ' << stored.right;
  }
}

TEST_F(ScaledDialogTest, StoresUnderTheProgramsOwnKey) {
  constexpr char kOwn[] = "Software\\Toolkit test\\Own";
  SetSettingsKey(kOwn);
  LoadLanguages(L"test_toolkit", 1);
  DestroyWindow(OpenDialog(nullptr, kTest));
  SetSettingsKey(nullptr);
  UnloadLanguages();
  for (const char* key :
       {"Software\\Toolkit test\\Own\\WindowPositions", "Software\\Toolkit test\\Own\\Configuration\\test_toolkit"}) {
    HKEY found = nullptr;
    EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, key, 0, KEY_READ, &found)) << key;
    RegCloseKey(found);
    RegDeleteKeyA(HKEY_CURRENT_USER, key);
  }
}

TEST_F(ScaledDialogTest, ATranslatedMenuItemKeepsItsKey) {
  LoadLanguages(L"test_toolkit", 1);
  ScaledDialog withMenu = kTest;
  withMenu.menu = L"MENUS";
  HWND dialog = OpenDialog(nullptr, withMenu);
  wchar_t text[40] = L"";
  GetMenuStringW(GetMenu(dialog), IDM_KEY, text, ARRAYSIZE(text), MF_BYCOMMAND);
  EXPECT_STREQ(L"&Taste\tCtrl+K", text);
  DestroyWindow(dialog);
}

int WINAPI HighDpi(HDC, int what) {
  return what == LOGPIXELSX || what == LOGPIXELSY ? 192 : 32;
}

std::wstring aboutText;

// Reads the about box, and closes it.
void CALLBACK ReadAboutBox(HWND, UINT, UINT_PTR timer, DWORD) {
  const HWND box = FindWindowW(L"#32770", CurrentLanguage() ? L"Info" : L"About");
  if (!box) return;
  KillTimer(nullptr, timer);
  for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    aboutText += kvtest::TextOf(child) + L"|";
  }
  PostMessageW(box, WM_COMMAND, IDOK, 0);
}

TEST_F(ScaledDialogTest, ShowsItsVersionFromTheSystemMenu) {
  ScaledDialog versioned = kTest;
  versioned.version = L"1.2";
  HWND dialog = OpenDialog(nullptr, versioned);
  LoadLanguages(L"test_toolkit");
  const HMENU menu = GetSystemMenu(dialog, FALSE);
  const UINT item = GetMenuItemID(menu, GetMenuItemCount(menu) - 1);
  for (const int language : {0, 1}) {
    SwitchLanguage(dialog, nullptr, language);
    SendMessageW(dialog, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), MAKELPARAM(0, TRUE));
    wchar_t text[32] = L"";
    GetMenuStringW(menu, item, text, ARRAYSIZE(text), MF_BYCOMMAND);
    EXPECT_STREQ(language ? L"Info..." : L"About...", text);
    SetTimer(nullptr, 0, 20, ReadAboutBox);
    SendMessageW(dialog, WM_SYSCOMMAND, item, 0);
    EXPECT_NE(std::wstring::npos, aboutText.find(kvtest::TextOf(dialog) + L" 1.2|")) << language;
  }
  DestroyWindow(dialog);
}

TEST_F(ScaledDialogTest, KeepsItsTextsReadable) {
  ScaledDialog small = kTest;
  small.positionName = nullptr;
  small.minimumSize = {1, 1};
  HWND dialog = OpenDialog(nullptr, small);
  RECT inTemplate{};
  GetWindowRect(dialog, &inTemplate);
  SetWindowPos(dialog, nullptr, 0, 0, 1, 1, SWP_NOMOVE | SWP_NOZORDER);
  RECT smallest{};
  GetWindowRect(dialog, &smallest);
  EXPECT_EQ(MulDiv(inTemplate.right - inTemplate.left, 11, 14), smallest.right - smallest.left);
  EXPECT_EQ(11, TextHeightOf(dialog));
  MEASUREITEMSTRUCT row{.CtlType = ODT_LISTBOX, .CtlID = IDC_ROWS, .itemHeight = 40};
  SendMessageW(dialog, WM_MEASUREITEM, IDC_ROWS, reinterpret_cast<LPARAM>(&row));
  // Nor do rows shrink further than their texts.
  MEASUREITEMSTRUCT usual{.CtlType = ODT_LISTBOX, .CtlID = IDC_ROWS, .itemHeight = 17};
  SendMessageW(dialog, WM_MEASUREITEM, IDC_ROWS, reinterpret_cast<LPARAM>(&usual));
  EXPECT_EQ(15u, usual.itemHeight);
  const kvtest::ReplacedImport dpi("GetDeviceCaps", reinterpret_cast<void*>(HighDpi));
  ASSERT_TRUE(dpi.isInPlace());
  MEASUREITEMSTRUCT larger{.CtlType = ODT_LISTBOX, .CtlID = IDC_ROWS, .itemHeight = 40};
  SendMessageW(dialog, WM_MEASUREITEM, IDC_ROWS, reinterpret_cast<LPARAM>(&larger));
  EXPECT_NEAR(2 * row.itemHeight, larger.itemHeight, 1);
  EXPECT_EQ(22, TextHeightOf(dialog));
  DestroyWindow(dialog);
}

TEST_F(ScaledDialogTest, FitsOnAScreenSmallerThanItsTemplate) {
  HWND dialog = OpenDialog(nullptr, {.templateName = L"LARGE"});
  RECT work{}, window{}, label{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  GetWindowRect(dialog, &window);
  GetWindowRect(GetDlgItem(dialog, IDC_LABEL), &label);
  EXPECT_TRUE(EqualRect(&work, &window));
  EXPECT_TRUE(label.right <= window.right && label.bottom <= window.bottom) << label.right << ',' << label.bottom;
  DestroyWindow(dialog);
}

// The procedure may destroy the dialog in any message; the toolkit must not use it afterward.
TEST_F(ScaledDialogTest, MayBeDestroyedByItsProcedureAtAnyTime) {
  LoadLanguages(L"test_toolkit");
  constexpr UINT kMessages[] = {WM_INITDIALOG, kLanguageChanged, WM_SIZE, WM_PAINT, WM_NOTIFYFORMAT, WM_CTLCOLORSTATIC};
  for (const UINT message : kMessages) {
    destroyAt = message;
    HWND dialog = OpenDialog(nullptr, kTest);
    if (IsWindow(dialog)) {
      SendMessageW(dialog, message, 0, 0);
      EXPECT_FALSE(IsWindow(dialog));
    }
    EXPECT_FALSE(ModelessDialogs(dialog, nullptr, kModelessRemove)) << message;
  }
  destroyAt = 0;
  HWND dialog = OpenDialog(nullptr, kTest);
  for (const LPARAM address : {0, 1, 77}) SendMessageW(dialog, WM_INITDIALOG, 0, address);
  for (const int message : {WM_MEASUREITEM, WM_NOTIFY, WM_GETMINMAXINFO}) SendMessageW(dialog, message, 1, 1);
  DestroyWindow(dialog);
}

TEST_F(ScaledDialogTest, ShowsATextInAnEmptyFieldOnly) {
  HWND dialog = OpenDialog(nullptr, kTest);
  const HWND field = GetDlgItem(dialog, IDC_EDIT);
  EXPECT_FALSE(SetEmptyText(dialog, IDC_LABEL, L"Hint") || SetEmptyText(dialog, IDC_OUTSIDE + 99, L"Hint"));
  const auto isGray = [field] {
    RedrawWindow(field, nullptr, nullptr, RDW_UPDATENOW);
    const WindowDc dc(field);
    const SIZE size = ClientSize(field);
    for (int i = 0; i < size.cx * size.cy; ++i) {
      const COLORREF color = GetPixel(dc, i % size.cx, i / size.cx);
      if (color != GetSysColor(COLOR_WINDOW) && color != GetSysColor(COLOR_WINDOWTEXT)) return true;
    }
    return false;
  };
  EXPECT_FALSE(isGray());
  EXPECT_TRUE(SetEmptyText(dialog, IDC_EDIT, L"Former") && SetEmptyText(dialog, IDC_EDIT, L"Hint"));
  EXPECT_TRUE(isGray());
  EXPECT_EQ(L"", TextOf(field));
  SendMessageW(field, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"x"));
  EXPECT_FALSE(isGray());
  SetWindowTextW(field, L"");
  EXPECT_TRUE(isGray());
  DestroyWindow(dialog);
}

// The widths that a control's frame takes at the left and the right.
std::pair<LONG, LONG> SideWidths(HWND control) {
  RECT window{}, client{};
  GetWindowRect(control, &window);
  GetClientRect(control, &client);
  MapWindowPoints(control, nullptr, reinterpret_cast<POINT*>(&client), 2);
  return {std::min(client.left, client.right) - window.left, window.right - std::max(client.left, client.right)};
}

// Without a change of the dialog's size.
TEST_F(ScaledDialogTest, MovesScrollBarsWithTheDirection) {
  const LONG bar = GetSystemMetrics(SM_CXVSCROLL);
  for (const int first : {0, 15}) {
    LoadLanguages(L"test_toolkit", first);  // the German library replaces the Arabic one
    HWND dialog = OpenDialog(nullptr, kTest);
    for (const int language : {first, 15 - first, first}) {
      SwitchLanguage(nullptr, nullptr, language);
      for (const int id : {IDC_ROWS, IDC_LINES}) {
        const auto [left, right] = SideWidths(GetDlgItem(dialog, id));
        EXPECT_EQ(language ? bar : -bar, left - right) << first << ' ' << language << ' ' << id;
      }
    }
    DestroyWindow(dialog);
  }
}

TEST_F(ScaledDialogTest, ShowsPagesThatScaleAndChangeTheLanguage) {
  LoadLanguages(L"test_toolkit");
  static const ScaledDialog kFirst{.templateName = L"PAGE", .procedure = Procedure, .tickMs = 10},
      kSecond{.templateName = L"PAGE"};
  HWND dialog = OpenDialog(nullptr, kTest);
  seen.clear();
  HWND page = ShowPage(dialog, IDC_ROWS, kFirst);
  ASSERT_TRUE(page);
  EXPECT_EQ(1, std::count(seen.begin(), seen.end(), kPageShown));
  const auto ticks = [] { return std::ranges::count(seen, static_cast<UINT>(WM_TIMER)); };
  EXPECT_EQ(1, ticks());
  EXPECT_TRUE(kvtest::WaitUntil([&] { return ticks() >= 3; }));
  const auto isInPlace = [&](HWND shown) {
    RECT place{}, window{};
    GetWindowRect(GetDlgItem(dialog, IDC_ROWS), &place);
    GetWindowRect(shown, &window);
    return EqualRect(&place, &window) && IsWindowVisible(shown);
  };
  EXPECT_TRUE(isInPlace(page));
  SetFocus(GetDlgItem(page, IDC_EDIT));
  HWND other = ShowPage(dialog, IDC_ROWS, kSecond);
  EXPECT_EQ(GetDlgItem(other, IDC_EDIT), GetFocus());
  EXPECT_FALSE(IsWindowVisible(page));
  seen.clear();
  EXPECT_FALSE(kvtest::WaitUntil([&] { return ticks() > 0; }, std::chrono::milliseconds(50)));
  for (const int language : {15, 0}) {
    SwitchLanguage(nullptr, nullptr, language);  // the German library replaces the Arabic one
    EXPECT_EQ(language ? L"Schild" : L"Label", TextOf(GetDlgItem(page, IDC_LABEL)));
    for (HWND each : {dialog, page, GetDlgItem(page, IDC_LABEL)}) {
      EXPECT_EQ(language != 0, (GetWindowLongW(each, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0);
    }
    MoveWindow(dialog, 30, 30, 500 + language, 400, TRUE);
    EXPECT_TRUE(isInPlace(other));
  }
  EXPECT_EQ(page, ShowPage(dialog, IDC_ROWS, kFirst));
  EnableControl(page, IDC_EDIT, true);
  SetFocus(GetDlgItem(page, IDC_EDIT));
  EnableControl(page, IDC_EDIT, false);
  EXPECT_TRUE(IsWindowEnabled(GetFocus()));
  SetFocus(GetDlgItem(page, IDC_OUTSIDE));
  ShowWindow(dialog, SW_MINIMIZE);
  EXPECT_EQ(other, ShowPage(dialog, IDC_ROWS, kSecond));
  EXPECT_FALSE(IsChild(page, GetFocus())) << "a page that is hidden while minimized";
  MSG key{.hwnd = GetDlgItem(page, IDC_OUTSIDE), .message = WM_KEYDOWN, .wParam = VK_DOWN};
  EXPECT_FALSE(TakeKey(dialog, &key) || IsChild(page, key.hwnd));
  ShowWindow(dialog, SW_RESTORE);
  EXPECT_TRUE(IsWindowVisible(GetFocus()));
  EXPECT_EQ(page, ShowPage(dialog, IDC_ROWS, kFirst));
  EXPECT_EQ(nullptr, ShowPage(dialog, IDC_ROWS, {.templateName = L"MISSING"}));
  EXPECT_EQ(page, ShownPage(dialog));
  DestroyWindow(dialog);
}

}  // namespace
}  // namespace kv
