// A separate file for programs without windows: the fuzzer, and the tests that are built for this machine.
#include <cstddef>
#include "tests/support/test_window.h"

namespace kvtest {

namespace {
constexpr size_t kPageSize = 4096;
}  // namespace

GuardedBytes::GuardedBytes(size_t size) : pages_((size + kPageSize - 1) / kPageSize) {
  base_ = VirtualAlloc(nullptr, (pages_ + 1) * kPageSize, MEM_RESERVE, PAGE_NOACCESS);
  VirtualAlloc(base_, pages_ * kPageSize, MEM_COMMIT, PAGE_READWRITE);
  data_ = static_cast<char*>(base_) + pages_ * kPageSize - size;
}

GuardedBytes::~GuardedBytes() {
  VirtualFree(base_, 0, MEM_RELEASE);
}

void GuardedBytes::MakeReadOnly() {
  DWORD previous = 0;
  VirtualProtect(base_, pages_ * kPageSize, PAGE_READONLY, &previous);
}

}  // namespace kvtest
