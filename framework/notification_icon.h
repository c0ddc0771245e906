// The taskbar's notification area, and notifications about USB devices that are plugged in or removed. Main thread
// only.
//
// When the taskbar restarts (the shell crashed, or came up after the program), every icon that was added and not
// removed is added again as it last was; its owner need not do anything. For that a hidden window of our own stands by
// as long as there is an icon: the thread that adds icons dispatches messages.
//
// In a DPI-aware host: the shell draws the icon as it is; give one of the size that GetSystemMetrics(SM_CXSMICON) says.
#pragma once

#include <windows.h>

#include <shellapi.h>

namespace kv {

// What the shell sends to the owner for mouse events over the icon: the icon's identifier in wParam, the mouse message
// in lParam. Numeric value 1025.
inline constexpr UINT kNotificationCallback = WM_USER + 1;

// The longest tip, terminator included; a longer one is cut.
inline constexpr int kNotificationTipCharacters = 64;

// All four functions return the shell's result: 0 when there is no notification area or the icon is not known.

// Adds the icon that `owner` knows as `id`. A tip that is not readable stays empty. The owner removes the icon before
// it is destroyed.
BOOL AddNotificationIcon(HWND owner, UINT id, HICON icon, const char* tip);

// Changes what is given: an icon of 0 and a tip that is not readable leave what is shown.
BOOL ChangeNotificationIcon(HWND owner, UINT id, HICON icon, const char* tip);

// Replaces the tip by one in any script. The operations above take their tips in the system's code page. 0 also for a
// tip that is not readable.
BOOL SetNotificationTip(HWND owner, UINT id, const wchar_t* tip);

// Removes the icon and has the whole desktop repainted, so that no image of it is left behind.
BOOL RemoveNotificationIcon(HWND owner, UINT id);

// Non-zero `registerThem`: has WM_DEVICECHANGE sent to the window `target` whenever a USB device comes or goes, and
// returns the notification's handle, or 0 if that failed. Zero: ends the notification `target`, and returns 0.
HDEVNOTIFY RegisterDeviceNotifications(HANDLE target, BOOL registerThem);

// The system calls behind all this. A test puts its own functions here; production code never does.
struct NotificationCalls {
  decltype(&::Shell_NotifyIconA) notifyIcon;
  decltype(&::RegisterDeviceNotificationA) registerDevices;
  decltype(&::UnregisterDeviceNotification) unregisterDevices;
  decltype(&::Shell_NotifyIconW) notifyIconWide;
};
extern NotificationCalls notificationCalls;

}  // namespace kv
