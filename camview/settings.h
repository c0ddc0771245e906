// What camview remembers, below HKEY_CURRENT_USER\Software\korvel: folders under "Camview", numbers beside the windows'
// places. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace camview {

enum class Setting { kRecordings, kImages };

// The folder of the last file of a kind, with a backslash at its end; "" when there is none yet.
std::wstring FolderOf(Setting kind);
void RememberFolder(Setting kind, const std::wstring& path);

// Milliseconds, or a truth value; 0 to 2^31 - 1.
int NumberSetting(const char* name, int fallback);
void RememberNumber(const char* name, int number);

}  // namespace camview
