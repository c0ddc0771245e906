#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "gallery/pages/files_ids.h"
#include "gallery/pages/language_ids.h"
#include "tests/gallery/running_gallery.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::WaitUntil;

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
