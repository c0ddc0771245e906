#include "camview/event_table.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <tuple>

#include "camera/events.h"
#include "camview/record_store.h"

namespace camview {

namespace {

constexpr double kSame = 1e-6;  // seconds

std::tuple<double, camera::EventKind, int> PlaceOf(const camera::Event& event) {
  return {event.from, event.kind, event.point};
}

}  // namespace

void EventTable::Update(unsigned source, const RecordStore* store, double end) {
  const std::tuple key(source, store ? store->End() : 0, store ? store->LineRevision() : 0, end);
  if (key_ == key) return;
  if (!key_ || std::get<0>(*key_) != source) chosen_.reset();
  key_ = key;
  ++version_;
  events_.clear();
  omitted_ = 0;
  if (store) events_ = store->Events(end, &omitted_);
}

std::optional<size_t> EventTable::Current(double position) const {
  if (chosen_ && std::fabs(chosen_->from - position) < kSame) {
    const auto found = std::ranges::lower_bound(events_, PlaceOf(*chosen_), {}, PlaceOf);
    if (found != events_.end() && PlaceOf(*found) == PlaceOf(*chosen_))
      return static_cast<size_t>(found - events_.begin());
  }
  const auto after = std::ranges::upper_bound(events_, position + kSame, {}, &camera::Event::from);
  if (after == events_.begin()) return std::nullopt;
  return static_cast<size_t>(after - events_.begin()) - 1;
}

std::optional<size_t> EventTable::Next(double position, bool isForward) const {
  const std::optional<size_t> current = Current(position);
  if (isForward) {
    const size_t next = current ? *current + 1 : 0;
    return next < events_.size() ? std::optional(next) : std::nullopt;
  }
  if (!current || events_[*current].from < position - kSame) return current;
  return *current > 0 ? std::optional(*current - 1) : std::nullopt;
}

}  // namespace camview
