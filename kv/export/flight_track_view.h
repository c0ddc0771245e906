// Window class "kvFlightTrack": stores a track and exports it as a KML document or as waypoints text
// (kv/export/kml_export.h). Draws only a background. Main thread only.
//
// State: FlightTrackViewState (kv/export/flight_track.h), created on WM_CREATE and freed on WM_DESTROY. The path of the
// KML file is set on WM_CREATE: a name made from the tick count, in the user's temporary folder. A view always writes
// the same file. The file remains when the view is destroyed, because the globe viewer may have it open.
//
// Control command (kControlCommand, 1027):
//   12  Export, and automatic export of new tracks.
//       kTrackExportNow (0x8000): lParam 1 calls exportTrackKml, lParam 0 calls exportWaypointsText, and the result is
//       theirs; with any other lParam the command does nothing and returns 1.
//       kTrackExportAlways (0x0100): exports every new track at once as KML.
//       kTrackExportNotAlways (0x4000): ends that; overrides 0x0100.
//       Returns 1 without 0x8000.
//   19  Track. lParam: FlightTrack*, readable over its 640 bytes, owned by the caller, which must exist until the next
//       track is set or it is removed. Exported at once if automatic export is on. Returns 1, or 0 for a bad
//       address, which does not change the track.
//       kCommandRead: copies the track to the FlightTrack at lParam; 0 when there is none or lParam is not writable.
//       kCommandRemove: removes the track; lParam is not used. Returns 1.
//   Others return 0. Without state (allocation failed at creation) the view returns 1 and does nothing.
#pragma once

#include <windows.h>

#include "kv/framework/control_class.h"

namespace kv {

inline constexpr char kFlightTrackClass[] = "kvFlightTrack";

inline constexpr WPARAM kTrackExport = 12;
inline constexpr WPARAM kTrackRecord = 19;

inline constexpr WPARAM kTrackExportNow = 0x8000;
inline constexpr WPARAM kTrackExportAlways = 0x0100;
inline constexpr WPARAM kTrackExportNotAlways = 0x4000;

// Registers (non-zero flag) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterFlightTrackClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
