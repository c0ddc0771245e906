// camview: shows recordings of a camera, and live ports.
//
//   camview [FILE|COMn] [--language CODE] [--help] [--version]
#include <windows.h>

#include <string>

#include "camview/dialogs.h"
#include "camview/resource_ids.h"
#include "camview/window.h"
#include "kv/framework/modules.h"
#include "kv/framework/utf8.h"
#include "kv/framework/version.h"
#include "kv/toolkit/command_line.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace {

constexpr int kExitNoWindow = 1;

std::wstring DescribeProgram() {
  return kv::ResourceText(IDS_HELP_TEXT);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  kv::RestrictLibrarySearch();
  kv::CommandLine line{.program = "camview",
                       .version = KV_VERSION_TEXT,
                       .operands = "[FILE|COMn]",
                       .languageFiles = camview::kFileStem,
                       .describe = DescribeProgram,
                       .rejected = IDS_HELP_REJECTED};
  if (!kv::ReadCommandLine(instance, &line)) return line.exitCode;
  camview::StartOptions start{.language = line.language};
  if (!line.arguments.empty()) {
    start.path = kv::Wide(line.arguments[0]);
    // A file named COM3 can be opened as .\COM3.
    if (start.path.starts_with(L'C') || start.path.starts_with(L'c')) start.port = camview::PortOfName(start.path);
    if (start.port) start.path.clear();
  }
  camview::RegisterControls(instance, TRUE);
  const int exitCode = kv::RunDialog(instance, camview::MainWindow(start));
  camview::RegisterControls(instance, FALSE);
  return exitCode < 0 ? kExitNoWindow : exitCode;
}
