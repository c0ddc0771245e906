#include "framework/guards.h"

#include <gtest/gtest.h>
#include <utility>

#include "framework/records.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

TEST(Guards, ObjectsAreDeselectedAndThenDeletedUnlessReleased) {
  const kvtest::Picture picture(8, 8);
  const HGDIOBJ before = GetCurrentObject(picture.dc(), OBJ_PEN);
  const HPEN pen = CreatePen(PS_SOLID, 1, RGB(255, 0, 0)), kept = CreatePen(PS_SOLID, 1, RGB(0, 0, 255));
  {
    OwnedPen owned(pen), released(kept);
    const SelectedObject selected(picture.dc(), owned);
    OwnedPen moved(std::move(released));
    moved.Release();
  }
  EXPECT_EQ(before, GetCurrentObject(picture.dc(), OBJ_PEN));
  EXPECT_EQ(0u, GetObjectType(pen));
  EXPECT_TRUE(DeleteObject(kept));

  const kvtest::RecordingParent parent(true);
  InvalidateRect(parent, nullptr, TRUE);
  {
    const PaintScope paint(parent);
  }
  EXPECT_FALSE(GetUpdateRect(parent, nullptr, FALSE));
}

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
