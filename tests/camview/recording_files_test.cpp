// Loading and exporting recordings in camview.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "camera/files.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camview/exporter.h"
#include "camview/record_store.h"
#include "camview/recording_loader.h"
#include "tests/support/files.h"
#include "tests/support/test_window.h"

namespace camview {
namespace {

using kvtest::BytesOf;
using kvtest::TemporaryPath;
using kvtest::WriteTo;

constexpr std::uint64_t kStart = 133801632000000000;

std::string RecordText(int number) {
  return camera::Format("%04d,0200,0300,0400,1023,1023,0512,0384\r\n", number % 1000);
}

// Chunks with one record each, a hundred a second.
std::string Chunks(int count) {
  std::string chunks;
  for (int i = 0; i < count; ++i) chunks += camera::EncodeChunks(static_cast<std::uint64_t>(i) * 10000, RecordText(i));
  return chunks;
}

const std::string kHeader = camera::EncodeHeader({kStart, 38400, 3});
const size_t kChunkBytes = Chunks(1).size();

LoadedRecording LoadFile(const std::string& path) {
  RecordingLoader loader;
  loader.Start(path);
  EXPECT_TRUE(kvtest::WaitUntil([&] { return loader.IsDone(); }, std::chrono::milliseconds(20000)));
  return loader.Take();
}

LoadedRecording LoadBytes(std::string_view bytes) {
  const std::string path = TemporaryPath("camview load.twr");
  WriteTo(path, bytes);
  LoadedRecording loaded = LoadFile(path);
  EXPECT_EQ(bytes, BytesOf(path)) << "a recording is not modified";
  DeleteFileA(path.c_str());
  return loaded;
}

TEST(CamviewLoader, LoadsIntactChunksAndReportsDamage) {
  const std::string chunks = Chunks(100), end = camera::EncodeEnd(2'000'000);
  std::string damaged = kHeader + chunks + end;
  damaged[kHeader.size() + 50 * kChunkBytes + 20] ^= 1;
  std::string badHeader = kHeader + chunks + end, otherVersion = kHeader;
  badHeader[20] ^= 1;
  otherVersion[12] = 2;
  const std::uint32_t checksum = camera::Crc32(std::string_view(otherVersion).substr(0, 36));
  for (int i = 0; i < 4; ++i) otherVersion[36 + i] = static_cast<char>(checksum >> (8 * i));
  const std::tuple<const char*, std::string, LoadOutcome, int, bool, int> cases[] = {
      {"whole", kHeader + chunks + end, LoadOutcome::kComplete, 100, false, 0},
      {"damaged", damaged, LoadOutcome::kComplete, 99, false, 1},
      {"damaged header", badHeader, LoadOutcome::kComplete, 100, false, 1},
      {"truncated", (kHeader + chunks).substr(0, kHeader.size() + 50 * kChunkBytes + 9), LoadOutcome::kComplete, 50,
       true, 0},
      {"truncated in its header", kHeader.substr(0, 20), LoadOutcome::kComplete, 0, true, 0},
      {"empty", "", LoadOutcome::kEmpty, 0, false, 0},
      {"foreign", "seconds,x1,y1\n", LoadOutcome::kForeign, 0, false, 0},
      {"other version", otherVersion, LoadOutcome::kOtherVersion, 0, false, 0}};
  for (const auto& [name, bytes, outcome, records, isTruncated, places] : cases) {
    const LoadedRecording loaded = LoadBytes(bytes);
    EXPECT_EQ(outcome, loaded.outcome) << name;
    ASSERT_TRUE(loaded.store) << name;
    EXPECT_EQ(records, loaded.store->End()) << name;
    EXPECT_EQ(isTruncated, loaded.isTruncated) << name;
    EXPECT_EQ(places, loaded.damageCount) << name;
    EXPECT_EQ(0u, loaded.systemError) << name;
  }
  const LoadedRecording whole = LoadBytes(kHeader + chunks + end), hit = LoadBytes(damaged);
  EXPECT_EQ(std::tuple(true, kStart, 3u), std::tuple(whole.hasHeader, whole.header.startTime, whole.header.port));
  EXPECT_EQ(2, whole.seconds);
  EXPECT_EQ(99, whole.store->Get(99).points[0].x);
  const std::vector<Section> silent = whole.store->Sections(SectionKind::kSilent);
  ASSERT_EQ(1u, silent.size());
  EXPECT_EQ(std::pair(0.99, 2.0), std::pair(silent[0].from, silent[0].to));
  const std::vector<Section> lost = hit.store->Sections(SectionKind::kDamaged);
  ASSERT_EQ(1u, lost.size());
  EXPECT_EQ(std::tuple(0.49, 0.51, static_cast<long long>(kChunkBytes)),
            std::tuple(lost[0].from, lost[0].to, lost[0].bytes));
  EXPECT_EQ(kAfterDamagedBytes, hit.store->Get(50).flags);
  EXPECT_FALSE(LoadBytes(badHeader).hasHeader);
  const LoadedRecording none = LoadFile(TemporaryPath("camview there is none.twr"));
  EXPECT_EQ(LoadOutcome::kUnreadable, none.outcome);
  EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), none.systemError);
  EXPECT_EQ(LoadOutcome::kForeign, LoadFile(TemporaryPath("")).outcome) << "a folder";
}

