// The gallery's frame in the test's own process, beside the gallery's libraries.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "framework/language.h"
#include "framework/modules.h"
#include "framework/picture.h"
#include "gallery/classes.h"
#include "gallery/drawing.h"
#include "gallery/frame.h"
#include "gallery/frame_header.h"
#include "gallery/keyboard.h"
#include "gallery/languages.h"
#include "gallery/page.h"
#include "gallery/pages.h"
#include "gallery/pages/overview_ids.h"
#include "gallery/resource_ids.h"
#include "gallery/text_fit.h"
#include "tests/support/test_window.h"

namespace gallery {
namespace {

class GalleryFrame : public testing::Test {
 protected:
  // One frame for all tests: its pages remember their windows.
  static void SetUpTestSuite() {
    RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\korvel test", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_,
                    nullptr);
    RegOverridePredefKey(HKEY_CURRENT_USER, key_);
    kv::modules = {.resources = GetModuleHandleW(nullptr), .application = GetModuleHandleW(nullptr)};
    LoadLibraryA("RichEd32.dll");
    InitCommonControls();
    RegisterAllClasses(kv::modules.application, TRUE);
    BeginLanguages(0);
    frame_ = CreateDialogParamW(kv::modules.application, kFrameTemplate, nullptr, FrameProcedure, 0);
    ShowWindow(frame_, SW_SHOW);
  }
  static void TearDownTestSuite() {
    DestroyWindow(frame_);
    EndLanguages();
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\korvel test");
  }

  static void Pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) Dispatch(frame_, &message);
  }
  static void Press(WPARAM key, bool shift = false) {
    BYTE keys[256] = {};
    keys[VK_SHIFT] = shift ? 0x80 : 0;
    SetKeyboardState(keys);
    PostMessageW(GetFocus(), WM_KEYDOWN, key, 1);
    Pump();
  }
  static void Size(int width, int height) { MoveWindow(frame_, 0, 0, width, height, TRUE); }
  static HWND PageList() { return GetDlgItem(frame_, IDC_PAGE_LIST); }

  inline static HKEY key_;
  inline static HWND frame_;
};

// ---- The walk through all languages --------------------------------------------------------------------------------

std::string Narrow(const std::wstring& text) {
  char bytes[1000] = "";
  WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, bytes, sizeof(bytes) - 1, nullptr, nullptr);
  return bytes;
}

// Lets a window draw the rows of its list, and the frame's header with each page, aside.
void DrawAll(HWND frame) {
  const SIZE client = kv::ClientSize(frame);
  const kvtest::Picture picture(client.cx, client.cy);
  const FrameLayout layout = LayoutFor(client);
  const HWND overview = ExistingPageWindow(PAGE_INDEX_OVERVIEW);
  const auto drawRow = [&picture](HWND parent, UINT controlId, UINT row, UINT page, UINT state) {
    DRAWITEMSTRUCT item{.CtlType = ODT_LISTBOX, .CtlID = controlId, .itemID = row, .itemState = state};
    item.hDC = picture.dc();
    item.itemData = page;
    SendDlgItemMessageW(parent, static_cast<int>(controlId), LB_GETITEMRECT, row,
                        reinterpret_cast<LPARAM>(&item.rcItem));
    SendMessageW(parent, WM_DRAWITEM, controlId, reinterpret_cast<LPARAM>(&item));
  };
  for (UINT i = 0; i < AllPages().size(); ++i) {
    DrawHeader(picture.dc(), {layout.listWidth, 0, client.cx, layout.headerHeight}, layout, static_cast<int>(i));
    drawRow(frame, IDC_PAGE_LIST, i, i, ODS_SELECTED);
    if (i > 0) drawRow(overview, IDC_OVERVIEW_INDEX, i - 1, i, 0);
  }
}

TEST_F(GalleryFrame, NoTextIsWiderThanItsPlaceInAnyLanguage) {
  const auto report = [](int width, const char* page, const std::wstring& text) {
    ADD_FAILURE() << Narrow(kv::kLanguages[CurrentLanguage()].code) << " at " << width << ", " << page << ": "
                  << Narrow(text);
  };
  for (const SIZE size : {SIZE{760, 576}, SIZE{1600, 1000}}) {
    Size(size.cx, size.cy);
    for (size_t i = 0; i < AllPages().size(); ++i) SelectPage(frame_, static_cast<int>(i));
    for (int language = 0; language < kv::kLanguageCount - 1; ++language) {
      if (!kv::kLanguages[language].code[0]) continue;
      ChooseLanguage(frame_, language);
      ASSERT_EQ(language, CurrentLanguage());
      std::vector<std::wstring> cut;
      CollectCutTexts(&cut);
      DrawAll(frame_);
      CollectCutTexts(nullptr);
      for (const std::wstring& text : cut) report(size.cx, "drawn", text);
      for (size_t i = 0; i < AllPages().size(); ++i) {
        const HWND page = ExistingPageWindow(static_cast<int>(i));
        for (HWND control = GetWindow(page, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
          const std::wstring text = CutTextOf(control);
          if (!text.empty()) report(size.cx, AllPages()[i].name, text);
        }
      }
    }
  }
  ChooseLanguage(frame_, 0);
}

}  // namespace
}  // namespace gallery
