#include "export/kml_settings.h"

#include <cstddef>
#include <cstring>
#include <iterator>

#include "framework/guards.h"
#include "framework/whole_number.h"

namespace kv {

namespace {

constexpr char kKey[] = "Software\\korvel\\Configuration";
constexpr DWORD kValueSize = 4;

struct SettingPlace {
  const char* name;
  size_t offset;
};

constexpr SettingPlace kPlaces[] = {
    {"KMLFlags", offsetof(KmlSettings, dwFlags)},
    {"KMLLineWidth", offsetof(KmlSettings, dwLineWidth)},
    {"KMLLineColor", offsetof(KmlSettings, dwLineColor)},
    {"KMLPolygonColor", offsetof(KmlSettings, dwPolygonColor)},
    {"KMLTransparency", offsetof(KmlSettings, fTransparency)},
    {"KMLAltitude", offsetof(KmlSettings, fAltitude)},
    {"KMLRange", offsetof(KmlSettings, fRange)},
    {"KMLTilt", offsetof(KmlSettings, fTilt)},
    {"KMLHeading", offsetof(KmlSettings, fHeading)},
};
static_assert(sizeof(KmlSettings) == std::size(kPlaces) * kValueSize);

// Read into a buffer of its own: a value that is too long may leave anything there.
void ReadFourBytes(HKEY key, const char* name, void* setting) {
  BYTE bytes[kValueSize];
  DWORD size = kValueSize;
  if (RegQueryValueExA(key, name, nullptr, nullptr, bytes, &size) == ERROR_SUCCESS) std::memcpy(setting, bytes, size);
}

DWORD WithAlpha(DWORD color, DWORD alpha) {
  return (color & 0x00FFFFFF) | (alpha << 24);
}

}  // namespace

KmlSettings ReadKmlSettings() {
  KmlSettings settings;
  const RegistryKey key = RegistryKey::Open(kKey);
  if (!key) return settings;
  for (const SettingPlace& place : kPlaces) {
    ReadFourBytes(key, place.name, reinterpret_cast<BYTE*>(&settings) + place.offset);
  }
  settings.dwPolygonColor = WithAlpha(settings.dwPolygonColor, FillAlpha(settings.fTransparency));
  settings.dwLineColor = WithAlpha(settings.dwLineColor, 0xFF);
  return settings;
}

DWORD FillAlpha(float transparencyPercent) {
  return static_cast<DWORD>(ToInt(255 - double{transparencyPercent} * 256 / 100)) & 0xFF;
}

}  // namespace kv
