#include "kv/framework/modules.h"

namespace kv {

Modules modules{};

void RestrictLibrarySearch() {
  constexpr DWORD kSystemFolder = 0x800;  // LOAD_LIBRARY_SEARCH_SYSTEM32
  BOOL(WINAPI * setDefaultFolders)(DWORD folders);
  FindProcedure(GetModuleHandleA("kernel32.dll"), "SetDefaultDllDirectories", &setDefaultFolders);
  if (!setDefaultFolders || !setDefaultFolders(kSystemFolder)) SetDllDirectoryA("");
}

}  // namespace kv
