// Keeps scatter plots and histograms of the window up to date. Main thread only.
#pragma once

#include <windows.h>

#include <optional>

#include "camview/distributions.h"
#include "camview/record_store.h"
#include "camview/view_time.h"

namespace camview {

class DistributionDisplay {
 public:
  explicit DistributionDisplay(HWND window) : window_(window) {}

  struct Content {
    unsigned source;           // Source::Number()
    const RecordStore* store;  // null: none
    TimeRange range;
    bool isScatter, isHistogram;  // what is visible
    bool isFollowing;
    bool isTurn;  // the range may be taken now
  };
  // Counts a part of the records with each call, so that a day of them does not stop the window, and shows the counts
  // when all are counted.
  void Show(const Content& content);
  // After a change of the language, the next Show shows the counts again.
  void Forget() { shown_.reset(); }
  // There is more to count: Show should be called soon.
  bool IsPending() const { return isDue_; }

 private:
  struct Key {
    unsigned source;
    const RecordStore* store;
    long long first, end;  // records
    bool isScatter, isHistogram;
    bool operator==(const Key&) const = default;
  };
  bool Take(const Content& content);
  void ShowCounts() const;

  HWND window_;
  Distributions distributions_;
  std::optional<Key> counted_, shown_;  // what is being counted, and what is shown
  double due_ = 0;                      // by camera::Now()
  bool isDue_ = false;
};

}  // namespace camview
