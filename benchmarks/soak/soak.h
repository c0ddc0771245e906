// What the two soaks share: a program in a process of its own, the hands that use it, and a watch over it.
#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/running_program.h"

namespace soak {

struct Sample {
  double responseMs;          // of a null message, there and back
  bool mayScan;               // the main thread may have been searching the ports
  std::array<DWORD, 4> held;  // private KiB, GDI objects, USER objects, handles; 0 where the system does not tell
};

// Looks at a running program from outside, once a second: does its main thread answer, how much does it hold?
class ProcessWatch {
 public:
  ProcessWatch(HANDLE process, HWND window);
  ~ProcessWatch() { Stop(); }
  ProcessWatch(const ProcessWatch&) = delete;
  ProcessWatch& operator=(const ProcessWatch&) = delete;

  // While this is set, the main thread may take as long as a scan of the ports does.
  std::atomic<bool> isConnecting{false};
  // Answers that did not come within ten seconds while the process lived.
  int Hangs() const { return hangs_; }
  void Stop();
  // After Stop.
  const std::vector<Sample>& Samples() const { return samples_; }
  void Print() const;

 private:
  void Watch();

  HANDLE process_;
  HWND window_;
  std::atomic<bool> stop_{false};
  std::atomic<int> hangs_{0};
  std::vector<Sample> samples_;
  std::thread thread_;
};

struct Soak {
  std::mt19937 random;
  std::unique_ptr<kvtest::RunningProgram> program;
  HWND window = nullptr;
  std::unique_ptr<ProcessWatch> watch;
  std::map<std::string, long> counts;  // of what was done
  std::deque<std::string> actions;     // the last ones, to find the reason of a crash
};

// Waits up to 30 s for the program's main window; null when it does not come up.
HWND WaitForWindow(const kvtest::RunningProgram& program);
// Starts the program and its watch. False when its window does not come up.
bool Start(Soak* soak, const char* path);
// Milliseconds that it took to close with exit code 0, or -1 when it did not.
long CloseMs(const kvtest::RunningProgram& program, HWND window);

// A number below `end`.
int Below(Soak* soak, int end);
void Note(Soak* soak, const char* what, POINT a = {}, POINT b = {});
void PrintCounts(const Soak& soak);

void PressKey(int key, bool shift = false, bool control = false);
// Moves, resizes, minimises, maximises or restores the window, by what the window manager would send.
void MoveWindowAbout(Soak* soak);
// Tells the window of changed colours, settings, fonts or time; now and then the colours do change.
void ChangeSurroundings(Soak* soak);

// Each prints its table and returns 0 when nothing crashed, hung or failed to close.
int SoakTool(double seconds, std::uint32_t seed);
int SoakGallery(double seconds, std::uint32_t seed);

}  // namespace soak
