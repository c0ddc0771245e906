#include "export/kml_templates.h"

#include <cstddef>
#include <iterator>

namespace kv {

namespace {

constexpr const wchar_t* kTemplates[] = {
    // kHeader
    LR"(<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://earth.google.com/kml/2.0">
<Folder>
 <name>3D Flight route</name>

  <LookAt>
   <longitude>%.10f</longitude>
   <latitude>%.10f</latitude>
   <altitude>%.1f</altitude>
   <range>%.1f</range>
   <tilt>%.1f</tilt>
   <heading>%.1f</heading>
  </LookAt>

)",
    // kFooter
    LR"( </Folder>
</kml>
)",
    // kTrackHead
    LR"( <Placemark>
  <Style id="kvDronePoly">
   <LineStyle>
    <color>%-8.8lX</color>
    <width>%ld</width>
   </LineStyle>
   <PolyStyle>
    <color>%-8.8lX</color>
   </PolyStyle>
  </Style>

  <LineString>
   <extrude>%ld</extrude>
   <tessellate>%ld</tessellate>
   <altitudeMode>relativeToGround</altitudeMode>
   <coordinates>
)",
    // kTrackTail
    LR"(    </coordinates>
   </LineString>
  </Placemark>
)",
    // kPointHead
    LR"( <Folder>
  <Placemark>
   <name>%s</name>
   <Style>
    <IconStyle>
     <scale>1.0</scale>
     <Icon><href>http://maps.google.com/mapfiles/kml/shapes/placemark_circle.png</href></Icon>
    </IconStyle>
   </Style>
)",
    // kPoint
    LR"(   <Point>
    <altitudeMode>clampToGround</altitudeMode>
    <coordinates>%.15f,%.15f,%.2f</coordinates>
   </Point>
)",
    // kPointTail
    LR"(  </Placemark>
 </Folder>
)",
};
static_assert(std::size(kTemplates) == static_cast<size_t>(KmlTemplate::kCount));

}  // namespace

const wchar_t* KmlTemplateText(KmlTemplate which) {
  return kTemplates[static_cast<size_t>(which)];
}

}  // namespace kv
