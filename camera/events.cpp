#include "camera/events.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "camera/camera_record.h"
#include "camera/line_model.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/text.h"

namespace camera {

const char* EventName(EventKind kind) {
  constexpr std::array<const char*, kEventKinds> kNames = {"silence", "lost", "malformed", "damage", "not seen"};
  return kNames[static_cast<size_t>(kind)];
}

std::string EventCsvHeader() {
  return "seconds,duration,event,amount,point\n";
}

void AppendEventCsvRow(const Event& event, std::string* text) {
  *text += Format("%.6f,%.6f,%s,%s,%s\n", event.from, event.to - event.from, EventName(event.kind),
                  event.amount > 0 ? std::to_string(event.amount).c_str() : "",
                  event.point >= 0 ? std::to_string(event.point + 1).c_str() : "");
}

void EventLog::Add(const Event& event, std::vector<Event>* list) {
  if (list->size() < kMaxEvents) {
    list->push_back(event);
  } else {
    ++omitted_;
  }
}

void EventLog::AddRecord(const FoundRecord& record) {
  if (!record.isInRange) return;
  for (int i = 0; i < kv::kPointCount; ++i) {
    double& since = unseenSince_[i];
    const bool isSeen = IsSeen(record.points[i]);
    if (isSeen && since >= 0) Add({EventKind::kUnseen, since, record.seconds, 0, i}, &unseen_[i]);
    since = isSeen ? -1 : since >= 0 ? since : record.seconds;
  }
}

void EventLog::AddSection(const Section& section) {
  const EventKind kind = section.kind == SectionKind::kSilent      ? EventKind::kSilence
                         : section.kind == SectionKind::kMalformed ? EventKind::kMalformed
                                                                   : EventKind::kDamage;
  std::vector<Event>& list = lists_[static_cast<size_t>(kind)];
  if (section.count > 0) return Add({kind, section.from, section.to, section.bytes}, &list);
  // Unless the one that it continues is not listed.
  if (!list.empty() && list.back().to == section.from) list.back().to = section.to;
}

std::vector<Event> EventLog::Events(const LineModel& line, double end, long long* omitted) const {
  std::vector<Event> events;
  for (const auto& list : lists_) events.insert(events.end(), list.begin(), list.end());
  for (int i = 0; i < kv::kPointCount; ++i) {
    events.insert(events.end(), unseen_[i].begin(), unseen_[i].end());
    if (unseenSince_[i] >= 0) events.push_back({EventKind::kUnseen, unseenSince_[i], end, 0, i});
  }
  for (const Loss& loss : line.Losses()) events.push_back({EventKind::kLoss, loss.from, loss.to, loss.records});
  std::ranges::sort(events, {}, [](const Event& event) { return std::tuple(event.from, event.kind, event.point); });
  *omitted = omitted_ + line.HasMoreLosses();
  return events;
}

}  // namespace camera
