// Replaces an imported function by one of the test for a scope, to make a system call fail that otherwise succeeds.
// Calls from other modules still reach the real function.
#pragma once

#include <windows.h>

#include <cstring>
#include <utility>

namespace kvtest {

class ReplacedImport {
 public:
  ReplacedImport(const char* name, void* replacement) : slot_(Find(name)) {
    if (slot_) original_ = Exchange(replacement);
  }
  ~ReplacedImport() {
    if (slot_) Exchange(original_);
  }
  ReplacedImport(const ReplacedImport&) = delete;
  ReplacedImport& operator=(const ReplacedImport&) = delete;

  bool isInPlace() const { return slot_ != nullptr; }

 private:
  static void** Find(const char* name) {
    const auto base = reinterpret_cast<BYTE*>(GetModuleHandleA(nullptr));
    const auto dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto module = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports); module->Name; ++module) {
      auto slot = reinterpret_cast<void**>(base + module->FirstThunk);
      for (auto thunk = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + module->OriginalFirstThunk);
           thunk->u1.AddressOfData; ++thunk, ++slot) {
        if (IMAGE_SNAP_BY_ORDINAL(thunk->u1.Ordinal)) continue;
        const auto import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + thunk->u1.AddressOfData);
        if (std::strcmp(reinterpret_cast<const char*>(import->Name), name) == 0) return slot;
      }
    }
    return nullptr;
  }

  void* Exchange(void* function) {
    DWORD protection = 0;
    VirtualProtect(slot_, sizeof(*slot_), PAGE_READWRITE, &protection);
    void* const before = std::exchange(*slot_, function);
    VirtualProtect(slot_, sizeof(*slot_), protection, &protection);
    return before;
  }

  void** slot_;
  void* original_ = nullptr;
};

}  // namespace kvtest
