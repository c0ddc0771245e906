// A fixture for the tests of one window class: the class is registered while they run, by the function that registers
// or unregisters it, and they share one visible parent, which each leaves empty. Without a window manager every visible
// window takes Wine two seconds to take away.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/test_window.h"

namespace kvtest {

template <BOOL (*Register)(HINSTANCE, BOOL)>
class ControlTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(Register(GetModuleHandleA(nullptr), TRUE));
    shared_ = std::make_unique<RecordingParent>(true, 700, 700);
  }
  static void TearDownTestSuite() {
    shared_.reset();
    EXPECT_TRUE(Register(GetModuleHandleA(nullptr), FALSE));
  }
  void TearDown() override {
    parent_.Answer(nullptr);
    while (HWND child = GetWindow(parent_, GW_CHILD)) DestroyWindow(child);
    PumpMessages();
    parent_.seen().clear();
  }

  RecordingParent& parent_ = *shared_;

 private:
  static inline std::unique_ptr<RecordingParent> shared_;
};

}  // namespace kvtest
