#include "camview/statistics.h"

#include <algorithm>

#include "camera/line_model.h"
#include "camera/record_stream.h"
#include "camera/statistics.h"
#include "camview/record_store.h"

namespace camview {

namespace {

// Adds records one by one.
void AddRecords(const RecordStore& store, long long first, long long end, camera::RecordSums* sums) {
  camera::RecordMeter meter;
  ForRecords(store, first, end, [&](const StoredRecord& stored) {
    camera::FoundRecord record{};
    std::ranges::copy(stored.points, record.points);
    record.isInvalid = (stored.flags & kInvalidRecord) != 0;
    record.isInRange = (stored.flags & kOutOfRange) == 0;
    meter.Add(record, stored.flags, sums);
  });
}

}  // namespace

camera::LineFigures LineFiguresOf(const RecordStore& store, double from, double to) {
  const long long first = store.Find(from), end = store.EndOf(to);
  camera::LineModel::Selection selection{from, to, std::max(end - first, 0LL), -1, 0, 0};
  if (first < end) {
    selection.first = store.Seconds(first);
    selection.last = store.Seconds(end - 1);
    if (first > store.First()) selection.before = store.Seconds(first - 1);
  }
  return store.Line().Figures(selection);
}

SelectionStatistics ComputeStatistics(const RecordStore& store, double from, double to) {
  SelectionStatistics statistics{.line = LineFiguresOf(store, from, to), .sums = {}};
  const long long first = store.Find(from), end = store.EndOf(to);
  for (long long number = first; number < end;) {
    const RecordStore::BlockSums block = store.SumsOf(number);
    const long long next = std::min(block.end, end);
    if (number == block.first && next == block.end) {
      camera::AddSums(block.sums, &statistics.sums);
    } else {
      AddRecords(store, number, next, &statistics.sums);
    }
    number = next;
  }
  return statistics;
}

}  // namespace camview
