#include "framework/window_state.h"

#include <gtest/gtest.h>

#include "tests/support/test_window.h"

namespace kv {
namespace {

struct SampleRecord {
  HGLOBAL hMemory;
  int value;
};

TEST(WindowRecord, LivesInTheUserDataAndStartsZeroed) {
  const kvtest::RecordingParent parent;
  const HWND window = kvtest::CreateControl(parent, "STATIC", "", 0, {0, 0, 10, 10}, 1);
  EXPECT_EQ(nullptr, WindowRecord<SampleRecord>(window));
  auto* record = CreateWindowRecord<SampleRecord>(window);
  ASSERT_TRUE(record && record->value == 0 && record == WindowRecord<SampleRecord>(window));
  const HGLOBAL memory = record->hMemory;
  DestroyWindowRecord(window, record);
  EXPECT_EQ(nullptr, WindowRecord<SampleRecord>(window));
  EXPECT_EQ(static_cast<UINT>(GMEM_INVALID_HANDLE), GlobalFlags(memory));

  const kvtest::GuardedBytes tooSmall(sizeof(SampleRecord) - 1);
  SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(tooSmall.data()));
  EXPECT_EQ(nullptr, WindowRecord<SampleRecord>(window));
}

}  // namespace
}  // namespace kv
