#include "camera/events.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/line_model.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/text.h"

namespace camera {
namespace {

std::string TextOf(const std::vector<Event>& events) {
  std::string text;
  for (const Event& event : events) {
    text += Format("%.2f-%.2f %s %lld %d\n", event.from, event.to, EventName(event.kind), event.amount, event.point);
  }
  return text;
}

FoundRecord RecordAt(double seconds, bool isFirstSeen) {
  FoundRecord record{.seconds = seconds, .points = {{1, 2}, {3, 4}, {5, 6}, {7, 8}}, .isInRange = true};
  if (!isFirstSeen) record.points[0] = {kv::kNoPoint, kv::kNoPoint};
  return record;
}

TEST(Events, AreListedInOrder) {
  EventLog log;
  LineModel line;
  for (int i = 0; i < 400; ++i) {
    // Late records are not lost ones.
    const double seconds = i >= 300 && i < 306 ? 5.825 + i * 1e-5 : 2 + i * 0.0125;
    if (i == 200) continue;
    line.AddRecord(seconds, false);
    log.AddRecord(RecordAt(seconds, i < 80 || (i >= 160 && i < 320)));
  }
  line.Finish();
  FoundRecord outside = RecordAt(6.5, true);
  outside.isInRange = false;
  log.AddRecord(outside);
  log.AddSection({SectionKind::kSilent, 0, 2});
  log.AddSection({SectionKind::kDamaged, 3.5, 3.75, 60});
  log.AddSection({SectionKind::kMalformed, 5, 5.5, 7});
  long long omitted = -1;
  EXPECT_EQ(
      "0.00-2.00 silence 0 -1\n3.00-4.00 not seen 0 0\n3.50-3.75 damage 60 -1\n4.49-4.51 lost 1 -1\n"
      "5.00-5.50 malformed 7 -1\n6.00-8.00 not seen 0 0\n",
      TextOf(log.Events(line, 8, &omitted)));
  EXPECT_EQ(0, omitted);
}

TEST(Events, AreCountedBeyondALimit) {
  EventLog log;
  for (size_t i = 0; i < EventLog::kMaxEvents + 10; ++i) log.AddSection({SectionKind::kMalformed, 1, 2, 3});
  long long omitted = 0;
  EXPECT_EQ(EventLog::kMaxEvents, log.Events(LineModel(), 3, &omitted).size());
  EXPECT_EQ(10, omitted);
}

}  // namespace
}  // namespace camera
