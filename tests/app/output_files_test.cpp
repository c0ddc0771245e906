// Everything that writes files, with a full disk, a protected folder and files that others use: the older file stays as
// it was, the reason is the true one, and nothing temporary is left.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "camera/files.h"
#include "camera/text.h"
#include "gallery/pages/notes_file.h"
#include "kv/export/flight_track.h"
#include "kv/framework/canvas.h"
#include "kv/framework/output_file.h"
#include "kv/toolkit/error_text.h"
#include "kv/toolkit/png_file.h"
#include "kv/toolkit/track_files.h"
#include "tests/support/files.h"
#include "tests/support/replaced_import.h"

namespace {

namespace fs = std::filesystem;

// Returns the reason of a failure, L"" after success.
using Write = std::wstring (*)(const wchar_t* path);

std::wstring ReasonUnless(bool done) {
  return done ? L"" : kv::ErrorText();
}

kv::FlightTrackPoint points[3];

std::wstring WriteRecording(const wchar_t* path) {
  camera::OutputFile out;
  std::string error;
  const bool done = camera::OpenOutput(camera::Narrow(path), true, nullptr, &out, &error) &&
                    camera::AppendToOutput(&out, "a record", &error) && camera::PublishOutput(&out, &error);
  camera::CloseOutput(&out);
  return done ? L"" : kv::ErrorText(out.failure);
}

const struct {
  const char* what;
  Write write;
} kWriters[] = {
    {"KML", [](const wchar_t* path) { return ReasonUnless(kv::WriteKml(path, kv::MakeFlightTrack(46, 8, points))); }},
    {"waypoints",
     [](const wchar_t* path) { return ReasonUnless(kv::WriteWaypoints(path, kv::MakeFlightTrack(46, 8, points))); }},
    {"PNG",
     [](const wchar_t* path) {
       kv::Surface surface;
       surface.Create({40, 30});
       return ReasonUnless(kv::SaveBitmapAsPng(surface.bitmap(), path));
     }},
    {"notes", [](const wchar_t* path) { return ReasonUnless(gallery::WriteNotes(path, L"notes")); }},
    {"recording", WriteRecording},
};

BOOL WINAPI WriteHalf(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED*) {
  LARGE_INTEGER at{};
  SetFilePointerEx(file, {}, &at, FILE_CURRENT);
  *written = 0;
  if (at.QuadPart > 0) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
  }
  using Function = BOOL(WINAPI*)(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*);
  static const auto write =
      reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "WriteFile")));
  return write(file, bytes, (size + 1) / 2, written, nullptr);
}

HANDLE WINAPI CreateNothingNew(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES*, DWORD how,
                               DWORD flags, HANDLE) {
  if (how == CREATE_ALWAYS) SetLastError(ERROR_ACCESS_DENIED);
  if (how == CREATE_ALWAYS) return INVALID_HANDLE_VALUE;
  using Function = decltype(&CreateFileW);
  static const auto create =
      reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "CreateFileW")));
  return create(path, access, share, nullptr, how, flags, nullptr);
}

class OutputFiles : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }
  // The content of the target, if there is no other file.
  std::string Only() const {
    if (std::distance(fs::directory_iterator(folder_), {}) != 1) return "several files, or none";
    return kvtest::BytesOf(target_);
  }

  const fs::path folder_ = fs::temp_directory_path() / L"output files – файлы";
  const fs::path target_ = folder_ / L"target.txt";
};

TEST_F(OutputFiles, AreReplacedOnlyByCompleteOnes) {
  const std::wstring protectedFile = kv::ErrorText(ERROR_ACCESS_DENIED), inUse = kv::ErrorText(ERROR_SHARING_VIOLATION),
                     none = kv::ErrorText(ERROR_PATH_NOT_FOUND), full = kv::ErrorText(ERROR_DISK_FULL);
  for (const auto& [what, write] : kWriters) {
    SCOPED_TRACE(what);
    kvtest::WriteTo(target_, "older");
    {
      const kvtest::ReplacedImport fullDisk("WriteFile", reinterpret_cast<void*>(WriteHalf));
      EXPECT_TRUE(fullDisk.isInPlace());
      EXPECT_EQ(full, write(target_.c_str()));
    }
    EXPECT_EQ("older", Only());
    {
      const kvtest::ReplacedImport protectedFolder("CreateFileW", reinterpret_cast<void*>(CreateNothingNew));
      EXPECT_EQ(protectedFile, write(target_.c_str()));
    }
    EXPECT_EQ("older", Only());
    SetFileAttributesW(target_.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(protectedFile, write(target_.c_str()));
    SetFileAttributesW(target_.c_str(), FILE_ATTRIBUTE_NORMAL);
    const HANDLE reader = CreateFileW(target_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(inUse, write(target_.c_str()));
    CloseHandle(reader);
    EXPECT_EQ("older", Only());
    EXPECT_EQ(none, write((folder_ / L"no folder" / L"a.txt").c_str()));
    EXPECT_EQ(protectedFile, write(folder_.c_str()));
    EXPECT_EQ(kv::ErrorText(ERROR_BAD_DEVICE), write((folder_ / L"NUL").c_str()));
    EXPECT_EQ(L"", write(target_.c_str()));
    EXPECT_NE("older", Only());
  }
}

TEST_F(OutputFiles, OfEndedProcessesAreRemovedAndThoseOfOthersAreNot) {
  const fs::path abandoned = folder_ / L"target.txt.4711.part", user = folder_ / L"target.txt.my.part",
                 running = folder_ / L"target.txt.4712.part";
  for (const fs::path& path : {abandoned, user, running, target_}) kvtest::WriteTo(path, "older");
  const HANDLE writer = CreateFileW(running.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
  EXPECT_TRUE(kv::WriteWholeFile(target_.wstring(), "new"));
  CloseHandle(writer);
  EXPECT_FALSE(fs::exists(abandoned));
  EXPECT_TRUE(fs::exists(running) && fs::exists(user));
}

TEST_F(OutputFiles, GrowAfterTheyArePublished) {
  kv::OutputFile file;
  ASSERT_TRUE(file.Create(target_.wstring()) && file.Append("one ") && file.Publish() && file.Append("two ") &&
              file.Publish());
  {
    const kvtest::ReplacedImport fullDisk("WriteFile", reinterpret_cast<void*>(WriteHalf));
    EXPECT_FALSE(file.Append("three"));
  }
  EXPECT_TRUE(file.Append("four"));
  file.Close();
  EXPECT_EQ("one two four", Only());
}

}  // namespace
