#include "app/app_context.h"

#include <gtest/gtest.h>

#include <string>

#include "kv/framework/guards.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr char kKey[] = "Software\\korvel\\Brisklight";

std::wstring StoredFolder() {
  const RegistryKey key = RegistryKey::Open(kKey);
  wchar_t text[512] = L"(none)";
  DWORD size = sizeof(text);
  RegQueryValueExW(key, L"DataFolder", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
  return std::to_wstring(size) + L" " + text;
}

TEST(DataFolder, IsStoredAndLoadedIfItFits) {
  RegDeleteTreeA(HKEY_CURRENT_USER, kKey);
  AppContext context{}, loaded{};
  kvtest::GuardedBytes cut(sizeof(AppContext) - 1);
  EXPECT_FALSE(DataFolderSetting(nullptr, TRUE) || DataFolderSetting(cut.as<AppContext>(), TRUE));
  EXPECT_EQ(L"1024 (none)", StoredFolder());
  EXPECT_TRUE(DataFolderSetting(&context, FALSE));
  EXPECT_STREQ(L"", context.szDataFolder);
  EXPECT_TRUE(DataFolderSetting(&context, TRUE));
  EXPECT_EQ(L"2 ", StoredFolder()) << "only the terminator";

  const std::wstring fits = L"C:\\" + std::wstring(123, L'\x416') + L"x";  // 127 characters
  for (const std::wstring& folder : {fits, fits + L"y"}) {
    lstrcpyW(context.szDataFolder, folder.c_str());
    EXPECT_TRUE(DataFolderSetting(&context, TRUE));
    EXPECT_EQ(std::to_wstring(2 * folder.size() + 2) + L" " + folder, StoredFolder());
    EXPECT_TRUE(DataFolderSetting(&loaded, FALSE));
    EXPECT_EQ(fits, loaded.szDataFolder) << "a longer one is not loaded";
  }
}

}  // namespace
}  // namespace kv
