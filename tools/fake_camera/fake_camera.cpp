#include "tools/fake_camera/fake_camera.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "tools/fake_camera/fake_frame.h"

namespace {

using fakecamera::Pixel;
using fakecamera::State;

constexpr wchar_t kClassName[] = L"kvFakeCamera";
constexpr UINT_PTR kPreviewTimer = 1;
constexpr UINT kPreviewMs = 40;
constexpr DWORD kRecordingMs = 2;

State camera;

struct CaptureWindow {
  LPARAM userData;
  CAPYIELDCALLBACK yield;
  CAPVIDEOCALLBACK frame;
  CAPVIDEOCALLBACK stream;
};

CaptureWindow* Self(HWND window) {
  return reinterpret_cast<CaptureWindow*>(GetWindowLongW(window, GWL_USERDATA));
}

// ---- Frames ---------------------------------------------------------------------------------------------------------

struct Format {
  BITMAPINFOHEADER header;
  RGBQUAD colors[256];
};

// The color table of 8-bit frames: three bits of red, three of green, two of blue.
Format CurrentFormat() {
  Format format{};
  format.header = {.biSize = sizeof(format.header),
                   .biWidth = camera.width,
                   .biHeight = camera.height,
                   .biPlanes = 1,
                   .biBitCount = camera.bitCount,
                   .biCompression = BI_RGB,
                   .biClrUsed = camera.colorsUsed};
  for (int i = 0; i < 256 && camera.bitCount == 8; ++i) {
    format.colors[i] = {.rgbBlue = static_cast<BYTE>((i & 3) * 85),
                        .rgbGreen = static_cast<BYTE>((i >> 2 & 7) * 36),
                        .rgbRed = static_cast<BYTE>((i >> 5) * 36)};
  }
  return format;
}

std::vector<BYTE> MakeFrame(int frame) {
  const size_t bytesPerPixel = camera.bitCount / 8;
  const size_t rowBytes = (camera.width * bytesPerPixel + 3) / 4 * 4;
  const LONG height = std::abs(camera.height);
  std::vector<BYTE> picture(rowBytes * height);
  for (LONG y = 0; y < height; ++y) {
    BYTE* pixel = picture.data() + rowBytes * (camera.height < 0 ? y : height - 1 - y);
    for (LONG x = 0; x < camera.width; ++x, pixel += bytesPerPixel) {
      const std::uint32_t color = Pixel(x, y, frame, camera.width, height);
      if (bytesPerPixel == 1) {
        *pixel = static_cast<BYTE>((color >> 16 & 0xE0) | (color >> 11 & 0x1C) | (color >> 6 & 3));
      } else {
        std::memcpy(pixel, &color, 3);
      }
    }
  }
  return picture;
}

LRESULT SendFrame(HWND window, CAPVIDEOCALLBACK callback) {
  std::vector<BYTE> picture = MakeFrame(camera.framesMade++);
  VIDEOHDR header{};
  header.lpData = picture.data();
  header.dwBufferLength = header.dwBytesUsed = static_cast<DWORD>(picture.size());
  return callback ? callback(window, &header) : 0;
}

// ---- The capture window ---------------------------------------------------------------------------------------------

LRESULT Connect(int driver) {
  if (camera.attempts < fakecamera::kMaxAttempts) camera.attemptedDrivers[camera.attempts++] = driver;
  if (driver < 0 || driver > 31 || (camera.rejectingDrivers >> driver & 1)) return FALSE;
  camera.connectedDriver = driver;
  if (camera.destroyedByConnecting) DestroyWindow(camera.destroyedByConnecting);
  return TRUE;
}

LRESULT SwitchPreview(HWND window, bool on) {
  camera.previewing = on;
  if (on) return SetTimer(window, kPreviewTimer, kPreviewMs, nullptr) != 0;
  KillTimer(window, kPreviewTimer);
  if (camera.callsBackWhileClosing) camera.closingCallbackResult = SendFrame(window, camera.frameCallback);
  return TRUE;
}

template <class Record>
LRESULT CopyOut(const Record& record, WPARAM room, LPARAM target) {
  const size_t size = std::min<size_t>(room, sizeof(record));
  std::memcpy(reinterpret_cast<void*>(target), &record, size);
  return static_cast<LRESULT>(size);
}

LRESULT CopyStatus(WPARAM room, LPARAM target) {
  CAPSTATUS status{};
  status.uiImageWidth = static_cast<UINT>(camera.width);
  status.uiImageHeight = static_cast<UINT>(std::abs(camera.height));
  status.fLiveWindow = camera.previewing;
  status.fCapturingNow = camera.recording;
  return CopyOut(status, room, target);
}

LRESULT TakeSequenceSetup(WPARAM size, LPARAM setup) {
  if (camera.rejectsSequenceSetup) return FALSE;
  std::memcpy(&camera.parameters, reinterpret_cast<const void*>(setup),
              std::min<size_t>(size, sizeof(camera.parameters)));
  return TRUE;
}

LRESULT TakeCaptureFile(LPARAM name) {
  if (camera.rejectsCaptureFile || !name) return FALSE;
  lstrcpynA(camera.captureFile, reinterpret_cast<const char*>(name), sizeof(camera.captureFile));
  return TRUE;
}

// Like a driver that records on the window's thread, until it is stopped or its window is destroyed.
LRESULT RecordSequence(HWND window) {
  if (camera.rejectsSequence) return FALSE;
  camera.recording = TRUE;
  for (int i = 0; i < camera.maxSequenceFrames && camera.recording && IsWindow(window); ++i) {
    SendFrame(window, Self(window)->stream);
    ++camera.framesRecorded;
    ++camera.yields;
    if (Self(window)->yield && !Self(window)->yield(window)) break;
    Sleep(kRecordingMs);
  }
  camera.recording = FALSE;
  return TRUE;
}

LRESULT Answer(HWND window, CaptureWindow* self, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CAP_SET_USER_DATA: self->userData = lParam; return TRUE;
    case WM_CAP_GET_USER_DATA: return self->userData;
    case WM_CAP_SET_CALLBACK_YIELD: self->yield = reinterpret_cast<CAPYIELDCALLBACK>(lParam); return TRUE;
    case WM_CAP_SET_CALLBACK_FRAME:
      self->frame = reinterpret_cast<CAPVIDEOCALLBACK>(lParam);
      if (lParam) camera.frameCallback = self->frame;
      return TRUE;
    case WM_CAP_SET_CALLBACK_VIDEOSTREAM: self->stream = reinterpret_cast<CAPVIDEOCALLBACK>(lParam); return TRUE;
    case WM_CAP_DRIVER_CONNECT: return Connect(static_cast<int>(wParam));
    case WM_CAP_DRIVER_DISCONNECT: camera.connectedDriver = -1; return TRUE;
    case WM_CAP_GET_STATUS: return CopyStatus(wParam, lParam);
    case WM_CAP_GET_SEQUENCE_SETUP: return CopyOut(camera.parameters, wParam, lParam);
    case WM_CAP_SET_SEQUENCE_SETUP: return TakeSequenceSetup(wParam, lParam);
    case WM_CAP_GET_VIDEOFORMAT: return CopyOut(CurrentFormat(), wParam, lParam);
    case WM_CAP_SET_PREVIEW: return SwitchPreview(window, wParam != 0);
    case WM_CAP_GRAB_FRAME_NOSTOP: SendFrame(window, self->frame); return TRUE;
    case WM_CAP_FILE_SET_CAPTURE_FILEA: return TakeCaptureFile(lParam);
    case WM_CAP_SEQUENCE: return RecordSequence(window);
    case WM_CAP_STOP: camera.recording = FALSE; return TRUE;
    default: return DefWindowProcW(window, message, wParam, lParam);
  }
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  CaptureWindow* self = Self(window);
  if (message == WM_NCCREATE) {
    SetWindowLongW(window, GWL_USERDATA, reinterpret_cast<LONG>(new CaptureWindow{}));
  } else if (message == WM_NCDESTROY) {
    SetWindowLongW(window, GWL_USERDATA, 0);
    delete self;
  } else if (message == WM_TIMER && self) {
    SendFrame(window, self->frame);
    return 0;
  } else if (self) {
    return Answer(window, self, message, wParam, lParam);
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

extern "C" {

State* WINAPI FakeCameraState() {
  return &camera;
}

HWND WINAPI capCreateCaptureWindowW(LPCWSTR name, DWORD style, int x, int y, int width, int height, HWND parent,
                                    int id) {
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = WindowProcedure;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = kClassName;
  RegisterClassW(&windowClass);  // fails harmlessly after the first window
  return CreateWindowExW(0, kClassName, name, style, x, y, width, height, parent, reinterpret_cast<HMENU>(id),
                         windowClass.hInstance, nullptr);
}

BOOL WINAPI capGetDriverDescriptionA(UINT wDriverIndex, LPSTR lpszName, int cbName, LPSTR lpszVer, int cbVer) {
  if (wDriverIndex > 31 || !(camera.presentDrivers >> wDriverIndex & 1)) return FALSE;
  const bool nameless = camera.namelessDrivers >> wDriverIndex & 1;
  lstrcpynA(lpszName, nameless ? "" : "Color bars", cbName);
  lstrcpynA(lpszVer, "1.0", cbVer);
  return TRUE;
}

}  // extern "C"
