// A link to the first video-capture driver that works: stores each incoming frame as a 32-bit bitmap whose first row
// is the top one, paints the latest frame, and records to an AVI file.
//
// Video for Windows does the work. Its libraries (avicap32.dll, msvfw32.dll) are loaded when the first link is opened
// and stay loaded; where they are missing, opening a link fails like on a machine without a camera.
//
// The host is the window that shows the frames. Everything runs on its thread: the operations, and the callbacks
// while that thread dispatches messages. Recording may dispatch messages before it returns, so the owner can be called,
// and may even close the link, meanwhile. Close a link while the host still has its child windows (in WM_DESTROY at the
// latest).
//
// Every operation returns 0 and does nothing on a record that is not writable, lost its capture window or was closed.
#pragma once

#include <windows.h>

#include <vfw.h>

#include <cstddef>
#include <cstdint>

namespace kv {

inline constexpr std::uint32_t kVideoLinkTag = 0x20080509;

// Pixels and rows as Video for Windows describes them; of a colour table only the first entry.
struct VideoFormat {
  BITMAPINFOHEADER header;
  RGBQUAD firstColor;
};

// The link's record, in movable global memory that is locked for the link's life. Only this module writes it.
struct VideoLink {
  HGLOBAL hMemory;
  std::uint32_t tag;  // kVideoLinkTag while the link is open
  HWND hHost;
  HWND hCapture;  // hidden child of the host
  CAPSTATUS status;
  CAPTUREPARMS parameters;
  VideoFormat sourceFormat;  // as the driver reported it when the link was opened; a negative height: top row first
  VideoFormat frameFormat;   // of the frame bitmap: 32 bits, top row first
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

// Connects to the first driver that works and starts its frames. Null when the host is no window, when no driver
// works, when its frames have no usable size, or when the host is destroyed meanwhile. The caller owns the link
// and closes it.
VideoLink* OpenVideoLink(HWND host);
BOOL CloseVideoLink(VideoLink* link);

// Asks the driver for one more frame, then stretches the latest one over the rectangle. 0 also if that fails.
BOOL DrawVideoFrame(VideoLink* link, HDC target, int x, int y, int width, int height);

// Starts recording to `fileName` (null: to the file that the capture window already has), or stops it. The capture
// window's result: non-zero is success. A file name that cannot be read is rejected.
LRESULT RecordVideo(VideoLink* link, const char* fileName, BOOL start);

// For owners who want a driver's errors: an error callback for WM_CAP_SET_CALLBACK_ERRORW that shows the
// text in a message box and returns 1 (0, and nothing shown, when the text cannot be read). A link does not register
// it.
LRESULT CALLBACK VideoErrorText(HWND window, int errorId, const wchar_t* text);

}  // namespace kv
