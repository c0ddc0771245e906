// A program under soak: started, found by its window, ended; and the hands that use it.
#pragma once

#include <windows.h>

#include <random>
#include <string>

namespace soak {

struct Program {
  HANDLE process = nullptr;
  DWORD id = 0;
  HWND window = nullptr;  // its main window, of class kvDialog; null when it did not come up
};

// Starts `path` (of the machine that runs Wine, or of Windows) in a folder and waits up to 30 s for its window.
Program StartProgram(const std::string& path, const char* folder);

bool IsRunning(const Program& program);

// Asks it to close. Milliseconds that it took to end with exit code 0, or -1 when it did not within ten seconds.
long CloseProgram(Program* program);

// Ends it by force if it still runs, and lets go of it.
void DropProgram(Program* program);

// A number below `end`.
int Below(std::mt19937* random, int end);

void PressKey(WORD key, bool shift = false, bool control = false);
void MoveMouse(POINT place);
void PressMouse(DWORD flags, int wheel = 0);

// Moves, resizes, minimises, maximises or restores the window, by what the window manager would send.
void MoveWindowAbout(HWND window, std::mt19937* random);

// Tells the window of changed colours, settings, fonts or displays; now and then the colours do change, until
// RestoreColours.
void ChangeSurroundings(HWND window, std::mt19937* random);
void RestoreColours();

}  // namespace soak
