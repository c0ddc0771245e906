#include "framework/language.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "framework/guards.h"
#include "framework/help.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr wchar_t kStem[] = L"kvtést";  // outside plain ASCII, like the folders of many users
constexpr wchar_t kApplication[] = L"kvTest Ω";
constexpr wchar_t kApplicationKey[] = L"Software\\korvel\\Configuration\\kvTest Ω";

std::wstring BesideProgram(const std::wstring& name) {
  wchar_t directory[kPathCharacters];
  ProgramDirectory(directory);
  return directory + name;
}

// Files beside the test program that look like those of languages; none is there when a test begins or ends.
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

  void StoreNumber(DWORD number) { Store(REG_DWORD, &number, sizeof(number)); }
  void Store(DWORD type, const void* data, DWORD size) {
    RegSetValueExW(RegistryKey::Create(kApplicationKey), L"LanguageCode", 0, type, static_cast<const BYTE*>(data),
                   size);
  }
  DWORD StoredNumber() {
    DWORD type = 0, number = 0xDEAD, size = sizeof(number);
    RegQueryValueExW(RegistryKey::Open(kApplicationKey), L"LanguageCode", nullptr, &type,
                     reinterpret_cast<BYTE*>(&number), &size);
    return type == REG_DWORD ? number : 0xDEAD;
  }

  // Loads and frees again; gives the file name of the module that held the resources.
  std::wstring Load(int* language) {
    const HMODULE own = GetModuleHandleW(nullptr);
    const HMODULE module = LoadLanguageResources(own, kStem, kApplication, language);
    wchar_t name[kPathCharacters] = L"none", text[64] = L"";
    GetModuleFileNameW(module, name, kPathCharacters);
    if (module == own) return L"own";
    EXPECT_GT(LoadStringW(module, 1, text, ARRAYSIZE(text)), 0);
    EXPECT_TRUE(FreeLibrary(module));
    return name;
  }
};

TEST_F(LanguageFiles, FindTakesEnglishUnseenOthersOnlyWhenThereAndThenAnyLanguage) {
  wchar_t path[kPathCharacters] = L"untouched";
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFile(0, kStem, L".chm", path, TRUE));
  EXPECT_EQ(BesideProgram(L"kvtéstEN.chm"), path);

  wcscpy(path, L"untouched");
  EXPECT_EQ(kLanguageFileNone, FindLanguageFile(1, kStem, nullptr, path, FALSE));
  EXPECT_STREQ(L"untouched", path);

  const std::wstring french = Add(L"FR.dll"), spanish = Add(L"ES.dll");
  EXPECT_EQ(kLanguageFileNone, FindLanguageFile(1, kStem, nullptr, path, TRUE));
  EXPECT_STREQ(L"untouched", path);
  EXPECT_EQ(kLanguageFileOther, FindLanguageFile(1, kStem, nullptr, path, FALSE));
  EXPECT_EQ(french, path);
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFile(23, kStem, nullptr, path, TRUE));
  EXPECT_EQ(spanish, path);
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFile(2, kStem, L".dll", nullptr, TRUE));

  // A reserved place has no code: its file is stem + extension, and it stands in for others like any file.
  const std::wstring codeless = Add(L".dat");
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFile(20, kStem, L".dat", path, TRUE));
  EXPECT_EQ(kLanguageFileOther, FindLanguageFile(2, kStem, L".dat", path, FALSE));
  EXPECT_EQ(codeless, path);
}

