// Shared by both soak tests: a program in a separate process, input for it, and a watch that monitors it.
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
  double responseMs;          // time to respond to WM_NULL
  bool mayScan;               // the main thread may have been scanning ports
  std::array<DWORD, 4> held;  // private KiB, GDI objects, USER objects, handles; 0 where not available
};

// Measures a running program once a second: the response time of its main thread, and its memory and objects.
class ProcessWatch {
 public:
  ProcessWatch(HANDLE process, HWND window);
  ~ProcessWatch() { Stop(); }
  ProcessWatch(const ProcessWatch&) = delete;
  ProcessWatch& operator=(const ProcessWatch&) = delete;

  // While this is set, the main thread may take as long as a port scan.
  std::atomic<bool> isConnecting{false};
  // The number of times that the running process did not respond within ten seconds.
  int Hangs() const { return hangs_; }
  void Stop();
  // Call these after Stop.
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
  std::map<std::string, long> counts;  // how often each action was done
  std::deque<std::string> actions;     // the last ones, for finding the cause of a crash
};

// Waits up to 30 s for the program's main window; null when it does not appear.
HWND WaitForWindow(const kvtest::RunningProgram& program);
// Starts the program and its watch. False when its window does not appear.
bool Start(Soak* soak, const char* path);
// Closes the program. Returns the time in ms, or -1 when it did not end with exit code 0.
long CloseMs(const kvtest::RunningProgram& program, HWND window);

// A random number below `end`.
int Below(Soak* soak, int end);
void Note(Soak* soak, const char* what, POINT a = {}, POINT b = {});
void PrintCounts(const Soak& soak);

void PressKey(int key, bool shift = false, bool control = false);
// Moves, resizes, minimizes, maximizes or restores the window with the messages of a window manager.
void MoveWindowAbout(Soak* soak);
// Notifies the window of changed colors, settings, fonts or time; sometimes actually changes the colors.
void ChangeSurroundings(Soak* soak);

// Each prints its table and returns 0 when nothing crashed, hung or failed to close.
int SoakTool(double seconds, std::uint32_t seed);
int SoakGallery(double seconds, std::uint32_t seed);

}  // namespace soak
