#include "gallery/pages/notes_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace gallery {
namespace {

namespace fs = std::filesystem;

class NotesFile : public testing::Test {
 protected:
  NotesFile() { fs::create_directories(folder_); }
  ~NotesFile() override { fs::remove_all(folder_); }

  void Put(const std::string& bytes) { std::ofstream(file_, std::ios::binary) << bytes; }

  const fs::path folder_ = fs::temp_directory_path() / (L"kv notes " + std::to_wstring(GetCurrentProcessId()));
  const fs::path file_ = folder_ / L"заметки 1.txt";
  std::wstring text_ = L"as it was";
};

TEST_F(NotesFile, GoesOutAndComesBackAsItWas) {
  const std::wstring notes = L"Ωμέγα 日本\r\n\x00E9";
  EXPECT_TRUE(WriteNotes(file_.c_str(), L"longer than what comes next"));
  EXPECT_TRUE(WriteNotes(file_.c_str(), notes));
  EXPECT_TRUE(ReadNotes(file_.c_str(), &text_));
  EXPECT_EQ(notes, text_);
  EXPECT_TRUE(WriteNotes(file_.c_str(), L""));
  EXPECT_TRUE(ReadNotes(file_.c_str(), &text_));
  EXPECT_EQ(L"", text_);
  Put("\xEF\xBB\xBFmarked");
  EXPECT_TRUE(ReadNotes(file_.c_str(), &text_));
  EXPECT_EQ(L"marked", text_);
}

TEST_F(NotesFile, RefusesOtherFilesAndKeepsWhatThereIs) {
  EXPECT_FALSE(ReadNotes((folder_ / L"missing").c_str(), &text_));
  EXPECT_FALSE(ReadNotes(folder_.c_str(), &text_));
  Put("caf\xE9");
  EXPECT_FALSE(ReadNotes(file_.c_str(), &text_));
  Put(std::string(kLargestNotes + 1, 'x'));
  EXPECT_FALSE(ReadNotes(file_.c_str(), &text_));
  EXPECT_EQ(L"as it was", text_);
  EXPECT_FALSE(WriteNotes(folder_.c_str(), L"x"));  // a folder has that name
  EXPECT_FALSE(WriteNotes((folder_ / L"no folder" / L"x.txt").c_str(), L"x"));
  EXPECT_FALSE(fs::exists(folder_.wstring() + L".new"));
}

}  // namespace
}  // namespace gallery
