// The shell calls that start other programs (browser, globe viewer, spreadsheet). Only tests replace them. Main thread
// only.
#pragma once

#include <windows.h>

#include <shellapi.h>

namespace kv {

struct ShellCalls {
  decltype(&::ShellExecuteA) executeA;
  decltype(&::ShellExecuteW) executeW;
  decltype(&::ShellExecuteExA) executeExA;
};

extern ShellCalls shellCalls;

}  // namespace kv
