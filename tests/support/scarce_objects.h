// Uses up all but a few GDI objects of the process, so that code which leaks one per run fails after a few hundred runs
// instead of tens of thousands.
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
