// What the window shows: a recording or a live port, at one time. The files of this folder that make up the window
// share it; each has one subject. Main thread only.
#pragma once

#include <windows.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "camview/chart_feed.h"
#include "camview/live_source.h"
#include "camview/playback.h"
#include "camview/record_intake.h"
#include "camview/record_store.h"
#include "camview/recording_loader.h"
#include "camview/statistics.h"
#include "camview/status_line.h"
#include "camview/stretch_export.h"

namespace camview {

inline constexpr double kNoTime = std::numeric_limits<double>::quiet_NaN();

struct View {
  HWND window = nullptr;

  // At most one of them: what is shown.
  LoadedRecording recording;  // its store is null when none is open
  std::unique_ptr<LiveSource> live;

  // Of a live port
  std::unique_ptr<RecordStore> received;
  IntakeBatch batch;
  LiveStatus status;
  bool isHeld = false;

  // What is being done beside
  RecordingLoader loader;
  bool isLoading = false;
  StretchExporter exporter;
  std::wstring exportTarget;
  bool isExporting = false;

  Playback playback;         // also of a live port: its end is now
  double hovered = kNoTime;  // the time under the pointer, in a chart
  bool isMarked = false;
  kv::StripStretch mark{};
  ChartFeed feed;

  double trailSeconds = 1, spanSeconds = 10;  // 0: the whole recording
  bool fitValues = false;
  StretchStatistics statistics{};
  bool hasStatistics = false;
  double statisticsDue = kNoTime, timelineDue = 0;  // by camera::Now()
  StatusLine line, recordingLine;
  double lineUntil = kNoTime;  // by camera::Now(): then `line` is out of date
  std::wstring shownTime;
  bool isTicking = false;  // the timer runs
};

// The window's own; null before it is made and after it is gone.
View* ViewOf(HWND window);

// The records that are shown; null when nothing is open.
const RecordStore* RecordsOf(const View& view);
inline bool IsLive(const View& view) {
  return view.live != nullptr;
}
// Whether the newest is shown as it comes.
inline bool IsFollowing(const View& view) {
  return view.live && !view.isHeld;
}
// The time that all parts show.
inline double ShownTime(const View& view) {
  return std::isnan(view.hovered) ? view.playback.position : view.hovered;
}

// ---- time_view.cpp: the time that is shown, and the marked stretch --------------------------------------------------

// Shows the time in all parts.
void ShowTime(View& view);
// Goes to a time, and brings it into the charts' view; a live port is held.
void SeekTo(View& view, double time);
// Brings the playing time into the charts' view.
void ScrollToTime(View& view, bool isPlaying);
void HoldLive(View& view, bool hold);
// The texts of the buttons that play and hold.
void ShowPlaying(const View& view);
void SetMark(View& view, const kv::StripStretch* mark);  // null: none
// Which times the charts show; feeds them if that needs more details.
kv::StripStretch ShownSpan(const View& view);
void ShowSpan(View& view, kv::StripStretch span);
void SetSpan(View& view, double seconds);  // 0: the whole recording
// The charts' values: the whole field, or as the records need.
void ShowValueRange(View& view);
// Feeds the charts anew, as after opening; follows a live port.
void RefillCharts(View& view);
void ShowTimelineRange(View& view);
void StepBy(View& view, int records);
void TogglePlay(View& view);
void ChangeSpeed(View& view, double speed);
void OnTimeTyped(View& view);
// Notifications of charts and timeline.
void OnChart(View& view, int chart, WORD code);
void OnTimeline(View& view, WORD code);

// ---- recording_view.cpp ---------------------------------------------------------------------------------------------

void OpenRecordingFile(View& view, const std::wstring& path);
void AskRecordingFile(View& view);
void ExportMarked(View& view);
// What is loaded or exported has gone on.
void TickWork(View& view);
void TickPlayback(View& view);
void ShowRecordingLine(View& view);

// ---- live_view.cpp --------------------------------------------------------------------------------------------------

void ConnectTo(View& view, int port);
void AskPort(View& view);
void ToggleRecording(View& view);
void TickLive(View& view);

// ---- statistics_view.cpp --------------------------------------------------------------------------------------------

void InitStatistics(HWND window);
// Asks for them, for the marked stretch or what is shown, within a moment; TickStatistics computes them.
void RequestStatistics(View& view);
void TickStatistics(View& view);
INT_PTR DrawStatistics(const View& view, const DRAWITEMSTRUCT& item);

// ---- image.cpp ------------------------------------------------------------------------------------------------------

void CopyImage(View& view);
void SaveImage(View& view);

// ---- window.cpp -----------------------------------------------------------------------------------------------------

// Ends what is shown, and its recording in good order.
void CloseSource(View& view);
// The window for what is shown now: caption, buttons, ranges.
void ShowSource(View& view);
// The progress bar of what is being loaded or exported.
void ShowWork(const View& view);
// Whether and where a live port is recorded to.
void ShowRecordingState(View& view);
// Runs the timer while anything moves.
void UpdateTimer(View& view);
// Says something for some seconds; after that the line says again how what is open is.
void ShowLine(View& view, StatusMark mark, const std::wstring& text);

// ---- commands.cpp ---------------------------------------------------------------------------------------------------

INT_PTR OnCommand(View& view, UINT id, UINT code);
// Checks and greys the items of a menu that opens.
void PrepareMenu(const View& view, HMENU menu);
void FillSpeeds(const View& view);

}  // namespace camview
