// camview's settings below HKEY_CURRENT_USER\Software\korvel: folders under "Camview", numbers with the window
// positions. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace camview {

inline constexpr wchar_t kSettingsKey[] = L"Software\\korvel\\Camview";

enum class Setting { kRecordings, kImages };

// Returns the folder of the last file of a kind, with a trailing backslash; "" if there is none.
std::wstring FolderOf(Setting kind);
void StoreFolder(Setting kind, const std::wstring& path);

// Values are 0 to 2^31 - 1: milliseconds, or 0 and 1.
int NumberSetting(const char* name, int fallback);
void StoreNumber(const char* name, int number);

}  // namespace camview
