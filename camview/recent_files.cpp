#include "camview/recent_files.h"

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

#include "camview/resource_ids.h"
#include "camview/settings.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"

namespace camview {

namespace {

constexpr wchar_t kValue[] = L"RecentFiles";

std::wstring WholePath(const std::wstring& path) {
  wchar_t whole[kv::kPathCharacters] = L"";
  const DWORD length = GetFullPathNameW(path.c_str(), ARRAYSIZE(whole), whole, nullptr);
  return length > 0 && length < ARRAYSIZE(whole) ? whole : path;
}

void Store(const std::vector<std::wstring>& paths) {
  std::wstring list;
  for (const std::wstring& path : paths) list += path + L'\0';
  list += L'\0';
  RegSetValueExW(kv::RegistryKey::Create(kSettingsKey), kValue, 0, REG_MULTI_SZ,
                 reinterpret_cast<const BYTE*>(list.c_str()), static_cast<DWORD>(list.size()) * sizeof(wchar_t));
}

// "&3 recording.twr", with the folder at the right; long folders are shortened in their middle.
std::wstring MenuText(size_t number, const std::wstring& path) {
  constexpr size_t kLongest = 40, kPart = 18;
  std::wstring name = kv::FileNameOf(path.c_str());
  std::wstring folder = path.substr(0, path.size() - name.size());
  if (folder.size() > kLongest) folder.replace(kPart, folder.size() - 2 * kPart, L"\x2026");
  for (size_t at = 0; (at = name.find(L'&', at)) != name.npos; at += 2) name.insert(at, 1, L'&');
  return L"&" + std::to_wstring(number) + L" " + name + L"\t" + folder;
}

}  // namespace

std::vector<std::wstring> RecentFiles() {
  std::wstring list(kMaxRecentFiles * kv::kPathCharacters + 1, L'\0');
  DWORD bytes = static_cast<DWORD>(list.size() - 1) * sizeof(wchar_t), type = 0;
  const LSTATUS status = RegQueryValueExW(kv::RegistryKey::Open(kSettingsKey), kValue, nullptr, &type,
                                          reinterpret_cast<BYTE*>(list.data()), &bytes);
  std::vector<std::wstring> paths;
  if (status != ERROR_SUCCESS || type != REG_MULTI_SZ) return paths;
  for (const wchar_t* path = list.c_str(); *path && paths.size() < kMaxRecentFiles; path += paths.back().size() + 1)
    paths.emplace_back(path);
  return paths;
}

void RemoveRecentFile(const std::wstring& path) {
  std::vector<std::wstring> paths = RecentFiles();
  const std::wstring whole = WholePath(path);
  if (std::erase_if(paths, [&](const std::wstring& each) { return lstrcmpiW(each.c_str(), whole.c_str()) == 0; }) > 0)
    Store(paths);
}

void AddRecentFile(const std::wstring& path) {
  RemoveRecentFile(path);
  std::vector<std::wstring> paths = RecentFiles();
  paths.insert(paths.begin(), WholePath(path));
  if (paths.size() > kMaxRecentFiles) paths.pop_back();
  Store(paths);
}

void FillRecentMenu(HMENU file, std::vector<std::wstring>* paths) {
  MENUITEMINFOW item{.cbSize = sizeof(item), .fMask = MIIM_SUBMENU};
  if (!GetMenuItemInfoW(file, IDM_RECENT_MENU, FALSE, &item) || !item.hSubMenu) return;
  while (DeleteMenu(item.hSubMenu, 0, MF_BYPOSITION)) {
  }
  *paths = RecentFiles();
  for (size_t i = 0; i < paths->size(); ++i)
    AppendMenuW(item.hSubMenu, MF_STRING, IDM_RECENT_FIRST + i, MenuText(i + 1, (*paths)[i]).c_str());
  EnableMenuItem(file, IDM_RECENT_MENU, MF_BYCOMMAND | (paths->empty() ? MF_GRAYED : MF_ENABLED));
}

}  // namespace camview
