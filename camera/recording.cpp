#include "camera/recording.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace camera {

namespace {

constexpr size_t kChunkHead = 12;
constexpr size_t kChecksum = 4;
constexpr size_t kMaxHeaderBytes = 65536;
constexpr std::uint32_t kPolynomial = 0xEDB88320;

// Checksums of a byte followed by 0 to 3 zero bytes, to process four bytes at a time.
using CrcTables = std::array<std::array<std::uint32_t, 256>, 4>;

constexpr CrcTables MakeCrcTables() {
  CrcTables tables{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i;
    for (std::array<std::uint32_t, 256>& table : tables) {
      for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ (value & 1 ? kPolynomial : 0);
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
  if (isWhole && size >= kRecordingHeaderBytes && size <= kMaxHeaderBytes) {
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

void SkipTo(RecordingDecoder* decoder, size_t at) {
  if (at == decoder->at) return;
  if (!decoder->isSkipping) ++decoder->damageCount;
  decoder->isSkipping = true;
  decoder->damagedBytes += at - decoder->at;
  decoder->at = at;
}

// Returns the first place from `at` on where the two lengths of a chunk agree, or where too few bytes follow.
size_t FindHead(std::string_view bytes, size_t at) {
  for (; at + kChunkOverhead <= bytes.size(); ++at) {
    const std::uint64_t size = Get(bytes, at, 2);
    if ((Get(bytes, at + 2, 2) ^ 0xFFFF) == size && size <= kMaxChunkBytes) break;
  }
  return at;
}

std::uint32_t AddByte(std::uint32_t crc, char byte) {
  return (crc >> 8) ^ kCrc[0][(crc ^ static_cast<unsigned char>(byte)) & 0xFF];
}

// Returns the register after that number of zero bytes: its product with a power of x, modulo the polynomial.
std::uint32_t AddZeros(std::uint32_t crc, size_t bytes) {
  static const std::vector<std::uint32_t> powers = [] {
    std::vector<std::uint32_t> list = {0x80000000};
    while (list.size() <= kChunkHead + kMaxChunkBytes) list.push_back(AddByte(list.back(), 0));
    return list;
  }();
  std::uint32_t product = 0, factor = powers[bytes];
  for (; crc != 0; crc <<= 1) {
    if (crc & 0x80000000) product ^= factor;
    factor = (factor >> 1) ^ (factor & 1 ? kPolynomial : 0);
  }
  return product;
}

// Returns the checksum of the next `size` bytes. Within damage, up to 4 KB may have to be summed at every fourth byte;
// registers that are computed once for each byte give the checksum of any part.
std::uint32_t ChecksumOfNext(RecordingDecoder* decoder, size_t size) {
  std::vector<std::uint32_t>& sums = decoder->sums;
  const size_t at = decoder->at;
  if (sums.empty() && !decoder->isSkipping) return Crc32(std::string_view(decoder->pending).substr(at, size));
  if (sums.empty() || at - decoder->sumsAt >= sums.size()) {
    sums.assign(1, 0);
    decoder->sumsAt = at;
  }
  const size_t from = at - decoder->sumsAt;
  while (sums.size() <= from + size)
    sums.push_back(AddByte(sums.back(), decoder->pending[decoder->sumsAt + sums.size() - 1]));
  return ~(sums[from + size] ^ AddZeros(~sums[from], size));
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
  for (const char byte : bytes) crc = AddByte(crc, byte);
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
  decoder->sums.clear();
}

Decoded DecodeNext(RecordingDecoder* decoder, Chunk* chunk) {
  if (!decoder->hasHeader) return DecodeHeader(decoder);
  for (;;) {
    SkipTo(decoder, FindHead(decoder->pending, decoder->at));
    const std::string_view rest = std::string_view(decoder->pending).substr(decoder->at);
    const auto size = static_cast<size_t>(rest.size() < kChunkOverhead ? 0 : Get(rest, 0, 2));
    if (rest.size() < size + kChunkOverhead) return Decoded::kNeedMore;
    const std::string_view whole = rest.substr(0, kChunkHead + size);
    const std::uint64_t microseconds = Get(rest, 4, 8);  // a time that goes back makes a huge difference, too
    if (microseconds - decoder->endTime > kMaxSilence ||
        ChecksumOfNext(decoder, whole.size()) != Get(rest, whole.size(), 4)) {
      SkipTo(decoder, decoder->at + 1);
      continue;
    }
    decoder->at += size + kChunkOverhead;
    return DecodeChunk(decoder, whole.substr(kChunkHead), microseconds, chunk);
  }
}

Decoded DecodeAtEnd(RecordingDecoder* decoder, Chunk* chunk) {
  RecordingDecoder next = *decoder;
  while (next.hasHeader && next.pending.size() - next.at > kChunkOverhead) {
    SkipTo(&next, next.at + 1);
    const Decoded decoded = DecodeNext(&next, chunk);
    if (decoded == Decoded::kNeedMore) continue;
    *decoder = std::move(next);
    return decoded;
  }
  return Decoded::kNeedMore;
}

size_t FinishDecoding(RecordingDecoder* decoder) {
  const size_t rest = decoder->pending.size() - decoder->at;
  decoder->at = decoder->pending.size();
  if (!decoder->isSkipping) return rest;
  decoder->damagedBytes += rest;
  return 0;
}

}  // namespace camera
