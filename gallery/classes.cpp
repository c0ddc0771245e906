#include "gallery/classes.h"

#include "app/optical_flow_chart.h"
#include "controls/display_instrument.h"
#include "controls/simple_bitmap.h"
#include "export/flight_track_view.h"
#include "framework/dialog.h"
#include "gallery/pages/mesh_view.h"
#include "lists/extended_list.h"

namespace gallery {

void RegisterAllClasses(HINSTANCE instance, BOOL registerThem) {
  using Registration = BOOL (*)(HINSTANCE, BOOL);
  constexpr Registration kRegistrations[] = {
      kv::RegisterDialogClass,       kv::RegisterSimpleBitmapClass, kv::RegisterDisplayInstrumentClass,
      kv::RegisterChartClass,        kv::RegisterFlightTrackClass,  RegisterMeshViewClass,
      kv::RegisterExtendedListClass,
  };
  for (const Registration registration : kRegistrations) registration(instance, registerThem);
}

}  // namespace gallery
