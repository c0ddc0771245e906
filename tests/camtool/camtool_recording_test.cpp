// The recording's format, and how records are found in a stream.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/text.h"

namespace camtool {
namespace {

constexpr char kRecord[] = "0100,0200,0300,0400,1023,1023,0512,0384\r\n";

struct Read {
  std::string bytes;
  size_t chunks = 0, torn = 0;
  camera::RecordingDecoder decoder;
  bool isRecording = true;
};

Read ReadAll(std::string_view file, size_t partSize) {
  Read read;
  for (;;) {
    camera::Chunk chunk;
    const camera::Decoded next = camera::DecodeNext(&read.decoder, &chunk);
    if (next == camera::Decoded::kChunk) {
      read.bytes += chunk.bytes;
      ++read.chunks;
    }
    read.isRecording = next != camera::Decoded::kNoRecording;
    if (!read.isRecording) return read;
    if (next != camera::Decoded::kNeedMore) continue;
    if (file.empty()) break;
    const size_t size = std::min(partSize, file.size());
    camera::FeedDecoder(&read.decoder, file.substr(0, size));
    file.remove_prefix(size);
  }
  read.torn = camera::FinishDecoding(&read.decoder);
  return read;
}

constexpr size_t kChunkSize = sizeof(kRecord) - 1 + camera::kChunkOverhead;
constexpr size_t kChunkCount = 8;

std::string SmallRecording() {
  std::string file = camera::EncodeHeader({.startTime = 0x0123456789ABCDEF, .baudRate = 38400, .port = 3});
  for (size_t i = 0; i < kChunkCount; ++i) file += camera::EncodeChunks(std::uint64_t{i} * 10000, kRecord);
  return file + camera::EncodeEnd(123456);
}

TEST(CamtoolRecording, IsReadableWhereverItIsCutOff) {
  const std::string file = SmallRecording();
  const Read whole = ReadAll(file, 7);
  EXPECT_EQ(kChunkCount, whole.chunks);
  EXPECT_TRUE(whole.decoder.hasEnd);
  EXPECT_EQ(123456u, whole.decoder.endTime);
  EXPECT_EQ(0x0123456789ABCDEFu, whole.decoder.header.startTime);
  EXPECT_EQ(3u, whole.decoder.header.port);
  for (size_t size = 0; size < file.size(); ++size) {
    const Read cut = ReadAll(std::string_view(file).substr(0, size), 1000);
    const size_t body = size < camera::kRecordingHeaderBytes ? 0 : size - camera::kRecordingHeaderBytes;
    const size_t chunks = std::min(body / kChunkSize, kChunkCount);
    ASSERT_TRUE(cut.isRecording) << size;
    ASSERT_EQ(chunks, cut.chunks) << size;
    ASSERT_EQ(size < camera::kRecordingHeaderBytes ? size : body - chunks * kChunkSize, cut.torn) << size;
    ASSERT_EQ(0u, cut.decoder.damagedPlaces) << size;
    ASSERT_FALSE(cut.decoder.hasEnd) << size;
  }
  EXPECT_FALSE(ReadAll("time,x1,y1\n", 1000).isRecording);
}

TEST(CamtoolRecording, LosesOnlyTheChunkThatIsDamaged) {
  const std::string file = SmallRecording();
  // Not the first bytes, by which it is known.
  for (size_t at = 8; at < camera::kRecordingHeaderBytes + kChunkCount * kChunkSize; ++at) {
    std::string damaged = file;
    damaged[at] ^= 0x20;
    const Read read = ReadAll(damaged, 100);
    ASSERT_EQ(at < camera::kRecordingHeaderBytes ? kChunkCount : kChunkCount - 1, read.chunks) << at;
    ASSERT_EQ(1u, read.decoder.damagedPlaces) << at;
    ASSERT_TRUE(read.decoder.hasEnd) << at;
  }
  // A whole chunk with a wrong time, far ahead, must not take the later ones with it.
  const Read jumped = ReadAll(
      camera::EncodeHeader({}) + camera::EncodeChunks(~std::uint64_t{0}, "?") + camera::EncodeChunks(5, kRecord), 100);
  EXPECT_EQ(kRecord, jumped.bytes);
  EXPECT_EQ(1u, jumped.decoder.damagedPlaces);
  const std::string large(camera::kLargestChunk * 2 + 5, 'x');
  EXPECT_EQ(large, ReadAll(camera::EncodeHeader({}) + camera::EncodeChunks(1, large), 100000).bytes);
}

TEST(CamtoolStream, FindsRecordsAndCountsWhatIsBetweenThem) {
  const std::string record = kRecord;
  const std::string stream = record.substr(30) + record + "garbage" + record + record.substr(0, 20) + "01x0" +
                             record.substr(4) + record.substr(0, 5);
  for (const size_t part : {size_t{1}, size_t{13}, stream.size()}) {
    camera::RecordStream found;
    std::vector<camera::FoundRecord> records;
    for (size_t at = 0; at < stream.size(); at += part) {
      camera::FeedStream(&found, static_cast<double>(at), std::string_view(stream).substr(at, part), &records);
    }
    camera::EndStream(&found);
    EXPECT_EQ(3u, records.size());
    EXPECT_EQ(3, found.records);
    EXPECT_EQ(11, found.leadBytes);
    EXPECT_EQ(2, found.malformedStretches);
    EXPECT_EQ(27, found.malformedBytes);
    EXPECT_EQ(1, found.oddRecords);
    EXPECT_EQ(1, found.last.points[0].x) << "as Tarnwick reads it";
    EXPECT_EQ(384, found.last.points[3].y);
    EXPECT_EQ("garbage", found.stretches[0].sample);
    EXPECT_EQ("0100,", found.pending);
    EXPECT_NEAR(0.6, camera::WellFormedShare(found), 1e-9);
    if (part == 1) {
      EXPECT_EQ(51, records.front().seconds) << "when its last byte came";
      EXPECT_EQ(1, found.longestGap);
      EXPECT_NEAR(2 / (found.lastSeconds - 51), camera::RecordRate(found), 1e-9);
    }
  }
  // Tarnwick reads the last number on into closing digits.
  for (const auto& [odd, y, isInRange] : {std::tuple{record.substr(0, 39) + "05", 38405L, false},
                                          std::tuple{record.substr(0, 35) + "001012", 1012L, true},
                                          std::tuple{record.substr(0, 35) + "-001\r\n", -1L, false}}) {
    camera::RecordStream found;
    camera::FeedStream(&found, 0, odd, nullptr);
    EXPECT_EQ(1, found.oddRecords) << odd;
    EXPECT_EQ(y, found.last.points[3].y);
    EXPECT_EQ(isInRange, found.last.isInRange);
  }
  camera::RecordStream noise;
  camera::FeedStream(&noise, 0, std::string(30, '?'), nullptr);
  camera::EndStream(&noise);
  EXPECT_EQ(0, noise.records);
  EXPECT_EQ(30, noise.leadBytes);
  EXPECT_EQ("a\\x0D\\x00\\xFF\\x5C", camera::Printable(std::string_view("a\r\0\xFF\\", 5)));
}

}  // namespace
}  // namespace camtool
