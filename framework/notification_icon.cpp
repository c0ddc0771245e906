#include "framework/notification_icon.h"

#include <dbt.h>

#include <cstddef>

#include "framework/control_class.h"

namespace kv {

namespace {

// The record of Windows 2000's shell, in narrow text.
constexpr DWORD kIconRecordSize = offsetof(NOTIFYICONDATAA, guidItem);
static_assert(kIconRecordSize == 488);
static_assert(kNotificationTipCharacters <= sizeof(NOTIFYICONDATAA::szTip));

// What the record says of its size: up to the first character of the name, without the padding behind it.
constexpr DWORD kDeviceFilterSize = offsetof(DEV_BROADCAST_DEVICEINTERFACE_A, dbcc_name) + 1;
static_assert(kDeviceFilterSize == 29);

constexpr GUID kUsbDevice = {0xA5DCBF10, 0x6530, 0x11D2, {0x90, 0x1F, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xED}};

NOTIFYICONDATAA IconRecord(HWND owner, UINT id) {
  NOTIFYICONDATAA record{};
  record.cbSize = kIconRecordSize;
  record.hWnd = owner;
  record.uID = id;
  return record;
}

// With the flags of a whole icon, whatever of it is given.
NOTIFYICONDATAA WholeIconRecord(HWND owner, UINT id) {
  NOTIFYICONDATAA record = IconRecord(owner, id);
  record.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
  record.uCallbackMessage = kNotificationCallback;
  return record;
}

// False, with the tip left as it is, when `tip` is not readable.
bool CopyTip(NOTIFYICONDATAA* record, const char* tip) {
  if (IsBadStringPtrA(tip, kNotificationTipCharacters - 1)) return false;
  lstrcpynA(record->szTip, tip, kNotificationTipCharacters);
  return true;
}

}  // namespace

NotificationCalls notificationCalls{
    .notifyIcon = ::Shell_NotifyIconA,
    .registerDevices = ::RegisterDeviceNotificationA,
    .unregisterDevices = ::UnregisterDeviceNotification,
};

BOOL AddNotificationIcon(HWND owner, UINT id, HICON icon, const char* tip) {
  NOTIFYICONDATAA record = WholeIconRecord(owner, id);
  record.hIcon = icon;
  CopyTip(&record, tip);
  return notificationCalls.notifyIcon(NIM_ADD, &record);
}

BOOL ChangeNotificationIcon(HWND owner, UINT id, HICON icon, const char* tip) {
  NOTIFYICONDATAA record = IconRecord(owner, id);
  record.hIcon = icon;
  if (icon) record.uFlags |= NIF_ICON;
  if (CopyTip(&record, tip)) record.uFlags |= NIF_TIP;
  return notificationCalls.notifyIcon(NIM_MODIFY, &record);
}

BOOL RemoveNotificationIcon(HWND owner, UINT id) {
  NOTIFYICONDATAA record = WholeIconRecord(owner, id);
  const BOOL answer = notificationCalls.notifyIcon(NIM_DELETE, &record);
  RepaintNow(GetDesktopWindow());
  return answer;
}

HDEVNOTIFY DeviceNotices(HANDLE target, BOOL registerThem) {
  if (!registerThem) {
    notificationCalls.unregisterDevices(target);
    return nullptr;
  }
  if (!IsWindow(static_cast<HWND>(target))) return nullptr;
  DEV_BROADCAST_DEVICEINTERFACE_A filter{};
  filter.dbcc_size = kDeviceFilterSize;
  filter.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
  filter.dbcc_classguid = kUsbDevice;
  return notificationCalls.registerDevices(target, &filter, DEVICE_NOTIFY_WINDOW_HANDLE);
}

}  // namespace kv
