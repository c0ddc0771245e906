// A camera for machines without one: an avicap32.dll whose capture window answers like one with a connected driver and
// makes moving pictures (colour bars and a frame counter). Tests put it beside their program,
// the gallery's screenshots into the prefix's system folder, and it is loaded instead of the system's. It records no
// file; it counts what it would have written.
//
// The state is one for the process. Tests set the first half and read the second, on the capture window's thread.
#pragma once

#include <windows.h>

#include <vfw.h>

#include <cstdint>

namespace fakecamera {

inline constexpr int kMaxAttempts = 128;

struct State {
  // Set by the test. Bit n of the masks stands for driver n.
  std::uint32_t presentDrivers = 1;
  std::uint32_t namelessDrivers = 0;
  std::uint32_t rejectingDrivers = 0;  // present, but busy when they should connect
  LONG width = 320;                    // what the "format dialog" would change, also in the middle of it all
  LONG height = 240;                   // negative: the top row comes first
  WORD bitCount = 24;                  // 24, or 8 with a colour table
  DWORD colorsUsed = 0;
  BOOL rejectsSequenceSetup = FALSE;
  BOOL rejectsCaptureFile = FALSE;
  BOOL rejectsSequence = FALSE;
  HWND destroyedByConnecting = nullptr;  // by a user who closes it while the driver's dialog is up
  BOOL callsBackWhileClosing = FALSE;    // sends frames even after the callback was removed
  int maxSequenceFrames = 50;            // frames, unless it is stopped

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
  CAPVIDEOCALLBACK frameCallback = nullptr;  // the latest one registered, kept when it is removed
  LRESULT closingCallbackResult = -1;
};

// Exported by the DLL as "FakeCameraState".
using StateFunction = State*(WINAPI*)();

}  // namespace fakecamera
