#include <windows.h>

#include <dbt.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "gallery/pages/files_ids.h"
#include "gallery/pages/language_ids.h"
#include "gallery/pages/notices_ids.h"
#include "tests/gallery/running_gallery.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::WaitUntil;

TEST(GalleryPages, TheLanguagePageTellsWhatMeansYes) {
  kvtest::RunningGallery gallery(kvtest::GalleryFolder(), L"language");
  gallery.Command(IDM_LANGUAGE_FIRST);
  const auto answers = [&](const wchar_t* word) {
    SendMessageW(GetDlgItem(gallery.page(), IDC_LANGUAGE_WORD), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(word));
    return gallery.ControlText(IDC_LANGUAGE_ANSWER);
  };
  EXPECT_EQ(L"Yes, it does.", answers(L"enabled"));
  EXPECT_EQ(L"No, it does not.", answers(L"wahr"));
  gallery.Press(IDC_LANGUAGE_EVERY);
  EXPECT_TRUE(WaitUntil([&] { return gallery.ControlText(IDC_LANGUAGE_ANSWER) == L"Yes, it does."; }));
  EXPECT_EQ(0u, gallery.Close());
}

TEST(GalleryPages, TheNoticesPageListsWhatHappens) {
  kvtest::RunningGallery gallery(kvtest::GalleryFolder(), L"notices");
  gallery.Command(IDM_LANGUAGE_FIRST);
  const HWND list = GetDlgItem(gallery.page(), IDC_NOTICES_EVENTS);
  const auto lastLine = [&] {
    wchar_t text[512] = L"";
    SendMessageW(list, LB_GETTEXT, SendMessageW(list, LB_GETCOUNT, 0, 0) - 1, reinterpret_cast<LPARAM>(text));
    return std::wstring(text);
  };
  const auto waitFor = [&](const wchar_t* ending) { return WaitUntil([&] { return lastLine().ends_with(ending); }); };
  const auto press = [&](int button, const wchar_t* ending) {
    gallery.Press(button);
    EXPECT_TRUE(waitFor(ending)) << ending;
  };
  press(IDC_NOTICES_ADD, L"Icon added");
  press(IDC_NOTICES_CHANGE, L"Icon changed");
  PostMessageW(gallery.page(), WM_USER + 1, 1, WM_LBUTTONUP);
  EXPECT_TRUE(waitFor(L"Clicked on the icon"));
  SendMessageW(gallery.page(), WM_DEVICECHANGE, DBT_DEVICEARRIVAL, 0);
  EXPECT_TRUE(waitFor(L"A device has come: ?"));
  press(IDC_NOTICES_DEVICES, L"Waiting for USB devices");
  press(IDC_NOTICES_REMOVE, L"Icon removed");
  EXPECT_EQ(0u, gallery.Close());
}

TEST(GalleryPages, TheFilesPageSavesAndLeavesNoFolderBehind) {
  const kvtest::GalleryCopy copy({});
  kvtest::RunningGallery gallery(copy.folder(), L"files");
  gallery.Command(IDM_LANGUAGE_FIRST);
  SendMessageW(GetDlgItem(gallery.page(), IDC_FILES_NOTES), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"Ω one"));
  gallery.Press(IDC_FILES_SAVE);
  HWND dialog = nullptr;
  ASSERT_TRUE(WaitUntil([&] { return (dialog = gallery.Find(L"#32770", L"Save notes")) != nullptr; }));
  EXPECT_TRUE(std::filesystem::is_directory(copy.folder() / L"notes.txt"));
  constexpr int kNameList = 0x47C, kNameEdit = 0x480;
  const HWND name = GetDlgItem(dialog, kNameList) ? GetDlgItem(dialog, kNameList) : GetDlgItem(dialog, kNameEdit);
  SendMessageW(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"мои notes.txt"));
  PostMessageW(dialog, WM_COMMAND, IDOK, 0);
  const auto file = copy.folder() / L"мои notes.txt";
  EXPECT_TRUE(WaitUntil([&] { return gallery.ControlText(IDC_FILES_STATUS) == L"Saved: " + file.wstring(); }));
  std::string bytes;
  std::getline(std::ifstream(file), bytes);
  EXPECT_EQ("\xCE\xA9 one", bytes);
  EXPECT_FALSE(std::filesystem::exists(copy.folder() / L"notes.txt"));
  EXPECT_EQ(0u, gallery.Close());
}

}  // namespace
