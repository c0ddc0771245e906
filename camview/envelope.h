// Curves of the stored records for a strip chart, in as many samples as it has pixels for. Pure.
#pragma once

#include <array>
#include <vector>

#include "camview/record_store.h"
#include "controls/strip_chart/strip_chart.h"

namespace camview {

using Curves = std::array<std::vector<kv::StripSample>, kChannels>;

// Samples of the channels whose bits are set in `channels` (bit 0: x of point 1) over `from` .. `to` seconds, and of
// the record before and after, so that lines reach the edges. The vectors of the other channels become empty. Times
// never decrease.
//
// With at most four records a bucket every record is a sample. With more, each of `buckets` stretches of equal length
// (1 or more; they begin at multiples of their length, so that a curve that is scrolled does not change) gives its
// first, lowest, highest and last value: no extreme is lost. A sample of NaN is a gap: where the point is not seen (in
// the whole stretch), and in a silence.
void MakeCurves(const RecordStore& store, double from, double to, int buckets, unsigned channels, Curves* curves);

}  // namespace camview
