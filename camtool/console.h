// What commands print besides their results, and how they are told to stop.
#pragma once

#include <windows.h>

#include <string>

#include "camera/ports.h"
#include "camera/record_stream.h"

namespace camtool {

// From the first call on, Ctrl+C, Ctrl+Break and the closing of the console window do not end the process but signal
// this event (manual reset), so that a command can end what it does in good order. Main thread only.
HANDLE StopEvent();
// Cheap enough to call for each record.
bool IsStopRequested();

// Prints "camtool: " and the sentence to standard error.
void PrintError(const std::string& sentence);

// Opens COM`number` or says on standard error why not.
bool OpenPortOrPrintError(int number, camera::Port* port);

// Reads "COM1" to "COM999". 0, and a sentence on standard error, for anything else.
int PortOrPrintError(const std::string& text);

// Prints to standard error what the rows of a stream that has ended do not show: what was not a record, what was odd,
// and what was wrong with the recording (`damage`, may be "").
void PrintStreamReport(const camera::RecordStream& stream, const std::string& damage);

bool IsConsole(HANDLE handle);

// Progress on standard error: on a console, one line that is updated four times a second; elsewhere, a line every ten
// seconds.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // Whether it is time for the next line.
  bool IsDue();
  void Show(const std::string& text);
  // Removes the line.
  void Clear();

 private:
  bool isConsole_;
  ULONGLONG nextMs_;
  size_t width_ = 0;
};

}  // namespace camtool