TEST_F(LanguageFiles, FindRefusesWhatIsNoLanguageNoTextAndNoPath) {
  wchar_t path[kPathCharacters] = L"untouched";
  for (const int language : {24, 1000, -1}) {
    EXPECT_EQ(kLanguageFileNone, FindLanguageFile(language, kStem, nullptr, path, FALSE));
  }
  EXPECT_EQ(kLanguageFileNone, FindLanguageFile(0, nullptr, nullptr, path, FALSE));
  EXPECT_STREQ(L"untouched", path);

  Add(L"GE.dll");
  kvtest::GuardedBytes oneShort((kPathCharacters - 1) * sizeof(wchar_t));
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFile(1, kStem, nullptr, oneShort.as<wchar_t>(), TRUE));

  // A stem of a whole path's length without a terminator, and a folder that leaves no room for the file.
  kvtest::GuardedBytes stem(kPathCharacters * sizeof(wchar_t));
  std::wmemset(stem.as<wchar_t>(), L'x', kPathCharacters);
  EXPECT_EQ(kLanguageFileNone, FindLanguageFile(1, stem.as<wchar_t>(), nullptr, path, FALSE));
  const std::wstring deep(kPathCharacters - 6, L'x');
  EXPECT_EQ(kLanguageFileOwn, FindLanguageFileIn(deep.c_str(), 0, kStem, nullptr, path, FALSE));
  EXPECT_EQ(deep + L"kvtés", path);
}

TEST(FilePath, SplitsAtSeparatorsDriveAndLastDot) {
  struct Sample {
    const wchar_t *path, *directory, *name, *extension;
  };
  for (const Sample& sample : {
           Sample{L"C:\\prog.exe", L"C:\\", L"prog.exe", L".exe"},  // at a drive's root
           {L"C:\\a.b\\Straße 1 Ω.tar.gz", L"C:\\a.b\\", L"Straße 1 Ω.tar.gz", L".gz"},
           {L"C:/data/track", L"C:/data/\\", L"track", L""},
           {L"C:track.kml", L"C:\\", L"track.kml", L".kml"},
           {L"\\\\server\\share\\.hidden", L"\\\\server\\share\\", L".hidden", L".hidden"},
           {L"C:\\folder\\", L"C:\\folder\\", L"", L""},
           {L"", L"\\", L"", L""},
       }) {
    wchar_t directory[kPathCharacters];
    EXPECT_TRUE(DirectoryOf(sample.path, directory, kPathCharacters));
    EXPECT_STREQ(sample.directory, directory);
    EXPECT_STREQ(sample.name, FileNameOf(sample.path));
    EXPECT_STREQ(sample.extension, ExtensionOf(sample.path));
  }
  const std::wstring fits = std::wstring(258, L'd') + L"\\", tooDeep = std::wstring(259, L'd') + L"\\";
  wchar_t directory[kPathCharacters] = L"untouched";
  EXPECT_FALSE(DirectoryOf((tooDeep + L"p.exe").c_str(), directory, kPathCharacters));
  EXPECT_STREQ(L"untouched", directory);
  EXPECT_TRUE(DirectoryOf((fits + L"p.exe").c_str(), directory, kPathCharacters));
  EXPECT_EQ(fits, directory);
}

TEST(FilePath, ProgramDirectoryWritesOnlyWhereItsTextFits) {
  wchar_t program[kPathCharacters], directory[kPathCharacters];
  GetModuleFileNameW(nullptr, program, kPathCharacters);
  EXPECT_TRUE(ProgramDirectory(directory));
  EXPECT_EQ(std::filesystem::path(program).parent_path().wstring() + L"\\", directory);

  const size_t size = (wcslen(directory) + 1) * sizeof(wchar_t);
  kvtest::GuardedBytes exact(size), oneShort(size - sizeof(wchar_t));
  EXPECT_TRUE(ProgramDirectory(exact.as<wchar_t>()));
  EXPECT_STREQ(directory, exact.as<wchar_t>());
  EXPECT_TRUE(ProgramDirectory(oneShort.as<wchar_t>()));
  EXPECT_EQ(0, *oneShort.as<wchar_t>());
}

TEST_F(LanguageFiles, LoadTakesTheLibraryAndRemembersTheLanguage) {
  const std::wstring german = Add(L"GE.dll");
  int language = 1;
  EXPECT_EQ(german, Load(&language));
  EXPECT_EQ(1u, StoredNumber());

  language = kStoredLanguage;
  EXPECT_EQ(german, Load(&language));
  EXPECT_EQ(1, language);

  // Another language's library stands in, and the choice stays.
  language = 8;
  EXPECT_EQ(german, Load(&language));
  EXPECT_EQ(8, language);
  EXPECT_EQ(8u, StoredNumber());
}

