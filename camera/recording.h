// The format of recordings: bytes received from a port, with the time of each arrival, in a file that stays readable
// when it is truncated or damaged. See docs/recording-format.md. Pure, any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace camera {

// As in PNG, a text conversion or the loss of the eighth bit damages it, and is detected at once.
inline constexpr std::string_view kRecordingMagic("\x89TWR\r\n\x1A\n", 8);
inline constexpr size_t kRecordingHeaderBytes = 40;
inline constexpr size_t kChunkOverhead = 16;
inline constexpr size_t kMaxChunkBytes = 4096;
inline constexpr std::uint32_t kRecordingVersion = 1;
// The maximum time between two chunks; a longer one is damage. Otherwise one wrong time would make all later chunks
// appear to go back in time.
inline constexpr std::uint64_t kMaxSilence = 366ull * 24 * 3600 * 1'000'000;  // microseconds

struct RecordingHeader {
  std::uint64_t startTime = 0;  // UTC, in units of 100 ns since 1601, as FILETIME
  std::uint32_t baudRate = 0;
  std::uint32_t port = 0;
};

std::string EncodeHeader(const RecordingHeader& header);

// Encodes bytes received `microseconds` after the start; more than kMaxChunkBytes become several chunks.
std::string EncodeChunks(std::uint64_t microseconds, std::string_view bytes);

// Encodes the end of a complete recording.
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
  bool hasEnd = false;        // the end has been read
  std::uint64_t endTime = 0;  // of the last chunk or end, microseconds
  std::uint64_t chunks = 0;
  std::uint64_t damageCount = 0, damagedBytes = 0;
  std::string pending;  // counted by FinishDecoding
  size_t at = 0;
  bool isSkipping = false;
  // While skipping: CRC registers, beginning with 0, after the bytes of `pending` from `sumsAt` on.
  std::vector<std::uint32_t> sums;
  size_t sumsAt = 0;
};

// Passes the next part of the file to the decoder.
void FeedDecoder(RecordingDecoder* decoder, std::string_view part);

// Decodes the next item of the data so far. Damaged chunks are skipped and counted, in a time proportional to their
// bytes. kNeedMore: feed more or finish.
// kNoRecording: the file is not a recording. kOtherVersion: it has another format version.
Decoded DecodeNext(RecordingDecoder* decoder, Chunk* chunk);

// Decodes the next item at the end of the file so far, where DecodeNext needs more: what begins like a chunk but is
// incomplete is damage if an intact chunk follows in it. Otherwise returns kNeedMore without any change.
Decoded DecodeAtEnd(RecordingDecoder* decoder, Chunk* chunk);

// Call after the whole file. Returns the number of bytes of an incomplete last chunk.
size_t FinishDecoding(RecordingDecoder* decoder);

}  // namespace camera
