// A link to the first working video-capture driver: stores each frame as a top-down 32-bit bitmap, draws the latest
// frame, and records to an AVI file.
//
// Uses Video for Windows. Its libraries (avicap32.dll, msvfw32.dll) are loaded when the first link is opened and never
// unloaded; if they are missing, opening fails as without a camera.
//
// The host is the window that shows the frames. Everything runs on its thread: the functions, and the callbacks while
// the thread dispatches messages. Recording may dispatch messages before it returns, so the owner may be called and may
// even close the link meanwhile. Close a link while the host still has its child windows (in WM_DESTROY at the latest).
//
// Every function returns 0 and does nothing when the link is not writable, has lost its capture window or was closed.
#pragma once

#include <windows.h>

#include <vfw.h>

#include <cstddef>
#include <cstdint>

namespace kv {

inline constexpr std::uint32_t kVideoLinkTag = 0x20080509;

// A format as Video for Windows describes it, with only the first entry of a color table.
struct VideoFormat {
  BITMAPINFOHEADER header;
  RGBQUAD firstColor;
};

// The state of a link, in movable global memory that is locked as long as the link exists. Only this module writes it.
struct VideoLink {
  HGLOBAL hMemory;
  std::uint32_t tag;  // kVideoLinkTag while the link is open
  HWND hHost;
  HWND hCapture;  // hidden child of the host
  CAPSTATUS status;
  CAPTUREPARMS parameters;
  VideoFormat sourceFormat;  // as the driver reported it when the link was opened; a negative height means top-down
  VideoFormat frameFormat;   // of the frame bitmap: 32 bits, top-down
  HBITMAP hFrame;            // the latest frame
  void* framePixels;
  LONG frameWidth;  // pixels; at most kMaxVideoSide
  LONG frameHeight;
  std::uint32_t reserved;
};
static_assert(sizeof(VideoFormat) == 44);
static_assert(offsetof(VideoLink, status) == 16 && offsetof(VideoLink, parameters) == 92 &&
              offsetof(VideoLink, sourceFormat) == 188 && offsetof(VideoLink, frameFormat) == 232 &&
              offsetof(VideoLink, hFrame) == 276 && offsetof(VideoLink, framePixels) == 280 &&
              offsetof(VideoLink, frameWidth) == 284 && sizeof(VideoLink) == 296);

inline constexpr LONG kMaxVideoSide = 16384;

// Connects to the first working driver and starts its frames. Returns null when the host is not a window, no driver
// works, its frames have no usable size, or the host is destroyed meanwhile. The caller owns the link and closes it.
VideoLink* OpenVideoLink(HWND host);
BOOL CloseVideoLink(VideoLink* link);

// Grabs a frame and stretches the latest one to the rectangle. Returns 0 also if that fails.
BOOL DrawVideoFrame(VideoLink* link, HDC target, int x, int y, int width, int height);

// Starts recording to `fileName` (null: to the capture window's present file), or stops. Returns the capture window's
// result: non-zero on success. A file name that cannot be read is rejected.
LRESULT RecordVideo(VideoLink* link, const char* fileName, BOOL start);

// An error callback for WM_CAP_SET_CALLBACK_ERRORW that shows the text in a message box and returns 1 (0, without a
// box, when the text cannot be read). Links do not register it; owners may.
LRESULT CALLBACK VideoErrorText(HWND window, int errorId, const wchar_t* text);

}  // namespace kv
