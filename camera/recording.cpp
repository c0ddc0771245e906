#include "camera/recording.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace camera {

namespace {

constexpr size_t kChunkHead = 12;
constexpr size_t kChecksum = 4;
constexpr size_t kCompactAt = 65536;

// Checksums of a byte followed by 0 to 3 zero bytes, to process four bytes at a time.
using CrcTables = std::array<std::array<std::uint32_t, 256>, 4>;

constexpr CrcTables MakeCrcTables() {
  CrcTables tables{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i;
    for (std::array<std::uint32_t, 256>& table : tables) {
      for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ (value & 1 ? 0xEDB88320u : 0);
      table[i] = value;
    }
  }
  return tables;
}

constexpr CrcTables kCrc = MakeCrcTables();

void Append(std::string* text, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) text->push_back(static_cast<char>(value >> (8 * i)));
}

std::uint64_t Get(std::string_view text, size_t at, int bytes) {
  std::uint64_t value = 0;
  for (int i = 0; i < bytes; ++i) value |= std::uint64_t{static_cast<unsigned char>(text[at + i])} << (8 * i);
  return value;
}

std::string EncodeOne(std::uint64_t microseconds, std::string_view bytes) {
  std::string chunk;
  chunk.reserve(bytes.size() + kChunkOverhead);
  Append(&chunk, bytes.size(), 2);
  Append(&chunk, bytes.size() ^ 0xFFFF, 2);
  Append(&chunk, microseconds, 8);
  chunk += bytes;
  Append(&chunk, Crc32(chunk), 4);
  return chunk;
}

Decoded DecodeHeader(RecordingDecoder* decoder) {
  const std::string_view file = decoder->pending;
  const size_t seen = std::min(file.size(), kRecordingMagic.size());
  if (file.substr(0, seen) != kRecordingMagic.substr(0, seen)) return Decoded::kNoRecording;
  if (file.size() < kRecordingHeaderBytes) return Decoded::kNeedMore;
  // A damaged header loses only its own data, which chunks do not need.
  const auto size = static_cast<size_t>(Get(file, 8, 4));
  const bool isWhole = Crc32(file.substr(0, kRecordingHeaderBytes - kChecksum)) == Get(file, 36, 4);
  decoder->version = static_cast<std::uint32_t>(Get(file, 12, 4));
  if (isWhole && decoder->version != kRecordingVersion) return Decoded::kOtherVersion;
  if (isWhole && size >= kRecordingHeaderBytes && size <= kCompactAt) {
    // Skips the rest of a longer header.
    if (file.size() < size) return Decoded::kNeedMore;
    decoder->header = {Get(file, 16, 8), static_cast<std::uint32_t>(Get(file, 24, 4)),
                       static_cast<std::uint32_t>(Get(file, 28, 4))};
    decoder->at = size;
  } else {
    ++decoder->damageCount;
    decoder->damagedBytes += kRecordingHeaderBytes;
    decoder->at = kRecordingHeaderBytes;
  }
  decoder->hasHeader = true;
  return Decoded::kHeader;
}

void SkipByte(RecordingDecoder* decoder) {
  if (!decoder->isSkipping) ++decoder->damageCount;
  decoder->isSkipping = true;
  ++decoder->damagedBytes;
  ++decoder->at;
}

Decoded DecodeChunk(RecordingDecoder* decoder, std::string_view body, std::uint64_t microseconds, Chunk* chunk) {
  decoder->isSkipping = false;
  decoder->endTime = microseconds;
  decoder->hasEnd = body.empty();
  if (body.empty()) return Decoded::kEnd;
  ++decoder->chunks;
  chunk->microseconds = microseconds;
  chunk->bytes = body;
  return Decoded::kChunk;
}

}  // namespace

std::uint32_t Crc32(std::string_view bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (; bytes.size() >= 4; bytes.remove_prefix(4)) {
    crc ^= static_cast<std::uint32_t>(Get(bytes, 0, 4));
    crc = kCrc[3][crc & 0xFF] ^ kCrc[2][(crc >> 8) & 0xFF] ^ kCrc[1][(crc >> 16) & 0xFF] ^ kCrc[0][crc >> 24];
  }
  for (const char byte : bytes) crc = (crc >> 8) ^ kCrc[0][(crc ^ static_cast<unsigned char>(byte)) & 0xFF];
  return ~crc;
}

std::string EncodeHeader(const RecordingHeader& header) {
  std::string text(kRecordingMagic);
  Append(&text, kRecordingHeaderBytes, 4);
  Append(&text, kRecordingVersion, 4);
  Append(&text, header.startTime, 8);
  Append(&text, header.baudRate, 4);
  Append(&text, header.port, 4);
  Append(&text, 0, 4);
  Append(&text, Crc32(text), 4);
  return text;
}

std::string EncodeChunks(std::uint64_t microseconds, std::string_view bytes) {
  std::string chunks;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), kMaxChunkBytes))) {
    chunks += EncodeOne(microseconds, bytes.substr(0, kMaxChunkBytes));
  }
  return chunks;
}

std::string EncodeEnd(std::uint64_t microseconds) {
  return EncodeOne(microseconds, {});
}

void FeedDecoder(RecordingDecoder* decoder, std::string_view part) {
  decoder->pending.erase(0, decoder->at);
  decoder->at = 0;
  decoder->pending += part;
}

Decoded DecodeNext(RecordingDecoder* decoder, Chunk* chunk) {
  if (!decoder->hasHeader) return DecodeHeader(decoder);
  for (;;) {
    const std::string_view rest = std::string_view(decoder->pending).substr(decoder->at);
    if (rest.size() < kChunkOverhead) return Decoded::kNeedMore;
    const auto size = static_cast<size_t>(Get(rest, 0, 2));
    if ((Get(rest, 2, 2) ^ 0xFFFF) != size || size > kMaxChunkBytes) {
      SkipByte(decoder);
      continue;
    }
    if (rest.size() < size + kChunkOverhead) return Decoded::kNeedMore;
    const std::string_view whole = rest.substr(0, kChunkHead + size);
    const std::uint64_t microseconds = Get(rest, 4, 8);  // a time that goes back makes a huge difference, too
    if (Crc32(whole) != Get(rest, whole.size(), 4) || microseconds - decoder->endTime > kMaxSilence) {
      SkipByte(decoder);
      continue;
    }
    decoder->at += size + kChunkOverhead;
    return DecodeChunk(decoder, whole.substr(kChunkHead), microseconds, chunk);
  }
}

size_t FinishDecoding(RecordingDecoder* decoder) {
  const size_t rest = decoder->pending.size() - decoder->at;
  decoder->at = decoder->pending.size();
  if (!decoder->isSkipping) return rest;
  decoder->damagedBytes += rest;
  return 0;
}

}  // namespace camera
