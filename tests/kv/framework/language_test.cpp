#include "kv/framework/language.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <filesystem>
#include <fstream>
#include <ios>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr wchar_t kStem[] = L"kvtést";  // with a non-ASCII character, like the folders of many users
constexpr wchar_t kApplication[] = L"kvTest Ω";
constexpr wchar_t kApplicationKey[] = L"Software\\korvel\\Configuration\\kvTest Ω";

std::wstring BesideProgram(const std::wstring& name) {
  wchar_t directory[kPathCharacters];
  ProgramDirectory(directory);
  return directory + name;
}

// Files beside the test program with names of language files; none exists when a test begins or ends.
class LanguageFiles : public testing::Test {
 protected:
  LanguageFiles() { RemoveAll(); }
  ~LanguageFiles() override { RemoveAll(); }

  static std::wstring Add(const std::wstring& codeAndExtension) {
    const std::wstring file = BesideProgram(kStem + codeAndExtension);
    EXPECT_TRUE(CopyFileW(BesideProgram(L"kv_test_language.dll").c_str(), file.c_str(), FALSE));
    return file;
  }

  static void RemoveAll() {
    for (const auto& entry : std::filesystem::directory_iterator(BesideProgram(L""))) {
      if (entry.path().filename().wstring().starts_with(kStem)) DeleteFileW(entry.path().c_str());
    }
  }

  // Loads and frees a language: the file with the resources (empty for the program), the language, the stored choice.
  using Outcome = std::tuple<std::wstring, int, DWORD>;
  static Outcome Load(int language) {
    const HMODULE own = GetModuleHandleW(nullptr);
    const HMODULE module = LoadLanguageResources(own, kStem, kApplication, &language);
    wchar_t name[kPathCharacters] = L"";
    if (module != own) {
      GetModuleFileNameW(module, name, kPathCharacters);
      EXPECT_TRUE(FreeLibrary(module));
    }
    DWORD stored = 0xDEAD, size = sizeof(stored);
    RegGetValueW(HKEY_CURRENT_USER, kApplicationKey, L"LanguageCode", RRF_RT_REG_DWORD, nullptr, &stored, &size);
    return {name, language, stored};
  }
};

TEST_F(LanguageFiles, FindReturnsEnglishWithoutAFileAndReplacesMissingOnes) {
  wchar_t path[kPathCharacters];
  const auto find = [&](int language, const wchar_t* extension, BOOL mustExist) {
    wcscpy(path, L"untouched");
    return FindLanguageFile(language, kStem, extension, path, mustExist);
  };
  EXPECT_EQ(kLanguageFileOwn, find(0, L".chm", TRUE));
  EXPECT_EQ(BesideProgram(L"kvtéstEN.chm"), path);
  EXPECT_EQ(kLanguageFileNone, find(1, nullptr, FALSE));
  EXPECT_STREQ(L"untouched", path);

  const std::wstring french = Add(L"FR.dll"), spanish = Add(L"ES.dll");
  EXPECT_EQ(kLanguageFileNone, find(1, nullptr, TRUE));
  EXPECT_STREQ(L"untouched", path);
  EXPECT_EQ(kLanguageFileOther, find(1, nullptr, FALSE));
  EXPECT_EQ(french, path);
  EXPECT_EQ(kLanguageFileOwn, find(23, nullptr, TRUE));
  EXPECT_EQ(spanish, path);
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFile(2, kStem, L".dll", nullptr, TRUE));

  // A reserved number has no code: its file is stem + extension, which also replaces missing ones.
  const std::wstring codeless = Add(L".dat");
  EXPECT_EQ(kLanguageFileOwn, find(20, L".dat", TRUE));
  EXPECT_EQ(kLanguageFileOther, find(2, L".dat", FALSE));
  EXPECT_EQ(codeless, path);

  for (const int none : {24, 1000, -1}) EXPECT_EQ(kLanguageFileNone, find(none, nullptr, FALSE));
  EXPECT_EQ(kLanguageFileNone, FindLanguageFile(0, nullptr, nullptr, path, FALSE));
  // A stem of kPathCharacters without a terminator, and a folder whose path leaves no space for the file name.
  kvtest::GuardedBytes oneShort((kPathCharacters - 1) * sizeof(wchar_t)), stem(kPathCharacters * sizeof(wchar_t));
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFile(2, kStem, nullptr, oneShort.as<wchar_t>(), TRUE));
  std::wmemset(stem.as<wchar_t>(), L'x', kPathCharacters);
  EXPECT_EQ(kLanguageFileNone, FindLanguageFile(1, stem.as<wchar_t>(), nullptr, path, FALSE));
  EXPECT_STREQ(L"untouched", path);
  const std::wstring deep(kPathCharacters - 6, L'x');
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFileIn(deep.c_str(), 0, kStem, nullptr, path, FALSE));
  EXPECT_EQ(deep + L"kvtés", path);
}

