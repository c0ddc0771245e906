#include "kv/export/flight_track_view.h"

#include <iterator>

#include "kv/export/flight_track.h"
#include "kv/export/kml_export.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/framework/window_state.h"

namespace kv {

namespace {

constexpr LRESULT kNoState = 1;

// Without a temporary folder the path is empty, and exporting fails as for any file that cannot be created.
void SetTemporaryKmlPath(FlightTrackViewState& state) {
  wchar_t folder[MAX_PATH + 1];
  const DWORD length = GetTempPathW(std::size(folder), folder);
  if (length == 0 || length >= std::size(folder)) return;
  FormatBounded(state.szKmlPath, sizeof(state.szKmlPath), L"%s%-8.8lX.kml", folder, GetTickCount());
}

LRESULT OnCreate(HWND window) {
  auto* state = CreateWindowState<FlightTrackViewState>(window);
  if (state) SetTemporaryKmlPath(*state);
  return 0;
}

LRESULT OnDestroy(HWND window, FlightTrackViewState* state) {
  DestroyWindowState(window, state);
  return 0;
}

LRESULT OnPaint(HWND window) {
  const PaintScope paint(window);
  RECT client;
  GetClientRect(window, &client);
  FillSolid(paint.dc(), client, kDialogBlue);
  return 0;
}

LRESULT OnExport(FlightTrackViewState* state, WPARAM flags, LPARAM what) {
  const bool now = flags & kTrackExportNow;
  if (now && what != 0 && what != 1) return TRUE;
  if (flags & kTrackExportAlways) state->bAutoExport = TRUE;
  if (flags & kTrackExportNotAlways) state->bAutoExport = FALSE;
  if (!now) return TRUE;
  return what == 1 ? exportTrackKml(state) : exportWaypointsText(state);
}

LRESULT ReadTrack(const FlightTrackViewState* state, FlightTrack* to) {
  if (IsBadWritePtr(to, sizeof(*to)) || IsBadReadPtr(state->lpTrack, sizeof(*to))) return FALSE;
  *to = *state->lpTrack;
  return TRUE;
}

LRESULT OnTrack(FlightTrackViewState* state, WPARAM flags, LPARAM lParam) {
  auto* track = reinterpret_cast<FlightTrack*>(lParam);
  if (flags & kCommandRead) return ReadTrack(state, track);
  if (flags & kCommandRemove) {
    state->lpTrack = nullptr;
    return TRUE;
  }
  if (IsBadReadPtr(track, sizeof(*track))) return FALSE;
  state->lpTrack = track;
  if (state->bAutoExport) exportTrackKml(state);
  return TRUE;
}

LRESULT OnCommand(FlightTrackViewState* state, WPARAM wParam, LPARAM lParam) {
  switch (LOBYTE(wParam)) {
    case kTrackExport: return OnExport(state, wParam, lParam);
    case kTrackRecord: return OnTrack(state, wParam, lParam);
    default: return FALSE;
  }
}

LRESULT CALLBACK FlightTrackProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = WindowState<FlightTrackViewState>(window);
  if (message == WM_CREATE) return state ? 0 : OnCreate(window);
  if (!state) return message == kControlCommand ? kNoState : DefWindowProcA(window, message, wParam, lParam);
  switch (message) {
    case WM_DESTROY: return OnDestroy(window, state);
    case WM_ERASEBKGND: return TRUE;  // WM_PAINT fills the whole window
    case WM_PAINT: return OnPaint(window);
    case kControlCommand: return OnCommand(state, wParam, lParam);
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterFlightTrackClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kFlightTrackClass, FlightTrackProcedure, registerIt);
}

}  // namespace kv
