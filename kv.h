// The whole library in one header.
//
// Programs that want a window in a few lines begin with toolkit/scaled_dialog.h. What the toolkit offers stands on the
// interface of the other folders, which programs may call as well.
#pragma once

#ifdef _WIN64
#error kv is a 32-bit library: build for Win32
#endif

// IWYU pragma: begin_exports
#include "capture/video_capture.h"
#include "controls/display_instrument.h"
#include "controls/instrument_block.h"
#include "controls/line_recorder.h"
#include "controls/simple_bitmap.h"
#include "export/dde_client.h"
#include "export/flight_track.h"
#include "export/flight_track_view.h"
#include "export/kml_export.h"
#include "export/nmea.h"
#include "export/terminal_edit.h"
#include "export/web_links.h"
#include "framework/bounded_format.h"
#include "framework/calendar.h"
#include "framework/canvas.h"
#include "framework/control_class.h"
#include "framework/coverage.h"
#include "framework/dialog.h"
#include "framework/dialog_layout.h"
#include "framework/dialog_texts.h"
#include "framework/file_dialog.h"
#include "framework/file_path.h"
#include "framework/glyph_outline.h"
#include "framework/guards.h"
#include "framework/language.h"
#include "framework/modules.h"
#include "framework/notification_icon.h"
#include "framework/numbers.h"
#include "framework/painting.h"
#include "framework/picture.h"
#include "framework/records.h"
#include "framework/shell_launch.h"
#include "framework/tool_tips.h"
#include "framework/version.h"
#include "framework/window_position.h"
#include "lists/extended_list.h"
#include "lists/list_navigation.h"
#include "resource.h"
#include "toolkit/ask_path.h"
#include "toolkit/classes.h"
#include "toolkit/dde_conversation.h"
#include "toolkit/instruments.h"
#include "toolkit/languages.h"
#include "toolkit/list_columns.h"
#include "toolkit/locale_text.h"
#include "toolkit/pages.h"
#include "toolkit/scaled_dialog.h"
#include "toolkit/system_look.h"
#include "toolkit/track_files.h"
#include "views3d/mesh_model.h"
// IWYU pragma: end_exports
