#include "kv/capture/video_capture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "kv/framework/bitmaps.h"
#include "kv/framework/guards.h"
#include "kv/framework/modules.h"
#include "kv/framework/window_state.h"

namespace kv {

namespace {

constexpr wchar_t kCaptureName[] = L"kvVideoCapture";
constexpr int kCaptureId = 0x8001;
constexpr int kDriverAttempts = 101;
constexpr int kDriverSlots = 8;
constexpr int kDriverTextBytes = 256;
constexpr size_t kMaxErrorText = 4096;

constexpr DWORD kMaxColors = 256;

// A format with capacity for what Video for Windows reads after the header: a driver's own extension, and a full color
// table or color masks.
struct WholeFormat {
  BITMAPINFOHEADER header;
  RGBQUAD extension[kMaxColors];
  RGBQUAD colors[kMaxColors];
};

struct VideoLibraries {
  decltype(&::capCreateCaptureWindowW) createCaptureWindow;
  decltype(&::capGetDriverDescriptionA) getDriverDescription;
  decltype(&::DrawDibOpen) drawDibOpen;
  decltype(&::DrawDibDraw) drawDibDraw;
  decltype(&::DrawDibClose) drawDibClose;

  bool Whole() const {
    return createCaptureWindow && getDriverDescription && drawDibOpen && drawDibDraw && drawDibClose;
  }
};

VideoLibraries LoadVideoLibraries() {
  VideoLibraries libraries{};
  const HMODULE capture = LoadLibraryW(L"avicap32.dll");
  const HMODULE video = LoadLibraryW(L"msvfw32.dll");
  FindProcedure(capture, "capCreateCaptureWindowW", &libraries.createCaptureWindow);
  FindProcedure(capture, "capGetDriverDescriptionA", &libraries.getDriverDescription);
  FindProcedure(video, "DrawDibOpen", &libraries.drawDibOpen);
  FindProcedure(video, "DrawDibDraw", &libraries.drawDibDraw);
  FindProcedure(video, "DrawDibClose", &libraries.drawDibClose);
  return libraries;
}

const VideoLibraries& Libraries() {
  static const VideoLibraries libraries = LoadVideoLibraries();
  return libraries;
}

LRESULT Ask(HWND capture, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
  return SendMessageA(capture, message, wParam, lParam);
}

template <class Function>
LPARAM CallbackAddress(Function* callback) {
  return reinterpret_cast<LPARAM>(callback);
}

bool HasTag(VideoLink* link) {
  return !IsBadWritePtr(link, sizeof(*link)) && link->tag == kVideoLinkTag;
}

bool IsOpen(VideoLink* link) {
  return HasTag(link) && IsWindow(link->hCapture);
}

bool IsUsable(const BITMAPINFOHEADER& format) {
  return format.biSize >= sizeof(BITMAPINFOHEADER) && format.biSize <= offsetof(WholeFormat, colors) &&
         format.biWidth > 0 && format.biWidth <= kMaxVideoSide && format.biHeight != 0 &&
         format.biHeight >= -kMaxVideoSide && format.biHeight <= kMaxVideoSide && format.biBitCount <= 32 &&
         format.biClrUsed <= kMaxColors;
}

// All other formats have their size in the header and a positive height.
bool IsUncompressed(const BITMAPINFOHEADER& format) {
  return format.biCompression == BI_RGB || format.biCompression == BI_BITFIELDS;
}

// ---- Frames ---------------------------------------------------------------------------------------------------------

// The driver's dialogs can change the format while the link is open, so the present format takes precedence over the
// one at opening.
WholeFormat CurrentFormat(const VideoLink* link) {
  WholeFormat format{};
  if (Ask(link->hCapture, WM_CAP_GET_VIDEOFORMAT, sizeof(format), reinterpret_cast<LPARAM>(&format)) == 0) {
    format = {.header = link->sourceFormat.header, .extension = {link->sourceFormat.firstColor}};
  }
  return format;
}

// Returns the number of bytes that drawing reads for a frame of this (usable) format; does not overflow.
UINT_PTR FrameBytes(const BITMAPINFOHEADER& format, const VIDEOHDR& frame) {
  if (!IsUncompressed(format)) return frame.dwBytesUsed;
  const UINT_PTR rowBytes = (static_cast<UINT_PTR>(format.biWidth) * format.biBitCount + 31) / 32 * 4;
  return rowBytes * static_cast<UINT_PTR>(std::abs(format.biHeight));
}

void FlipFrame(const VideoLink* link) {
  GdiFlush();
  const auto row = [link](LONG y) {
    return static_cast<std::uint32_t*>(link->framePixels) + static_cast<size_t>(y) * link->frameWidth;
  };
  for (LONG top = 0, bottom = link->frameHeight - 1; top < bottom; ++top, --bottom) {
    std::swap_ranges(row(top), row(top + 1), row(bottom));
  }
}

// A frame with a negative height is top-down. It is drawn as bottom-up and then flipped, because not all codecs support
// negative heights.
void DrawIntoFrame(const VideoLink* link, WholeFormat* format, void* data) {
  const bool topFirst = format->header.biHeight < 0;
  format->header.biHeight = std::abs(format->header.biHeight);
  const VideoLibraries& libraries = Libraries();
  const WindowDc hostDc(link->hHost);
  const MemoryDc dc(hostDc);
  const SelectedObject selected(dc, link->hFrame);
  const HDRAWDIB draw = libraries.drawDibOpen();
  if (!draw) return;
  const BOOL drawn = libraries.drawDibDraw(draw, dc, 0, 0, link->frameWidth, link->frameHeight, &format->header, data,
                                           0, 0, format->header.biWidth, format->header.biHeight, DDF_SAME_HDC);
  libraries.drawDibClose(draw);
  if (drawn && topFirst && IsUncompressed(format->header)) FlipFrame(link);
}

LRESULT CALLBACK FrameArrived(HWND capture, VIDEOHDR* frame) {
  if (IsBadReadPtr(frame, sizeof(VIDEOHDR))) return FALSE;
  auto* link = reinterpret_cast<VideoLink*>(Ask(capture, WM_CAP_GET_USER_DATA));
  if (!HasTag(link)) return TRUE;
  WholeFormat format = CurrentFormat(link);
  if (!IsUsable(format.header)) return FALSE;
  const UINT_PTR bytes = FrameBytes(format.header, *frame);
  if (bytes == 0 || IsBadReadPtr(frame->lpData, bytes)) return FALSE;
  format.header.biSizeImage = static_cast<DWORD>(bytes);
  DrawIntoFrame(link, &format, frame->lpData);
  return TRUE;
}

// Called repeatedly while a sequence is recorded.
LRESULT CALLBACK PumpWhileRecording(HWND capture) {
  MSG message;
  while (PeekMessageA(&message, capture, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {  // for the program's message loop
      PostQuitMessage(static_cast<int>(message.wParam));
      break;
    }
    if (TranslateAcceleratorA(capture, nullptr, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  return TRUE;
}

// ---- Opening and closing --------------------------------------------------------------------------------------------

VideoLink* CreateLink(HWND host) {
  auto* link = CreateLocked<VideoLink>();
  if (!link) return nullptr;
  link->tag = kVideoLinkTag;
  link->hHost = host;
  return link;
}

// Without WS_VISIBLE, because the owner receives the frames in the frame bitmap and the preview itself is not shown.
HWND CreateCaptureWindow(HWND host) {
  RECT rect{};
  GetWindowRect(host, &rect);
  MapWindowPoints(nullptr, host, reinterpret_cast<POINT*>(&rect), 2);
  return Libraries().createCaptureWindow(kCaptureName, WS_CHILD | WS_TABSTOP, rect.left, rect.top,
                                         rect.right - rect.left, rect.bottom - rect.top, host, kCaptureId);
}

bool ConnectDriver(HWND capture, int index) {
  char name[kDriverTextBytes] = "", version[kDriverTextBytes] = "";
  return Libraries().getDriverDescription(static_cast<WORD>(index), name, sizeof(name), version, sizeof(version)) &&
         name[0] != '\0' && Ask(capture, WM_CAP_DRIVER_CONNECT, static_cast<WPARAM>(index));
}

// Counts down, so that the slots are tried in the order 4, 3, 2, 1, 0, 7, 6, 5 and again: a busy driver gets a dozen
// attempts.
bool ConnectAnyDriver(HWND capture) {
  for (int attempt = kDriverAttempts - 1; attempt >= 0; --attempt) {
    if (ConnectDriver(capture, attempt % kDriverSlots)) return true;
  }
  return false;
}

bool ApplyParameters(VideoLink* link) {
  link->parameters.fYield = TRUE;
  link->parameters.fAbortLeftMouse = FALSE;
  link->parameters.fAbortRightMouse = FALSE;
  return Ask(link->hCapture, WM_CAP_SET_SEQUENCE_SETUP, sizeof(link->parameters),
             reinterpret_cast<LPARAM>(&link->parameters)) != 0;
}

void SetUpDriver(VideoLink* link) {
  const HWND capture = link->hCapture;
  Ask(capture, WM_CAP_SET_CALLBACK_YIELD, 0, CallbackAddress(PumpWhileRecording));
  Ask(capture, WM_CAP_GET_STATUS, sizeof(link->status), reinterpret_cast<LPARAM>(&link->status));
  Ask(capture, WM_CAP_GET_SEQUENCE_SETUP, sizeof(link->parameters), reinterpret_cast<LPARAM>(&link->parameters));
  ApplyParameters(link);
  Ask(capture, WM_CAP_GET_VIDEOFORMAT, sizeof(link->sourceFormat), reinterpret_cast<LPARAM>(&link->sourceFormat));
  Ask(capture, WM_CAP_SET_PREVIEW, TRUE);
}

bool CreateFrameBitmap(VideoLink* link) {
  const BITMAPINFOHEADER& source = link->sourceFormat.header;
  if (!IsUsable(source)) return false;
  link->frameWidth = source.biWidth;
  link->frameHeight = std::abs(source.biHeight);
  link->frameFormat.header = TopDownBitmapInfo(link->frameWidth, link->frameHeight).bmiHeader;
  const WindowDc dc(link->hHost);
  link->hFrame = CreateDIBSection(dc, reinterpret_cast<const BITMAPINFO*>(&link->frameFormat), DIB_RGB_COLORS,
                                  &link->framePixels, nullptr, 0);
  return link->hFrame != nullptr;
}

void StartFrames(VideoLink* link) {
  Ask(link->hCapture, WM_CAP_SET_USER_DATA, 0, reinterpret_cast<LPARAM>(link));
  Ask(link->hCapture, WM_CAP_SET_CALLBACK_FRAME, 0, CallbackAddress(FrameArrived));
  Ask(link->hCapture, WM_CAP_SET_CALLBACK_VIDEOSTREAM, 0, CallbackAddress(FrameArrived));
}

// Releases what a link has created so far. The capture window may be destroyed already: connecting may show a driver's
// dialog, during which the user can close the host.
void ReleaseLink(VideoLink* link) {
  link->tag = 0;  // first, so that callbacks during the release find no link
  if (IsWindow(link->hCapture)) {
    Ask(link->hCapture, WM_CAP_SET_CALLBACK_FRAME);
    Ask(link->hCapture, WM_CAP_SET_CALLBACK_VIDEOSTREAM);
    Ask(link->hCapture, WM_CAP_SET_PREVIEW, FALSE);
    Ask(link->hCapture, WM_CAP_DRIVER_DISCONNECT);
    DestroyWindow(link->hCapture);
  }
  if (link->hFrame) DeleteObject(link->hFrame);
  FreeLocked(link);
}

// Returns false when there is no driver, or the host was destroyed while connecting or starting.
bool Start(VideoLink* link) {
  link->hCapture = CreateCaptureWindow(link->hHost);
  if (!link->hCapture) return false;
  if (!ConnectAnyDriver(link->hCapture)) {
    DestroyWindow(link->hCapture);
    return false;
  }
  SetUpDriver(link);
  if (!CreateFrameBitmap(link)) return false;
  StartFrames(link);
  return IsOpen(link);
}

}  // namespace

VideoLink* OpenVideoLink(HWND host) {
  if (!IsWindow(host) || !Libraries().Whole()) return nullptr;
  VideoLink* link = CreateLink(host);
  if (!link) return nullptr;
  if (Start(link)) return link;
  ReleaseLink(link);
  return nullptr;
}

BOOL CloseVideoLink(VideoLink* link) {
  if (!IsOpen(link)) return FALSE;
  ReleaseLink(link);
  return TRUE;
}

// ---- Using the link -------------------------------------------------------------------------------------------------

BOOL DrawVideoFrame(VideoLink* link, HDC target, int x, int y, int width, int height) {
  if (!IsOpen(link)) return FALSE;
  Ask(link->hCapture, WM_CAP_GRAB_FRAME_NOSTOP);
  if (!IsOpen(link)) return FALSE;  // grabbing may call the owner, which may close the link
  const MemoryDc source(target);
  const SelectedObject selected(source, link->hFrame);
  SetStretchBltMode(target, COLORONCOLOR);
  return StretchBlt(target, x, y, width, height, source, 0, 0, link->frameWidth, link->frameHeight, SRCCOPY);
}

// The link may have been freed when the last step returns, so it is not accessed afterward.
LRESULT RecordVideo(VideoLink* link, const char* fileName, BOOL start) {
  if (!IsOpen(link)) return 0;
  const HWND capture = link->hCapture;
  if (!start) return Ask(capture, WM_CAP_STOP);
  if (fileName && IsBadStringPtrA(fileName, MAX_PATH)) return 0;
  if (!ApplyParameters(link)) return 0;
  if (!Ask(capture, WM_CAP_FILE_SET_CAPTURE_FILEA, 0, reinterpret_cast<LPARAM>(fileName))) return 0;
  return Ask(capture, WM_CAP_SEQUENCE);
}

LRESULT CALLBACK VideoErrorText(HWND window, int, const wchar_t* text) {
  if (IsBadStringPtrW(text, kMaxErrorText)) return FALSE;
  MessageBoxW(window, text, L"Video Error", MB_OK | MB_ICONERROR);
  return TRUE;
}

}  // namespace kv
