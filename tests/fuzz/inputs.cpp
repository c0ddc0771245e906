#include "tests/fuzz/inputs.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

namespace fuzz {

namespace {

constexpr size_t kPage = 4096;

size_t Below(Source* source, size_t end) {
  return end == 0 ? 0 : source->random() % end;
}

char RandomByte(Source* source) {
  return static_cast<char>(source->random() >> 24);
}

const std::string& AnyOf(Source* source, std::span<const std::string> texts) {
  return texts[Below(source, texts.size())];
}

std::string Noise(Source* source, std::string_view characters) {
  std::string bytes(Below(source, std::min<size_t>(source->longest, 200)), '\0');
  for (char& byte : bytes)
    byte = characters.empty() ? RandomByte(source) : characters[Below(source, characters.size())];
  return bytes;
}

void Mutate(Source* source, std::string* bytes) {
  const size_t at = Below(source, bytes->size() + 1);
  const size_t length = Below(source, std::min<size_t>(bytes->size() - at, 16) + 1);
  switch (source->random() % 8) {
    case 0:
      if (at < bytes->size()) (*bytes)[at] = static_cast<char>((*bytes)[at] ^ (1 << (source->random() % 8)));
      break;
    case 1:
      if (at < bytes->size()) (*bytes)[at] = RandomByte(source);
      break;
    case 2: bytes->insert(at, 1, RandomByte(source)); break;
    case 3: bytes->erase(at, length); break;
    case 4: bytes->insert(at, bytes->substr(at, length)); break;
    case 5: bytes->replace(at, length, AnyOf(source, source->words)); break;
    case 6: bytes->resize(at); break;
    default: {
      const std::string& other = AnyOf(source, source->examples);
      bytes->replace(at, bytes->npos, other.substr(Below(source, other.size())));
      break;
    }
  }
}

}  // namespace

GuardedArea::GuardedArea(size_t capacity) : capacity_((capacity + kPage - 1) / kPage * kPage) {
  base_ = static_cast<char*>(VirtualAlloc(nullptr, capacity_ + kPage, MEM_RESERVE, PAGE_NOACCESS));
  VirtualAlloc(base_, capacity_, MEM_COMMIT, PAGE_READWRITE);
  end_ = base_ + capacity_;
}

GuardedArea::~GuardedArea() {
  VirtualFree(base_, 0, MEM_RELEASE);
}

std::string_view GuardedArea::Put(std::string_view bytes) {
  const size_t size = std::min(bytes.size(), capacity_);
  std::memcpy(end_ - size, bytes.data(), size);
  return {end_ - size, size};
}

std::string NextInput(Source* source) {
  const unsigned kind = source->random() % 16;
  if (kind == 0) return Noise(source, {});
  if (kind == 1) return Noise(source, AnyOf(source, source->examples));
  std::string bytes = AnyOf(source, source->examples);
  if (kind == 2) bytes += AnyOf(source, source->examples);
  for (size_t changes = 1 + Below(source, 6); changes > 0; --changes) Mutate(source, &bytes);
  bytes.resize(std::min(bytes.size(), source->longest));
  return bytes;
}

}  // namespace fuzz
