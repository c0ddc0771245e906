#include "toolkit/classes.h"

#include <algorithm>
#include <iterator>
#include <ranges>

#include "controls/display_instrument.h"
#include "controls/line_recorder.h"
#include "controls/simple_bitmap.h"
#include "export/flight_track_view.h"
#include "framework/dialog.h"
#include "lists/extended_list.h"

namespace kv {

namespace {

using Registration = BOOL (*)(HINSTANCE, BOOL);
constexpr Registration kRegistrations[] = {
    RegisterDialogClass,       RegisterSimpleBitmapClass, RegisterDisplayInstrumentClass,
    RegisterLineRecorderClass, RegisterFlightTrackClass,  RegisterExtendedListClass};

}  // namespace

BOOL RegisterAllClasses(HINSTANCE instance, BOOL registerThem) {
  if (!registerThem) {
    for (const Registration each : std::views::reverse(kRegistrations)) each(instance, FALSE);
    return TRUE;
  }
  const auto refused =
      std::ranges::find_if_not(kRegistrations, [&](Registration each) { return each(instance, TRUE); });
  if (refused == std::end(kRegistrations)) return TRUE;
  std::for_each(std::begin(kRegistrations), refused, [&](Registration each) { each(instance, FALSE); });
  return FALSE;
}

}  // namespace kv
