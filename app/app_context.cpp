#include "app/app_context.h"

#include "kv/framework/guards.h"

namespace kv {

namespace {
// The key's name differs from the program's; renaming it would lose stored settings.
constexpr char kSettingsKey[] = "Software\\korvel\\Brisklight";
constexpr wchar_t kDataFolderValue[] = L"DataFolder";
// Quirk: smaller than the field; a longer text is rejected, not truncated.
constexpr DWORD kLoadLimitBytes = 256;
}  // namespace

BOOL DataFolderSetting(AppContext* context, BOOL save) {
  if (!IsContextUsable(context)) return FALSE;
  if (save) {
    const RegistryKey key = RegistryKey::Create(kSettingsKey);
    if (!key) return TRUE;
    const DWORD sizeBytes = (lstrlenW(context->szDataFolder) + 1) * sizeof(wchar_t);
    RegSetValueExW(key, kDataFolderValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(context->szDataFolder), sizeBytes);
    return TRUE;
  }
  const RegistryKey key = RegistryKey::Open(kSettingsKey);
  if (!key) return TRUE;
  // Read into a copy, because a value that is too long leaves a partial path.
  wchar_t stored[kLoadLimitBytes / sizeof(wchar_t) + 1] = L"";
  DWORD sizeBytes = kLoadLimitBytes;
  if (RegQueryValueExW(key, kDataFolderValue, nullptr, nullptr, reinterpret_cast<BYTE*>(stored), &sizeBytes) ==
      ERROR_SUCCESS) {
    lstrcpynW(context->szDataFolder, stored, ARRAYSIZE(stored));
  }
  return TRUE;
}

}  // namespace kv
