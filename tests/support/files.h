// Files of tests.
#pragma once

#include <windows.h>

#include <fstream>
#include <ios>
#include <iterator>
#include <string>
#include <string_view>

namespace kvtest {

// The bytes of a file; "" if there is none.
template <class Path>
std::string BytesOf(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

template <class Path>
void WriteTo(const Path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// A path in the folder of temporary files.
inline std::string TemporaryPath(const char* name) {
  char folder[MAX_PATH];
  GetTempPathA(sizeof(folder), folder);
  return std::string(folder) + name;
}

}  // namespace kvtest
