#include "kv/toolkit/classes.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <string_view>

#include "kv/controls/display_instrument.h"
#include "kv/controls/horizon/horizon.h"
#include "kv/controls/instrument_block.h"
#include "kv/controls/simple_bitmap.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/export/flight_track_view.h"
#include "kv/framework/control_class.h"
#include "kv/framework/dialog.h"
#include "kv/lists/extended_list.h"
#include "kv/resource.h"

namespace kv {

namespace {

// The constants of resource.h, for resource scripts, equal those of the controls' headers.
using Name = std::string_view;
static_assert(Name(KV_DIALOG) == kDialogClass && Name(KV_DISPLAY_INSTRUMENT) == kDisplayInstrumentClass &&
              Name(KV_SIMPLE_BITMAP) == kSimpleBitmapClass && Name(KV_EXTENDED_LIST) == kExtendedListClass &&
              Name(KV_FLIGHT_TRACK) == kFlightTrackClass);
static_assert(KV_GAUGE == kModeGauge && KV_COMPASS == kModeCompass && KV_FITTED == kInstrumentFitted &&
              KV_READOUT == (kModeDigital | kInstrumentFitted) &&
              KV_SEGMENT_BAR == (kModeSegmentBar | kInstrumentFitted) &&
              KV_CENTER_ZERO_BAR == (kModeCenterBar | kInstrumentFitted) && KV_DISABLED == kInstrumentDisabled &&
              KV_NO_CAPTION == kInstrumentNoCaption && KV_SHOW_TIME == kInstrumentShowTime &&
              KV_SHOW_DATE == kInstrumentShowDate && KV_SHOW_ANGLE == kInstrumentShowAngle &&
              KV_REVERSED == kInstrumentReversed);
static_assert(KV_BITMAP_TRANSPARENT == kBitmapTransparent && KV_BITMAP_SQUARE_BY_WIDTH == kBitmapSquareByWidth &&
              KV_BITMAP_SQUARE_BY_HEIGHT == kBitmapSquareByHeight && KV_KEEPS_DIRECTION == WS_EX_NOINHERITLAYOUT);
static_assert(Name(KV_LINE_RECORDER) == kStripChartClass && KV_STRIP_SWEEP == kStripSweep &&
              KV_STRIP_SEPARATE_AXES == kStripSeparateAxes && KV_STRIP_NO_LEGEND == kStripNoLegend &&
              KV_STRIP_LOGARITHMIC == kStripLogarithmic && KV_STRIP_TIME_OF_DAY == kStripTimeOfDay &&
              KV_STRIP_SYMBOLS == kStripSymbols && KV_STRIP_NO_STATISTICS == kStripNoStatistics &&
              KV_STRIP_ELAPSED == kStripElapsed);
static_assert(Name(KV_HORIZON) == kHorizonClass && KV_HORIZON_RECTANGULAR == kHorizonRectangular &&
              KV_HORIZON_TAPE == kHorizonTape);

using Registration = BOOL (*)(HINSTANCE, BOOL);
constexpr Registration kRegistrations[] = {
    RegisterDialogClass,  RegisterSimpleBitmapClass, RegisterDisplayInstrumentClass, RegisterLineRecorderClass,
    RegisterHorizonClass, RegisterFlightTrackClass,  RegisterExtendedListClass};

}  // namespace

BOOL RegisterAllClasses(HINSTANCE instance, BOOL registerThem) {
  if (!registerThem) {
    for (const Registration each : std::views::reverse(kRegistrations)) each(instance, FALSE);
    return TRUE;
  }
  const auto rejected =
      std::ranges::find_if_not(kRegistrations, [&](Registration each) { return each(instance, TRUE); });
  if (rejected == std::end(kRegistrations)) return TRUE;
  std::for_each(std::begin(kRegistrations), rejected, [&](Registration each) { each(instance, FALSE); });
  return FALSE;
}

}  // namespace kv
