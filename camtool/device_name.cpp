#include "camtool/device_name.h"

#include <winternl.h>

#include <string>
#include <vector>

#include "camtool/ports.h"

namespace camtool {

namespace {

// Of ntdll, which no import library of every tool chain has, and which winternl.h declares only in part.
using QueryObject = NTSTATUS(NTAPI*)(HANDLE, int, void*, ULONG, ULONG*);
using QuerySystem = NTSTATUS(NTAPI*)(int, void*, ULONG, ULONG*);
constexpr int kObjectName = 1;
constexpr int kExtendedHandles = 64;
constexpr NTSTATUS kTooSmall = static_cast<NTSTATUS>(0xC0000004);

struct HandleEntry {
  void* object;
  ULONG_PTR process;
  ULONG_PTR handle;
  ULONG access;
  USHORT backTrace, type;
  ULONG attributes, reserved;
};

struct HandleList {
  ULONG_PTR count, reserved;
  HandleEntry entries[1];
};

template <class Function>
Function Native(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), name)));
}

std::vector<char> AllHandles() {
  const auto query = Native<QuerySystem>("NtQuerySystemInformation");
  std::vector<char> list(1 << 18);
  for (int tries = 0; query && tries < 6; ++tries) {
    const NTSTATUS status = query(kExtendedHandles, list.data(), static_cast<ULONG>(list.size()), nullptr);
    if (status == 0) return list;
    if (status != kTooSmall) break;
    list.resize(list.size() * 4);
  }
  return {};
}

std::string ProgramOf(HANDLE process) {
  char path[MAX_PATH] = "";
  DWORD size = MAX_PATH;
  if (!QueryFullProcessImageNameA(process, 0, path, &size)) return "another program";
  const std::string text(path);
  return text.substr(text.find_last_of("\\/") + 1);
}

// Notes the holder when the other process's handle is of a device of characters.
void NoteHolder(HANDLE process, HANDLE theirs, PortHolders* holders) {
  HANDLE mine = nullptr;
  if (!DuplicateHandle(process, theirs, GetCurrentProcess(), &mine, 0, FALSE, DUPLICATE_SAME_ACCESS)) return;
  if (GetFileType(mine) == FILE_TYPE_CHAR) {
    const std::wstring name = DeviceName(mine);
    if (!name.empty()) holders->emplace(name, ProgramOf(process));
  }
  CloseHandle(mine);
}

}  // namespace

bool SharesPorts() {
  return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}

std::wstring DeviceName(HANDLE device) {
  const auto query = Native<QueryObject>("NtQueryObject");
  alignas(UNICODE_STRING) char answer[2048];
  ULONG size = 0;
  if (!query || query(device, kObjectName, answer, sizeof(answer), &size) != 0) return {};
  const auto* name = reinterpret_cast<const UNICODE_STRING*>(answer);
  return name->Buffer ? std::wstring(name->Buffer, name->Length / sizeof(wchar_t)) : std::wstring();
}

PortHolders FindPortHolders() {
  PortHolders holders;
  if (!SharesPorts()) return holders;
  const std::vector<char> bytes = AllHandles();
  if (bytes.empty()) return holders;
  const auto* list = reinterpret_cast<const HandleList*>(bytes.data());
  HANDLE process = nullptr;
  ULONG_PTR id = 0;
  for (ULONG_PTR i = 0; i < list->count; ++i) {
    const HandleEntry& entry = list->entries[i];
    constexpr ULONG kReadAndWrite = FILE_READ_DATA | FILE_WRITE_DATA;
    if (entry.process == GetCurrentProcessId() || (entry.access & kReadAndWrite) != kReadAndWrite) continue;
    if (entry.process != id) {
      if (process) CloseHandle(process);
      id = entry.process;
      process = OpenProcess(PROCESS_DUP_HANDLE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(id));
    }
    if (process) NoteHolder(process, reinterpret_cast<HANDLE>(entry.handle), &holders);
  }
  if (process) CloseHandle(process);
  return holders;
}

}  // namespace camtool
