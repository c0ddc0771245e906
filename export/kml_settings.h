// What the user's registry says about the look of an exported track. Read on every call.
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

// Reads HKEY_CURRENT_USER "Software\korvel\Configuration": four bytes of each value, whatever its type. A value that is
// missing or longer leaves the default; a shorter one leaves the default's bytes that it does not cover. When the key
// could be opened, the line's alpha becomes 0xFF and the fill's alpha follows from the transparency; otherwise both
// colours are the defaults as they stand.
KmlSettings ReadKmlSettings();

// The fill's alpha, 0..255: the low byte of 255 - transparency * 256 / 100, truncated towards zero and limited to 32
// bits. 0 percent gives 255, 25 gives 191, and 100 gives 255 again (the low byte of -1). Not a number and plus infinity
// give 0 (nothing is filled), minus infinity 255.
DWORD FillAlpha(float transparencyPercent);

}  // namespace kv