TEST_F(LanguageFiles, LoadGivesEnglishForWhatIsMissingDamagedOrNoLanguage) {
  StoreNumber(7);
  int language = 5;
  EXPECT_EQ(L"own", Load(&language));  // no library at all
  EXPECT_EQ(0, language);
  EXPECT_EQ(0u, StoredNumber());

  const std::wstring german = Add(L"GE.dll");
  std::filesystem::resize_file(german, 1500);
  language = 1;
  EXPECT_EQ(L"own", Load(&language));  // cut
  EXPECT_EQ(0u, StoredNumber());
  std::ofstream(std::filesystem::path(german)) << "no library";
  language = 1;
  EXPECT_EQ(L"own", Load(&language));  // something else
  EXPECT_EQ(0, language);

  for (const DWORD stored : {30u, 0x80000000u, 24u}) {
    StoreNumber(stored);
    language = kStoredLanguage;
    EXPECT_EQ(L"own", Load(&language));
    EXPECT_EQ(0, language);
    EXPECT_EQ(0u, StoredNumber());
  }
  language = 99;
  EXPECT_EQ(L"own", Load(&language));
  EXPECT_EQ(0, language);
}

TEST_F(LanguageFiles, LoadTakesNoStoredValueOfAnotherTypeOrSize) {
  Add(L"GE.dll");
  const BYTE one[] = {1, 0, 0, 0, 0, 0, 0, 0};
  const struct { DWORD type, size; } values[] = {{REG_BINARY, 4}, {REG_SZ, 4}, {REG_DWORD, 1}, {REG_DWORD, 8}};
  for (const auto& value : values) {
    Store(value.type, one, value.size);
    int language = kStoredLanguage;
    EXPECT_EQ(L"own", Load(&language)) << value.type << " " << value.size;
    EXPECT_EQ(0u, StoredNumber());
  }
}

TEST_F(LanguageFiles, LoadWithoutPointerOrNameTakesEnglishUnderTheCommonName) {
  const HMODULE own = GetModuleHandleW(nullptr);
  EXPECT_EQ(own, LoadLanguageResources(own, kStem, nullptr, nullptr));
  EXPECT_NE(nullptr, static_cast<HKEY>(RegistryKey::Open("Software\\korvel\\Configuration\\CommonLanguage")));

  kvtest::GuardedBytes constant(sizeof(int));
  *constant.as<int>() = 200;
  constant.MakeReadOnly();
  EXPECT_EQ(own, LoadLanguageResources(own, kStem, nullptr, constant.as<int>()));
}

constexpr UINT kFirstCommand = 500;
constexpr int kHandlesInArea = kLanguageBitmapArea / sizeof(HBITMAP);

TEST_F(LanguageFiles, MenuListsWhatHasALibraryAndDoesWithoutBitmaps) {
  Add(L"ES.dll");
  Add(L"RU.dll");
  HBITMAP handles[kHandlesInArea];
  std::fill_n(handles, kHandlesInArea, reinterpret_cast<HBITMAP>(1));
  const HMENU menu =
      BuildLanguageMenu(8, GetModuleHandleW(nullptr), kFirstCommand, 0x1FFF0, kStem, handles);  // no such bitmaps
  const int expected[] = {0, 3, 8, 23};
  ASSERT_EQ(4, GetMenuItemCount(menu));
  for (int i = 0; i < 4; ++i) {
    wchar_t text[64];
    GetMenuStringW(menu, i, text, ARRAYSIZE(text), MF_BYPOSITION);
    EXPECT_EQ(kFirstCommand + expected[i], GetMenuItemID(menu, i));
    EXPECT_STREQ(kLanguages[expected[i]].menuName, text);
    EXPECT_EQ(expected[i] == 8, (GetMenuState(menu, i, MF_BYPOSITION) & MF_CHECKED) != 0);
  }
  EXPECT_EQ(0, std::count(handles, handles + kLanguageBitmapCount, reinterpret_cast<HBITMAP>(1)));
  EXPECT_EQ(reinterpret_cast<HBITMAP>(1), handles[kLanguageBitmapCount]);
  EXPECT_TRUE(FreeLanguageMenuBitmaps(handles));
  DestroyMenu(menu);

  kvtest::GuardedBytes oneShort(kLanguageBitmapArea - sizeof(HBITMAP));
  const HMENU second = BuildLanguageMenu(0, nullptr, kFirstCommand, 1, kStem, oneShort.as<HBITMAP>());
  EXPECT_EQ(0, *oneShort.as<int>());
  DestroyMenu(second);
  const HMENU empty = BuildLanguageMenu(0, nullptr, kFirstCommand, 1, nullptr, handles);
  EXPECT_EQ(0, GetMenuItemCount(empty));
  DestroyMenu(empty);
}

