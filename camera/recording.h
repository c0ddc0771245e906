// The format of recordings: the bytes that a port received, with the time of each arrival, in a file that stays
// readable wherever it is truncated or damaged. docs/recording-format.md describes it. Pure, any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace camera {

// As in PNG, a text conversion or the loss of eighth bits damages it, which shows at once.
inline constexpr std::string_view kRecordingMagic("\x89TWR\r\n\x1A\n", 8);
inline constexpr size_t kRecordingHeaderBytes = 40;
inline constexpr size_t kChunkOverhead = 16;
inline constexpr size_t kMaxChunkBytes = 4096;
inline constexpr std::uint32_t kRecordingVersion = 1;
// Between two chunks. A chunk later than that is damage: otherwise one wrong time would make all later chunks go back.
inline constexpr std::uint64_t kMaxSilence = 366ull * 24 * 3600 * 1'000'000;  // microseconds

struct RecordingHeader {
  std::uint64_t startTime = 0;  // UTC, in units of 100 ns since 1601, as FILETIME
  std::uint32_t baudRate = 0;
  std::uint32_t port = 0;
};

std::string EncodeHeader(const RecordingHeader& header);

// Bytes received `microseconds` after the start; more than kMaxChunkBytes become several chunks.
std::string EncodeChunks(std::uint64_t microseconds, std::string_view bytes);

// The end of a recording that was ended in good order.
std::string EncodeEnd(std::uint64_t microseconds);

// CRC-32 as in Ethernet and PNG.
std::uint32_t Crc32(std::string_view bytes);

// ---- Reading --------------------------------------------------------------------------------------------------------

enum class Decoded { kHeader, kChunk, kEnd, kNeedMore, kNoRecording, kOtherVersion };

struct Chunk {
  std::uint64_t microseconds;
  std::string bytes;
};

struct RecordingDecoder {
  RecordingHeader header;
  std::uint32_t version = 0;  // of a file with kOtherVersion
  bool hasHeader = false;
  bool hasEnd = false;        // the end's chunk has been seen
  std::uint64_t endTime = 0;  // of the last chunk or end, microseconds
  std::uint64_t chunks = 0;
  std::uint64_t damageCount = 0, damagedBytes = 0;
  std::string pending;  // what FinishDecoding counts
  size_t at = 0;
  bool isSkipping = false;
};

// Gives the decoder the next part of the file.
void FeedDecoder(RecordingDecoder* decoder, std::string_view part);

// The next thing in what was fed so far. Damaged chunks are skipped and counted. kNeedMore: feed or finish.
// kNoRecording: the file does not begin as a recording does. kOtherVersion: it has another format version.
Decoded DecodeNext(RecordingDecoder* decoder, Chunk* chunk);

// After the whole file: the number of bytes of an incomplete last chunk.
size_t FinishDecoding(RecordingDecoder* decoder);

}  // namespace camera
