#include "kv/framework/notification_icon.h"

#include <dbt.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "kv/framework/control_class.h"

namespace kv {

namespace {

// The size of the struct in Windows 2000.
static_assert(offsetof(NOTIFYICONDATAA, guidItem) == 488);
static_assert(kNotificationTipCharacters <= sizeof(NOTIFYICONDATAA::szTip));

// The size stored in the struct: up to the first character of the name, without the padding.
constexpr DWORD kDeviceFilterSize = offsetof(DEV_BROADCAST_DEVICEINTERFACE_A, dbcc_name) + 1;
static_assert(kDeviceFilterSize == 29);

constexpr GUID kUsbDevice = {0xA5DCBF10, 0x6530, 0x11D2, {0x90, 0x1F, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xED}};

template <class Data>
Data IconData(HWND owner, UINT id) {
  Data data{};
  data.cbSize = offsetof(Data, guidItem);
  data.hWnd = owner;
  data.uID = id;
  return data;
}

// With the flags for all properties, whichever are set.
NOTIFYICONDATAA CompleteIconData(HWND owner, UINT id) {
  auto data = IconData<NOTIFYICONDATAA>(owner, id);
  data.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
  data.uCallbackMessage = kNotificationCallback;
  return data;
}

// Returns false, and does not change the tip, when `tip` is not readable.
bool CopyTip(NOTIFYICONDATAA* data, const char* tip) {
  if (IsBadStringPtrA(tip, kNotificationTipCharacters - 1)) return false;
  lstrcpynA(data->szTip, tip, kNotificationTipCharacters);
  return true;
}

// ---- Icons to add again when the taskbar restarts -------------------------------------------------------------------

struct ShownIcon {
  NOTIFYICONDATAA whole;
  NOTIFYICONDATAW wideTip;  // size 0: the 8-bit tip is used
};

std::vector<ShownIcon> shownIcons;
HWND listener;  // exists as long as there are icons

ShownIcon* FindShown(HWND owner, UINT id) {
  const auto found = std::ranges::find_if(
      shownIcons, [&](const ShownIcon& icon) { return icon.whole.hWnd == owner && icon.whole.uID == id; });
  return found == shownIcons.end() ? nullptr : &*found;
}

void ShowAgain(ShownIcon& icon) {
  notificationCalls.notifyIcon(NIM_ADD, &icon.whole);
  if (icon.wideTip.cbSize) notificationCalls.notifyIconWide(NIM_MODIFY, &icon.wideTip);
}

// The message that a new taskbar broadcasts to top-level windows.
UINT TaskbarCreated() {
  static const UINT message = RegisterWindowMessageA("TaskbarCreated");
  return message;
}

LRESULT CALLBACK ListenerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != TaskbarCreated()) return DefWindowProcA(window, message, wParam, lParam);
  std::erase_if(shownIcons, [](const ShownIcon& icon) { return !IsWindow(icon.whole.hWnd); });
  // A copy, because an owner may receive messages during the call and change its icons.
  std::ranges::for_each(std::vector(shownIcons), ShowAgain);
  return 0;
}

// The listener is separate from the owner, which may be a child window that receives no broadcasts.
void Listen() {
  if (listener) return;
  const HINSTANCE module = GetModuleHandleA(nullptr);
  const WNDCLASSA windowClass{
      .lpfnWndProc = ListenerProcedure, .hInstance = module, .lpszClassName = "kvNotificationListener"};
  RegisterClassA(&windowClass);  // fails when registered already
  listener = CreateWindowExA(0, windowClass.lpszClassName, "", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, module, nullptr);
  // Without this, a program that runs with more rights than the shell would not receive the message.
  ChangeWindowMessageFilter(TaskbarCreated(), MSGFLT_ADD);
}

// Stores also an icon that the shell rejected, because without a taskbar it rejects every icon. If it was rejected as a
// duplicate, the stored icon does not change.
void RememberAdded(const NOTIFYICONDATAA& data, bool taken) {
  ShownIcon* known = FindShown(data.hWnd, data.uID);
  if (known && !taken) return;
  if (!known) known = &shownIcons.emplace_back();
  *known = {.whole = data, .wideTip = {}};
  Listen();
}

void RememberChanged(const NOTIFYICONDATAA& change) {
  ShownIcon* icon = FindShown(change.hWnd, change.uID);
  if (!icon) return;
  if (change.uFlags & NIF_ICON) icon->whole.hIcon = change.hIcon;
  if (change.uFlags & NIF_TIP) {
    lstrcpynA(icon->whole.szTip, change.szTip, kNotificationTipCharacters);
    icon->wideTip = {};
  }
}

void Forget(HWND owner, UINT id) {
  if (const ShownIcon* icon = FindShown(owner, id)) shownIcons.erase(shownIcons.begin() + (icon - shownIcons.data()));
  if (shownIcons.empty() && listener) DestroyWindow(std::exchange(listener, nullptr));
}

}  // namespace

NotificationCalls notificationCalls{
    .notifyIcon = ::Shell_NotifyIconA,
    .registerDevices = ::RegisterDeviceNotificationA,
    .unregisterDevices = ::UnregisterDeviceNotification,
    .notifyIconWide = ::Shell_NotifyIconW,
};

BOOL AddNotificationIcon(HWND owner, UINT id, HICON icon, const char* tip) {
  NOTIFYICONDATAA data = CompleteIconData(owner, id);
  data.hIcon = icon;
  CopyTip(&data, tip);
  const BOOL result = notificationCalls.notifyIcon(NIM_ADD, &data);
  RememberAdded(data, result);
  return result;
}

BOOL ChangeNotificationIcon(HWND owner, UINT id, HICON icon, const char* tip) {
  auto data = IconData<NOTIFYICONDATAA>(owner, id);
  data.hIcon = icon;
  if (icon) data.uFlags |= NIF_ICON;
  if (CopyTip(&data, tip)) data.uFlags |= NIF_TIP;
  RememberChanged(data);
  return notificationCalls.notifyIcon(NIM_MODIFY, &data);
}

BOOL SetNotificationTip(HWND owner, UINT id, const wchar_t* tip) {
  if (IsBadStringPtrW(tip, kNotificationTipCharacters - 1)) return FALSE;
  auto data = IconData<NOTIFYICONDATAW>(owner, id);
  data.uFlags = NIF_TIP;
  lstrcpynW(data.szTip, tip, kNotificationTipCharacters);
  if (ShownIcon* icon = FindShown(owner, id)) icon->wideTip = data;
  return notificationCalls.notifyIconWide(NIM_MODIFY, &data);
}

BOOL RemoveNotificationIcon(HWND owner, UINT id) {
  NOTIFYICONDATAA data = CompleteIconData(owner, id);
  const BOOL result = notificationCalls.notifyIcon(NIM_DELETE, &data);
  Forget(owner, id);
  RepaintNow(GetDesktopWindow());
  return result;
}

HDEVNOTIFY RegisterDeviceNotifications(HANDLE target, BOOL registerThem) {
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
