// A fixture for the tests of one window class. It registers the class for all of them, with the function given, and
// they share one visible parent, which each test leaves empty: without a window manager, Wine takes two seconds to
// destroy a visible top-level window.
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
