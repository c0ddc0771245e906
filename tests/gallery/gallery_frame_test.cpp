// The gallery's frame within the test's process, with the gallery's language libraries.
#include <windows.h>

#include <commctrl.h>
#include <ddeml.h>
#include <gtest/gtest.h>
#include <shellapi.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "camera/optical_flow_chart.h"
#include "gallery/frame.h"
#include "gallery/pages.h"
#include "gallery/pages/mesh_view.h"
#include "gallery/resource_ids.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/language.h"
#include "kv/framework/modules.h"
#include "kv/framework/shell_launch.h"
#include "kv/framework/utf8.h"
#include "kv/lists/extended_list.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/classes.h"
#include "kv/toolkit/keyboard.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/pages.h"
#include "kv/toolkit/scaled_dialog.h"
#include "kv/toolkit/text_tips.h"
#include "tests/support/running_program.h"
#include "tests/support/test_window.h"

namespace gallery {
namespace {

class GalleryFrame : public testing::Test {
 protected:
  // One frame for all tests: its pages store their windows in static variables.
  static void SetUpTestSuite() {
    kv::modules = {.resources = GetModuleHandleW(nullptr), .application = GetModuleHandleW(nullptr)};
    LoadLibraryA("RichEd32.dll");
    kv::RegisterAllClasses(kv::modules.application, TRUE);
    kv::RegisterChartClass(kv::modules.application, TRUE);
    RegisterMeshViewClass(kv::modules.application, TRUE);
    kv::LoadLanguages(kFileStem, 0);
    static const StartOptions kOptions{.page = 0};
    frame_ = kv::OpenDialog(nullptr, FrameDialog(kOptions));
  }
  static void TearDownTestSuite() {
    DestroyWindow(frame_);
    kv::UnloadLanguages();
  }

  // Except timers: on a slow machine one is always pending.
  static void Pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (message.message == WM_TIMER || kv::TakeAccelerator(frame_, &message) || kv::TakeKey(frame_, &message) ||
          IsDialogMessageW(frame_, &message))
        continue;
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
  static void Press(WPARAM key, int heldKey = 0) {
    kvtest::HoldKey(heldKey);
    PostMessageW(GetFocus(), WM_KEYDOWN, key, 1);
    Pump();
  }
  // The tests' desktop may be smaller than the requested size, which must not be clamped.
  static void Size(int width, int height) {
    SetWindowPos(frame_, nullptr, 0, 0, width, height, SWP_NOZORDER | SWP_NOSENDCHANGING);
    RECT window;
    GetWindowRect(frame_, &window);
    EXPECT_EQ(width, window.right - window.left);
  }
  static void ChooseLanguage(int language) { kv::SwitchLanguage(nullptr, nullptr, language); }
  static HWND ShownPage() { return kv::ShownPage(frame_); }
  static HWND PageAt(size_t index) { return kv::PageWindow(frame_, AllPages()[index].dialog); }
  static HWND PageList() { return GetDlgItem(frame_, IDC_PAGE_LIST); }

