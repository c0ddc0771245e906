#include "kv/framework/file_dialog.h"

#include <cderr.h>
#include <commdlg.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cwchar>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "kv/framework/file_path.h"
#include "tests/support/replaced_import.h"
#include "tests/support/running_program.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

namespace fs = std::filesystem;
using kvtest::TextOf;

constexpr wchar_t kTitle[] = L"kvTest: choose α file";
constexpr int kFilterList = 0x470, kNameList = 0x47C, kNameEdit = 0x480;  // the common dialog's control ids

// Simulates the user: a thread that waits for windows with the dialog's title and calls the first function for the
// first window, the second for the next, and so on.
class User {
 public:
  using Answer = std::function<void(HWND dialog)>;

  explicit User(std::vector<Answer> answers)
      : thread_([given = std::move(answers)] {
          HWND window = nullptr;
          for (const Answer& answer : given) {
            const HWND previous = window;
            const bool came =
                kvtest::WaitUntil([&] { return (window = Find(previous)) != nullptr; }, std::chrono::seconds(10));
            ASSERT_TRUE(came) << "no window appeared";
            answer(window);
          }
        }) {}
  ~User() { thread_.join(); }

 private:
  static HWND Find(HWND except) {
    HWND found = nullptr;
    do found = FindWindowExW(nullptr, found, L"#32770", kTitle);
    while (found && (found == except || !IsWindowVisible(found)));
    return found;
  }
  std::thread thread_;
};

HWND NameField(HWND dialog) {
  const HWND list = GetDlgItem(dialog, kNameList);
  return list ? list : GetDlgItem(dialog, kNameEdit);
}

void Type(HWND dialog, const std::wstring& name) {
  SendMessageW(NameField(dialog), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
  PostMessageW(dialog, WM_COMMAND, IDOK, 0);
}

// A folder of the test whose name no code page can represent.
class FileDialog : public testing::Test {
 protected:
  FileDialog() { fs::create_directories(folder_); }
  ~FileDialog() override {
    EXPECT_EQ(workingFolder_, fs::current_path());  // the dialog does not change it
    fs::remove_all(folder_);
  }

  BOOL Choose(const fs::path& proposed, BOOL save) {
    wcscpy(path_, proposed.c_str());
    return ChooseFile(nullptr, path_, kTitle, save);
  }

  const fs::path workingFolder_ = fs::current_path();
  const fs::path folder_ = fs::temp_directory_path() / (L"kv 日本 Ω " + std::to_wstring(GetCurrentProcessId()));
  wchar_t path_[kPathCharacters] = L"";
};

TEST_F(FileDialog, OpenProposesTheFileAndReturnsTheChosenOne) {
  const User user({[&](HWND dialog) {
    EXPECT_EQ(L"my track α.kml", TextOf(NameField(dialog)));
    const HWND types = GetDlgItem(dialog, kFilterList);
    EXPECT_EQ(0, SendMessageW(types, CB_GETCURSEL, 0, 0));
    EXPECT_EQ(2, SendMessageW(types, CB_GETCOUNT, 0, 0));
    wchar_t text[256] = L"";
    SendMessageW(types, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text));
    EXPECT_STREQ(L"kml files (*.kml)", text);
    Type(dialog, L"another Ω 名.kml");
  }});
  EXPECT_TRUE(Choose(folder_ / L"my track α.kml", FALSE));
  EXPECT_EQ(folder_ / L"another Ω 名.kml", path_);
  EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(FileDialog, SaveCreatesAFolderOfTheProposedPathFirst) {
  const User user({[&](HWND dialog) {
    EXPECT_TRUE(fs::is_directory(folder_ / L"track.kml"));
    Type(dialog, L"other.kml");
  }});
  EXPECT_TRUE(Choose(folder_ / L"track.kml", TRUE));
  EXPECT_TRUE(folder_ / L"other.kml" == path_ && !fs::exists(path_));
}

BOOL WINAPI FailToFit(OPENFILENAMEW* dialog) {
  EXPECT_EQ(DWORD{kPathCharacters}, dialog->nMaxFile);
  std::wmemset(dialog->lpstrFile, L'n', dialog->nMaxFile);
  return FALSE;
}

DWORD WINAPI BufferTooSmall() {
  return FNERR_BUFFERTOOSMALL;
}

// The failure is simulated. Under Wine, a name that does not fit cannot be typed: its dialog copies folder and name
// into a buffer of its own without testing their length.
TEST_F(FileDialog, CancelingIsSilentFailureIsReportedAndBothKeepThePath) {
  std::wstring text;
  const User user({[](HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); },
                   [&](HWND box) {
                     constexpr int kMessageText = 0xFFFF;
                     text = TextOf(GetDlgItem(box, kMessageText));
                     PostMessageW(box, WM_COMMAND, IDOK, 0);
                   }});
  EXPECT_FALSE(Choose(folder_ / L"track.kml", FALSE));
  EXPECT_EQ(folder_ / L"track.kml", path_);
  const kvtest::ReplacedImport dialog("GetOpenFileNameW", reinterpret_cast<void*>(FailToFit)),
      error("CommDlgExtendedError", reinterpret_cast<void*>(BufferTooSmall));
  ASSERT_TRUE(dialog.isInPlace() && error.isInPlace());
  EXPECT_FALSE(Choose(folder_ / L"track.kml", FALSE));
  EXPECT_EQ(folder_ / L"track.kml", path_);
  EXPECT_EQ(L"Error 12291", text);
}

TEST_F(FileDialog, RejectsInvalidPathsWithoutADialog) {
  wchar_t endless[kPathCharacters];
  std::wmemset(endless, L'x', kPathCharacters);
  kvtest::GuardedBytes path(kPathCharacters * sizeof(wchar_t));
  path.MakeReadOnly();
  kvtest::GuardedBytes oneShort((kPathCharacters - 1) * sizeof(wchar_t));
  for (wchar_t* bad : {endless, static_cast<wchar_t*>(nullptr), oneShort.as<wchar_t>(), path.as<wchar_t>()}) {
    EXPECT_FALSE(ChooseFile(nullptr, bad, kTitle, TRUE));
  }
  EXPECT_FALSE(ChooseFile(nullptr, path_, nullptr, TRUE));
}

TEST(FilterText, ConsistsOfPairsEndedByADoubleZero) {
  const std::pair<const wchar_t*, std::wstring> filters[] = {
      {L".kml", L"kml files (*.kml)|*.kml|All files (*.*)|*.*||"}, {L"", L" files (*)|*|All files (*.*)|*.*||"}};
  for (const auto& [extension, expected] : filters) {
    std::wstring text(BuildFilterText(extension).text, expected.size());
    std::ranges::replace(text, L'\0', L'|');
    EXPECT_EQ(expected, text);
  }

  // Separators beyond the first 256 characters are not replaced; the list is terminated anyway.
  const FilterText filter = BuildFilterText((L"." + std::wstring(258, L'e')).c_str());
  EXPECT_EQ(L'\r', filter.text[wcslen(filter.text) - 1]);
  EXPECT_EQ(L'\0', filter.text[ARRAYSIZE(filter.text) - 1]);
}

}  // namespace
}  // namespace kv
