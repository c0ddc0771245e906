// What happened on a line, as a list: silences, losses, malformed bytes, damage of the recording, and points that are
// not seen. Pure; one thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/line_model.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"

namespace camera {

enum class EventKind { kSilence, kLoss, kMalformed, kDamage, kUnseen };
inline constexpr int kEventKinds = 5;

// "silence", "lost", "malformed", "damage", "not seen"; for programs, never translated.
const char* EventName(EventKind kind);

struct Event {
  EventKind kind;
  double from, to;  // seconds; of kUnseen, the first record without the point and the one in which it is seen again
  long long amount = 0;  // kLoss: records; kMalformed, kDamage: bytes
  int point = -1;        // kUnseen: 0 to 3
};

// The line of column names, and the line of an event, with line feeds. Numbers that a kind does not have are empty.
std::string EventCsvHeader();
void AppendEventCsvRow(const Event& event, std::string* text);

// Collects events while records are added.
class EventLog {
 public:
  static constexpr size_t kMaxEvents = 1 << 14;  // of each kind, and of each point; later ones are counted only

  void AddRecord(const FoundRecord& record);
  void AddSection(const Section& section);

  // Returns the events with the losses of `line`, in the order of their beginnings. A point that is not seen in the
  // last record is not seen until `end`. `omitted`: set to the number of events that are not in the list; losses beyond
  // LineModel::kMaxLosses count as one.
  std::vector<Event> Events(const LineModel& line, double end, long long* omitted) const;

 private:
  void Add(const Event& event, std::vector<Event>* list);

  std::array<std::vector<Event>, kEventKinds> lists_;
  std::array<std::vector<Event>, kv::kPointCount> unseen_;
  std::array<double, kv::kPointCount> unseenSince_ = {-1, -1, -1, -1};  // negative: seen
  long long omitted_ = 0;
};

}  // namespace camera
