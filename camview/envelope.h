// Curves of stored records for a strip chart, with as many samples as its pixels require. Pure.
#pragma once

#include <array>
#include <vector>

#include "camview/record_store.h"
#include "kv/controls/strip_chart/strip_chart.h"

namespace camview {

// A coordinate of a record; NaN where the point is not seen.
double ValueOf(const StoredRecord& record, int channel);

using Curves = std::array<std::vector<kv::StripSample>, kChannels>;

// Computes samples of the channels in the mask `channels` (bit 0: x of point 1) from `from` to `to` seconds, and of the
// records before and after, so that lines reach the edges. The vectors of other channels are cleared. Times never
// decrease.
//
// With at most four records per bucket, every record is a sample. With more, each of `buckets` intervals of equal
// length (1 or more; they begin at multiples of their length, so that a curve does not change while it scrolls) has its
// first, lowest, highest and last value, so no extreme is lost. A sample of NaN is a gap: where the point is not seen
// (in the whole interval), and in a silence.
void MakeCurves(const RecordStore& store, double from, double to, int buckets, unsigned channels, Curves* curves);

}  // namespace camview
