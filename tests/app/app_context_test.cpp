#include "app/app_context.h"

#include <gtest/gtest.h>

#include <string>

#include "framework/guards.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr char kKey[] = "Software\\korvel\\Brisklight";

std::wstring StoredFolder(DWORD* sizeBytes = nullptr) {
  const RegistryKey key = RegistryKey::Open(kKey);
  wchar_t text[512] = L"(none)";
  DWORD size = sizeof(text), type = 0;
  RegQueryValueExW(key, L"DataFolder", nullptr, &type, reinterpret_cast<BYTE*>(text), &size);
  if (sizeBytes) *sizeBytes = size;
  return text;
}

class DataFolderTest : public testing::Test {
 protected:
  void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, kKey); }
  AppContext context_{};
};

TEST_F(DataFolderTest, IsEmptyWithoutAKeyAndStoredAsOneTerminator) {
  EXPECT_TRUE(DataFolderSetting(&context_, FALSE));
  EXPECT_STREQ(L"", context_.szDataFolder);
  EXPECT_TRUE(DataFolderSetting(&context_, TRUE));
  DWORD size = 0;
  EXPECT_EQ(L"", StoredFolder(&size));
  EXPECT_EQ(2u, size);
}

TEST_F(DataFolderTest, LoadsWhatFitsAndRefusesTheRestWhole) {
  const std::wstring fits = L"C:\\" + std::wstring(123, L'\x416') + L"x";  // 127 characters
  lstrcpyW(context_.szDataFolder, fits.c_str());
  DataFolderSetting(&context_, TRUE);
  AppContext loaded{};
  DataFolderSetting(&loaded, FALSE);
  EXPECT_EQ(fits, loaded.szDataFolder);

  lstrcpyW(context_.szDataFolder, (fits + L"y").c_str());
  DataFolderSetting(&context_, TRUE);
  EXPECT_EQ(fits + L"y", StoredFolder());
  lstrcpyW(loaded.szDataFolder, L"before");
  EXPECT_TRUE(DataFolderSetting(&loaded, FALSE));
  EXPECT_STREQ(L"before", loaded.szDataFolder);
}

TEST_F(DataFolderTest, RefusesARecordThatIsNotWritable) {
  EXPECT_FALSE(DataFolderSetting(nullptr, TRUE));
  kvtest::GuardedBytes cut(sizeof(AppContext) - 1);
  EXPECT_FALSE(DataFolderSetting(cut.as<AppContext>(), FALSE));
  EXPECT_EQ(L"(none)", StoredFolder());
}

}  // namespace
}  // namespace kv