TEST(FilePath, SplitsAtSeparatorsDriveAndLastDot) {
  const struct {
    const wchar_t *path, *directory, *name, *extension;
  } samples[] = {{L"C:\\prog.exe", L"C:\\", L"prog.exe", L".exe"},  // in a root folder
                 {L"C:\\a.b\\Straße 1 Ω.tar.gz", L"C:\\a.b\\", L"Straße 1 Ω.tar.gz", L".gz"},
                 {L"C:/data/track", L"C:/data/\\", L"track", L""},
                 {L"C:track.kml", L"C:\\", L"track.kml", L".kml"},
                 {L"\\\\server\\share\\.hidden", L"\\\\server\\share\\", L".hidden", L".hidden"},
                 {L"C:\\folder\\", L"C:\\folder\\", L"", L""},
                 {L"", L"\\", L"", L""}};
  wchar_t directory[kPathCharacters];
  for (const auto& sample : samples) {
    EXPECT_TRUE(DirectoryOf(sample.path, directory, kPathCharacters));
    EXPECT_STREQ(sample.directory, directory);
    EXPECT_STREQ(sample.name, FileNameOf(sample.path));
    EXPECT_STREQ(sample.extension, ExtensionOf(sample.path));
  }
  const std::wstring fits = std::wstring(258, L'd') + L"\\";
  EXPECT_FALSE(DirectoryOf((L"d" + fits + L"p.exe").c_str(), directory, kPathCharacters));
  EXPECT_STREQ(L"\\", directory);  // unchanged
  EXPECT_TRUE(DirectoryOf((fits + L"p.exe").c_str(), directory, kPathCharacters));
  EXPECT_EQ(fits, directory);
}

TEST_F(LanguageFiles, LoadStoresAnAvailableLanguageAndOtherwiseUsesEnglish) {
  const Outcome english(L"", 0, 0);
  EXPECT_EQ(english, Load(5));  // no library exists
  const std::wstring german = Add(L"GE.dll");
  EXPECT_EQ(Outcome(german, 1, 1), Load(1));
  EXPECT_EQ(Outcome(german, 1, 1), Load(kStoredLanguage));
  EXPECT_EQ(Outcome(german, 8, 8), Load(8));  // replaces the missing Russian one; the choice is unchanged
  EXPECT_EQ(english, Load(99));
  const BYTE bytes[] = {1, 0, 0, 0, 0, 0, 0, 0x80};
  const struct {
    DWORD type;
    int first, size;
  } unusable[] = {{REG_BINARY, 0, 4}, {REG_SZ, 0, 4}, {REG_DWORD, 0, 1}, {REG_DWORD, 0, 8}, {REG_DWORD, 4, 4}};
  for (const auto& value : unusable) {
    RegSetValueExW(RegistryKey::Create(kApplicationKey), L"LanguageCode", 0, value.type, bytes + value.first,
                   value.size);
    EXPECT_EQ(english, Load(kStoredLanguage)) << value.type << " " << value.size;
  }
  EXPECT_EQ(Outcome(german, 1, 1), Load(1));
  std::filesystem::resize_file(german, 1500);
  EXPECT_EQ(english, Load(1));
  std::ofstream(std::filesystem::path(german)) << "no library";
  EXPECT_EQ(english, Load(1));

  // Without a pointer or a name: English, stored under the common name.
  const HMODULE own = GetModuleHandleW(nullptr);
  EXPECT_EQ(own, LoadLanguageResources(own, kStem, nullptr, nullptr));
  EXPECT_NE(nullptr, static_cast<HKEY>(RegistryKey::Open("Software\\korvel\\Configuration\\CommonLanguage")));
  kvtest::GuardedBytes constant(sizeof(int));
  constant.MakeReadOnly();
  EXPECT_EQ(own, LoadLanguageResources(own, kStem, nullptr, constant.as<int>()));
}

