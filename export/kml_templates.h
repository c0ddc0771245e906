// The texts that KML documents are put together from, in one table. Wide printf formats for ASCII text; every line ends
// in one line feed.
#pragma once

#include <cstddef>

namespace kv {

enum class KmlTemplate : size_t {
  kHeader,     // longitude, latitude, altitude, range, tilt, heading (double)
  kFooter,     // closes what the header opened
  kTrackHead,  // line colour, line width, fill colour, extrude, tessellate (long)
  kTrackTail,  // closes what the track head opened
  // A placemark for a single point. No operation of ours writes one; a host may.
  kPointHead,  // name (wide text)
  kPoint,      // longitude, latitude, altitude (double)
  kPointTail,  // closes what the point head opened
  kCount,
};

const wchar_t* KmlTemplateText(KmlTemplate which);

}  // namespace kv
