// The shell calls that start other programs (browser, globe viewer, spreadsheet). They go through this table so that a
// test can stand in for the shell; production code never changes it. Main thread only.
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
