// camview: shows recordings of a camera, and live ports.
//
//   camview [FILE | COMn] [--language CODE]
#include <windows.h>

#include <shellapi.h>

#include <string>

#include "camview/dialogs.h"
#include "camview/resource_ids.h"
#include "camview/status_line.h"
#include "camview/window.h"
#include "kv/framework/modules.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace {

constexpr int kExitRejected = 2, kExitNoWindow = 1;

struct CommandLine {
  camview::StartOptions start;
  bool help = false;
  std::wstring rejected;  // the first invalid argument; "" if there is none
};

// A file named COM3 can be opened as .\COM3.
CommandLine ParseCommandLine(int argc, const wchar_t* const* argv) {
  CommandLine line;
  for (int i = 1; i < argc; ++i) {
    const std::wstring argument = argv[i];
    const bool isFirst = line.start.path.empty() && line.start.port == 0;
    const bool isPort = !argument.empty() && (argument[0] | 0x20) == L'c' && camview::PortOfName(argument) > 0;
    if (argument == L"--help" || argument == L"/?") {
      line.help = true;
    } else if (argument == L"--language") {
      line.start.language = i + 1 < argc ? kv::LanguageOfCode(argv[i + 1]) : -1;
      if (line.start.language < 0) line.rejected = i + 1 < argc ? argument + L" " + argv[i + 1] : argument;
      ++i;
    } else if (argument.empty() || argument.starts_with(L"--") || !isFirst) {
      line.rejected = argument;
    } else if (isPort) {
      line.start.port = camview::PortOfName(argument);
    } else {
      line.start.path = argument;
    }
    if (!line.rejected.empty()) break;
  }
  return line;
}

int ShowHelp(HINSTANCE instance, const CommandLine& line) {
  kv::modules = {.resources = instance, .application = instance};
  const bool rejected = !line.rejected.empty();
  kv::LoadLanguages(camview::kFileStem);
  std::wstring text = kv::ResourceText(IDS_HELP_TEXT);
  if (rejected) text = camview::TextWith(IDS_HELP_REJECTED, line.rejected.c_str()) + L"\n\n" + text;
  if (!kv::PrintText(rejected ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE, text)) {
    kv::ShowMessage(nullptr, text, kv::ResourceText(IDS_CAPTION), rejected ? MB_ICONWARNING : MB_ICONINFORMATION);
  }
  kv::UnloadLanguages();
  return rejected ? kExitRejected : 0;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  kv::RestrictLibrarySearch();
  int argc = 0;
  wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
  const CommandLine line = ParseCommandLine(argc, argv);
  LocalFree(argv);
  if (line.help || !line.rejected.empty()) return ShowHelp(instance, line);
  camview::RegisterControls(instance, TRUE);
  const int exitCode = kv::RunDialog(instance, camview::MainWindow(line.start));
  camview::RegisterControls(instance, FALSE);
  return exitCode < 0 ? kExitNoWindow : exitCode;
}
