#include "camview/settings.h"

#include <climits>
#include <string>

#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/window_position.h"

namespace camview {

namespace {

const wchar_t* ValueOf(Setting kind) {
  return kind == Setting::kRecordings ? L"RecordingFolder" : L"ImageFolder";
}

}  // namespace

std::wstring FolderOf(Setting kind) {
  wchar_t folder[kv::kPathCharacters] = L"";
  DWORD bytes = sizeof(folder) - sizeof(wchar_t), type = 0;
  const kv::RegistryKey key = kv::RegistryKey::Open(kSettingsKey);
  const LSTATUS status = RegQueryValueExW(key, ValueOf(kind), nullptr, &type, reinterpret_cast<BYTE*>(folder), &bytes);
  return status == ERROR_SUCCESS && type == REG_SZ ? folder : std::wstring();
}

void StoreFolder(Setting kind, const std::wstring& path) {
  wchar_t whole[kv::kPathCharacters] = L"", folder[kv::kPathCharacters] = L"";
  const DWORD length = GetFullPathNameW(path.c_str(), ARRAYSIZE(whole), whole, nullptr);
  if (length == 0 || length >= ARRAYSIZE(whole) || !kv::DirectoryOf(whole, folder, ARRAYSIZE(folder))) return;
  const kv::RegistryKey key = kv::RegistryKey::Create(kSettingsKey);
  RegSetValueExW(key, ValueOf(kind), 0, REG_SZ, reinterpret_cast<const BYTE*>(folder),
                 static_cast<DWORD>(lstrlenW(folder) + 1) * sizeof(wchar_t));
}

int NumberSetting(const char* name, int fallback) {
  auto number = static_cast<DWORD>(fallback);
  kv::WindowNumber(name, &number, kv::kPositionRestore);
  return number <= INT_MAX ? static_cast<int>(number) : fallback;
}

void StoreNumber(const char* name, int number) {
  auto stored = static_cast<DWORD>(number);
  kv::WindowNumber(name, &stored, kv::kPositionSave);
}

}  // namespace camview
