#include "gallery/pages.h"

#include <shlobj.h>

#include <algorithm>
#include <string>

#include "gallery/resource_ids.h"
#include "kv/capture/video_capture.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/pages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr COLORREF kScreenTop = RGB(0x14, 0x18, 0x22), kScreenBottom = RGB(0x26, 0x2E, 0x3E);

// The link exists while the page is shown, so that other programs can use the camera otherwise.
kv::VideoLink* link = nullptr;

struct {
  std::string path;
  UINT textId;  // text of the page; 0 when nothing has been recorded
  bool runs;
} recording;

// Returns the largest area with this aspect ratio in the middle of `area`.
RECT FittingArea(const RECT& area, int fittedWidth, int fittedHeight) {
  const int width = area.right - area.left, height = area.bottom - area.top;
  const int fitWidth = std::min(width, MulDiv(height, fittedWidth, fittedHeight));
  const int fitHeight = std::min(height, MulDiv(width, fittedHeight, fittedWidth));
  const int left = area.left + (width - fitWidth) / 2, top = area.top + (height - fitHeight) / 2;
  return {left, top, left + fitWidth, top + fitHeight};
}

void DrawMessage(HDC dc, RECT area) {
  const kv::OwnedFont font = kv::MakeFont(std::max(16L, (area.bottom - area.top) / 17), FW_NORMAL);
  const kv::SelectedObject selected(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0xB4, 0xC0, 0xD2));
  kv::DrawFitted(dc, kv::ResourceText(IDS_CAPTURE_NO_DEVICE), area, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
}

void DrawScreen(HDC dc, RECT area) {
  kv::DrawSunkenFrame(dc, &area);
  kv::FillVerticalGradient(dc, area, kScreenTop, kScreenBottom);
  const RECT image = link ? FittingArea(area, link->frameWidth, link->frameHeight) : RECT{};
  if (!kv::DrawVideoFrame(link, dc, image.left, image.top, image.right - image.left, image.bottom - image.top)) {
    DrawMessage(dc, area);
  }
}

// Double-buffered against flicker.
INT_PTR OnDrawItem(const DRAWITEMSTRUCT* item) {
  const RECT& area = item->rcItem;
  const kv::OwnedBitmap bitmap(CreateCompatibleBitmap(item->hDC, area.right, area.bottom));
  const kv::MemoryDc dc(item->hDC);
  const kv::SelectedObject selected(dc, bitmap);
  DrawScreen(dc, area);
  BitBlt(item->hDC, 0, 0, area.right, area.bottom, dc, 0, 0, SRCCOPY);
  return TRUE;
}

// ---- Recording ------------------------------------------------------------------------------------------------------

bool IsCapturing() {
  CAPSTATUS status{};
  return link && SendMessageW(link->hCapture, WM_CAP_GET_STATUS, sizeof(status), reinterpret_cast<LPARAM>(&status)) &&
         status.fCapturingNow;
}

// The capture interface requires 8-bit names; a folder that has none is given by its short name.
std::string NarrowPath(const std::wstring& folder) {
  wchar_t plain[kv::kPathCharacters] = L"";
  GetShortPathNameW(folder.c_str(), plain, kv::kPathCharacters);
  for (const wchar_t* candidate : {folder.c_str(), static_cast<const wchar_t*>(plain)}) {
    char narrow[2 * kv::kPathCharacters] = "";
    BOOL lost = FALSE;
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, candidate, -1, narrow, sizeof(narrow), nullptr, &lost);
    if (narrow[0] && !lost) return narrow;
  }
  return {};
}

// A new file in the user's folder for videos, or for temporary files.
std::string NewRecordingPath() {
  wchar_t folder[kv::kPathCharacters] = L"";
  std::string narrow;
  if (SHGetFolderPathW(nullptr, CSIDL_MYVIDEO | CSIDL_FLAG_CREATE, nullptr, 0, folder) == S_OK) {
    narrow = NarrowPath(folder);
  }
  if (narrow.empty()) {
    GetTempPathW(kv::kPathCharacters, folder);
    narrow = NarrowPath(folder);
  }
  if (!narrow.ends_with('\\')) narrow += '\\';
  SYSTEMTIME now;
  GetLocalTime(&now);
  char name[64];
  kv::FormatBoundedA(name, sizeof(name), "kvgallery %04u-%02u-%02u %02u.%02u.%02u.avi", now.wYear, now.wMonth, now.wDay,
                     now.wHour, now.wMinute, now.wSecond);
  return narrow + name;
}

