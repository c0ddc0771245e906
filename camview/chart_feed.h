// Feeds the two strip charts (x and y) from a store: the visible span with all details that the pixels can show, and
// the rest coarsely, so that a recording of a day needs only as many samples as a few screens. Main thread only.
#pragma once

#include <windows.h>

#include "camview/record_store.h"
#include "kv/controls/strip_chart/strip_chart.h"

namespace camview {

struct ChartFeed {
  kv::StripTimeRange fine{};  // span with details; empty when the charts are empty
  double span = 0;            // visible span when the charts were fed
  bool isExact = false;       // contains each record of `fine`
  long long next = 0;         // next record to append
  long long appended = 0;     // records appended since
};

// Sets names and colours of the charts' channels, in the current language, and their capacity.
void DescribeCharts(HWND window);

// Returns whether the charts have all details of a span.
bool HasDetails(const ChartFeed& feed, const kv::StripTimeRange& whole, const kv::StripTimeRange& shown);

// Refills the charts. `whole` is the time range to which they can be scrolled. The caller restores view, cursor and
// mark.
void FeedCharts(HWND window, const RecordStore& store, const kv::StripTimeRange& whole, const kv::StripTimeRange& shown,
                ChartFeed* feed);

// Appends new records. Returns false when the charts should be refilled.
bool AppendNewRecords(HWND window, const RecordStore& store, ChartFeed* feed);

void ClearCharts(HWND window, ChartFeed* feed);

}  // namespace camview
