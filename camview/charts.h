// The strip charts, of x, of y, and of the time between records over time. They ask for the records of the source, and
// copy none. Main thread only.
#pragma once

#include <windows.h>

#include <array>
#include <iterator>
#include <optional>

#include "camview/resource_ids.h"
#include "camview/source.h"
#include "camview/view_time.h"
#include "kv/controls/strip_chart/strip_chart.h"

namespace camview {

inline constexpr int kCharts[] = {IDC_CHART_X, IDC_CHART_Y, IDC_INTERVALS};

// What the charts should show of the source. Without records they are empty.
struct ChartContent {
  unsigned source = 0;          // Source::Number(); even: none
  const void* store = nullptr;  // only compared
  long long records = 0;        // numbers of the records end there
  TimeRange whole;              // the range in which they can be scrolled
  TimeRange shown;
  bool isFollowing = false;  // new records appear as they are stored
  double cursor = kNoTime;
  std::optional<double> cursorB;
  std::optional<TimeRange> selection;
  bool fitValues = false;  // the value range fits the records; otherwise it is the whole field
  std::array<bool, std::size(kCharts)> isVisible{};  // the others are not updated
  bool operator==(const ChartContent&) const = default;
};

class Charts {
 public:
  Charts(HWND window, const Source& source);
  // The charts, which may outlive this, ask no more.
  ~Charts();
  Charts(const Charts&) = delete;
  Charts& operator=(const Charts&) = delete;

  // Sets the names of the channels in the current language.
  void Describe() const;
  // Updates what differs from the last content.
  void Show(const ChartContent& content);

  // What the user has made a chart show.
  TimeRange ShownBy(int chart) const;
  // False without a cursor, or a selection.
  bool CursorOf(int chart, double* time) const;
  std::optional<double> CursorBOf(int chart) const;
  std::optional<TimeRange> SelectionOf(int chart) const;
  // The user has changed cursor, selection or range of a chart, so that it differs from the last content.
  void SetChangedByUser() { isChanged_ = true; }

 private:
  // What a chart asks.
  struct Axis {
    const Charts* charts;
    int coordinate;  // 0: x, 1: y, 2: time between records
  };
  static kv::StripNumbers Numbers(void* axis, int point);
  static long long Find(void* axis, int point, double time);
  static void Read(void* axis, int point, long long number, DWORD count, kv::StripSuppliedSample* samples);
  static kv::StripExtent Extent(void* axis, int point, long long from, long long to);
  static void ReadIntervals(void* axis, int, long long number, DWORD count, kv::StripSuppliedSample* samples);
  static kv::StripExtent ExtentOfIntervals(void* axis, int, long long from, long long to);
  static kv::StripTimeRange Times(void* axis, int point);
  void SetSources(bool supply);
  TimeRange RangeOfIntervals(const ChartContent& content) const;
  void ShowValueRange(const ChartContent& content, int chart) const;
  void ShowRange(const ChartContent& content) const;
  void ShowMarks(const ChartContent& content, bool isOther) const;

  HWND window_, windows_[std::size(kCharts)];
  const Source& source_;
  Axis axes_[std::size(kCharts)] = {{this, 0}, {this, 1}, {this, 2}};
  ChartContent last_;
  TimeRange intervals_;    // milliseconds from the lowest to the highest that its chart shows
  bool isChanged_ = true;  // the charts may differ from the last content
};

}  // namespace camview
