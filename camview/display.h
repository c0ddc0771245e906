// What the window shows: Refresh compares it with what there is to show, and is the only code that changes controls.
// Changes of source and time, of the language and of the colors all end there. Main thread only.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "camview/charts.h"
#include "camview/distribution_display.h"
#include "camview/event_table.h"
#include "camview/source.h"
#include "camview/statistics.h"
#include "camview/status_line.h"
#include "camview/view_time.h"

namespace camview {

inline constexpr double kSpeeds[] = {0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50, 100};
int SpeedIndex(double speed);

enum class LeftView { kField, kScatter };
enum class RightView { kCharts, kHistograms, kIntervals };
inline constexpr int kLeftViews = 2, kRightViews = 3;

struct DisplayOptions {
  double trailSeconds = 1;
  bool fitValues = false;
  bool showEvents = false;  // in the place of the statistics
  LeftView left = LeftView::kField;
  RightView right = RightView::kCharts;
};

class Display {
 public:
  Display(HWND window, const Source& source);

  // Also brings `events`, which must exist as long as the window, up to date.
  void Refresh(const Source& source, const ViewTime& time, EventTable* events, const DisplayOptions& options);
  // After a change of the language, the next Refresh shows everything again.
  void Forget();
  // Shows a message for some seconds; after that the line describes the source again.
  void Say(StatusMark mark, const std::wstring& text);
  void TakeBack() { message_ = {}; }
  // A message will end, or statistics are to be computed: Refresh should be called soon.
  bool IsPending() const { return !message_.text.empty() || isStatisticsDue_ || distributions_.IsPending(); }

  // Handles WM_SIZE and WM_DRAWITEM.
  void PlaceStatus() const;
  bool Draw(const DRAWITEMSTRUCT& item) const;
  // The user has changed a chart.
  void SetChartsChanged() { charts_.SetChangedByUser(); }
  const Charts& charts() const { return charts_; }

 private:
  void SetText(int id, const std::wstring& text);
  void SetTypedText(int id, const std::wstring& text);
  void Enable(int id, bool enabled);
  void SetVisible(int id, bool visible);
  void ShowOneOf(std::initializer_list<int> ids, int shown);
  void ShowSource(const Source& source, const ViewTime& time);
  void ShowWork(const Source& source);
  void ShowStatus(const Source& source, const ViewTime& time);
  void ShowViews(const DisplayOptions& options);
  void ShowField(const Source& source, const ViewTime& time, const DisplayOptions& options);
  void ShowCharts(const Source& source, const ViewTime& time, const DisplayOptions& options);
  void ShowTimeline(const Source& source, const ViewTime& time, const EventTable& events);
  void ShowTimeText(const Source& source, const ViewTime& time);
  void ShowStatistics(const Source& source, const ViewTime& time);
  void ShowEvents(const Source& source, const ViewTime& time, EventTable* events);
  void ShowEventRows(const ViewTime& time, const EventTable& events);

  HWND window_, fieldWindow_;
  Charts charts_;
  DistributionDisplay distributions_;

  // What is shown
  std::map<int, std::optional<std::wstring>> texts_;
  std::map<int, std::optional<bool>> enabled_, visible_;
  StatusLine line_, recordingLine_;
  StatusLine wholeLine_;         // in the status line: losses and silence
  std::optional<bool> isShort_;  // the status line
  int speed_ = -1, progress_ = -1;
  bool isNamed_ = false;
  using FieldKey = std::tuple<unsigned, long long, double, double, double>;
  std::optional<FieldKey> field_;
  std::vector<StoredRecord> fieldRecords_;
  std::optional<TimeRange> timelineRange_, timelineSelection_, timelineVisible_;
  const EventTable* events_ = nullptr;
  std::optional<unsigned> eventsSource_, eventsVersion_, marksVersion_;
  std::optional<UINT> eventRow_;
  double timelinePosition_ = kNoTime;
  using StatisticsKey = std::tuple<unsigned, long long, bool, double, double, unsigned>;
  std::optional<StatisticsKey> statisticsKey_;
  std::optional<SelectionStatistics> statistics_;

  StatusLine message_;
  // By camera::Now()
  double messageUntil_ = 0, statisticsDue_ = 0, chartsDue_ = 0, liveDue_ = 0, eventsDue_ = 0;
  bool isStatisticsDue_ = false, isLiveTurn_ = true;
};

}  // namespace camview
