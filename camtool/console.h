// What a command shows while it works, and how it is told to stop.
#pragma once

#include <windows.h>

#include <string>

#include "camera/ports.h"
#include "camera/record_stream.h"

namespace camtool {

// From the first call on, Ctrl+C, Ctrl+Break and the closing of the console window do not end the process but signal
// this event (manual reset), so that a command can end what it does in good order. Main thread only.
HANDLE StopEvent();
// Costs nothing, so that it can be asked for each record.
bool IsStopRequested();

// "camtool: " and the sentence to standard error.
void PrintError(const std::string& sentence);

// Opens COM`number` or says on standard error why not.
bool OpenPortOrPrintError(int number, camera::Port* port);

// Reads "COM1" to "COM999". 0, and a sentence on standard error, for anything else.
int PortOrPrintError(const std::string& text);

// What the rows of a stream that has ended do not show, to standard error: what was no record, what was odd, and what
// was wrong with the recording (`damage`, may be "").
void PrintStreamReport(const camera::RecordStream& stream, const std::string& damage);

bool IsConsole(HANDLE handle);

// A line on standard error that tells how far the work is: on a console it is written over itself four times a second;
// elsewhere a line comes every ten seconds, which a log can bear.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // Whether it is time for the next line; asked before making its text.
  bool IsDue();
  void Show(const std::string& text);
  // Takes the line away, so that what is written next stands alone.
  void Clear();

 private:
  bool isConsole_;
  ULONGLONG nextMs_;
  size_t width_ = 0;
};

}  // namespace camtool
