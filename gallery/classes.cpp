#include "gallery/classes.h"

#include "app/optical_flow_chart.h"
#include "gallery/pages/mesh_view.h"
#include "toolkit/classes.h"

namespace gallery {

void RegisterAllClasses(HINSTANCE instance, BOOL registerThem) {
  kv::RegisterAllClasses(instance, registerThem);
  kv::RegisterChartClass(instance, registerThem);
  RegisterMeshViewClass(instance, registerThem);
}

}  // namespace gallery
