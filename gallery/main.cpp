// kvgallery: demonstrates every control and service of the library, one page each.
//
//   kvgallery                   starts with the page and the language used last
//   kvgallery --page NAME       starts with that page
//   kvgallery --language CODE   starts in that language (GE or de), and stores it
//   kvgallery --help            prints the names and codes to standard output, or in a box if there is none
//   kvgallery --walk            shows each page in turn: prints its name to standard output when it is complete, waits
//                               for a line on standard input, and continues; ends after the last. For scripts that take
//                               screenshots.
//
// An unknown option or value prints an error and the help to standard error (or a box); the exit code is 2.
#include <windows.h>

#include <shellapi.h>

#include <string>

#include "camera/optical_flow_chart.h"
#include "gallery/command_line.h"
#include "gallery/frame.h"
#include "gallery/pages.h"
#include "gallery/pages/mesh_view.h"
#include "gallery/resource_ids.h"
#include "kv/framework/modules.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace {

constexpr int kExitNoWindow = 1, kExitRejected = 2;

int ShowHelp(HINSTANCE instance, const gallery::StartOptions& options) {
  kv::modules = {.resources = instance, .application = instance};
  kv::LoadLanguages(gallery::kFileStem, options.language);
  const std::wstring& rejected = options.rejected;
  std::wstring help = kv::TextWith(IDS_HELP_TEXT, gallery::PageNames(), gallery::LanguageCodes());
  if (!rejected.empty()) help = kv::TextWith(IDS_HELP_REJECTED, rejected) + L"\n\n" + help;
  if (!kv::PrintText(rejected.empty() ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE, help)) {
    kv::ShowMessage(nullptr, help, kv::ResourceText(IDS_GALLERY_CAPTION),
                    rejected.empty() ? MB_ICONINFORMATION : MB_ICONWARNING);
  }
  kv::UnloadLanguages();
  return rejected.empty() ? 0 : kExitRejected;
}

// The gallery uses only the chart of the tool.
int ShowFrame(HINSTANCE instance, const gallery::StartOptions& options) {
  kv::RegisterChartClass(instance, TRUE);
  gallery::RegisterMeshViewClass(instance, TRUE);
  const int exitCode = kv::RunDialog(instance, gallery::FrameDialog(options));
  gallery::RegisterMeshViewClass(instance, FALSE);
  kv::RegisterChartClass(instance, FALSE);
  return exitCode < 0 ? kExitNoWindow : exitCode;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  int argc = 0;
  wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
  const gallery::StartOptions options = gallery::ParseCommandLine(argc, argv);
  LocalFree(argv);
  return options.help || !options.rejected.empty() ? ShowHelp(instance, options) : ShowFrame(instance, options);
}
