// The state of the window: a recording or a live port, at one time. Shared by the files that make up the window. Main
// thread only.
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

  // The source: at most one of these.
  LoadedRecording recording;  // its store is null when none is open
  std::unique_ptr<LiveSource> live;

  // For a live port
  std::unique_ptr<RecordStore> received;
  IntakeBatch batch;
  LiveStatus status;
  bool isHeld = false;
  bool isFieldsTurn = false;  // in this tick only the camera field is drawn

  // Background work
  RecordingLoader loader;
  bool isLoading = false;
  StretchExporter exporter;
  std::wstring exportTarget;
  bool isExporting = false;

  Playback playback;           // also for a live port, where its end is now
  double hovered = kNoTime;    // the time under the pointer in a chart
  kv::StripTimeRange shown{};  // the span that the charts were given
  bool isMarked = false;
  kv::StripTimeRange mark{};
  ChartFeed feed;

  double trailSeconds = 1, spanSeconds = 10;  // 0: the whole recording
  bool fitValues = false;
  StretchStatistics statistics{};
  bool hasStatistics = false;
  double statisticsDue = kNoTime, timelineDue = 0;  // by camera::Now()
  StatusLine line, recordingLine;
  double lineUntil = kNoTime;  // by camera::Now(): when `line` expires
  std::wstring shownTime;
  bool isTicking = false;  // the timer is running
};

// Returns the window's state; null before it is created and after it is destroyed.
View* ViewOf(HWND window);

// Returns the records that are shown; null when no source is open.
const RecordStore* RecordsOf(const View& view);
inline bool IsLive(const View& view) {
  return view.live != nullptr;
}
// Returns whether new records are shown as they arrive.
inline bool IsFollowing(const View& view) {
  return view.live && !view.isHeld;
}
// Returns the time that all parts show.
inline double ShownTime(const View& view) {
  return std::isnan(view.hovered) ? view.playback.position : view.hovered;
}

// ---- time_view.cpp: the current time and the marked stretch --------------------------------------------------

// Shows the current time in all parts; ShowField: in the camera field only.
void ShowTime(View& view);
void ShowField(const View& view);
// Moves to a time and scrolls the charts to it; holds a live port.
void SeekTo(View& view, double time);
// Scrolls the charts to the time of playback.
void ScrollToTime(View& view, bool isPlaying);
void HoldLive(View& view, bool hold);
// Sets the texts of the play and hold buttons.
void ShowPlaying(const View& view);
void SetMark(View& view, const kv::StripTimeRange* mark);  // null: none
// The span that the charts show; feeds them if more details are needed.
kv::StripTimeRange ShownSpan(const View& view);
void ShowSpan(View& view, kv::StripTimeRange span);
void SetSpan(View& view, double seconds);  // 0: the whole recording
// Sets the charts' value range: the whole field, or as the records require.
void ShowValueRange(View& view);
// Refills the charts, as after opening; follows a live port.
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
// Shows the progress of loading and exporting.
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
// Requests statistics of the marked stretch or the visible span; TickStatistics computes them shortly after.
void RequestStatistics(View& view);
void TickStatistics(View& view);
INT_PTR DrawStatistics(const View& view, const DRAWITEMSTRUCT& item);

// ---- image.cpp ------------------------------------------------------------------------------------------------------

void CopyImage(View& view);
void SaveImage(View& view);

// ---- window.cpp -----------------------------------------------------------------------------------------------------

// Closes the source and completes its recording.
void CloseSource(View& view);
// Updates the window for the source: caption, buttons, ranges.
void ShowSource(View& view);
// Updates the progress bar of loading or exporting.
void ShowWork(const View& view);
// Shows whether and where a live port is recorded.
void ShowRecordingState(View& view);
// Runs the timer while something changes.
void UpdateTimer(View& view);
// Shows a message for some seconds; after that the line describes the source again.
void ShowLine(View& view, StatusMark mark, const std::wstring& text);

// ---- commands.cpp ---------------------------------------------------------------------------------------------------

INT_PTR OnCommand(View& view, UINT id, UINT code);
// Checks and disables the items of a menu that opens.
void PrepareMenu(const View& view, HMENU menu);
void FillSpeeds(const View& view);

}  // namespace camview
