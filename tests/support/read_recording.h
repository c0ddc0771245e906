// Reads recordings for the tests and the fuzzing of the format.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "camera/recording.h"

namespace kvtest {

struct Read {
  std::string bytes;
  size_t chunks = 0, truncated = 0;
  camera::RecordingDecoder decoder;
  bool isRecording = true;
};

// Decodes a file that arrives in parts of `partSize` bytes, until it ends or is no recording.
inline Read ReadAll(std::string_view file, size_t partSize) {
  Read read;
  for (;;) {
    camera::Chunk chunk;
    camera::Decoded next = camera::DecodeNext(&read.decoder, &chunk);
    if (next == camera::Decoded::kNeedMore && file.empty()) next = camera::DecodeAtEnd(&read.decoder, &chunk);
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
  read.truncated = camera::FinishDecoding(&read.decoder);
  return read;
}

}  // namespace kvtest
