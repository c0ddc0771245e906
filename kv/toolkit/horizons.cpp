#include "kv/toolkit/horizons.h"

#include "kv/controls/horizon/horizon.h"
#include "kv/framework/control_class.h"
#include "kv/toolkit/control_access.h"

namespace kv {

namespace {

BOOL Send(HWND dialog, int id, WPARAM flags, const HorizonAttitude& attitude) {
  HWND horizon = ControlOfClass(dialog, id, kHorizonClass);
  return horizon && SendMessageA(horizon, kControlCommand, kHorizonValue | kCommandRedraw | flags,
                                 reinterpret_cast<LPARAM>(&attitude));
}

}  // namespace

BOOL SetHorizonAttitude(HWND dialog, int id, const Attitude& attitude, BOOL animate) {
  return Send(dialog, id, animate ? kHorizonAnimate : 0,
              {kHorizonVersion, 0, static_cast<float>(attitude.pitch), static_cast<float>(attitude.roll),
               static_cast<float>(attitude.slip), static_cast<float>(attitude.heading)});
}

BOOL ClearHorizonAttitude(HWND dialog, int id) {
  return Send(dialog, id, 0, {kHorizonVersion, kHorizonNoValue, 0, 0, 0, 0});
}

}  // namespace kv