TEST(CamviewLoader, OpensARunningRecordingAndKeepsLoadedRecordsWhenCanceled) {
  const std::string path = TemporaryPath("camview growing.twr");
  camera::OutputFile out;
  std::string error;
  ASSERT_TRUE(camera::OpenOutput(path, true, nullptr, &out, &error)) << error;
  ASSERT_TRUE(camera::AppendToOutput(&out, kHeader + Chunks(10), &error) && camera::PublishOutput(&out, &error));
  const LoadedRecording early = LoadFile(path);
  EXPECT_EQ(10, early.store->End());
  EXPECT_TRUE(early.isTruncated);
  constexpr int kMany = 300000;
  ASSERT_TRUE(camera::AppendToOutput(&out, Chunks(kMany).substr(10 * kChunkBytes), &error)) << "still writable";
  RecordingLoader loader;
  loader.Start(path);
  double progress = 0;
  EXPECT_TRUE(kvtest::WaitUntil([&] { return (progress = loader.Progress()) > 0.1 || loader.IsDone(); }));
  loader.Cancel();
  EXPECT_TRUE(kvtest::WaitUntil([&] { return loader.IsDone(); }));
  EXPECT_LT(progress, 1);
  const LoadedRecording part = loader.Take();
  EXPECT_EQ(LoadOutcome::kCanceled, part.outcome);
  EXPECT_GT(part.store->End(), kMany / 20);
  EXPECT_LT(part.store->End(), kMany);
  EXPECT_EQ(part.records, part.store->End());
  camera::CloseOutput(&out);
  DeleteFileA(path.c_str());
}

TEST(CamviewLoader, CanBeCanceledWhereNoChunkIsFound) {
  const std::string path = TemporaryPath("camview zeros.twr");
  WriteTo(path, kHeader);
  HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  SetFilePointer(file, 1 << 30, nullptr, FILE_BEGIN);
  SetEndOfFile(file);
  CloseHandle(file);
  RecordingLoader loader;
  loader.Start(path);
  EXPECT_TRUE(kvtest::WaitUntil([&] { return loader.Progress() > 0 || loader.IsDone(); }));
  loader.Cancel();
  EXPECT_TRUE(kvtest::WaitUntil([&] { return loader.IsDone(); }, std::chrono::milliseconds(500)));
  EXPECT_EQ(LoadOutcome::kCanceled, loader.Take().outcome);
  DeleteFileA(path.c_str());
}

ExportResult RunExport(const ExportTask& task) {
  Exporter exporter;
  exporter.Start(task);
  EXPECT_TRUE(kvtest::WaitUntil([&] { return exporter.IsDone(); }, std::chrono::milliseconds(20000)));
  return exporter.Result();
}

// The times and data of a recording's chunks, as text.
std::string DecodedFrom(const std::string& path, camera::RecordingHeader* header) {
  camera::RecordingFile file;
  EXPECT_TRUE(camera::OpenRecording(path, &file)) << file.error;
  *header = file.decoder.header;
  std::string text;
  for (camera::Chunk chunk{}; camera::NextChunk(&file, &chunk);) {
    text += camera::Format("%llu ", static_cast<unsigned long long>(chunk.microseconds)) + chunk.bytes;
  }
  EXPECT_EQ("", camera::DescribeDamage(file));
  text += camera::Format("end %llu", static_cast<unsigned long long>(file.decoder.endTime));
  camera::CloseRecording(&file);
  return text;
}