std::wstring RecordingSize() {
  WIN32_FILE_ATTRIBUTE_DATA file{};
  GetFileAttributesExA(recording.path.c_str(), GetFileExInfoStandard, &file);
  return kv::NumberText(file.nFileSizeHigh * 4294967296.0 + file.nFileSizeLow);
}

void ShowRecording(HWND page) {
  std::wstring path(recording.path.begin(), recording.path.end());
  const int length = static_cast<int>(recording.path.size());
  path.resize(MultiByteToWideChar(CP_ACP, 0, recording.path.c_str(), length, path.data(), length));
  kv::SetControlText(page, IDC_CAPTURE_STATE, recording.textId, path, RecordingSize());
}

void ShowState(HWND page) {
  if (recording.textId) {
    ShowRecording(page);
  } else if (link) {
    kv::SetControlText(page, IDC_CAPTURE_STATE, IDS_CAPTURE_STATE, link->frameWidth, link->frameHeight,
                       link->sourceFormat.header.biBitCount);
  } else {
    SetDlgItemTextW(page, IDC_CAPTURE_STATE, L"");
  }
  kv::SetControlText(page, IDC_CAPTURE_RECORD, recording.runs ? IDS_CAPTURE_STOP : IDS_CAPTURE_RECORD);
  // Enable before disabling, because the focus may have to move there.
  const int usable = link ? IDC_CAPTURE_RECORD : IDC_CAPTURE_SEARCH;
  kv::EnableControl(page, usable, true);
  kv::EnableControl(page, link ? IDC_CAPTURE_SEARCH : IDC_CAPTURE_RECORD, false);
  InvalidateRect(GetDlgItem(page, IDC_CAPTURE_SCREEN), nullptr, FALSE);
}

void EndRecording(HWND page, UINT textId) {
  recording.runs = false;
  recording.textId = textId;
  ShowState(page);
}

// A driver may record on its own thread and return at once, or return when it has finished.
void StartRecording(HWND page) {
  recording = {.path = NewRecordingPath(), .textId = IDS_CAPTURE_RECORDING, .runs = true};
  ShowState(page);
  UpdateWindow(page);
  const bool started = kv::RecordVideo(link, recording.path.c_str(), TRUE) != 0;
  if (!recording.runs || IsCapturing()) return;
  EndRecording(page, started ? IDS_CAPTURE_RECORDED : IDS_CAPTURE_NOT_RECORDED);
}

void StopRecording(HWND page) {
  kv::RecordVideo(link, nullptr, FALSE);
  EndRecording(page, IDS_CAPTURE_RECORDED);
}

// ---- The link -------------------------------------------------------------------------------------------------------

void Disconnect(HWND page) {
  if (recording.runs) StopRecording(page);
  kv::CloseVideoLink(link);
  link = nullptr;
}

INT_PTR Connect(HWND page) {
  Disconnect(page);
  recording = {};
  link = kv::OpenVideoLink(GetDlgItem(page, IDC_CAPTURE_SCREEN));
  ShowState(page);
  return TRUE;
}

INT_PTR OnTick(HWND page) {
  if (!link) return TRUE;
  InvalidateRect(GetDlgItem(page, IDC_CAPTURE_SCREEN), nullptr, FALSE);
  if (!recording.runs) return TRUE;
  if (IsCapturing()) {
    ShowRecording(page);
  } else {
    EndRecording(page, IDS_CAPTURE_RECORDED);
  }
  return TRUE;
}

INT_PTR OnCommand(HWND page, UINT command) {
  switch (command) {
    case IDC_CAPTURE_SEARCH: return Connect(page);
    case IDC_CAPTURE_RECORD:
      if (recording.runs) {
        StopRecording(page);
      } else {
        StartRecording(page);
      }
      return TRUE;
    default: return FALSE;
  }
}

void OnTextsChanged(HWND page) {
  kv::SetControlText(page, IDC_CAPTURE_SEARCH, IDS_CAPTURE_SEARCH);
  kv::SetControlText(page, IDC_CAPTURE_SCREEN, IDS_TITLE_FIRST + PAGE_INDEX_CAPTURE);  // its name for screen readers
  ShowState(page);
}

void OnShown(HWND page, bool shown) {
  if (shown) {
    Connect(page);
  } else {
    Disconnect(page);
  }
}

}  // namespace

INT_PTR CALLBACK CapturePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case kv::kLanguageChanged: OnTextsChanged(page); break;
    case kv::kPageShown: OnShown(page, wParam != 0); return TRUE;
    case WM_TIMER: return OnTick(page);
    case WM_DRAWITEM: return OnDrawItem(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam));
    case WM_DESTROY: Disconnect(page); break;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
