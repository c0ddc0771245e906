// Window classes and styles of the library for resource scripts (windres, rc.exe and llvm-rc).
//
//   #include <windows.h>
//   #include "kv/resource.h"
//
//   PANEL DIALOGEX 0, 0, 350, 226
//   STYLE KV_RESIZABLE_DIALOG
//   CLASS KV_DIALOG
//   FONT 8, "Microsoft Sans Serif", 0, 0, 1
//   BEGIN
//     CONTROL "", IDC_CLOCK, KV_DISPLAY_INSTRUMENT, KV_READOUT | KV_SHOW_TIME, 8, 8, 180, 38
//   END
#pragma once

// Dialogs. A page is a dialog inside another one (kv/toolkit/pages.h).
#define KV_DIALOG "kvDialog"
#define KV_RESIZABLE_DIALOG \
  (WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX | WS_CLIPCHILDREN | DS_SETFONT)
#define KV_PAGE (DS_CONTROL | WS_CHILD | WS_CLIPCHILDREN | DS_SETFONT)

// Extended style of a control that is right-aligned but not mirrored in right-to-left languages, for readouts of
// numbers.
#define KV_KEEPS_DIRECTION 0x00100000

// In a language library: the id of the string with the text of the control or menu item `id` (at most 32767).
#define KV_TEXT_OF(id) (20000 + (id))
// The id of the string with the caption of the program's window.
#define KV_CAPTION KV_TEXT_OF(0)

// In a program or a language library: the id of the string for the system menu's item with the version, and for the
// caption of the about box (ScaledDialog::version); without it they are English.
#define KV_ABOUT 19989  // "About"

// In a program or a language library: the ids of the strings with the reasons that kv/toolkit/error_text.h returns.
#define KV_REASON_NOT_FOUND 19990     // "There is no such file or folder."
#define KV_REASON_PROTECTED 19991     // "It is write-protected, or access is denied."
#define KV_REASON_IN_USE 19992        // "Another program is using it."
#define KV_REASON_DISK_FULL 19993     // "The disk is full."
#define KV_REASON_INVALID_NAME 19994  // "The file name is invalid."
#define KV_REASON_OTHER 19995         // "System error %u."

// kv/controls/display_instrument.h: one mode and further style bits. The modes that depend on it include KV_FITTED.
#define KV_DISPLAY_INSTRUMENT "kvDisplayInstrument"
#define KV_FITTED 0x1000
#define KV_GAUGE 0x0000
#define KV_READOUT (0x0002 | KV_FITTED)
#define KV_SEGMENT_BAR (0x0003 | KV_FITTED)
#define KV_COMPASS 0x0004
#define KV_CENTER_ZERO_BAR (0x0005 | KV_FITTED)
#define KV_DISABLED 0x0040
#define KV_NO_CAPTION 0x0080
#define KV_SHOW_TIME 0x0100
#define KV_SHOW_DATE 0x0200
#define KV_SHOW_ANGLE 0x0400
#define KV_REVERSED 0x0800

// kv/controls/simple_bitmap.h
#define KV_SIMPLE_BITMAP "kvSimpleBitmap"
#define KV_BITMAP_TRANSPARENT 0x0002
#define KV_BITMAP_SQUARE_BY_WIDTH 0x0010
#define KV_BITMAP_SQUARE_BY_HEIGHT 0x0020

// kv/lists/extended_list.h, kv/controls/strip_chart/strip_chart.h, kv/controls/horizon/horizon.h,
// kv/export/flight_track_view.h
#define KV_EXTENDED_LIST "kvExtList"
#define KV_LINE_RECORDER "kvLineRecorder"
#define KV_STRIP_SWEEP 0x0001
#define KV_STRIP_SEPARATE_AXES 0x0010
#define KV_STRIP_NO_LEGEND 0x0020
#define KV_STRIP_LOGARITHMIC 0x0080
#define KV_STRIP_TIME_OF_DAY 0x0100
#define KV_STRIP_SYMBOLS 0x0200
#define KV_STRIP_NO_STATISTICS 0x0400
#define KV_STRIP_ELAPSED 0x0800
#define KV_HORIZON "kvHorizon"
#define KV_HORIZON_RECTANGULAR 0x0001
#define KV_HORIZON_TAPE 0x0010
#define KV_FLIGHT_TRACK "kvFlightTrack"
