// The strip chart without a window: samples, axes and readings compared with plain loops, and the image.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/canvas.h"
#include "tests/support/comma_locale.h"

namespace kv {
namespace {

// ---- Pure parts -----------------------------------------------------------------------------------------------------

TEST(StripSamples, RangesAndSumsEqualThoseOfPlainLoops) {
  std::mt19937 random(7);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  for (int round = 0; round < 60; ++round) {
    SampleStore store;
    ASSERT_TRUE(store.MakeResized(1 + below(round % 3 ? 300 : 5000), &store));
    std::vector<StripSample> all;
    double time = 0;
    for (int batch = 0; batch < 40; ++batch) {
      std::vector<StripSample> samples;
      for (unsigned i = below(200); i > 0; --i) {
        time += below(3) * 0.5;
        samples.push_back({time, below(20) == 0 ? NAN : below(1000) - 500.0});
      }
      ASSERT_TRUE(store.Append(samples));
      all.insert(all.end(), samples.begin(), samples.end());
      ASSERT_TRUE(below(15) || store.MakeResized(1 + below(3000), &store));
      if (all.size() > store.count()) all.erase(all.begin(), all.end() - store.count());
      ASSERT_EQ(all.size(), store.count());
      const unsigned from = below(store.count() + 1), to = from + below(store.count() - from + 1);
      Extent extent;
      long double sum = 0, squares = 0, count = 0;
      for (unsigned i = from; i < to; ++i) {
        extent.Add(all[i].value);
        if (!std::isnan(all[i].value)) sum += all[i].value, ++count;
      }
      for (unsigned i = from; i < to; ++i) {
        if (!std::isnan(all[i].value)) squares += std::pow(all[i].value - sum / count, 2);
      }
      const Extent found = store.ExtentOf(from, to);
      ASSERT_EQ(std::pair(extent.low, extent.high), std::pair(found.low, found.high)) << from << ".." << to;
      const StripStatistics statistics = StatisticsOf(store, from, to);
      ASSERT_EQ(count, statistics.count);
      EXPECT_TRUE(count < 1 || std::fabs(sum / count - statistics.mean) < 1e-9);
      EXPECT_TRUE(count < 2 || std::fabs(std::sqrt(squares / (count - 1)) - statistics.deviation) < 1e-9);
      const double wanted = time - below(400) * 0.5;
      const auto first = std::ranges::lower_bound(all, wanted, {}, &StripSample::time);
      EXPECT_EQ(first - all.begin(), store.FirstFrom(wanted, below(store.count() + 2)));
      const auto behind = std::ranges::lower_bound(all, wanted + 0.25, {}, &StripSample::time);
      EXPECT_EQ(behind - all.begin(), store.FirstAfter(wanted, below(store.count() + 2)));
    }
  }
}

TEST(StripSamples, StatisticsArePreciseFarFromZero) {
  SampleStore store;
  ASSERT_TRUE(store.MakeResized(1000, &store));
  std::vector<StripSample> samples(1000);
  for (int i = 0; i < 1000; ++i) samples[i] = {i * 1.0, 1e9 + i % 2};
  ASSERT_TRUE(store.Append(samples));
  EXPECT_NEAR(0.50025, StatisticsOf(store, 0, 1000).deviation, 1e-5);
  EXPECT_EQ(0, StatisticsOf(store, 3, 4).deviation);
  EXPECT_TRUE(std::isnan(StatisticsOf(store, 3, 3).mean));
}

TEST(StripAxes, StepsAreOneTwoAndFive) {
  for (const auto& [least, step] : {std::pair{0.7, 1.0}, {1, 1}, {1.01, 2}, {0.1, 0.1}, {0.021, 0.05}, {3e7, 5e7}}) {
    EXPECT_EQ(step, NiceStep(least)) << least;
  }
  for (const auto& [least, step] : {std::pair{0.3, 0.5}, {7, 10}, {11, 15}, {61, 120}, {4000, 7200}, {1e5, 172800}}) {
    EXPECT_EQ(step, TimeStep(least, TimeFormat::kTimeOfDay)) << least;
  }
  using Range = std::tuple<double, double, double, double>;  // values, and the range for them
  for (const auto& [low, high, from, to] : {Range{3, 97, 0, 100},
                                            {-0.012, 0.031, -0.02, 0.04},
                                            {0, 0, -1, 1},
                                            {50, 50, 44, 56},
                                            {1e300, 1e300, 9e299, 1.1e300}}) {
    const AxisRange range = NiceRange(low, high, 5);
    EXPECT_DOUBLE_EQ(from, range.low);
    EXPECT_DOUBLE_EQ(to, range.high);
  }
  EXPECT_EQ(L"0.30", TickText(0.3, 0.05));
  EXPECT_EQ(L"0", TickText(-1e-17, 0.1));
  EXPECT_EQ(
      L"2.5\x00D7"
      L"10\x2077",
      TickText(2.5e7, 5e6));
  EXPECT_EQ(L"-10\x00B9\x2070", TickText(-1e10, 1e10));
  EXPECT_EQ(
      L"3\x00D7"
      L"10\x207B\x2078",
      TickText(3e-8, 1e-8));
  {
    const kvtest::CommaLocale comma;
    EXPECT_EQ(L"0.30", TickText(0.3, 0.05));
    EXPECT_EQ(L"23:59:58.5", TimeText(-1.5, 0.5, TimeFormat::kTimeOfDay));
  }
  EXPECT_EQ(L"-12 s", TimeText(-12, 1, TimeFormat::kSeconds));
  EXPECT_EQ(L"23:59:58.5", TimeText(-1.5, 0.5, TimeFormat::kTimeOfDay));
  EXPECT_EQ(L"00:00:00", TimeText(86399.9, 1, TimeFormat::kTimeOfDay));
  EXPECT_EQ(L"07:05", TimeText(86400 * 3 + 7 * 3600 + 300, 60, TimeFormat::kTimeOfDay));
  using Elapsed = std::tuple<double, double, std::wstring>;
  for (const auto& [seconds, step, text] : {Elapsed{75.2, 0.1, L"1:15.2"},
                                            {59.9996, 0.001, L"1:00.000"},
                                            {3723, 60, L"1:02:03"},
                                            {360000, 1, L"100:00:00"},
                                            {-5, 1, L"-0:05"},
                                            {-0.4, 1, L"0:00"}}) {
    EXPECT_EQ(text, TimeText(seconds, step, TimeFormat::kElapsed));
  }
}

TEST(StripReadings, NoValueIsReadWhereNoneWasMeasured) {
  StripModel model;
  ASSERT_TRUE(AppendSamples(
      model, 0,
      std::array{StripSample{1, 10}, StripSample{2, 20}, StripSample{3, NAN}, StripSample{8, 80}, StripSample{9, 90}}));
  ASSERT_TRUE(AppendSamples(model, 1, std::array{StripSample{0, 5}, StripSample{20, 6}}));
  for (const auto& [time, value] : {std::pair{0.9, NAN},
                                    {1.0, 10.0},
                                    {1.9, 10.0},
                                    {2.0, 20.0},
                                    {2.9, 20.0},
                                    {3.0, NAN},
                                    {7.9, NAN},
                                    {8.0, 80.0},
                                    {9.0, 90.0},
                                    {9.1, NAN},
                                    {20.0, NAN}}) {
    const double read = ReadingAt(model, time).values[0];
    EXPECT_TRUE(std::isnan(value) ? std::isnan(read) : read == value) << time << ": " << read;
  }
  const StripReading newest = NewestReading(model);
  EXPECT_EQ(std::tuple(20, 90, 6), std::tuple(newest.time, newest.values[0], newest.values[1]));
  EXPECT_TRUE(std::isnan(newest.values[2]));
}

TEST(StripAxes, LogarithmicTicksAreDecadesAndTheirParts) {
  const auto texts = [](double low, double high, double step) {
    std::wstring all;
    for (const AxisTick& tick : AxisTicks({low, high}, step, true)) all += tick.text.empty() ? L"." : L" " + tick.text;
    return all;
  };
  EXPECT_EQ(L" 0.1........ 1........ 10........ 100", texts(-1, 2, 1));
  EXPECT_EQ(L" 10 20.. 50.... 100", texts(1, 2, 0.2));
  EXPECT_EQ(L" 2.0 2.5 3.0 3.5", texts(0.29, 0.55, 0.05));
  EXPECT_EQ(L" 10\x207B\x2076 10\x207B\x2074 10\x207B\x00B2 1 10\x00B2", texts(-6, 2, 2));
  StripModel model;
  model.style = kStripLogarithmic;
  ASSERT_TRUE(AppendSamples(model, 0, std::array{StripSample{0, -3}, StripSample{1, 0}, StripSample{2, 200}}));
  const AxisRange range = RangeOf(model, -1, 5);
  EXPECT_EQ(std::pair(-4.0, 3.0), std::pair(range.low, range.high));
  StripRenderer renderer;
  renderer.Update(model, {300, 200}, true);
}

// ---- The image ------------------------------------------------------------------------------------------------------

int Differences(const Surface& one, const Surface& other) {
  GdiFlush();
  const size_t count = static_cast<size_t>(one.size().cx) * one.size().cy;
  int different = 0;
  for (size_t i = 0; i < count; ++i) different += one.Row(0)[i] != other.Row(0)[i];
  return different;
}

// One random life of a chart: samples of three channels with delays of their own, zooming, panning and freezing.
void ComparePartialRedraws(DWORD style, double origin, unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  StripModel model;
  StripRenderer partial, whole;
  model.style = style;
  ASSERT_TRUE(SetStripCapacity(model, 900));
  ASSERT_TRUE(SetView(model, {kStripVersion, kStripFollow, 10.0 + below(7), 0, -12, 12, 1, 0}));
  ASSERT_TRUE(SetZone(model, 0, {3, 5, RGB(255, 0, 0), 0}, true));
  double time = origin + 0.1, last[3] = {time, time, time};
  int whollyDrawn = 0;
  const SIZE size{static_cast<LONG>(300 + below(30)), 190};
  for (int step = 0; step < 60; ++step) {
    time += below(100) * 0.004;
    const unsigned channel = below(3);
    std::vector<StripSample> samples;
    const unsigned count = below(step % 25 ? 30 : 400);
    const double pause = (time - last[channel]) / (count + 1);
    for (unsigned i = 0; i < count; ++i) {
      const double at = last[channel] += pause;
      samples.push_back({at, below(40) ? 10 * std::sin(at) + below(100) * 0.03 : NAN});
    }
    ASSERT_TRUE(AppendSamples(model, channel, samples));
    switch (below(60)) {
      case 0: ZoomTime(model, 0.5 + below(3), 0.5); break;
      case 1: PanTime(model, below(3) - 1.5); break;
      case 2: ReturnHome(model); break;
      case 6:
        model.hasSelection = !model.hasSelection;
        model.selection = {time - 3 + below(10) * 0.1, time - below(2)};
        break;
      case 3:
      case 4:
      case 5: SetFrozen(model, !IsFrozen(model)); break;
      default: break;
    }
    const RECT changed = partial.Update(model, size, false);
    whollyDrawn += changed.right == size.cx;
    whole.Update(model, size, true);
    ASSERT_EQ(0, Differences(partial.surface(), whole.surface()))
        << style << ", " << origin << ", seed " << seed << ", step " << step;
    const StripLayout& layout = whole.layoutShown();
    const LONG edge = size.cx - 1;
    for (LONG y = layout.plot.bottom + 1; y < layout.plot.bottom + layout.labelsPx; ++y) {
      const DWORD* row = whole.surface().Row(y);
      ASSERT_EQ(row[edge], row[layout.plot.left]) << "a time is cut, step " << step;
      ASSERT_EQ(row[edge], row[layout.plot.right - 1]) << "a time is cut, step " << step;
    }
  }
  EXPECT_LT(whollyDrawn, style & kStripSeparateAxes ? 60 : 35);
}

TEST(StripRendering, PartialRedrawEqualsFullRedraw) {
  for (const DWORD style : {kStripScroll, kStripSweep, kStripScroll | kStripSeparateAxes, kStripSweep | kStripTimeOfDay,
                            kStripScroll | kStripSymbols, kStripSweep | kStripSymbols | kStripLogarithmic}) {
    for (const double origin : {0.0, 1.7e9, 1e12}) {
      for (const unsigned seed : {11u, 12u, 13u}) ComparePartialRedraws(style, origin, seed);
    }
  }
}

// At the times of today, rounding must not omit the grid line in the first column of a partial redraw.
TEST(StripRendering, GridLinesAreDrawnWhereverAPartialRedrawBegins) {
  for (const double span : {8.0, 10.0, 20.0, 30.0, 60.0}) {
    for (LONG width = 200; width < 216; ++width) {
      StripModel model;
      StripRenderer partial, whole;
      ASSERT_TRUE(SetView(model, {kStripVersion, kStripFollow, span, 0, 0, 1, 1, 0}));
      for (int column = 0; column < 150; ++column) {
        const double second = column ? partial.layoutShown().secondsPerColumn : 0;
        ASSERT_TRUE(AppendSamples(model, 0, std::array{StripSample{1.7e9 + (column + 0.5) * second, NAN}}));
        partial.Update(model, {width, 40}, false);
      }
      whole.Update(model, {width, 40}, true);
      ASSERT_EQ(0, Differences(partial.surface(), whole.surface())) << span << ", " << width;
    }
  }
}

TEST(StripRendering, AFrozenChartKeepsItsSamplesUntilItIsReleased) {
  StripModel model;
  StripRenderer renderer, whole;
  const SIZE size{300, 190};
  ASSERT_TRUE(SetView(model, {kStripVersion, kStripFollow, 10, 0, -2, 2, 1, 0}));
  ASSERT_TRUE(AppendSamples(model, 0, std::array{StripSample{0, 1}, StripSample{10, 1}}));
  ASSERT_TRUE(AppendSamples(model, 1, std::array{StripSample{0, -1}, StripSample{2, -1}}));
  SetFrozen(model, true);
  renderer.Update(model, size, true);
  ASSERT_TRUE(AppendSamples(model, 1, std::array{StripSample{9, 1.5}}));  // of a slower channel, before the freeze
  whole.Update(model, size, true);
  EXPECT_EQ(0, Differences(renderer.surface(), whole.surface()));
  EXPECT_EQ(2, ChannelStatistics(model, 1).count);
  SetFrozen(model, false);
  renderer.Update(model, size, false);
  EXPECT_NE(0, Differences(renderer.surface(), whole.surface()));
  whole.Update(model, size, true);
  EXPECT_EQ(0, Differences(renderer.surface(), whole.surface()));
}

// Views of which doubles cannot represent the ticks: they are drawn, within a moment.
TEST(StripRendering, ViewsBeyondTheResolutionOfDoublesAreDrawn) {
  for (const auto& [at, span, end, follow] : {std::tuple{0.0, 2e-6, 1e10, 0u},
                                              {0.0, 1e-6, 1e15, 0u},
                                              {9e14, 1e-6, 0.0, kStripFollow},
                                              {-9e14, 1e-6, 0.0, kStripFollow}}) {
    StripModel model;
    ASSERT_TRUE(SetView(model, {kStripVersion, follow, span, end, 0, 0, 1, 0}));
    ASSERT_TRUE(AppendSamples(model, 0, std::array{StripSample{at, 1}}));
    StripRenderer renderer;
    renderer.Update(model, {900, 300}, true);
    const StripLayout& layout = renderer.layoutShown();
    EXPECT_LT(std::fabs(static_cast<double>(layout.lastColumn)), 1e15);
    EXPECT_GT(layout.timeStep / 100, std::fabs(ShownTimes(model).to) * 1e-15);
  }
  StripModel model;
  ASSERT_TRUE(SetView(model, {kStripVersion, kStripFollow, 0, 0, 1e9, 1e9 + 1.01, 999999, 0}));
  StripRenderer renderer;
  renderer.Update(model, {900, 300}, true);
  EXPECT_GT(renderer.layoutShown().axis[0].step, 1e-4);
}

// ---- Supplied samples -----------------------------------------------------------------------------------------------

// A program's samples: those of `all` from number `first` on; `reads` counts how many the chart has read.
struct Supplied {
  std::vector<StripSuppliedSample> all;
  long long first = 0;
  bool hasTimes = false;
  int reads = 0;

