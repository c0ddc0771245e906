#include "kv/framework/window_state.h"

#include <gtest/gtest.h>

#include "tests/support/test_window.h"

namespace kv {
namespace {

struct SampleState {
  HGLOBAL hMemory;
  int value;
};

TEST(WindowState, IsStoredInTheUserDataAndStartsZeroed) {
  const kvtest::RecordingParent parent;
  const HWND window = kvtest::CreateControl(parent, "STATIC", "", 0, {0, 0, 10, 10}, 1);
  EXPECT_EQ(nullptr, WindowState<SampleState>(window));
  auto* record = CreateWindowState<SampleState>(window);
  ASSERT_TRUE(record && record->value == 0 && record == WindowState<SampleState>(window));
  const HGLOBAL memory = record->hMemory;
  DestroyWindowState(window, record);
  EXPECT_EQ(nullptr, WindowState<SampleState>(window));
  EXPECT_EQ(static_cast<UINT>(GMEM_INVALID_HANDLE), GlobalFlags(memory));

  const kvtest::GuardedBytes tooSmall(sizeof(SampleState) - 1);
  SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(tooSmall.data()));
  EXPECT_EQ(nullptr, WindowState<SampleState>(window));
}

}  // namespace
}  // namespace kv
