// The gallery in a separate process, and the file of its notes.
#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <system_error>

#include "gallery/pages/notes_file.h"
#include "gallery/resource_ids.h"
#include "tests/support/files.h"
#include "tests/support/running_program.h"
#include "tests/support/test_window.h"

namespace gallery {
namespace {

namespace fs = std::filesystem;
using kvtest::RunningProgram;
using kvtest::TextOf;
using kvtest::WaitUntil;

// A copy of the gallery with the given language libraries, in a separate folder.
class GalleryCopy {
 public:
  explicit GalleryCopy(std::initializer_list<const wchar_t*> libraries)
      : folder_(fs::temp_directory_path() / (L"kv gallery " + std::to_wstring(GetCurrentProcessId()))) {
    fs::create_directories(folder_);
    const auto copy = [this](const wchar_t* name) {
      CopyFileW((kvtest::BuildFolder(L"gallery") / name).c_str(), (folder_ / name).c_str(), FALSE);
    };
    copy(L"kvgallery.exe");
    for (const wchar_t* library : libraries) copy(library);
  }
  ~GalleryCopy() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  GalleryCopy(const GalleryCopy&) = delete;
  GalleryCopy& operator=(const GalleryCopy&) = delete;

  const fs::path& folder() const { return folder_; }

 private:
  fs::path folder_;
};

// A running gallery that shows the given page; null: the one that was shown last.
class RunningGallery : public RunningProgram {
 public:
  RunningGallery(const fs::path& folder, const wchar_t* page)
      : RunningProgram(folder / L"kvgallery.exe", page ? L"--page " + std::wstring(page) : L"") {
    WaitUntil(
        [this] {
          frame_ = Find(L"kvDialog", nullptr);
          page_ = frame_ ? FindWindowExW(frame_, nullptr, L"kvDialog", nullptr) : nullptr;
          return page_ && IsWindowVisible(page_);
        },
        std::chrono::seconds(20));
  }

  HWND frame() const { return frame_; }
  HWND page() const { return page_; }
  // Sends a menu command or posts a click: a click may open a dialog, during which a sent message would not return.
  void Command(int id) const { SendMessageW(frame_, WM_COMMAND, static_cast<WPARAM>(id), 0); }
  void Press(int controlId) const { PostMessageW(GetDlgItem(page_, controlId), BM_CLICK, 0, 0); }
  std::wstring Caption() const { return TextOf(frame_); }
  std::wstring ControlText(int controlId) const { return TextOf(GetDlgItem(page_, controlId)); }
  DWORD Close() const { return RunningProgram::Close(frame_); }

 private:
  HWND frame_ = nullptr, page_ = nullptr;
};

constexpr wchar_t kGermanCaption[] = L"Galerie der Steuerelemente";

TEST(GalleryLanguages, ChangeImmediatelyAreStoredAndFallBack) {
  const GalleryCopy copy({L"kvgalleryGE.dll", L"kvgalleryRU.dll"});
  fs::resize_file(copy.folder() / L"kvgalleryRU.dll", 2000);
  const auto closeAndAskAgain = [&](RunningGallery* gallery) {
    EXPECT_EQ(0u, gallery->Close());
    RunningGallery again(copy.folder(), L"language");
    const std::wstring now = again.ControlText(IDC_LANGUAGE_NOW);
    EXPECT_EQ(0u, again.Close());
    return now;
  };
  {
    RunningGallery gallery(copy.folder(), L"language");
    ASSERT_NE(nullptr, gallery.page());
    gallery.Command(IDM_LANGUAGE_FIRST + 1);
    EXPECT_EQ(kGermanCaption, gallery.Caption());
    EXPECT_EQ(L"Diese Sprache &verwenden", gallery.ControlText(IDC_LANGUAGE_USE));
    gallery.Command(IDM_LANGUAGE_FIRST + 2);  // no French library: German is used, the choice is stored
    EXPECT_EQ(kGermanCaption, gallery.Caption());
    EXPECT_EQ(L"Zurzeit: Français (Sprache 2)", closeAndAskAgain(&gallery));
  }
  RunningGallery gallery(copy.folder(), L"language");
  gallery.Command(IDM_LANGUAGE_FIRST + 8);  // damaged: English, also where the page's template has the text
  EXPECT_EQ(L"Control gallery", gallery.Caption());
  EXPECT_EQ(L"&Use this language", gallery.ControlText(IDC_LANGUAGE_USE));
  EXPECT_EQ(L"Shown now: English (language 0)", closeAndAskAgain(&gallery));
}

// Characters that no single 8-bit code page contains, through the program's message loop.
TEST(GalleryPages, FilesPageAcceptsTextAndSavesItUnderTheProposedName) {
  const GalleryCopy copy({});
  RunningGallery gallery(copy.folder(), L"files");
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
  EXPECT_FALSE(fs::is_directory(proposed));
  SendMessageW(gallery.frame(), WM_CLOSE, 0, 0);  // rejected while the dialog is open
  PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
  EXPECT_TRUE(WaitUntil([&] { return gallery.ControlText(IDC_FILES_STATUS) == L"No file was chosen."; }));
  EXPECT_FALSE(fs::exists(proposed));

  ASSERT_TRUE(openDialog());
  PostMessageW(dialog, WM_COMMAND, IDOK, 0);
  EXPECT_TRUE(WaitUntil([&] { return gallery.ControlText(IDC_FILES_STATUS) == L"Saved: " + proposed.wstring(); }));
  EXPECT_EQ("\xCE\xA9\xD1\x8F\xC3\xA9", kvtest::BytesOf(proposed));
  EXPECT_EQ(0u, gallery.Close());
}

TEST(GalleryPages, TheLastPageIsRestored) {
  const GalleryCopy copy({});
  for (const wchar_t* page : {L"language", static_cast<const wchar_t*>(nullptr)}) {
    RunningGallery gallery(copy.folder(), page);
    EXPECT_NE(nullptr, GetDlgItem(gallery.page(), IDC_LANGUAGE_TABLE));
    EXPECT_EQ(0u, gallery.Close());
  }
}

TEST(NotesFile, RoundTripsAndOtherFilesAreRejected) {
  const fs::path folder = fs::temp_directory_path() / (L"kv notes " + std::to_wstring(GetCurrentProcessId()));
  const fs::path file = folder / L"заметки 1.txt";
  fs::create_directories(folder);
  std::wstring text;
  for (const std::wstring notes : {L"longer than what comes next", L"Ωμέγα 日本\r\n\x00E9", L""}) {
    EXPECT_TRUE(WriteNotes(file.c_str(), notes) && ReadNotes(file.c_str(), &text));
    EXPECT_EQ(notes, text);
  }
  kvtest::WriteTo(file, "\xEF\xBB\xBFmarked");
  EXPECT_TRUE(ReadNotes(file.c_str(), &text));

  EXPECT_FALSE(ReadNotes((folder / L"missing").c_str(), &text) || ReadNotes(folder.c_str(), &text));
  for (const std::string& bytes : {std::string("caf\xE9"), std::string(kMaxNotesBytes + 1, 'x')}) {
    kvtest::WriteTo(file, bytes);
    EXPECT_FALSE(ReadNotes(file.c_str(), &text));
  }
  EXPECT_EQ(L"marked", text);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace gallery