  inline static HWND frame_;
};

// ---- All languages --------------------------------------------------------------------------------------------------

// Makes the windows draw the rows of their lists, and the frame's header with each page, off screen.
void DrawAll(HWND frame) {
  const auto pageAt = [frame](int index) { return kv::PageWindow(frame, AllPages()[index].dialog); };
  const SIZE client = kv::ClientSize(frame);
  const kvtest::TestBitmap bitmap(client.cx, client.cy);
  const FrameLayout layout = LayoutFor(client);
  const HWND overview = pageAt(PAGE_INDEX_OVERVIEW);
  const auto drawRow = [&bitmap](HWND parent, UINT controlId, UINT row, UINT page, UINT state) {
    DRAWITEMSTRUCT item{.CtlType = ODT_LISTBOX, .CtlID = controlId, .itemID = row, .itemState = state};
    item.hDC = bitmap.dc();
    item.itemData = page;
    SendDlgItemMessageW(parent, static_cast<int>(controlId), LB_GETITEMRECT, row,
                        reinterpret_cast<LPARAM>(&item.rcItem));
    SendMessageW(parent, WM_DRAWITEM, controlId, reinterpret_cast<LPARAM>(&item));
  };
  for (UINT i = 0; i < AllPages().size(); ++i) {
    DrawHeader(bitmap.dc(), {layout.listWidth, 0, client.cx, layout.headerHeight}, layout, static_cast<int>(i));
    drawRow(frame, IDC_PAGE_LIST, i, i, ODS_SELECTED);
    if (i > 0) drawRow(overview, IDC_OVERVIEW_INDEX, i - 1, i, 0);
  }
  for (const auto& [index, listId] :
       {std::pair(PAGE_INDEX_LIST, IDC_LIST_LIST), {PAGE_INDEX_LANGUAGE, IDC_LANGUAGE_TABLE}}) {
    DRAWITEMSTRUCT header{.CtlID = static_cast<UINT>(listId), .itemID = kv::kHeaderRow};
    header.hDC = bitmap.dc();
    SCROLLINFO width{.cbSize = sizeof(width), .fMask = SIF_RANGE};
    GetScrollInfo(GetDlgItem(pageAt(index), listId), SB_HORZ, &width);
    header.rcItem = {0, 0, width.nMax + 1, layout.rowHeight};
    SendMessageW(pageAt(index), WM_DRAWITEM, header.CtlID, reinterpret_cast<LPARAM>(&header));
  }
}

// A text that fits a narrower control fits: Wine 10 breaks some Japanese lines too late, beyond the control's width.
bool FitsNarrower(HWND control) {
  RECT place;
  GetWindowRect(control, &place);
  const SIZE size{place.right - place.left, place.bottom - place.top};
  constexpr int kTwoCharacters = 24;
  constexpr UINT kSizeOnly = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOREDRAW;
  bool fits = false;
  for (int less = 1; !fits && less < kTwoCharacters; ++less) {
    SetWindowPos(control, nullptr, 0, 0, size.cx - less, size.cy, kSizeOnly);
    fits = kv::TruncatedTextOf(control).empty();
  }
  SetWindowPos(control, nullptr, 0, 0, size.cx, size.cy, kSizeOnly);
  return fits;
}

TEST_F(GalleryFrame, TextsFitTheirControlsInEveryLanguage) {
  const auto report = [](int width, const char* page, const std::wstring& text) {
    ADD_FAILURE() << kv::Narrow(kv::kLanguages[kv::CurrentLanguage()].code) << " at " << width << ", " << page << ": "
                  << kv::Narrow(text);
  };
  for (const SIZE size : {SIZE{760, 576}, SIZE{1600, 1000}}) {
    Size(size.cx, size.cy);
    for (size_t i = 0; i < AllPages().size(); ++i) SelectPage(frame_, static_cast<int>(i));
    for (int language = 0; language < kv::kLanguageCount - 1; ++language) {
      if (!kv::kLanguages[language].code[0]) continue;
      ChooseLanguage(language);
      ASSERT_EQ(language, kv::CurrentLanguage());
      std::vector<std::wstring> cut;
      kv::CollectTruncatedTexts(&cut);
      DrawAll(frame_);
      kv::CollectTruncatedTexts(nullptr);
      for (const std::wstring& text : cut) report(size.cx, "drawn", text);
      for (size_t i = 0; i < AllPages().size(); ++i) {
        const HWND page = PageAt(i);
        for (HWND control = GetWindow(page, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
          const std::wstring text = kv::TruncatedTextOf(control);
          if (!text.empty() && !FitsNarrower(control)) report(size.cx, AllPages()[i].name, text);
        }
      }
    }
  }
  ChooseLanguage(0);
}

// ---- The keyboard ---------------------------------------------------------------------------------------------------

std::vector<HWND> TabStops(HWND page) {
  std::vector<HWND> controls;
  for (HWND control = GetWindow(page, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
    const bool stops = GetWindowLongW(control, GWL_STYLE) & WS_TABSTOP;
    if (stops && IsWindowVisible(control) && IsWindowEnabled(control)) controls.push_back(control);
  }
  return controls;
}

TEST_F(GalleryFrame, TabVisitsEveryControlOfAPageOnce) {
  for (size_t i = 0; i < AllPages().size(); ++i) {
    SelectPage(frame_, static_cast<int>(i));
    std::vector<HWND> expected = TabStops(ShownPage());
    EXPECT_FALSE(expected.empty()) << AllPages()[i].name;
    for (const bool backwards : {false, true}) {
      SetFocus(PageList());
      std::vector<HWND> visited;
      while (visited.size() <= expected.size()) {
        Press(VK_TAB, backwards ? VK_SHIFT : 0);
        if (GetFocus() == PageList()) break;
        visited.push_back(GetFocus());
      }
      EXPECT_EQ(expected, visited) << AllPages()[i].name;
      std::ranges::reverse(expected);
    }
  }
}

std::wstring helpTopic;

HWND WINAPI RecordTopic(HWND, const wchar_t*, UINT, DWORD_PTR topic) {
  helpTopic = reinterpret_cast<const wchar_t*>(topic);
  return nullptr;
}

TEST_F(GalleryFrame, KeysOpenPagesAndReachAVisibleWindow) {
  SelectPage(frame_, PAGE_INDEX_OVERVIEW);
  const HWND overview = ShownPage(), index = GetDlgItem(overview, IDC_OVERVIEW_INDEX);
  ASSERT_TRUE(kv::FocusFirstControl(overview));
  Press(VK_DOWN);
  Press(VK_RETURN);
  EXPECT_EQ(PageAt(PAGE_INDEX_CHART), ShownPage());
  EXPECT_TRUE(IsChild(ShownPage(), GetFocus()));
  const kv::HtmlHelpCall systemHelp = std::exchange(kv::htmlHelp, RecordTopic);
  SendMessageW(frame_, WM_HELP, 0, 0);
  EXPECT_EQ(L"chart.html", helpTopic);
  kv::htmlHelp = systemHelp;
  for (const bool control : {false, true}) {
    for (const bool inPage : {false, true}) {
      Press(control ? VK_TAB : VK_F6, control ? VK_CONTROL : 0);
      EXPECT_EQ(inPage, IsChild(ShownPage(), GetFocus()) != FALSE);
    }
  }
  // Started at a hidden page, the dialog manager's search for this key would not end.
  SetFocus(index);
  PostMessageW(index, WM_SYSCHAR, L'q', 1 << 29);
  Pump();
  EXPECT_EQ(PageList(), GetFocus());

  SelectPage(frame_, PAGE_INDEX_LANGUAGE);
  CheckDlgButton(ShownPage(), IDC_LANGUAGE_EVERY, BST_UNCHECKED);
  SetDlgItemTextW(ShownPage(), IDC_LANGUAGE_WORD, L"ja");
  SetFocus(GetDlgItem(ShownPage(), IDC_LANGUAGE_TABLE));
  Press(VK_DOWN);
  Press(VK_RETURN);  // the row of German
  EXPECT_EQ(1, kv::CurrentLanguage());
  const HWND answer = GetDlgItem(ShownPage(), IDC_LANGUAGE_RESULT);
  EXPECT_EQ(L"Ja, das heißt es.", kvtest::TextOf(answer));
  SetDlgItemTextW(ShownPage(), IDC_LANGUAGE_WORD, L"");  // no word: no result
  EXPECT_EQ(L"", kvtest::TextOf(answer));
  ChooseLanguage(0);
}

TEST_F(GalleryFrame, KeysCopyAnInstrumentAndTurnPages) {
  SelectPage(frame_, PAGE_INDEX_INSTRUMENTS);
  SetFocus(GetDlgItem(ShownPage(), IDC_INSTRUMENTS + 2));
  Press('C', VK_CONTROL);
  EXPECT_EQ(L"Copied: Altitude", kvtest::TextOf(GetDlgItem(ShownPage(), IDC_INSTRUMENTS_HINT)));
  EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
  SelectPage(frame_, PAGE_INDEX_DDE);
  SetFocus(GetDlgItem(ShownPage(), IDC_DDE_SERVICE));
  for (const int page : {PAGE_INDEX_LANGUAGE, PAGE_INDEX_FILES, PAGE_INDEX_NOTICES, PAGE_INDEX_OVERVIEW}) {
    Press(VK_NEXT, VK_CONTROL);
    EXPECT_EQ(PageAt(page), ShownPage());
  }
  Press(VK_PRIOR, VK_CONTROL);
  EXPECT_EQ(PageAt(PAGE_INDEX_NOTICES), ShownPage());
}

TEST_F(GalleryFrame, TheListHandlesItsKeysAndShowsItsSelectedRowAtEverySize) {
  SelectPage(frame_, PAGE_INDEX_LIST);
  const HWND page = ShownPage(), list = GetDlgItem(page, IDC_LIST_LIST);
  SetFocus(list);
  Press(VK_END);
  Press(VK_DOWN);
  EXPECT_EQ(9999999u, kv::SelectedListRow(list));
  EXPECT_EQ(page, ShownPage());
  for (const SIZE size : {SIZE{1600, 1000}, SIZE{760, 576}}) {
    Size(size.cx, size.cy);
    Pump();
    int y = 0;
    while (y < kv::ClientSize(list).cy && kv::ListRowAt(list, {0, y}) != 9999999) ++y;
    EXPECT_LT(y, kv::ClientSize(list).cy) << size.cx;
  }
}

// ---- Texts, directions, colors, fonts ------------------------------------------------------------------------------

TEST_F(GalleryFrame, NumbersAndDatesFollowTheLanguage) {
  const SYSTEMTIME day{.wYear = 2026, .wMonth = 11, .wDay = 12}, noDay{.wYear = 2026, .wMonth = 2, .wDay = 31};
  const struct {
    int language;
    const wchar_t *count, *part, *date;
  } samples[] = {{0, L"10,000,000", L"-1.32", L"11/12/2026"}, {1, L"10.000.000", L"-1,32", L"12.11.2026"}};
  for (const auto& sample : samples) {
    ChooseLanguage(sample.language);
    EXPECT_EQ(sample.count, kv::NumberText(10000000));
    EXPECT_EQ(sample.part, kv::NumberText(-1.319, 2));
    EXPECT_EQ(sample.date, kv::DateText(day));
    EXPECT_EQ(L"2026-02-31", kv::DateText(noDay));
  }
  ChooseLanguage(11);
  EXPECT_EQ(L"1,00,00,000", kv::NumberText(10000000));
  ChooseLanguage(0);
}

TEST_F(GalleryFrame, ArabicMirrorsAllButImagesInstrumentsAndReadouts) {
  for (size_t i = 0; i < AllPages().size(); ++i) SelectPage(frame_, static_cast<int>(i));
  const auto control = [](int page, int id) { return GetDlgItem(PageAt(page), id); };
  const HWND mirrored[] = {frame_,
                           PageList(),
                           PageAt(PAGE_INDEX_NMEA),
                           control(PAGE_INDEX_NMEA, IDC_NMEA_LABEL + 2),
                           control(PAGE_INDEX_LANGUAGE, IDC_LANGUAGE_TABLE),
                           control(PAGE_INDEX_LIST, IDC_LIST_LIST)};
  const HWND kept[] = {control(PAGE_INDEX_NMEA, IDC_NMEA_SPEED), control(PAGE_INDEX_INSTRUMENTS, IDC_INSTRUMENTS),
                       control(PAGE_INDEX_BITMAP, IDC_BITMAP_PLAIN), control(PAGE_INDEX_FLIGHT, IDC_FLIGHT_PLAN),
                       control(PAGE_INDEX_MESH, IDC_MESH_VIEW)};
  const auto isMirrored = [](HWND window) { return (GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0; };
  RECT before{}, after{};
  GetWindowRect(PageList(), &before);
  for (const bool arabic : {true, false}) {
    ChooseLanguage(arabic ? 15 : 0);
    for (HWND window : mirrored) EXPECT_EQ(arabic, isMirrored(window)) << GetDlgCtrlID(window);
    for (HWND window : kept) EXPECT_FALSE(isMirrored(window)) << GetDlgCtrlID(window);
    GetWindowRect(PageList(), &after);
    EXPECT_EQ(arabic, after.left > before.left);
  }
}

TEST_F(GalleryFrame, OwnerDrawnControlsHaveAccessibleNamesInEveryScript) {
  for (size_t i = 0; i < AllPages().size(); ++i) SelectPage(frame_, static_cast<int>(i));
  const struct {
    int language, page, controlId;
    const wchar_t* name;
  } samples[] = {{9, PAGE_INDEX_LIST, IDC_LIST_LIST, L"Εκτεταμένη λίστα"},
                 {9, PAGE_INDEX_LANGUAGE, IDC_LANGUAGE_TABLE, L"Γλώσσες"},
                 {9, PAGE_INDEX_MESH, IDC_MESH_VIEW, L"Μοντέλο πλέγματος"},
                 {13, PAGE_INDEX_BITMAP, IDC_BITMAP_CHOSEN, L"4  按名称"}};  // without the access key after it
  for (const auto& sample : samples) {
    ChooseLanguage(sample.language);
    wchar_t name[256] = L"";
    InternalGetWindowText(GetDlgItem(PageAt(sample.page), sample.controlId), name, ARRAYSIZE(name));
    const std::wstring whole = name;
    EXPECT_EQ(sample.name, whole.substr(0, whole.find(L',')));  // a list appends the selected row
  }
  ChooseLanguage(9);
  const HWND instrument = GetDlgItem(PageAt(PAGE_INDEX_INSTRUMENTS), IDC_INSTRUMENTS + 3);
  EXPECT_EQ(L"Άνοδος", kvtest::ReadAccessible(instrument).name);
  ChooseLanguage(0);
}

// ---- Pages ----------------------------------------------------------------------------------------------------------

std::wstring shellArguments;

HINSTANCE WINAPI RecordArguments(HWND, LPCWSTR, LPCWSTR, LPCWSTR arguments, LPCWSTR, INT) {
  shellArguments = arguments ? arguments : L"";
  return reinterpret_cast<HINSTANCE>(33);
}

TEST_F(GalleryFrame, FlightPageOpensTheFolderOfItsFile) {
  kv::shellCalls.executeW = RecordArguments;
  SelectPage(frame_, PAGE_INDEX_FLIGHT);
  const HWND folder = GetDlgItem(ShownPage(), IDC_FLIGHT_FOLDER);
  EXPECT_FALSE(IsWindowEnabled(folder));
  SendDlgItemMessageW(ShownPage(), IDC_FLIGHT_KML, BM_CLICK, 0, 0);
  EXPECT_TRUE(IsWindowEnabled(folder));
  SendMessageW(folder, BM_CLICK, 0, 0);
  const std::wstring said = kvtest::TextOf(GetDlgItem(ShownPage(), IDC_FLIGHT_RESULT));
  const std::wstring path = said.substr(0, said.find(L'\n'));
  EXPECT_EQ(L"/select,\"" + path + L"\"", shellArguments);
  kv::shellCalls.executeW = ShellExecuteW;
}

HDDEDATA CALLBACK ServeAnyConversation(UINT type, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) {
  return reinterpret_cast<HDDEDATA>(static_cast<LONG_PTR>(type == XTYP_CONNECT));
}

TEST_F(GalleryFrame, DdePageDetectsThatTheServerEndedTheConversation) {
  DWORD server = 0;
  ASSERT_EQ(static_cast<UINT>(DMLERR_NO_ERROR), DdeInitializeW(&server, ServeAnyConversation, APPCMD_FILTERINITS, 0));
  DdeNameService(server, DdeCreateStringHandleW(server, L"kvtest", CP_WINUNICODE), nullptr, DNS_REGISTER);
  SelectPage(frame_, PAGE_INDEX_DDE);
  const auto isUsable = [](int id) { return IsWindowEnabled(GetDlgItem(ShownPage(), id)) != FALSE; };
  SetDlgItemTextW(ShownPage(), IDC_DDE_SERVICE, L"kvtest");
  SetFocus(GetDlgItem(ShownPage(), IDC_DDE_CONNECT));
  Press(VK_RETURN);
  ASSERT_TRUE(isUsable(IDC_DDE_DISCONNECT));
  EXPECT_TRUE(IsWindowEnabled(GetFocus()));
  DdeUninitialize(server);
  EXPECT_TRUE(kvtest::WaitUntil([&] { return isUsable(IDC_DDE_CONNECT) && !isUsable(IDC_DDE_DISCONNECT); }));
}

}  // namespace
}  // namespace gallery
