// Leaves the process only a few GDI objects, so that code which loses one each time it runs fails after a few hundred
// runs instead of some ten thousand.
#pragma once

#include <windows.h>

#include <vector>

namespace kvtest {

class ScarceObjects {
 public:
  explicit ScarceObjects(size_t left) {
    while (HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3))) brushes_.push_back(brush);
    for (size_t i = 0; i < left && !brushes_.empty(); ++i) GiveBackOne();
  }
  ~ScarceObjects() {
    while (!brushes_.empty()) GiveBackOne();
  }
  ScarceObjects(const ScarceObjects&) = delete;
  ScarceObjects& operator=(const ScarceObjects&) = delete;

 private:
  void GiveBackOne() {
    DeleteObject(brushes_.back());
    brushes_.pop_back();
  }

  std::vector<HBRUSH> brushes_;
};

}  // namespace kvtest
