// The events of what is open, in the order of time, and which of them is the current one: the list, the keys and the
// buttons all go by it. Pure; main thread only.
#pragma once

#include <cstddef>
#include <optional>
#include <tuple>
#include <vector>

#include "camera/events.h"
#include "camview/record_store.h"

namespace camview {

class EventTable {
 public:
  // Lists the events of a source until `end`, if they may have changed: `source` is Source::Number(), `store` null
  // without records.
  void Update(unsigned source, const RecordStore* store, double end);

  const std::vector<camera::Event>& Events() const { return events_; }
  // The number of events that are not listed.
  long long Omitted() const { return omitted_; }
  // Another number whenever the events have changed.
  unsigned Version() const { return version_; }

  // The event to which the user went, while the position is at its beginning; otherwise the one that began last. None
  // before the first event.
  std::optional<size_t> Current(double position) const;
  // The event after the current one; or before it, unless the position is past its beginning.
  std::optional<size_t> Next(double position, bool isForward) const;
  // The user goes to this event, to whose beginning the caller moves the position.
  void GoTo(size_t event) { chosen_ = events_[event]; }

 private:
  std::vector<camera::Event> events_;
  long long omitted_ = 0;
  unsigned version_ = 0;
  std::optional<std::tuple<unsigned, long long, unsigned, double>> key_;
  std::optional<camera::Event> chosen_;  // found again by its beginning, kind and point
};

}  // namespace camview
