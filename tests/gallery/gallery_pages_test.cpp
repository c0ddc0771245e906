#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "gallery/resource_ids.h"
#include "tests/gallery/running_gallery.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::WaitUntil;

// Letters that no 8-bit code page has together, through the program's own message loop.
TEST(GalleryPages, TheFilesPageTakesTypedLettersAndSavesThemUnderTheProposedName) {
  const kvtest::GalleryCopy copy({});
  kvtest::RunningGallery gallery(copy.folder(), L"files");
  gallery.Command(IDM_LANGUAGE_FIRST);
  for (const wchar_t letter : {L'Ω', L'я', L'é'}) {
    PostMessageW(GetDlgItem(gallery.page(), IDC_FILES_NOTES), WM_CHAR, letter, 1);
  }
  ASSERT_TRUE(WaitUntil([&] { return gallery.ControlText(IDC_FILES_NOTES) == L"Ωяé"; }));
  HWND dialog = nullptr;
  const auto openDialog = [&] {
    gallery.Press(IDC_FILES_SAVE);
    return WaitUntil([&] { return (dialog = gallery.Find(L"#32770", L"Save notes")) != nullptr; });
  };
  ASSERT_TRUE(openDialog());
  const auto proposed = copy.folder() / L"notes.txt";
  EXPECT_FALSE(std::filesystem::is_directory(proposed));
  SendMessageW(gallery.frame(), WM_CLOSE, 0, 0);  // refused: the dialog's caller is not done
  PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
  EXPECT_TRUE(WaitUntil([&] { return gallery.ControlText(IDC_FILES_STATUS) == L"No file was chosen."; }));
  EXPECT_FALSE(std::filesystem::exists(proposed));

  ASSERT_TRUE(openDialog());
  PostMessageW(dialog, WM_COMMAND, IDOK, 0);
  EXPECT_TRUE(WaitUntil([&] { return gallery.ControlText(IDC_FILES_STATUS) == L"Saved: " + proposed.wstring(); }));
  std::string bytes;
  std::getline(std::ifstream(proposed), bytes);
  EXPECT_EQ("\xCE\xA9\xD1\x8F\xC3\xA9", bytes);
  EXPECT_EQ(0u, gallery.Close());
}

TEST(GalleryPages, TheLastPageIsShownAgain) {
  const kvtest::GalleryCopy copy({});
  for (const wchar_t* page : {L"language", static_cast<const wchar_t*>(nullptr)}) {
    kvtest::RunningGallery gallery(copy.folder(), page);
    EXPECT_NE(nullptr, GetDlgItem(gallery.page(), IDC_LANGUAGE_TABLE));
    EXPECT_EQ(0u, gallery.Close());
  }
}

}  // namespace
