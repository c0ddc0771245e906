// What the user's registry says about the look of an exported track. Read anew on every call.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr DWORD kKmlExtrude = 2;     // bits of dwFlags
inline constexpr DWORD kKmlTessellate = 4;  // (bit 1 means nothing to the export)

// Colours in KML's order: alpha, blue, green, red from the highest byte to the lowest.
struct KmlSettings {
  DWORD dwFlags = 5;
  DWORD dwLineWidth = 5;
  DWORD dwLineColor = 0xFF00FF00;
  DWORD dwPolygonColor = 0xC02FFF2F;
  float fTransparency = 25;                                  // of the fill, percent
  float fAltitude = 0, fRange = 0, fTilt = 0, fHeading = 0;  // of the view point
};

// Reads HKEY_CURRENT_USER "Software\korvel\Configuration". A value of four bytes counts, whatever its type; any other
// length is not one of ours and the default stays, as for a value that is missing. When the key could be opened, the
// line's alpha becomes 0xFF and the fill's alpha follows from the transparency; otherwise both colours are the
// defaults as they stand.
KmlSettings ReadKmlSettings();

// The fill's alpha, 0..255: the low byte of 255 - transparency * 256 / 100, truncated towards zero. 0 percent gives
// 255, 25 gives 191, and 100 gives 255 again (the low byte of -1). A transparency that is not a number, or so large
// that the result does not fit 32 bits, gives 0.
DWORD FillAlpha(float transparencyPercent);

}  // namespace kv
