#include "gallery/pages.h"

#include <dbt.h>

#include <cstddef>
#include <string>

#include "gallery/resource_ids.h"
#include "kv/framework/modules.h"
#include "kv/framework/notification_icon.h"
#include "kv/toolkit/empty_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr UINT kIconId = 1;
constexpr int kMaxEvents = 500;

HDEVNOTIFY deviceNotifications = nullptr;

void Report(HWND page, const std::wstring& event) {
  const HWND list = GetDlgItem(page, IDC_NOTICES_EVENTS);
  SYSTEMTIME now;
  GetLocalTime(&now);
  const std::wstring line = kv::TextWith(IDS_NOTICES_EVENT, kv::TimeText(now, true), event);
  if (SendMessageW(list, LB_GETCOUNT, 0, 0) >= kMaxEvents) SendMessageW(list, LB_DELETESTRING, 0, 0);
  const auto row = SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
  SendMessageW(list, LB_SETCURSEL, row, 0);
}

void ReportResult(HWND page, BOOL done, UINT textId) {
  Report(page, kv::ResourceText(done ? textId : IDS_NOTICES_REJECTED));
}

HICON GalleryIcon() {
  return LoadIconA(kv::modules.application, MAKEINTRESOURCEA(IDI_GALLERY_SMALL));
}

void AddOrChange(HWND page, bool add) {
  wchar_t tip[256] = L"";
  GetDlgItemTextW(page, IDC_NOTICES_TIP, tip, ARRAYSIZE(tip));
  const BOOL shown = add ? kv::AddNotificationIcon(page, kIconId, GalleryIcon(), nullptr)
                         : kv::ChangeNotificationIcon(page, kIconId, GalleryIcon(), nullptr);
  // Separate, because only this function accepts Unicode.
  const BOOL done = shown && kv::SetNotificationTip(page, kIconId, tip);
  ReportResult(page, done, add ? IDS_NOTICES_ADDED : IDS_NOTICES_CHANGED);
}

void ListenToDevices(HWND page, bool listen) {
  if (deviceNotifications) kv::RegisterDeviceNotifications(deviceNotifications, FALSE);
  deviceNotifications = listen ? kv::RegisterDeviceNotifications(page, TRUE) : nullptr;
}

void ToggleDevices(HWND page) {
  ListenToDevices(page, kv::IsChecked(page, IDC_NOTICES_DEVICES));
  Report(page, kv::ResourceText(deviceNotifications ? IDS_NOTICES_DEVICES_ON : IDS_NOTICES_DEVICES_OFF));
}

// The name is 8-bit or wide text, depending on the window. A device name begins with two backslashes; a wide one has a
// zero byte between them.
std::wstring DeviceName(const DEV_BROADCAST_HDR* record) {
  constexpr size_t kNameAt = offsetof(DEV_BROADCAST_DEVICEINTERFACE_A, dbcc_name);
  if (IsBadReadPtr(record, sizeof(*record)) || record->dbch_devicetype != DBT_DEVTYP_DEVICEINTERFACE ||
      record->dbch_size <= kNameAt + 2 || IsBadReadPtr(record, record->dbch_size)) {
    return L"?";
  }
  const char* name = reinterpret_cast<const char*>(record) + kNameAt;
  const size_t size = record->dbch_size - kNameAt;
  if (name[1] == '\0') {
    std::wstring text(reinterpret_cast<const wchar_t*>(name), size / sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
  }
  std::wstring text;
  for (size_t i = 0; i < size && name[i]; ++i) text += static_cast<unsigned char>(name[i]);
  return text;
}

INT_PTR OnDeviceChange(HWND page, WPARAM event, LPARAM record) {
  if (event != DBT_DEVICEARRIVAL && event != DBT_DEVICEREMOVECOMPLETE) return TRUE;
  const std::wstring name = DeviceName(reinterpret_cast<const DEV_BROADCAST_HDR*>(record));
  Report(page, kv::TextWith(event == DBT_DEVICEARRIVAL ? IDS_NOTICES_ARRIVED : IDS_NOTICES_LEFT, name));
  return TRUE;
}

INT_PTR OnIconMessage(HWND page, UINT mouseMessage) {
  if (mouseMessage == WM_LBUTTONUP || mouseMessage == WM_RBUTTONUP) Report(page, kv::ResourceText(IDS_NOTICES_CLICKED));
  // Processed in any case: the dialog manager uses a message with the same number to set the default button.
  return TRUE;
}

INT_PTR OnInit(HWND page) {
  SetDlgItemTextA(page, IDC_NOTICES_TIP, "kvGallery");
  return TRUE;
}

INT_PTR OnDestroy(HWND page) {
  ListenToDevices(page, false);
  kv::RemoveNotificationIcon(page, kIconId);
  return TRUE;
}

INT_PTR OnCommand(HWND page, UINT id) {
  switch (id) {
    case IDC_NOTICES_ADD: AddOrChange(page, true); return TRUE;
    case IDC_NOTICES_CHANGE: AddOrChange(page, false); return TRUE;
    case IDC_NOTICES_REMOVE:
      ReportResult(page, kv::RemoveNotificationIcon(page, kIconId), IDS_NOTICES_REMOVED);
      return TRUE;
    case IDC_NOTICES_DEVICES: ToggleDevices(page); return TRUE;
    default: return FALSE;
  }
}

}  // namespace

INT_PTR CALLBACK NoticesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case kv::kLanguageChanged:
      kv::SetEmptyText(page, IDC_NOTICES_EVENTS, kv::ResourceText(IDS_NOTICES_EMPTY));
      return TRUE;
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam));
    case WM_DEVICECHANGE: return OnDeviceChange(page, wParam, lParam);
    case kv::kNotificationCallback: return OnIconMessage(page, static_cast<UINT>(lParam));
    case WM_DESTROY: return OnDestroy(page);
    default: return FALSE;
  }
}

}  // namespace gallery
