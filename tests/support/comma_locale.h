// Numbers with a decimal comma for as long as the object lives, as in a host that called setlocale.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace kvtest {

class CommaLocale {
 public:
  CommaLocale() : former_(std::setlocale(LC_ALL, nullptr)) {
    std::setlocale(LC_ALL, "German");
    EXPECT_STREQ(",", std::localeconv()->decimal_point);
  }
  ~CommaLocale() { std::setlocale(LC_ALL, former_.c_str()); }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

 private:
  std::string former_;
};

}  // namespace kvtest
