// Reasons for failed file operations, as sentences for users. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

// Returns a sentence for an error of GetLastError in the current language: "The disk is full." A program or a language
// library provides the sentence as the string KV_REASON_... (kv/resource.h); without one it is English.
std::wstring ErrorText(DWORD error = GetLastError());

}  // namespace kv
