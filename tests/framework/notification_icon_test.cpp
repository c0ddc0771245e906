#include "framework/notification_icon.h"

#include <dbt.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/support/test_window.h"

namespace kv {
namespace {

DWORD seenMessage;
NOTIFYICONDATAA seenRecord;
DEV_BROADCAST_DEVICEINTERFACE_A seenFilter;
HANDLE endedNotices;

BOOL WINAPI RecordNotification(DWORD message, PNOTIFYICONDATAA record) {
  seenMessage = message;
  std::memset(&seenRecord, 0xCC, sizeof(seenRecord));
  std::memcpy(&seenRecord, record, record->cbSize);
  return 42;  // the shell's answer is passed on as it is
}

HDEVNOTIFY WINAPI RecordDevices(HANDLE target, LPVOID filter, DWORD flags) {
  std::memcpy(&seenFilter, filter, *static_cast<DWORD*>(filter));
  return flags == DEVICE_NOTIFY_WINDOW_HANDLE ? target : nullptr;
}

BOOL WINAPI RecordEnd(HDEVNOTIFY notices) {
  endedNotices = notices;
  return TRUE;
}

class Recorded : public testing::Test {
 protected:
  Recorded() { notificationCalls = {RecordNotification, RecordDevices, RecordEnd}; }
  ~Recorded() override { notificationCalls = real_; }

  const NotificationCalls real_ = notificationCalls;
  kvtest::RecordingParent owner_;
  const HICON icon_ = LoadIconA(nullptr, reinterpret_cast<LPCSTR>(IDI_INFORMATION));
};

TEST_F(Recorded, AddSendsAWholeIconInTheShortForm) {
  EXPECT_EQ(42, AddNotificationIcon(owner_, 7, icon_, "bench 3"));
  EXPECT_EQ(static_cast<DWORD>(NIM_ADD), seenMessage);
  EXPECT_EQ(488u, seenRecord.cbSize);
  EXPECT_EQ(owner_, seenRecord.hWnd);
  EXPECT_EQ(7u, seenRecord.uID);
  EXPECT_EQ(static_cast<UINT>(NIF_MESSAGE | NIF_ICON | NIF_TIP), seenRecord.uFlags);
  EXPECT_EQ(1025u, seenRecord.uCallbackMessage);
  EXPECT_EQ(icon_, seenRecord.hIcon);
  EXPECT_STREQ("bench 3", seenRecord.szTip);
}

TEST_F(Recorded, TipsAreCutAndUnreadableOnesStayEmpty) {
  AddNotificationIcon(owner_, 1, icon_, std::string(300, 'x').c_str());
  EXPECT_EQ(std::string(63, 'x'), seenRecord.szTip);

  kvtest::GuardedBytes exact(63);
  std::memset(exact.data(), 'y', 63);
  AddNotificationIcon(owner_, 1, icon_, exact.as<char>());
  EXPECT_EQ(std::string(63, 'y'), seenRecord.szTip);
  AddNotificationIcon(owner_, 1, icon_, exact.as<char>() + 1);  // 62 without an end
  EXPECT_STREQ("", seenRecord.szTip);
  AddNotificationIcon(owner_, 1, icon_, nullptr);
  EXPECT_EQ(7u, seenRecord.uFlags);
}

TEST_F(Recorded, ChangeNamesOnlyWhatIsGiven) {
  const struct {
    HICON icon;
    const char* tip;
    UINT flags;
  } changes[] = {{nullptr, nullptr, 0}, {icon_, nullptr, NIF_ICON}, {nullptr, "", NIF_TIP}, {icon_, "on", 6}};
  for (const auto& change : changes) {
    EXPECT_EQ(42, ChangeNotificationIcon(owner_, 9, change.icon, change.tip));
    EXPECT_EQ(static_cast<DWORD>(NIM_MODIFY), seenMessage);
    EXPECT_EQ(change.flags, seenRecord.uFlags);
    EXPECT_EQ(change.icon, seenRecord.hIcon);
    EXPECT_EQ(0u, seenRecord.uCallbackMessage);
  }
}

TEST_F(Recorded, RemoveNamesTheIcon) {
  EXPECT_EQ(42, RemoveNotificationIcon(owner_, 9));
  EXPECT_EQ(static_cast<DWORD>(NIM_DELETE), seenMessage);
  EXPECT_EQ(9u, seenRecord.uID);
  EXPECT_EQ(7u, seenRecord.uFlags);
  EXPECT_EQ(1025u, seenRecord.uCallbackMessage);
  EXPECT_EQ(nullptr, seenRecord.hIcon);
}

TEST_F(Recorded, DeviceNoticesAskForUsbAndEndWhatTheyBegan) {
  EXPECT_EQ(owner_, DeviceNotices(owner_, TRUE));
  EXPECT_EQ(29u, seenFilter.dbcc_size);
  EXPECT_EQ(5u, seenFilter.dbcc_devicetype);
  EXPECT_EQ(0u, seenFilter.dbcc_reserved);
  EXPECT_EQ('\0', seenFilter.dbcc_name[0]);
  wchar_t guid[40];
  StringFromGUID2(seenFilter.dbcc_classguid, guid, ARRAYSIZE(guid));
  EXPECT_STREQ(L"{A5DCBF10-6530-11D2-901F-00C04FB951ED}", guid);

  EXPECT_EQ(nullptr, DeviceNotices(reinterpret_cast<HANDLE>(0x1234), FALSE));
  EXPECT_EQ(reinterpret_cast<HANDLE>(0x1234), endedNotices);
  EXPECT_EQ(nullptr, DeviceNotices(reinterpret_cast<HANDLE>(0x1234), TRUE));  // no window
}

TEST(Notifications, TheRealShellKnowsTheIconUntilItIsRemoved) {
  const kvtest::RecordingParent owner;
  const HICON icon = LoadIconA(nullptr, reinterpret_cast<LPCSTR>(IDI_INFORMATION));
  EXPECT_TRUE(AddNotificationIcon(owner, 3, icon, "test"));
  EXPECT_TRUE(ChangeNotificationIcon(owner, 3, nullptr, "changed"));
  EXPECT_TRUE(RemoveNotificationIcon(owner, 3));
  EXPECT_FALSE(ChangeNotificationIcon(owner, 3, nullptr, "gone"));

  const HDEVNOTIFY notices = DeviceNotices(owner, TRUE);
  EXPECT_NE(nullptr, notices);
  EXPECT_EQ(nullptr, DeviceNotices(notices, FALSE));
}

}  // namespace
}  // namespace kv
