// Texts and short lists with a fixed capacity and without allocation, so that drawing cannot fail or throw. Excess
// characters and items are omitted. Any thread.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace kv {

// A text of up to kMaxCharacters characters, always terminated.
class FixedText {
 public:
  static constexpr std::size_t kMaxCharacters = 127;

  FixedText() = default;
  FixedText(std::wstring_view text) : size_(std::min(text.size(), kMaxCharacters)) {
    std::copy_n(text.data(), size_, characters_.data());
  }
  FixedText(const wchar_t* text) : FixedText(std::wstring_view(text)) {}

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const wchar_t* c_str() const { return characters_.data(); }
  wchar_t* begin() { return characters_.data(); }
  wchar_t* end() { return begin() + size_; }
  const wchar_t* begin() const { return characters_.data(); }
  const wchar_t* end() const { return begin() + size_; }
  wchar_t& operator[](std::size_t index) { return characters_[index]; }
  operator std::wstring_view() const { return {characters_.data(), size_}; }
  std::wstring_view view() const { return *this; }

  FixedText& operator+=(std::wstring_view text) {
    const std::size_t taken = std::min(text.size(), kMaxCharacters - size_);
    std::copy_n(text.data(), taken, end());
    size_ += taken;
    return *this;
  }
  FixedText& operator+=(wchar_t character) { return *this += std::wstring_view(&character, 1); }
  friend FixedText operator+(FixedText first, std::wstring_view second) { return first += second; }
  friend bool operator==(const FixedText& first, std::wstring_view second) { return first.view() == second; }
  friend bool operator==(const FixedText& first, const FixedText& second) { return first.view() == second.view(); }

 private:
  std::array<wchar_t, kMaxCharacters + 1> characters_{};
  std::size_t size_ = 0;
};

template <class Item, std::size_t Capacity>
class FixedList {
 public:
  FixedList() = default;
  FixedList(std::initializer_list<Item> items) {
    for (const Item& item : items) push_back(item);
  }

  void push_back(const Item& item) {
    if (size_ < Capacity) items_[size_++] = item;
  }
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const Item& operator[](std::size_t index) const { return items_[index]; }
  const Item& back() const { return items_[size_ - 1]; }
  const Item* begin() const { return items_.data(); }
  const Item* end() const { return begin() + size_; }

 private:
  std::array<Item, Capacity> items_{};
  std::size_t size_ = 0;
};

}  // namespace kv
