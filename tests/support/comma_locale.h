// Sets a C locale with a decimal comma for the lifetime of the object, as a host that calls setlocale does.
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
