// Window class "kvFlightTrack": holds the track that its owner hands it and exports it as a KML document or as
// waypoints text (export/kml_export.h). It draws a plain background. Main thread only.
//
// State: FlightTrackViewState (export/flight_track.h), made on WM_CREATE and freed on WM_DESTROY. The path of the KML
// file is fixed on WM_CREATE: a name made of the tick count in the user's temporary folder, so a view keeps writing the
// same file. The file stays behind when the view goes: the globe viewer may have it open.
//
// Control command (kControlCommand, 1027):
//   12  Export, and whether new tracks are exported by themselves.
//       kTrackExportNow (0x8000): lParam 1 runs exportTrackKml, lParam 0 runs exportWaypointsText, and the result is
//       theirs; with any other lParam the command does nothing and returns 1.
//       kTrackExportAlways (0x0100): from now on every new track is exported at once as KML.
//       kTrackExportNotAlways (0x4000): no longer; it wins over 0x0100.
//       Returns 1 without 0x8000.
//   19  Track. lParam: FlightTrack*, readable over its 640 bytes, which stays its owner's and must live until the next
//       track or until it is taken back. Exported at once while automatic export is on. Returns 1, or 0 for a bad
//       address, which leaves the previous track.
//       kCommandRead: copies the record to the FlightTrack at lParam; 0 when there is none or lParam is not writable.
//       kCommandRemove: the view forgets the track; lParam is not used. Returns 1.
//   Others return 0. Without a record (allocation failed at its creation) the view returns 1 and does nothing.
#pragma once

#include <windows.h>

#include "framework/control_class.h"

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
