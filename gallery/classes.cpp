#include "gallery/classes.h"

#include "app/optical_flow_chart.h"
#include "framework/dialog.h"

namespace gallery {

void RegisterAllClasses(HINSTANCE instance, BOOL registerThem) {
  using Registration = BOOL (*)(HINSTANCE, BOOL);
  constexpr Registration kRegistrations[] = {
      kv::RegisterDialogClass,
      kv::RegisterChartClass,
  };
  for (const Registration registration : kRegistrations) registration(instance, registerThem);
}

}  // namespace gallery
