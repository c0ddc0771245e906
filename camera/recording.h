// The recording's format: bytes from a port with the times at which they came, in a file that stays readable wherever
// it is cut off or damaged. docs/recording-format.md describes it. Pure, any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace camera {

// Like PNG's: a file that went through a text conversion, or lost its eighth bits, is seen at once.
inline constexpr std::string_view kRecordingMagic("\x89TWR\r\n\x1A\n", 8);
inline constexpr size_t kRecordingHeaderBytes = 40;
inline constexpr size_t kChunkOverhead = 16;
inline constexpr size_t kLargestChunk = 4096;
inline constexpr std::uint32_t kRecordingVersion = 1;
// Between two chunks. A chunk that claims more is damage: one wrong time must not make all later chunks go back.
inline constexpr std::uint64_t kLongestSilence = 366ull * 24 * 3600 * 1'000'000;  // microseconds

struct RecordingHeader {
  std::uint64_t startTime = 0;  // UTC, in units of 100 ns since 1601, as FILETIME
  std::uint32_t baudRate = 0;
  std::uint32_t port = 0;
};

std::string EncodeHeader(const RecordingHeader& header);

// Bytes that came `microseconds` after the start; more than kLargestChunk become several chunks.
std::string EncodeChunks(std::uint64_t microseconds, std::string_view bytes);

// What stands at the end of a recording that was ended in good order.
std::string EncodeEnd(std::uint64_t microseconds);

// CRC-32 as in Ethernet and PNG.
std::uint32_t Crc32(std::string_view bytes);

// ---- Reading -------------------------------------------------------------------------------------------------------

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
  std::uint64_t chunks = 0, bytes = 0;
  std::uint64_t damagedPlaces = 0, damagedBytes = 0;
  std::string pending;  // what FinishDecoding counts as torn
  size_t at = 0;
  bool isSkipping = false;
};

// Gives the decoder the next part of the file.
void FeedDecoder(RecordingDecoder* decoder, std::string_view part);

// The next thing in what was fed so far. Damaged chunks are passed over and counted. kNeedMore: feed or finish.
// kNoRecording: the file does not begin as a recording does. kOtherVersion: another format version than ours wrote it.
Decoded DecodeNext(RecordingDecoder* decoder, Chunk* chunk);

// After the whole file: the bytes of a last chunk that was torn off, which are left out.
size_t FinishDecoding(RecordingDecoder* decoder);

}  // namespace camera
