#include "camview/distribution_display.h"

#include <array>

#include "camera/camera_record.h"
#include "camera/ports.h"
#include "camview/distribution_view.h"
#include "camview/distributions.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "kv/framework/control_class.h"

namespace camview {

namespace {

constexpr long long kCountedAtOnce = 1 << 20;  // records; about 30 ms
constexpr double kDelay = 0.1;                 // not for each step while a selection is dragged or charts scroll

using Grids = std::array<CountGrid, kv::kPointCount>;

void Send(HWND window, int id, const Grids& grids) {
  DistributionContent content{};
  for (int i = 0; i < kv::kPointCount; ++i) {
    const CountGrid& grid = grids[i];
    content.points[i] = {grid.left, grid.top, static_cast<DWORD>(grid.width), static_cast<DWORD>(grid.height),
                         grid.counts.data()};
  }
  SendDlgItemMessageA(window, id, kv::kControlCommand, kDistributionShow, reinterpret_cast<LPARAM>(&content));
}

}  // namespace

// Takes what is to be shown. Returns whether that differs from what is.
bool DistributionDisplay::Take(const Content& content) {
  const RecordStore* store = content.store;
  const bool isSame = counted_ && counted_->source == content.source && counted_->store == store;
  const bool isVisible =
      isSame && counted_->isScatter == content.isScatter && counted_->isHistogram == content.isHistogram;
  if (!content.isTurn && isVisible) return counted_ != shown_;
  const Key key{content.source,
                store,
                store ? store->Find(content.range.from) : 0,
                store ? store->EndOf(content.range.to) : 0,
                content.isScatter,
                content.isHistogram};
  if (!isSame) distributions_.Clear();
  counted_ = key;
  return counted_ != shown_;
}

void DistributionDisplay::Show(const Content& content) {
  if (!content.isScatter && !content.isHistogram) {
    distributions_.Clear();
    counted_.reset();
    shown_.reset();
  }
  if ((!content.isScatter && !content.isHistogram) || !Take(content)) {
    isDue_ = false;
    return;
  }
  const double now = camera::Now();
  if (!isDue_) due_ = now + (content.isFollowing ? 0 : kDelay);
  isDue_ = true;
  if (now < due_) return;
  const RecordStore* store = content.store;
  if (store && !distributions_.Count(*store, counted_->first, counted_->end, kCountedAtOnce)) return;
  isDue_ = false;
  shown_ = counted_;
  ShowCounts();
}

void DistributionDisplay::ShowCounts() const {
  Grids places;
  for (int i = 0; i < kv::kPointCount; ++i) places[i] = distributions_.PlacesOf(i);
  if (shown_->isScatter) Send(window_, IDC_SCATTER, places);
  if (!shown_->isHistogram) return;
  for (const int coordinate : {0, 1}) {
    Grids histograms;
    for (int i = 0; i < kv::kPointCount; ++i) histograms[i] = HistogramOf(places[i], coordinate);
    Send(window_, coordinate == 0 ? IDC_HISTOGRAM_X : IDC_HISTOGRAM_Y, histograms);
  }
}

}  // namespace camview