TEST_F(LanguageFiles, MenuItemsShowTheirTwoBitmapsWhoseFirst32AreFreed) {
  // The bitmaps of the test's language library: 1 to 48, see language_library.rc. The identifier wraps at 65536.
  const HMODULE library = LoadLibraryW(Add(L"GE.dll").c_str());
  HBITMAP handles[kHandlesInArea] = {};
  const HMENU menu = BuildLanguageMenu(1, library, kFirstCommand, 0x10001, kStem, handles);
  MENUITEMINFOA item{};
  item.cbSize = sizeof(item);
  item.fMask = MIIM_CHECKMARKS;
  ASSERT_TRUE(GetMenuItemInfoA(menu, 1, TRUE, &item));
  EXPECT_EQ(handles[1], item.hbmpUnchecked);
  EXPECT_EQ(handles[25], item.hbmpChecked);
  BITMAP first{}, checked{};
  GetObjectA(handles[1], sizeof(first), &first);
  GetObjectA(handles[25], sizeof(checked), &checked);
  EXPECT_EQ(8, first.bmWidth);
  EXPECT_EQ(16, checked.bmWidth);
  DestroyMenu(menu);

  FreeLanguageMenuBitmaps(handles);
  EXPECT_EQ(0u, GetObjectType(handles[31]));
  EXPECT_EQ(static_cast<DWORD>(OBJ_BITMAP), GetObjectType(handles[32]));
  for (int i = 32; i < kLanguageBitmapCount; ++i) DeleteObject(handles[i]);

  kvtest::GuardedBytes half(16 * sizeof(HBITMAP));
  EXPECT_TRUE(FreeLanguageMenuBitmaps(half.as<HBITMAP>()));
  EXPECT_TRUE(FreeLanguageMenuBitmaps(nullptr));
  FreeLibrary(library);
}

struct HelpRequest {
  HWND caller;
  std::wstring file;
  UINT command;
  DWORD_PTR data;
};
std::vector<HelpRequest> helpRequests;

HWND WINAPI RecordHelp(HWND caller, const wchar_t* file, UINT command, DWORD_PTR data) {
  helpRequests.push_back({caller, file, command, data});
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
  EXPECT_TRUE(helpRequests.empty());

  EXPECT_EQ(1, paints(0));  // the English one unseen
  const std::wstring russian = Add(L"RU.chm");
  EXPECT_EQ(1, paints(1));  // another language's stands in
  ASSERT_EQ(2u, helpRequests.size());
  EXPECT_EQ(BesideProgram(L"kvtéstEN.chm"), helpRequests[0].file);
  EXPECT_EQ(russian, helpRequests[1].file);
  EXPECT_EQ(window, helpRequests[1].caller);
  EXPECT_EQ(15u, helpRequests[1].command);
  EXPECT_EQ(77u, helpRequests[1].data);
  htmlHelp = systemHelp;
}

TEST(Help, TheSystemsFacilityTakesACall) {
  constexpr UINT kGetWinType = 5;  // asks about a window that no help has opened: answered without showing anything
  EXPECT_EQ(reinterpret_cast<HWND>(-1), htmlHelp(nullptr, L">kvNone", kGetWinType, 0));
  EXPECT_NE(nullptr, GetModuleHandleW(L"hhctrl.ocx"));
}

}  // namespace
}  // namespace kv
