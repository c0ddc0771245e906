#include "gallery/pages/notes_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ios>
#include <string>

namespace gallery {
namespace {

namespace fs = std::filesystem;

TEST(NotesFile, ComesBackAsItWasAndOtherFilesAreRefused) {
  const fs::path folder = fs::temp_directory_path() / (L"kv notes " + std::to_wstring(GetCurrentProcessId()));
  const fs::path file = folder / L"заметки 1.txt";
  fs::create_directories(folder);
  const auto put = [&](const std::string& bytes) { std::ofstream(file, std::ios::binary) << bytes; };
  std::wstring text;
  for (const std::wstring notes : {L"longer than what comes next", L"Ωμέγα 日本\r\n\x00E9", L""}) {
    EXPECT_TRUE(WriteNotes(file.c_str(), notes) && ReadNotes(file.c_str(), &text));
    EXPECT_EQ(notes, text);
  }
  put("\xEF\xBB\xBFmarked");
  EXPECT_TRUE(ReadNotes(file.c_str(), &text));

  EXPECT_FALSE(ReadNotes((folder / L"missing").c_str(), &text) || ReadNotes(folder.c_str(), &text));
  for (const std::string& bytes : {std::string("caf\xE9"), std::string(kLargestNotes + 1, 'x')}) {
    put(bytes);
    EXPECT_FALSE(ReadNotes(file.c_str(), &text));
  }
  EXPECT_EQ(L"marked", text);
  EXPECT_FALSE(WriteNotes(folder.c_str(), L"x") || WriteNotes((folder / L"no folder" / L"x.txt").c_str(), L"x"));
  EXPECT_FALSE(fs::exists(folder.wstring() + L".new"));
  fs::remove_all(folder);
}

}  // namespace
}  // namespace gallery
