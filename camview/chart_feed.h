// Feeds the two strip charts (x and y) from a store: what is shown in every detail that their pixels can show, and the
// rest coarsely, so that even a day needs no more samples than a few screens. Main thread only.
#pragma once

#include <windows.h>

#include "camview/record_store.h"
#include "controls/strip_chart/strip_chart.h"

namespace camview {

struct ChartFeed {
  kv::StripStretch fine{};  // in detail; empty when nothing is fed
  double span = 0;          // shown when it was fed
  bool isExact = false;     // each record of `fine` is in it
  long long next = 0;       // the record to append
  long long appended = 0;   // records since it was fed
};

// Gives the charts their channels' names and colours, in the language that is shown, and their place for samples.
void DescribeCharts(HWND window);

// Whether the charts have all the details of a span.
bool HasDetails(const ChartFeed& feed, const kv::StripStretch& whole, const kv::StripStretch& shown);

// Fills the charts anew. `whole` is the time that they can be moved through. The charts' view, cursor and mark are the
// caller's to set again.
void FeedCharts(HWND window, const RecordStore& store, const kv::StripStretch& whole, const kv::StripStretch& shown,
                ChartFeed* feed);

// Adds the records that came since. False when the charts should be fed anew.
bool AppendNewRecords(HWND window, const RecordStore& store, ChartFeed* feed);

void ClearCharts(HWND window, ChartFeed* feed);

}  // namespace camview