TEST(CamviewExport, WritesATimeRangeAsRowsAndAsARecording) {
  const std::string source = TemporaryPath("camview source.twr"), target = TemporaryPath("camview range");
  // A record in two chunks, records with invalid numbers and garbage: a recording contains them unchanged.
  std::string bytes = kHeader + camera::EncodeChunks(500'000, RecordText(1)),
              requested = "0 " + RecordText(2).substr(0, 20);
  bytes += camera::EncodeChunks(1'000'000, RecordText(2).substr(0, 20));
  for (const auto& [time, text] : {std::pair{1'010'000ull, RecordText(2).substr(20) + "\xFFgarbage"},
                                   {1'020'000ull, std::string("0003,0200,0300,0400,1023,1023,0512,0384059")},
                                   {1'999'999ull, RecordText(4)}}) {
    bytes += camera::EncodeChunks(time, text);
    requested += camera::Format("%llu ", time - 1'000'000) + text;
  }
  bytes += camera::EncodeChunks(2'000'000, RecordText(5)) + camera::EncodeChunks(2'500'000, RecordText(6)) +
           camera::EncodeEnd(3'000'000);
  WriteTo(source, bytes);
  WriteTo(target, "old");
  const LoadedRecording loaded = LoadFile(source);
  ExportTask task{.store = loaded.store.get(),
                  .recording = source,
                  .recordingSeconds = loaded.seconds,
                  .target = target,
                  .from = 1,
                  .to = 2};
  ExportResult result = RunExport(task);
  EXPECT_TRUE(result.isDone) << result.systemError;
  EXPECT_EQ(3, result.records);
  camera::RecordingHeader header;
  EXPECT_EQ(requested + "end 1000000", DecodedFrom(target, &header));
  EXPECT_EQ(std::tuple(kStart + 10'000'000, 3u, 38400u), std::tuple(header.startTime, header.port, header.baudRate));

  task.isCsv = true;
  result = RunExport(task);
  EXPECT_TRUE(result.isDone) << result.systemError;
  EXPECT_EQ(
      camera::CsvHeader() + "1.010000,2,200,300,400,1023,1023,512,384\n1.999999,4,200,300,400,1023,1023,512,384\n",
      BytesOf(target));
  for (const bool isCsv : {false, true}) {
    task.isCsv = isCsv;
    task.target = source;
    EXPECT_EQ(ExportFailure::kTargetIsSource, RunExport(task).failure);
    EXPECT_EQ(bytes, BytesOf(source));
    // The recording is truncated after it was read: its bytes are not there any more, but the records were kept.
    task.target = target;
    WriteTo(target, "old");
    WriteTo(source, bytes.substr(0, camera::kRecordingHeaderBytes + 100));
    result = RunExport(task);
    EXPECT_EQ(isCsv, result.isDone);
    EXPECT_EQ(isCsv ? ExportFailure::kNone : ExportFailure::kSourceIsShorter, result.failure);
    EXPECT_EQ(isCsv, BytesOf(target) != "old");
    WriteTo(source, bytes);
  }
  task.target = TemporaryPath("camview there is none\\a.twr");
  result = RunExport(task);
  EXPECT_EQ(std::pair(ExportFailure::kSystem, static_cast<DWORD>(ERROR_PATH_NOT_FOUND)),
            std::pair(result.failure, result.systemError));
  for (const std::string& path : {source, target}) DeleteFileA(path.c_str());
}

TEST(CamviewExport, WritesStoredRecords) {
  RecordStore store;
  for (int i = 0; i < 5; ++i) {
    camera::FoundRecord record{.seconds = 1 + i * 0.25, .points = {{i, 200}, {300, 400}, {1023, 1023}, {512, 384}}};
    record.isInRange = i != 2;
    store.Append(record, 0);
  }
  const std::string target = TemporaryPath("camview stored");
  ExportTask task{
      .store = &store, .header = {kStart, 38400, 7}, .target = target, .isCsv = true, .from = 1.25, .to = 1.8};
  EXPECT_TRUE(RunExport(task).isDone);
  EXPECT_EQ(
      camera::CsvHeader() + "1.250000,1,200,300,400,1023,1023,512,384\n1.750000,3,200,300,400,1023,1023,512,384\n",
      BytesOf(target));
  task.isCsv = false;
  EXPECT_TRUE(RunExport(task).isDone);
  camera::RecordingHeader header;
  EXPECT_EQ("0 " + RecordText(1) + "500000 " + RecordText(3) + "end 550000", DecodedFrom(target, &header));
  EXPECT_EQ(std::pair(kStart + 12'500'000, 7u), std::pair(header.startTime, header.port));
  DeleteFileA(target.c_str());
}

}  // namespace
}  // namespace camview
