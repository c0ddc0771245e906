// A simulated camera: an avicap32.dll whose capture window behaves as with a connected driver and generates moving
// images (color bars and a frame counter). Tests copy it beside their program, the gallery's screenshots copy it into
// the prefix's system folder; it is then loaded instead of the system's. It writes no file, but counts the frames to
// record.
//
// There is one state per process. Tests set the first half and read the second, on the capture window's thread.
#pragma once

#include <windows.h>

#include <vfw.h>

#include <cstdint>

namespace fakecamera {

inline constexpr int kMaxAttempts = 128;

struct State {
  // Set by the test. Bit n of the masks is driver n.
  std::uint32_t presentDrivers = 1;
  std::uint32_t namelessDrivers = 0;
  std::uint32_t rejectingDrivers = 0;  // present, but fail to connect
  LONG width = 320;                    // the frame's size, which a test may change at any time
  LONG height = 240;                   // negative: the top row comes first
  WORD bitCount = 24;                  // 24, or 8 with a color table
  DWORD colorsUsed = 0;
  BOOL rejectsSequenceSetup = FALSE;
  BOOL rejectsCaptureFile = FALSE;
  BOOL rejectsSequence = FALSE;
  HWND destroyedByConnecting = nullptr;  // a window that is destroyed during connection, as by a user
  BOOL callsBackWhileClosing = FALSE;    // sends frames even after the callback has been removed
  int maxSequenceFrames = 50;            // maximum number of recorded frames

  // Read by the test.
  int attempts = 0;
  int attemptedDrivers[kMaxAttempts] = {};
  int connectedDriver = -1;
  BOOL previewing = FALSE;
  BOOL recording = FALSE;
  int framesMade = 0;
  int framesRecorded = 0;
  int yields = 0;
  char captureFile[MAX_PATH] = "";
  CAPTUREPARMS parameters = {};
  CAPVIDEOCALLBACK frameCallback = nullptr;  // the last one registered, also after its removal
  LRESULT closingCallbackResult = -1;
};

// Exported by the DLL as "FakeCameraState".
using StateFunction = State*(WINAPI*)();

}  // namespace fakecamera
