// The recordings that were opened last, in the settings and in the menu "Recent". Main thread only.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace camview {

inline constexpr size_t kMaxRecentFiles = 8;

// Returns whole paths, the newest first.
std::vector<std::wstring> RecentFiles();
void AddRecentFile(const std::wstring& path);
void RemoveRecentFile(const std::wstring& path);

// Fills the menu IDM_RECENT_MENU in the menu `file`; returns the paths in it, by their commands from IDM_RECENT_FIRST
// on. Does nothing for other menus.
void FillRecentMenu(HMENU file, std::vector<std::wstring>* paths);

}  // namespace camview
