// The two strip charts, of x and of y over time: the visible range with all details that the pixels can show, and the
// rest coarsely, so that a recording of a day needs only as many samples as a few screens. Main thread only.
#pragma once

#include <windows.h>

#include <optional>

#include "camview/record_store.h"
#include "camview/view_time.h"

namespace camview {

// What the charts should show. Without a store they are empty.
struct ChartContent {
  const RecordStore* store = nullptr;
  unsigned source = 0;  // another number for each source
  TimeRange whole;      // the range to which they can be scrolled
  TimeRange shown;
  bool isFollowing = false;  // new records appear as they are stored
  double cursor = kNoTime;
  std::optional<TimeRange> selection;
  bool fitValues = false;  // the value range fits the records; otherwise it is the whole field
};

class Charts {
 public:
  // Call once, and when the language has changed: sets the names of the channels, and shows everything again.
  void Describe(HWND window);
  // Updates what differs from the last content.
  void Show(const ChartContent& content);

  // What the user has made a chart (IDC_CHART_X or IDC_CHART_Y) show.
  TimeRange ShownBy(int chart) const;
  // False without a cursor, or a selection.
  bool CursorOf(int chart, double* time) const;
  std::optional<TimeRange> SelectionOf(int chart) const;
  // The user has changed cursor, selection or range of a chart, so that it differs from the last content.
  void SetChangedByUser() { isChanged_ = true; }

 private:
  struct Feed {
    TimeRange fine;          // range with details; empty when the charts are empty
    double shown = 0;        // length of the visible range when the charts were fed
    bool isExact = false;    // contains each record of `fine`
    long long next = 0;      // next record to append
    long long appended = 0;  // records appended since
  };
  bool HasDetails(const ChartContent& content) const;
  void Refill(const ChartContent& content);
  bool Append(const ChartContent& content);
  void ShowRange(const ChartContent& content);
  void ShowMarks(const ChartContent& content, bool isOther);

  HWND window_ = nullptr;
  Feed feed_;
  ChartContent last_;
  bool isChanged_ = true;  // the charts may differ from the last content
  bool needsValueRange_ = true;
};

}  // namespace camview