// With some bits of the headers or resources changed, using the library does not crash.
TEST_F(LanguageFiles, LoadSurvivesDamagedLibraries) {
  const std::filesystem::path german = Add(L"GE.dll");
  std::string whole(static_cast<size_t>(std::filesystem::file_size(german)), '\0');
  std::ifstream(german, std::ios::binary).read(whole.data(), static_cast<std::streamsize>(whole.size()));
  int english = 0;
  for (unsigned seed = 1; seed <= 6; ++seed) {
    std::mt19937 random(seed);
    for (int copy = 0; copy < 50; ++copy) {
      std::string damaged = whole;
      for (unsigned flips = 1 + random() % 6; flips > 0; --flips) {
        damaged[random() % (random() % 2 ? 0x400 : whole.size())] ^= static_cast<char>(1 << random() % 8);
      }
      std::ofstream(german, std::ios::binary) << damaged;
      int language = 1;
      const HMODULE own = GetModuleHandleW(nullptr), module = LoadLanguageResources(own, kStem, nullptr, &language);
      english += language == 0;
      wchar_t text[256];
      for (UINT id = 0; id < 64; ++id) LoadStringW(module, id, text, ARRAYSIZE(text));
      for (WORD id = 1; id <= kLanguageBitmapCount; ++id) DeleteObject(LoadBitmapW(module, MAKEINTRESOURCEW(id)));
      if (module != own) FreeLibrary(module);
    }
  }
  EXPECT_TRUE(english > 100 && english < 300) << english;
}

constexpr UINT kFirstCommand = 500;
constexpr int kHandlesInArea = kLanguageBitmapArea / sizeof(HBITMAP);

TEST_F(LanguageFiles, MenuListsAvailableLanguagesWithTwoBitmapsEach) {
  // The test's library contains bitmaps 1 to 48 (language_library.rc); the identifier wraps at 65536.
  const HMODULE library = LoadLibraryW(Add(L"RU.dll").c_str());
  Add(L"ES.dll");
  HBITMAP handles[kHandlesInArea] = {};
  const HMENU menu = BuildLanguageMenu(8, library, kFirstCommand, 0x10001, kStem, handles);
  const int expected[] = {0, 3, 8, 23};
  ASSERT_EQ(4, GetMenuItemCount(menu));
  for (int i = 0; i < 4; ++i) {
    wchar_t text[64];
    MENUITEMINFOW item{.cbSize = sizeof(item), .fMask = MIIM_ID | MIIM_STATE | MIIM_STRING | MIIM_CHECKMARKS};
    item.dwTypeData = text;
    item.cch = ARRAYSIZE(text);
    ASSERT_TRUE(GetMenuItemInfoW(menu, i, TRUE, &item));
    EXPECT_STREQ(kLanguages[expected[i]].menuName, text);
    EXPECT_TRUE(item.wID == kFirstCommand + expected[i] && (expected[i] == 8) == ((item.fState & MFS_CHECKED) != 0));
    EXPECT_TRUE(item.hbmpUnchecked == handles[expected[i]] && item.hbmpChecked == handles[24 + expected[i]]);
  }
  DestroyMenu(menu);
  for (const auto& [index, width] : {std::pair{23, 8}, {24, 16}}) {
    BITMAP image{};
    GetObjectA(handles[index], sizeof(image), &image);
    EXPECT_EQ(width, image.bmWidth);
  }
  EXPECT_EQ(nullptr, handles[kLanguageBitmapCount]);
  FreeLanguageMenuBitmaps(handles);
  for (int i = 0; i < kLanguageBitmapCount; ++i) EXPECT_EQ(i >= 32, DeleteObject(handles[i])) << i;
  FreeLibrary(library);
}

