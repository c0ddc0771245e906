// Entry point of every test program. Redirects the process's registry, so that tests neither read nor leave settings.
#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>

#include <cstdio>

namespace {

// Redirects HKEY_CURRENT_USER of this process to a separate key, which is deleted when the tests end.
class PrivateRegistry : public testing::Environment {
 public:
  void SetUp() override {
    sprintf(path_, "Software\\kvTests\\%lu", GetCurrentProcessId());
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(HKEY_CURRENT_USER, path_, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                             KEY_ALL_ACCESS, nullptr, &key, nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CURRENT_USER, key));
    RegCloseKey(key);
  }
  void TearDown() override {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegDeleteTreeA(HKEY_CURRENT_USER, path_);
  }

 private:
  char path_[64] = "";
};

}  // namespace

int main(int argc, char** argv) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  setvbuf(stdout, nullptr, _IONBF, 0);
  InitCommonControls();
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new PrivateRegistry);
  return RUN_ALL_TESTS();
}