  StripSource Source() {
    return {kStripVersion, this, Numbers, Find, Read, FindExtent, hasTimes ? FindTimes : nullptr};
  }
  static StripNumbers Numbers(void* context, int) {
    const auto* own = static_cast<Supplied*>(context);
    return {own->first, static_cast<long long>(own->all.size())};
  }
  static long long Find(void* context, int, double time) {
    const auto& all = static_cast<Supplied*>(context)->all;
    return std::ranges::lower_bound(all, time, {}, &StripSuppliedSample::time) - all.begin();
  }
  static void Read(void* context, int, long long number, DWORD count, StripSuppliedSample* samples) {
    auto* own = static_cast<Supplied*>(context);
    own->reads += static_cast<int>(count);
    ASSERT_TRUE(number >= own->first && number + count <= own->all.size());
    std::copy_n(own->all.begin() + static_cast<int>(number), count, samples);
  }
  static StripExtent FindExtent(void* context, int, long long from, long long to) {
    Extent extent;
    for (; from < to; ++from) extent.Add(static_cast<Supplied*>(context)->all[static_cast<size_t>(from)].value);
    return {extent.low, extent.high};
  }
  static StripTimeRange FindTimes(void*, int) { return {-5, 500}; }
};

TEST(StripSources, AreDrawnLikeTheSameSamplesInTheChart) {
  std::mt19937 random(5);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  for (const DWORD style : {kStripScroll, kStripSweep}) {
    StripModel own, supplied;
    Supplied program;
    const StripSource source = program.Source();
    StripRenderer one, other, whole;
    own.style = supplied.style = style;
    for (StripModel* model : {&own, &supplied}) {
      ASSERT_TRUE(SetView(*model, {kStripVersion, kStripFollow, 10, 0, -2, 2, 1, 0}));
    }
    ASSERT_TRUE(SetSource(supplied, 0, &source));
    double time = 0;
    for (int step = 0; step < 120; ++step) {
      for (unsigned i = below(step % 20 ? 12 : 900); i > 0; --i) {
        time += below(100) * (step % 3 ? 0.002 : 0.0002);
        const double value = below(50) ? std::sin(time * 3) : NAN;
        program.all.push_back({time, value, 0});
        ASSERT_TRUE(AppendSamples(own, 0, std::array{StripSample{time, value}}));
      }
      if (below(20) == 0) SetFrozen(own, !IsFrozen(own)), SetFrozen(supplied, IsFrozen(own));
      if (below(20) == 0) ZoomTime(own, 2, 0.5), ZoomTime(supplied, 2, 0.5);
      if (below(20) == 0) ReturnHome(own), ReturnHome(supplied);
      one.Update(own, {260, 150}, false);
      NoticeSources(supplied);
      other.Update(supplied, {260, 150}, false);
      ASSERT_EQ(0, Differences(one.surface(), other.surface())) << style << ", step " << step;
    }
    program.first = static_cast<long long>(program.all.size()) - 20;  // of those displayed
    NoticeSources(supplied);
    other.Update(supplied, {260, 150}, false);
    whole.Update(supplied, {260, 150}, true);
    EXPECT_EQ(0, Differences(whole.surface(), other.surface()));
  }
}

TEST(StripSources, NoLineIsDrawnAcrossAGap) {
  const auto drawn = [](DWORD state) {
    Supplied program;
    program.all = {{0, 0.9, 0}, {1, 0.9, 0}, {9, 0.9, state}, {10, 0.9, 0}};
    const StripSource source = program.Source();
    StripModel model;
    SetSource(model, 0, &source);
    SetView(model, {kStripVersion, kStripFollow, 10, 0, 0, 2, 1, 0});
    StripRenderer renderer;
    renderer.Update(model, {300, 200}, true);
    GdiFlush();
    const RECT& plot = renderer.layoutShown().plot;
    const LONG y = plot.top + (plot.bottom - plot.top) * 55 / 100, x = (plot.left + plot.right) / 2 + 5;
    return renderer.surface().Row(y)[x] != renderer.surface().Row(y + 15)[x];
  };
  EXPECT_TRUE(drawn(0));
  EXPECT_FALSE(drawn(kStripGapBefore));
}

TEST(StripSources, AreReadForTheColumnsOfPixelsOnly) {
  Supplied program{.hasTimes = true};
  for (int i = 0; i < 1000000; ++i)
    program.all.push_back({i * 1e-4, std::sin(i * 1e-3), i == 500000 ? kStripGapBefore : 0});
  StripModel model;
  const StripSource source = program.Source();
  ASSERT_TRUE(SetSource(model, 2, &source));
  EXPECT_FALSE(AppendSamples(model, 2, std::array{StripSample{1e6, 1}}));
  EXPECT_EQ(std::pair(-5.0, 500.0), std::pair(StoredTimes(model).from, StoredTimes(model).to));
  StripRenderer renderer;
  renderer.Update(model, {800, 300}, true);
  EXPECT_LT(program.reads, 800 * 40);
  const auto& all = program.all;
  EXPECT_EQ(all[499999].value, ReadingAt(model, all[499999].time).values[2]);
  EXPECT_TRUE(std::isnan(ReadingAt(model, all[499999].time + 5e-5).values[2]));  // in the gap
  EXPECT_EQ(all[500000].value, ReadingAt(model, all[500000].time + 5e-5).values[2]);
  EXPECT_TRUE(std::isnan(ReadingAt(model, 100).values[2]));
  EXPECT_EQ(1e6, ChannelStatistics(model, 2).count);
  ASSERT_TRUE(SetSource(model, 2, nullptr));
  EXPECT_TRUE(AppendSamples(model, 2, std::array{StripSample{1, 1}}));
}

}  // namespace
}  // namespace kv
