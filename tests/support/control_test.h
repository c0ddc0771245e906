// A fixture for the tests of one window class. It registers the class for all of them, with the function given, and
// they share one visible parent, which each test leaves empty: without a window manager, Wine takes two seconds to
// destroy a visible top-level window.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "kv/framework/control_class.h"
#include "tests/support/test_window.h"

namespace kvtest {

// Sends a command; `index` is the high word of wParam.
inline LRESULT Send(HWND control, WPARAM wParam, const void* address, WPARAM index = 0) {
  return SendMessageA(control, kv::kControlCommand, wParam | index << 16, reinterpret_cast<LPARAM>(address));
}

// Returns the item that a command reads.
template <class Item>
Item Read(HWND control, WPARAM code, WPARAM index = 0) {
  Item item{};
  Send(control, code | kv::kCommandRead, &item, index);
  return item;
}

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