TEST_F(LanguageFiles, MenuWorksWithoutBitmapsStemOrArea) {
  const auto untouched = reinterpret_cast<HBITMAP>(1);
  HBITMAP handles[kHandlesInArea] = {untouched};
  const kvtest::GuardedBytes oneShort(kLanguageBitmapArea - sizeof(HBITMAP)), half(16 * sizeof(HBITMAP));
  *oneShort.as<HBITMAP>() = untouched;
  const struct {
    const wchar_t* stem;
    HBITMAP* area;
    int items;
  } menus[] = {{nullptr, handles, 0}, {kStem, oneShort.as<HBITMAP>(), 1}, {kStem, handles, 1}};
  for (const auto& [stem, area, items] : menus) {
    constexpr UINT kNoSuchBitmaps = 40000;
    const HMENU menu = BuildLanguageMenu(0, nullptr, kFirstCommand, kNoSuchBitmaps, stem, area);
    EXPECT_EQ(items, GetMenuItemCount(menu));
    DestroyMenu(menu);
  }
  EXPECT_TRUE(handles[0] == nullptr && *oneShort.as<HBITMAP>() == untouched);
  EXPECT_TRUE(FreeLanguageMenuBitmaps(half.as<HBITMAP>()) && FreeLanguageMenuBitmaps(nullptr));
}

using HelpRequest = std::tuple<HWND, std::wstring, UINT, DWORD_PTR>;
std::vector<HelpRequest> helpRequests;

HWND WINAPI RecordHelp(HWND caller, const wchar_t* file, UINT command, DWORD_PTR data) {
  helpRequests.emplace_back(caller, file, command, data);
  return nullptr;
}

TEST_F(LanguageFiles, HelpOpensTheLanguagesFileAndAlwaysRepaints) {
  const HtmlHelpCall systemHelp = std::exchange(htmlHelp, RecordHelp);
  kvtest::RecordingParent window(true);
  const auto paints = [&](int language) {
    ValidateRect(window, nullptr);
    const int before = window.CountOf(WM_PAINT);
    EXPECT_TRUE(OpenHelp(window, language, kStem, 15, 77));
    return window.CountOf(WM_PAINT) - before;
  };
  EXPECT_EQ(1, paints(1));  // no file: nothing opens
  EXPECT_EQ(1, paints(0));  // the English one, not checked for existence
  const std::wstring russian = Add(L"RU.chm");
  EXPECT_EQ(1, paints(1));  // replaced by another language's
  const std::vector<HelpRequest> expected = {{window, BesideProgram(L"kvtéstEN.chm"), 15, 77},
                                             {window, russian, 15, 77}};
  EXPECT_EQ(expected, helpRequests);
  htmlHelp = systemHelp;
}

TEST(Help, TheSystemsHelpCanBeCalled) {
  constexpr UINT kGetWinType = 5;  // queries a window that no help has opened: shows nothing
  EXPECT_EQ(reinterpret_cast<HWND>(-1), htmlHelp(nullptr, L">kvNone", kGetWinType, 0));
  EXPECT_NE(nullptr, GetModuleHandleW(L"hhctrl.ocx"));
}

}  // namespace
}  // namespace kv
