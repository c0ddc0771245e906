#include "camview/menu.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "camview/display.h"
#include "camview/live_source.h"
#include "camview/recent_files.h"
#include "camview/resource_ids.h"
#include "camview/source.h"
#include "camview/window.h"

namespace camview {

namespace {

template <size_t size>
void CheckOne(HMENU menu, UINT first, const double (&values)[size], double chosen) {
  const auto* found = std::ranges::find_if(values, [&](double value) { return std::fabs(value - chosen) < 1e-6; });
  const auto index = static_cast<UINT>(found - values);
  for (UINT i = 0; i < size; ++i) CheckMenuItem(menu, first + i, MF_UNCHECKED);
  if (index < size) CheckMenuRadioItem(menu, first, first + size - 1, first + index, MF_BYCOMMAND);
}

}  // namespace

void PrepareMenu(View& view, HMENU menu) {
  FillRecentMenu(menu, &view.recentFiles);
  const Source& source = view.source;
  const bool isOpen = source.Records() != nullptr, isLive = source.IsLive();
  const auto enable = [&](UINT id, bool enabled) {
    EnableMenuItem(menu, id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
  };
  enable(IDM_CLOSE_SOURCE, source.IsOpen());
  enable(IDM_RECORD, isLive);
  enable(IDM_EXPORT, isOpen && view.time.selection && !source.IsWorking());
  for (const UINT id :
       {IDM_PLAY, IDM_STEP_BACK, IDM_STEP_FORWARD, IDM_GO_TO, IDM_EVENT_BACK, IDM_EVENT_FORWARD, IDM_SELECT_SHOWN})
    enable(id, isOpen);
  for (const UINT id : {IDM_SLOWER, IDM_FASTER, IDM_NORMAL_SPEED}) enable(id, isOpen && !isLive);
  enable(IDM_EXPORT_EVENTS, isOpen);
  CheckMenuRadioItem(menu, IDM_SHOW_STATISTICS, IDM_SHOW_EVENTS,
                     view.options.showEvents ? IDM_SHOW_EVENTS : IDM_SHOW_STATISTICS, MF_BYCOMMAND);
  enable(IDM_REMOVE_SELECTION, view.time.selection.has_value());
  enable(IDM_CURSOR_B, isOpen);
  CheckMenuItem(menu, IDM_CURSOR_B, view.time.cursorB ? MF_CHECKED : MF_UNCHECKED);
  CheckMenuItem(menu, IDM_FIT_VALUES, view.options.fitValues ? MF_CHECKED : MF_UNCHECKED);
  const bool isRecording = source.Recording().state == LiveRecordingState::kOn;
  CheckMenuItem(menu, IDM_RECORD, isRecording ? MF_CHECKED : MF_UNCHECKED);
  CheckMenuRadioItem(menu, IDM_LEFT_FIRST, IDM_LEFT_FIRST + kLeftViews - 1,
                     IDM_LEFT_FIRST + static_cast<UINT>(view.options.left), MF_BYCOMMAND);
  CheckMenuRadioItem(menu, IDM_RIGHT_FIRST, IDM_RIGHT_FIRST + kRightViews - 1,
                     IDM_RIGHT_FIRST + static_cast<UINT>(view.options.right), MF_BYCOMMAND);
  CheckOne(menu, IDM_TRAIL_FIRST, kTrails, view.options.trailSeconds);
  CheckOne(menu, IDM_SPAN_FIRST, kSpans, view.time.showsAll ? 0 : view.time.shown.Length());
}

}  // namespace camview
