// Shared by the tests of the display instrument's messages and images.
#pragma once

#include <cstdlib>

#include "kv/controls/display_instrument.h"
#include "kv/controls/instrument/state.h"
#include "kv/framework/guards.h"
#include "kv/framework/window_state.h"
#include "tests/support/control_test.h"

namespace kv {

inline constexpr DWORD kModes[] = {kModeGauge, kModeDigital, kModeSegmentBar, kModeCompass, kModeCenterBar};
inline constexpr COLORREF kOrange = RGB(255, 150, 20);

using kvtest::Read, kvtest::Send;

inline InstrumentBlock BlockOf(HWND control) {
  return Read<InstrumentBlock>(control, kCommandBlock);
}

inline float ValueOf(HWND control) {
  return Read<float>(control, kCommandValue);
}

inline void SetValue(HWND control, float value, WPARAM flags = kCommandRedraw) {
  Send(control, kCommandValue | flags, &value);
}

inline InstrumentState& Record(HWND control) {
  return *WindowState<InstrumentState>(control);
}

inline DWORD Renderings(HWND control) {
  return Record(control).work.renderings;
}

// How often a test redraws: the environment variable KV_REDRAWS, or a number that keeps ./test fast.
inline int RedrawCount(int usual) {
  const char* redraws = std::getenv("KV_REDRAWS");
  return redraws ? std::atoi(redraws) : usual;
}

// The control's image on the screen.
struct Shown : kvtest::TestBitmap {
  Shown(HWND control, int width, int height) : TestBitmap(width, height) {
    kvtest::PumpMessages();
    const WindowDc window(control);
    BitBlt(dc(), 0, 0, width, height, window, 0, 0, SRCCOPY);
  }
};

class InstrumentTest : public kvtest::ControlTest<RegisterDisplayInstrumentClass> {
 protected:
  HWND Create(DWORD style, int width = 120, int height = 120) {
    return kvtest::CreateControl(parent_, kDisplayInstrumentClass, "Heading", style, {0, 0, width, height}, 77);
  }
};

}  // namespace kv
