#include "kv/toolkit/png_file.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "kv/framework/canvas.h"
#include "tests/support/files.h"

namespace kv {
namespace {

using kvtest::BytesOf;

TEST(PngFiles, AreWrittenWholeOrNotAtAll) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / L"png files";
  const std::filesystem::path path = folder / L"an image – рисунок.png";
  std::filesystem::create_directories(folder);
  Surface surface;
  ASSERT_TRUE(surface.Create({70, 40}));
  for (LONG y = 0; y < 40; ++y) std::fill_n(surface.Row(y), 70, 0x00336699u);
  ASSERT_TRUE(SaveBitmapAsPng(surface.bitmap(), path.c_str()));
  const std::string bytes = BytesOf(path);
  ASSERT_LT(33u, bytes.size());
  EXPECT_EQ("\x89PNG\r\n\x1A\n", bytes.substr(0, 8));
  EXPECT_EQ(std::string("\0\0\0\x46\0\0\0\x28", 8), bytes.substr(16, 8));  // width and height
  EXPECT_EQ("IEND", bytes.substr(bytes.size() - 8, 4));
  EXPECT_FALSE(SaveBitmapAsPng(nullptr, path.c_str()));
  EXPECT_EQ(bytes, BytesOf(path));
  EXPECT_FALSE(SaveBitmapAsPng(surface.bitmap(), reinterpret_cast<const wchar_t*>(16)));
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace kv
