#include "kv/framework/notification_icon.h"

#include <combaseapi.h>
#include <dbt.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "tests/support/test_window.h"

namespace kv {
namespace {

DWORD seenMessage;
NOTIFYICONDATAA seen;
DEV_BROADCAST_DEVICEINTERFACE_A seenFilter;
HANDLE endedRegistrations;

BOOL WINAPI RecordNotification(DWORD message, PNOTIFYICONDATAA record) {
  seenMessage = message;
  std::memset(&seen, 0xCC, sizeof(seen));
  std::memcpy(&seen, record, record->cbSize);
  return 42;  // the shell's result is returned unchanged
}

std::wstring seenWideTip;

BOOL WINAPI RecordWide(DWORD message, PNOTIFYICONDATAW record) {
  EXPECT_TRUE(message == NIM_MODIFY && record->uFlags == NIF_TIP && record->cbSize == 936);
  seenWideTip = record->szTip;
  return 42;
}

HDEVNOTIFY WINAPI RecordDevices(HANDLE target, LPVOID filter, DWORD flags) {
  std::memcpy(&seenFilter, filter, *static_cast<DWORD*>(filter));
  return flags == DEVICE_NOTIFY_WINDOW_HANDLE ? target : nullptr;
}

BOOL WINAPI RecordEnd(HDEVNOTIFY notices) {
  endedRegistrations = notices;
  return TRUE;
}

class Recorded : public testing::Test {
 protected:
  Recorded() { notificationCalls = {RecordNotification, RecordDevices, RecordEnd, RecordWide}; }
  ~Recorded() override { notificationCalls = real_; }

  // The last call to the shell.
  void ExpectNotified(DWORD message, UINT id, UINT flags, UINT callback, HICON icon, const char* tip) const {
    EXPECT_TRUE(message == seenMessage && seen.cbSize == 488 &&
                seen.hWnd == owner_);  // the size of the short structure
    EXPECT_TRUE(id == seen.uID && flags == seen.uFlags && callback == seen.uCallbackMessage && icon == seen.hIcon);
    EXPECT_STREQ(tip, seen.szTip);
  }

  const NotificationCalls real_ = notificationCalls;
  kvtest::RecordingParent owner_;
  const HICON icon_ = LoadIconA(nullptr, reinterpret_cast<LPCSTR>(IDI_INFORMATION));
};

TEST_F(Recorded, AddSetsAllFieldsRemoveTheIdAndChangeTheGivenOnes) {
  EXPECT_EQ(42, AddNotificationIcon(owner_, 7, icon_, "bench 3"));
  ExpectNotified(NIM_ADD, 7, NIF_MESSAGE | NIF_ICON | NIF_TIP, 1025, icon_, "bench 3");
  EXPECT_EQ(42, RemoveNotificationIcon(owner_, 9));
  ExpectNotified(NIM_DELETE, 9, 7, 1025, nullptr, "");
  const struct {
    HICON icon;
    const char* tip;
    UINT flags;
  } changes[] = {{nullptr, nullptr, 0}, {icon_, nullptr, NIF_ICON}, {nullptr, "", NIF_TIP}, {icon_, "on", 6}};
  for (const auto& change : changes) {
    EXPECT_EQ(42, ChangeNotificationIcon(owner_, 9, change.icon, change.tip));
    ExpectNotified(NIM_MODIFY, 9, change.flags, 0, change.icon, change.tip ? change.tip : "");
  }
}

TEST_F(Recorded, TipsAreTruncatedAndUnreadableOnesEmpty) {
  kvtest::GuardedBytes exact(63);
  std::memset(exact.data(), 'y', 63);
  const std::string longTip(300, 'y'), cut(63, 'y');
  const std::pair<const char*, std::string> tips[] = {
      {longTip.c_str(), cut}, {exact.as<char>(), cut}, {exact.as<char>() + 1, ""}, {nullptr, ""}};
  for (const auto& [tip, shown] : tips) {
    AddNotificationIcon(owner_, 1, icon_, tip);
    ExpectNotified(NIM_ADD, 1, 7, 1025, icon_, shown.c_str());
  }
}

TEST_F(Recorded, IconsAreRestoredWhenTheTaskbarRestarts) {
  const auto restart = [&] {
    seenMessage = 0xDEAD;
    seenWideTip = L"none";
    SendMessageA(FindWindowA("kvNotificationListener", nullptr), RegisterWindowMessageA("TaskbarCreated"), 0, 0);
  };
  AddNotificationIcon(owner_, 7, nullptr, "bench 3");
  ChangeNotificationIcon(owner_, 7, icon_, nullptr);
  EXPECT_EQ(42, SetNotificationTip(owner_, 7, L"темп. Ω"));
  EXPECT_FALSE(SetNotificationTip(owner_, 7, nullptr));
  restart();
  ExpectNotified(NIM_ADD, 7, 7, 1025, icon_, "bench 3");
  EXPECT_EQ(L"темп. Ω", seenWideTip);
  ChangeNotificationIcon(owner_, 7, nullptr, "on");
  restart();
  ExpectNotified(NIM_ADD, 7, 7, 1025, icon_, "on");
  EXPECT_EQ(L"none", seenWideTip);
  {
    const kvtest::RecordingParent gone;
    AddNotificationIcon(gone, 8, icon_, "");
  }
  restart();
  ExpectNotified(NIM_ADD, 7, 7, 1025, icon_, "on");  // not 8
  RemoveNotificationIcon(owner_, 7);
  EXPECT_EQ(nullptr, FindWindowA("kvNotificationListener", nullptr));
}

TEST_F(Recorded, DeviceNoticesAskForUsbAndEndWhatTheyBegan) {
  EXPECT_EQ(owner_, RegisterDeviceNotifications(owner_, TRUE));
  EXPECT_TRUE(seenFilter.dbcc_size == 29 && seenFilter.dbcc_devicetype == 5);
  EXPECT_TRUE(seenFilter.dbcc_reserved == 0 && seenFilter.dbcc_name[0] == '\0');
  wchar_t guid[40];
  StringFromGUID2(seenFilter.dbcc_classguid, guid, ARRAYSIZE(guid));
  EXPECT_STREQ(L"{A5DCBF10-6530-11D2-901F-00C04FB951ED}", guid);

  const auto noWindow = reinterpret_cast<HANDLE>(0x1234);
  EXPECT_EQ(nullptr, RegisterDeviceNotifications(noWindow, FALSE));
  EXPECT_EQ(noWindow, endedRegistrations);
  EXPECT_EQ(nullptr, RegisterDeviceNotifications(noWindow, TRUE));
}

TEST(Notifications, TheRealShellHasTheIconUntilItIsRemoved) {
  const kvtest::RecordingParent owner;
  EXPECT_TRUE(AddNotificationIcon(owner, 3, LoadIconA(nullptr, reinterpret_cast<LPCSTR>(IDI_INFORMATION)), "test"));
  EXPECT_TRUE(ChangeNotificationIcon(owner, 3, nullptr, "changed") && RemoveNotificationIcon(owner, 3));
  EXPECT_FALSE(ChangeNotificationIcon(owner, 3, nullptr, "gone"));
  const HDEVNOTIFY notices = RegisterDeviceNotifications(owner, TRUE);
  EXPECT_NE(nullptr, notices);
  EXPECT_EQ(nullptr, RegisterDeviceNotifications(notices, FALSE));
}

}  // namespace
}  // namespace kv
