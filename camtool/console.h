// Messages of commands besides their results, and stop requests.
#pragma once

#include <windows.h>

#include <string>

#include "camera/files.h"
#include "camera/ports.h"
#include "camera/record_stream.h"

namespace camtool {

// After the first call, Ctrl+C, Ctrl+Break and closing the console window signal this event (manual reset) instead of
// ending the process, so that a command can finish properly. Main thread only.
HANDLE StopEvent();
// Fast enough to call for each record.
bool IsStopRequested();

// Prints "camtool: " and the sentence to standard error.
void PrintError(const std::string& sentence);

// Opens COM`number` or prints the reason for failure to standard error.
bool OpenPortOrPrintError(int number, camera::Port* port);

// Opens a recording that a stop request ends within 64 KB. Returns kDone, or the exit code after printing the reason
// for failure to standard error.
int OpenRecordingOrPrintError(const std::string& path, camera::RecordingFile* recording);

// Parses "COM1" to "COM999". For anything else, returns 0 and prints an error to standard error.
int PortOrPrintError(const std::string& text);

// Prints to standard error what the rows of a finished stream do not show: malformed bytes, records with invalid
// numbers, and the damage of the recording (`damage`, may be "").
void PrintStreamReport(const camera::RecordStream& stream, const std::string& damage);

bool IsConsole(HANDLE handle);

// Progress on standard error: on a console, a line that is updated four times a second; otherwise a line every ten
// seconds.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // Returns whether it is time for the next line.
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
